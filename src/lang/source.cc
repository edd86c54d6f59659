#include "lang/source.h"

#include "text/ascii.h"

namespace tpu::source {

namespace {

constexpr std::size_t kNone = std::string_view::npos;

}  // namespace

std::string_view leading_word(std::string_view text) {
    std::size_t size = 0;
    auto in_word = [](char c) {
        return ascii::is_letter(c) || ascii::is_digit(c) || c == '_' || c == '$';
    };
    while (size < text.size() && in_word(text[size])) ++size;
    return text.substr(0, size);
}

std::string strip_comments(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    bool in_string = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '!' && !in_string) {
            i = text.find('\n', i);
            if (i == kNone) break;
        }
        if (text[i] == '"') in_string = !in_string;
        result += text[i];
    }
    return result;
}

std::string join_continuations(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    bool in_string = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '"') in_string = !in_string;
        if (text[i] == '-' && !in_string) {
            std::size_t next = text.find_first_not_of(" \t", i + 1);
            if (next != kNone && text[next] == '\n') {
                i = next;
                continue;
            }
        }
        result += text[i];
    }
    return result;
}

std::vector<std::string> split_statements(std::string_view text, std::vector<int>& lines) {
    const std::string joined = join_continuations(strip_comments(text));
    const std::string_view all = joined;
    std::vector<std::string> statements;
    int line = 1, start_line = 1;
    std::size_t start = 0;
    bool in_string = false;
    auto end_statement = [&](std::size_t end) {
        std::string_view statement = ascii::trim(all.substr(start, end - start));
        if (!statement.empty()) {
            statements.emplace_back(statement);
            lines.push_back(start_line);
        }
        start = end + 1;
    };
    for (std::size_t i = 0; i < all.size(); ++i) {
        char c = all[i];
        if (c == '"') in_string = !in_string;
        if (in_string || (c != ';' && c != '\n')) continue;
        if (c == '\n') ++line;
        end_statement(i);
        start_line = line;
    }
    if (start < all.size()) end_statement(all.size());
    return statements;
}

std::vector<std::string> split_statements(std::string_view text) {
    std::vector<int> lines;
    return split_statements(text, lines);
}

std::size_t find_assignment(std::string_view statement) {
    bool in_string = false;
    int depth = 0;
    for (std::size_t i = 0; i + 1 < statement.size(); ++i) {
        char c = statement[i];
        if (c == '"') in_string = !in_string;
        if (in_string) continue;
        if (c == '(') ++depth;
        if (c == ')') --depth;
        if (depth == 0 && c == ':' && statement[i + 1] == '=') return i;
    }
    return kNone;
}

}  // namespace tpu::source
