#include "builtins/fao.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <string_view>
#include <vector>

#include "builtins/text_of.h"
#include "text/ascii.h"

namespace tpu {

namespace {

enum class Sign { minus, plus_or_minus, none };  // none: read as unsigned

// The directives of two characters that show a number.
struct NumberForm {
    char letter;
    std::string_view sizes;  // the second character; none limits the value
    int base;
    Sign sign;
    char fill;  // on the left, up to the width
};

// Deliberate: SL writes a plus sign, and zeros go before a minus sign.
// clang-format off
constexpr NumberForm kNumberForms[] = {
    {'Z', "L", 10, Sign::minus, '0'},
    {'S', "LW", 10, Sign::plus_or_minus, ' '},
    {'U', "LWB", 10, Sign::none, ' '},
    {'X', "LWB", 16, Sign::minus, '0'},
    {'O', "LWB", 8, Sign::minus, '0'},
    {'B', "LWB", 2, Sign::minus, '0'},
};
// clang-format on

bool is_letter(char c) {
    return ascii::to_upper(c) >= 'A' && ascii::to_upper(c) <= 'Z';
}

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

// What all levels of one call share.
struct Output {
    const std::tm& now;
    std::string text;
    std::size_t repeats_left = kMostFormatRepeats;
    bool is_cut = false;

    std::size_t room() const { return kLongestFormatted - text.size(); }
    void put(std::string_view more) {
        is_cut |= more.size() > room();
        text.append(more.substr(0, room()));
    }
    void put(std::size_t times, char c) {
        is_cut |= times > room();
        text.append(std::min(times, room()), c);
    }
};

// One control text on its way to the output.
class Formatter {
  public:
    Formatter(std::span<const Value> arguments, Output& out)
        : arguments_(arguments), control_(argument_at(arguments, 0)), out_(out) {}

    void run();

  private:
    std::string_view rest() const { return control_.view().substr(at_); }
    const Value& consume() { return *(consumed_ = &argument_at(arguments_, next_++)); }

    void directive();
    void read_width();
    // Each is true when the two characters are its directive, which is then done.
    bool text_directive(char first, char second);
    bool number_directive(char first, char second);
    bool percent_directive(char first, char second);
    // `c` as written; what follows it in the control text is next.
    void short_directive(char c);

    void put_number(const NumberForm& form);
    // By a format of strftime, where @ is the month's name in any locale.
    void put_time(std::string format);
    void put_right(std::string_view text, char fill);
    void back_up();
    void repeat();

