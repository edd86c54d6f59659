// Typing one line: a state machine that is fed with keys.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "text/charset.h"

namespace tpu {

// What the text from byte `from` on may become.
struct Completion {
    std::size_t from = 0;
    std::vector<std::string> candidates;  // in the order in which they are offered
};

// How a line is asked for.
struct Asking {
    bool echo = true;                                      // what is typed is shown
    bool at_rest = false;                                  // see InputMode::is_at_rest
    const std::vector<std::string>* history = nullptr;     // earlier lines, oldest first
    std::function<Completion(std::string_view)> complete;  // given what stands before the cursor
};

class LineInput {
  public:
    explicit LineInput(Charset charset, Asking how = {});

    // Takes a key; true when it ended the line.
    bool key(int code);
    // Takes pasted text, up to its first line end.
    void paste(std::string_view text);

    bool cancelled() const { return cancelled_; }
    const std::string& text() const { return text_; }
    std::size_t cursor() const { return cursor_; }  // byte of the text that it stands before

  private:
    void insert(std::string_view bytes);
    void erase(std::size_t from, std::size_t to);
    void move_to(std::size_t cursor) { cursor_ = cursor; }
    std::size_t character_before() const;  // where it begins
    std::size_t character_after() const;   // where it ends
    std::size_t history_size() const { return how_.history ? how_.history->size() : 0; }
    void recall(std::size_t line);
    void complete();
    void offer(std::size_t candidate);

    Charset charset_;
    Asking how_;
    std::string text_;
    std::size_t cursor_ = 0;
    bool cancelled_ = false;
    std::size_t recalled_;  // line of the history that is shown; its size: what was typed
    std::string typed_;     // while an earlier line is shown
    Completion offered_;    // what Tab goes through; empty when the last key was no Tab
    std::size_t offer_ = 0;
};

}  // namespace tpu
