// A shell command that runs beside the editor, with its input and output in pipes.
//
// Nothing here waits: what the child writes is collected by poll_output(), which
// the main loop calls, and input that the child does not take at once is kept and
// sent from there too.
#pragma once

#include <sys/types.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "os/descriptor.h"
#include "os/system.h"
#include "text/charset.h"
#include "value/value.h"

namespace tpu {

class TPUProcess : public Object {
  public:
    std::string command;       // as started
    Buffer* output = nullptr;  // takes what the child writes; not owned; null: it is dropped

    TPUProcess() = default;
    TPUProcess(const TPUProcess&) = delete;
    TPUProcess& operator=(const TPUProcess&) = delete;
    // Ends a child that still runs, without waiting until it has.
    ~TPUProcess() override;

    // Runs a command line in the shell. Once per object. False: no pipe or child
    // could be made. A command that the shell cannot run is no failure; the shell's
    // complaint is output like any other. With Charset::utf8 the output is delivered
    // in whole characters.
    [[nodiscard]] bool start(System& system, const std::string& command_line, Buffer* output_buffer,
                             Failure& why, Charset charset = Charset::bytes);

    // The child's process id; -1 before the start and once it has ended.
    pid_t pid() const { return pid_; }

    // Writes to the child's standard input; nothing is added to the text. Does nothing
    // once the input is closed or when the child has closed its end. What the child
    // does not take yet waits, up to 16 megabytes: false when it would become more, and
    // the text is dropped.
    bool send(std::string_view text);

    // Closes the child's standard input, behind what has been sent.
    void send_eof();

    // Asks the child to end and has no more to do with its input and output. It is
    // to be polled until it has ended.
    void dismiss();

    // Asks all of them to end, and kills those that have not after kChildPatience, with
    // all that they have started.
    static void end_all(const std::vector<std::shared_ptr<TPUProcess>>& processes);

    // Puts the output that has arrived into the buffer at its cursor, even into an
    // unmodifiable one: at most so many bytes while it runs, so that a child which never stops
    // writing leaves the editor time for keys. True while the child runs; when this
    // becomes false all of its output has been delivered. Where memory is too short, what was
    // read waits for the next time.
    bool poll_output(std::size_t most = kPollShare);
    static constexpr std::size_t kPollShare = 1 << 18;

    // True when the last poll found output.
    bool is_talking() const { return talking_; }

    // Adds what makes it worth while to poll again.
    void await(Awaited& awaited) const;

  private:
    void flush_input();
    void write_unsent();
    bool read_output(std::string& text, std::size_t most);
    void deliver(std::string_view text);
    bool reap();
    void has_ended();

    pid_t pid_ = -1;
    Descriptor input_;           // what we write, the child reads
    Descriptor output_;          // what the child writes, errors too; closed at its end
    std::string unsent_;         // accepted by send() but not by the pipe yet ...
    std::size_t sent_ = 0;       // ... but for this many bytes of it
    bool input_closed_ = false;  // by send_eof()
    Charset charset_ = Charset::bytes;
    std::string undelivered_;  // most often the begin of a character that is still to arrive
    bool talking_ = false;
};

inline Value process_value(std::shared_ptr<TPUProcess> process) {
    return Value::make_object(Value::Type::process, std::move(process));
}
// Null for a value of another type.
inline std::shared_ptr<TPUProcess> process_of(const Value& value) {
    return value.object<TPUProcess>(Value::Type::process);
}

}  // namespace tpu
