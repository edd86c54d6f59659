// The editor session: it owns the buffers, windows and key maps, the interpreter
// and everything else that lives as long as a session.
//
// The members stand here under the files that hold them. Work that needs no
// editor is done by smaller parts (editor/layout.h, editor/compose.h,
// status_line.h, ...); the members are their doors.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "buffer/buffer.h"
#include "editor/layout.h"
#include "editor/line_input.h"
#include "editor/ports.h"
#include "editor/processes.h"
#include "editor/test_report.h"
#include "editor/timer.h"
#include "editor/vocabulary.h"
#include "editor/window.h"
#include "keys/key_map.h"
#include "lang/host.h"
#include "lang/parser.h"
#include "os/short_memory.h"
#include "store/buffer_file.h"
#include "value/array.h"

namespace tpu {

class InputMode;
class OpenFiles;
class Recovery;
class UndoStep;

// How far FILE_SEARCH has come.
struct FileSearch {
    std::string pattern;
    std::vector<std::string> files;
    std::size_t next = 0;
};

class TPUEditor : public Host {
  public:
    // What it is given outlives the editor. A headless editor never uses the terminal.
    TPUEditor(Ports outside, const Vocabulary& words);
    ~TPUEditor();
    TPUEditor(const TPUEditor&) = delete;
    TPUEditor& operator=(const TPUEditor&) = delete;

    ArrayCycles array_cycles;  // goes last, when nobody here holds arrays any more
    Ports ports;
    const Vocabulary& vocabulary;
    std::vector<std::unique_ptr<Buffer>> buffers;  // in order of creation
    Buffer* current_buffer = nullptr;
    std::map<std::string, std::unique_ptr<KeyMap>> key_maps;
    std::map<std::string, std::unique_ptr<KeyMapList>> key_map_lists;
    KeyMapList* current_key_map_list = nullptr;
    std::vector<std::unique_ptr<TPUWindow>> windows;
    TPUWindow* current_window = nullptr;
    MiniTPUParser parser;
    int rows = 0;  // screen cells
    int cols = 0;
    bool running = true;
    bool hung_up = false;  // nobody has told it to end
    int exit_status = 0;
    std::string message;  // on the message line
    int gold_key = kKeyF0 + 1;
    bool gold_pending = false;
    bool show_line_numbers = false;
    bool bell = true;    // the terminal may beep
    bool mouse = false;  // the terminal is to report the mouse
    bool headless = false;
    std::string named_file;            // on the command line of the program; empty: none
    std::uint64_t named_line = 0;      // likewise, counting from 1; 0: none
    Charset charset = Charset::bytes;  // of what people see and type
    int last_key = 0;
    Processes processes;
    Timer timer;
    std::string pre_key_procedure;
    std::string post_key_procedure;
    std::string undefined_key_procedure;
    int shift_key = 0;  // 0: none
    int mouse_row = -1;
    int mouse_column = -1;
    std::vector<LineStore> kill_ring;  // oldest first
    std::uint64_t kill_ring_index = 0;
    std::map<std::string, LineStore> named_pastes;  // by upper-case name
    std::vector<std::string> command_history;       // command lines, oldest first
    bool in_set_message = false;
    std::uint64_t message_buffer_limit = 1000;  // lines; 0: no limit
    std::unique_ptr<Recovery> recovery;         // null: unsaved work is not kept
    std::unique_ptr<OpenFiles> open_files;      // null: nobody is told which files are open
    UndoStep* undo_step = nullptr;              // the outermost one under way
    InputMode* input_mode = nullptr;            // the one on top; null: nobody waits for events
    MemoryReserve memory_reserve;               // taken by the main loop
    FileSearch file_search;
    std::vector<std::pair<dev_t, ino_t>> replayed_journals;  // innermost last
    bool search_succeeded = false;                           // the last SEARCH
    bool match_succeeded = false;                            // the last MATCH
    TestReport test_report;                                  // of ASSERT and TEST
    long long assertions_passed = 0;
    long long assertions_failed = 0;
    // Where GET_INFO's walks are; only compared, since they may be gone by now.
    const Buffer* walked_buffer = nullptr;
    const TPUWindow* walked_window = nullptr;

    // buffers.cc
    Buffer* create_buffer(const std::string& name, const std::string& file);
    Buffer* find_buffer(const std::string& name);             // null: none of that exact name
    std::string unused_buffer_name(const std::string& name);  // it, or with a number behind it
    bool owns(const Buffer* buffer) const;
    // Tells what a person has to know of the file that a buffer was just given: `trouble` with
    // reading it, unsaved work, or that another session has it open.
    void tell_of_file(const Buffer& buffer, const std::string& trouble = {});
    void position(Buffer* buffer);  // makes it current; null is ignored
    void next_buffer();
    void previous_buffer();
    // Fills the editor's own buffer of that name, made when there is none, and goes there.
    void open_show_buffer(const std::string& name, const std::string& text);

