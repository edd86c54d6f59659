#include "store/safe_write.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <optional>
#include <utility>

#include "os/file_io.h"
#include "os/file_names.h"
#include "os/file_traits.h"
#include "os/held_signal.h"
#include "os/system_calls.h"
#include "store/names_beside.h"
#include "store/old_text.h"
#include "store/temp_file.h"

namespace tpu {

namespace {

struct Job {
    std::string path;    // of the file itself, which no link leads on from
    std::string backup;  // beside the name that was given
    bool keep_backup;
    const WriteText& write;
    std::string note;  // what was done without
    Failure why;
};

// Our own output, for the names that stand for it. Opening such a name would begin
// at the front of a file that output was redirected to.
Descriptor own_output(const std::string& path) {
    if (path == "/dev/stdout") return Descriptor(dup(STDOUT_FILENO));
    if (path == "/dev/stderr") return Descriptor(dup(STDERR_FILENO));
    return {};
}

// Something other than a regular file, for writing.
Descriptor open_stream(const std::string& path, const struct stat& status, Failure& why) {
    if (!S_ISFIFO(status.st_mode)) return open_file(path, O_WRONLY | O_NOCTTY, 0, why);
    // A pipe that nobody reads is a failure; waiting for a reader would hang the editor.
    Descriptor pipe = open_file(path, O_WRONLY | O_NONBLOCK, 0, why);
    bool is_ready = pipe && (fcntl(pipe.get(), F_SETFL, 0) == 0 || why.note_errno());
    return is_ready ? std::move(pipe) : Descriptor();
}

bool write_stream(Job& job, Descriptor stream) {
    if (!stream) return false;
    // The bytes of a text would steer a terminal, most likely the one we draw on.
    if (isatty(stream.get())) return job.why.note(ENOTSUP, "It is a terminal");
    if (!job.write(stream.get(), job.why)) return false;
    // Few devices can be synced, but one that tried and could not has lost the text.
    return (sync_file(stream.get(), job.why) || job.why.error != EIO) && stream.close(job.why);
}

// A name without a file. Nobody sees it before all of the text is there.
bool create_file(Job& job) {
    TempFile fresh(job.path, job.why, 0666);
    return fresh && job.write(fresh.fd(), job.why) && sync_file(fresh.fd(), job.why) &&
           fresh.rename_to_new(job.path, job.why) && fresh.close(job.why) &&
           sync_folder_of(job.path, job.why);
}

// A backup that cannot be had since its folder takes no files is done without: it would be
// worse not to be able to save.
bool do_without_backup(Job& job) {
    Failure untold;
    if (takes_files(job.backup, untold)) return false;
    job.note = "no .bak: the folder is read-only";
    return true;
}

bool copy_to_backup(Job& job, int from, const FileTraits& old) {
    TempFile copy(job.backup, job.why);
    if (!copy) return do_without_backup(job);
    if (!rewind_file(from, job.why) || !copy_all(from, copy.fd(), job.why)) return false;
    set_traits_of_copy(copy.fd(), copy.name(), old);
    return sync_file(copy.fd(), job.why) && copy.rename_to(job.backup, job.why);
}

// Gives the file its backup name too, or a copy of it where it cannot have two.
bool make_backup(Job& job, const FileTraits& old) {
    const char *path = job.path.c_str(), *backup = job.backup.c_str();
    if (sys::unlink(backup) != 0 && errno != ENOENT) {
        job.why.note_errno();
        return do_without_backup(job);
    }
    if (sys::link(path, backup) == 0) return true;
    Descriptor file = open_file(job.path, O_RDONLY, 0, job.why);
    return file && copy_to_backup(job, file.get(), old);
}

enum class Outcome { saved, failed, not_replaceable };

Outcome replace_file(Job& job, const FileTraits& old) {
    Failure& why = job.why;
    TempFile fresh(job.path, why);
    if (!fresh) {
        Failure untold;
        return takes_files(job.path, untold) ? Outcome::failed : Outcome::not_replaceable;
    }
    if (!set_traits(fresh.fd(), fresh.name(), old)) return Outcome::not_replaceable;
    // Writing takes set-id bits away, so the mode is given once more.
    auto give_mode = [&] { return sys::chmod(fresh.fd(), old.mode) == 0 || why.note_errno(); };
    if (!job.write(fresh.fd(), why) || !give_mode() || !sync_file(fresh.fd(), why) ||
        (job.keep_backup && !make_backup(job, old))) {
        return Outcome::failed;
    }
    if (!fresh.rename_to(job.path, why)) {
        // A file that is a mount point keeps its place.
        const bool stays = why.error == EBUSY || why.error == EXDEV;
        if (job.keep_backup) sys::unlink(job.backup.c_str());
        return stays ? Outcome::not_replaceable : Outcome::failed;
    }
    return fresh.close(why) && sync_folder_of(job.path, why) ? Outcome::saved : Outcome::failed;
}

// Fills an open file from its begin and cuts off what is left behind the new text.
bool overwrite(int fd, const WriteText& write, Failure& why) {
    if (!rewind_file(fd, why) || !write(fd, why)) return false;
    if (sys::truncate(fd, lseek(fd, 0, SEEK_CUR)) != 0) return why.note_errno();
    return sync_file(fd, why);
}

// What was kept of the old text for the time of writing becomes the backup.
bool turn_into_backup(Job& job, TempFile& kept, const FileTraits& old) {
    if (!kept.rename_to(job.backup, job.why)) {
        const bool is_far = job.why.error == EXDEV;
        return is_far ? copy_to_backup(job, kept.fd(), old) : do_without_backup(job);
    }
    set_traits_of_copy(kept.fd(), job.backup, old);
    return true;
}

bool is_folder(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool rewrite_file(Job& job, const FileTraits& old) {
    if (job.keep_backup && is_folder(job.backup)) return job.why.note(EISDIR);
    Descriptor file = open_file(job.path, O_RDWR, 0, job.why);
    if (!file) return false;
    const std::unique_ptr<TempFile> kept = keep_old_text(file.get(), job.path, job.why);
    if (!kept) return false;
    if (overwrite(file.get(), job.write, job.why) &&
        (!job.keep_backup || turn_into_backup(job, *kept, old))) {
        return file.close(job.why);
    }
    auto put_back = [&](int fd, Failure& why) {
        return rewind_file(kept->fd(), why) && copy_all(kept->fd(), fd, why);
    };
    Failure untold;
    if (!overwrite(file.get(), put_back, untold)) {
        // Now the copy is all there is of the old text.
        kept->keep();
        job.note = "; the former text is in " + kept->name();
    }
    return false;
}

bool may_write(const std::string& path, Failure& why) {
    return faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0 || why.note_errno();
}

// Its name is its only one, but for a backup name that it got from a save that was cut short.
bool can_be_replaced(const Job& job, const struct stat& status) {
    if (is_symbolic_link(job.path)) return false;
    return status.st_nlink == 1 ||
           (status.st_nlink == 2 && job.keep_backup && is_same_file(job.path, job.backup));
}

// To a regular file, or one that is still to be made.
bool write_regular(Job& job, const struct stat* status) {
    if (!status) return create_file(job);
    // A protected file is replaced only where its text stays as a backup.
    if (!job.keep_backup && !may_write(job.path, job.why)) return false;
    std::optional<FileTraits> old = traits_of(job.path);
    if (!old) return job.why.note(ENOENT);  // somebody has just removed it
    if (can_be_replaced(job, *status)) {
        Outcome outcome = replace_file(job, *old);
        if (outcome != Outcome::not_replaceable) return outcome == Outcome::saved;
    }
    return rewrite_file(job, *old);
}

// The name of what `path` leads to; its own where that cannot be told.
std::string name_behind(const std::string& path, bool exists, Failure& why) {
    if (!is_symbolic_link(path)) return path;
    std::string real = real_name(path, why);
    return exists && !is_same_file(real, path) ? path : real;
}

bool write_anything(Job& job) {
    if (Descriptor output = own_output(job.path)) return write_stream(job, std::move(output));
    struct stat status;
    const bool exists = stat(job.path.c_str(), &status) == 0;
    if (!exists && errno != ENOENT) return job.why.note_errno();
    if (exists && !S_ISREG(status.st_mode)) {
        return write_stream(job, open_stream(job.path, status, job.why));
    }
    job.path = name_behind(job.path, exists, job.why);
    return !job.path.empty() && write_regular(job, exists ? &status : nullptr);
}

}  // namespace

bool write_safely(const std::string& path, bool keep_backup, const WriteText& write,
                  std::string& note) {
    // Lets writes fail that would otherwise end the program.
    HeldSignal size_limit(SIGXFSZ), no_reader(SIGPIPE);
    Job job{path, name_beside(path, "", ".bak"), keep_backup, write, {}, {}};
    const bool written = write_anything(job);
    note = written ? job.note : job.why.text() + job.note;
    return written;
}

bool write_at_once(const std::string& path, const WriteText& write, Failure& why) {
    HeldSignal size_limit(SIGXFSZ);
    const std::string real = real_name(path, why);
    if (real.empty()) return false;
    struct stat status;
    bool exists = stat(real.c_str(), &status) == 0;
    if (exists && (!is_regular(status, why) || !may_write(real, why))) return false;
    TempFile fresh(real, why, exists ? 0600 : 0666);
    if (!fresh || !write(fresh.fd(), why)) return false;
    std::optional<FileTraits> old = exists ? traits_of(real) : std::nullopt;
    if (old) set_traits(fresh.fd(), fresh.name(), *old);
    return sync_file(fresh.fd(), why) && fresh.rename_to(real, why) && fresh.close(why) &&
           sync_folder_of(real, why);
}

}  // namespace tpu
