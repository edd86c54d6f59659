// What has been changed in a text, for all who follow it.
//
// A version is a number that grows with each change. Who knows of which version his picture
// of a text is asks what has changed since; when the log does not reach back that far, he
// starts afresh.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace tpu {

// At an offset of the text as it was just then, some bytes have given way to others.
struct Change {
    std::uint64_t offset = 0;
    std::uint64_t erased = 0, inserted = 0;  // bytes
    std::uint64_t version = 0;               // of the text afterwards, as far above the one before
                                             // as there are bytes erased and inserted
    std::uint64_t same_as = 0;               // an earlier version with the same text; 0: unknown

    std::uint64_t version_before() const { return version - erased - inserted; }
};

class ChangeLog {
  public:
    static constexpr std::size_t kMost = std::size_t{1} << 16;  // changes that are kept

    std::uint64_t version() const { return version_; }
    // The changes that lead from the text of that version to the one of now, oldest first.
    // Nothing when the log does not reach back that far.
    std::optional<std::vector<Change>> since(std::uint64_t version) const;

    // Adding so many needs no memory; what is oldest may have to go.
    void make_room(std::size_t changes = 1);
    // Text that goes in behind what went in last joins it.
    void add(std::uint64_t offset, std::uint64_t erased, std::uint64_t inserted) noexcept;
    // The text becomes that of an earlier version, by as many changes as lead there. It may
    // lack memory for them, and then nothing is added.
    void go_back_to(std::uint64_t version);
    // The text becomes another one that nobody can follow. Needs no memory.
    void end() noexcept;

  private:
    // The changes that lead there from now on, newest first.
    std::vector<Change> way_back_to(std::uint64_t version) const;
    bool reaches(std::uint64_t version) const { return version >= begin_ && version <= version_; }
    // The change that has led to a version, or passed it.
    std::vector<Change>::const_iterator change_to(std::uint64_t version) const;

    std::vector<Change> changes_;  // oldest first
    std::uint64_t version_ = 1;
    std::uint64_t begin_ = 1;  // the oldest version that the log reaches
};

}  // namespace tpu
