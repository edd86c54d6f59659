// Where unsaved work is kept in case the editor does not come to save it.
//
// A recovery file is a binary journal (store/journal.h) whose replay makes of a file, as
// it was read, the text that was being edited. Its name tells which file that is, and the
// time that the file had; while a session writes it, it is locked.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/descriptor.h"

namespace tpu {

class RecoveryFile {
  public:
    // Makes one, which nobody else may read, in a folder that is made when there is none.
    // Nothing when that fails.
    static std::optional<RecoveryFile> create(const std::string& folder, const std::string& file,
                                              std::uint64_t file_time);

    // Adds statements: all, or none of them and false.
    [[nodiscard]] bool append(const std::vector<std::string>& statements);
    void remove();

  private:
    RecoveryFile(Descriptor descriptor, std::string path, off_t size)
        : descriptor_(std::move(descriptor)), path_(std::move(path)), size_(size) {}

    Descriptor descriptor_;
    std::string path_;
    off_t size_ = 0;     // bytes of whole records
    bool torn_ = false;  // part of another one may be behind them
};

// A recovery file that no session writes any more.
struct LeftBehind {
    std::string path;
    std::uint64_t file_time = 0;  // of the file; times are milliseconds since the epoch, or 0
    std::uint64_t time = 0;       // when the work was kept last
};

// Removes one whose work is not needed any more.
void remove_recovery_file(const std::string& path);

// Those of a file, the latest first.
std::vector<LeftBehind> left_behind(const std::string& folder, const std::string& file);

}  // namespace tpu
