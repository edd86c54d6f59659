#include "app/source_file.h"

#include <cstdio>

#include "editor/glyphs.h"
#include "lang/parser.h"

namespace tpu {

void print_diagnostics(const MiniTPUParser& parser, std::size_t already, const std::string& file) {
    for (std::size_t i = already; i < parser.diagnostics.size(); ++i) {
        const Diagnostic& fault = parser.diagnostics[i];
        std::string line = file + ":" + std::to_string(fault.line) + ": " + fault.text;
        if (fault.times > 1) line += " (" + std::to_string(fault.times) + " times)";
        std::fprintf(stderr, "%s\n", printable(line, Charset::utf8).c_str());
    }
    if (parser.diagnostics_left_out > 0) {
        std::fprintf(stderr, "%s: %lld more\n", file.c_str(), parser.diagnostics_left_out);
    }
}

}  // namespace tpu
