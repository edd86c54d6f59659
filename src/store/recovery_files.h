// Where unsaved work is kept in case the editor does not come to save it.
//
// A recovery file is a binary journal (store/journal.h) whose replay makes of a text, the
// base, the one that was being edited. The base is what loading the file gave. Its first
// record is a comment that says which base that is. The base itself stands in a second file
// beside it, unless it is very large, so that the work can be had when the file has changed.
//
// The name of a recovery file tells which file the work is on; while a session writes it, it
// is locked. Only files and folders that are the user's own and that nobody else can write
// are read.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "os/descriptor.h"
#include "store/saved_text.h"
#include "text/line_store.h"

namespace tpu {

class RecoveryFile {
  public:
    // Larger ones are not copied, nor those that would take more than a quarter of what is
    // free on the disk.
    static constexpr std::uint64_t kLargestBase = std::uint64_t{4} << 30;  // bytes

    // Makes one, which nobody else may read, in a folder that is made when there is none. An
    // empty `file` stands for a text that has none. Nothing when that fails, for the reason.
    static std::optional<RecoveryFile> create(const std::string& folder, const std::string& file,
                                              std::uint64_t file_time, const LineStore& base,
                                              std::string& reason);

    // Adds statements: all, or none of them and false, for the reason.
    [[nodiscard]] bool append(const std::vector<std::string>& statements, std::string& reason);
    // Copies a further part of the base, a millisecond's work. False: there is nothing left
    // to copy.
    bool copy_base();
    void remove();

  private:
    RecoveryFile(Descriptor descriptor, std::string path, off_t size, const LineStore& base)
        : descriptor_(std::move(descriptor)), path_(std::move(path)), size_(size), base_(base) {}

    Descriptor descriptor_;
    std::string path_;
    off_t size_ = 0;     // bytes of whole records
    bool torn_ = false;  // part of another one may be behind them
    LineStore base_;
    Descriptor base_copy_;
    std::uint64_t base_copied_ = 0;  // bytes
};

// A recovery file that no session writes any more.
struct LeftBehind {
    std::string path;
    std::uint64_t file_time = 0;       // of the file; times are milliseconds since the epoch, or 0
    std::uint64_t time = 0;            // when the work was kept last
    std::optional<TextIdentity> base;  // earlier versions did not say

    // The base as it was copied, if it was.
    std::optional<LineStore> base_text() const;
};

// What the names of all that is kept of a file begin with: a hint for people, and a number
// for the file.
std::string recovery_prefix(const std::string& file);

// Makes what is missing of a folder, for the owner alone.
[[nodiscard]] bool make_folder(const std::filesystem::path& folder, Failure& why);

// Removes one whose work is not needed any more.
void remove_recovery_file(const std::string& path);

// Those of a file, or of texts without one, the latest first.
std::vector<LeftBehind> left_behind(const std::string& folder, const std::string& file);

}  // namespace tpu
