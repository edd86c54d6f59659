#include "lang/source.h"

#include <algorithm>

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
    for (SourceScan scan(text); scan.next();) {
        if (scan.byte() == '!' && !scan.in_string()) {
            scan.continue_at(std::min(text.find('\n', scan.at()), text.size()));
        } else {
            result += scan.byte();
        }
    }
    return result;
}

std::string join_continuations(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (SourceScan scan(text); scan.next();) {
        if (scan.byte() == '-' && !scan.in_string()) {
            std::size_t next = text.find_first_not_of(" \t", scan.at() + 1);
            if (next != kNone && text[next] == '\n') {
                scan.continue_at(next + 1);
                continue;
            }
        }
        result += scan.byte();
    }
    return result;
}

std::vector<std::string> split_statements(std::string_view text, std::vector<int>& lines) {
    const std::string joined = join_continuations(strip_comments(text));
    const std::string_view all = joined;
    std::vector<std::string> statements;
    int line = 1, start_line = 1;
    std::size_t start = 0;
    auto end_statement = [&](std::size_t end) {
        std::string_view statement = ascii::trim(all.substr(start, end - start));
        if (!statement.empty()) {
            statements.emplace_back(statement);
            lines.push_back(start_line);
        }
        start = end + 1;
    };
    for (SourceScan scan(all); scan.next();) {
        const char c = scan.byte();
        if (scan.in_string() || (c != ';' && c != '\n')) continue;
        if (c == '\n') ++line;
        end_statement(scan.at());
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
    int depth = 0;
    for (SourceScan scan(statement); scan.next();) {
        if (scan.in_string()) continue;
        if (scan.byte() == '(') ++depth;
        if (scan.byte() == ')') --depth;
        if (depth == 0 && statement.substr(scan.at()).starts_with(":=")) return scan.at();
    }
    return kNone;
}

}  // namespace tpu::source
