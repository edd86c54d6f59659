#include "store/open_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <functional>
#include <limits>

#include "os/file_io.h"
#include "os/file_names.h"
#include "os/trust.h"
#include "store/recovery_files.h"

namespace tpu {

namespace {

// All sessions are of this program: they need no better number for a name than this.
off_t place_of(const std::string& file) {
    constexpr auto kMost = static_cast<std::size_t>(std::numeric_limits<off_t>::max());
    return static_cast<off_t>(std::hash<std::string>()(canonical_name(file)) % kMost);
}

struct flock lock_at(off_t place, short kind) {
    struct flock lock = {};
    lock.l_type = kind;
    lock.l_whence = SEEK_SET;
    lock.l_start = place;
    lock.l_len = 1;
    return lock;
}

}  // namespace

void OpenFiles::follow(const std::vector<std::unique_ptr<Buffer>>& buffers) {
    if (path_.empty()) return;
    std::map<std::string, off_t> open;
    for (const auto& buffer : buffers) {
        const std::string& name = buffer->file_name;
        if (name.empty()) continue;
        auto known = noted_.find(name);
        open.emplace(name, known != noted_.end() ? known->second : place_of(name));
    }
    if (open == noted_ || !is_ready()) return;
    for (const auto& [name, place] : noted_) {
        if (!open.contains(name)) lock(place, F_UNLCK);
    }
    // All of them, since several names may have one place.
    for (const auto& [name, place] : open) lock(place, F_RDLCK);
    noted_ = std::move(open);
}

// Noted first: of two that open a file at the same moment one at least is told.
std::string OpenFiles::news(const std::string& file) {
    if (file.empty() || !FileVersion::of(file) || noted_.contains(file) || !is_ready()) return {};
    const off_t place = noted_[file] = place_of(file);
    lock(place, F_RDLCK);
    struct flock other = lock_at(place, F_WRLCK);
    if (fcntl(locks_.get(), F_GETLK, &other) != 0 || other.l_type == F_UNLCK) return {};
    const std::string who = other.l_pid > 0 ? " (process " + std::to_string(other.l_pid) + ")" : "";
    return file + " is open in another session" + who;
}

bool OpenFiles::is_ready() {
    if (locks_) return true;
    if (path_.empty()) return false;
    const std::string folder = folder_of(path_);
    Failure untold;
    if (distrust_of_folder(folder).empty() && make_folder(folder, untold)) {
        locks_ = open_file(path_, O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK, 0600);
    }
    if (!locks_) path_.clear();  // once is enough
    return static_cast<bool>(locks_);
}

void OpenFiles::lock(off_t place, short kind) {
    struct flock wanted = lock_at(place, kind);
    fcntl(locks_.get(), F_SETLK, &wanted);
}

}  // namespace tpu
