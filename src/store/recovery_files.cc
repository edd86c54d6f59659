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

#include "core/ascii.h"
#include "core/buffer.h"
#include "core/held_signal.h"
#include "core/system_calls.h"
#include "store/file_io.h"
#include "store/journal.h"

namespace tpu {

namespace {

constexpr mode_t kOwnerOnly = 0600;
constexpr const char* kSuffix = ".tpjb";

// FNV-1a: the same on every machine and in every version.
std::uint64_t hash(std::string_view text) {
    std::uint64_t value = 14695981039346656037U;
    for (char c : text) {
        value = (value ^ static_cast<unsigned char>(c)) * 1099511628211U;
    }
    return value;
}

// What the names of all recovery files of a file begin with: a hint for people, and a
// number for the file.
std::string prefix(const std::string& file) {
    constexpr std::size_t kLongestHint = 64;
    std::error_code error;
    // A bare name of a file that is still to be made would be canonical as it is.
    const std::filesystem::path whole = std::filesystem::absolute(file, error);
    std::filesystem::path path = std::filesystem::weakly_canonical(whole, error);
    if (error) path = whole;
    std::string hint = path.filename().string().substr(0, kLongestHint);
    std::replace_if(
        hint.begin(), hint.end(),
        [](char c) { return !ascii::is_letter(c) && !ascii::is_digit(c) && c != '.'; }, '_');
    char number[32];
    std::snprintf(number, sizeof number, "%016llx",
                  static_cast<unsigned long long>(hash(path.string())));
    return hint + "-" + number + "-";
}

std::string name_of(const std::string& file, std::uint64_t file_time, int attempt) {
    return prefix(file) + std::to_string(file_time) + "-" + std::to_string(getpid()) + "." +
           std::to_string(attempt) + kSuffix;
}

// Makes what is missing of the folder, for the owner alone.
bool make_folder(const std::filesystem::path& folder) {
    std::error_code unknown;
    if (folder.empty() || std::filesystem::is_directory(folder, unknown)) return true;
    if (folder == folder.parent_path() || !make_folder(folder.parent_path())) return false;
    return sys::mkdir(folder.c_str(), 0700) == 0 || errno == EEXIST;
}

bool is_free(int fd) {
    return flock(fd, LOCK_EX | LOCK_NB) == 0;
}

// The time of the file that a name tells of behind its prefix.
std::optional<std::uint64_t> file_time_in(std::string_view rest) {
    std::uint64_t time = 0;
    auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), time);
    bool whole = error == std::errc() && end != rest.data() + rest.size() && *end == '-';
    return whole ? std::optional(time) : std::nullopt;
}

void add_record(std::string& records, std::string_view statement) {
    auto size = static_cast<std::uint32_t>(statement.size());
    for (int shift = 0; shift < 32; shift += 8) {
        records += static_cast<char>(size >> shift & 0xff);
    }
    records += statement;
}

// In pieces, since what was replaced in a large text is large. How many bytes there were;
// nothing when they could not be written.
std::optional<off_t> write_records(int fd, const std::vector<std::string>& statements) {
    constexpr std::size_t kPiece = std::size_t{256} << 10;
    std::string records;
    off_t written = 0;
    auto flush = [&] {
        written += static_cast<off_t>(records.size());
        bool good = write_all(fd, records);
        records.clear();
        return good;
    };
    for (const std::string& statement : statements) {
        add_record(records, statement);
        if (records.size() >= kPiece && !flush()) return std::nullopt;
    }
    return flush() ? std::optional(written) : std::nullopt;
}

}  // namespace

std::optional<RecoveryFile> RecoveryFile::create(const std::string& folder, const std::string& file,
                                                 std::uint64_t file_time) {
    constexpr int kAttempts = 100;
    if (!make_folder(folder)) return std::nullopt;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        std::string path = folder + "/" + name_of(file, file_time, attempt);
        Descriptor made =
            open_file(path, O_WRONLY | O_CREAT | O_EXCL | O_APPEND | O_NOFOLLOW, kOwnerOnly);
        if (!made && errno == EEXIST) continue;
        if (!made) return std::nullopt;
        struct stat status;
        if (is_free(made.get()) && tpu_journal_write_header(made.get()) &&
            fstat(made.get(), &status) == 0) {
            return RecoveryFile(std::move(made), path, status.st_size);
        }
        remove_recovery_file(path);
        return std::nullopt;
    }
    return std::nullopt;
}

bool RecoveryFile::append(const std::vector<std::string>& statements) {
    HeldSignal size_limit(SIGXFSZ);
    // Half a record would make those behind it unreadable.
    auto mend = [&] { torn_ = torn_ && sys::truncate(descriptor_.get(), size_) != 0; };
    mend();
    if (torn_) return false;
    const std::optional<off_t> added = write_records(descriptor_.get(), statements);
    torn_ = !added;
    size_ += added.value_or(0);
    mend();
    // So that a power cut does not take it. Where that fails the system has it at least.
    [[maybe_unused]] bool is_on_disk = added && sync_file(descriptor_.get());
    return added.has_value();
}

void RecoveryFile::remove() {
    remove_recovery_file(path_);
    descriptor_.close();
}

void remove_recovery_file(const std::string& path) {
    sys::unlink(path.c_str());
}

std::vector<LeftBehind> left_behind(const std::string& folder, const std::string& file) {
    std::vector<LeftBehind> found;
    const std::string begin = prefix(file);
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        std::string name = entry->path().filename().string();
        if (!name.starts_with(begin) || !name.ends_with(kSuffix)) continue;
        std::string_view rest = std::string_view(name).substr(begin.size());
        std::optional<std::uint64_t> file_time = file_time_in(rest);
        Descriptor opened = open_file(entry->path().string(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
        if (!file_time || !opened || !is_free(opened.get())) continue;
        found.push_back(
            {entry->path().string(), *file_time, Buffer::file_mtime_ms(entry->path().string())});
    }
    std::sort(found.begin(), found.end(),
              [](const LeftBehind& a, const LeftBehind& b) { return a.time > b.time; });
    return found;
}

}  // namespace tpu
