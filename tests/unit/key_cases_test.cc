// Runs the cases in tests/keys, whose form CONTRIBUTING.md explains.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <span>

#include "keys/key_code.h"
#include "support/session.h"
#include "text/charset.h"
#include "unit/store/temp_folder.h"

namespace tpu {
namespace {

using Lines = std::vector<std::string>;
namespace fs = std::filesystem;

Lines lines_of(const fs::path& file) {
    std::ifstream in(file);
    Lines lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

std::string decode(std::string_view text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            bytes += text[i];
            continue;
        }
        switch (char c = text[++i]) {
            case 'n': bytes += '\n'; break;
            case 't': bytes += '\t'; break;
            case 's': bytes += ' '; break;  // at the end of a line
            case 'x':
                bytes += static_cast<char>(std::stoi(std::string(text.substr(i + 1, 2)), {}, 16));
                i += 2;
                break;
            default: bytes += c;
        }
    }
    return bytes;
}

std::string encode(std::string_view bytes) {
    std::string text;
    for (std::size_t i = 0; i < bytes.size();) {
        const auto c = static_cast<unsigned char>(bytes[i]);
        const Decoded character = decode_utf8(bytes.substr(i));
        char hexadecimal[5];
        std::snprintf(hexadecimal, sizeof hexadecimal, "\\x%02x", c);
        if (c == '\n' || c == '\\') {
            text += c == '\n' ? "\\n" : "\\\\";
        } else if (c < 32 || c == 127 || (c > 127 && character.size < 2)) {
            text += hexadecimal;
        } else {
            text += bytes.substr(i, character.size);
            i += character.size - 1;
        }
        ++i;
    }
    if (text.ends_with(' ')) text.replace(text.size() - 1, 1, "\\s");
    return text;
}

// A step with what shall come of it: "->" a text, "=>" a message or value, "@" the cursor.
struct Step {
    std::string verb, operand, outcome;
    std::vector<std::pair<std::string, std::string>> expected;
};

Lines split(std::string_view text, std::string_view separator) {
    Lines parts;
    for (std::size_t end; (end = text.find(separator)) != std::string_view::npos;) {
        parts.emplace_back(text.substr(0, end));
        text.remove_prefix(end + separator.size());
    }
    parts.emplace_back(text);
    return parts;
}

std::size_t next_sign(const std::string& line, std::size_t from) {
    std::size_t next = line.size();
    for (const char* sign : {"  -> ", "  => ", "  @ "}) {
        next = std::min(next, line.find(sign, from));
    }
    return next;
}

Step parse(std::string text) {
    text += ' ';
    std::size_t end = std::min(next_sign(text, 0), text.size() - 1);
    const std::size_t blank = std::min(text.find(' '), end);
    Step step{
        text.substr(0, blank), text.substr(std::min(blank + 1, end), end - blank - 1), "", {}};
    if (blank == end) step.operand.clear();
    step.outcome = text.substr(end, text.size() - end - 1);
    while (end < text.size() - 1) {
        const std::size_t sign = end + 2, value = text.find(' ', sign) + 1;
        end = std::min(next_sign(text, value - 1), text.size() - 1);
        step.expected.emplace_back(text.substr(sign, value - 1 - sign),
                                   end < value ? "" : text.substr(value, end - value));
    }
    return step;
}

// Three dots in what is expected stand for anything.
bool agrees(std::string_view actual, const std::string& expected) {
    const Lines parts = split(expected, "...");
    if (!actual.starts_with(decode(parts[0]))) return false;
    actual.remove_prefix(decode(parts[0]).size());
    for (std::size_t i = 1; i < parts.size(); ++i) {
        const std::string part = decode(parts[i]);
        const bool last = i + 1 == parts.size();
        const std::size_t found = last ? actual.rfind(part) : actual.find(part);
        if (found == std::string_view::npos) return false;
        actual.remove_prefix(found + part.size());
    }
    return actual.empty();
}

std::string letters_of(Attr attr) {
    std::string letters;
    const std::pair<Attr, char> all[] = {{Attr::reverse, 'r'}, {Attr::bold, 'b'},
                                         {Attr::dim, 'd'},     {Attr::underline, 'u'},
                                         {Attr::blink, 'k'},   {Attr::standout, 's'}};
    for (auto [bit, letter] : all) {
        if (has(attr, bit)) letters += letter;
    }
    return letters;
}

// The cases of a file, which blank lines part.
class CaseFile {
  public:
    explicit CaseFile(const fs::path& file) : file_(file), lines_(lines_of(file)) {}

    void run() {
        const std::ptrdiff_t count = std::ssize(lines_);
        for (first_ = 0; first_ < count; first_ = end_ + 1) {
            for (end_ = first_; end_ < count && !line_at(end_).empty();) ++end_;
            run_case();
        }
        if (!changed_) return;
        std::ofstream out(file_);
        for (const std::string& line : lines_) out << line << '\n';
    }

