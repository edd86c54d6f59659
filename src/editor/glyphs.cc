#include "editor/glyphs.h"

#include <cwchar>
#include <cwctype>

namespace tpu {

namespace {

constexpr char32_t kReplacement = 0xfffd;
constexpr char32_t kControlPictures = 0x2400;
constexpr char32_t kDeletePicture = 0x2421;

// Characters that have no shape but change how their neighbours are shown.
bool steers_the_terminal(char32_t code) {
    return (code >= 0x200b && code <= 0x200f) || (code >= 0x2028 && code <= 0x202e) ||
           (code >= 0x2060 && code <= 0x206f) || code == 0xfeff || code == 0x61c ||
           (code >= 0xfff9 && code <= 0xfffb) || (code >= 0xe0000 && code <= 0xe007f);
}

char32_t ascii_glyph(unsigned char byte, Charset charset) {
    if (byte == '\t') return U' ';
    if (byte >= 0x20 && byte < 0x7f) return byte;
    if (charset == Charset::bytes) return U'?';
    return byte == 0x7f ? kDeletePicture : kControlPictures + byte;
}

Glyph byte_glyph(unsigned char byte) {
    std::wint_t wide = std::btowc(byte);
    bool shown = wide != WEOF && std::iswprint(wide) && wcwidth(static_cast<wchar_t>(wide)) == 1;
    return {shown ? static_cast<char32_t>(wide) : U'?', 1, 1};
}

}  // namespace

Glyph glyph_at(std::string_view bytes, Charset charset) {
    auto first = static_cast<unsigned char>(bytes[0]);
    if (first < 0x80) return {ascii_glyph(first, charset), 1, 1};
    if (charset == Charset::bytes) return byte_glyph(first);
    Decoded decoded = decode_utf8(bytes);
    if (decoded.size == 0) return {kReplacement, 1, 1};
    int size = static_cast<int>(decoded.size);
    int width = wcwidth(static_cast<wchar_t>(decoded.code));
    if (width < 0 || steers_the_terminal(decoded.code)) return {kReplacement, size, 1};
    return {decoded.code, size, width == 2 ? 2 : 1};
}

std::string printable(std::string_view text, Charset charset) {
    std::string result;
    while (!text.empty()) {
        Glyph glyph = glyph_at(text, charset);
        auto size = static_cast<std::size_t>(glyph.bytes);
        bool as_it_is = charset == Charset::bytes && glyph.code >= 0x80;
        result += as_it_is ? std::string(text.substr(0, size)) : encode_utf8(glyph.code);
        text.remove_prefix(size);
    }
    return result;
}

}  // namespace tpu
