#include "app/curses/keyboard.h"

#include <signal.h>
#include <sys/select.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "os/terminal_state.h"

namespace tpu {

namespace {

constexpr int kSequencePatience = 25;  // milliseconds between the bytes of one key
constexpr int kPastePatience = 2000;   // milliseconds between the pieces of one paste
constexpr int kPause = 200;            // after which a few bytes may be keys, and not of a paste
constexpr std::size_t kLongestKey = 16;
constexpr std::size_t kReadSize = KeyDecoder::kRoom;
constexpr char kInterrupt = 3;
// Reads that end, since keys may come as fast as they are read.
constexpr int kMostReads = 16;

volatile sig_atomic_t size_changed = 0;

void note_size_change(int) {
    size_changed = 1;
}

int milliseconds_since(std::chrono::steady_clock::time_point start) {
    using std::chrono::milliseconds;
    auto passed = std::chrono::steady_clock::now() - start;
    return static_cast<int>(std::chrono::duration_cast<milliseconds>(passed).count());
}

// What is left of a limit that began to run at `start`; below 0: no limit.
int remaining(int limit_ms, std::chrono::steady_clock::time_point start) {
    return limit_ms < 0 ? limit_ms : std::max(0, limit_ms - milliseconds_since(start));
}

int shorter(int limit_ms, int other_ms) {
    return limit_ms < 0 ? other_ms : std::min(limit_ms, other_ms);
}

// Select, since macOS cannot poll a terminal.
class DescriptorSet {
  public:
    explicit DescriptorSet(const std::vector<int>& descriptors) {
        FD_ZERO(&set_);
        for (int descriptor : descriptors) add(descriptor);
    }
    // Too high a number for such a set is left out.
    void add(int descriptor) {
        if (descriptor >= FD_SETSIZE) return;
        FD_SET(descriptor, &set_);
        end_ = std::max(end_, descriptor + 1);
    }
    bool has(int descriptor) const { return FD_ISSET(descriptor, &set_); }
    fd_set* get() { return &set_; }
    int end() const { return end_; }

  private:
    fd_set set_;
    int end_ = 0;
};

}  // namespace

void Keyboard::open(int descriptor, std::vector<KeySequence> (*keys)(), Charset charset) {
    descriptor_ = descriptor;
    keys_ = keys;
    charset_ = charset;
    decoder_ = KeyDecoder({}, charset);
    struct sigaction action = {};
    action.sa_handler = note_size_change;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(SIGWINCH, &action, nullptr);
}

Event Keyboard::read(int wait_ms, const Awaited& others) {
    SteadyTime start = std::chrono::steady_clock::now();
    for (;;) {
        look_for_end();
        Event event = next();
        if (event.kind != Event::Kind::none) return event;
        int wait = remaining(wait_ms, start);
        bool incomplete = decoder_.is_incomplete();
        if (incomplete) wait = shorter(wait, remaining(patience(), last_input_));
        if (fill(wait, others)) continue;
        if (incomplete && remaining(patience(), last_input_) == 0) return decoder_.next_now();
        if (others_ready_ || remaining(wait_ms, start) == 0) return {};
    }
}

bool Keyboard::key_waiting() {
    look_for_end();
    if (size_changed) return true;
    if (ahead_.kind == Event::Kind::none) ahead_ = next();
    if (ahead_.kind == Event::Kind::none && fill(0)) ahead_ = next();
    return ahead_.kind != Event::Kind::none;
}

bool Keyboard::interrupt_waiting() {
    look_for_end();
    if (ahead_.key == kInterrupt) return ahead_ = {}, true;
    for (int i = 0; i < kMostReads && !hung_up_ && wait_for_input(0); ++i) read_input();
    if (hung_up_) return true;  // nobody is there to wait for what runs
    if (!decoder_.drop_through(kInterrupt)) return false;
    ahead_ = {};
    return true;
}

// The next event of those bytes that are here.
Event Keyboard::next() {
    if (ahead_.kind != Event::Kind::none) return std::exchange(ahead_, {});
    if (size_changed) {
        size_changed = 0;
        return {Event::Kind::resize};
    }
    Event event = hung_up_ ? decoder_.next_now() : decoder_.next();
    if (event.kind == Event::Kind::none && hung_up_) event.kind = Event::Kind::hang_up;
    return event;
}

// What was typed before the signal still counts.
void Keyboard::look_for_end() {
    if (hung_up_ || !end_requested()) return;
    for (int i = 0; i < kMostReads && !hung_up_ && wait_for_input(0); ++i) read_input();
    hung_up_ = true;
}

int Keyboard::patience() const {
    return decoder_.pasting() ? kPastePatience : kSequencePatience;
}

// Waits for input and takes it. True when something is new.
bool Keyboard::fill(int wait_ms, const Awaited& others) {
    bool readable = unfed_ > 0 || wait_for_input(wait_ms, others);
    if (readable) read_input();
    return readable || hung_up_ || size_changed || end_requested();
}

// True when there is input for us; the wait also ends when one of the others is ready.
// Signals are let in during the wait only, so that none is missed before it.
bool Keyboard::wait_for_input(int wait_ms, const Awaited& others) {
    sigset_t held, before;
    sigemptyset(&held);
    for (int signal : {SIGWINCH, SIGINT, SIGTERM, SIGHUP}) sigaddset(&held, signal);
    sigprocmask(SIG_BLOCK, &held, &before);
    DescriptorSet readable(others.readable), writable(others.writable);
    readable.add(descriptor_);
    if (size_changed || end_requested()) wait_ms = 0;
    timespec limit = {wait_ms / 1000, wait_ms % 1000 * 1000000L};
    int ready = pselect(std::max(readable.end(), writable.end()), readable.get(), writable.get(),
                        nullptr, wait_ms < 0 ? nullptr : &limit, &before);
    if (ready < 0 && errno != EINTR) hung_up_ = true;
    sigprocmask(SIG_SETMASK, &before, nullptr);
    bool ours = ready > 0 && readable.has(descriptor_);
    others_ready_ = ready > (ours ? 1 : 0);
    return ours;
}

void Keyboard::read_input() {
    static char bytes[kReadSize];
    ssize_t count = static_cast<ssize_t>(unfed_);
    if (count == 0) count = ::read(descriptor_, bytes, sizeof bytes);
    if (count > 0) {
        unfed_ = static_cast<std::size_t>(count);
        if (keys_) decoder_ = KeyDecoder(keys_(), charset_);
        keys_ = nullptr;
        take({bytes, unfed_});
        unfed_ = 0;
    } else if (count == 0 || (errno != EINTR && errno != EAGAIN)) {
        hung_up_ = true;
    }
}

// A paste whose end was lost would swallow all keys: what comes after a pause and may
// be keys does not keep it open, and Ctrl-C ends it at once.
void Keyboard::take(std::string_view bytes) {
    const bool asks_for_end = bytes.find_first_not_of(kInterrupt) == std::string_view::npos;
    bool doubtful = bytes.size() <= kLongestKey && milliseconds_since(last_input_) >= kPause &&
                    decoder_.paste_is_open();
    decoder_.feed(bytes, doubtful);
    if (doubtful && asks_for_end) {
        decoder_.end_paste();
    } else if (!doubtful && !(asks_for_end && decoder_.paste_is_open())) {
        // A Ctrl-C that is held down comes without a pause.
        last_input_ = std::chrono::steady_clock::now();
    }
}

}  // namespace tpu
