// The real program in a pseudo terminal, and what a person would see there.
#pragma once

#include <sys/types.h>
#include <termios.h>
#include <vterm.h>

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tpu {

// A terminal with an empty home folder of its own. Waiting ends when what is
// waited for has happened, or after far more time than that takes.
class PtySession {
  public:
    explicit PtySession(int rows = 24, int cols = 80);
    ~PtySession();
    PtySession(const PtySession&) = delete;
    PtySession& operator=(const PtySession&) = delete;

    // Starts the program in the home folder. Standard input is `input` when that is
    // not empty; standard error goes to a file.
    void start(std::vector<std::string> arguments, const std::string& input = "");
    // Starts the program on a file of this text and waits for its first screen.
    void edit(const std::string& name, const std::string& text);

    void type(std::string_view bytes);
    void type_unseen(std::string_view bytes);  // nobody takes what the program shows
    void resize(int rows, int cols);
    void send_signal(int signal);
    void hang_up();

    bool eventually(const std::function<bool()>& holds);
    bool shows(std::string_view text);           // somewhere on the screen
    bool shows(int row, std::string_view text);  // the row without the blanks at its end
    bool has_cursor_at(int row, int col);
    bool ends_unseen();  // while nobody takes what the program shows
    int exit_status();   // 128 and its number: a signal ended it; -1: nothing has

    std::string row(int row) const;
    std::string screen() const;  // for failure messages
    bool is_reverse(int row, int col) const;
    const std::string& output() const { return output_; }  // raw
    std::string errors() const { return read("standard-error"); }
    termios attributes() const;
    std::string terminal_name() const { return terminal_name_; }

    const std::string& home() const { return home_; }
    // Files in the home folder.
    void write(const std::string& name, const std::string& text) const;
    std::string read(const std::string& name) const;

    std::map<std::string, std::string> environment;  // all of it

  private:
    std::string path(const std::string& name) const { return home_ + "/" + name; }
    VTermScreenCell cell(int row, int col) const;
    void run_program(char* const* arguments, char* const* variables, const std::string& input);
    bool take_output(int wait_ms);

    std::string home_;
    std::string terminal_name_;
    int master_ = -1;
    int slave_ = -1;  // kept open, so that the attributes can be read at the end
    pid_t child_ = -1;
    int rows_, cols_;
    VTerm* vterm_;
    std::string output_;
};

}  // namespace tpu
