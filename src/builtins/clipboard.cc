// The system's clipboard.
#include "store/clipboard.h"

#include "builtins/families.h"
#include "editor/editor.h"

namespace tpu::builtins {

namespace {

void write_clipboard(Call& call) {
    std::string text = call.args.count() > 0 ? call.args.text(0) : call.buffer().paste_text.text();
    // Deliberate: a failure is not reported.
    (void)clipboard_write_system(editor_of(call).ports.system, text);
}

void read_clipboard(Call& call) {
    std::string text;
    Failure why;
    if (!clipboard_read_system(editor_of(call).ports.system, text, why)) {
        return editor_of(call).fail("TPU$_CLIPBOARDFAIL",
                                    "Clipboard read failed (install pbpaste/xclip/wl-paste)",
                                    why.text());
    }
    call.buffer().paste_text = LineStore::from_text(text);
    editor_of(call).set_message("Read " + std::to_string(text.size()) + " chars from clipboard");
}

Value clipboard_text(Call& call) {
    std::string text;
    Failure why;
    if (clipboard_read_system(editor_of(call).ports.system, text, why)) {
        return Value::make_str(text);
    }
    call.parser.record_error("TPU$_CLIPBOARDFAIL", why.text());
    return tpu_unspecified();
}

// clang-format off
constexpr Builtin kRows[] = {
    {.name = "WRITE_CLIPBOARD", .statement = write_clipboard, .form = "WRITE_CLIPBOARD[(text)]",
     .help = "Put a text on the system's clipboard; without one, what was last cut or copied in the buffer."},
    {.name = "READ_CLIPBOARD", .statement = read_clipboard, .function = clipboard_text, .bare = true,
     .form = "READ_CLIPBOARD", .help = "The text on the system's clipboard; as a statement, the buffer's next paste."},
    {.name = "GET_CLIPBOARD", .statement = read_clipboard, .function = clipboard_text,
     .form = "GET_CLIPBOARD()", .help = "The text on the system's clipboard; as a statement, the buffer's next paste."},
};
// clang-format on

}  // namespace

std::span<const Builtin> clipboard() {
    return kRows;
}

}  // namespace tpu::builtins
