// Section files: what a session has built up, for the next one.
#include "builtins/families.h"
#include "editor/editor.h"
#include "editor/section.h"
#include "text/ascii.h"

namespace tpu::builtins {

namespace {

constexpr std::string_view kSaveForm = "SAVE(filespec [, \"IDENT\", id])";
constexpr std::string_view kExpandForm = "EXPAND(filespec)";

void save(Call& call) {
    if (call.args.count() == 0) return editor_of(call).set_message(std::string(kSaveForm));
    bool has_ident = call.args.count() > 2 && ascii::upper(call.args.text(1)) == "IDENT";
    tpu_section_save(editor_of(call), call.args.text(0), has_ident ? call.args.text(2) : "");
}

void restore(Call& call) {
    tpu_section_restore(editor_of(call), call.args.count() > 0 ? call.args.text(0) : "");
}

void expand(Call& call) {
    if (call.args.count() == 0) return editor_of(call).set_message(std::string(kExpandForm));
    tpu_section_expand(editor_of(call), call.args.text(0));
}

// clang-format off
constexpr Builtin kRows[] = {
    {.name = "SAVE", .statement = save, .without_buffer = true, .only_called = true,
     .form = kSaveForm, .help = "Write procedures, names of variables, and keys to a section file."},
    {.name = "RESTORE", .statement = restore, .without_buffer = true, .form = "RESTORE(filespec)",
     .help = "Bring back what a section file holds."},
    {.name = "EXPAND", .statement = expand, .without_buffer = true, .form = kExpandForm,
     .help = "Show the lines of a section file."},
};
// clang-format on

}  // namespace

std::span<const Builtin> sections() {
    return kRows;
}

}  // namespace tpu::builtins
