// What takes the events: the keys of the session and, on top of them, prompts.
//
// There is one loop (TPUEditor::run_mode). It draws, does what is due meanwhile, and hands
// each event to the mode on top. Who needs an answer runs the loop again with a mode of its own,
// which ends when it has one.
#pragma once

#include "editor/event.h"

namespace tpu {

class Buffer;
class TPUEditor;

class InputMode {
  public:
    explicit InputMode(TPUEditor& session) : editor(session) {}
    virtual ~InputMode() = default;
    InputMode(const InputMode&) = delete;
    InputMode& operator=(const InputMode&) = delete;

    // Draws the screen with what the mode shows on it.
    virtual void show() = 0;
    // Takes a key, a paste, the mouse, or none once something else was done. True when that has
    // ended the mode.
    virtual bool take(const Event& event) = 0;

    // Memory was too short for an event, which has done nothing then.
    virtual void lose_event() = 0;
    // Memory was too short for what is done beside the events.
    virtual void fall_short() = 0;

    // True when no work waits for the mode to end but what it is itself: what the timer's
    // statement does cannot come in between.
    virtual bool is_at_rest() const { return false; }
    // Around what processes and the timer do: they find the session as it would be without
    // the mode.
    virtual void step_aside() {}
    virtual void step_back() {}
    // The buffer is being deleted.
    virtual void forget(const Buffer&) {}

    InputMode* beneath = nullptr;  // while it runs: the one that it runs on top of

  protected:
    TPUEditor& editor;
};

}  // namespace tpu
