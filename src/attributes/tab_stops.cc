// SET(TAB_STOPS, ...)
#include <algorithm>
#include <vector>

#include "attributes/set_call.h"
#include "buffer/buffer.h"
#include "text/ascii.h"

namespace tpu {

namespace {

constexpr std::uint64_t kLastColumn = 65'535;

bool is_text(const Value& value) {
    return value.is(Value::Type::string) || value.is(Value::Type::keyword);
}

// The numbers in a text, whatever stands between them.
void add_columns(std::string_view text, std::vector<std::uint64_t>& columns) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (!ascii::is_digit(text[i])) continue;
        std::uint64_t column = 0;
        for (; i < text.size() && ascii::is_digit(text[i]); ++i) {
            auto digit = static_cast<std::uint64_t>(text[i] - '0');
            column = std::min(column * 10 + digit, kLastColumn);
        }
        if (column > 0) columns.push_back(column);
    }
}

}  // namespace

// A single number is the distance of stops; several, or those in a text, are columns.
void set_tab_stops(SetCall& call) {
    Buffer& buffer = call.buffer;
    buffer.tab_stops.clear();
    buffer.tab_interval = Buffer::kTabInterval;
    if (call.count() == 1 && !is_text(call.value())) {
        std::uint64_t interval = call.number(0, 0, kLastColumn);
        if (interval > 0) buffer.tab_interval = interval;
        return;
    }
    std::vector<std::uint64_t> columns;
    for (std::size_t i = 0; i < call.count(); ++i) add_columns(call.text(i), columns);
    std::sort(columns.begin(), columns.end());
    columns.erase(std::unique(columns.begin(), columns.end()), columns.end());
    buffer.tab_stops = std::move(columns);
}

}  // namespace tpu
