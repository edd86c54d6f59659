#include "store/old_text.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>
#include <vector>

#include "os/file_io.h"
#include "os/system_calls.h"
#include "os/trust.h"
#include "store/names_beside.h"
#include "store/recovery_files.h"

namespace tpu {

namespace {

constexpr int kMostKept = 9;  // former texts of one file

std::string& folder() {
    static std::string folder;
    return folder;
}

std::vector<std::string> names_in_folder_of(const std::string& path) {
    std::vector<std::string> names{name_beside(path, ".", ".tpu-old")};
    for (int n = 2; n <= kMostKept; ++n) {
        names.push_back(name_beside(path, ".", ".tpu-old-" + std::to_string(n)));
    }
    return names;
}

std::vector<std::string> names_in_own_folder(const std::string& path) {
    std::vector<std::string> names;
    for (int n = 1; n <= kMostKept && !folder().empty(); ++n) {
        names.push_back(folder() + "/" + recovery_prefix(path) + std::to_string(n) + ".tpu-old");
    }
    return names;
}

// The names that a new copy may get. None: there is no place for it, in the end since there is
// none beside the file.
std::vector<std::string> usable_names(const std::string& path, Failure& why) {
    if (takes_files(path, why)) return names_in_folder_of(path);
    Failure untold;
    std::vector<std::string> names = names_in_own_folder(path);
    const bool is_ours = !names.empty() && distrust_of_folder(folder()).empty();
    if (!is_ours || !make_folder(folder(), untold)) names.clear();
    return names;
}

bool is_there(const std::string& name) {
    struct stat status;
    return lstat(name.c_str(), &status) == 0;
}

// Frees a name of a text that the file has still, since its writing never began.
bool clear_copy(int fd, const std::string& name) {
    const Descriptor left = open_left_behind(name);
    return left && have_same_text(left.get(), fd) && sys::unlink(name.c_str()) == 0;
}

// Empty: there is none.
std::string free_name(int fd, const std::string& path, Failure& why) {
    const std::vector<std::string> names = usable_names(path, why);
    for (const std::string& name : names) {
        if (!is_there(name) || clear_copy(fd, name)) return name;
    }
    if (!names.empty()) why.note(EEXIST);
    return {};
}

// The time of the file, so that what was kept of unsaved work fits the copy in its place.
bool copy_time(int from, int to, Failure& why) {
    struct stat status;
    if (fstat(from, &status) != 0) return why.note_errno();
#ifdef __APPLE__
    const timespec times[2] = {status.st_atimespec, status.st_mtimespec};
#else
    const timespec times[2] = {status.st_atim, status.st_mtim};
#endif
    return futimens(to, times) == 0 || why.note_errno();
}

bool is_text_of(int fd, const std::string& path) {
    const Descriptor file = open_file(path, O_RDONLY | O_NONBLOCK | O_NOCTTY);
    return file && have_same_text(fd, file.get());
}

}  // namespace

void keep_old_texts_in(const std::string& wanted) {
    folder() = wanted;
}

std::unique_ptr<TempFile> keep_old_text(int fd, const std::string& path, Failure& why) {
    const std::string name = free_name(fd, path, why);
    if (name.empty()) return nullptr;
    auto copy = std::make_unique<TempFile>(name, why);
    bool is_kept = *copy && rewind_file(fd, why) && copy_all(fd, copy->fd(), why) &&
                   copy_time(fd, copy->fd(), why) && sync_file(copy->fd(), why) &&
                   copy->move_to_new(name, why) && sync_folder_of(name, why);
    return is_kept ? std::move(copy) : nullptr;
}

std::optional<std::string> interrupted_save(const std::string& path) {
    Failure untold;
    const std::string real = is_symbolic_link(path) ? real_name(path, untold) : path;
    if (real.empty()) return std::nullopt;
    for (const auto& names : {names_in_folder_of(real), names_in_own_folder(real)}) {
        for (const std::string& name : names) {
            const Descriptor left = open_left_behind(name);
            if (left && !is_text_of(left.get(), real)) return name;
        }
    }
    return std::nullopt;
}

}  // namespace tpu
