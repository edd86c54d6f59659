#include "app/curses/key_table.h"

#define NCURSES_NOMACROS 1
#include <curses.h>

#include <cstdlib>

#include "keys/key_code.h"

namespace tpu {

static_assert(kKeyDown == KEY_DOWN && kKeyUp == KEY_UP);
static_assert(kKeyLeft == KEY_LEFT && kKeyRight == KEY_RIGHT);
static_assert(kKeyHome == KEY_HOME && kKeyEnd == KEY_END);
static_assert(kKeyBackspace == KEY_BACKSPACE && kKeyEnter == KEY_ENTER);
static_assert(kKeyF0 == KEY_F0 && kKeyF0 + 12 == KEY_F(12));
static_assert(kKeyDelete == KEY_DC && kKeyInsert == KEY_IC);
static_assert(kKeyNextPage == KEY_NPAGE && kKeyPreviousPage == KEY_PPAGE);
static_assert(kKeyMouse == KEY_MOUSE && kKeyResize == KEY_RESIZE);

namespace {

struct CommonKey {
    const char* bytes;
    int code;
};

// clang-format off
constexpr CommonKey kCommonKeys[] = {
    {"\033[A", kKeyUp},    {"\033OA", kKeyUp},
    {"\033[B", kKeyDown},  {"\033OB", kKeyDown},
    {"\033[C", kKeyRight}, {"\033OC", kKeyRight},
    {"\033[D", kKeyLeft},  {"\033OD", kKeyLeft},
    {"\033[H", kKeyHome},  {"\033OH", kKeyHome}, {"\033[1~", kKeyHome}, {"\033[7~", kKeyHome},
    {"\033[F", kKeyEnd},   {"\033OF", kKeyEnd},  {"\033[4~", kKeyEnd},  {"\033[8~", kKeyEnd},
    {"\033[2~", kKeyInsert},
    {"\033[3~", kKeyDelete},
    {"\033[5~", kKeyPreviousPage},
    {"\033[6~", kKeyNextPage},
    {"\033OP", kKeyF0 + 1}, {"\033[11~", kKeyF0 + 1}, {"\033[[A", kKeyF0 + 1},
    {"\033OQ", kKeyF0 + 2}, {"\033[12~", kKeyF0 + 2}, {"\033[[B", kKeyF0 + 2},
    {"\033OR", kKeyF0 + 3}, {"\033[13~", kKeyF0 + 3}, {"\033[[C", kKeyF0 + 3},
    {"\033OS", kKeyF0 + 4}, {"\033[14~", kKeyF0 + 4}, {"\033[[D", kKeyF0 + 4},
    {"\033[15~", kKeyF0 + 5}, {"\033[[E", kKeyF0 + 5},
    {"\033[17~", kKeyF0 + 6},
    {"\033[18~", kKeyF0 + 7},
    {"\033[19~", kKeyF0 + 8},
    {"\033[20~", kKeyF0 + 9},
    {"\033[21~", kKeyF0 + 10},
    {"\033[23~", kKeyF0 + 11},
    {"\033[24~", kKeyF0 + 12},
    // The numeric keypad in application mode.
    {"\033OM", kKeyEnter},
    {"\033OX", '='}, {"\033Oj", '*'}, {"\033Ok", '+'}, {"\033Ol", ','},
    {"\033Om", '-'}, {"\033On", '.'}, {"\033Oo", '/'},
    {"\033Op", '0'}, {"\033Oq", '1'}, {"\033Or", '2'}, {"\033Os", '3'}, {"\033Ot", '4'},
    {"\033Ou", '5'}, {"\033Ov", '6'}, {"\033Ow", '7'}, {"\033Ox", '8'}, {"\033Oy", '9'},
};
// clang-format on

}  // namespace

std::vector<KeySequence> terminal_keys() {
    std::vector<KeySequence> keys;
    for (int code = KEY_MIN; code <= KEY_MAX; ++code) {
        for (int i = 0; char* bytes = keybound(code, i); ++i) {
            if (*bytes) keys.push_back({bytes, code});
            std::free(bytes);
        }
    }
    for (const CommonKey& key : kCommonKeys) keys.push_back({key.bytes, key.code});
    return keys;
}

}  // namespace tpu
