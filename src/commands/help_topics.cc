// What HELP says on each topic, before the lists that commands/help.cc makes. Lines have at
// most 78 columns.
#include "commands/help.h"

namespace tpu::prose {

const std::string_view kKeys = R"help(KEYS

The arrows, Home, End, Page Up and Page Down move. What is typed is inserted,
or replaces what stands there in overstrike mode; the Insert key changes that.

Ctrl-F or F3 finds text while it is typed: Ctrl-F again goes to the next
place, Return ends the search, Escape goes back. Ctrl-V starts a selection,
Ctrl-W cuts it, Ctrl-Y pastes. F4 deletes the selection, or else a character.
Ctrl-S saves, Ctrl-Z asks for a command, Ctrl-C stops a program that runs.
Ctrl-X ends the editor and asks no question: what is not saved is lost.

F1 (PF1) is the GOLD key: a key pressed after it has a meaning of its own.
The letters after GOLD are capitals, so GOLD and Shift-U is one step back.

The list has the keys as the editor starts, and what they do. CTRL_M is
Return, CTRL_I is Tab, CTRL_J a line feed, and 127 the code of a key that some
keyboards have for Backspace. SHOW KEYS lists what is bound just now, and HELP
KEYMAPS tells how to bind keys.
)help";

const std::string_view kCommands = R"help(COMMANDS

Ctrl-Z asks for a command. Upper and lower case are the same; blanks stand
between the words. The first word may be shortened when only one command
begins so: EXI is EXIT, but SEL may be SELECT or SELECT_RANGE and is neither.
All words but the first are typed in full, and so are BOX, CASE, CHANGE,
CHECK, DCL, FETCH, FILL, GO, MARK, RECALL, REMOVE, REMOVE_KEY, RESTORE, SHIFT,
SPAWN, STORE, UNDEFINE and WHAT.

  GET notes.txt             Edit one more file.
  FIND needle               Go to the next place of a text.
  REPLACE grey gray ALL     Replace a text wherever it stands.
  GO TO 120                 Go to line 120.

A line that is none of the commands below is run as a statement of the
language, so procedures and built-ins are commands as well. A line whose
second word is := is always an assignment.

  MOVE_VERTICAL(100)        Go down by 100 lines.
  x := 5                    Assign a value to a variable.

Left, Right, Home and End move in the line, Ctrl-U empties it, Up and Down
bring back earlier lines. Tab completes the names of commands, files, buffers
and topics; pressed again it goes through all that fit. Ctrl-G gives up.

A procedure of yours goes before a command of the same name, but not before
those that HELP EVE lists. The name of a file or buffer that has blanks in it
stands in double quotes, and ~/ is your home directory. What may be left
out stands in square brackets.
)help";

const std::string_view kMovement = R"help(MOVEMENT

Arrows move by a character or a line, Home and End to the ends of the line,
Page Up and Page Down by a screenful. GOLD T and the command TOP go to the
beginning of the buffer, GOLD E and BOTTOM to its end. GO TO 120 goes to line
120, or to the last one when there are fewer, GO TO COLUMN 5 to a column of
the line, and WHAT LINE tells where the cursor is. SET LINE NUMBER ON shows
the numbers of the lines.

With the mouse switched on, SET(MOUSE, ON), a click moves the cursor.
FREE_CURSOR lets it stand past the end of a line: SET(FREE_CURSOR, ON).

Lines and columns are counted from 1, and columns in bytes. Programs move with
these built-ins:
)help";

const std::string_view kEditing = R"help(EDITING

Typing inserts, or overstrikes: the commands INSERT and OVERSTRIKE, or the
Insert key. Return splits the line, Backspace and Delete erase a character,
ERASE_LINE the line. GOLD U or UNDO undoes the last step, GOLD R or REDO does
it again. A key is one step, and so is a command or a procedure. Each buffer
keeps 200 steps.

A selection begins at the cursor with Ctrl-V or SELECT and reaches to where
the cursor goes. Ctrl-W or CUT cuts it, COPY copies it, F4 or DELETE deletes
it. Ctrl-Y or PASTE inserts what was cut or copied last in this buffer, and
PASTE PREVIOUS goes back from text to text through the last 32. Texts can be
kept under names, which SHOW PASTES lists:

  COPY TO address           Copy the selection, and keep it.
  STORE address             Keep the selection, or what was cut last.
  PASTE FROM address        Insert it, in any buffer.

CASE UPPER, CASE LOWER and CASE alone, which inverts, change the selection, or
the word at the cursor. SHIFT RIGHT 4 and SHIFT LEFT 4 move the selected lines
or the cursor line, and FILL fills the selected lines (HELP WRAP).

