// What the interpreter asks of those for whom it runs programs.
#pragma once

#include <functional>
#include <string>

namespace tpu {

class Buffer;

class Host {
  public:
    using Piece = std::function<void()>;

    // Shows a line to the user.
    virtual void set_message(const std::string& text) = 0;
    // True when the user wants what runs to end. Asked again and again: cheap.
    virtual bool interrupt_waiting() = 0;
    // What most built-ins work on; null: there is nothing, and they do nothing.
    virtual Buffer* buffer() = 0;
    // Runs one line of a learn sequence: statements, or a command of the host's own.
    virtual void run_key_text(const std::string& text) = 0;

    // Runs an outermost statement together with the handler that it may cause to run.
    virtual void step(const Piece& piece) = 0;
    // Runs one statement of such a step, which has that text.
    virtual void record(const std::function<std::string()>& text, const Piece& piece) = 0;
    // No code runs any more, whatever happened.
    virtual void come_to_rest() = 0;

  protected:
    ~Host() = default;
};

}  // namespace tpu
