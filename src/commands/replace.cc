#include "commands/replace.h"

#include <charconv>
#include <optional>
#include <string>
#include <vector>

#include "commands/command_words.h"
#include "editor/editor.h"
#include "text/ascii.h"

namespace tpu::commands {

namespace {

struct Wanted {
    std::string old_text, new_text;
    std::uint64_t most = 1;
    bool counts = false;  // the message tells how many there were
};

// The words of a text; those in double quotes may hold blanks.
std::vector<std::string> quoted_words(std::string_view text) {
    std::vector<std::string> words;
    while (!(text = ascii::trim(text)).empty()) {
        std::string_view word;
        if (text.front() == '"') {
            text.remove_prefix(1);
            word = text.substr(0, text.find('"'));
            text.remove_prefix(std::min(text.size(), word.size() + 1));
        } else {
            std::size_t end = 0;
            while (end < text.size() && !ascii::is_space(text[end])) ++end;
            word = text.substr(0, end);
            text.remove_prefix(end);
        }
        words.emplace_back(word);
    }
    return words;
}

// False: it is neither ALL nor a number.
bool read_count(const std::string& word, Wanted& wanted) {
    wanted.counts = true;
    wanted.most = UINT64_MAX;
    if (ascii::upper(word) == "ALL") return true;
    const char* end = word.data() + word.size();
    auto [stop, error] = std::from_chars(word.data(), end, wanted.most);
    return stop == end && error != std::errc::invalid_argument && wanted.most > 0;
}

// What the line says, and for the rest the answers of the user. Nothing when there is
// nothing to be done; the message says why.
std::optional<Wanted> wanted_by(TPUEditor& editor, const CommandLine& line) {
    std::vector<std::string> words = quoted_words(line.rest(1));
    Wanted wanted;
    if (words.size() > 2 && !read_count(words[2], wanted)) {
        editor.set_message("REPLACE [old new [count or ALL]]");
        return std::nullopt;
    }
    for (const char* prompt : {"Old: ", "New: "}) {
        if (words.size() >= 2) break;
        bool is_new = *prompt == 'N';
        if (words.size() > (is_new ? 1U : 0U)) continue;
        std::optional<std::string> answer = editor.ask(prompt);
        if (!answer) {
            editor.set_message("Cancelled");
            return std::nullopt;
        }
        words.push_back(*std::move(answer));
    }
    wanted.old_text = words[0];
    wanted.new_text = words[1];
    return wanted;
}

// One replacing that is under way.
class Replacing {
  public:
    Replacing(TPUEditor& editor, const Wanted& wanted)
        : editor_(editor), wanted_(wanted), work_(editor.parser.interruptible()) {}

    // Replaces the matches in the offsets [from, to), which move with the text, and leaves
    // the cursor behind the last of them.
    void between(std::uint64_t from, std::uint64_t to) {
        Buffer& buffer = *editor_.current_buffer;
        const std::uint64_t longer =
            wanted_.new_text.size() - std::min(wanted_.old_text.size(), wanted_.new_text.size());
        while (done_ < wanted_.most && work_.end == Work::End::done) {
            std::optional<std::uint64_t> found = buffer.text().find(wanted_.old_text, from, to);
            if (!found) break;
            buffer.replace_bytes(*found, wanted_.old_text.size(), wanted_.new_text);
            from = *found + wanted_.new_text.size();
            to = to + wanted_.new_text.size() - wanted_.old_text.size();
            ++done_;
            work_.may_add(longer);
        }
    }

    std::string message() const {
        if (done_ == 0) return "Not found";
        if (!wanted_.counts) return "Replaced";
        std::string text = "Replaced " + std::to_string(done_);
        if (work_.end == Work::End::stopped) text += ", stopped by Ctrl-C";
        if (work_.end == Work::End::too_large) {
            text += "; the rest" + std::string(Work::kTooLarge);
        }
        return text;
    }

  private:
    TPUEditor& editor_;
    const Wanted& wanted_;
    Work work_;
    std::uint64_t done_ = 0;
};

}  // namespace

void replace(TPUEditor& editor, const CommandLine& line) {
    std::optional<Wanted> wanted = wanted_by(editor, line);
    if (!wanted) return;
    Buffer& buffer = *editor.current_buffer;
    buffer.clamp_cursor();
    // As a search: from behind the cursor on, and then from the top, each place once.
    std::uint64_t length = buffer.line_length();
    std::uint64_t start =
        buffer.text().offset({buffer.cursor_row, std::min(buffer.cursor_column + 1, length)});
    Replacing replacing(editor, *wanted);
    if (!wanted->old_text.empty()) {
        replacing.between(start, buffer.text().bytes());
        replacing.between(0, std::min(start + wanted->old_text.size() - 1, buffer.text().bytes()));
    }
    editor.set_message(replacing.message());
}

}  // namespace tpu::commands
