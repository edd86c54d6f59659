#include "keys/key_names.h"

#include "keys/key_code.h"
#include "text/ascii.h"

namespace tpu {

namespace {

struct KeyName {
    std::string_view name;
    int code;
};

// Deliberate gaps: F5, and all Ctrl letters but these seven, have no name.
// clang-format off
constexpr KeyName kKeyNames[] = {
    {"CTRL_Z", control('Z')},
    {"CTRL_X", control('X')},
    {"CTRL_S", control('S')},
    {"CTRL_F", control('F')},
    {"CTRL_V", control('V')},
    {"CTRL_W", control('W')},
    {"CTRL_Y", control('Y')},
    {"LEFT", kKeyLeft},
    {"RIGHT", kKeyRight},
    {"UP", kKeyUp},
    {"DOWN", kKeyDown},
    {"DELETE", kKeyDelete},
    {"BACKSPACE", kKeyBackspace},
    {"INSERT", kKeyInsert},
    {"HOME", kKeyHome},
    {"END", kKeyEnd},
    {"NEXT_SCREEN", kKeyNextPage},
    {"PAGEDOWN", kKeyNextPage},
    {"PREVIOUS_SCREEN", kKeyPreviousPage},
    {"PAGEUP", kKeyPreviousPage},
    {"PF1", kKeyF0 + 1},
    {"GOLD", kKeyF0 + 1},
    {"PF2", kKeyF0 + 2},
    {"PF3", kKeyF0 + 3},
    {"PF4", kKeyF0 + 4},
    {"F6", kKeyF0 + 6},
    {"F7", kKeyF0 + 7},
    {"F8", kKeyF0 + 8},
    {"F9", kKeyF0 + 9},
    {"F10", kKeyF0 + 10},
    {"F11", kKeyF0 + 11},
    {"F12", kKeyF0 + 12},
};
// clang-format on

}  // namespace

int key_code_of(std::string_view name) {
    constexpr std::string_view kGold = "GOLD_";
    std::string upper = ascii::upper(name);
    int offset = 0;
    std::string_view rest = upper;
    while (rest.starts_with(kGold)) {
        rest.remove_prefix(kGold.size());
        offset += kGoldOffset;
    }
    for (const KeyName& key : kKeyNames) {
        if (key.name == rest) return key.code + offset;
    }
    if (rest.size() == 1) return static_cast<unsigned char>(rest[0]) + offset;
    return kNoKey;
}

std::string key_name_of(int code) {
    if (code > kGoldOffset) return "GOLD_" + key_name_of(code - kGoldOffset);
    for (const KeyName& key : kKeyNames) {
        if (key.code == code) return std::string(key.name);
    }
    bool letter = code >= control('A') && code <= control('Z');
    if (letter) return {'C', 'T', 'R', 'L', '_', static_cast<char>(code + 'A' - 1)};
    if (code > ' ' && code <= '~') return {static_cast<char>(code)};
    if (code > kKeyF0 && code <= kKeyF0 + 12)
        return std::string("F").append(std::to_string(code - kKeyF0));
    return std::to_string(code);
}

}  // namespace tpu
