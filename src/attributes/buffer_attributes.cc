// Attributes of buffers.
#include "attributes/attribute.h"
#include "editor/editor.h"
#include "editor/process.h"

namespace tpu {

namespace {

using Type = Value::Type;

Value line_count(const Subject& s) {
    return number_value(s.buffer.text().size());
}

Value key_map_list(const Subject& s) {
    if (!s.buffer.key_map_list.empty()) return Value::make_str(s.buffer.key_map_list);
    const KeyMapList* list = s.editor.current_key_map_list;
    return Value::make_str(list ? list->name : "");
}

std::string tab_columns(const Buffer& buffer) {
    std::string columns;
    for (std::uint64_t stop : buffer.tab_stops) {
        if (!columns.empty()) columns += ' ';
        columns += std::to_string(stop);
    }
    return columns;
}

// As SET takes them.
Value tab_stops(const Subject& s) {
    if (s.buffer.tab_stops.empty()) return number_value(s.buffer.tab_interval);
    return Value::make_str(tab_columns(s.buffer));
}

std::string shown_tab_stops(const TPUEditor& editor) {
    const Buffer& buffer = *editor.current_buffer;
    if (!buffer.tab_stops.empty()) return tab_columns(buffer);
    std::string every = "every " + std::to_string(buffer.tab_interval);
    return buffer.tab_interval == Buffer::kTabInterval ? "default (" + every + ")" : every;
}

Value buffer_begin(const Subject& s) {
    return Value::make_marker({&s.buffer, 0, 0, false});
}

Value buffer_end(const Subject& s) {
    std::uint64_t last = s.buffer.text().size() - 1;
    return Value::make_marker({&s.buffer, last, s.buffer.text().length(last), false});
}

Value whose_buffer(const Subject& s) {
    Buffer* buffer = &s.buffer;
    switch (s.object.type()) {
        case Type::process: buffer = process_of(s.object)->output; break;
        case Type::window:
        case Type::marker:
        case Type::range: buffer = buffer_of(s.object); break;
        default: break;
    }
    return buffer ? Value::make_buffer(buffer) : tpu_unspecified();
}

constexpr std::uint64_t kLastMargin = 65'535;

void put_margins(SetCall& call) {
    call.buffer.left_margin = call.number(0, 0, kLastMargin);
    if (call.count() > 1) call.buffer.right_margin = call.number(1, 0, kLastMargin);
}

std::string shown_margins(const TPUEditor& editor) {
    const Buffer& buffer = *editor.current_buffer;
    return std::to_string(buffer.left_margin) + " ... " + std::to_string(buffer.right_margin);
}

std::string shown_journal(const TPUEditor& editor) {
    const Buffer& buffer = *editor.current_buffer;
    if (!buffer.journal_fault.empty() && !buffer.journaling) {
        return "stopped: " + buffer.journal_fault;
    }
    if (!buffer.journaling) return "off";
    return buffer.journal_file.empty() ? "on" : buffer.journal_file;
}

// clang-format off
constexpr Attribute kRows[] = {
    {.of = Of::buffer, .items = {"BUFFER"}, .get = whose_buffer,
     .gives = "The buffer itself; that of a window, marker, range or process, unspecified when it has none."},
    {.of = Of::buffer, .items = {"NAME"}, .field = &Buffer::name,
     .gives = "Its name.",
     .shown = {.label = "Name"}},
    {.of = Of::buffer, .items = {"FILE_NAME", "INPUT_FILE", "OUTPUT_FILE"}, .field = &Buffer::file_name,
     .gives = "The file that it is read from and written to; empty without one.",
     .shown = {.label = "File", .none = "<none>"}},
    {.of = Of::buffer, .items = {"RECORD_COUNT", "LENGTH", "LINES"}, .get = line_count,
     .gives = "The number of its lines."},
    {.of = Of::buffer, .items = {"BEGIN", "START"}, .get = buffer_begin,
     .gives = "The marker at its beginning."},
    {.of = Of::buffer, .items = {"END"}, .get = buffer_end,
     .gives = "The marker at its end."},
    {.of = Of::buffer, .items = {"MODIFIED"}, .field = &Buffer::modified,
     .gives = "1 when its text was changed since it was written, else 0.",
     .keywords = {{{"MODIFIED", "Whether the text counts as changed since it was written."}}},
     .values = "ON or OFF",
     .shown = {.label = "Modified", .on = "yes", .off = "no"}},
    {.of = Of::buffer, .items = {"MODIFIABLE"}, .field = &Buffer::modifiable,
     .gives = "1 when its text can be changed, else 0.",
     .keywords = {{{"MODIFIABLE", "Whether the text can be changed."}}},
     .values = "ON or OFF",
     .shown = {.label = "Modifiable", .on = "yes", .off = "no"}},
    {.of = Of::buffer, .items = {"NO_WRITE"}, .field = &Buffer::no_write,
     .gives = "1 when it is marked as not to be written, else 0.",
     .keywords = {{{"NO_WRITE", "Marks the buffer as one that is not written: trying to fails."}}},
     .values = "ON or OFF"},
    {.of = Of::buffer, .items = {"PERMANENT"}, .field = &Buffer::permanent,
     .gives = "1 when it cannot be deleted, else 0.",
     .keywords = {{{"PERMANENT", "The buffer cannot be deleted from now on."}}}},
    {.of = Of::buffer, .items = {"SYSTEM"}, .field = &Buffer::system,
     .gives = "1 when it is marked as one of the editor's own, else 0.",
     .keywords = {{{"SYSTEM", "Marks the buffer as one of the editor's own."}}},
     .values = "ON or OFF"},
    {.of = Of::buffer, .items = {"BACKUP"}, .field = &Buffer::backup_on_write,
     .gives = "1 when writing keeps the previous file, else 0.",
     .keywords = {{{"BACKUP", "Whether writing keeps the previous file under its name with .bak."}}},
     .values = "ON or OFF"},
    {.of = Of::buffer, .items = {"DIRECTION"}, .field = &Buffer::reverse, .reads_as_keyword = true,
     .gives = "The direction of searches: the keyword FORWARD or REVERSE.",
     .keywords = {{{"REVERSE", "Searches go backward."},
                   {"FORWARD", "Searches go forward."}}},
     .shown = {.label = "Direction"}},
    {.of = Of::buffer, .items = {"INSERT_MODE"}, .field = &Buffer::insert_mode, .reads_as_keyword = true,
     .gives = "What typing does: the keyword INSERT or OVERSTRIKE.",
     .keywords = {{{"INSERT", "Typed characters push the text before them.",
                    {"SET INSERT", "Type in insert mode."}},
                   {"OVERSTRIKE", "Typed characters replace those under the cursor.",
                    {"SET OVERSTRIKE", "Type in overstrike mode."}}}},
     .shown = {.label = "Insert mode"}},
    {.of = Of::buffer,
     .keywords = {{{"MARGINS", "Both margins; a right one that is not given stays.",
                    {.form = "SET MARGINS left right", .help = "Set both margins.", .values = 2}}}},
     .values = "left [, right]", .set = put_margins,
     .shown = {.label = "Margins", .text = shown_margins}},
    {.of = Of::buffer, .items = {"LEFT_MARGIN"}, .field = &Buffer::left_margin,
     .gives = "The column in which filled lines begin.",
     .keywords = {{{"LEFT_MARGIN", "The column in which filled and wrapped lines begin; 0 is the first one too.",
                    {.form = "SET LEFT MARGIN n", .help = "Set the column where filled and wrapped lines begin.", .values = 1}}}},
     .values = "column", .most = kLastMargin},
    {.of = Of::buffer, .items = {"RIGHT_MARGIN"}, .field = &Buffer::right_margin,
     .gives = "The column up to which lines are filled.",
     .keywords = {{{"RIGHT_MARGIN", "The column up to which lines are filled; 0 for none, which ends wrapping and the mark of the margin.",
                    {.form = "SET RIGHT MARGIN n", .help = "Set the column up to which filled and wrapped lines reach.", .values = 1}}}},
     .values = "column", .most = kLastMargin},
    {.of = Of::buffer, .items = {"WRAP"}, .field = &Buffer::auto_wrap,
     .gives = "1 when a blank past the right margin wraps the line, else 0.",
     .keywords = {{{"WRAP", "A blank typed past the right margin wraps the line."},
                   {"NO_WRAP", "Lines are not wrapped."}}},
     .shown = {.label = "Wrap"}},
    {.of = Of::session, .items = {"LINE_NUMBER"}, .field = &TPUEditor::show_line_numbers,
     .gives = "1 when windows show line numbers, else 0.",
     .keywords = {{{"LINE_NUMBER", "Whether windows show line numbers; it holds for all buffers.",
                    {"SET LINE NUMBER [ON or OFF]", "Show the numbers of lines or not; without a word, the other of the two."}}}},
     .values = "ON or OFF", .ignores_buffer = true,
     .shown = {.label = "Line numbers"}},
    {.of = Of::buffer, .items = {"EOB_TEXT"}, .field = &Buffer::eob_text,
     .gives = "What is shown behind its last line.",
     .keywords = {{{"EOB_TEXT", "What is shown behind the last line.",
                    {"SET EOB TEXT text", "Set what is shown behind the last line of the buffer."}}}},
     .values = "text",
     .shown = {.label = "EOB text"}},
    {.of = Of::buffer, .items = {"TAB_STOPS"}, .get = tab_stops,
     .gives = "The distance of its tab stops, or a text with their columns.",
     .keywords = {{{"TAB_STOPS", "Where the tab key goes: every so many columns, or to several columns, or to those in a text such as \"5 10 20\".",
                    {.form = "SET TAB STOPS width or columns", .help = "Set tab stops: one every that many columns, or at two columns or more.", .values = 1, .lowest = 1}}}},
     .values = "distance, or columns", .set = set_tab_stops,
     .shown = {.label = "Tab stops", .text = shown_tab_stops}},
    {.of = Of::buffer, .items = {"MAX_LINES"}, .field = &Buffer::max_lines,
     .gives = "The number of lines that it is meant to have at most; 0 for any.",
     .keywords = {{{"MAX_LINES", "How many lines the buffer is meant to have at most, 0 for any number; a note for programs, nothing is cut off."}}},
     .values = "lines"},
    {.of = Of::buffer, .items = {"JOURNALING"}, .field = &Buffer::journaling,
     .gives = "1 when an open journal gets records of it, else 0.",
     .keywords = {{{"JOURNALING", "Whether an open journal gets records of the buffer."}}},
     .values = "ON or OFF",
     .shown = {.label = "Journaling", .text = shown_journal}},
    {.of = Of::buffer, .items = {"JOURNAL_FILE"}, .field = &Buffer::journal_file,
     .gives = "Its journal; empty without one."},
    {.of = Of::buffer, .items = {"KEY_MAP_LIST"}, .field = &Buffer::key_map_list, .get = key_map_list,
     .gives = "The name of its key-map list, or else of the editor's; empty without any.",
     .keywords = {{{"KEY_MAP_LIST", "The key-map list for keys in the buffer; while there is none of that name, the editor's."}}},
     .values = "name",
     .shown = {.label = "Key map list", .none = "(default)"}},
    {.of = Of::buffer,
     .keywords = {{{"VIDEO", "How the selection, or else the cursor line, looks: BOLD, REVERSE, UNDERLINE, DIM, BLINK, STANDOUT or NORMAL; OFF takes away all that touches it."}}},
     .values = "OFF, or attributes", .set = set_video},
};
// clang-format on

}  // namespace

std::span<const Attribute> buffer_attributes() {
    return kRows;
}

}  // namespace tpu
