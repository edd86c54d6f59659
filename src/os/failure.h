// Why something could not be done.
//
// Who fails notes the reason in the Failure that the caller hands down, at once, since errno
// speaks only of the last call; who tells a person of it asks for the words. It takes no
// memory, which may be just what is short.
#pragma once

#include <string>

namespace tpu {

struct Failure {
    int error = 0;                // the system's number; 0: nothing has failed
    const char* words = nullptr;  // instead of the system's own; they last for ever

    explicit operator bool() const { return error != 0; }
    bool operator==(const Failure&) const = default;

    // Notes a reason; false, for who fails to return.
    bool note(int number, const char* in_words = nullptr) {
        *this = {number, in_words};
        return false;
    }
    // The same with what errno says of the call that has just failed.
    bool note_errno();

    // "No space left on device"; empty when nothing has failed.
    std::string text() const;
};

}  // namespace tpu
