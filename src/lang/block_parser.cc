#include "lang/block_parser.h"

#include <utility>

#include "lang/source.h"
#include "text/ascii.h"

namespace tpu {

namespace {

bool is_letter_or_digit(char c) {
    return ascii::is_digit(c) || ascii::is_letter(c);
}

// A statement as the parser looks at it: matched in upper case, kept as written.
struct Statement {
    explicit Statement(std::string_view written) : text(written), upper(ascii::upper(written)) {}

    std::string_view text;
    std::string upper;

    bool is(std::string_view word) const { return upper == word; }
    bool starts(std::string_view start) const { return upper.starts_with(start); }
    // The word alone, or with a blank behind it.
    bool begins_with_word(std::string_view word) const {
        return starts(word) && (upper.size() == word.size() || ascii::is_space(upper[word.size()]));
    }
    // The word with a blank or a parenthesis behind it.
    bool opens_with(std::string_view word) const {
        return starts(word) && upper.size() > word.size() &&
               (ascii::is_space(upper[word.size()]) || upper[word.size()] == '(');
    }
    std::string after(std::size_t size) const {
        return std::string(ascii::trim(text.substr(size)));
    }
};

// A block whose end has not come yet.
struct Open {
    Stmt stmt;
    std::vector<Stmt> body;  // of the branch that is being read
    bool in_else = false;
    bool waits_for_then = false;  // IF whose THEN may follow as a statement of its own

    // The statement that ends the block.
    std::string_view end_word() const {
        switch (stmt.kind) {
            case Stmt::kIf: return "ENDIF";
            case Stmt::kLoop: return "ENDLOOP";
            default: return "ENDON_ERROR";
        }
    }
    // An ELSE belongs to the innermost IF that has none yet.
    bool ends_branch_at(const Statement& s) const {
        bool is_else = stmt.kind == Stmt::kIf && !in_else && s.begins_with_word("ELSE");
        return is_else || s.begins_with_word(end_word());
    }
};

// Blocks are kept on a stack of our own, so that no source is nested too deeply for ours.
class BlockParser {
  public:
    bool too_deep() const { return too_deep_; }

    void take(std::string_view text, int line) {
        // What follows THEN or ELSE on a line is a statement too.
        for (std::string rest(text); !rest.empty();) rest = take_first(rest, line);
    }

    std::vector<Stmt> finish() {
        while (!open_.empty()) close_innermost();
        return std::move(top_);
    }

  private:
    std::string take_first(const std::string& text, int line) {
        Statement s(text);
        if (skip(s)) return {};
        if (!open_.empty() && std::exchange(open_.back().waits_for_then, false) &&
            s.begins_with_word("THEN")) {
            return s.after(4);
        }
        for (std::size_t i = open_.size(); i-- > 0;) {
            if (open_[i].ends_branch_at(s)) return end_branch(i, s);
        }
        return read(s, line);
    }

    // Beyond the deepest level whole blocks are passed over. True when s was.
    bool skip(const Statement& s) {
        bool opens = opens_block(s);
        if (skipped_ == 0 && !(opens && open_.size() == kDeepestBlock)) return false;
        too_deep_ = true;
        if (opens) ++skipped_;
        if (closes_block(s)) --skipped_;
        return true;
    }

    static bool opens_block(const Statement& s) {
        return s.opens_with("IF") || s.is("LOOP") || is_on_error(s);
    }
    static bool closes_block(const Statement& s) {
        return s.begins_with_word("ENDIF") || s.begins_with_word("ENDLOOP") ||
               s.begins_with_word("ENDON_ERROR");
    }
    static bool is_on_error(const Statement& s) {
        constexpr std::string_view kWord = "ON_ERROR";
        return s.starts(kWord) &&
               (s.upper.size() == kWord.size() || !is_letter_or_digit(s.upper[kWord.size()]));
    }

    std::string end_branch(std::size_t i, const Statement& s) {
        while (open_.size() > i + 1) close_innermost();
        if (s.begins_with_word(open_[i].end_word())) {
            close_innermost();
            return {};
        }
        open_[i].stmt.body = std::exchange(open_[i].body, {});
        open_[i].in_else = true;
        return s.after(4);
    }

