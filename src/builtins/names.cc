// Names: of files, and of what the language knows; and the help on a name.
#include <glob.h>

#include <filesystem>
#include <set>

#include "builtins/common.h"
#include "builtins/families.h"
#include "builtins/table.h"
#include "editor/editor.h"
#include "lang/words.h"
#include "text/ascii.h"

namespace tpu::builtins {

namespace {

namespace fs = std::filesystem;

// The first argument; empty without one.
std::string first_text(Call& call) {
    return call.args.count() > 0 ? call.args.text(0) : std::string();
}

// What a word asks for of a file name; nothing when it is no such word.
std::optional<std::string> part_of(const fs::path& path, std::string_view word) {
    if (word == "DIRECTORY") {
        std::string directory = path.parent_path().string();
        return directory.ends_with('/') ? directory : directory + "/";
    }
    if (word == "NAME") return path.stem().string();
    if (word == "TYPE") return path.extension().string();
    if (word == "NODE" || word == "DEVICE" || word == "VERSION") return std::string();
    return {};
}

// The absolute path of a file, its missing parts taken from those of a default.
fs::path whole_path(const std::string& file, const std::string& with_default) {
    fs::path path(file), other(with_default);
    if (!path.has_parent_path() && other.has_parent_path()) path = other.parent_path() / path;
    if (!path.has_filename() && other.has_filename()) path /= other.filename();
    if (!path.has_extension() && path.has_filename()) path.replace_extension(other.extension());
    std::error_code error;
    fs::path absolute = fs::absolute(path, error);
    return (error ? path : absolute).lexically_normal();
}

// FILE_PARSE(file [, default] [, part, ...])
Value file_parse(Call& call) {
    if (call.args.count() == 0) return wrong_type(call, "a file name");
    std::vector<std::string> words;
    std::string with_default;
    for (std::size_t i = 1; i < call.args.count(); ++i) {
        std::string text = call.args.text(i);
        std::string word = ascii::upper(text);
        if (part_of({}, word)) {
            words.push_back(word);
        } else if (with_default.empty()) {
            with_default = text;
        }
    }
    fs::path path = whole_path(call.args.text(0), with_default);
    std::string result;
    for (const std::string& word : words) result += *part_of(path, word);
    return Value::make_str(words.empty() ? path.string() : result);
}

std::vector<std::string> matching_files(const std::string& pattern) {
    glob_t found = {};
    std::vector<std::string> files;
    if (glob(pattern.c_str(), GLOB_TILDE, nullptr, &found) == 0) {
        files.assign(found.gl_pathv, found.gl_pathv + found.gl_pathc);
    }
    globfree(&found);
    return files;
}

// The files that a pattern names, one with each call; the empty text after the last.
Value file_search(Call& call) {
    FileSearch& search = editor_of(call).file_search;
    std::string pattern = first_text(call);
    if (call.args.count() == 0 || pattern != search.pattern) {
        search = {pattern, matching_files(pattern), 0};
    }
    if (search.next < search.files.size()) return Value::make_str(search.files[search.next++]);
    search = {};
    return Value::make_str("");
}

void file_search_shown(Call& call) {
    std::string file = file_search(call).as_string();
    editor_of(call).set_message(file.empty() ? first_text(call) + ": (no match)" : file);
}

// The names that begin like `prefix`, of the kind that a word says, in byte order.
std::set<std::string> names_like(TPUEditor& editor, std::string_view prefix,
                                 std::string_view kind) {
    std::set<std::string> names;
    auto add = [&](std::string_view wanted, std::string_view name) {
        bool asked_for = kind == wanted || kind == "ALL";
        if (asked_for && name.starts_with(prefix)) names.emplace(name);
    };
    for (const auto& [name, procedure] : editor.parser.procedures) add("PROCEDURES", name);
    for (const auto& [name, symbol] : editor.parser.symbols.all()) {
        if (symbol.is_bound()) add("VARIABLES", name);
    }
    for (std::string_view word : constant_words()) add("KEYWORDS", word);
    for (std::span<const Builtin> family : all_builtins().families()) {
        for (const Builtin& row : family) add("BUILTINS", row.name);
    }
    return names;
}

// EXPAND_NAME(prefix [, PROCEDURES or VARIABLES or KEYWORDS or BUILTINS or ALL])
Value expand_name(Call& call) {
    std::string prefix = ascii::upper(first_text(call));
    std::string kind = call.args.count() > 1 ? ascii::upper(call.args.text(1)) : "ALL";
    std::string list;
    for (const std::string& name : names_like(editor_of(call), prefix, kind)) {
        if (!list.empty()) list += ' ';
        list += name;
    }
    if (list.empty()) call.parser.record_error("TPU$_NONAMES", "No name begins with " + prefix);
    return Value::make_str(list);
}

void expand_name_shown(Call& call) {
    std::string list = expand_name(call).as_string();
    editor_of(call).set_message(list.empty() ? first_text(call) + ": (no match)" : list);
}

Value help_text(Call& call) {
    const Builtin* row = all_builtins().find(ascii::upper(call.args.text(0)));
    if (!row) return wrong_type(call, "the name of a built-in");
    return Value::make_str(std::string(row->form) + ": " + std::string(row->help));
}

// clang-format off
constexpr Builtin kRows[] = {
    {.name = "FILE_PARSE", .statement = shown<file_parse>, .function = file_parse,
     .form = "FILE_PARSE(file [, default] [, part, ...])",
     .help = "The whole path of a file, or its DIRECTORY, NAME and TYPE."},
    {.name = "FILE_SEARCH", .statement = file_search_shown, .function = file_search,
     .form = "FILE_SEARCH(pattern)", .help = "The next file that the pattern names; the empty text after the last."},
    {.name = "EXPAND_NAME", .statement = expand_name_shown, .function = expand_name,
     .form = "EXPAND_NAME(prefix [, PROCEDURES or VARIABLES or KEYWORDS or BUILTINS or ALL])",
     .help = "The names that begin so, with blanks between."},
    {.name = "HELP_TEXT", .statement = shown<help_text>, .function = help_text,
     .form = "HELP_TEXT(name)", .help = "How a built-in is written, and what it does."},
};
// clang-format on

}  // namespace

std::span<const Builtin> names() {
    return kRows;
}

}  // namespace tpu::builtins
