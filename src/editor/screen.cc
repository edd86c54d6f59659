// The screen: set-up, resizing, drawing.
#include <algorithm>

#include "editor/compose.h"
#include "editor/editor.h"
#include "editor/glyphs.h"
#include "editor/status_line.h"

namespace tpu {

std::string TPUEditor::init_screen() {
    if (headless) {
        rows = 24;
        cols = 80;
    } else {
        std::string error = ports.terminal.start();
        if (!error.empty()) return error;
        ScreenSize size = ports.terminal.size();
        rows = size.rows;
        cols = size.cols;
    }
    create_default_window();
    return {};
}

TPUWindow* TPUEditor::create_default_window() {
    TPUWindow* window = create_window(0, rows - 2, true);
    window->buffer = current_buffer;
    current_window = window;
    return window;
}

void TPUEditor::resize_screen() {
    resize_is_due_ = true;
    ScreenSize size = ports.terminal.size();
    std::vector<TPUWindow*> all;
    for (const auto& window : windows) all.push_back(window.get());
    resize_memory_.resize(all, rows, cols, size.rows, size.cols);
    rows = size.rows;
    cols = size.cols;
    resize_is_due_ = false;
}

void TPUEditor::draw() {
    if (headless) return;
    if (resize_is_due_) resize_screen();
    Plan plan = settle(*this);
    ports.terminal.present(compose(*this, plan));
}

int TPUEditor::gutter(const TPUWindow& window) const {
    constexpr int kGutter = 6, kLeastWidth = 9;
    return show_line_numbers && window.effective_width(cols) >= kLeastWidth ? kGutter : 0;
}

std::string TPUEditor::format_status_line(const TPUWindow* window, const Buffer* buffer) const {
    return window_status(*buffer, buffer == current_buffer, window->status_format);
}

void TPUEditor::def_endwin_then_run(const std::string& command) {
    if (command.empty()) return set_message("SPAWN requires a command");
    if (!headless) ports.terminal.leave();
    // Deliberate: the raw wait status is shown, not the command's own.
    Failure why;
    int status = ports.system.run(command, why);
    if (!headless) ports.terminal.enter();
    const std::string told = "SPAWN exit code " + std::to_string(status);
    why ? fail("TPU$_CREATEFAIL", told, why.text()) : set_message(told);
}

}  // namespace tpu
