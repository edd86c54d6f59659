#include "store/recovery_files.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <utility>

#include "buffer/buffer.h"
#include "os/file_io.h"
#include "os/file_names.h"
#include "os/held_signal.h"
#include "os/system_calls.h"
#include "os/trust.h"
#include "store/buffer_file.h"
#include "store/journal.h"
#include "store/journal_reader.h"
#include "store/read_file.h"
#include "text/ascii.h"
#include "text/stable_hash.h"

namespace tpu {

namespace {

constexpr mode_t kOwnerOnly = 0600;
constexpr std::string_view kSuffix = ".tpjb";
constexpr std::string_view kBaseSuffix = ".base";
constexpr std::string_view kBaseComment = "! unsaved work on ";  // then bytes and hash

std::string hexadecimal(std::uint64_t number) {
    char digits[17];
    std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(number));
    return digits;
}

}  // namespace

std::string recovery_prefix(const std::string& file) {
    constexpr std::size_t kLongestHint = 64;
    if (file.empty()) return "unnamed-";
    const std::filesystem::path path = canonical_name(file);
    std::string hint = path.filename().string().substr(0, kLongestHint);
    std::replace_if(
        hint.begin(), hint.end(),
        [](char c) { return !ascii::is_letter(c) && !ascii::is_digit(c) && c != '.'; }, '_');
    return hint + "-" + hexadecimal(stable_hash(path.string())) + "-";
}

// The folders above it are made too, for the owner alone.
bool make_folder(const std::filesystem::path& folder, Failure& why) {
    std::error_code unknown;
    if (folder.empty() || std::filesystem::is_directory(folder, unknown)) return true;
    if (folder == folder.parent_path()) return why.note(ENOENT);
    if (!make_folder(folder.parent_path(), why)) return false;
    return sys::mkdir(folder.c_str(), 0700) == 0 || errno == EEXIST || why.note_errno();
}

namespace {

std::string name_of(const std::string& file, std::uint64_t file_time, int attempt) {
    return recovery_prefix(file) + std::to_string(file_time) + "-" + std::to_string(getpid()) +
           "." + std::to_string(attempt).append(kSuffix);
}

// In the folder that `path` names a file in, without filling the disk.
bool has_room_for(std::uint64_t bytes, const std::string& path) {
    std::error_code unknown;
    const auto space = std::filesystem::space(folder_of(path), unknown);
    return !unknown && bytes <= space.available / 4;
}

std::string base_path(std::string_view path) {
    return std::string(path.substr(0, path.size() - kSuffix.size())).append(kBaseSuffix);
}

std::string base_comment(const TextIdentity& base) {
    return std::string(kBaseComment) + std::to_string(base.bytes) + " bytes " +
           hexadecimal(base.hash);
}

// What base_comment wrote.
std::optional<TextIdentity> base_in(std::string_view comment) {
    if (!comment.starts_with(kBaseComment)) return std::nullopt;
    comment.remove_prefix(kBaseComment.size());
    const char* end = comment.data() + comment.size();
    TextIdentity base;
    auto bytes = std::from_chars(comment.data(), end, base.bytes);
    const std::size_t hash = comment.find_last_of(' ') + 1;
    auto digits = std::from_chars(comment.data() + hash, end, base.hash, 16);
    bool whole = bytes.ec == std::errc() && digits.ec == std::errc() && digits.ptr == end;
    return whole ? std::optional(base) : std::nullopt;
}

bool is_free(int fd, Failure& why) {
    return flock(fd, LOCK_EX | LOCK_NB) == 0 || why.note_errno();
}

// The time of the file that a name tells of behind its prefix.
std::optional<std::uint64_t> file_time_in(std::string_view rest) {
    std::uint64_t time = 0;
    auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), time);
    bool whole = error == std::errc() && end != rest.data() + rest.size() && *end == '-';
    return whole ? std::optional(time) : std::nullopt;
}

// In pieces, since what was replaced in a large text is large. How many bytes there were;
// nothing when they could not be written.
std::optional<off_t> write_records(int fd, const std::vector<std::string>& statements,
                                   Failure& why) {
    constexpr std::size_t kPiece = std::size_t{256} << 10;
    std::string records;
    off_t written = 0;
    auto flush = [&] {
        written += static_cast<off_t>(records.size());
        bool good = write_all(fd, records, why);
        records.clear();
        return good;
    };
    for (const std::string& statement : statements) {
        add_journal_record(records, statement);
        if (records.size() >= kPiece && !flush()) return std::nullopt;
    }
    return flush() ? std::optional(written) : std::nullopt;
}

}  // namespace

