// Journals: what runs in a buffer, kept in a file so that it can be run again after a
// crash.
//
// A journal belongs to a buffer: what runs while that buffer is current is recorded in
// it, each outermost statement before it runs. Whether that happens is up to
// the buffer's `journaling`, `binary_journal` and `journal_file`.
//
// A binary journal is "TPJB", the version 1, and records back to back: the length of a
// statement, then its bytes. Numbers are 32 bits, the lowest byte first. A text journal
// has a statement on each line.
//
// The file is opened anew for each record. So a record is with the file system before
// the statement runs, a journal that was renamed gets no more of them, and one that was
// removed begins again; and buffers that share a journal write one after the other.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "os/failure.h"

namespace tpu {

class Buffer;

inline constexpr std::string_view kJournalMagic = "TPJB";
inline constexpr std::uint32_t kJournalVersion = 1;
inline constexpr std::size_t kJournalHeader = kJournalMagic.size() + sizeof kJournalVersion;
inline constexpr const char* kUnknownJournalVersion =
    "the journal is of a version that this program does not know";
inline constexpr std::uint32_t kLongestRecord = 1u << 24;  // bytes that a replay takes

// Begins a binary journal in an open file. False when it cannot be written.
[[nodiscard]] bool tpu_journal_write_header(int fd, Failure& why);

// Adds a record of a binary journal to those in `bytes`.
void add_journal_record(std::string& bytes, std::string_view text);

// Records texts for a buffer, all or none. It may be null or keep no journal: then nothing
// happens. When they cannot be written, the recording ends, since what came behind them would
// not fit what stands before; the buffer's `journal_fault` has the reason.
void tpu_journal_append(Buffer* buffer, const std::vector<std::string>& texts);

// The bytes that a journal has, and cutting it back unless others have added to it.
std::optional<off_t> tpu_journal_size(const std::string& path);
void tpu_journal_cut(const std::string& path, off_t from, off_t to) noexcept;

// Makes a file the journal of a buffer. What is in it stays, but for half a record at its
// end; a new file can be read by its owner alone. False, and nothing has changed, when
// it cannot be written, for the reason, or when records added to it could not be read. `note`
// gets what there is to tell about the file in either case, if anything.
[[nodiscard]] bool tpu_journal_open(Buffer& buffer, const std::string& path, bool binary,
                                    std::string& note, Failure& why);
void tpu_journal_close(Buffer& buffer);

}  // namespace tpu
