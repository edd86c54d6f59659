// The records of a journal, one after the other.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "os/descriptor.h"

namespace tpu {

// Reads what is in the file when reading begins, in pieces, so that it may be of any
// size. Whatever the file holds, reading ends.
class JournalReader {
  public:
    enum class End { none, of_file, cut_short, zero_length, too_long, unreadable, unknown_version };

    explicit JournalReader(Descriptor file);

    bool is_binary() const { return binary_; }
    // The next statement. False at the end, for which end() has the reason.
    bool next(std::string& statement);
    End end() const { return end_; }
    const Failure& why() const { return why_; }  // a file is unreadable
    // Where in the file the record begins that was read last, or that could not be read.
    std::uint64_t record_start() const { return record_start_; }
    std::uint64_t size() const { return size_; }  // bytes of the file

  private:
    bool next_record(std::string& statement);
    bool next_line(std::string& statement);
    bool stop(End end) {
        end_ = end;
        return false;
    }
    std::uint64_t left() const { return size_ - at_; }
    bool fill();  // false at the end, or when the file cannot be read
    // Appends `count` bytes; false when that many cannot be had.
    bool take(std::string& place, std::uint64_t count);

    Descriptor file_;
    bool binary_ = false;
    End end_ = End::none;
    Failure why_;
    std::uint64_t size_ = 0;
    std::uint64_t at_ = 0;  // of the next byte in the file
    std::uint64_t record_start_ = 0;
    std::vector<char> piece_;  // what was read of the file and is not used up
    std::size_t piece_at_ = 0, piece_end_ = 0;
};

}  // namespace tpu