std::optional<RecoveryFile> RecoveryFile::create(const std::string& folder, const std::string& file,
                                                 std::uint64_t file_time, const LineStore& base,
                                                 std::string& reason) {
    constexpr int kAttempts = 100;
    reason = distrust_of_folder(folder);
    if (!reason.empty()) return std::nullopt;
    Failure why;
    auto fail = [&] {
        reason = why.text();
        return std::nullopt;
    };
    if (!make_folder(folder, why)) return fail();
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        std::string path = folder + "/" + name_of(file, file_time, attempt);
        Descriptor made =
            open_file(path, O_WRONLY | O_CREAT | O_EXCL | O_APPEND | O_NOFOLLOW, kOwnerOnly, why);
        if (!made && why.error == EEXIST) continue;
        if (!made) return fail();
        struct stat status;
        if (is_free(made.get(), why) && tpu_journal_write_header(made.get(), why) &&
            (fstat(made.get(), &status) == 0 || why.note_errno())) {
            RecoveryFile created(std::move(made), path, status.st_size, base);
            if (created.append({base_comment(identity_of(base))}, reason)) return created;
            created.remove();
            return std::nullopt;
        }
        remove_recovery_file(path);
        return fail();
    }
    return fail();
}

bool RecoveryFile::append(const std::vector<std::string>& statements, std::string& reason) {
    HeldSignal size_limit(SIGXFSZ);
    // Half a record would make those behind it unreadable.
    Failure why, untold;
    auto repair = [&](Failure& why_not) {
        if (torn_) torn_ = sys::truncate(descriptor_.get(), size_) != 0;
        if (torn_) why_not.note_errno();
    };
    repair(why);
    const bool was_torn = torn_;
    torn_ = true;  // what has been written when memory runs out is part of a record, too
    const std::optional<off_t> added =
        was_torn ? std::nullopt : write_records(descriptor_.get(), statements, why);
    if (!added) reason = why.text();
    torn_ = !added;
    size_ += added.value_or(0);
    repair(untold);
    // So that a power cut does not take it. Where that fails the system has it at least.
    [[maybe_unused]] bool is_on_disk = added && sync_file(descriptor_.get(), untold);
    return added.has_value();
}

// Nothing is said of a failure: the base is needed only if the file changes too.
bool RecoveryFile::copy_base() {
    constexpr std::uint64_t kPart = std::uint64_t{1} << 20;
    const std::uint64_t size = base_.bytes();
    if (size > kLargestBase || base_copied_ == size) return false;
    if (base_copied_ == 0 && !has_room_for(size, path_)) return false;
    HeldSignal size_limit(SIGXFSZ);
    if (!base_copy_) {
        base_copy_ =
            open_file(base_path(path_), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, kOwnerOnly);
    }
    const std::uint64_t end = std::min(size, base_copied_ + kPart);
    bool good = static_cast<bool>(base_copy_);
    Failure untold;
    base_.for_each_span(base_copied_, end, [&](std::string_view span) {
        return good = good && write_all(base_copy_.get(), span, untold);
    });
    base_copied_ = good ? end : size;
    if (base_copied_ == size) base_copy_.close();
    return base_copied_ < size;
}

void RecoveryFile::remove() {
    remove_recovery_file(path_);
    descriptor_.close();
}

// The base first: without the work nobody would find it.
void remove_recovery_file(const std::string& path) {
    sys::unlink(base_path(path).c_str());
    sys::unlink(path.c_str());
}

std::optional<LineStore> LeftBehind::base_text() const {
    if (!base || base->bytes > RecoveryFile::kLargestBase) return std::nullopt;
    if (base->bytes == 0) return LineStore();
    Descriptor copy = open_file(base_path(path), O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
    if (!copy || !distrust_of_file(copy.get()).empty()) return std::nullopt;
    Failure untold;
    std::optional<InputFile> file = InputFile::of(std::move(copy), untold);
    const std::optional<std::string> text =
        file ? read_whole(*file, untold, base->bytes) : std::nullopt;
    if (!text) return std::nullopt;
    LineStore lines = LineStore::from_text(*text);
    bool whole = identity_of(lines) == *base;
    return whole ? std::optional(std::move(lines)) : std::nullopt;
}

std::vector<LeftBehind> left_behind(const std::string& folder, const std::string& file) {
    std::vector<LeftBehind> found;
    if (!distrust_of_folder(folder).empty()) return found;
    const std::string begin = recovery_prefix(file);
    Failure untold;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        std::string name = entry->path().filename().string();
        if (!name.starts_with(begin) || !name.ends_with(kSuffix)) continue;
        std::string_view rest = std::string_view(name).substr(begin.size());
        std::optional<std::uint64_t> file_time = file_time_in(rest);
        const std::string path = entry->path().string();
        Descriptor opened = open_file(path, O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
        if (!file_time || !opened || !distrust_of_file(opened.get()).empty() ||
            !is_free(opened.get(), untold)) {
            continue;
        }
        JournalReader reader(std::move(opened));
        std::string statement;
        bool holds_work = reader.next(statement);
        const std::optional<TextIdentity> base = base_in(statement);
        if (base) holds_work = reader.next(statement);
        if (holds_work) found.push_back({path, *file_time, file_mtime_ms(path), base});
    }
    std::sort(found.begin(), found.end(),
              [](const LeftBehind& a, const LeftBehind& b) { return a.time > b.time; });
    return found;
}

}  // namespace tpu