  private:
    static std::size_t at(std::ptrdiff_t line) { return static_cast<std::size_t>(line); }
    std::string& line_at(std::ptrdiff_t line) { return lines_[at(line)]; }
    Session& session() {
        if (!session_) session_ = std::make_unique<Session>(Lines{}, size_.rows, size_.cols);
        return *session_;
    }
    TPUEditor& editor() { return session().editor; }
    Buffer& buffer() { return *editor().current_buffer; }

    void run_case() {
        const fs::path before = fs::current_path();
        size_ = {24, 80};
        each_ = PTRDIFF_MAX;
        for (std::ptrdiff_t line = first_; line < end_;) {
            if (line_at(line) == "each") each_ = line++;
            run_line(line);
        }
        session_.reset();
        fs::current_path(before);
        folder_.reset();
    }

    // Runs the steps of a line, and moves on to the next.
    void run_line(std::ptrdiff_t& line) {
        if (line_at(line).starts_with('#')) return void(++line);
        if (line_at(line) == "[screen]") return check_screen(++line);
        std::string found;
        for (const std::string& step : split(line_at(line), "  ; ")) {
            if (line > each_) begin_again();
            found += (found.empty() ? "" : "  ; ") + run_step(step);
        }
        if (found != line_at(line)) differ(line, found);
        ++line;
    }

    void begin_again() {
        session_.reset();
        for (std::ptrdiff_t line = first_; line < each_;) run_line(line);
    }

    // Gives the step back with what came of it.
    std::string run_step(const std::string& text) {
        const Step step = parse(text);
        std::string found;
        for (const std::string& operand : split(step.operand, " || ")) {
            act(step.verb, decode(operand));
            found.clear();
            for (const auto& [sign, expected] : step.expected) {
                const std::string actual = result(step.verb, decode(operand), sign, expected);
                const std::string shown = agrees(actual, expected) ? expected : encode(actual);
                found += "  " + sign + (shown.empty() ? "" : " ") + shown;
            }
            if (found != step.outcome) return step.verb + ' ' + operand + found;
        }
        return text;
    }

    void differ(std::ptrdiff_t line, const std::string& found) {
        if (std::getenv("TPU_UPDATE_CASES")) {
            line_at(line) = found;
            changed_ = true;
        } else {
            ADD_FAILURE_AT(file_.c_str(), static_cast<int>(line + 1))
                << "expected: " << line_at(line) << "\n     got: " << found;
        }
    }

    struct Verb {
        std::string_view name;
        void (*act)(CaseFile&, const std::string& operand);
    };
    static std::span<const Verb> verbs() {
        using Text = const std::string&;
        // clang-format off
        static constexpr Verb kVerbs[] = {
            {"size", [](CaseFile& c, Text size) { c.session_.reset(), c.size_ = size_of(size); }},
            {"text", [](CaseFile& c, Text text) { c.set_text(text); }},
            {"go", [](CaseFile& c, Text place) { c.go(place); }},
            {"select", [](CaseFile& c, Text from_to) { c.select(from_to); }},
            {"keys", [](CaseFile& c, Text keys) { c.session().press(keys); }},
            {"*", [](CaseFile& c, Text line) { c.editor().execute_command(line); }},
            {"run", [](CaseFile& c, Text program) { c.editor().parser.compile_text(program); }},
            {"paste", [](CaseFile& c, Text text) { c.editor().insert_paste(text); }},
            {"resize", [](CaseFile& c, Text size) { c.resize(size_of(size)); }},
            {"click", [](CaseFile& c, Text place) { c.report_mouse(place, true); }},
            {"mouse", [](CaseFile& c, Text place) { c.report_mouse(place, false); }},
            {"row", [](CaseFile& c, Text) { c.session().screen(); }},
            {"shown", [](CaseFile&, Text) {}},
            {"sh", [](CaseFile& c, Text command) { c.output_ = c.output_of(command); }},
            {"value", [](CaseFile&, Text) {}},
        };
        // clang-format on
        return kVerbs;
    }

    void act(const std::string& verb, const std::string& operand) {
        if (verb != "value") editor().message.clear();
        auto found = std::find_if(verbs().begin(), verbs().end(),
                                  [&](const Verb& row) { return row.name == verb; });
        ASSERT_NE(found, verbs().end()) << file_ << ": no such step: " << verb;
        found->act(*this, operand);
    }

    static std::pair<int, int> two_numbers(const std::string& text) {
        const std::size_t between = text.find_first_of("x:");
        return {std::stoi(text), std::stoi(text.substr(between + 1))};
    }
    static ScreenSize size_of(const std::string& text) {
        auto [rows, cols] = two_numbers(text);
        return {rows, cols};
    }
    void resize(ScreenSize size) {
        session().terminal.screen = size;
        editor().resize_screen();
    }
    void report_mouse(const std::string& place, bool clicked) {
        auto [row, col] = two_numbers(place);
        editor().handle_event({Event::Kind::mouse, kKeyMouse, {}, {row, col, clicked}});
    }
    // A line and a column, counting from 1 as the status line does.
    void go(const std::string& place) {
        auto [row, column] = two_numbers(place);
        buffer().cursor_row = static_cast<std::uint64_t>(row - 1);
        buffer().cursor_column = static_cast<std::uint64_t>(column - 1);
    }

