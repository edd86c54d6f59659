#include "store/journal_reader.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "os/file_io.h"
#include "store/journal.h"

namespace tpu {

namespace {

constexpr std::size_t kPiece = std::size_t{64} << 10;

std::uint32_t read_number(std::string_view bytes) {
    std::uint32_t number = 0;
    for (std::size_t i = bytes.size(); i-- > 0;) {
        number = number << 8 | static_cast<unsigned char>(bytes[i]);
    }
    return number;
}

}  // namespace

JournalReader::JournalReader(Descriptor file) : file_(std::move(file)), piece_(kPiece) {
    struct stat status;
    if (fstat(file_.get(), &status) == 0) size_ = static_cast<std::uint64_t>(status.st_size);
    // What cannot be read might be of either kind.
    if (!fill() && size_ > 0) end_ = End::unreadable;
    std::string_view begin(piece_.data(), piece_end_);
    binary_ = begin.starts_with(kJournalMagic);
    if (!binary_) return;
    // Records of another version would be read as garbage.
    std::string_view version = begin.substr(kJournalMagic.size(), sizeof kJournalVersion);
    bool is_whole = version.size() == sizeof kJournalVersion;
    if (is_whole && read_number(version) != kJournalVersion) end_ = End::unknown_version;
    // A torn header has no records behind it.
    at_ = std::min<std::uint64_t>(size_, kJournalHeader);
    piece_at_ = std::min(piece_end_, kJournalHeader);
}

bool JournalReader::next(std::string& statement) {
    statement.clear();
    if (end_ != End::none) return false;
    return binary_ ? next_record(statement) : next_line(statement);
}

bool JournalReader::next_record(std::string& statement) {
    record_start_ = at_;
    if (left() == 0) return stop(End::of_file);
    std::string bytes;
    if (left() < sizeof(std::uint32_t)) return stop(End::cut_short);
    if (!take(bytes, sizeof(std::uint32_t))) return stop(End::unreadable);
    std::uint32_t length = read_number(bytes);
    if (length == 0) return stop(End::zero_length);
    if (length > kLongestRecord) return stop(End::too_long);
    if (left() < length) return stop(End::cut_short);
    return take(statement, length) || stop(End::unreadable);
}

// Lines without text are passed over.
bool JournalReader::next_line(std::string& statement) {
    while (statement.empty()) {
        record_start_ = at_;
        if (left() == 0) return stop(End::of_file);
        for (bool complete = false; !complete && left() > 0;) {
            if (piece_at_ == piece_end_ && !fill()) return stop(End::unreadable);
            const char* begin = piece_.data() + piece_at_;
            std::size_t size = piece_end_ - piece_at_;
            const void* feed = std::memchr(begin, '\n', size);
            complete = feed != nullptr;
            if (complete) size = static_cast<std::size_t>(static_cast<const char*>(feed) - begin);
            if (statement.size() + size > kLongestRecord) return stop(End::too_long);
            if (!take(statement, size)) return stop(End::unreadable);
            if (!complete) continue;
            ++piece_at_;
            ++at_;
        }
        if (statement.ends_with('\r')) statement.pop_back();
    }
    return true;
}

bool JournalReader::fill() {
    piece_at_ = piece_end_ = 0;
    ssize_t got = read_some(file_.get(), piece_.data(), piece_.size(), why_);
    if (got <= 0) return false;
    piece_end_ = static_cast<std::size_t>(std::min(static_cast<std::uint64_t>(got), left()));
    return piece_end_ > 0;
}

bool JournalReader::take(std::string& place, std::uint64_t count) {
    while (count > 0) {
        if (piece_at_ == piece_end_ && !fill()) return false;
        std::size_t size = std::min<std::uint64_t>(count, piece_end_ - piece_at_);
        place.append(piece_.data() + piece_at_, size);
        piece_at_ += size;
        at_ += size;
        count -= size;
    }
    return true;
}

}  // namespace tpu
