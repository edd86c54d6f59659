// A shell command that runs beside the editor, with its input and output in pipes.
//
// Nothing here waits: what the child writes is collected by poll_output(), which
// the main loop calls, and input that the child does not take at once is kept and
// sent from there too.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/descriptor.h"

namespace tpu {

class Buffer;

class TPUProcess {
  public:
    std::string command;       // as started
    Buffer* output = nullptr;  // takes what the child writes; not owned; null: it is dropped

    TPUProcess() = default;
    TPUProcess(const TPUProcess&) = delete;
    TPUProcess& operator=(const TPUProcess&) = delete;
    // Ends a child that still runs, without waiting until it has.
    ~TPUProcess();

    // Runs a command line in the shell. Once per object. False: no pipe or child
    // could be made. A command that the shell cannot run is no failure; the shell's
    // complaint is output like any other.
    [[nodiscard]] bool start(const std::string& command_line, Buffer* output_buffer);

    // The child's process id; -1 before the start and once it has ended.
    pid_t pid() const { return pid_; }

    // Writes to the child's standard input; nothing is added to the text. Does nothing
    // once the input is closed or when the child has closed its end. What the child
    // does not take yet waits, up to 16 megabytes: false when it would become more, and
    // the text is dropped.
    bool send(std::string_view text);

    // Closes the child's standard input, behind what has been sent.
    void send_eof();

    // Asks all of them to end, and kills those that have not after `patience`.
    static void end_all(const std::vector<std::shared_ptr<TPUProcess>>& processes,
                        std::chrono::milliseconds patience);

    // Puts the output that has arrived into the buffer at its cursor, even into an
    // unmodifiable one. True while the child runs; when this becomes false all of
    // its output has been delivered.
    bool poll_output();

  private:
    void flush_input();
    void write_unsent();
    bool collect_output();
    void deliver(std::string_view text);
    bool reap();

    pid_t pid_ = -1;
    Descriptor input_;           // what we write, the child reads
    Descriptor output_;          // what the child writes, errors too
    std::string unsent_;         // accepted by send() but not by the pipe yet
    bool input_closed_ = false;  // by send_eof()
};

}  // namespace tpu
