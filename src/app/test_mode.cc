#include "app/test_mode.h"

#include <cstdio>

#include "app/source_file.h"
#include "commands/vocabulary.h"
#include "editor/editor.h"
#include "store/read_file.h"

namespace tpu {

namespace {

void print_report(const TPUEditor& editor) {
    for (const std::string& line : editor.test_report.lines()) {
        std::fwrite(line.data(), 1, line.size(), stdout);
        std::fputc('\n', stdout);
    }
    if (long long left_out = editor.test_report.left_out()) {
        std::printf("... %lld more lines, left out\n", left_out);
    }
    std::puts("----------------------------------------");
    std::printf("%lld passed, %lld failed\n", editor.assertions_passed, editor.assertions_failed);
}

}  // namespace

int run_test_script(const std::string& path, Ports ports, Charset charset) {
    TPUEditor editor(ports, vocabulary());
    editor.headless = true;
    editor.charset = charset;
    editor.create_buffer("MAIN", "");
    editor.init_screen();
    Failure untold;
    std::optional<std::string> source = read_whole(path, untold);
    if (!source) {
        std::fprintf(stderr, "tpu --test: cannot open %s\n", path.c_str());
        return 2;
    }
    editor.parser.compile_text(*source);
    print_report(editor);
    if (std::fflush(stdout) != 0) return 1;
    print_diagnostics(editor.parser, 0, path);
    return editor.assertions_failed == 0 ? 0 : 1;
}

}  // namespace tpu
