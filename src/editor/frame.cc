#include "editor/frame.h"

#include "text/charset.h"

namespace tpu {

Surface::Surface(int rows, int cols)
    : rows_(rows > 0 ? rows : 0), cols_(cols > 0 ? cols : 0), cells_(index(rows_, 0)) {}

void Surface::put(int row, int col, Cell cell) {
    if (!contains(row, col)) return;
    Cell& place = at(row, col);
    if (place.glyph == 0 && cell.glyph != 0 && col > 0) at(row, col - 1).glyph = U' ';
    if (cell.glyph != 0 && col + 1 < cols_ && at(row, col + 1).glyph == 0) {
        at(row, col + 1).glyph = U' ';
    }
    place = cell;
}

void Surface::blank(int row, int col, int count, Attr attr) {
    for (int i = 0; i < count; ++i) put(row, col + i, {U' ', attr});
}

std::string Surface::row_text(int row) const {
    std::string text;
    for (int col = 0; col < cols_; ++col) {
        if (char32_t glyph = at(row, col).glyph) text += encode_utf8(glyph);
    }
    return text;
}

namespace {

void lay_over(Surface& screen, const Surface& surface, int top) {
    for (int row = 0; row < surface.rows(); ++row) {
        for (int col = 0; col < surface.cols(); ++col) {
            screen.put(top + row, col, surface.at(row, col));
        }
    }
}

}  // namespace

Surface Frame::visible() const {
    int rows = text.rows() + message.rows();
    Surface screen(rows, text.cols());
    lay_over(screen, status, rows - 2);
    lay_over(screen, message, rows - 1);
    lay_over(screen, text, 0);
    return screen;
}

}  // namespace tpu