REPLACE old new replaces the next place of a text, behind the cursor and then
from the top. It asks for what is not given. A number or ALL goes on:

  REPLACE grey gray         the next place
  REPLACE grey gray 3       the next three
  REPLACE "a b" "" ALL      all of them; a text with blanks has quotes

A rectangle has its corners at BOX SELECT and at the cursor; the column of the
cursor is just outside. BOX CUT takes it out, BOX COPY copies it, and BOX
PASTE inserts it with its upper left corner at the cursor, in the same buffer.
)help";

const std::string_view kSearch = R"help(SEARCH

Ctrl-F, F3, GOLD F or FIND alone search while the text is typed, from the
cursor on and then from the top. Ctrl-F goes on to the next place, Return
stays there, Escape or Ctrl-G goes back. The text can have ASCII characters.

FIND text goes to the next place of any text after the cursor, up to the end
of the buffer. The case of letters counts. Quotes around the text are left
out; they keep blanks at its ends. A text with the name of a pattern in it is
a pattern:

  FIND to be                the text as it stands
  FIND "I"                  a text that stands in the word FIND itself
  FIND LINE_BEGIN & "#"     a pattern; see HELP PATTERNS

The text begins where its first word stands first in the whole line, so one
that is a part of the word FIND needs the quotes. REPLACE is explained in HELP
EDITING.

SEARCH is a built-in too. It takes a text or a pattern and searches in the
direction of the buffer, which SET(FORWARD) and SET(REVERSE) change, or in the
one that is given. As a function it gives the range that was found, and the
cursor stays:

  found := SEARCH("needle");
  IF found THEN POSITION(found); ENDIF;
)help";

const std::string_view kPatterns = R"help(PATTERNS

A pattern is made of the elements below and of texts, joined with + or &. They
are matched one behind the other, from left to right, without going back.
There are no alternatives. A pattern is a value: it can be kept in a variable
and be a part of another one.

  digits := SPAN("0123456789");
  date := digits + "-" + digits + "-" + digits;
  SEARCH(date)
  SEARCH(LINE_BEGIN + "#" + digits)

LINE_BEGIN and LINE_END match the beginning and the end of a line. FIND takes
patterns without a call around them: FIND digits is the text "digits", but
FIND SPAN("0123456789") goes to a number.
)help";

const std::string_view kBuffers = R"help(BUFFERS

A buffer is a text with a name, a cursor, attributes (HELP SET), steps to undo
and a paste register: what was cut or copied last in it. BUFFER name goes to a
buffer and makes it when there is none; NEXT BUFFER and PREVIOUS BUFFER go
round all of them, and SHOW BUFFERS lists them. SHOW DEFAULTS has the
attributes of the current one. The editor's own buffers, such as this one, the
list of messages in $MESSAGE_BUFFER and what SHOW makes, take part in this;
they cannot be written.

GET file edits a file in a buffer of its own; when a buffer holds it already,
that one becomes current. INCLUDE file inserts a file at the cursor.

  GET ~/notes.txt
  GET "a name with blanks"

Ctrl-S or WRITE saves a buffer to its file, WRITE name to another one, which
is the buffer's file from then on. The previous file is kept with .bak behind
its name, unless SET(BACKUP, OFF) says otherwise. A save that fails leaves the
file as it was. One that is cut short when the editor is killed leaves the old
text in whole; where it is not in the file itself, opening the file tells the
name of its copy, which stays until you remove it. A file that is yours, but
that you may not write, is written when you save twice in a row. The last line
of a file gets no line end. Nothing is saved by itself, and nothing is asked
when the editor ends.

A file that is there but could not be read is never written over; WRITE name
saves what was typed elsewhere. When somebody else has written the file since
it was read, the first attempt to save says so, and the same attempt once more
writes over it; their text is kept with .bak then. CHECK_DISK tells whether
the file has changed, and RELOAD reads it again when the buffer has no changes
of its own. Opening a file that another session has open says so.

When the editor or the machine has died, opening the file again tells of the
unsaved work, and RECOVER_BUFFER brings it back; work in buffers without a
file is told of when the editor starts without one. If the file has changed
since, the work comes in a buffer of its own. It is kept within a second in
~/.local/state/tpu/recovery until the file is saved or the editor is left. A
message and SHOW SYSTEM tell when it cannot be kept, and why.

