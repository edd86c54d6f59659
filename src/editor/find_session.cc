#include "editor/find_session.h"

#include "keys/key_code.h"
#include "pattern/search.h"

namespace tpu {

FindSession::FindSession(Buffer& buffer)
    : buffer_(buffer), start_{buffer.cursor_row, buffer.cursor_column} {}

void FindSession::go_to_start() {
    buffer_.cursor_row = start_.row;
    buffer_.cursor_column = start_.column;
}

std::string FindSession::search() {
    go_to_start();
    found_ = !query_.empty() && search_round(buffer_, query_);
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
        case control('G'): go_to_start(); return end("I-find cancelled");
        case '\n':
        case '\r': return end(found_ ? "Found" : "Not found");
        case kKeyBackspace:
        case 127:
        case '\b':
            if (!query_.empty()) query_.pop_back();
            return false;
        case control('F'):
            if (found_) start_ = {buffer_.cursor_row, buffer_.cursor_column + 1};
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

}  // namespace tpu
