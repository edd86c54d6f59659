// A text with a cursor and attributes: what the editor edits.
//
// Places are zero-based (row, byte column) pairs. The primitives never fail: bad
// places are clamped, and changes to an unmodifiable buffer are skipped ("guarded"
// below). Work that a null pointer stands for is never stopped. Undo is a stack of snapshots of the
// whole text, which LineStore makes free; callers take one with push_undo before they change
// something.
//
// Every change of the text goes through edit() and is in a log, from which others learn of it.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "buffer/marker.h"
#include "os/failure.h"
#include "os/file_version.h"
#include "os/work.h"
#include "text/attr.h"
#include "text/change_log.h"
#include "text/charset.h"
#include "text/line_store.h"

namespace tpu {

class JournalFollower;

class Buffer {
  public:
    struct Snapshot {
        LineStore lines;
        std::uint64_t cursor_row = 0;
        std::uint64_t cursor_column = 0;
        std::uint64_t view_line = 0;
        std::uint64_t version = 0;  // of the text in the log of changes

        // Same text and same cursor; the view does not count.
        bool same_place_and_text(const Snapshot& other) const;
    };
    // What a step changes, for one that fails half-way.
    struct State {
        Snapshot text;
        std::optional<Marker> select_anchor;
        bool box_select = false;
        bool modified = false;
        std::uint64_t file_time = 0;
        std::size_t undo_steps = 0, redo_steps = 0;
    };
    struct VideoRegion {
        Range range;
        Attr attr = Attr::none;
    };
    // A save that was not done, since somebody else has written the file or it is protected.
    struct RefusedSave {
        FileVersion version;  // theirs
        LineStore lines;      // ours
    };
    struct LineBreak {};
    enum class Case { upper = 0, lower = 1, invert = 2 };
    static constexpr std::uint64_t kTabInterval = 8;

    Buffer(std::string buffer_name, std::string file)
        : name(std::move(buffer_name)), file_name(std::move(file)) {}
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;

    std::string name;
    std::string file_name;  // read from and written to; may be empty
    bool modified = false;
    bool insert_mode = true;  // false: overstrike
    bool modifiable = true;
    bool permanent = false;
    bool no_write = false;
    bool system = false;
    bool reverse = false;  // direction
    bool journaling = false;
    bool binary_journal = false;
    std::uint64_t cursor_row = 0;
    std::uint64_t cursor_column = 0;  // past the line's end only with free_cursor
    std::uint64_t view_line = 0;      // first row that a window shows
    std::uint64_t left_margin = 1;    // one-based columns
    std::uint64_t right_margin = 80;
    std::uint64_t max_lines = 0;
    std::vector<std::uint64_t> tab_stops;       // one-based columns, ascending
    std::uint64_t tab_interval = kTabInterval;  // columns between stops behind the last of them
    bool auto_wrap = false;
    bool backup_on_write = true;
    std::string eob_text = "[End of file]";
    std::string key_map_list;  // name of the list for keys in this buffer; empty: the editor's
    std::string journal_file;
    std::string journal_fault;  // why the recording ended against our will
    bool journal_fault_told = false;
    bool journal_strayed = false;  // its statements so far leave another buffer current
    std::shared_ptr<JournalFollower> journal_follower;
    std::uint64_t file_time = 0;  // milliseconds since the epoch; 0: unknown
    // The file as it was read or written last, or found missing. Nothing: never looked at.
    std::optional<FileVersion> known_version;
    Failure file_trouble;                     // for which the file could not be read
    std::optional<RefusedSave> refused_save;  // the last attempt, if that was one
    std::string save_note;                    // why the last save failed, or what it did without
    std::vector<VideoRegion> video_regions;
    std::vector<Snapshot> undo_stack;  // oldest first
    std::vector<Snapshot> redo_stack;
    std::uint64_t undo_limit = 200;
    bool undo_enabled = true;
    std::optional<Marker> select_anchor;
    bool box_select = false;
    LineStore paste_text;
    std::vector<std::string> box_register;
    bool free_cursor = false;
    std::uint64_t history_moves = 0;  // how often undo and redo have succeeded
    Snapshot last_restored;           // what the latest of them brought back
    LineStore saved_lines;            // what loading the file gives, as far as we know
    Change since_saved_lines;         // leads from there to the text that was saved ...
    std::uint64_t saved_version = 1;  // ... which was this version
    std::uint64_t loading_size = 0;   // bytes of the file that is being loaded in steps; 0: none
    Ref<TextBlock> loaded_block;      // of that file

    // buffer_edit.cc: the text, and the one way to change it
    const LineStore& text() const { return text_; }
    const ChangeLog& changes() const { return log_; }
    // Puts a text in the place of the bytes [from, to), which are not past the end. Guarded:
    // false, and nothing is done. Line feeds in a string are text like other bytes.
    bool edit(std::uint64_t from, std::uint64_t to, std::string_view text);
    bool edit(std::uint64_t from, std::uint64_t to, const LineStore& text);
    bool edit(std::uint64_t from, std::uint64_t to, LineBreak);
    // Another text, to which no changes lead. Neither cursor nor `modified` are touched.
    void set_text(LineStore text);
    // Counts line breaks anew, in what can be undone too: the text has changed in place.
    void recount_lines();

