// Shows frames with curses.
#pragma once

#include "editor/frame.h"

// Curses' own names for its handles; curses.h stays out of headers.
struct _win_st;

namespace tpu {

class Painter {
  public:
    Painter() = default;
    ~Painter() { close(); }
    Painter(const Painter&) = delete;
    Painter& operator=(const Painter&) = delete;

    // Makes the windows for a screen of this size, on which nothing is shown yet.
    void open(int rows, int cols);
    void close();

    // Shows the frame: rows that are as before are not written again.
    void present(const Frame& frame);

  private:
    void place_cursor(ScreenPlace place);

    int rows_ = 0, cols_ = 0;
    _win_st* text_win_ = nullptr;  // all rows but the last
    _win_st* status_win_ = nullptr;
    _win_st* message_win_ = nullptr;
    Frame shown_;
};

}  // namespace tpu