JOURNAL_OPEN("file") records all that is done to the buffer from then on, for
RECOVER_BUFFER("file") to do again on the text that there was. SAVE("file")
keeps the procedures, names and keys of the session in a section file, which
RESTORE("file") or the option --section=file brings back. A file that is
something else is not replaced.
)help";

const std::string_view kWindows = R"help(WINDOWS

Ctrl-O splits the current window into an upper and a lower one, Ctrl-N goes to
the next window; SPLIT_WINDOW_VERTICAL puts two side by side. A window shows
one buffer and keeps its own place in it. DELETE_WINDOW removes the current
window.

A status line tells the buffer's name, whether it was modified, the mode, the
line, the number of lines and the column. SET(STATUS_LINE, window, ON, text)
gives it another text, in which these stand for what they name:

  %n  buffer    %f  file      %m  Modified or Saved      %d  direction
  %l  line      %t  lines     %i  INSERT or OVERSTRIKE   %c  column
  %%  a percent sign
)help";

const std::string_view kKeymaps = R"help(KEYMAPS

A key map binds keys to what they do. A list of key maps is searched from its
front, and the first map that binds a key decides. At first there is one map,
TPU$KEY_MAP, in the list TPU$KEY_MAP_LIST. A buffer may use another list:
SET(KEY_MAP_LIST, "NAME"). SHOW KEYS, SHOW KEYMAPS and SHOW KEY_MAP_LISTS show
what there is, and SHOW KEY name what one key does.

On the command line the key comes first and the text is the rest of the line:

  DEFINE_KEY F8 MOVE_VERTICAL(10)
  DEFINE_KEY GOLD_S WRITE FILE
  UNDEFINE_KEY F8

The text begins where its first word stands first in the whole line. As a
built-in, in the start-up file too, DEFINE_KEY takes the text first:

  DEFINE_KEY("quote_lines(1)", "F8")
  DEFINE_KEY("WRITE FILE", "GOLD_S", "GOLD-S write")
  DEFINE_KEY("BOTTOM", KEY_NAME("CTRL_B"))

SET GOLD KEY F6 makes another key the GOLD key.

The text is a statement or a command; a command that is also the name of a
built-in, such as SHOW, is written like a call: SHOW(BUFFERS). Keys are named
LEFT, RIGHT, UP, DOWN, HOME, END, INSERT, DELETE, BACKSPACE, NEXT_SCREEN or
PAGEDOWN, PREVIOUS_SCREEN or PAGEUP, PF1 (or GOLD) to PF4, F6 to F12, CTRL_Z,
CTRL_X, CTRL_S, CTRL_F, CTRL_V, CTRL_W and CTRL_Y. A single letter stands for
its capital, and GOLD_ before a name for the key after GOLD. KEY_NAME knows
all of CTRL_A to CTRL_Z and F1 to F12, and takes characters as they are.

A learn sequence holds the statements that ran between LEARN_BEGIN and
LEARN_END; it can be bound to a key as well, or run with EXECUTE.
)help";

const std::string_view kSet = R"help(SET

SET(keyword, value, ...) changes an attribute of the current buffer, of a
window or of the session. SET(keyword, buffer, value, ...) is for another
buffer, where the list says so. The keyword is a plain word. A switch is ON or
OFF, TRUE or FALSE, 1 or 0, and on without a value.

  SET(RIGHT_MARGIN, 72)
  SET(TAB_STOPS, 4)
  SET(VIDEO, BOLD, UNDERLINE)

GET_INFO(object, item) reads an attribute of a buffer, window, marker, range
or array, for example GET_INFO(CURRENT_BUFFER, "LINES").
)help";

const std::string_view kBuiltins = R"help(BUILTINS

These are the built-in procedures of the language, in alphabetical order. What
may be left out stands in square brackets. Those that give a value stand in
expressions, the others are statements, and many are both.
)help";

const std::string_view kTypes = R"help(TYPES

  integer     64 bits, wraps around; 31, %X1F, %O37 and %B11111 are the same
  string      a text in double quotes, of any bytes but a double quote
  keyword     a plain name that nothing was assigned to
  pattern     what SEARCH looks for; see HELP PATTERNS
  range       the text between two markers; CREATE_RANGE gives one
  marker      a place in a buffer; MARK gives that of the cursor
  buffer      CURRENT_BUFFER, GET_BUFFER and CREATE_BUFFER give one
  window      CURRENT_WINDOW and CREATE_WINDOW give one
  array       elements under integers and texts: a{"key"} := 5
  program     what COMPILE gives and EXECUTE runs
  learn       a sequence of statements that LEARN_END gives
  process     a command of the shell that CREATE_PROCESS has started
  none        nothing

