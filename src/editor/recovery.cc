#include "editor/recovery.h"

#include <algorithm>
#include <ctime>
#include <vector>

#include "editor/editor.h"
#include "editor/journal_follower.h"
#include "editor/journal_replay.h"
#include "os/short_memory.h"
#include "store/buffer_file.h"
#include "store/journal.h"
#include "store/old_text.h"
#include "store/recovery_files.h"
#include "store/saved_text.h"
#include "store/text_changes.h"

namespace tpu {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kForEver{-1};

std::string day_and_time(System& system, std::uint64_t ms) {
    const std::tm local = system.local_time(static_cast<std::time_t>(ms / 1000));
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M", &local);
    return text;
}

// The modes that records start from; they switch those on that there were.
void reset_modes(Buffer& buffer) {
    reset_recorded_modes(buffer);
    buffer.beginning_of_buffer();
}

bool wants_keeping(const Buffer& buffer) {
    return buffer.modified && !buffer.system && !buffer.no_write;
}

}  // namespace

// What is kept of a buffer.
struct Recovery::Entry {
    explicit Entry(const Buffer& buffer)
        : saved(buffer.saved_lines),
          file_name(buffer.file_name),
          file_time(buffer.file_time),
          written(saved),
          unwritten(buffer.since_saved_lines),
          version(buffer.saved_version) {}

    // Statements that lead from what is written to the text of the buffer.
    std::vector<std::string> changes(const Buffer& buffer) const {
        std::optional<std::vector<Change>> changes = buffer.changes().since(version);
        if (changes) changes->insert(changes->begin(), unwritten);
        return text_changes(differences(written, buffer.text(), changes), buffer.text());
    }
    void has_written(const Buffer& buffer) {
        written = buffer.text();
        unwritten = {};
        version = buffer.changes().version();
    }

    // The buffer was neither saved nor loaded since.
    bool is_of(const Buffer& buffer) const {
        return file_name == buffer.file_name && saved.is_same_version(buffer.saved_lines);
    }

    LineStore saved;
    std::string file_name;
    std::uint64_t file_time;
    LineStore written;                 // the text that the file leads to, at first its base
    Change unwritten;                  // leads from there to a version of the buffer ...
    std::uint64_t version;             // ... which is this one
    std::optional<RecoveryFile> file;  // made with the first statement
    bool copying_base = false;
};

Recovery::Recovery(TPUEditor& editor, std::string folder)
    : editor_(editor), folder_(std::move(folder)) {}

Recovery::~Recovery() = default;

milliseconds Recovery::serve() {
    if (folder_.empty()) return kForEver;
    drop_saved();
    const auto& buffers = editor_.buffers;
    bool all = std::all_of(buffers.begin(), buffers.end(),
                           [&](const auto& buffer) { return keeps_all(*buffer); });
    if (all) {
        due_.reset();
        return copy_bases();
    }
    const Clock::time_point now = editor_.ports.clock.now();
    if (!due_) due_ = now + kLongestWait;
    if (now < *due_) return std::chrono::ceil<milliseconds>(*due_ - now);
    write();
    return due_ ? kRetry : copy_bases();
}

// A little at a time, so that no key has to wait for it.
milliseconds Recovery::copy_bases() {
    for (auto& [buffer, kept] : entries_) {
        if (!kept->copying_base) continue;
        kept->copying_base = kept->file->copy_base();
        return milliseconds(0);
    }
    return kForEver;
}

bool Recovery::keeps_all(const Buffer& buffer) const {
    if (!wants_keeping(buffer)) return true;
    auto kept = entries_.find(&buffer);
    return kept != entries_.end() && kept->second->written.is_same_version(buffer.text());
}

// Where memory is too short for one buffer, others may have less to be kept.
void Recovery::write() {
    due_.reset();
    if (folder_.empty()) return;
    drop_saved();
    for (const auto& buffer : editor_.buffers) {
        if (keeps_all(*buffer) || enough_memory([&] { write(*buffer); })) continue;
        editor_.memory_reserve.release();
        due_ = editor_.ports.clock.now() + kRetry;
    }
}

Recovery::Entry& Recovery::entry(const Buffer& buffer) {
    auto found = entries_.find(&buffer);
    if (found != entries_.end()) return *found->second;
    return *entries_.emplace(&buffer, std::make_unique<Entry>(buffer)).first->second;
}

