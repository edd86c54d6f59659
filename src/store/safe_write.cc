#include "store/safe_write.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <utility>

#include "core/held_signal.h"
#include "core/system_calls.h"
#include "store/file_io.h"
#include "store/file_traits.h"
#include "store/temp_file.h"

namespace tpu {

namespace {

struct Job {
    const std::string& path;
    std::string backup;
    bool keep_backup;
    const WriteText& write;
};

bool is_symbolic_link(const std::string& path) {
    struct stat status;
    return lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

// Our own output, for the names that stand for it. Opening such a name would begin
// at the front of a file that output was redirected to.
Descriptor own_output(const std::string& path) {
    if (path == "/dev/stdout") return Descriptor(dup(STDOUT_FILENO));
    if (path == "/dev/stderr") return Descriptor(dup(STDERR_FILENO));
    return {};
}

// Something other than a regular file, for writing.
Descriptor open_stream(const std::string& path, const struct stat& status) {
    if (!S_ISFIFO(status.st_mode)) return open_file(path, O_WRONLY | O_NOCTTY);
    // A pipe that nobody reads is a failure; waiting for a reader would hang the editor.
    Descriptor pipe = open_file(path, O_WRONLY | O_NONBLOCK);
    if (pipe && fcntl(pipe.get(), F_SETFL, 0) != 0) return {};
    return pipe;
}

bool write_stream(const Job& job, Descriptor stream) {
    // The bytes of a text would steer a terminal, most likely the one we draw on.
    if (!stream || isatty(stream.get()) || !job.write(stream.get())) return false;
    // Few devices can be synced, but one that tried and could not has lost the text.
    return (sync_file(stream.get()) || errno != EIO) && stream.close();
}

// A name without a file; the name may be a symbolic link that leads nowhere.
bool create_file(const Job& job) {
    bool is_link = is_symbolic_link(job.path);
    std::string real = job.path;
    Descriptor fresh = open_file(job.path, O_WRONLY | O_CREAT | (is_link ? 0 : O_EXCL), 0666);
    if (!fresh) return false;
    std::error_code unknown;
    if (is_link) real = std::filesystem::canonical(job.path, unknown).string();
    if (job.write(fresh.get()) && sync_file(fresh.get()) && fresh.close() && sync_folder_of(real)) {
        return true;
    }
    sys::unlink(real.c_str());
    return false;
}

enum class Outcome { saved, failed, not_replaceable };

// What a failed rename or link means: a file that is a mount point keeps its place.
Outcome outcome_of_rename() {
    return errno == EBUSY || errno == EXDEV ? Outcome::not_replaceable : Outcome::failed;
}

// Gives the file its backup name, besides its own where the file system has links.
bool link_backup(const Job& job) {
    const char *path = job.path.c_str(), *backup = job.backup.c_str();
    if (sys::unlink(backup) != 0 && errno != ENOENT) return false;
    return sys::link(path, backup) == 0 || sys::rename(path, backup) == 0;
}

void unlink_backup(const Job& job) {
    // The rename does nothing when both names still mean one file.
    if (sys::rename(job.backup.c_str(), job.path.c_str()) == 0) sys::unlink(job.backup.c_str());
}

Outcome replace_file(const Job& job, const FileTraits& old) {
    TempFile fresh(job.path);
    if (!fresh) return Outcome::failed;
    set_traits(fresh.fd(), old);
    if (traits_of(fresh.name()) != old) return Outcome::not_replaceable;
    // Writing takes set-id bits away, so the mode is given once more.
    if (!job.write(fresh.fd()) || sys::chmod(fresh.fd(), old.mode) != 0 || !sync_file(fresh.fd()) ||
        !fresh.close()) {
        return Outcome::failed;
    }
    if (job.keep_backup && !link_backup(job)) return outcome_of_rename();
    if (!fresh.rename_to(job.path)) {
        Outcome outcome = outcome_of_rename();
        if (job.keep_backup) unlink_backup(job);
        return outcome;
    }
    return sync_folder_of(job.path) ? Outcome::saved : Outcome::failed;
}

// Fills an open file from its begin and cuts off what is left behind the new text.
bool overwrite(int fd, const WriteText& write) {
    return lseek(fd, 0, SEEK_SET) == 0 && write(fd) &&
           sys::truncate(fd, lseek(fd, 0, SEEK_CUR)) == 0 && sync_file(fd);
}

bool rewrite_file(const Job& job, const FileTraits& old) {
    Descriptor file = open_file(job.path, O_RDWR);
    if (!file) return false;
    TempFile copy(job.path);
    if (!copy || !copy_all(file.get(), copy.fd())) return false;
    set_traits_of_copy(copy.fd(), old);
    if (!sync_file(copy.fd())) return false;
    if (job.keep_backup && !copy.rename_to(job.backup)) return false;
    if (!sync_folder_of(job.path)) return false;

    if (overwrite(file.get(), job.write) && file.close()) return true;
    auto put_back = [&](int fd) {
        return lseek(copy.fd(), 0, SEEK_SET) == 0 && copy_all(copy.fd(), fd);
    };
    if (overwrite(file.get(), put_back) || job.keep_backup) return false;
    // Now the copy is all there is of the old text. If the name cannot be had, it
    // stays under its own.
    if (!copy.rename_to(job.backup)) copy.keep();
    return false;
}

// Of a new file.
mode_t usual_mode() {
    mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

// The name of the file itself that a path leads to, through links to a file that is still
// to be made too. Empty: there cannot be one.
std::string real_name(const std::string& path) {
    constexpr int kMostLinks = 40;
    std::error_code unknown;
    std::filesystem::path real = std::filesystem::weakly_canonical(path, unknown);
    for (int links = 0; !unknown && is_symbolic_link(real.string()); ++links) {
        if (links == kMostLinks) return {};
        const std::filesystem::path next = std::filesystem::read_symlink(real, unknown);
        if (!unknown) real = std::filesystem::weakly_canonical(real.parent_path() / next, unknown);
    }
    return unknown ? std::string() : real.string();
}

bool can_be_replaced(const std::string& path, const struct stat& status) {
    return status.st_nlink == 1 && !is_symbolic_link(path);
}

}  // namespace

bool write_safely(const std::string& path, bool keep_backup, const WriteText& write) {
    // Lets writes fail that would otherwise end the program.
    HeldSignal size_limit(SIGXFSZ), no_reader(SIGPIPE);
    Job job{path, path + ".bak", keep_backup, write};
    if (Descriptor output = own_output(path)) return write_stream(job, std::move(output));
    struct stat status;
    if (stat(path.c_str(), &status) != 0) return errno == ENOENT && create_file(job);
    if (!S_ISREG(status.st_mode)) return write_stream(job, open_stream(path, status));
    // A protected file is replaced only where its text stays as a backup.
    if (!keep_backup && faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0) return false;

    std::optional<FileTraits> old = traits_of(path);
    if (!old) return false;
    if (can_be_replaced(path, status)) {
        Outcome outcome = replace_file(job, *old);
        if (outcome != Outcome::not_replaceable) return outcome == Outcome::saved;
    }
    return rewrite_file(job, *old);
}

bool write_at_once(const std::string& path, const WriteText& write) {
    HeldSignal size_limit(SIGXFSZ);
    const std::string real = real_name(path);
    if (real.empty()) return false;
    struct stat status;
    bool exists = stat(real.c_str(), &status) == 0;
    if (exists &&
        (!S_ISREG(status.st_mode) || faccessat(AT_FDCWD, real.c_str(), W_OK, AT_EACCESS) != 0)) {
        return false;
    }
    TempFile fresh(real);
    if (!fresh || !write(fresh.fd())) return false;
    std::optional<FileTraits> old = exists ? traits_of(real) : std::nullopt;
    if (old) {
        set_traits(fresh.fd(), *old);
    } else if (sys::chmod(fresh.fd(), usual_mode()) != 0) {
        return false;
    }
    return sync_file(fresh.fd()) && fresh.close() && fresh.rename_to(real) && sync_folder_of(real);
}

}  // namespace tpu
