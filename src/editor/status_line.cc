#include "editor/status_line.h"

#include "buffer/buffer.h"

namespace tpu {

namespace {

std::string modified_word(const Buffer& buffer) {
    return buffer.modified ? "Modified" : "Saved";
}

std::string mode_word(const Buffer& buffer) {
    return buffer.insert_mode ? "INSERT" : "OVERSTRIKE";
}

std::string or_none(std::string_view text) {
    return text.empty() ? "<none>" : std::string(text);
}

struct Escape {
    char letter;
    std::string (*text)(const Buffer&);
};

constexpr Escape kEscapes[] = {
    {'%', [](const Buffer&) { return std::string("%"); }},
    {'c', [](const Buffer& b) { return std::to_string(b.cursor_column + 1); }},
    {'d', [](const Buffer& b) { return std::string(b.reverse ? "REV" : "FWD"); }},
    {'f', [](const Buffer& b) { return or_none(b.file_name); }},
    {'i', mode_word},
    {'l', [](const Buffer& b) { return std::to_string(b.cursor_row + 1); }},
    {'m', modified_word},
    {'n', [](const Buffer& b) { return b.name; }},
    {'t', [](const Buffer& b) { return std::to_string(b.text().size()); }},
};

const Escape* find_escape(char letter) {
    for (const Escape& escape : kEscapes) {
        if (escape.letter == letter) return &escape;
    }
    return nullptr;
}

std::string expand(const Buffer& buffer, std::string_view format) {
    std::string text;
    for (std::size_t i = 0; i < format.size(); ++i) {
        bool more = format[i] == '%' && i + 1 < format.size();
        if (!more) {
            text += format[i];
        } else if (const Escape* escape = find_escape(format[++i])) {
            text += escape->text(buffer);
        } else {
            text += {'%', format[i]};
        }
    }
    return text;
}

}  // namespace

std::string window_status(const Buffer& buffer, bool is_current, std::string_view format) {
    if (!format.empty()) return expand(buffer, format);
    return " " + buffer.name + (is_current ? " *" : "  ") + " " + modified_word(buffer) + " " +
           mode_word(buffer) + " " + std::to_string(buffer.cursor_row + 1) + "/" +
           std::to_string(buffer.text().size()) + ":" + std::to_string(buffer.cursor_column + 1);
}

std::string global_status(const Buffer& buffer, std::string_view key_map_list) {
    return " Vorlane  Buffer:" + buffer.name + " File:" + or_none(buffer.file_name) + " " +
           modified_word(buffer) + " " + mode_word(buffer) + " Line " +
           std::to_string(buffer.cursor_row + 1) + "/" + std::to_string(buffer.text().size()) +
           " Col " + std::to_string(buffer.cursor_column + 1) +
           " KeyMapList:" + or_none(key_map_list);
}

}  // namespace tpu
