// A new file that vanishes unless it is given a name to stay under.
//
// Its name follows from that of the file that it is made for. So what a session that was
// killed has left is found without a look through the folder, and cleared by the next
// session that makes one. It is locked, which tells it from one that is still written.
#pragma once

#include <string>

#include "os/file_io.h"

namespace tpu {

class TempFile {
  public:
    // In the folder that `path` names a file in. Nobody else may read it yet, unless the
    // mode lets them.
    TempFile(const std::string& path, Failure& why, mode_t mode = 0600);
    ~TempFile();
    TempFile(const TempFile&) = delete;
    TempFile& operator=(const TempFile&) = delete;

    explicit operator bool() const { return exists_; }
    int fd() const { return file_.get(); }
    const std::string& name() const { return name_; }
    [[nodiscard]] bool close(Failure& why) { return file_.close(why); }

    // Takes the name `path` for good, from another file if need be.
    [[nodiscard]] bool rename_to(const std::string& path, Failure& why);
    // The same, but no other file may have that name.
    [[nodiscard]] bool rename_to_new(const std::string& path, Failure& why);
    // Has another name from now on, which no other file may have, and vanishes all the same.
    [[nodiscard]] bool move_to_new(const std::string& path, Failure& why);
    // Stays, under its present name.
    void keep() { exists_ = false; }

  private:
    std::string name_;
    Descriptor file_;
    bool exists_ = false;
};

// Opens and locks a file of that name that a session of this user has left behind. Nothing
// when there is none, or when a session still has it.
Descriptor open_left_behind(const std::string& name);

}  // namespace tpu
