#include "editor/section.h"

#include <charconv>
#include <optional>

#include "editor/editor.h"
#include "editor/version.h"
#include "os/file_io.h"
#include "os/input_file.h"
#include "store/read_file.h"
#include "store/safe_write.h"
#include "store/section_format.h"
#include "text/ascii.h"

namespace tpu {

namespace {

// ---- Saving

std::string stub(const Procedure& procedure) {
    std::string text = "PROCEDURE " + procedure.name;
    std::string_view before = "(";
    for (const std::string& parameter : procedure.parameters) {
        text.append(before).append(parameter);
        before = ", ";
    }
    if (!procedure.parameters.empty()) text += ')';
    return text + "\nENDPROCEDURE;\n";
}

void put_procedures(std::string& out, const TPUEditor& editor) {
    for (const auto& [name, procedure] : editor.parser.procedures) {
        out += procedure->source.empty() ? stub(*procedure) : saved_source(procedure->source);
        if (!out.ends_with('\n')) out += '\n';
    }
}

void put_variables(std::string& out, const TPUEditor& editor) {
    const SymbolTable& symbols = editor.parser.symbols;
    for (const auto& [name, symbol] : symbols.all()) {
        if (symbols.global(symbol) && !symbol.constant) out += name + '\n';
    }
}

void put_constants(std::string& out, const TPUEditor& editor) {
    for (const auto& [name, symbol] : editor.parser.symbols.all()) {
        if (symbol.constant) out += name + '\n';
    }
}

// A name with line ends in it would end what follows.
std::string name_on_line(const std::string& name) {
    return name.find_first_of("\r\n") == std::string::npos ? name : tpu_escape_line(name);
}

void put_key_maps(std::string& out, const TPUEditor& editor) {
    for (const auto& [name, map] : editor.key_maps) {
        out += "KEYMAP " + name_on_line(name) + '\n';
        for (const auto& [code, binding] : map->bindings) {
            out += "KEY " + std::to_string(code) + '|' + tpu_escape_line(binding.text) + '|' +
                   tpu_escape_line(binding.comment) + '\n';
        }
    }
}

void put_key_map_lists(std::string& out, const TPUEditor& editor) {
    for (const auto& [name, list] : editor.key_map_lists) {
        out += "LIST " + name_on_line(name);
        for (const KeyMap* map : list->maps) {
            if (map) out += ' ' + name_on_line(map->name);
        }
        out += '\n';
    }
}

std::string section_text(const TPUEditor& editor, const std::string& ident) {
    constexpr struct {
        SectionPart part;
        void (*put)(std::string& out, const TPUEditor& editor);
    } kParts[] = {
        {SectionPart::procedures, put_procedures},       {SectionPart::variables, put_variables},
        {SectionPart::constants, put_constants},         {SectionPart::key_maps, put_key_maps},
        {SectionPart::key_map_lists, put_key_map_lists},
    };
    std::string text(kSectionMagic);
    text += ' ' + std::to_string(kSectionVersion) + "\nIDENT=" + ident + '\n';
    for (const auto& [part, put] : kParts) {
        text += begin_line(part) + '\n';
        put(text, editor);
        text += end_line(part) + '\n';
    }
    return text + begin_line(SectionPart::end) + '\n';
}

// Why a file that is there is left alone; empty: it may be replaced. What was not made by
// saving a section was named by mistake.
std::string replace_refusal(const std::string& path) {
    const std::optional<FileVersion> old = FileVersion::of(path);
    if (!old || old->size == 0) return {};
    Failure why;
    std::optional<InputFile> file = InputFile::open(path, why);
    std::string begin(kSectionMagic.size(), '\0');
    if (!file || file->read(begin.data(), begin.size(), why) < 0) return why.text();
    return begin == kSectionMagic ? "" : "it is no section file";
}

// ---- Reading

std::string_view take_line(std::string_view& text) {
    std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return line;
}

// The text of a section file for an operation, which is named where there is none.
std::optional<std::string> read_section(TPUEditor& editor, const std::string& path,
                                        const std::string& operation) {
    Failure why;
    std::optional<std::string> text = read_whole(path, why, {editor.interrupted()});
    if (text && text->starts_with(kSectionMagic)) return text;
    if (text) {
        editor.fail("TPU$_BADSECTION", operation + ": not a ZKSECT section file", {});
    } else {
        editor.fail("TPU$_RESTOREFAIL", operation + ": cannot open " + path, why.text());
    }
    return {};
}

// Reads a section file into a session, line by line.
class Restorer {
  public:
    explicit Restorer(TPUEditor& editor) : editor_(editor), run_(editor.parser) {}

    void restore(std::string_view text) {
        SectionPart part = SectionPart::none;
        while (!text.empty() && part != SectionPart::end) {
            std::string_view line = take_line(text);
            if (switches_part(line, part)) {
                compile_group();
            } else {
                take(part, line);
            }
        }
        compile_group();
    }

    std::string counts() const {
        return std::to_string(groups_) + " proc groups, " + std::to_string(variables_) + " vars, " +
               std::to_string(keys_) + " keys";
    }

  private:
    void take(SectionPart part, std::string_view line) {
        switch (part) {
            case SectionPart::procedures: return take_source(line);
            case SectionPart::variables: return take_variable(line);
            case SectionPart::constants: return take_constant(line);
            case SectionPart::key_maps: return take_key(line);
            case SectionPart::key_map_lists: return take_list(line);
            case SectionPart::none:
            case SectionPart::end: break;
        }
    }

