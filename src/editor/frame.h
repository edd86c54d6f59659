// A picture of the screen as data: what compose() makes and a Terminal shows.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "text/attr.h"

namespace tpu {

// One character cell. A glyph is always safe to show: never a control character.
struct Cell {
    char32_t glyph = U' ';  // 0: covered by the two-cell glyph to the left
    Attr attr = Attr::none;

    friend bool operator==(const Cell&, const Cell&) = default;
};

// A rectangle of cells, blank at first.
class Surface {
  public:
    Surface() = default;
    Surface(int rows, int cols);

    int rows() const { return rows_; }
    int cols() const { return cols_; }
    bool contains(int row, int col) const {
        return row >= 0 && row < rows_ && col >= 0 && col < cols_;
    }
    Cell& at(int row, int col) { return cells_[index(row, col)]; }
    const Cell& at(int row, int col) const { return cells_[index(row, col)]; }

    // Sets one cell; places outside the surface are skipped. A two-cell glyph that
    // loses one of its cells is blanked.
    void put(int row, int col, Cell cell);
    // Makes `count` cells from (row, col) on blank, with this attribute.
    void blank(int row, int col, int count, Attr attr = Attr::none);

    // The glyphs of a row as UTF-8, without attributes; for tests and messages.
    std::string row_text(int row) const;

    friend bool operator==(const Surface&, const Surface&) = default;

  private:
    std::size_t index(int row, int col) const {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(cols_) +
               static_cast<std::size_t>(col);
    }

    int rows_ = 0;
    int cols_ = 0;
    std::vector<Cell> cells_;
};

// Screen cells, zero-based.
struct ScreenPlace {
    int row = 0;
    int col = 0;

    friend bool operator==(const ScreenPlace&, const ScreenPlace&) = default;
};

// Three surfaces that are shown over each other: the text covers all rows but the
// last and so hides the global status line on the row before; the message line
// stands below it.
struct Frame {
    Surface text;     // rows - 1 rows from row 0
    Surface status;   // 1 row at rows - 2
    Surface message;  // 1 row at rows - 1
    ScreenPlace cursor;

    // What a person sees: status and message, then the text over them.
    Surface visible() const;
};

}  // namespace tpu
