#include "store/names_beside.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>

#include "os/file_io.h"
#include "text/charset.h"
#include "text/stable_hash.h"

namespace tpu {

namespace {

std::size_t longest_name_in(const std::string& folder) {
    const long longest = pathconf(folder.c_str(), _PC_NAME_MAX);
    return longest > 0 ? static_cast<std::size_t>(longest) : 255;
}

std::string shortened(const std::string& name, std::size_t size) {
    if (name.size() <= size) return name;
    char number[16];
    const int length = std::snprintf(number, sizeof number, "~%08x",
                                     static_cast<unsigned>(stable_hash(name) & 0xffffffffU));
    std::string cut = name.substr(0, size - static_cast<std::size_t>(length));
    cut.resize(cut.size() - cut_character(cut));
    return cut + number;
}

}  // namespace

std::string name_beside(const std::string& path, std::string_view before, std::string_view behind) {
    const std::filesystem::path whole(path);
    const std::size_t room = longest_name_in(folder_of(path)) - before.size() - behind.size();
    std::string name(before);
    name.append(shortened(whole.filename().string(), room)).append(behind);
    return (whole.parent_path() / name).string();
}

bool is_symbolic_link(const std::string& path) {
    struct stat status;
    return lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

std::string real_name(const std::string& path, Failure& why) {
    constexpr int kMostLinks = 40;
    std::error_code unknown;
    std::filesystem::path real = std::filesystem::weakly_canonical(path, unknown);
    for (int links = 0; !unknown && is_symbolic_link(real.string()); ++links) {
        if (links == kMostLinks)
            unknown = std::make_error_code(std::errc::too_many_symbolic_link_levels);
        if (unknown) break;
        const std::filesystem::path next = std::filesystem::read_symlink(real, unknown);
        if (!unknown) real = std::filesystem::weakly_canonical(real.parent_path() / next, unknown);
    }
    if (unknown) why.note(unknown.value());
    return unknown ? std::string() : real.string();
}

}  // namespace tpu