    void take_source(std::string_view line) {
        if (line.starts_with("PROCEDURE ")) compile_group();
        group_.append(line).append("\n");
        if (line.starts_with("ENDPROCEDURE")) compile_group();
    }

    // What ends one group does not end those behind it.
    void compile_group() {
        if (group_.empty()) return;
        const std::size_t faults = run_.error_list.size();
        const std::string group = std::exchange(group_, {});
        ++groups_;
        if (run_.define_unparsed(group)) return;
        run_.compile_text(group);
        if (!run_.interrupted) run_.control_signal = Signal::none;
        for (std::size_t i = faults; i < run_.error_list.size(); ++i) {
            if (editor_.message != run_.error_list[i]) editor_.set_message(run_.error_list[i]);
        }
    }

    void take_variable(std::string_view line) {
        if (line.empty()) return;
        run_.symbols.declare_global(run_.symbols.intern(ascii::upper(line)), tpu_unspecified());
        ++variables_;
    }

    // Nothing but its declaration gives it a value.
    void take_constant(std::string_view line) {
        if (line.empty()) return;
        Symbol& symbol = run_.symbols.intern(ascii::upper(line));
        run_.symbols.declare_global(symbol, tpu_unspecified());
        symbol.constant = true;
    }

    void take_key(std::string_view line) {
        constexpr std::string_view kMap = "KEYMAP ", kKey = "KEY ";
        if (line.starts_with(kMap)) {
            std::string name(line.substr(kMap.size()));
            map_ = find_named(editor_.key_maps, name);
            if (!map_) map_ = editor_.create_key_map(name);
        } else if (line.starts_with(kKey) && map_) {
            define_key(line.substr(kKey.size()));
        }
    }

    // code|text|comment
    void define_key(std::string_view line) {
        int code = 0;
        const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), code);
        std::size_t bar = line.find('|');
        if (error != std::errc() || bar == std::string_view::npos) return;
        line.remove_prefix(bar + 1);
        bar = std::min(line.find('|'), line.size());
        KeyBinding binding{tpu_unescape_line(line.substr(0, bar)), {}, {}};
        if (bar < line.size()) binding.comment = tpu_unescape_line(line.substr(bar + 1));
        // Otherwise saving and restoring would leave the arrow keys dead.
        if (binding.text.empty()) binding.action = default_action(editor_, code);
        map_->define_key(code, std::move(binding));
        ++keys_;
    }

    void take_list(std::string_view line) {
        constexpr std::string_view kList = "LIST ";
        if (!line.starts_with(kList)) return;
        line.remove_prefix(kList.size());
        std::string name(take_word(line));
        const KeyMapList* current = editor_.current_key_map_list;
        bool is_current = current && current->name == name;
        KeyMapList* list = editor_.create_key_map_list(name, nullptr);
        if (is_current) editor_.current_key_map_list = list;
        while (!line.empty()) {
            KeyMap* map = find_named(editor_.key_maps, std::string(take_word(line)));
            if (map) list->add_last(map);
        }
    }

    static std::string_view take_word(std::string_view& line) {
        std::size_t end = std::min(line.find(' '), line.size());
        std::string_view word = line.substr(0, end);
        line.remove_prefix(std::min(end + 1, line.size()));
        return word;
    }

    TPUEditor& editor_;
    MiniTPUParser& run_;
    std::string group_;
    KeyMap* map_ = nullptr;
    std::size_t groups_ = 0, variables_ = 0, keys_ = 0;
};

}  // namespace

bool tpu_section_save(TPUEditor& editor, const std::string& path, const std::string& ident) {
    std::string_view first_line = ident;
    first_line = first_line.substr(0, first_line.find_first_of("\r\n"));
    const std::string text =
        section_text(editor, first_line.empty() ? tpu_version_string() : std::string(first_line));
    const std::string failed = "SAVE: cannot write " + path, refusal = replace_refusal(path);
    Failure why;
    auto write = [&](int fd, Failure& reason) { return write_all(fd, text, reason); };
    const bool saved = refusal.empty() && write_at_once(path, write, why);
    if (saved) {
        editor.set_message("SAVE section -> " + path);
    } else if (refusal.empty()) {
        editor.fail("TPU$_SAVEERROR", failed, why.text());
    } else {
        editor.fail("TPU$_SAVEERROR", failed + " (" + refusal + ")", refusal);
    }
    return saved;
}

bool tpu_section_restore(TPUEditor& editor, const std::string& path) {
    std::optional<std::string> text = read_section(editor, path, "RESTORE");
    if (!text) return false;
    Restorer restorer(editor);
    restorer.restore(*text);
    editor.set_message("RESTORE section " + path + " (" + restorer.counts() + ")");
    return true;
}

bool tpu_section_expand(TPUEditor& editor, const std::string& path) {
    std::optional<std::string> text = read_section(editor, path, "EXPAND");
    if (!text) return false;
    editor.open_show_buffer("$EXPAND", *text);
    editor.current_buffer->modifiable = false;
    editor.set_message("EXPAND -> buffer $EXPAND");
    return true;
}

}  // namespace tpu
