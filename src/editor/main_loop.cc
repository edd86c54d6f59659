// The main loop: draw, wait for a key, serve processes and the timer, act.
#include <algorithm>

#include "editor/editor.h"
#include "editor/journal_mirror.h"
#include "editor/recovery.h"
#include "lang/nesting.h"
#include "os/terminal_state.h"
#include "store/buffer_file.h"
#include "store/open_files.h"

namespace tpu {

namespace {

constexpr int kWithoutLimit = -1;
constexpr int kServiceInterval = 200;  // milliseconds between looks at timer and processes
constexpr const char* kShort = "Out of memory";
constexpr const char* kNothingDone = "Out of memory: nothing was changed";

// Does what is due meanwhile. How long a key may be waited for then, in milliseconds.
int serve(TPUEditor& editor) {
    int wait = kWithoutLimit;
    auto limit = [&](int most) { wait = wait < 0 ? most : std::min(wait, most); };
    if (!editor.processes.empty()) limit(kServiceInterval);
    if (editor.timer_interval >= 1) limit(std::min(editor.timer_interval, kServiceInterval));
    if (flush_journals(editor, false)) limit(kServiceInterval);
    if (editor.open_files) editor.open_files->follow(editor.buffers);
    if (editor.recovery) {
        std::chrono::milliseconds next = editor.recovery->serve();
        if (next.count() >= 0) limit(static_cast<int>(next.count()));
    }
    return wait;
}

// Does one thing of those that the main loop does. False: memory was too short for it, and
// the session goes on without.
template <class Work>
bool attempt(TPUEditor& editor, const char* message, Work work) {
    if (enough_memory(work)) return true;
    editor.recover_memory(message);
    return false;
}

// The next key, or kNoKey when there is something else to do.
int wait_for_key(TPUEditor& editor) {
    int wait = kServiceInterval;
    attempt(editor, kShort, [&] { wait = serve(editor); });
    Awaited others;
    bool is_quiet =
        !editor.processes_talk() && enough_memory([&] { others = editor.awaited_of_processes(); });
    if (is_quiet) return editor.read_key(wait, others);
    constexpr int kBetweenDrawings = 20;  // milliseconds, lest a flood draws all the time
    return editor.read_key(std::min(kBetweenDrawings, wait));
}

void run_timer(TPUEditor& editor) {
    if (editor.timer_interval <= 0 || editor.timer_action.empty()) return;
    Clock::time_point now = editor.ports.clock.now();
    if (now - editor.timer_start < std::chrono::milliseconds(editor.timer_interval)) return;
    Unrecorded automatic(editor.parser.learning);
    editor.parser.execute_text(std::string(editor.timer_action));
    // From its end on, so that one that takes longer than its period leaves time for keys.
    editor.timer_start = editor.ports.clock.now();
}

// What the terminal reports beside keys. True when `key` was such a report.
bool handle_report(TPUEditor& editor, int key) {
    switch (key) {
        case kNoKey: return true;
        case kKeyResize: editor.resize_screen(); return true;
        case kKeyPaste: editor.insert_paste(editor.ports.terminal.take_paste()); return true;
        case kKeyHangup: editor.hang_up(); return true;
        default: return false;
    }
}

// What memory was put by for a failure is put by again once its message is shown.
void show_screen(TPUEditor& editor) {
    if (editor.memory_reserve.help([&] { editor.draw(); })) editor.memory_reserve.take();
}

// Takes large files that were just loaded into memory of our own, step by step while
// no key waits. With keys waiting there is one step for each.
void settle_files(TPUEditor& editor) {
    while (!TextBlock::settle_some()) {
        if (editor.key_waiting()) return;
    }
    for (const auto& buffer : editor.buffers) {
        std::string trouble = finish_loading(*buffer);
        if (trouble.empty()) continue;
        editor.set_message(trouble);
        editor.draw();
    }
}

}  // namespace

void TPUEditor::run() {
    define_default_keys();
    timer_start = ports.clock.now();
    EndOnRequest requests;
    while (running) {
        // Keys that wait already are handled first: what they change is drawn once.
        attempt(*this, kShort, [&] {
            if (!key_waiting()) show_screen(*this);
        });
        attempt(*this, kShort, [&] { settle_files(*this); });
        int key = kNoKey;
        attempt(*this, kShort, [&] { key = wait_for_key(*this); });
        attempt(*this, kShort, [&] { poll_processes(); });
        attempt(*this, kNothingDone, [&] { run_timer(*this); });
        bool done = attempt(*this, kNothingDone, [&] {
            if (!handle_report(*this, key)) handle_key(key);
        });
        if (!done) gold_pending = false;
    }
    requests.take_up();
    memory_reserve.help([&] { flush_journals(*this, true); });
    if (recovery && hung_up) memory_reserve.help([&] { recovery->write(); });
    if (recovery && !hung_up) recovery->discard();
}

void TPUEditor::hang_up() {
    hung_up = true;
    running = false;
}

void TPUEditor::sleep(std::chrono::milliseconds time) {
    constexpr std::chrono::milliseconds kBetweenLooks(50);
    Clock::time_point end = ports.clock.now() + time;
    for (Clock::time_point now; (now = ports.clock.now()) < end;) {
        if (ports.terminal.interrupt_waiting()) return parser.interrupt();
        auto rest = std::chrono::ceil<std::chrono::milliseconds>(end - now);
        ports.clock.sleep(std::min(rest, kBetweenLooks));
    }
}

Interrupted TPUEditor::interrupted() {
    return [this] {
        if (headless || !ports.terminal.interrupt_waiting()) return false;
        if (parser.block_depth > 0) parser.interrupt();
        return true;
    };
}

bool TPUEditor::key_waiting() {
    return unread_key_ != kNoKey || ports.terminal.key_waiting();
}

int TPUEditor::read_prompt_key() {
    for (;;) {
        const std::chrono::milliseconds next =
            recovery ? recovery->serve() : std::chrono::milliseconds(kWithoutLimit);
        int key = read_key(static_cast<int>(next.count()));
        if (key != kNoKey || next.count() < 0) return key;
    }
}

int TPUEditor::read_key(int wait_ms, const Awaited& others) {
    if (unread_key_ == kNoKey) return ports.terminal.read_key(wait_ms, others);
    return std::exchange(unread_key_, kNoKey);
}

}  // namespace tpu
