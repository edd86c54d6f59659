// The main loop: draw, wait for a key, serve processes and the timer, act.
#include <algorithm>

#include "editor/editor.h"
#include "editor/journal_mirror.h"
#include "lang/nesting.h"
#include "proc/process.h"

namespace tpu {

namespace {

constexpr int kWithoutLimit = -1;
constexpr int kServiceInterval = 200;  // milliseconds between looks at timer and processes

int wait_for_key(const TPUEditor& editor) {
    if (editor.timer_interval >= 1) return std::min(editor.timer_interval, kServiceInterval);
    return editor.processes.empty() ? kWithoutLimit : kServiceInterval;
}

void run_timer(TPUEditor& editor) {
    if (editor.timer_interval <= 0 || editor.timer_action.empty()) return;
    Clock::time_point now = editor.ports.clock.now();
    if (now - editor.timer_start < std::chrono::milliseconds(editor.timer_interval)) return;
    editor.timer_start = now;
    Unrecorded automatic(editor.parser);
    editor.parser.execute_text(std::string(editor.timer_action));
}

// What the terminal reports beside keys. True when `key` was such a report.
bool handle_report(TPUEditor& editor, int key) {
    switch (key) {
        case kNoKey: return true;
        case kKeyResize: editor.resize_screen(); return true;
        case kKeyPaste: editor.insert_paste(editor.ports.terminal.take_paste()); return true;
        case kKeyHangup: editor.running = false; return true;
        default: return false;
    }
}

// Takes large files that were just loaded into memory of our own, step by step while
// no key waits. With keys waiting there is one step for each.
void settle_files(TPUEditor& editor) {
    while (!TextBlock::settle_some()) {
        if (editor.key_waiting()) return;
    }
    for (const auto& buffer : editor.buffers) buffer->finish_loading();
}

}  // namespace

void TPUEditor::run() {
    define_default_keys();
    timer_start = ports.clock.now();
    while (running) {
        // Keys that wait already are handled first: what they change is drawn once.
        if (!key_waiting()) draw();
        settle_files(*this);
        int wait = wait_for_key(*this);
        if (flush_journals(*this, false))
            wait = wait < 0 ? kServiceInterval : std::min(wait, kServiceInterval);
        int key = read_key(wait);
        poll_processes();
        run_timer(*this);
        if (!handle_report(*this, key)) handle_key(key);
    }
    flush_journals(*this, true);
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

bool TPUEditor::key_waiting() {
    return !unread_keys_.empty() || ports.terminal.key_waiting();
}

int TPUEditor::read_key(int wait_ms) {
    if (unread_keys_.empty()) return ports.terminal.read_key(wait_ms);
    int key = unread_keys_.front();
    unread_keys_.pop_front();
    return key;
}

void TPUEditor::poll_processes() {
    for (std::size_t i = 0; i < processes.size();) {
        std::shared_ptr<TPUProcess> process = processes[i];
        if (process->poll_output()) {
            ++i;
            continue;
        }
        processes.erase(processes.begin() + static_cast<std::ptrdiff_t>(i));
        if (attached_process == process) attached_process.reset();
    }
}

}  // namespace tpu
