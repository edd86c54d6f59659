// A session with its keys, from the first to the end.
#include <algorithm>

#include "editor/editor.h"
#include "editor/input_mode.h"
#include "editor/journal_follower.h"
#include "editor/recovery.h"
#include "os/terminal_state.h"

namespace tpu {

namespace {

// The mode at the bottom: keys mean what is bound to them.
class KeysMode : public InputMode {
  public:
    using InputMode::InputMode;

    // What memory was put by for a failure is put by again once its message is shown.
    void show() override {
        if (editor.memory_reserve.help([&] { editor.draw(); })) editor.memory_reserve.take();
    }
    bool take(const Event& event) override {
        editor.handle_event(event);
        return false;
    }
    void lose_event() override {
        editor.recover_memory(TPUEditor::kNothingDone);
        editor.gold_pending = false;
    }
    void fall_short() override { editor.recover_memory("Out of memory"); }
    bool is_at_rest() const override { return true; }
};

}  // namespace

void TPUEditor::run() {
    define_default_keys();
    timer.start(ports.clock);
    EndOnRequest requests;
    KeysMode keys(*this);
    if (running) run_mode(keys);
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

}  // namespace tpu
