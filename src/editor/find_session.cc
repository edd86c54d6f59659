#include "editor/find_session.h"

#include <algorithm>

#include "keys/key_code.h"
#include "pattern/search.h"

namespace tpu {

FindSession::FindSession(Buffer& buffer)
    : buffer_(&buffer), origin_(cursor()), start_(origin_), found_at_(origin_) {}

void FindSession::go_to(Position place) {
    buffer_->cursor_row = place.row;
    buffer_->cursor_column = place.column;
}

std::string FindSession::search() {
    go_to(start_);
    found_ = !query_.empty() && search_round(*buffer_, query_);
    std::string message = "I-find: " + query_;
    if (!found_ && !query_.empty()) message += "  (not found)";
    return message;
}

bool FindSession::end(std::string result) {
    result_ = std::move(result);
    return true;
}

bool FindSession::key(int code) {
    switch (code) {
        case 27:
        case control('G'): go_to(start_); return end("I-find cancelled");
        case '\n':
        case '\r': return end(found_ ? "Found" : "Not found");
        case kKeyBackspace:
        case 127:
        case '\b':
            if (!query_.empty()) query_.pop_back();
            return false;
        case control('F'):
            if (found_) start_ = {buffer_->cursor_row, buffer_->cursor_column + 1};
            return false;
        default: append(code); return false;
    }
}

void FindSession::append(int code) {
    if (code >= 32 && code <= 126) query_ += static_cast<char>(code);
}

void FindSession::paste(std::string_view text) {
    for (char c : text.substr(0, text.find_first_of("\r\n"))) append(c);
}

void FindSession::step_aside() {
    if (!buffer_) return;
    found_at_ = cursor();
    text_ = buffer_->text();
    go_to(origin_);
}

bool FindSession::step_back() {
    if (!buffer_) return true;
    const bool same = cursor() == origin_ && text_.is_same_version(buffer_->text());
    if (same) {
        go_to(found_at_);
    } else {
        move_start();
    }
    text_ = {};  // what is changed while nobody shares it need not be copied
    return same;
}

// By as many bytes as the text has become longer, as if those stood before the cursor.
void FindSession::move_start() {
    const bool is_there = start_ == origin_;
    origin_ = cursor();
    const std::uint64_t bytes = buffer_->text().bytes();
    const std::uint64_t behind = text_.bytes() - std::min(text_.offset(start_), text_.bytes());
    start_ = is_there ? origin_ : buffer_->text().position(bytes - std::min(behind, bytes));
}

void FindSession::forget(const Buffer& buffer) {
    if (buffer_ == &buffer) buffer_ = nullptr;
}

}  // namespace tpu
