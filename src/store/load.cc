// Loading a buffer from a file.
#include <cerrno>
#include <utility>

#include "buffer/buffer.h"
#include "os/input_file.h"
#include "store/read_file.h"

namespace tpu {

namespace {

// Smaller files are read as quickly as they are mapped.
constexpr std::uint64_t kWorthMapping = std::uint64_t{1} << 20;

std::optional<LineStore> map_if_worth_it(const InputFile& file, Ref<TextBlock>& block) {
    return file.size() < kWorthMapping ? std::nullopt : map_lines(file.fd(), file.size(), block);
}

}  // namespace

bool Buffer::load_file(const std::string& path, Loading how, const Interrupted& interrupted) {
    // Where reading it again fails the text is still that of an earlier version.
    const bool was_read = file_name == path && known_version && known_version->exists();
    file_name = path;
    refused_save.reset();
    // Whatever may come in between.
    if (!was_read) file_trouble = ENOMEM;
    std::optional<InputFile> file = InputFile::open(path, {interrupted});
    std::optional<LineStore> text;
    Ref<TextBlock> block;
    if (file && how == Loading::in_steps) text = map_if_worth_it(*file, block);
    const std::uint64_t mapped = text ? file->size() : 0;
    if (file && !text) text = read_lines(*file);
    if (!text) {
        if (!was_read) note_unread(errno);
        return false;
    }
    lines = std::move(*text);
    saved_lines = lines;
    loading_size = mapped;
    loaded_block = mapped > 0 ? std::move(block) : Ref<TextBlock>();
    cursor_row = cursor_column = view_line = 0;
    modified = false;
    note_read(file->status());
    return true;
}

std::string Buffer::edit_file(const std::string& path, Loading how,
                              const Interrupted& interrupted) {
    if (load_file(path, how, interrupted) || file_trouble == 0) return {};
    return "Cannot read " + path + ": " + reason_of(file_trouble);
}

// What was written to the file while it was mapped is in the text, as it would be
// had it been read a little later; but the lines may have moved.
std::string Buffer::finish_loading() {
    if (loading_size == 0) return {};
    const bool damaged = loaded_block->is_damaged();
    std::string told;
    if (damaged) {
        told =
            file_name + " shrank while it was read: zeros stand for what is gone, write elsewhere";
        note_unread(EIO);
    }
    std::optional<FileVersion> now = FileVersion::of(file_name);
    bool unchanged = now && now->size == loading_size && now->milliseconds() == file_time;
    if (!unchanged || damaged) {
        lines.recount();
        saved_lines.recount();
        for (Snapshot& snapshot : undo_stack) snapshot.lines.recount();
        for (Snapshot& snapshot : redo_stack) snapshot.lines.recount();
        clamp_cursor();
    }
    loading_size = 0;  // when all of it is done: memory may run out before
    loaded_block = {};
    return told;
}

}  // namespace tpu
