// From the bytes that a terminal sends to events.
#pragma once

#include <bitset>
#include <string>
#include <string_view>
#include <vector>

#include "editor/event.h"
#include "text/charset.h"

namespace tpu {

// What a terminal sends for a key.
struct KeySequence {
    std::string bytes;  // not empty
    int code = kNoKey;
};

// A queue of bytes that is read event by event. Control sequences that no table knows
// are dropped whole, so that their letters are not taken for typed text.
class KeyDecoder {
  public:
    // Of two equal sequences the earlier one counts. `charset`: of what is typed.
    explicit KeyDecoder(std::vector<KeySequence> table = {}, Charset charset = Charset::bytes);

    static constexpr std::size_t kRoom = std::size_t{64} << 10;

    // So many bytes at once need no memory, but for those of a paste: one for which it is
    // too short is dropped. `doubtful`: while a paste is open, these bytes and those behind
    // them may be keys and the paste may have lost its end, unless that comes or what follows
    // is not doubtful.
    void feed(std::string_view bytes, bool doubtful = false);

    // The next event; none when all bytes are used up, or when the rest may be the start of
    // something longer.
    Event next();
    // As next(), but nothing more will come: a sequence that was cut short counts
    // as the single keys it is made of, an open paste ends as by end_paste().
    Event next_now();
    // After next() gave none: more bytes may make an event of what there is.
    bool is_incomplete() const { return pasting_ || head_ < input_.size(); }

    // Drops the unread bytes up to a byte that is not pasted, and it itself. False, and
    // nothing is dropped, when there is none.
    bool drop_through(char byte);

    // True when the end of a paste has not come yet.
    bool paste_is_open() const;
    // Ends the open paste where what is doubtful begins, or else here.
    void end_paste();

    // True between the two marks around pasted text that is being decoded.
    bool pasting() const { return pasting_; }

  private:
    // What the front of some bytes is, and how many of them it takes.
    struct Match {
        int code = kNoKey;
        std::size_t size = 0;
    };

    Event decode(bool now);
    Event decode_paste();
    Event event_of(Match match);
    void make_room(std::size_t bytes);
    void drop_paste();
    void shrink();
    Match recognise(std::string_view bytes);
    Match character(std::string_view bytes, bool now) const;
    Match look_up(std::string_view bytes) const;
    Match control_sequence(std::string_view bytes);
    Match old_mouse_report(std::string_view bytes);
    Match mouse_report(std::string_view bytes);

    std::vector<KeySequence> table_;  // sorted by bytes
    Charset charset_;
    std::bitset<256> first_bytes_;  // of the table's sequences
    std::string input_;
    std::size_t head_ = 0;     // where the unread bytes of input_ begin
    std::size_t scanned_ = 0;  // no end of paste begins before it
    std::size_t doubtful_ = std::string::npos;
    bool pasting_ = false;
    bool paste_lost_ = false;  // it did not fit
    MouseEvent mouse_;         // that was reported last
};

}  // namespace tpu
