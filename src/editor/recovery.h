// Keeps unsaved work where a crash does not reach it.
//
// Each modified buffer has a recovery file, to which what has changed is added within a
// second. It goes when the buffer is saved, deleted or no longer modified, and when the
// session ends on purpose; it stays when the session just ends.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>

#include "buffer/buffer.h"
#include "editor/ports.h"

namespace tpu {

class TPUEditor;
struct LeftBehind;

class Recovery {
  public:
    static constexpr std::chrono::milliseconds kLongestWait{1000};  // of a change
    static constexpr std::chrono::milliseconds kRetry{10000};       // after a failure

    // Without a folder nothing is kept.
    Recovery(TPUEditor& editor, std::string folder);
    ~Recovery();

    // Does what is due; for whenever the session is about to wait. How long it may be until
    // the next call: below 0 for ever.
    std::chrono::milliseconds serve();
    // Keeps all that there is now.
    void write();
    // The session ends on purpose.
    void discard();

    // What to tell about work that another session has left behind on the buffer's file, or
    // on buffers without one, or about the file's text when that session was killed at
    // saving; empty: there is none.
    std::string greeting(const Buffer& buffer) const;
    // Brings the latest of that work back: into the buffer, if it is the text that the work
    // began with, else into a buffer of its own, which becomes current. The message to show; with a
    // reason it is one of failure.
    std::string recover(Buffer& buffer, std::string& reason);

    // Why work is not kept just now; empty: it is, or there is none.
    const std::string& trouble() const { return trouble_; }

  private:
    struct Entry;

    bool keeps_all(const Buffer& buffer) const;
    std::chrono::milliseconds copy_bases();
    Entry& entry(const Buffer& buffer);
    void write(Buffer& buffer);
    void drop_saved();
    void fail(const std::string& reason);
    std::string replay(Buffer& buffer, const LeftBehind& work, std::string& reason);
    std::string recover_elsewhere(const Buffer& buffer, const LeftBehind& work,
                                  std::string& reason);

    TPUEditor& editor_;
    std::string folder_;
    std::map<const Buffer*, std::unique_ptr<Entry>> entries_;
    std::optional<Clock::time_point> due_;  // none: nothing has changed
    std::string trouble_;                   // why the last writing failed
};

}  // namespace tpu
