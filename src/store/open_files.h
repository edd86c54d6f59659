// Which files the sessions of a user have open, so that a second one on a file can say so.
//
// All sessions share one empty file. A session has locks on it, at places that stand for the
// names of its files; they go when the session ends, however it ends. The files themselves are
// never locked.
#pragma once

#include <sys/types.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "buffer/buffer.h"
#include "os/descriptor.h"

namespace tpu {

class OpenFiles {
  public:
    // `path` is that shared file, made when it is needed, with its folder. Without it nothing
    // is told.
    explicit OpenFiles(std::string path) : path_(std::move(path)) {}

    // Notes which files the buffers have now.
    void follow(const std::vector<std::unique_ptr<Buffer>>& buffers);
    // Notes one that is opened. What to tell about it, if it was not open here already; empty:
    // no other session has it.
    std::string news(const std::string& file);

  private:
    bool is_ready();
    void lock(off_t place, short kind);

    std::string path_;
    Descriptor locks_;
    std::map<std::string, off_t> noted_;  // place of each name
};

}  // namespace tpu
