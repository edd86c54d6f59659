// The calls of the system by which a program of the language can reach it, in place
// of those of the C library. For glibc.
#include "outside.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <glob.h>
#include <spawn.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <filesystem>

namespace tpu::fuzz {

namespace {

bool is_closed = false;

template <class Function>
Function* library_function(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

std::string& scratch_folder() {
    static std::string folder;
    return folder;
}

void remove_scratch_folder() {
    std::error_code ignored;
    std::filesystem::remove_all(scratch_folder(), ignored);
}

}  // namespace

NoOutside::NoOutside() {
    is_closed = true;
}

NoOutside::~NoOutside() {
    is_closed = false;
}

void enter_scratch_folder() {
    std::string name = (std::filesystem::temp_directory_path() / "tpu-fuzz-XXXXXX").string();
    if (!mkdtemp(name.data()) || chdir(name.c_str()) != 0) std::abort();
    scratch_folder() = name;
    std::atexit(remove_scratch_folder);
}

}  // namespace tpu::fuzz

// The fuzzer itself uses some of them too, between the runs of what is fuzzed.
extern "C" {

int posix_spawn(pid_t* pid, const char* path, const posix_spawn_file_actions_t* actions,
                const posix_spawnattr_t* attributes, char* const* arguments,
                char* const* environment) {
    using namespace tpu::fuzz;
    if (is_closed) return EAGAIN;
    return library_function<decltype(posix_spawn)>("posix_spawn")(pid, path, actions, attributes,
                                                                  arguments, environment);
}

int system(const char* command) {
    using namespace tpu::fuzz;
    if (is_closed) return -1;
    return library_function<decltype(system)>("system")(command);
}

int open(const char* path, int flags, ...) {
    using namespace tpu::fuzz;
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    if (is_closed) {
        errno = ENFILE;
        return -1;
    }
    return library_function<decltype(open)>("open")(path, flags, mode);
}

int mkostemp(char* name, int flags) {
    using namespace tpu::fuzz;
    if (is_closed) {
        errno = ENFILE;
        return -1;
    }
    return library_function<decltype(mkostemp)>("mkostemp")(name, flags);
}

int glob(const char* pattern, int flags, int (*error)(const char*, int), glob_t* found) noexcept {
    using namespace tpu::fuzz;
    if (is_closed) return GLOB_NOMATCH;
    return library_function<decltype(glob)>("glob")(pattern, flags, error, found);
}

}  // extern "C"
