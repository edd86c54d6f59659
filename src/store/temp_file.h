// A new file that vanishes unless it is given a name to stay under.
#pragma once

#include <string>

#include "core/system_calls.h"
#include "store/file_io.h"

namespace tpu {

class TempFile {
  public:
    // In the folder that `path` names a file in; nobody else may read it yet.
    explicit TempFile(const std::string& path) : name_(folder_of(path) + "/.tpu-XXXXXX") {
        file_ = Descriptor(sys::make_temporary(name_.data()));
        exists_ = static_cast<bool>(file_);
    }
    ~TempFile() {
        if (exists_) sys::unlink(name_.c_str());
    }
    TempFile(const TempFile&) = delete;
    TempFile& operator=(const TempFile&) = delete;

    explicit operator bool() const { return exists_; }
    int fd() const { return file_.get(); }
    const std::string& name() const { return name_; }
    [[nodiscard]] bool close() { return file_.close(); }

    // Takes the name `path`, from another file if need be. False, with errno set,
    // when that fails.
    [[nodiscard]] bool rename_to(const std::string& path) {
        if (sys::rename(name_.c_str(), path.c_str()) != 0) return false;
        keep();
        return true;
    }
    // Stays, under its present name.
    void keep() { exists_ = false; }

  private:
    std::string name_;
    Descriptor file_;
    bool exists_ = false;
};

}  // namespace tpu
