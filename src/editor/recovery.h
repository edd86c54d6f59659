// Keeps unsaved work where a crash does not reach it.
//
// Each modified buffer with a file has a recovery file, to which what has changed is added
// now and then. It goes when the buffer is saved, deleted or no longer modified, and when
// the session ends on purpose; it stays when the session just ends.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "core/buffer.h"
#include "editor/ports.h"

namespace tpu {

class TPUEditor;

class Recovery {
  public:
    static constexpr std::chrono::milliseconds kIdle{1000};  // of the keyboard
    static constexpr int kMostKeys = 200;                    // between two writings

    // Without a folder nothing is kept.
    Recovery(TPUEditor& editor, std::string folder);
    ~Recovery();

    // A key has come.
    void note_key();
    // Does what is due. How long it may be until the next call, if no key comes: below 0
    // for ever.
    std::chrono::milliseconds serve();
    // Keeps all that there is now.
    void write();
    // The session ends on purpose.
    void discard();

    // What to tell about work on the buffer's file that another session has left behind;
    // empty: there is none.
    std::string greeting(const Buffer& buffer) const;
    // Brings that work back into the buffer, which is to be as it was loaded. The message
    // to show.
    std::string recover(Buffer& buffer);

  private:
    struct Kept;

    void write(Buffer& buffer);
    void drop_saved();

    TPUEditor& editor_;
    std::string folder_;
    std::map<const Buffer*, std::unique_ptr<Kept>> kept_;
    int keys_ = 0;  // since the last writing
    bool pending_ = false;
    Clock::time_point last_key_;
};

}  // namespace tpu
