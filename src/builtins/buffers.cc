// Buffers and files, and deleting whatever there is.
#include <algorithm>
#include <functional>

#include "builtins/common.h"
#include "builtins/families.h"
#include "editor/editor.h"
#include "editor/process.h"
#include "store/buffer_file.h"
#include "value/array.h"

namespace tpu::builtins {

namespace {

using Type = Value::Type;

Value get_buffer(Call& call) {
    Buffer* buffer = editor_of(call).find_buffer(call.args.text(0));
    return buffer ? Value::make_buffer(buffer) : tpu_unspecified();
}

// The file is loaded when there is one; in any case the buffer has its name.
Value create_buffer(Call& call) {
    std::string name = call.args.count() > 0 ? call.args.text(0) : std::string();
    if (name.empty()) name = "untitled";
    if (Buffer* buffer = editor_of(call).find_buffer(name)) return Value::make_buffer(buffer);
    Buffer* buffer = editor_of(call).create_buffer(name, "");
    if (call.args.count() > 1) {
        std::string trouble =
            edit_file(*buffer, call.args.text(1), Loading::at_once, editor_of(call).interrupted());
        editor_of(call).tell_of_file(*buffer, trouble);
    }
    return Value::make_buffer(buffer);
}

void read_file(Call& call) {
    std::string name = call.args.count() > 0 ? call.args.text(0) : std::string();
    Buffer file("", "");
    Failure why;
    if (!load_file(file, name, Loading::at_once, editor_of(call).interrupted(), why)) {
        return editor_of(call).fail("TPU$_OPENIN", "READ_FILE: cannot open " + name, why.text());
    }
    call.buffer().copy_lines(file.text(), editor_of(call).charset);
}

bool write_range(const Range& range, const std::string& name, std::string& note) {
    Buffer part("", name);
    part.backup_on_write = range.buffer()->backup_on_write;
    part.set_text(range.buffer()->lines_of_range(range));
    const bool written = write_file(part, name);
    note = part.save_note;
    return written;
}

// WRITE_FILE(buffer or range [, name])
void write_file(Call& call) {
    const Value& what = call.args.value(0);
    std::string name = call.args.count() > 1 ? call.args.text(1) : std::string();
    std::string refusal, note;
    bool written = false;
    if (what.is(Type::range) && buffer_of(what)) {
        if (name.empty()) name = "tpu_range_out.txt";
        written = write_range(*what.range(), name, note);
    } else {
        Buffer* buffer = call.args.count() == 0 ? &call.buffer() : what.buffer();
        if (!buffer) {
            wrong_type(call, "a buffer or a range");
            return;
        }
        if (name.empty()) name = buffer->file_name;
        refusal = write_refusal(*buffer, name);
        written = write_file(*buffer, name);
        note = buffer->save_note;
    }
    if (written) return editor_of(call).set_message("Wrote " + name);
    if (!refusal.empty()) refusal = ": " + name + " (" + refusal + ")";
    editor_of(call).fail("TPU$_WRITEERR", "Write failed" + refusal, note);
}

// After this no variable refers to the object, which `share` takes out of a value.
template <class T, class Share>
void forget_shared(Call& call, const std::shared_ptr<T>& object, Share share) {
    editor_of(call).forget_values(
        [&](const Value& value) { return std::invoke(share, value) == object; });
}

void delete_process(Call& call, const std::shared_ptr<TPUProcess>& process) {
    editor_of(call).processes.dismiss(process);
    forget_shared(call, process, process_of);
}

void delete_array(Call& call, const std::shared_ptr<TPUArray>& array) {
    forget_shared(call, array, &Value::array);
    array->deleted = true;
}

void delete_buffer(Call& call, Buffer* buffer) {
    if (!buffer) return;
    if (buffer->permanent)
        return editor_of(call).set_message("A permanent buffer cannot be deleted");
    std::string name = buffer->name;
    bool done = editor_of(call).delete_buffer(buffer);
    editor_of(call).set_message(done ? "Deleted buffer " + name
                                     : "The last buffer cannot be deleted");
}

// Without an argument: what the command of that name does.
void delete_object(Call& call) {
    if (call.args.count() == 0) return editor_of(call).execute_command("DELETE");
    const Value value = call.args.value(0);
    switch (value.type()) {
        case Type::buffer: return delete_buffer(call, value.buffer());
        case Type::window: return editor_of(call).delete_window(window_of(value));
        case Type::array: return delete_array(call, value.array());
        case Type::process: return delete_process(call, process_of(value));
        case Type::marker:
            forget_shared(call, value.marker(), &Value::marker);
            *value.marker() = Marker();
            break;
        case Type::range:
            forget_shared(call, value.range(), &Value::range);
            *value.range() = Range();
            break;
        default: wrong_type(call, "a buffer, window, array, marker, range or process");
    }
}

// clang-format off
constexpr Builtin kRows[] = {
    {.name = "GET_BUFFER", .statement = shown<get_buffer>, .function = get_buffer, .form = "GET_BUFFER(name)",
     .help = "The buffer of that name; unspecified without one."},
    {.name = "CREATE_BUFFER", .function = create_buffer, .form = "CREATE_BUFFER(name [, file])",
     .help = "The buffer of that name, which is made, and loaded from the file, when there is none."},
    {.name = "READ_FILE", .statement = read_file, .form = "READ_FILE(file)",
     .help = "Insert the text of a file at the cursor."},
    {.name = "WRITE_FILE", .statement = write_file, .form = "WRITE_FILE(buffer or range [, file])",
     .help = "Write a text to a file, a buffer's own without one."},
    {.name = "DELETE", .statement = delete_object, .form = "DELETE[(object)]",
     .help = "Delete a buffer, window, array, marker, range or process; without one, the selection or the character at the cursor."},
};
// clang-format on

}  // namespace

std::span<const Builtin> buffers() {
    return kRows;
}

}  // namespace tpu::builtins
