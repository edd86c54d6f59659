// How the interpreter reads source text; the work is done in parts of its own.
#include "lang/block_parser.h"
#include "lang/parser.h"
#include "lang/source.h"
#include "pattern/pattern_text.h"
#include "text/ascii.h"

namespace tpu {

std::string MiniTPUParser::trim(const std::string& text) {
    return std::string(ascii::trim(text));
}

std::string MiniTPUParser::upper(const std::string& text) {
    return ascii::upper(text);
}

std::string MiniTPUParser::strip_quotes(const std::string& text) {
    return source::strip_quotes(text);
}

std::string MiniTPUParser::first_call_argument(const std::string& text) {
    return source::first_call_argument(text);
}

std::string MiniTPUParser::strip_comments(const std::string& text) {
    return source::strip_comments(text);
}

std::string MiniTPUParser::join_continuations(const std::string& text) {
    return source::join_continuations(text);
}

std::vector<std::string> MiniTPUParser::split_statements(const std::string& text,
                                                         std::vector<int>& lines) {
    return source::split_statements(text, lines);
}

std::vector<std::string> MiniTPUParser::split_statements(const std::string& text) {
    return source::split_statements(text);
}

std::vector<Stmt> MiniTPUParser::parse_block(const std::vector<std::string>& statements,
                                             const std::vector<int>& lines, std::size_t& index,
                                             const std::vector<std::string_view>& terminators) {
    return tpu::parse_block(statements, lines, index, terminators);
}

std::vector<std::string> MiniTPUParser::split_pattern_terms(const std::string& text) {
    return tpu::split_pattern_terms(text);
}

TPUPattern MiniTPUParser::parse_pattern_expression(const std::string& text) {
    return tpu::parse_pattern_expression(text);
}

}  // namespace tpu
