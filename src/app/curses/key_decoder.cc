#include "app/curses/key_decoder.h"

#include <algorithm>
#include <cstdio>
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
constexpr int kPasteBegins = -2;
constexpr int kIncomplete = -3;  // more bytes may change what those at the front mean

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

KeyDecoder::KeyDecoder(std::vector<KeySequence> table, Charset charset)
    : table_(std::move(table)), charset_(charset) {
    // Mouse reports have bytes of their own after the sequence and are no table's matter.
    std::erase_if(table_, [](const KeySequence& key) { return key.code == kKeyMouse; });
    table_.push_back({std::string(kPasteStart), kPasteBegins});
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

Event KeyDecoder::next() {
    return decode(false);
}

Event KeyDecoder::next_now() {
    return decode(true);
}

Event KeyDecoder::decode(bool now) {
    while (!pasting_) {
        std::string_view rest = std::string_view(input_).substr(head_);
        if (rest.empty()) return {};
        Match match = recognise(rest);
        if (match.code == kIncomplete) {
            if (!now) return {};
            match = character(rest, true);
        }
        if (match.code == kPasteBegins) {
            head_ += match.size;
            pasting_ = true;
            scanned_ = head_;
        } else {
            Event event = event_of(match);
            head_ += match.size;
            if (event.kind != Event::Kind::none) return event;
        }
    }
    if (now) end_paste();
    return decode_paste();
}

Event KeyDecoder::event_of(Match match) {
    if (match.code == kNoKey) return {};
    if (match.code == kKeyMouse) return {Event::Kind::mouse, kKeyMouse, {}, mouse_};
    if (match.code > 255) return Event::of_key(match.code);
    return {Event::Kind::key, match.code, input_.substr(head_, match.size)};
}

Event KeyDecoder::decode_paste() {
    std::size_t end = input_.find(kPasteEnd, scanned_);
    if (end == std::string::npos) {
        // The mark may have come in part.
        std::size_t part = kPasteEnd.size() - 1;
        if (input_.size() - scanned_ > part) scanned_ = input_.size() - part;
        return {};
    }
    std::string_view text = std::string_view(input_).substr(head_, end - head_);
    Event paste{Event::Kind::paste};
    if (std::exchange(paste_lost_, false) ||
        !enough_memory([&] { paste.text = with_line_feeds(text); })) {
        paste.kind = Event::Kind::lost;
    }
    head_ = end + kPasteEnd.size();
    pasting_ = false;
    doubtful_ = kNone;
    shrink();
    return paste;
}

KeyDecoder::Match KeyDecoder::recognise(std::string_view bytes) {
    if (!first_bytes_[byte_at(bytes, 0)]) return character(bytes, false);
    Match known = look_up(bytes);
    if (known.code != kNoKey) return known;
    return bytes.starts_with(kControlSequence) ? control_sequence(bytes) : character(bytes, false);
}

// A byte with those that belong to it: of a character that is cut short, what there is.
// `now`: no more of it will come.
KeyDecoder::Match KeyDecoder::character(std::string_view bytes, bool now) const {
    unsigned char first = byte_at(bytes, 0);
    std::size_t size = 1, whole = charset_ == Charset::utf8 ? utf8_length(first) : 1;
    while (size < whole && size < bytes.size() && (byte_at(bytes, size) & 0xc0) == 0x80) ++size;
    if (size < whole && size == bytes.size() && !now) return {kIncomplete, 0};
    return {first, size};
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
    return {kIncomplete, 0};
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
    if (end == bytes.size()) return {kIncomplete, 0};
    if (!in(end, '@', '~')) return {byte_at(bytes, 0), 1};
    return mouse_report(bytes.substr(0, end + 1));
}

KeyDecoder::Match KeyDecoder::old_mouse_report(std::string_view bytes) {
    constexpr int kOffset = ' ';
    constexpr int kRelease = 3;  // of any button
    if (bytes.size() < kOldMouseSize) return {kIncomplete, 0};
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
