#include "os/file_names.h"

#include <sys/stat.h>

#include <filesystem>

namespace tpu {

bool is_same_file(const std::string& a, const std::string& b) {
    struct stat first, second;
    bool have_first = stat(a.c_str(), &first) == 0, have_second = stat(b.c_str(), &second) == 0;
    if (have_first && have_second) {
        return first.st_dev == second.st_dev && first.st_ino == second.st_ino;
    }
    if (have_first != have_second) return false;
    std::error_code error;
    return std::filesystem::absolute(a, error).lexically_normal() ==
           std::filesystem::absolute(b, error).lexically_normal();
}

std::string canonical_name(const std::string& path) {
    std::error_code error;
    // A bare name of a file that is still to be made would be canonical as it is.
    const std::filesystem::path whole = std::filesystem::absolute(path, error);
    const std::filesystem::path name = std::filesystem::weakly_canonical(whole, error);
    return (error ? whole : name).string();
}

}  // namespace tpu
