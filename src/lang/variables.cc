// Variables and recorded errors.
#include "lang/parser.h"
#include "value/array.h"

namespace tpu {

void MiniTPUParser::assign_constant(Symbol& symbol, Value value) {
    if (symbol.is_bound()) {
        record_error("TPU$_CONTRADEF", "CONSTANT " + symbol.name + " may not be reassigned");
        return;
    }
    symbols.assign(symbol, std::move(value));
}

// Deliberate: a variable that holds no array is replaced by an array of one element.
void MiniTPUParser::assign_element(Symbol& symbol, const Value& index, Value value) {
    if (TPUArray* array = symbol.is_bound() ? symbol.value.array_here() : nullptr) {
        array->set(index, std::move(value));
        return;
    }
    Value array = Value::make_array();
    array.array_here()->set(index, std::move(value));
    assign(symbol, std::move(array));
}

void MiniTPUParser::record_error(const std::string& code, const std::string& text) {
    error_code = code.empty() ? "TPU$_FAILURE" : code;
    error_text = text.empty() ? error_code : text;
    if (current_line >= 1) error_line = current_line;
}

void MiniTPUParser::add_fault(int line, const std::string& text, const std::string& message) {
    constexpr std::size_t kLongest = 4'096;
    ++error_count;
    Diagnostic fault{line, text.substr(0, kLongest)};
    bool is_repeated = !diagnostics.empty() && diagnostics_left_out == 0 &&
                       diagnostics.back().line == line && diagnostics.back().text == fault.text;
    if (is_repeated) {
        ++diagnostics.back().times;
        return;
    }
    if (diagnostics.size() < kMostFaults) {
        diagnostics.push_back(std::move(fault));
        error_list.emplace_back();
    } else {
        ++diagnostics_left_out;
    }
    error_list.back() = message.substr(0, kLongest);
}

}  // namespace tpu
