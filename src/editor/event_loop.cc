// The loop: draw, wait for an event, do what is due meanwhile, hand the event to the mode
// on top. Nothing else reads the terminal.
#include <algorithm>
#include <optional>

#include "editor/editor.h"
#include "editor/input_mode.h"
#include "editor/journal_follower.h"
#include "editor/recovery.h"
#include "editor/undo_step.h"
#include "lang/nesting.h"
#include "store/buffer_file.h"
#include "store/open_files.h"

namespace tpu {

namespace {

constexpr int kWithoutLimit = -1;
constexpr int kServiceInterval = 200;  // milliseconds between looks at timer and processes

// Does one thing of those that are done beside the events. Where memory is too short for it,
// the session goes on without.
template <class Work>
void attempt(InputMode& mode, Work work) {
    if (!enough_memory(work)) mode.fall_short();
}

// Does what is due meanwhile. How long an event may be waited for then, in milliseconds.
int serve(TPUEditor& editor) {
    int wait = kWithoutLimit;
    auto limit = [&](int most) { wait = wait < 0 ? most : std::min(wait, most); };
    if (!editor.processes.running.empty()) limit(kServiceInterval);
    if (editor.timer.is_on()) limit(std::min(editor.timer.interval, kServiceInterval));
    if (flush_journals(editor, false)) limit(kServiceInterval);
    if (editor.open_files) editor.open_files->follow(editor.buffers);
    if (editor.recovery) {
        std::chrono::milliseconds next = editor.recovery->serve();
        if (next.count() >= 0) limit(static_cast<int>(next.count()));
    }
    return wait;
}

Event wait_for_event(TPUEditor& editor, InputMode& mode) {
    int wait = kServiceInterval;
    attempt(mode, [&] { wait = serve(editor); });
    Awaited others;
    bool is_quiet =
        !editor.processes.talk() && enough_memory([&] { others = editor.processes.awaited(); });
    if (is_quiet) return editor.ports.terminal.read(wait, others);
    constexpr int kBetweenDrawings = 20;  // milliseconds, lest a flood draws all the time
    return editor.ports.terminal.read(std::min(kBetweenDrawings, wait), {});
}

// Takes large files that were just loaded into memory of our own, step by step while
// nothing waits. With keys waiting there is one step for each.
void detach_files(TPUEditor& editor, InputMode& mode) {
    while (!TextBlock::detach_some()) {
        if (editor.ports.terminal.key_waiting()) return;
    }
    for (const auto& buffer : editor.buffers) {
        std::string trouble = finish_loading(*buffer);
        if (trouble.empty()) continue;
        editor.set_message(trouble);
        mode.show();
    }
}

void run_timer(TPUEditor& editor) {
    Unrecorded automatic(editor.parser.learning);
    editor.parser.execute_text(std::string(editor.timer.action));
    // From its end on, so that one that takes longer than its period leaves time for keys.
    editor.timer.start(editor.ports.clock);
}

// Processes and the timer change buffers. Where nothing is under way but a prompt, they do so
// between the steps of undo, as they do between keys. A program that waits for an answer gets
// the output of processes too, as a part of what it does; but no statement may run in the
// middle of it, so the timer waits until it has ended, and until a command has what it asked for.
void serve_others(TPUEditor& editor, InputMode& mode) {
    const bool at_rest = mode.is_at_rest() && editor.parser.block_depth == 0;
    const bool timer = at_rest && editor.timer.is_due(editor.ports.clock);
    if (!editor.processes.any() && !timer) return;
    mode.step_aside();
    attempt(mode, [&] {
        std::optional<BetweenSteps> between;
        if (at_rest) between.emplace(editor);
        attempt(mode, [&] { editor.processes.poll(); });
        if (timer && !enough_memory([&] { run_timer(editor); })) {
            editor.recover_memory(TPUEditor::kNothingDone);
        }
    });
    mode.step_back();
}

// What comes next: none when there was something else to do.
Event next_event(TPUEditor& editor, InputMode& mode) {
    // Keys that wait already are handled first: what they change is drawn once.
    attempt(mode, [&] {
        if (!editor.ports.terminal.key_waiting()) mode.show();
    });
    attempt(mode, [&] { detach_files(editor, mode); });
    Event event;
    attempt(mode, [&] { event = wait_for_event(editor, mode); });
    serve_others(editor, mode);
    if (event.kind == Event::Kind::hang_up) editor.hang_up();
    if (event.kind == Event::Kind::resize) {
        bool done = enough_memory([&] { editor.resize_screen(); });
        event.kind = done ? Event::Kind::none : Event::Kind::lost;
    }
    return event;
}

// The mode is on top while this lives.
class OnTop {
  public:
    OnTop(TPUEditor& editor, InputMode& mode) : editor_(editor) {
        mode.beneath = editor.input_mode;
        editor.input_mode = &mode;
    }
    ~OnTop() { editor_.input_mode = editor_.input_mode->beneath; }
    OnTop(const OnTop&) = delete;
    OnTop& operator=(const OnTop&) = delete;

  private:
    TPUEditor& editor_;
};

}  // namespace

bool TPUEditor::run_mode(InputMode& mode) {
    OnTop top(*this, mode);
    const bool was_running = running;  // programs may ask after they have told the session to end
    for (;;) {
        const Event event = next_event(*this, mode);
        if (event.kind == Event::Kind::hang_up) return false;
        bool ended = false;
        bool done =
            event.kind != Event::Kind::lost && enough_memory([&] { ended = mode.take(event); });
        if (!done) mode.lose_event();
        if (ended || (was_running && !running)) return ended;
    }
}

}  // namespace tpu
