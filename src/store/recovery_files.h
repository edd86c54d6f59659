// Where unsaved work is kept in case the editor does not come to save it.
//
// A recovery file is a binary journal (store/journal.h) whose replay makes of a file, as
// it was read, the text that was being edited. Its name tells which file that is, and the
// time that the file had; while a session writes it, it is locked.
#pragma once

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

    // Adds statements. False: they could not be kept.
    [[nodiscard]] bool append(const std::vector<std::string>& statements);
    void remove();
    const std::string& path() const { return path_; }

  private:
    RecoveryFile(Descriptor descriptor, std::string path)
        : descriptor_(std::move(descriptor)), path_(std::move(path)) {}

    Descriptor descriptor_;
    std::string path_;
};

// A recovery file that no session writes any more.
struct LeftBehind {
    std::string path;
    std::uint64_t file_time = 0;  // of the file; times are milliseconds since the epoch, or 0
    std::uint64_t time = 0;       // when the work was kept last
};

// Those of a file, the latest first.
std::vector<LeftBehind> left_behind(const std::string& folder, const std::string& file);

}  // namespace tpu
