// SET(VIDEO, ...): how spans of a buffer look.
#include <algorithm>
#include <optional>

#include "attributes/set_call.h"
#include "editor/editor.h"

namespace tpu {

namespace {

struct AttrName {
    std::string_view name;
    Attr attr;
};

constexpr AttrName kAttrNames[] = {
    {"BOLD", Attr::bold},   {"REVERSE", Attr::reverse}, {"UNDERLINE", Attr::underline},
    {"DIM", Attr::dim},     {"BLINK", Attr::blink},     {"STANDOUT", Attr::standout},
    {"NORMAL", Attr::none},
};

std::optional<Attr> attr_named(std::string_view name) {
    for (const AttrName& row : kAttrNames) {
        if (row.name == name) return row.attr;
    }
    return {};
}

// The attributes of all words, which blanks or commas separate; nothing when there is
// no word, or one that names none.
std::optional<Attr> attrs_named(std::string_view words) {
    constexpr std::string_view kBetween = " \t,";
    std::optional<Attr> all;
    while (true) {
        words.remove_prefix(std::min(words.find_first_not_of(kBetween), words.size()));
        if (words.empty()) return all;
        std::string_view word = words.substr(0, words.find_first_of(kBetween));
        std::optional<Attr> attr = attr_named(word);
        if (!attr) return {};
        all = all.value_or(Attr::none) | *attr;
        words.remove_prefix(word.size());
    }
}

// The text of the cursor line.
Range cursor_line(Buffer& buffer) {
    std::uint64_t length = buffer.line_length(), row = buffer.cursor_row;
    return Range({&buffer, row, 0}, {&buffer, row, length});
}

bool is_empty(const Range& range) {
    return range.start.position() == range.end.position();
}

bool same_span(const Range& a, const Range& b) {
    return a.start.position() == b.start.position() && a.end.position() == b.end.position();
}

void show_with(Buffer& buffer, const Range& span, Attr attr) {
    std::erase_if(buffer.video_regions, [&](const Buffer::VideoRegion& region) {
        return region.attr == attr && same_span(region.range, span);
    });
    if (!is_empty(span)) buffer.video_regions.push_back({span, attr});
}

void show_plain(Buffer& buffer, const Range& span) {
    std::erase_if(buffer.video_regions, [&](const Buffer::VideoRegion& region) {
        return region.range.start.position() < span.end.position() &&
               span.start.position() < region.range.end.position();
    });
}

}  // namespace

void set_video(SetCall& call) {
    Buffer& buffer = call.buffer;
    std::optional<Range> selected = buffer.select_range();
    Range span = selected ? *selected : cursor_line(buffer);
    if (call.word() == "OFF") {
        // The line's end counts, so that what covers an empty line goes too.
        if (!selected) span.end = {&buffer, span.start.row + 1, 0};
        show_plain(buffer, span);
        return;
    }
    std::string words;
    for (std::size_t i = 0; i < call.count(); ++i) words += call.word(i) + " ";
    std::optional<Attr> attr = attrs_named(words);
    if (attr) return show_with(buffer, span, *attr);
    call.editor.set_message(
        "SET(VIDEO) needs BOLD, REVERSE, UNDERLINE, DIM, BLINK, STANDOUT, NORMAL or OFF");
}

}  // namespace tpu