UNSPECIFIED is what functions give that have nothing to give. True are all
integers but 0, texts but the empty one, and objects that are there. TRUE and
ON are 1, FALSE and OFF are 0.

Assigning an array shares it. Assigning UNSPECIFIED to an element removes it.
SHOW VARIABLES lists the global variables with their types.
)help";

const std::string_view kLanguage = R"help(LANGUAGE

A line end or a semicolon ends a statement, - at the end of a line continues
it, and ! begins a comment. Case does not count in names.

  x := 5                     assignment; a{"key"} := 5 stores an element
  MESSAGE("done")            call of a built-in or a procedure
  IF x > 3 THEN y := 1; ELSE y := 2; ENDIF

  PROCEDURE sum(n)
    LOCAL i := 0, total := 0;
    LOOP
      EXITIF i = n;
      i := i + 1;
      total := total + i;
    ENDLOOP;
    RETURN total;
  ENDPROCEDURE;

  PROCEDURE careful
    ON_ERROR
      MESSAGE("given up");   ! what to do after an ABORT in this procedure
    ENDON_ERROR;
    IF sum(4) <> 10 THEN ABORT; ENDIF;
  ENDPROCEDURE;

LOOP, ON_ERROR and what ends them are statements of their own: a line end or a
semicolon follows. A missing argument has no value, one too many is ignored. A
name that is not declared LOCAL is the caller's, or else global. A loop ends
by itself after 100,000 passes, with an error, see SET(LOOP_LIMIT); calls nest
100,000 deep.

Operators from loose to tight: OR; AND; = <> < <= > >=; + - &; * /; - and NOT
before a value. Comparisons are of texts when one side is a string. + and &
join texts and patterns.

A built-in that fails records an error: see ERROR, ERROR_TEXT and ERROR_LINE.
So does a command that fails with a file; ERROR_TEXT has the reason then, such
as "No space left on device", which also follows the message in
$MESSAGE_BUFFER.

The start-up file is the one that the environment variable TPU_STARTUP names,
or else .tpurc in the home directory. The option --command=FILE runs one more,
and --test FILE runs a file without a terminal and prints what ASSERT found.
In the editor, COMPILE runs the text of the current buffer.
)help";

const std::string_view kEve = R"help(EVE

Many of these commands are two words or three, to be read like a sentence.
They are typed on the command line (Ctrl-Z) or bound to keys, and go before
procedures of the same name. HELP COMMANDS tells which can be shortened.

  NEXT BUFFER
  PASTE FROM address
  SET TAB STOPS 5 10 20
  SHIFT RIGHT 4
)help";

const std::string_view kEvents = R"help(EVENTS

Statements can run when something happens:

  SET(TIMER, 1000, "tick")             every 1000 milliseconds; 0 ends it
  SET(PRE_KEY_PROCEDURE, "before")     before each key
  SET(POST_KEY_PROCEDURE, "after")     after each key
  SET(UNDEFINED_KEY, "unknown")        for keys that mean nothing

The timer runs between keys, also while Ctrl-Z or Ctrl-F is typed to. It waits
while a program or a command asks for something.

SET(MOUSE, ON) lets the terminal report the mouse. A click moves the cursor;
LOCATE_MOUSE and GET_INFO(SCREEN, "MOUSE_ROW") tell where it was. SHOW SYSTEM
shows what is set.

A process runs beside the editor, and what it writes goes into a buffer.
ATTACH sends what is typed to it: Ctrl-D ends its input, Ctrl-Z comes back.
SPAWN command runs it on the whole screen instead, and waits for its end.

  p := CREATE_PROCESS("date", CREATE_BUFFER("dates"))
)help";

const std::string_view kWrap = R"help(WRAP

Each buffer has margins: the column where filled and wrapped lines begin, and
the one up to which they reach; 1 and 80 at first. With a right margin of 0
there is none.

  SET RIGHT MARGIN 72        a command; SET MARGINS 5 72 sets both
  SET(WRAP)                  a blank typed past the right margin wraps
  SET(NO_WRAP)               lines stay as they are typed
  SET(LEFT_MARGIN, 5)        one margin
  SET(MARGINS, 5, 72)        both
  FILL                       fills the selected lines between the margins
  SHIFT(4)                   moves all lines of the buffer right by 4 columns

The Tab key inserts blanks up to the next tab stop, every 8 columns at first.

  SET(TAB_STOPS, 4)          every 4 columns
  SET(TAB_STOPS, "5 10 20")  at these columns

SHOW DEFAULTS has the margins and tab stops of the current buffer.
)help";

}  // namespace tpu::prose
