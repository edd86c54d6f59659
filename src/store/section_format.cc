#include "store/section_format.h"

#include "lang/stmt_text.h"

namespace tpu {

namespace {

struct PartName {
    SectionPart part;
    std::string_view name;
};

constexpr PartName kParts[] = {
    {SectionPart::procedures, "PROCEDURES"},      {SectionPart::variables, "VARIABLES"},
    {SectionPart::constants, "CONSTANTS"},        {SectionPart::key_maps, "KEYMAPS"},
    {SectionPart::key_map_lists, "KEYMAP_LISTS"},
};

constexpr std::string_view kBegin = "BEGIN ", kEnd = "END ", kLast = "#END";

std::string frame(std::string_view word, SectionPart part) {
    if (part == SectionPart::end) return std::string(kLast);
    for (const PartName& known : kParts) {
        if (known.part == part) return std::string(word).append(known.name);
    }
    return {};
}

bool is_structure(std::string_view line) {
    SectionPart ignored;
    return line.starts_with("PROCEDURE ") || line.starts_with("ENDPROCEDURE") ||
           switches_part(line, ignored);
}

}  // namespace

std::string tpu_escape_line(std::string_view text) {
    std::string line;
    for (char c : text) {
        switch (c) {
            case '\\': line += "\\\\"; break;
            case '\n': line += "\\n"; break;
            case '\r': line += "\\r"; break;
            default: line += c;
        }
    }
    return line;
}

std::string tpu_unescape_line(std::string_view line) {
    std::string text;
    for (std::size_t i = 0; i < line.size(); ++i) {
        char next = line[i] == '\\' && i + 1 < line.size() ? line[i + 1] : '\0';
        switch (next) {
            case '\\': text += '\\'; break;
            case 'n': text += '\n'; break;
            case 'r': text += '\r'; break;
            default: text += line[i]; continue;
        }
        ++i;
    }
    return text;
}

std::string begin_line(SectionPart part) {
    return frame(kBegin, part);
}

std::string end_line(SectionPart part) {
    return frame(kEnd, part);
}

bool switches_part(std::string_view line, SectionPart& part) {
    if (line == kLast) {
        part = SectionPart::end;
        return true;
    }
    bool begins = line.starts_with(kBegin);
    if (!begins && !line.starts_with(kEnd)) return false;
    line.remove_prefix(begins ? kBegin.size() : kEnd.size());
    for (const PartName& known : kParts) {
        if (known.name != line) continue;
        part = begins ? known.part : SectionPart::none;
        return true;
    }
    return false;
}

std::string saved_source(const std::string& source) {
    std::size_t line = source.find('\n');
    while (line != std::string::npos) {
        std::size_t next = source.find('\n', line + 1);
        bool is_last = next == std::string::npos || next + 1 == source.size();
        std::string_view text = std::string_view(source).substr(line + 1, next - line - 1);
        if (!is_last && is_structure(text)) return on_one_line(source);
        line = next;
    }
    return source;
}

}  // namespace tpu
