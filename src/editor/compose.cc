#include "editor/compose.h"

#include <algorithm>
#include <cstdio>

#include "editor/editor.h"
#include "editor/glyphs.h"
#include "editor/status_line.h"

namespace tpu {

namespace {

// The part of a row that something is drawn into.
struct Field {
    int row, col, width;
};

// Draws text at its natural width, cut to the field; the number of cells used.
int draw_text(Surface& surface, Field field, std::string_view text, Charset charset, Attr attr) {
    int col = 0;
    while (!text.empty()) {
        Glyph glyph = glyph_at(text, charset);
        if (col + glyph.cells > field.width) break;
        surface.put(field.row, field.col + col, {glyph.code, attr});
        if (glyph.cells == 2) surface.put(field.row, field.col + col + 1, {0, attr});
        col += glyph.cells;
        text.remove_prefix(static_cast<std::size_t>(glyph.bytes));
    }
    return col;
}

void draw_bar(Surface& surface, Field field, std::string_view text, Charset charset) {
    surface.blank(field.row, field.col, field.width, Attr::reverse);
    draw_text(surface, field, text, charset, Attr::reverse);
}

// Draws one window.
class WindowPainter {
  public:
    WindowPainter(const TPUEditor& editor, const Plan::View& view, Surface& surface)
        : editor_(editor),
          view_(view),
          window_(*view.window),
          buffer_(*view.window->buffer),
          surface_(surface),
          width_(window_.effective_width(editor.cols)),
          gutter_(editor.gutter(window_)) {}

    void paint() {
        for (int r = std::max(0, -window_.top); r < window_.text_rows(); ++r) {
            std::int64_t y = std::int64_t{window_.top} + r;
            if (!shows(y)) break;
            paint_row(static_cast<int>(y), view_.first_line + static_cast<std::uint64_t>(r));
        }
        std::int64_t status_row = std::int64_t{window_.top} + window_.height - 1;
        if (window_.has_status && shows(status_row)) {
            draw_bar(surface_, {static_cast<int>(status_row), window_.left, width_},
                     editor_.format_status_line(&window_, &buffer_), editor_.charset);
        }
    }

  private:
    // Only the message line is kept free of windows.
    bool shows(std::int64_t y) const { return y >= 0 && y <= editor_.rows - 2; }

    void paint_row(int y, std::uint64_t line) {
        surface_.blank(y, window_.left, width_);
        Field text{y, window_.left + gutter_, width_ - gutter_};
        if (line == buffer_.text().size()) {
            draw_text(surface_, text, buffer_.eob_text, editor_.charset, Attr::dim);
        } else if (line < buffer_.text().size()) {
            if (gutter_ > 0) paint_number(y, line);
            paint_line(text, line);
        }
    }

    void paint_number(int y, std::uint64_t line) {
        char number[32];
        std::snprintf(number, sizeof number, "%5zu ", static_cast<std::size_t>(line + 1));
        draw_text(surface_, {y, window_.left, gutter_}, number, editor_.charset, Attr::dim);
    }

    // A cell for each byte: the glyph in the first cells of its bytes, the rest blank.
    void paint_line(Field field, std::uint64_t line) {
        auto width = static_cast<std::uint64_t>(field.width);
        std::string bytes = buffer_.text().slice({line, 0}, width + kLongestCharacter - 1);
        for (int c = 0; c < field.width; ++c) {
            surface_.put(field.row, field.col + c, {U' ', attr_at(line, c)});
        }
        std::string_view rest = bytes;
        for (int c = 0; c < field.width && !rest.empty();) {
            Glyph glyph = glyph_at(rest, editor_.charset);
            if (c + glyph.cells > field.width) break;
            Attr attr = attr_at(line, c);
            surface_.put(field.row, field.col + c, {glyph.code, attr});
            if (glyph.cells == 2) surface_.put(field.row, field.col + c + 1, {0, attr});
            c += glyph.bytes;
            rest.remove_prefix(static_cast<std::size_t>(glyph.bytes));
        }
    }

    Attr attr_at(std::uint64_t line, int cell) const {
        auto column = static_cast<std::uint64_t>(cell);
        Attr attr = Attr::none;
        bool selected =
            view_.selection && buffer_.position_in_range(line, column, *view_.selection);
        if (selected) attr |= Attr::reverse;
        for (const Buffer::VideoRegion& region : buffer_.video_regions) {
            if (buffer_.position_in_range(line, column, region.range)) attr |= region.attr;
        }
        if (buffer_.right_margin != 0 && column == buffer_.right_margin && !selected) {
            attr |= Attr::dim;
        }
        return attr;
    }

