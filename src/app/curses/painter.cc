#include "app/curses/painter.h"

#define NCURSES_NOMACROS 1
#define NCURSES_WIDECHAR 1
#ifndef _XOPEN_SOURCE_EXTENDED
#define _XOPEN_SOURCE_EXTENDED 1
#endif
#include <curses.h>
#include <wchar.h>

#include <algorithm>
#include <array>

namespace tpu {

namespace {

struct AttrBits {
    Attr attr;
    attr_t bits;
};

constexpr AttrBits kAttrBits[] = {
    {Attr::reverse, A_REVERSE},     {Attr::dim, A_DIM},     {Attr::bold, A_BOLD},
    {Attr::underline, A_UNDERLINE}, {Attr::blink, A_BLINK}, {Attr::standout, A_STANDOUT},
};

attr_t curses_bits(Attr attr) {
    attr_t bits = A_NORMAL;
    for (const AttrBits& row : kAttrBits) {
        if (has(attr, row.attr)) bits |= row.bits;
    }
    return bits;
}

constexpr bool is_ascii_graphic(char32_t glyph) {
    return glyph >= U' ' && glyph < 0x7f;
}

constexpr bool is_control(char32_t glyph) {
    return glyph < U' ' || (glyph >= 0x7f && glyph < 0xa0);
}

// The character that may be sent to the terminal for a glyph in so many cells: a
// control character or one of another width would upset the whole row.
cchar_t curses_cell(Cell cell, int cells) {
    auto character = static_cast<wchar_t>(cell.glyph);
    int width = is_ascii_graphic(cell.glyph) ? 1 : wcwidth(character);
    wchar_t text[3] = {character, 0, 0};
    if (is_control(cell.glyph) || width < 0 || width > cells) {
        text[0] = L'?';
    } else if (width == 0) {
        text[0] = L' ';
        text[1] = character;
    }
    cchar_t result = {};
    if (setcchar(&result, text, curses_bits(cell.attr), 0, nullptr) == ERR) {
        setcchar(&result, L"?", curses_bits(cell.attr), 0, nullptr);
    }
    return result;
}

// In pieces, so that drawing needs no memory.
void paint_row(WINDOW* window, const Surface& surface, int row) {
    std::array<cchar_t, 128> piece;
    std::size_t size = 0;
    int begin = 0;
    for (int col = 0; col < surface.cols(); ++col) {
        Cell cell = surface.at(row, col);
        bool wide = col + 1 < surface.cols() && surface.at(row, col + 1).glyph == 0;
        if (cell.glyph == 0) cell.glyph = U' ';
        piece[size++] = curses_cell(cell, wide ? 2 : 1);
        // Curses fills the second cell of a wide character by itself.
        if (wide && wcwidth(static_cast<wchar_t>(cell.glyph)) == 2) ++col;
        if (size < piece.size() && col + 1 < surface.cols()) continue;
        mvwadd_wchnstr(window, row, begin, piece.data(), static_cast<int>(size));
        begin = col + 1;
        size = 0;
    }
}

bool same_row(const Surface& a, const Surface& b, int row) {
    if (a.cols() == 0) return true;
    const Cell* cells = &a.at(row, 0);
    return std::equal(cells, cells + a.cols(), &b.at(row, 0));
}

void paint(WINDOW* window, const Surface& surface, Surface& shown) {
    bool same_size = surface.rows() == shown.rows() && surface.cols() == shown.cols();
    if (!same_size) werase(window);
    for (int row = 0; row < surface.rows(); ++row) {
        if (!same_size || !same_row(surface, shown, row)) paint_row(window, surface, row);
    }
    // Where memory is too short for another size, all is written again the next time.
    same_size ? shown = surface : shown = Surface(surface);
}

WINDOW* make_window(int height, int cols, int top, bool leave_cursor) {
    if (height <= 0 || top < 0) return nullptr;  // Curses skips windows that are not there.
    WINDOW* window = newwin(height, cols, top, 0);
    leaveok(window, leave_cursor);
    return window;
}

}  // namespace

void Painter::open(int rows, int cols) {
    close();
    rows_ = rows;
    text_win_ = make_window(rows - 1, cols, 0, false);
    status_win_ = make_window(1, cols, rows - 2, true);
    message_win_ = make_window(1, cols, rows - 1, true);
    cols_ = cols;
    shown_ = {};  // all rows are written
    curs_set(1);
}

void Painter::close() {
    for (WINDOW** window : {&text_win_, &status_win_, &message_win_}) {
        if (*window) delwin(*window);
        *window = nullptr;
    }
}

void Painter::present(const Frame& frame) {
    bool lacks_window = !text_win_ || !status_win_ || !message_win_;
    if (lacks_window && rows_ > 1) open(rows_, cols_);  // there may be memory for them now
    paint(status_win_, frame.status, shown_.status);
    paint(message_win_, frame.message, shown_.message);
    paint(text_win_, frame.text, shown_.text);
    wnoutrefresh(status_win_);
    wnoutrefresh(message_win_);
    curs_set(1);
    if (text_win_) touchline(text_win_, rows_ - 2, 1);  // covers the status row
    place_cursor(frame.cursor);
    doupdate();
}

// The cursor stands where the last refreshed window that does not leave it has it.
void Painter::place_cursor(ScreenPlace place) {
    leaveok(text_win_, false);
    wmove(text_win_, place.row, place.col);
    wnoutrefresh(text_win_);
    if (place.row < rows_ - 1) return;
    leaveok(message_win_, false);
    wmove(message_win_, 0, place.col);
    wnoutrefresh(message_win_);
    leaveok(message_win_, true);
}

}  // namespace tpu
