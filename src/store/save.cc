// Saving a buffer to a file.
#include <cerrno>
#include <functional>
#include <utility>

#include "os/file_io.h"
#include "os/short_memory.h"
#include "store/buffer_file.h"
#include "store/safe_write.h"
#include "store/saved_text.h"
#include "text/differences.h"

namespace tpu {

namespace {

// Short runs, as typing leaves them, are gathered; long ones go out from where they lie. That
// needs no memory: one that ends half-way might leave half a file.
bool write_lines(int fd, const LineStore& lines, Failure& why) {
    constexpr std::size_t kLongRun = std::size_t{256} << 10;
    std::string gathered;
    enough_memory([&] { gathered.reserve(kLongRun); });
    const std::size_t room = gathered.capacity();
    auto flush = [&] {
        bool written = write_all(fd, gathered, why);
        gathered.clear();
        return written;
    };
    bool good = true;
    auto write = [&](std::string_view run) {
        if (gathered.size() + run.size() > room) good = flush();
        if (good && run.size() <= room) {
            gathered += run;
        } else if (good) {
            good = write_all(fd, run, why);
        }
        return good;
    };
    lines.for_each_span(0, lines.bytes(), std::ref(write));
    return good && flush();
}

}  // namespace

bool write_file(Buffer& buffer, const std::string& path) {
    buffer.save_note = buffer.no_write ? "The buffer is set not to be written" : "";
    if (buffer.no_write) return false;
    std::string target = path.empty() ? buffer.file_name : path;
    // The file may be one that a text still shows.
    while (!TextBlock::detach_some()) {
    }
    if (buffer.loaded_block && buffer.loaded_block->is_damaged()) note_unread(buffer, {EIO});
    buffer.save_note = target.empty() ? "There is no file name" : write_refusal(buffer, target);
    if (!buffer.save_note.empty()) return false;
    auto write = [&](int fd, Failure& why) { return write_lines(fd, buffer.text(), why); };
    // What follows the writing needs no memory.
    LineStore reloaded = as_loaded(buffer.text());
    const Change dropped = change_between(reloaded, buffer.text());
    const bool is_as_known =
        target == buffer.file_name && FileVersion::of(target) == buffer.known_version;
    if (!write_safely(target, buffer.backup_on_write, write, buffer.save_note)) {
        // What a failed attempt has left is no change that somebody else has made.
        if (is_as_known) buffer.known_version = FileVersion::of(target);
        return false;
    }
    buffer.file_name = std::move(target);
    buffer.modified = false;
    buffer.saved_lines = std::move(reloaded);
    buffer.since_saved_lines = dropped;
    buffer.saved_version = buffer.changes().version();
    note_written(buffer);
    return true;
}

}  // namespace tpu