void Recovery::write(Buffer& buffer) {
    Entry& work = entry(buffer);
    const std::vector<std::string> statements = work.changes(buffer);
    std::string reason;
    if (!statements.empty() && !work.file) {
        work.file =
            RecoveryFile::create(folder_, work.file_name, work.file_time, work.written, reason);
        if (!work.file) return fail(reason);
        work.copying_base = work.file->copy_base();
    }
    if (!statements.empty() && !work.file->append(statements, reason)) return fail(reason);
    work.has_written(buffer);
    trouble_.clear();
}

// What could not be written is tried again. It is told once.
void Recovery::fail(const std::string& reason) {
    due_ = editor_.ports.clock.now() + kRetry;
    if (trouble_.empty()) editor_.set_message("Unsaved work is not kept: " + reason);
    trouble_ = reason;
}

// Of buffers that are gone, saved, or written to another file.
void Recovery::drop_saved() {
    std::erase_if(entries_, [&](auto& entry) {
        auto& [buffer, kept] = entry;
        if (editor_.owns(buffer) && wants_keeping(*buffer) && kept->is_of(*buffer)) return false;
        if (kept->file) kept->file->remove();
        return true;
    });
}

void Recovery::discard() {
    for (auto& [buffer, kept] : entries_) {
        if (kept->file) kept->file->remove();
    }
    entries_.clear();
}

std::string Recovery::greeting(const Buffer& buffer) const {
    if (!buffer.file_name.empty()) {
        if (std::optional<std::string> former = interrupted_save(buffer.file_name)) {
            return "A save was cut short; the former text is in " + *former;
        }
    }
    if (folder_.empty()) return {};
    std::vector<LeftBehind> left = left_behind(folder_, buffer.file_name);
    if (left.empty()) return {};
    return "Unsaved work of " + day_and_time(editor_.ports.system, left.front().time) +
           " was left behind: RECOVER_BUFFER brings it back";
}

std::string Recovery::recover(Buffer& buffer, std::string& reason) {
    std::vector<LeftBehind> left;
    if (!folder_.empty()) left = left_behind(folder_, buffer.file_name);
    if (left.empty()) {
        return buffer.file_name.empty()
                   ? "RECOVER_BUFFER: there is no unsaved work without a file"
                   : "RECOVER_BUFFER: there is no unsaved work on this buffer's file";
    }
    const LeftBehind& work = left.front();
    bool fits =
        !buffer.modified && buffer.modifiable &&
        (work.base ? *work.base == identity_of(buffer.text()) : work.file_time == buffer.file_time);
    std::string told =
        fits ? replay(buffer, work, reason) : recover_elsewhere(buffer, work, reason);
    if (left.size() > 1) told += "; there is more";
    return told;
}

// What the buffer holds by then is kept anew, and so the old work is needed no more, unless
// some of it could not be read.
std::string Recovery::replay(Buffer& buffer, const LeftBehind& work, std::string& reason) {
    reset_modes(buffer);
    const Replayed replayed = bring_back(editor_, work.path, reason);
    if (replayed == Replayed::nothing) return "RECOVER_BUFFER: cannot read " + work.path;
    write();
    while (copy_bases().count() == 0) {
    }
    bool is_kept = keeps_all(buffer) && trouble_.empty();
    if (replayed == Replayed::all && is_kept) remove_recovery_file(work.path);
    return "RECOVER_BUFFER replayed the work of " + day_and_time(editor_.ports.system, work.time);
}

// On a copy of the text that it began with. Where nobody has that any more, what was typed
// is at least shown among the text that there is now.
std::string Recovery::recover_elsewhere(const Buffer& buffer, const LeftBehind& work,
                                        std::string& reason) {
    std::optional<LineStore> base = work.base_text();
    if (!base && work.base) {
        Buffer backup("", "");
        if (identity_of(buffer.saved_lines) == *work.base) {
            base = buffer.saved_lines;
        } else if (load_file(backup, buffer.file_name + ".bak") &&
                   identity_of(backup.text()) == *work.base) {
            base = backup.text();
        }
    }
    const std::string of_what = buffer.file_name.empty() ? buffer.name : buffer.file_name;
    Buffer* fresh = editor_.create_buffer(editor_.unused_buffer_name("RECOVERED " + of_what), "");
    fresh->set_text(base ? *base : buffer.saved_lines);
    editor_.position(fresh);
    const std::string told = replay(*fresh, work, reason);
    if (!fresh->modified) {
        editor_.delete_buffer(fresh);
        return told;
    }
    if (!base) return "The file has changed: look over what the work made of the text of now";
    return "This is the work of " + day_and_time(editor_.ports.system, work.time) +
           ", on the text it began with";
}

}  // namespace tpu
