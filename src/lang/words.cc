#include "lang/words.h"

#include <map>

namespace tpu {

namespace {

const std::map<std::string_view, Value>& words_with_values() {
    static const auto* const kWords = [] {
        auto* words = new std::map<std::string_view, Value>{
            {"TRUE", Value::make_int(1)},       {"ON", Value::make_int(1)},
            {"FALSE", Value::make_int(0)},      {"OFF", Value::make_int(0)},
            {"UNSPECIFIED", tpu_unspecified()}, {"TPU$K_UNSPECIFIED", tpu_unspecified()},
        };
        for (std::string_view keyword :
             {"FORWARD", "REVERSE", "UPPER", "LOWER", "INVERT", "FREE_CURSOR", "BOUND", "ALL",
              "NONE", "BUFFER_BEGIN", "BUFFER_END", "SYSTEM", "SCREEN", "COMMAND_LINE", "ARRAY"}) {
            words->emplace(keyword, Value::make_kw(keyword));
        }
        return words;
    }();
    return *kWords;
}

}  // namespace

const Value* constant_word(std::string_view word) {
    auto found = words_with_values().find(word);
    return found == words_with_values().end() ? nullptr : &found->second;
}

std::vector<std::string_view> constant_words() {
    std::vector<std::string_view> words;
    for (const auto& [word, value] : words_with_values()) words.push_back(word);
    return words;
}

}  // namespace tpu
