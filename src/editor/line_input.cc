#include "editor/line_input.h"

#include <algorithm>

#include "keys/key_code.h"

namespace tpu {

namespace {

constexpr std::size_t kLongestLine = 2047;  // bytes

bool continues_character(char c) {
    return (c & 0xc0) == 0x80;
}

// What all texts begin with, in whole characters.
std::string common_prefix(const std::vector<std::string>& texts) {
    const std::string& first = texts.front();
    std::string prefix = first;
    for (const std::string& text : texts) {
        std::size_t size = std::min(prefix.size(), text.size());
        auto [end, other] = std::mismatch(
            prefix.begin(), prefix.begin() + static_cast<std::ptrdiff_t>(size), text.begin());
        prefix.erase(end, prefix.end());
    }
    while (!prefix.empty() && continues_character(first[prefix.size()])) prefix.pop_back();
    return prefix;
}

}  // namespace

// What is typed needs no more memory then: a line that lacks a character says something else.
LineInput::LineInput(Charset charset, Asking how)
    : charset_(charset), how_(std::move(how)), recalled_(history_size()) {
    text_.reserve(kLongestLine);
}

bool LineInput::key(int code) {
    if (code == '\t') {
        complete();
        return false;
    }
    offered_ = {};
    switch (code) {
        case '\n':
        case '\r':
        case kKeyEnter: return true;
        case control('G'): cancelled_ = true; return true;
        case kKeyBackspace:
        case 127:
        case '\b': erase(character_before(), cursor_); break;
        case kKeyDelete: erase(cursor_, character_after()); break;
        case control('U'): erase(0, text_.size()); break;
        case kKeyLeft: move_to(character_before()); break;
        case kKeyRight: move_to(character_after()); break;
        case kKeyHome: move_to(0); break;
        case kKeyEnd: move_to(text_.size()); break;
        case kKeyUp:
            if (recalled_ > 0) recall(recalled_ - 1);
            break;
        case kKeyDown:
            if (recalled_ < history_size()) recall(recalled_ + 1);
            break;
        default:
            if (code < 32 || code > 255) break;
            char byte = static_cast<char>(code);
            insert({&byte, 1});
    }
    return false;
}

void LineInput::paste(std::string_view text) {
    offered_ = {};
    insert(text.substr(0, text.find_first_of("\r\n")));
}

// What does not fit is left out.
void LineInput::insert(std::string_view bytes) {
    bytes = bytes.substr(0, kLongestLine - text_.size());
    text_.insert(cursor_, bytes);
    cursor_ += bytes.size();
}

void LineInput::erase(std::size_t from, std::size_t to) {
    text_.erase(from, to - from);
    cursor_ = from;
}

std::size_t LineInput::character_before() const {
    if (cursor_ == 0) return 0;
    std::size_t size = 1;
    for (std::size_t n = 2; charset_ == Charset::utf8 && n <= kLongestCharacter; ++n) {
        if (n > cursor_) break;
        if (decode_utf8(std::string_view(text_).substr(cursor_ - n, n)).size == n) size = n;
    }
    return cursor_ - size;
}

std::size_t LineInput::character_after() const {
    if (cursor_ == text_.size()) return cursor_;
    if (charset_ != Charset::utf8) return cursor_ + 1;
    std::size_t size = decode_utf8(std::string_view(text_).substr(cursor_)).size;
    return cursor_ + std::max<std::size_t>(size, 1);
}

void LineInput::recall(std::size_t line) {
    if (recalled_ == history_size()) typed_ = text_;
    recalled_ = line;
    text_ = line == history_size() ? typed_ : (*how_.history)[line];
    cursor_ = text_.size();
}

// The first Tab adds what all candidates begin with. When that is nothing new, each Tab
// shows another one of them.
void LineInput::complete() {
    if (!how_.complete) return;
    if (!offered_.candidates.empty()) return offer((offer_ + 1) % offered_.candidates.size());
    Completion found = how_.complete(std::string_view(text_).substr(0, cursor_));
    if (found.candidates.empty()) return;
    std::string prefix = common_prefix(found.candidates);
    if (found.candidates.size() == 1 || prefix.size() > cursor_ - found.from) {
        erase(found.from, cursor_);
        return insert(prefix);
    }
    offered_ = std::move(found);
    offer(0);
}

void LineInput::offer(std::size_t candidate) {
    offer_ = candidate;
    erase(offered_.from, cursor_);
    insert(offered_.candidates[candidate]);
}

}  // namespace tpu