    std::span<const Value> arguments_;  // the control text is number 0
    const TextOf control_;
    Output& out_;
    std::size_t at_ = 0;                // in the control text
    std::size_t next_ = 1;              // in the arguments
    const Value* consumed_ = nullptr;   // the last one; null: none yet
    std::optional<std::size_t> width_;  // of the present directive
};

void Formatter::run() {
    while (!rest().empty()) {
        if (out_.room() == 0) {
            out_.is_cut = true;
            return;
        }
        const std::string_view plain = rest().substr(0, rest().find('!'));
        out_.put(plain);
        at_ += plain.size();
        if (rest().empty()) return;
        ++at_;
        directive();
    }
}

void Formatter::directive() {
    read_width();
    if (rest().empty()) return out_.put("!");
    const char c = rest()[0], first = ascii::to_upper(c);
    const char second = rest().size() > 1 ? ascii::to_upper(rest()[1]) : '\0';
    if (text_directive(first, second) || number_directive(first, second) ||
        percent_directive(first, second)) {
        at_ += 2;
    } else {
        ++at_;
        short_directive(c);
    }
}

void Formatter::read_width() {
    width_.reset();
    if (rest().starts_with('#')) {
        ++at_;
        const auto most = static_cast<long long>(kLongestFormatted);
        width_ = static_cast<std::size_t>(std::clamp(consume().as_int(), 0LL, most));
        return;
    }
    for (; !rest().empty() && is_digit(rest()[0]); ++at_) {
        const auto digit = static_cast<std::size_t>(rest()[0] - '0');
        width_ = std::min(width_.value_or(0) * 10 + digit, kLongestFormatted);
    }
}

bool Formatter::text_directive(char first, char second) {
    if (first != 'A' || (second != 'S' && second != 'C' && second != 'D')) return false;
    const TextOf text(consume());
    const std::size_t length = text.view().size(), width = width_.value_or(length);
    if (second == 'D') {
        out_.put(text.view().substr(0, width));
    } else {
        out_.put(text);
        out_.put(std::max(width, length) - length, ' ');
    }
    return true;
}

bool Formatter::number_directive(char first, char second) {
    for (const NumberForm& form : kNumberForms) {
        if (first != form.letter || form.sizes.find(second) == std::string_view::npos) continue;
        put_number(form);
        return true;
    }
    return false;
}

bool Formatter::percent_directive(char first, char second) {
    if (first != '%') return false;
    switch (second) {
        case 'S': {
            const long long number = consumed_ ? consumed_->as_int() : 0;
            if (number != 1 && number != -1) out_.put("s");
            return true;
        }
        case 'D': put_time("%d-@-%Y"); return true;
        case 'T': put_time("%H:%M:%S"); return true;
        case 'C': out_.put(1, static_cast<char>(consume().as_int() & 127)); return true;
        default: return false;
    }
}

void Formatter::short_directive(char c) {
    switch (ascii::to_upper(c)) {
        case '!': return out_.put("!");
        case '/': return out_.put("\n");
        case '_': return out_.put("\t");
        case '^': return out_.put("\f");
        case ' ': return out_.put(" ");
        case '@': return put_right(TextOf(consume()), ' ');
        case '+': next_ += width_.value_or(1); return;
        case '-': return back_up();
        case '*':
            if (rest().empty()) break;
            return out_.put(width_.value_or(1), control_.view()[at_++]);
        case 'F':
            if (rest().empty()) break;
            return repeat();
        default: break;
    }
    out_.put("!");
    out_.put(1, c);
}

void Formatter::put_number(const NumberForm& form) {
    const long long value = consume().as_int();
    const bool negative = value < 0 && form.sign != Sign::none;
    const auto bits = static_cast<unsigned long long>(value);
    std::array<char, 65> text;  // a sign and 64 binary digits
    char* end = text.data();
    if (negative) {
        *end++ = '-';
    } else if (form.sign == Sign::plus_or_minus) {
        *end++ = '+';
    }
    end = std::to_chars(end, text.data() + text.size(), negative ? 0 - bits : bits, form.base).ptr;
    std::transform(text.data(), end, text.data(), ascii::to_upper);
    put_right({text.data(), static_cast<std::size_t>(end - text.data())}, form.fill);
}

void Formatter::put_time(std::string format) {
    constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                       "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    std::size_t month = format.find('@');
    if (month != std::string::npos) format.replace(month, 1, kMonths[out_.now.tm_mon]);
    std::array<char, 64> text;
    std::size_t size = std::strftime(text.data(), text.size(), format.c_str(), &out_.now);
    out_.put({text.data(), size});
}

void Formatter::put_right(std::string_view text, char fill) {
    out_.put(std::max(width_.value_or(0), text.size()) - text.size(), fill);
    out_.put(text);
}

void Formatter::back_up() {
    if (!width_) {
        if (next_ > 1) --next_;
    } else if (*width_ > next_) {
        next_ = 1;
    } else {
        next_ -= *width_;  // Deliberate: this may lead to the control text itself.
    }
}

// Levels are few: what is repeated is at most two characters, and each level of !F
// takes one of them.
void Formatter::repeat() {
    std::string one("!");
    one += control_.view()[at_++];
    if (!rest().empty() && is_letter(rest()[0])) one += control_.view()[at_++];
    const std::size_t count = width_.value_or(1), times = std::min(count, out_.repeats_left);
    out_.repeats_left -= times;
    out_.is_cut |= times < count;

    std::string control;
    control.reserve(times * one.size());
    for (std::size_t i = 0; i < times; ++i) control += one;
    std::vector<Value> arguments{Value::make_str(std::move(control))};
    const auto given = arguments_.subspan(std::min(next_, arguments_.size()));
    const auto taken = given.first(std::min(times, given.size()));
    arguments.insert(arguments.end(), taken.begin(), taken.end());
    Formatter(arguments, out_).run();

    next_ += count;
    if (count > 0) consumed_ = &argument_at(arguments_, next_ - 1);
}

}  // namespace

std::string format_ascii_output(std::span<const Value> arguments, const std::tm& now,
                                bool* is_cut) {
    Output out{now, {}};
    Formatter(arguments, out).run();
    if (is_cut) *is_cut = out.is_cut;
    return std::move(out.text);
}

}  // namespace tpu
