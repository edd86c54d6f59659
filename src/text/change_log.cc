#include "text/change_log.h"

#include <algorithm>

namespace tpu {

namespace {

// The part of a change that lies between two versions. Only typed text has several parts: to
// other changes nothing was joined, and so nobody knows of a version within.
Change part_of(Change change, std::uint64_t from, std::uint64_t to) {
    const std::uint64_t begin = change.version_before();
    if (from <= begin && to >= change.version) return change;
    from = std::max(from, begin);
    return {change.offset + (from - begin), 0, to - from, to};
}

}  // namespace

std::vector<Change>::const_iterator ChangeLog::change_to(std::uint64_t version) const {
    return std::partition_point(changes_.begin(), changes_.end(),
                                [&](const Change& change) { return change.version < version; });
}

std::optional<std::vector<Change>> ChangeLog::since(std::uint64_t version) const {
    if (!reaches(version)) return std::nullopt;
    std::vector<Change> found(change_to(version + 1), changes_.end());
    if (!found.empty()) found.front() = part_of(found.front(), version, found.front().version);
    return found;
}

void ChangeLog::make_room(std::size_t changes) {
    if (changes_.size() + changes > kMost) {
        const std::size_t dropped = std::min(changes_.size(), std::max(kMost / 2, changes));
        begin_ = changes_[dropped - 1].version;
        changes_.erase(changes_.begin(), changes_.begin() + static_cast<std::ptrdiff_t>(dropped));
    }
    const std::size_t wanted = changes_.size() + changes;
    if (wanted > changes_.capacity()) changes_.reserve(std::max(wanted, changes_.capacity() * 2));
}

void ChangeLog::add(std::uint64_t offset, std::uint64_t erased, std::uint64_t inserted) noexcept {
    if (erased + inserted == 0) return;
    version_ += erased + inserted;
    if (!changes_.empty()) {
        Change& last = changes_.back();
        const bool goes_on = last.erased + erased == 0 && last.same_as == 0;
        if (goes_on && offset == last.offset + last.inserted) {
            last.inserted += inserted;
            last.version = version_;
            return;
        }
    }
    changes_.push_back({offset, erased, inserted, version_});
}

// What was taken back already is passed over: else the way would double each time.
std::vector<Change> ChangeLog::way_back_to(std::uint64_t version) const {
    std::vector<Change> way;
    for (std::uint64_t at = version_; at > version;) {
        const Change& change = *change_to(at);
        if (change.version == at && change.same_as >= version) {
            at = change.same_as;
            continue;
        }
        const Change part = part_of(change, version, at);
        way.push_back({part.offset, part.inserted, part.erased});
        at = part.version_before();
    }
    return way;
}

void ChangeLog::go_back_to(std::uint64_t version) {
    if (!reaches(version)) return end();
    const std::vector<Change> way = way_back_to(version);
    if (way.empty()) return;
    if (way.size() > kMost / 2) return end();
    make_room(way.size());
    for (const Change& change : way) add(change.offset, change.erased, change.inserted);
    changes_.back().same_as = version;
}

void ChangeLog::end() noexcept {
    changes_.clear();
    begin_ = ++version_;
}

}  // namespace tpu
