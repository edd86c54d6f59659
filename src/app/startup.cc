#include "app/startup.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "commands/vocabulary.h"
#include "editor/editor.h"
#include "editor/glyphs.h"
#include "editor/recovery.h"
#include "editor/section.h"
#include "os/trust.h"
#include "store/buffer_file.h"
#include "store/old_text.h"
#include "store/open_files.h"
#include "store/read_file.h"

namespace tpu {

namespace {

constexpr const char* kGreeting =
    "Ctrl-Z command, Ctrl-X EXIT, F2 or `HELP` for help, `HELP <topic>` for a section";

void go_to_line(Buffer& buffer, std::uint64_t line) {
    if (line == 0) return;
    buffer.cursor_row = std::min(line, buffer.text().size()) - 1;
}

// Compiles and runs a file. False: there is none, or it cannot be read.
bool load_source(TPUEditor& editor, const std::string& path) {
    if (path.empty()) return false;
    Failure untold;
    std::optional<std::string> source = read_whole(path, untold, {editor.interrupted()});
    if (!source) return false;
    editor.parser.compile_text(*source);
    editor.set_message("Loaded " + path);
    return true;
}

// What there is to tell of them.
std::string run_start_files(TPUEditor& editor, const Options& options, const StartFiles& files) {
    std::string trouble;
    if (!load_source(editor, files.source) && files.home) {
        const std::string path = *files.home + "/.tpurc";
        // With another user's home it is that user's.
        const std::string distrust = distrust_of_file(path);
        if (distrust.empty()) {
            load_source(editor, path);
        } else {
            trouble = path + " is not run: " + distrust;
        }
    }
    load_source(editor, options.command_file);
    return trouble;
}

// A section file runs code, so it must be the user's. Empty, or why it was not restored.
std::string restore_at_start(TPUEditor& editor, const std::string& path) {
    if (path.empty()) return {};
    const std::string distrust = distrust_of_file(path);
    if (distrust.empty() && tpu_section_restore(editor, path)) return {};
    return "tpu: /SECTION=" + path + " failed to load" + (distrust.empty() ? "" : ": " + distrust);
}

// Writes a line to standard error, off the editor's screen in case that is where it goes.
void complain(Terminal& terminal, const std::string& line) {
    terminal.leave();
    std::fprintf(stderr, "%s\n", line.c_str());
    terminal.enter();
}

}  // namespace

int run_session(const Options& options, const StartFiles& files, Ports ports, Charset charset) {
    keep_old_texts_in(files.recovery_folder);
    TPUEditor editor(ports, vocabulary());
    editor.charset = charset;
    Buffer* main = editor.create_buffer("MAIN", "");
    editor.named_file = options.file;
    editor.named_line = options.line;
    std::string trouble;
    if (!options.file.empty()) {
        main->name = options.file;
        trouble = edit_file(*main, options.file, editor.loading());
    }
    go_to_line(*main, options.line);
    const std::string unusable = editor.init_screen();
    if (!unusable.empty()) {
        std::fprintf(stderr, "%s\n", printable(unusable, charset).c_str());
        std::fflush(stderr);
        _exit(1);  // what curses keeps of a failed start, nobody can free
    }
    const std::string fault = restore_at_start(editor, options.section_file);
    if (!fault.empty()) complain(ports.terminal, printable(fault, charset));
    const std::string not_run = run_start_files(editor, options, files);
    editor.recovery = std::make_unique<Recovery>(editor, files.recovery_folder);
    editor.open_files = std::make_unique<OpenFiles>(files.open_files);
    editor.set_message(kGreeting);
    // Faults in start-up files are not to go by unseen.
    if (!editor.parser.error_list.empty()) editor.set_message(editor.parser.error_list.front());
    if (trouble.empty()) trouble = not_run;
    editor.tell_of_file(*main, trouble);
    editor.run();
    return editor.exit_status;
}

}  // namespace tpu