    void select(const std::string& from_to) {
        go(from_to);
        buffer().select();
        go(from_to.substr(from_to.find(' ')));
    }

    // Runs a command of the shell in a folder of the case's own.
    std::string output_of(const std::string& command) {
        if (!folder_) {
            folder_ = std::make_unique<TempFolder>();
            fs::current_path(folder_->path(""));
        }
        FILE* pipe = popen(command.c_str(), "r");
        std::string output;
        for (int c; (c = std::fgetc(pipe)) != EOF;) output += static_cast<char>(c);
        EXPECT_EQ(pclose(pipe), 0) << command;
        return output;
    }

    // The cursor stands where the text has a "^".
    void set_text(std::string text) {
        const std::size_t cursor = text.find('^');
        if (cursor != std::string::npos) text.erase(cursor, 1);
        buffer().set_text(LineStore::from_text(text));
        Position place = buffer().text().position(cursor == std::string::npos ? 0 : cursor);
        buffer().cursor_row = place.row;
        buffer().cursor_column = place.column;
    }

    std::string result(const std::string& verb, const std::string& operand, const std::string& sign,
                       const std::string& expected) {
        if (sign == "=>") {
            if (verb != "value") return editor().message;
            return value_of(editor(), operand).as_string();
        }
        if (!editor().current_buffer) return "no buffer";
        if (sign == "@") {
            return std::to_string(buffer().cursor_row + 1) + ':' +
                   std::to_string(buffer().cursor_column + 1);
        }
        const bool cursor = expected.find('^') != std::string::npos;
        if (verb == "sh") return output_;
        if (verb == "row" || verb == "shown") {
            const bool attributes = expected.find('{') != std::string::npos;
            return row_shown(std::stoi(operand), cursor, attributes, false);
        }
        std::string text = buffer().text().text();
        if (!cursor) return text;
        return text.insert(std::min(text.size(), buffer().current_offset_in_line()), "^");
    }

    // A row as a person sees it. Cells with attributes stand in braces after their letters.
    std::string row_shown(int row, bool cursor, bool attributes, bool whole) {
        const Frame& frame = session().terminal.shown;
        const Surface visible = frame.visible();
        std::string text, before;
        for (int col = 0; col <= visible.cols(); ++col) {
            const Cell cell = col < visible.cols() ? visible.at(row, col) : Cell{};
            const std::string letters = letters_of(cell.attr);
            if (attributes && letters != before) {
                text += before.empty() ? "" : "}";
                text += letters.empty() ? "" : "{" + letters + ":";
                before = letters;
            }
            if (cursor && frame.cursor == ScreenPlace{row, col}) text += '^';
            if (col < visible.cols() && cell.glyph != 0) text += encode_utf8(cell.glyph);
        }
        if (!whole) text.erase(text.find_last_not_of(' ') + 1);
        return text;
    }

    // The rows of the screen follow, each with a bar at its end.
    void check_screen(std::ptrdiff_t& line) {
        session().screen();
        std::ptrdiff_t last = line;
        bool cursor = false, attributes = false;
        for (; last < end_ && line_at(last).ends_with('|'); ++last) {
            cursor = cursor || line_at(last).find('^') != std::string::npos;
            attributes = attributes || line_at(last).find('{') != std::string::npos;
        }
        EXPECT_EQ(last - line, session().terminal.screen.rows) << file_ << ": rows of the screen";
        for (int row = 0; line < last; ++line, ++row) {
            const std::string found = row_shown(row, cursor, attributes, true) + '|';
            if (found != line_at(line)) differ(line, found);
        }
    }

    fs::path file_;
    Lines lines_;
    std::ptrdiff_t first_ = 0, end_ = 0;  // the lines of the case that runs
    std::ptrdiff_t each_ = PTRDIFF_MAX;   // where each step that follows begins it again
    bool changed_ = false;
    ScreenSize size_;
    std::string output_;
    std::unique_ptr<TempFolder> folder_;
    std::unique_ptr<Session> session_;
};

std::vector<fs::path> case_files() {
    return {fs::directory_iterator(TPU_CASES), fs::directory_iterator()};
}

class KeyCases : public testing::TestWithParam<fs::path> {};

TEST_P(KeyCases, lead_to_what_they_say) {
    CaseFile(GetParam()).run();
}

INSTANTIATE_TEST_SUITE_P(Keys, KeyCases, testing::ValuesIn(case_files()),
                         [](const auto& file) { return file.param.stem().string(); });

}  // namespace
}  // namespace tpu
