#include "attributes/set_call.h"

#include <algorithm>

#include "text/ascii.h"

namespace tpu {

std::uint64_t SetCall::number(std::size_t i, std::uint64_t least, std::uint64_t most) {
    long long given = std::max(0LL, args.number(first + i));
    return std::clamp(static_cast<std::uint64_t>(given), least, most);
}

std::string SetCall::text(std::size_t i) {
    return tpu_value_is_unspecified(value(i)) ? std::string() : value(i).as_string();
}

std::string SetCall::word(std::size_t i) {
    bool on_or_else_on = args.on(first + i, true), on_or_else_off = args.on(first + i, false);
    if (on_or_else_on == on_or_else_off) return on_or_else_on ? "ON" : "OFF";
    return ascii::upper(text(i));
}

}  // namespace tpu