    const TPUEditor& editor_;
    const Plan::View& view_;
    const TPUWindow& window_;
    const Buffer& buffer_;
    Surface& surface_;
    int width_;
    int gutter_;
};

// The terminal cursor stands at the current buffer's cursor, by the view line as
// the last window left it, whether or not the window reaches so far.
ScreenPlace cursor_place(const TPUEditor& editor) {
    const Buffer* buffer = editor.current_buffer;
    if (!buffer) return {};
    const TPUWindow* window = editor.current_window;
    int width = window ? window->effective_width(editor.cols) : editor.cols;
    int gutter = window ? editor.gutter(*window) : 0;
    auto row = static_cast<std::int64_t>(buffer->cursor_row - buffer->view_line);
    auto last = static_cast<std::uint64_t>(std::max(width - gutter - 1, 0));
    int col = static_cast<int>(std::min(buffer->cursor_column, last)) + gutter;
    row += window ? window->top : 0;
    return {static_cast<int>(std::clamp<std::int64_t>(row, 0, std::max(editor.rows - 1, 0))),
            (window ? window->left : 0) + col};
}

void scroll_to_cursor(Buffer& buffer, int text_rows) {
    auto rows = static_cast<std::uint64_t>(text_rows);
    if (buffer.cursor_row < buffer.view_line) {
        buffer.view_line = buffer.cursor_row;
    } else if (buffer.cursor_row >= buffer.view_line + rows) {
        buffer.view_line = buffer.cursor_row - rows + 1;
    }
}

}  // namespace

Plan settle(TPUEditor& editor) {
    if (editor.current_buffer) editor.current_buffer->clamp_cursor();
    if (editor.windows.empty()) editor.create_default_window();
    if (editor.current_window && editor.current_window->buffer != editor.current_buffer) {
        editor.map_window(editor.current_window, editor.current_buffer);
    }
    Plan plan;
    for (const auto& window : editor.windows) {
        if (!window->visible || !window->buffer) continue;
        Buffer& buffer = *window->buffer;
        buffer.clamp_cursor();
        if (window->effective_width(editor.cols) <= 0) continue;
        scroll_to_cursor(buffer, window->text_rows());
        plan.views.push_back({window.get(), buffer.view_line, buffer.select_range()});
    }
    return plan;
}

Frame compose(const TPUEditor& editor, const Plan& plan) {
    Frame frame{Surface(editor.rows - 1, editor.cols), Surface(1, editor.cols),
                Surface(1, editor.cols), cursor_place(editor)};
    for (const Plan::View& view : plan.views) {
        WindowPainter(editor, view, frame.text).paint();
    }
    if (editor.current_buffer) {
        const KeyMapList* list = editor.current_key_map_list;
        draw_bar(frame.status, {0, 0, editor.cols},
                 global_status(*editor.current_buffer, list ? list->name : ""), editor.charset);
    }
    draw_text(frame.message, {0, 0, editor.cols}, editor.message, editor.charset, Attr::none);
    return frame;
}

namespace {

int cells_of(std::string_view text, Charset charset) {
    int cells = 0;
    while (!text.empty()) {
        Glyph glyph = glyph_at(text, charset);
        cells += glyph.cells;
        text.remove_prefix(static_cast<std::size_t>(glyph.bytes));
    }
    return cells;
}

}  // namespace

void compose_prompt(const TPUEditor& editor, std::string_view line, std::size_t cursor,
                    Frame& frame) {
    // Drop characters from the front until what stands before the cursor, and it, fit.
    std::string_view shown = line;
    int before = cells_of(line.substr(0, cursor), editor.charset);
    while (before >= editor.cols && !shown.empty()) {
        Glyph glyph = glyph_at(shown, editor.charset);
        shown.remove_prefix(static_cast<std::size_t>(glyph.bytes));
        before -= glyph.cells;
    }
    frame.message = Surface(1, editor.cols);
    draw_text(frame.message, {0, 0, editor.cols}, shown, editor.charset, Attr::none);
    frame.cursor = {editor.rows - 1, before};
}

}  // namespace tpu
