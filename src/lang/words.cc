#include "lang/words.h"

#include <map>

namespace tpu {

const Value* constant_word(std::string_view word) {
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
    auto found = kWords->find(word);
    return found == kWords->end() ? nullptr : &found->second;
}

}  // namespace tpu
