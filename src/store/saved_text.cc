#include "store/saved_text.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

#include <cstring>
#include <memory>
#include <new>
#include <string_view>
#include <vector>

namespace tpu {

namespace {

// Of carriage returns that a line feed follows.
std::vector<std::uint64_t> places_of_cr_lf(const LineStore& text) {
    std::vector<std::uint64_t> places;
    std::uint64_t begin = 0;
    bool after_cr = false;
    text.for_each_span(0, text.bytes(), [&](std::string_view span) {
        if (after_cr && span.starts_with('\n')) places.push_back(begin - 1);
        for (std::size_t at = span.find('\r'); at < span.size(); at = span.find('\r', at + 1)) {
            if (at + 1 < span.size() && span[at + 1] == '\n') places.push_back(begin + at);
        }
        after_cr = span.ends_with('\r');
        begin += span.size();
        return true;
    });
    return places;
}

// The last byte, or none.
char last_byte(const LineStore& text) {
    return text.bytes() == 0 ? '\0' : text.text(text.bytes() - 1, text.bytes()).front();
}

}  // namespace

LineStore as_loaded(const LineStore& text) {
    LineStore loaded = text.may_hold_feeds() ? LineStore::from_text(text.text()) : text;
    const std::vector<std::uint64_t> returns = places_of_cr_lf(loaded);
    for (std::size_t i = returns.size(); i-- > 0;) loaded.erase(returns[i], returns[i] + 1);
    // Of the last line, which has lost its carriage return by now if a line feed followed it.
    const char last = last_byte(loaded);
    if (last == '\n' || last == '\r') loaded.erase(loaded.bytes() - 1, loaded.bytes());
    return loaded;
}

TextIdentity identity_of(const LineStore& text) {
    std::unique_ptr<XXH3_state_t, XXH_errorcode (*)(XXH3_state_t*)> state(XXH3_createState(),
                                                                          XXH3_freeState);
    if (!state) throw std::bad_alloc();
    XXH3_64bits_reset(state.get());
    text.for_each_span(0, text.bytes(), [&](std::string_view span) {
        XXH3_64bits_update(state.get(), span.data(), span.size());
        return true;
    });
    return {text.bytes(), XXH3_64bits_digest(state.get())};
}

}  // namespace tpu
