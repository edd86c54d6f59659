// Key codes: the byte of a character, the numbers that curses gives special
// keys, either of them plus kGoldOffset after a prefix key, or kNoKey.
#pragma once

namespace tpu {

inline constexpr int kNoKey = -1;
inline constexpr int kGoldOffset = 10000;

inline constexpr int kKeyDown = 258;
inline constexpr int kKeyUp = 259;
inline constexpr int kKeyLeft = 260;
inline constexpr int kKeyRight = 261;
inline constexpr int kKeyHome = 262;
inline constexpr int kKeyBackspace = 263;
inline constexpr int kKeyF0 = 264;  // F1 is kKeyF0 + 1
inline constexpr int kKeyDelete = 330;
inline constexpr int kKeyInsert = 331;
inline constexpr int kKeyNextPage = 338;
inline constexpr int kKeyPreviousPage = 339;
inline constexpr int kKeyEnter = 343;
inline constexpr int kKeyEnd = 360;
inline constexpr int kKeyMouse = 409;
inline constexpr int kKeyResize = 410;

constexpr int control(char letter) {
    return letter & 0x1f;
}

}  // namespace tpu
