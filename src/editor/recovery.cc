#include "editor/recovery.h"

#include <ctime>
#include <vector>

#include "editor/editor.h"
#include "editor/journal_mirror.h"
#include "store/journal.h"
#include "store/recovery_files.h"

namespace tpu {

namespace {

using std::chrono::milliseconds;

std::string day_and_time(std::uint64_t ms) {
    auto seconds = static_cast<std::time_t>(ms / 1000);
    std::tm local = {};
    localtime_r(&seconds, &local);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M", &local);
    return text;
}

// The modes that records start from; they switch those on that there were.
void reset_modes(Buffer& buffer) {
    copy_recorded_modes(Buffer("", ""), buffer);
    buffer.select_anchor.reset();
    buffer.beginning_of_buffer();
}

bool wants_keeping(const Buffer& buffer) {
    return buffer.modified && !buffer.file_name.empty() && !buffer.system && !buffer.no_write;
}

}  // namespace

// What is kept of a buffer.
struct Recovery::Kept {
    explicit Kept(Buffer& buffer)
        : file_time(buffer.file_time),
          file_name(buffer.file_name),
          mirror(buffer, buffer.saved_lines,
                 [this](const std::string& statement) { statements.push_back(statement); }) {}

    // It is saved, or not wanted any more.
    void remove() {
        if (file) file->remove();
        if (!recovered.empty()) remove_recovery_file(recovered);
    }

    std::uint64_t file_time;
    std::string file_name;
    std::vector<std::string> statements;  // not in the file yet
    JournalMirror mirror;
    std::optional<RecoveryFile> file;  // made with the first statement
    std::string recovered;             // the file that was left behind and brought back
    LineStore written;                 // the text that the file leads to
};

Recovery::Recovery(TPUEditor& editor, std::string folder)
    : editor_(editor), folder_(std::move(folder)), last_key_(editor.ports.clock.now()) {}

Recovery::~Recovery() = default;

void Recovery::note_key() {
    if (folder_.empty()) return;
    ++keys_;
    pending_ = true;
    last_key_ = editor_.ports.clock.now();
}

milliseconds Recovery::serve() {
    constexpr milliseconds kForEver{-1};
    if (folder_.empty()) return kForEver;
    drop_saved();
    if (!pending_) return kForEver;
    auto idle = std::chrono::duration_cast<milliseconds>(editor_.ports.clock.now() - last_key_);
    if (idle < kIdle && keys_ < kMostKeys) return kIdle - idle;
    write();
    return kForEver;
}

void Recovery::write() {
    keys_ = 0;
    pending_ = false;
    if (folder_.empty()) return;
    for (const auto& buffer : editor_.buffers) {
        if (wants_keeping(*buffer)) write(*buffer);
    }
}

// A failure leaves the statements for the next time; there is nobody to be told.
void Recovery::write(Buffer& buffer) {
    std::unique_ptr<Kept>& kept = kept_[&buffer];
    if (!kept) kept = std::make_unique<Kept>(buffer);
    if (kept->file && kept->written.is_same_version(buffer.lines)) return;
    kept->mirror.follow(editor_.charset, editor_.ports.clock.now());
    kept->mirror.flush();
    if (kept->statements.empty()) return;
    if (!kept->file) kept->file = RecoveryFile::create(folder_, buffer.file_name, kept->file_time);
    if (!kept->file || !kept->file->append(kept->statements)) return;
    kept->statements.clear();
    kept->written = buffer.lines;
}

// Of buffers that are gone, saved, or written to another file.
void Recovery::drop_saved() {
    std::erase_if(kept_, [&](auto& entry) {
        auto& [buffer, kept] = entry;
        bool stays = editor_.owns(buffer) && wants_keeping(*buffer) &&
                     kept->file_time == buffer->file_time && kept->file_name == buffer->file_name;
        if (stays) return false;
        kept->remove();
        return true;
    });
}

void Recovery::discard() {
    for (auto& [buffer, kept] : kept_) kept->remove();
    kept_.clear();
}

std::string Recovery::greeting(const Buffer& buffer) const {
    if (folder_.empty() || buffer.file_name.empty()) return {};
    std::vector<LeftBehind> left = left_behind(folder_, buffer.file_name);
    if (left.empty()) return {};
    return "Unsaved work of " + day_and_time(left.front().time) +
           " was left behind: RECOVER_BUFFER brings it back";
}

std::string Recovery::recover(Buffer& buffer) {
    std::vector<LeftBehind> left;
    if (!folder_.empty() && !buffer.file_name.empty()) {
        left = left_behind(folder_, buffer.file_name);
    }
    if (left.empty()) return "RECOVER_BUFFER: there is no unsaved work on this buffer's file";
    const LeftBehind& work = left.front();
    if (buffer.modified) return "Buffer modified: RECOVER_BUFFER needs the text as it was saved";
    if (work.file_time != buffer.file_time) {
        return "The file has changed since; RECOVER_BUFFER(\"" + work.path +
               "\") replays the work all the same";
    }
    reset_modes(buffer);
    if (!tpu_journal_recover(editor_.parser, work.path)) {
        return "RECOVER_BUFFER: cannot open " + work.path;
    }
    if (wants_keeping(buffer)) {
        write(buffer);
        kept_[&buffer]->recovered = work.path;
    }
    return "RECOVER_BUFFER replayed " + work.path;
}

}  // namespace tpu
