// Real files for tests.
#pragma once

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

namespace tpu {

// A folder of its own for a test, gone with all that is in it at the end.
class TempFolder {
  public:
    explicit TempFolder(const std::string& parent = testing::TempDir())
        : name_(parent + "/tpu-test-XXXXXX") {
        if (!mkdtemp(name_.data())) ADD_FAILURE() << "no folder " << name_;
    }
    ~TempFolder() { std::filesystem::remove_all(name_); }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    std::string path(const std::string& file) const { return name_ + "/" + file; }
    std::string write(const std::string& file, const std::string& text) const {
        std::ofstream(path(file), std::ios::binary) << text;
        return path(file);
    }
    std::string read(const std::string& file) const {
        std::ifstream in(path(file), std::ios::binary);
        if (!in) return "(no file)";
        return {std::istreambuf_iterator<char>(in), {}};
    }
    std::set<std::string> files() const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(name_)) {
            names.insert(entry.path().filename().string());
        }
        return names;
    }

  private:
    std::string name_;
};

// Where there is no disk to wait for, if the system has such a place.
inline std::string folder_in_memory() {
    return access("/dev/shm", W_OK | X_OK) == 0 ? "/dev/shm" : testing::TempDir();
}

inline struct stat status_of(const std::string& path) {
    struct stat status = {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status;
}

// Files cannot grow past a size for a while.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &before_);
        rlimit limit{bytes, before_.rlim_max};
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &before_); }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

  private:
    rlimit before_ = {};
};

}  // namespace tpu
