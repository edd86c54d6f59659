// Journals: keeping one, and running one after a crash.
#include "store/journal.h"

#include <filesystem>

#include "builtins/families.h"
#include "editor/editor.h"
#include "editor/journal_follower.h"
#include "editor/journal_replay.h"
#include "editor/recovery.h"
#include "os/trust.h"
#include "store/text_changes.h"
#include "text/ascii.h"

namespace tpu::builtins {

namespace {

bool is_empty_journal(const std::string& path) {
    std::error_code unknown;
    return std::filesystem::file_size(path, unknown) <= kJournalHeader;
}

// Whoever replays the journal of a saved text has what loading its file gives, and the
// cursor at its begin.
void record_start(JournalFollower& follower, const Buffer& buffer) {
    if (buffer.modified || buffer.file_name.empty()) return;
    const std::vector<std::string> changes =
        text_changes(differences(buffer.saved_lines, buffer.text()), buffer.text());
    for (const std::string& statement : changes) follower.record(statement);
    const std::uint64_t place = buffer.current_offset_in_line();
    if (place > 0 || !changes.empty()) follower.record(text_place(place));
}

// JOURNAL_OPEN(file [, "TEXT" or "BINARY"])
void journal_open(Call& call) {
    // A replay makes no journals behind the user's back.
    if (!editor_of(call).replayed_journals.empty()) return;
    std::string name = call.args.count() > 0 ? call.args.text(0) : std::string();
    std::string format = call.args.count() > 1 ? ascii::upper(call.args.text(1)) : "BINARY";
    if (format != "TEXT" && format != "BINARY") {
        return editor_of(call).set_message("JOURNAL_OPEN: the format is TEXT or BINARY");
    }
    bool binary = format == "BINARY";
    std::string note;
    Failure why;
    bool opened = call.args.count() > 0 && tpu_journal_open(call.buffer(), name, binary, note, why);
    if (!note.empty()) editor_of(call).set_message(note);
    if (!opened) {
        editor_of(call).fail("TPU$_JRNLOPENERR", "JOURNAL_OPEN: cannot write " + name, why.text());
        if (!why && !note.empty()) call.parser.record_error("TPU$_JRNLOPENERR", note);
        return;
    }
    JournalFollower& follower =
        follower_of(call.buffer());  // what else the statement does counts too
    if (is_empty_journal(name)) record_start(follower, call.buffer());
    editor_of(call).set_message(
        (binary ? "Journaling (binary TPJB) to " : "Journaling (text) to ") + name);
}

void journal_close(Call& call) {
    tpu_journal_close(call.buffer());
}

// The work that a session which came to no good end has left behind.
void recover_unsaved(Call& call) {
    TPUEditor& editor = editor_of(call);
    if (!editor.recovery) return editor.set_message("RECOVER_BUFFER(file)");
    std::string reason;
    const std::string told = editor.recovery->recover(call.buffer(), reason);
    reason.empty() ? editor.set_message(told) : editor.fail("TPU$_RECOVERFAIL", told, reason);
}

void recover_buffer(Call& call) {
    if (call.args.count() == 0) return recover_unsaved(call);
    std::string name = call.args.text(0);
    const std::string distrust = distrust_of_file(name);
    const std::string cannot = "RECOVER_BUFFER: cannot open " + name;
    if (!distrust.empty()) {
        return editor_of(call).fail("TPU$_RECOVERFAIL", cannot + ": " + distrust, distrust);
    }
    Failure why;
    if (replay_journal(editor_of(call), name, why)) {
        return editor_of(call).set_message("RECOVER_BUFFER replayed " + name);
    }
    // With words of our own it could be opened, but not read.
    const std::string unread = "RECOVER_BUFFER: " + name + ": " + why.text();
    editor_of(call).fail("TPU$_RECOVERFAIL", why.words ? unread : cannot, why.text());
}

// clang-format off
constexpr Builtin kRows[] = {
    {.name = "JOURNAL_OPEN", .statement = journal_open,
     .form = "JOURNAL_OPEN(file [, \"TEXT\" or \"BINARY\"])",
     .help = "Record what runs in the buffer in a file, behind what is there, for RECOVER_BUFFER."},
    {.name = "JOURNAL_CLOSE", .statement = journal_close, .form = "JOURNAL_CLOSE",
     .help = "End the recording of the buffer; the file stays."},
    {.name = "RECOVER_BUFFER", .statement = recover_buffer, .form = "RECOVER_BUFFER[(file)]",
     .help = "Run again what a journal holds, on the text that there was when it began; without one, bring back unsaved work on the buffer's file."},
};
// clang-format on

}  // namespace

std::span<const Builtin> journal() {
    return kRows;
}

}  // namespace tpu::builtins
