#include "app/curses/key_decoder.h"

#include <algorithm>
#include <cstdio>
#include <new>
#include <utility>

#include "os/short_memory.h"

namespace tpu {

namespace {

constexpr std::size_t kNone = std::string::npos;  // no such place

constexpr std::string_view kPasteStart = "\x1b[200~";
constexpr std::string_view kPasteEnd = "\x1b[201~";
constexpr std::string_view kControlSequence = "\x1b[";
constexpr std::string_view kOldMouse = "\x1b[M";  // and three bytes: button, column, row
constexpr std::size_t kOldMouseSize = 6;

unsigned char byte_at(std::string_view bytes, std::size_t index) {
    return static_cast<unsigned char>(bytes[index]);
}

std::string with_line_feeds(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        bool carriage_return = text[i] == '\r';
        result += carriage_return ? '\n' : text[i];
        if (carriage_return && i + 1 < text.size() && text[i + 1] == '\n') ++i;
    }
    return result;
}

// Columns and rows of reports count from 1; of the button byte, modifier keys do not matter.
MouseEvent mouse_event(int button, int col, int row, bool pressed) {
    constexpr int kModifiers = 4 | 8 | 16;
    return {row - 1, col - 1, pressed && (button & ~kModifiers) == 0};
}

}  // namespace

KeyDecoder::KeyDecoder(std::vector<KeySequence> table) : table_(std::move(table)) {
    // Mouse reports have bytes of their own after the sequence and are no table's matter.
    std::erase_if(table_, [](const KeySequence& key) { return key.code == kKeyMouse; });
    table_.push_back({std::string(kPasteStart), kKeyPaste});
    auto less = [](const auto& a, const auto& b) { return a.bytes < b.bytes; };
    auto same = [](const auto& a, const auto& b) { return a.bytes == b.bytes; };
    std::stable_sort(table_.begin(), table_.end(), less);
    table_.erase(std::unique(table_.begin(), table_.end(), same), table_.end());
    for (const KeySequence& key : table_) first_bytes_.set(byte_at(key.bytes, 0));
    input_.reserve(2 * kRoom);
}

void KeyDecoder::feed(std::string_view bytes, bool doubtful) {
    if (!pasting_) {
        make_room(bytes.size());
    } else if (!enough_memory([&] { make_room(bytes.size()); })) {
        drop_paste();
    }
    if (!doubtful) {
        doubtful_ = kNone;
    } else if (doubtful_ == kNone) {
        doubtful_ = input_.size();
    }
    input_ += bytes;
}

void KeyDecoder::make_room(std::size_t bytes) {
    if (head_ > input_.size() / 2) {
        input_.erase(0, head_);
        scanned_ -= std::min(scanned_, head_);
        if (doubtful_ != kNone) doubtful_ -= head_;
        head_ = 0;
    }
    std::size_t needed = input_.size() + bytes;
    if (needed > input_.capacity()) input_.reserve(std::max(needed, 2 * input_.capacity()));
}

// All that has come of it but for what may be the begin of its end.
void KeyDecoder::drop_paste() {
    std::size_t kept = std::min(input_.size() - head_, kPasteEnd.size() - 1);
    const std::size_t dropped = input_.size() - kept;
    input_.erase(0, dropped);
    if (doubtful_ != kNone) doubtful_ -= std::min(doubtful_, dropped);
    head_ = scanned_ = 0;
    paste_lost_ = true;
}

// Gives back what a large paste took.
void KeyDecoder::shrink() {
    std::string fresh;
    std::string_view rest = std::string_view(input_).substr(head_);
    if (input_.capacity() <= 16 * kRoom || rest.size() > kRoom) return;
    if (!enough_memory([&] { fresh.reserve(2 * kRoom); })) return;
    fresh += rest;
    input_.swap(fresh);
    head_ = 0;
}

bool KeyDecoder::drop_through(char byte) {
    std::size_t place = head_;
    for (bool pasted = pasting_; place != kNone; pasted = !pasted) {
        std::size_t mark = input_.find(pasted ? kPasteEnd : kPasteStart, place);
        std::size_t found = pasted ? kNone : input_.find(byte, place);
        if (found < mark) {
            head_ = found + 1;
            pasting_ = false;
            doubtful_ = kNone;
            return true;
        }
        place = mark;
    }
    return false;
}

bool KeyDecoder::paste_is_open() const {
    // No mark before head_ is looked at: that one was decoded.
    std::size_t start = std::string_view(input_).substr(head_).rfind(kPasteStart);
    std::size_t from = start == std::string::npos ? head_ : head_ + start;
    return (pasting_ || start != std::string::npos) &&
           input_.find(kPasteEnd, from) == std::string::npos;
}

// The end that has not come is put in.
void KeyDecoder::end_paste() {
    if (!paste_is_open()) return;
    std::size_t end = std::min(doubtful_, input_.size());
    input_.insert(end, kPasteEnd);
    scanned_ = std::min(scanned_, end);
    doubtful_ = kNone;
}

