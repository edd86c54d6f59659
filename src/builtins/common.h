// What handlers of several families share.
#pragma once

#include <algorithm>
#include <limits>
#include <string>

#include "actions/actions.h"
#include "lang/builtin.h"
#include "os/work.h"
#include "pattern/pattern.h"

namespace tpu::builtins {

// A count for the buffer's motions, which take an int: what is larger goes as far as
// that does.
inline int bounded(long long n) {
    using Limits = std::numeric_limits<int>;
    return static_cast<int>(std::clamp<long long>(n, -Limits::max(), Limits::max()));
}

// Records that an argument has a type that the built-in cannot use, and shows it when
// the call is a statement; gives the unspecified value.
Value wrong_type(Call& call, std::string_view wanted);

// Records, and shows when the call is a statement, that a piece of work would have made a
// text too large; Ctrl-C has been told of already.
void tell_of_end(Call& call, const Work& work);

// The statement form of a function: its value as a message.
void show_value(Call& call, const Value& value);

template <Value (*function)(Call&)>
void shown(Call& call) {
    show_value(call, function(call));
}

// A statement without arguments: an action, or a member of the session or the buffer.
template <auto action>
void does(Call& call) {
    actions::perform<action>(editor_of(call));
}

// The pattern that an argument is: a pattern, a text to be found as it stands, or,
// for anything else, what the argument's own text says.
TPUPattern pattern_argument(Args& args, std::size_t i, std::string_view written);

}  // namespace tpu::builtins
