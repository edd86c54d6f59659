// The document of attributes: prose, and tables made of the rows that SET and GET_INFO read.
#include "attribute_page.h"

#include "attributes/attribute.h"

namespace tpu {

namespace {

constexpr const char* kSet = R"(# Attributes: SET and GET_INFO

`SET` changes an attribute of a buffer, of a window or of the session. `GET_INFO` reads one. The tables
below are made of those in `src/attributes` by `script/manual`.

## SET

```
SET(keyword)
SET(keyword, value, ...)
SET(keyword, buffer, value, ...)
```

The keyword is taken as written, in any case. It acts on the current buffer. Where the table says so, a
buffer may stand before the values: it counts as the target when there are three arguments or more and
the second one is a buffer.

A switch is `ON` or `TRUE`, `OFF` or `FALSE`, as a bare word or as a text, or 1 or 0. Anything else, and
no value at all, means on. Numbers that make no sense are brought within bounds.

| Keyword | Values | Buffer first | What it does |
|---|---|---|---|
)";

constexpr const char* kIgnored = R"(
These keywords are accepted and change nothing:

)";

constexpr const char* kGetInfo = R"(.

Any other keyword shows the message `SET: unknown attribute` with its name. It is no error.

## GET_INFO

```
GET_INFO(object, item)
```

The item is a text or a word, in any case. As a statement, `GET_INFO` shows the value as a message. What
an item is asked of hangs on the object, in this order:

1. `SYSTEM`, as a word or a text: the items are `VERSION` (the integer 1), `UPDATE` (0) and `PLATFORM`
   (the text `MACOS` on all systems). No other item is known.
2. `ARRAY`: the walk over all arrays. `FIRST`, `LAST`, `CURRENT`, `NEXT` and `PREVIOUS` give an array, or
   the integer 0 where there is none.
3. An array: `LOW_INDEX`, `HIGH_INDEX`, `SIZE` (or `LENGTH` or `RECORD_COUNT`), and the walk over its
   subscripts with `FIRST`, `LAST`, `CURRENT`, `NEXT` and `PREVIOUS`.
4. The integer 0: `VERSION` (the version of this program, a text), `RELEASE_DATE` and `PLATFORM`. Other
   items go on to the table.
5. Anything else: the table. The first row counts that has the item and finds what it is asked of:

| What | Which it is |
|---|---|
| range, `SCREEN`, `COMMAND_LINE`, `BUFFERS`, `WINDOWS` | such an object, or such a word |
| key map, key-map list | the one whose name the text or word is, in the same case |
| window | the object; or else the window that shows the marker or the buffer, the current one first |
| marker or cursor | the marker; or else the cursor of the window's buffer or of the buffer |
| buffer | the object; or else the current buffer |
| session | any object |

So the name of a buffer is no buffer: `GET_INFO("A", "LINES")` counts the lines of the current one. What
no row finds is unspecified, and no error is recorded. Switches read as 1 and 0. Columns and lines of a
text count from 1, rows and columns of the screen from 0.

| Item | What | Value |
|---|---|---|
)";

std::string code(std::string_view name) {
    return '`' + std::string(name) + '`';
}

std::string table_row(std::initializer_list<std::string_view> cells) {
    std::string row = "|";
    for (std::string_view cell : cells) row.append(" ").append(cell).append(" |");
    return row + '\n';
}

std::string keyword_rows() {
    std::string rows;
    for (const Attribute* row : all_attributes()) {
        for (const Keyword& keyword : row->keywords) {
            if (keyword.name.empty()) continue;
            rows += table_row(
                {code(keyword.name), row->values, row->takes_buffer() ? "yes" : "", keyword.help});
        }
    }
    return rows;
}

std::string item_rows() {
    std::string rows;
    for (const Attribute* row : all_attributes()) {
        std::string names;
        for (std::string_view name : row->items) {
            if (!name.empty()) names += (names.empty() ? "" : ", ") + code(name);
        }
        if (!names.empty()) rows += table_row({names, name_of(row->of), row->gives});
    }
    return rows;
}

// The keywords, in lines that fit.
std::string ignored_keywords() {
    constexpr std::size_t kWidth = 100;
    std::string text;
    std::size_t column = 0;
    for (std::string_view name : ignored_set_keywords()) {
        if (!text.empty()) text += column + name.size() + 4 > kWidth ? ",\n" : ", ";
        column = text.size() - (text.rfind('\n') + 1);
        text += code(name);
        column += name.size() + 2;
    }
    return text;
}

}  // namespace

std::string attribute_page() {
    return kSet + keyword_rows() + kIgnored + ignored_keywords() + kGetInfo + item_rows();
}

}  // namespace tpu