    void close_innermost() {
        Open block = std::move(open_.back());
        open_.pop_back();
        (block.in_else ? block.stmt.else_body : block.stmt.body) = std::move(block.body);
        add(std::move(block.stmt));
    }

    void add(Stmt stmt) { (open_.empty() ? top_ : open_.back().body).push_back(std::move(stmt)); }
    void open(Stmt stmt) { open_.push_back({std::move(stmt), {}, false, false}); }

    std::string read(const Statement& s, int line) {
        Stmt stmt;
        stmt.line = line;
        if (declares(s)) {
            stmt.text = s.text;
        } else if (is_on_error(s)) {
            stmt.kind = Stmt::kOnError;
            open(std::move(stmt));
            return {};
        } else if (s.opens_with("IF")) {
            return open_if(s, std::move(stmt));
        } else if (s.is("LOOP")) {
            stmt.kind = Stmt::kLoop;
            open(std::move(stmt));
            return {};
        } else {
            read_simple(s, stmt);
        }
        add(std::move(stmt));
        return {};
    }

    static bool declares(const Statement& s) {
        for (std::string_view word : {"LOCAL", "CONSTANT", "VARIABLE"}) {
            if (s.begins_with_word(word) && !s.is(word)) return true;
        }
        return false;
    }

    std::string open_if(const Statement& s, Stmt stmt) {
        constexpr std::string_view kThen = "THEN";
        // The blank behind IF does not count: the condition may begin with those letters.
        std::size_t then = s.upper.find(kThen, ascii::is_space(s.upper[2]) ? 4 : 3);
        while (then != std::string::npos && !ascii::is_space(s.upper[then - 1])) {
            then = s.upper.find(kThen, then + 1);
        }
        bool has_then = then != std::string::npos;
        stmt.kind = Stmt::kIf;
        stmt.text = ascii::trim(s.text.substr(0, then).substr(2));
        open(std::move(stmt));
        open_.back().waits_for_then = !has_then;
        return has_then ? s.after(then + kThen.size()) : std::string();
    }

    static void read_simple(const Statement& s, Stmt& stmt) {
        if (s.opens_with("EXITIF")) {
            stmt.kind = Stmt::kExitIf;
            stmt.text = s.after(6);
        } else if (s.is("RETURN") || s.opens_with("RETURN")) {
            stmt.kind = Stmt::kReturn;
            stmt.text = s.after(6);
        } else if (s.is("ABORT")) {
            stmt.kind = Stmt::kAbort;
        } else if (s.is("BREAK")) {
            stmt.kind = Stmt::kBreak;
        } else if (std::size_t at = source::find_assignment(s.text); at != std::string::npos) {
            stmt.kind = Stmt::kAssignment;
            stmt.text = ascii::trim(s.text.substr(0, at));
            stmt.expression = s.after(at + 2);
        } else {
            stmt.text = s.text;
        }
    }

    std::vector<Stmt> top_;
    std::vector<Open> open_;
    std::size_t skipped_ = 0;  // blocks open among those that are passed over
    bool too_deep_ = false;
};

bool is_terminator(const std::string& text, const std::vector<std::string_view>& terminators) {
    if (terminators.empty()) return false;
    Statement s(text);
    for (std::string_view terminator : terminators) {
        if (s.begins_with_word(terminator)) return true;
    }
    return false;
}

}  // namespace

std::vector<Stmt> parse_block(const std::vector<std::string>& statements,
                              const std::vector<int>& lines, std::size_t& index,
                              const std::vector<std::string_view>& terminators, bool* too_deep) {
    BlockParser parser;
    for (; index < statements.size(); ++index) {
        if (is_terminator(statements[index], terminators)) break;
        parser.take(statements[index], index < lines.size() ? lines[index] : 0);
    }
    if (too_deep) *too_deep = parser.too_deep();
    return parser.finish();
}

}  // namespace tpu