int KeyDecoder::next() {
    return decode(false);
}

int KeyDecoder::next_now() {
    return decode(true);
}

std::string KeyDecoder::take_paste() {
    if (std::exchange(paste_lost_, false)) throw std::bad_alloc();
    return std::exchange(paste_, {});
}

int KeyDecoder::decode(bool now) {
    while (!pasting_) {
        std::string_view rest = std::string_view(input_).substr(head_);
        if (rest.empty()) return kNoKey;
        Match match = recognise(rest);
        if (match.code == kIncompleteKey) {
            if (!now) return kIncompleteKey;
            match = {byte_at(rest, 0), 1};
        }
        head_ += match.size;
        if (match.code == kKeyPaste) {
            pasting_ = true;
            scanned_ = head_;
        } else if (match.code != kNoKey) {
            return match.code;
        }
    }
    int key = decode_paste();
    if (key != kIncompleteKey || !now) return key;
    end_paste();
    return decode_paste();
}

int KeyDecoder::decode_paste() {
    std::size_t end = input_.find(kPasteEnd, scanned_);
    if (end == std::string::npos) {
        // The mark may have come in part.
        std::size_t part = kPasteEnd.size() - 1;
        if (input_.size() - scanned_ > part) scanned_ = input_.size() - part;
        return kIncompleteKey;
    }
    std::string_view text = std::string_view(input_).substr(head_, end - head_);
    paste_.clear();
    if (!paste_lost_) paste_lost_ = !enough_memory([&] { paste_ = with_line_feeds(text); });
    head_ = end + kPasteEnd.size();
    pasting_ = false;
    doubtful_ = kNone;
    shrink();
    return kKeyPaste;
}

KeyDecoder::Match KeyDecoder::recognise(std::string_view bytes) {
    Match plain{byte_at(bytes, 0), 1};
    if (!first_bytes_[byte_at(bytes, 0)]) return plain;
    Match known = look_up(bytes);
    if (known.code != kNoKey) return known;
    return bytes.starts_with(kControlSequence) ? control_sequence(bytes) : plain;
}

// The longest sequence of the table counts.
KeyDecoder::Match KeyDecoder::look_up(std::string_view bytes) const {
    Match longest;
    auto first = table_.begin(), last = table_.end();  // those that start with the bytes so far
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        unsigned char byte = byte_at(bytes, i);
        auto below = [&](const KeySequence& key) { return byte_at(key.bytes, i) < byte; };
        auto equal = [&](const KeySequence& key) { return byte_at(key.bytes, i) == byte; };
        first = std::partition_point(first, last, below);
        last = std::partition_point(first, last, equal);
        if (first != last && first->bytes.size() == i + 1) {
            longest = {first->code, i + 1};
            ++first;
        }
        if (first == last) return longest;
    }
    return {kIncompleteKey, 0};
}

// A mouse report, or else a key that is not known: parameters, intermediate
// bytes and a final byte, whose ranges are fixed for all control sequences.
KeyDecoder::Match KeyDecoder::control_sequence(std::string_view bytes) {
    if (bytes.starts_with(kOldMouse)) return old_mouse_report(bytes);
    auto in = [&](std::size_t i, int low, int high) {
        return i < bytes.size() && byte_at(bytes, i) >= low && byte_at(bytes, i) <= high;
    };
    std::size_t end = kControlSequence.size();
    while (in(end, '0', '?')) ++end;
    while (in(end, ' ', '/')) ++end;
    if (end == bytes.size()) return {kIncompleteKey, 0};
    if (!in(end, '@', '~')) return {byte_at(bytes, 0), 1};
    return mouse_report(bytes.substr(0, end + 1));
}

KeyDecoder::Match KeyDecoder::old_mouse_report(std::string_view bytes) {
    constexpr int kOffset = ' ';
    constexpr int kRelease = 3;  // of any button
    if (bytes.size() < kOldMouseSize) return {kIncompleteKey, 0};
    int button = byte_at(bytes, 3) - kOffset;
    mouse_ = mouse_event(button, byte_at(bytes, 4) - kOffset, byte_at(bytes, 5) - kOffset,
                         button != kRelease);
    return {kKeyMouse, kOldMouseSize};
}

// ESC [ < button ; column ; row M, with m when the button was let go.
KeyDecoder::Match KeyDecoder::mouse_report(std::string_view bytes) {
    int button = 0, col = 0, row = 0;
    char final = 0;
    char text[32] = "";  // more than there is in a report
    bytes.copy(text, sizeof text - 1, kControlSequence.size());
    if (std::sscanf(text, "<%5d;%5d;%5d%c", &button, &col, &row, &final) != 4 ||
        (final != 'M' && final != 'm')) {
        return {kNoKey, bytes.size()};
    }
    mouse_ = mouse_event(button, col, row, final == 'M');
    return {kKeyMouse, bytes.size()};
}

}  // namespace tpu
