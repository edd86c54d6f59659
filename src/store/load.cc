// Loading a buffer from a file.
#include <cerrno>
#include <utility>

#include "os/input_file.h"
#include "store/buffer_file.h"
#include "store/read_file.h"

namespace tpu {

namespace {

// Smaller files are read as quickly as they are mapped.
constexpr std::uint64_t kWorthMapping = std::uint64_t{1} << 20;

std::optional<LineStore> map_if_worth_it(const InputFile& file, Ref<TextBlock>& block) {
    return file.size() < kWorthMapping ? std::nullopt : map_lines(file.fd(), file.size(), block);
}

}  // namespace

bool load_file(Buffer& buffer, const std::string& path, Loading how, const Interrupted& interrupted,
               Failure& why) {
    // Where reading it again fails the text is still that of an earlier version.
    const bool was_read =
        buffer.file_name == path && buffer.known_version && buffer.known_version->exists();
    buffer.file_name = path;
    buffer.refused_save.reset();
    // Whatever may come in between.
    if (!was_read) buffer.file_trouble = {ENOMEM};
    std::optional<InputFile> file = InputFile::open(path, why, {interrupted});
    std::optional<LineStore> text;
    Ref<TextBlock> block;
    if (file && how == Loading::in_steps) text = map_if_worth_it(*file, block);
    const std::uint64_t mapped = text ? file->size() : 0;
    if (file && !text) text = read_lines(*file, why);
    if (!text) {
        if (!was_read) note_unread(buffer, why);
        return false;
    }
    buffer.set_text(std::move(*text));
    buffer.saved_lines = buffer.text();
    buffer.since_saved_lines = {};
    buffer.saved_version = buffer.changes().version();
    buffer.loading_size = mapped;
    buffer.loaded_block = mapped > 0 ? std::move(block) : Ref<TextBlock>();
    buffer.cursor_row = buffer.cursor_column = buffer.view_line = 0;
    buffer.modified = false;
    note_read(buffer, file->status());
    return true;
}

std::string edit_file(Buffer& buffer, const std::string& path, Loading how,
                      const Interrupted& interrupted) {
    Failure why;
    if (load_file(buffer, path, how, interrupted, why) || !buffer.file_trouble) return {};
    return "Cannot read " + path + ": " + buffer.file_trouble.text();
}

// What was written to the file while it was mapped is in the text, as it would be
// had it been read a little later; but the lines may have moved.
std::string finish_loading(Buffer& buffer) {
    if (buffer.loading_size == 0) return {};
    const bool damaged = buffer.loaded_block->is_damaged();
    std::string told;
    if (damaged) {
        told = buffer.file_name +
               " shrank while it was read: zeros stand for what is gone, write elsewhere";
        note_unread(buffer, {EIO});
    }
    std::optional<FileVersion> now = FileVersion::of(buffer.file_name);
    bool unchanged =
        now && now->size == buffer.loading_size && now->milliseconds() == buffer.file_time;
    if (!unchanged || damaged) {
        buffer.recount_lines();
        buffer.clamp_cursor();
    }
    buffer.loading_size = 0;  // when all of it is done: memory may run out before
    buffer.loaded_block = {};
    return told;
}

}  // namespace tpu
