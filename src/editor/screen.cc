// The screen: set-up, resizing, drawing.
#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "editor/compose.h"
#include "editor/editor.h"
#include "editor/glyphs.h"
#include "editor/status_line.h"

namespace tpu {

void TPUEditor::init_screen() {
    if (headless) {
        rows = 24;
        cols = 80;
    } else {
        std::string error = ports.terminal.start();
        if (!error.empty()) {
            std::fprintf(stderr, "%s\n", printable(error, charset).c_str());
            std::fflush(stderr);
            _exit(1);
        }
        ScreenSize size = ports.terminal.size();
        rows = size.rows;
        cols = size.cols;
    }
    create_default_window();
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

}  // namespace tpu
