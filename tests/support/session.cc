#include "support/session.h"

#include "commands/vocabulary.h"
#include "keys/key_names.h"
#include "lang/compile.h"
#include "lang/nesting.h"
#include "lang/nodes.h"

namespace tpu {

int code_of(const Event& event) {
    switch (event.kind) {
        case Event::Kind::none: return kNoKey;
        case Event::Kind::paste: return kKeyPaste;
        case Event::Kind::resize: return kKeyResize;
        case Event::Kind::hang_up: return kKeyHangup;
        default: return event.key;
    }
}

Event FakeTerminal::read(int wait_ms, const Awaited& beside) {
    waits.push_back(wait_ms);
    others = beside;
    if (before_key) before_key();
    if (keys.empty()) return {Event::Kind::hang_up};
    int key = keys.front();
    keys.pop_front();
    switch (key) {
        case kNoKey: return {};
        case kKeyPaste: return {Event::Kind::paste, kNoKey, std::exchange(pasted, {})};
        case kKeyMouse: return {Event::Kind::mouse, key, {}, clicked};
        case kKeyResize: return {Event::Kind::resize};
        case kKeyHangup: return {Event::Kind::hang_up};
    }
    Event event = Event::of_key(key);
    if (key > 255) return event;
    const std::size_t size = utf8_length(static_cast<unsigned char>(key));
    while (event.text.size() < size && !keys.empty() && (keys.front() & ~0x3f) == 0x80) {
        event.text += static_cast<char>(keys.front());
        keys.pop_front();
    }
    return event;
}

std::vector<int> key_codes(std::string_view keys) {
    std::vector<int> codes;
    while (!keys.empty()) {
        std::size_t end = keys.find('>', 2);
        if (keys[0] != '<' || end == std::string_view::npos) {
            codes.push_back(static_cast<unsigned char>(keys[0]));
            keys.remove_prefix(1);
            continue;
        }
        std::string_view name = keys.substr(1, end - 1);
        if (name == "RETURN") {
            codes.push_back('\r');
        } else if (name == "ESC") {
            codes.push_back(27);
        } else if (name == "TAB") {
            codes.push_back('\t');
        } else if (name == "<") {
            codes.push_back('<');
        } else if (name.starts_with("CTRL_") && name.size() == 6) {
            codes.push_back(control(name[5]));
        } else {
            codes.push_back(key_code_of(name));
        }
        keys.remove_prefix(end + 1);
    }
    return codes;
}

Session::Session(std::vector<std::string> lines, int rows, int cols)
    : editor({terminal, clock, system}, vocabulary()) {
    terminal.screen = {rows, cols};
    editor.charset = Charset::utf8;
    buffer = editor.create_buffer("MAIN", "");
    buffer->set_text(LineStore(lines));
    editor.init_screen();
    editor.define_default_keys();
}

void Session::press(std::string_view keys) {
    std::vector<int> codes = key_codes(keys);
    terminal.keys.assign(codes.begin(), codes.end());
    for (Event event; (event = terminal.read(0, {})).kind != Event::Kind::hang_up;) {
        editor.handle_event(event);
    }
}

std::vector<std::string> Session::screen() {
    editor.draw();
    Surface visible = terminal.shown.visible();
    std::vector<std::string> rows;
    for (int row = 0; row < visible.rows(); ++row) {
        std::string text = visible.row_text(row);
        text.erase(text.find_last_not_of(' ') + 1);
        rows.push_back(text);
    }
    return rows;
}

const Value* variable(TPUEditor& editor, std::string_view name) {
    const Symbol* symbol = editor.parser.symbols.find(name);
    return symbol && symbol->is_bound() ? &symbol->value : nullptr;
}

Value value_of(TPUEditor& editor, const std::string& expression) {
    NodePtr code = compile_expression(expression, editor.parser.symbols);
    Nesting nesting(editor.parser);
    return code ? editor.parser.eval_root(*code) : Value();
}

}  // namespace tpu