    // windows.cc
    TPUWindow* create_window(int top, int height, bool has_status);
    void map_window(TPUWindow* window, Buffer* buffer);
    void unmap_window(TPUWindow* window);
    void adjust_window(TPUWindow* window, int top_delta, int bottom_delta);  // rows
    void split_window_horizontal();
    void split_window_vertical();
    void next_window();
    void enter_window(TPUWindow* window);  // makes it current, and its buffer
    void save_window_cursor(TPUWindow* window);
    void restore_window_cursor(TPUWindow* window);

    // forgetting.cc
    // False: it is the last one that people use. Windows on it show another one.
    bool delete_buffer(Buffer* buffer);
    void delete_window(TPUWindow* window);
    // Makes unspecified the variables and elements of arrays of which `gone` is true, in
    // every session.
    void forget_values(const std::function<bool(const Value&)>& gone);
    void free_deleted();  // what was deleted; for when no code runs

    // screen.cc
    // Empty, or why the terminal cannot be used. A headless editor has 24 rows and 80 columns.
    std::string init_screen();
    void resize_screen();
    void draw();
    std::string format_status_line(const TPUWindow* window, const Buffer* buffer) const;
    // Runs a command of the shell that has the whole screen to itself.
    void def_endwin_then_run(const std::string& command);
    TPUWindow* create_default_window();
    int gutter(const TPUWindow& window) const;  // columns of line numbers

    // messages.cc
    static constexpr const char* kNothingDone = "Out of memory: nothing was changed";
    void set_message(const std::string& text) override;
    // Says what has failed. Why stands in the next line of the message buffer, unless the text
    // says so too, and is the text of the error that is recorded. Without a reason the text is.
    void fail(const char* status, const std::string& text, const std::string& reason);
    // For when memory ran out: frees some, makes the session ready for the next key, tells
    // the user and keeps unsaved work. Shows a shorter text when there is still too little.
    void recover_memory(const char* message);

    // event_loop.cc
    // Gives the mode the events until it ends. False: the session has ended before that.
    bool run_mode(InputMode& mode);

    // main_loop.cc
    void run();
    // Steps are done while events are waited for.
    Loading loading() const { return headless ? Loading::at_once : Loading::in_steps; }
    // For those who may wait long: true once Ctrl-C is pressed, which ends running code too.
    Interrupted interrupted();
    void hang_up();                              // the terminal is gone: the session ends
    void sleep(std::chrono::milliseconds time);  // or until Ctrl-C

    // dispatch.cc
    void handle_event(const Event& event);
    void run_key_text(const std::string& text) override;  // statements, or a command
    void insert_paste(const std::string& text);
    void send_text(TPUProcess& process, std::string_view text);  // or says that it cannot

    // running.cc
    bool interrupt_waiting() override;
    Buffer* buffer() override { return current_buffer; }
    void step(const Piece& piece) override;
    void record(const std::function<std::string()>& text, const Piece& piece) override;
    void come_to_rest() override;
    void execute_command(const std::string& line) { vocabulary.execute_command(*this, line); }

    // prompts.cc
    // A line as typed, without it ever being shown when it is not echoed. Empty at once
    // when headless.
    std::string read_command_line(const std::string& prompt, bool echo = true);
    // The same for those who tell an empty answer from none: the user has cancelled it or
    // is gone.
    std::optional<std::string> ask(const std::string& prompt, Asking how = {});
    Event read_one_key(const std::string& prompt);  // none when headless, or the user is gone
    void command_mode();
    void prompt_find();

    // key_maps.cc
    // Lists that hold the map that was called so hold the new one afterwards.
    KeyMap* create_key_map(const std::string& name);
    KeyMapList* create_key_map_list(const std::string& name, KeyMap* first);
    static int key_name_to_code(std::string_view name);  // kNoKey: no such key
    void define_default_keys();

  private:
    void join_sessions();  // forgetting.cc
    void leave_sessions();

    Clock::time_point last_look_;                           // for Ctrl-C
    std::vector<std::unique_ptr<Buffer>> deleted_buffers_;  // until no code runs
    std::vector<std::unique_ptr<TPUWindow>> deleted_windows_;
    std::vector<std::unique_ptr<KeyMapList>> replaced_key_map_lists_;
    ResizeMemory resize_memory_;
    bool resize_is_due_ = false;  // memory was too short for it
};

// The session in which a built-in was called.
inline TPUEditor& editor_of(const Call& call) {
    return static_cast<TPUEditor&>(call.host);
}

}  // namespace tpu
