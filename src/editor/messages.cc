// The message line and the buffer that remembers what stood there.
#include <algorithm>

#include "editor/editor.h"
#include "editor/recovery.h"

namespace tpu {

namespace {

constexpr const char* kMessageBuffer = "$MESSAGE_BUFFER";

Buffer* message_buffer(TPUEditor& editor) {
    if (Buffer* buffer = editor.find_buffer(kMessageBuffer)) return buffer;
    Buffer* buffer = editor.create_buffer(kMessageBuffer, "");
    buffer->no_write = true;
    buffer->system = true;
    buffer->eob_text = "[End of message buffer]";
    return buffer;
}

// Removes the oldest lines until `limit` remain; the number removed.
std::uint64_t drop_oldest_lines(Buffer& buffer, std::uint64_t limit) {
    const std::uint64_t lines = buffer.text().size();
    if (limit == 0 || lines <= limit) return 0;
    buffer.edit(0, buffer.text().row_start(lines - limit), "");
    return lines - limit;
}

void add_line(Buffer& buffer, const std::string& text, std::uint64_t limit) {
    std::uint64_t row = buffer.cursor_row, column = buffer.cursor_column;
    buffer.end_of_buffer();
    if (buffer.cursor_column > 0) buffer.split_line();
    buffer.copy_text(text);
    std::uint64_t dropped = drop_oldest_lines(buffer, limit);
    buffer.cursor_row = row - std::min(row, dropped);
    buffer.cursor_column = column;
}

// All of the line or, where memory is too short, none of it.
void log_message(Buffer& buffer, const std::string& text, std::uint64_t limit) {
    const Buffer::State before = buffer.state();
    const bool modifiable = std::exchange(buffer.modifiable, true);
    if (!enough_memory([&] { add_line(buffer, text, limit); })) buffer.put_back(before);
    buffer.modifiable = modifiable;
    buffer.modified = false;
}

}  // namespace

void TPUEditor::set_message(const std::string& text) {
    message = text;
    if (in_set_message) return;
    in_set_message = true;
    log_message(*message_buffer(*this), text, message_buffer_limit);
    in_set_message = false;
}

void TPUEditor::fail(const char* status, const std::string& text, const std::string& reason) {
    set_message(text);
    const bool is_said = text.find(reason) != std::string::npos;
    if (!is_said) log_message(*message_buffer(*this), reason, message_buffer_limit);
    parser.record_error(status, reason.empty() ? text : reason);
}

void TPUEditor::recover_memory(const char* text) {
    memory_reserve.release();
    parser.recover();
    in_set_message = false;
    if (message != text && !enough_memory([&] { set_message(text); })) {
        in_set_message = false;
        message = "Out of memory";  // short enough to need none
    }
    if (recovery) enough_memory([&] { recovery->write(); });
}

}  // namespace tpu