    // buffer_cursor.cc: cursor, marks, selection
    void clamp_cursor();
    std::string current_line();                    // a copy; line_length() where the size will do
    std::uint64_t line_length();                   // bytes of the cursor line
    char current_character() const;                // line feed at the line's end
    std::uint64_t current_offset_in_line() const;  // offset in the whole text
    void move_vertical(int n);
    void move_horizontal(int n);  // crosses one line end at most
    void materialize_cursor_column();
    void beginning_of_buffer();
    void end_of_buffer();
    void position(const Marker& marker);  // one of another buffer is ignored
    void go_to(std::uint64_t offset);     // of the text, at most its size
    Marker mark(bool free);
    void select();
    std::optional<Range> select_range();
    bool position_in_range(std::uint64_t row, std::uint64_t column, const Range& range) const;

    // buffer_lines.cc: splitting, joining and erasing; guarded
    void split_line();
    void append_line();
    void erase_line();
    void erase_character_at_cursor();
    void erase_character_left();
    void erase_n_characters(int n);  // below 0: to the left

    // buffer_undo.cc
    Snapshot snap() const;
    void restore_snap(const Snapshot& snapshot);
    // Needs no memory: as if there had been nothing since but undoing, redoing and saving.
    State state() const;
    void put_back(const State& state) noexcept;
    void make_room_for_undo();  // the next push_undo needs no memory
    void push_undo(bool clear_redo);
    void push_undo(Snapshot snapshot, bool clear_redo);
    bool undo();  // false: nothing to undo
    bool redo();
    // The way back to a state that is on no stack. The present one can be redone, alone.
    void go_back_to(const Snapshot& snapshot);

    // buffer_typing.cc; guarded
    void copy_text(char c);
    // The inserted span. With Charset::utf8 the text overstrikes whole characters.
    Range copy_text(std::string_view text, Charset charset = Charset::bytes, Work* work = nullptr);
    // The same for a text that may be large: shares its memory where it goes in as it is.
    void copy_lines(const LineStore& text, Charset charset, Work* work = nullptr);
    void insert_tab(Charset charset = Charset::bytes);
    void wrap_current_line();

    // buffer_transform.cc; guarded but for shifting
    void fill_range(const Range& range, std::uint64_t left, std::uint64_t right,
                    Work* work = nullptr);
    static char xform_case(char c, Case mode);
    void change_case_buffer(Case mode, Work* work = nullptr);
    void change_case_range(const Range& range, Case mode, Work* work = nullptr);
    void change_case_word(Case mode);
    void translate(std::string_view from, std::string_view to, Work* work = nullptr);
    void translate_range(const Range& range, std::string_view from, std::string_view to,
                         Work* work = nullptr);
    void shift_columns(int n, Work* work = nullptr);  // of all rows
    void shift_rows(std::uint64_t first, std::uint64_t last, int n, Work* work = nullptr);

    // buffer_ranges.cc; what changes the text is guarded
    void erase_range(const Range& range);
    std::string text_of_range(const Range& range) const;
    LineStore lines_of_range(const Range& range) const;  // the same, sharing memory
    void box_cut(std::uint64_t row1, std::uint64_t row2, std::uint64_t col1, std::uint64_t col2,
                 Work* work = nullptr);
    // The same without taking the rectangle out of the text.
    void box_copy(std::uint64_t row1, std::uint64_t row2, std::uint64_t col1, std::uint64_t col2,
                  Work* work = nullptr);
    void box_paste(std::uint64_t row, std::uint64_t col, Work* work = nullptr);
    // Replaces bytes of one line, given by their offset in the text, and leaves the cursor
    // behind what replaced them.
    void replace_bytes(std::uint64_t offset, std::uint64_t size, std::string_view text);
    // The same for any bytes and a text of any lines, whatever the modes are. An offset past
    // the end of the text counts as the end.
    void replace_text(std::uint64_t offset, std::uint64_t size, const LineStore& text);

    // buffer_characters.cc: what keys do where a character may have several bytes.
    // A cursor inside a character counts as standing before it.
    bool leave_character(Charset charset);  // puts it there; true when it moved
    void move_character_left(Charset charset);
    void move_character_right(Charset charset);
    void erase_character_left(Charset charset);
    void erase_character_at_cursor(Charset charset);
    void type_character(std::string_view character, Charset charset);  // as copy_text(char)

  private:
    // Lets `replace` do what the numbers of bytes say. Not guarded.
    template <class Replace>
    void change(std::uint64_t from, std::uint64_t to, std::uint64_t inserted, Replace replace) {
        log_.make_room();  // or a change might be made that nobody learns of
        replace();
        log_.add(from, to - from, inserted);
        modified = true;
    }
    // Makes this the text, which differs in the rows [first, last) alone. Not guarded.
    void replace_rows(std::uint64_t first, std::uint64_t last, LineStore text);
    std::vector<std::string> box_of(std::uint64_t row1, std::uint64_t row2, std::uint64_t col1,
                                    std::uint64_t col2, Work* work) const;
    bool travel(std::vector<Snapshot>& from, std::vector<Snapshot>& to);

    LineStore text_;
    ChangeLog log_;
};

}  // namespace tpu
