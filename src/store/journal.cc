#include "store/journal.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <utility>

#include "buffer/buffer.h"
#include "lang/stmt_text.h"
#include "os/file_io.h"
#include "os/held_signal.h"
#include "os/system_calls.h"
#include "store/journal_reader.h"

namespace tpu {

namespace {

struct JournalFile {
    Descriptor file;  // none: it cannot be written
    off_t size = 0;
};

// Never through a symbolic link, and never a pipe or a device.
JournalFile open_journal(const std::string& path, int access, Failure& why) {
    JournalFile journal;
    struct stat status;
    journal.file = open_file(path, access | O_APPEND | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY,
                             S_IRUSR | S_IWUSR, why);
    bool usable =
        journal.file && fstat(journal.file.get(), &status) == 0 && S_ISREG(status.st_mode);
    if (!usable) {
        if (journal.file) why.note(ENOTSUP);
        return {};
    }
    journal.size = status.st_size;
    return journal;
}

void put_number(std::string& bytes, std::uint32_t number) {
    for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(number >> shift & 0xff);
}

std::string header() {
    std::string bytes(kJournalMagic);
    put_number(bytes, kJournalVersion);
    return bytes;
}

std::string as_line(std::string_view text) {
    bool is_line = text.find('\n') == std::string_view::npos;
    return (is_line ? std::string(text) : on_one_line(text)) + '\n';
}

// All or nothing: half a record would make those behind it unreadable.
bool append(const JournalFile& journal, std::string_view bytes, Failure& why) {
    HeldSignal size_limit(SIGXFSZ);
    if (write_all(journal.file.get(), bytes, why)) return true;
    static_cast<void>(sys::truncate(journal.file.get(), journal.size));
    return false;
}

// What would come behind the hole could not be replayed.
void end_recording(Buffer& buffer, const Failure& why) {
    buffer.journal_fault = buffer.journal_file + ": " + why.text();
    buffer.journal_fault_told = false;
    tpu_journal_close(buffer);
}

// Makes a journal that holds something ready for more records.
bool continue_text(const JournalFile& journal, Failure& why) {
    char last = '\n';
    int fd = journal.file.get();
    if (lseek(fd, journal.size - 1, SEEK_SET) < 0) return why.note_errno();
    if (read_some(fd, &last, 1, why) != 1) return false;
    return last == '\n' || append(journal, "\n", why);
}

// A record that was cut short when an editor died says nothing and would swallow what
// comes after it.
bool continue_binary(JournalReader& reader, int fd, std::string& note, Failure& why) {
    std::string statement;
    while (reader.next(statement)) {
    }
    if (reader.end() == JournalReader::End::of_file) return true;
    if (reader.end() == JournalReader::End::unknown_version) {
        note = kUnknownJournalVersion;
        return false;
    }
    std::string place = " at byte " + std::to_string(reader.record_start());
    if (reader.end() != JournalReader::End::cut_short) {
        note = "The journal is damaged" + place;
        return false;
    }
    note = "A record of the journal was cut short" + place;
    return sys::truncate(fd, static_cast<off_t>(reader.record_start())) == 0 || why.note_errno();
}

bool make_ready(const JournalFile& journal, bool binary, std::string& note, Failure& why) {
    int fd = journal.file.get();
    if (journal.size == 0) return !binary || tpu_journal_write_header(fd, why);
    JournalReader reader{Descriptor(dup(fd))};
    if (reader.is_binary() != binary) {
        note = binary ? "The file is no binary journal" : "The file is a binary journal";
        return false;
    }
    if (!binary) return continue_text(journal, why);
    if (journal.size >= off_t{kJournalHeader}) return continue_binary(reader, fd, note, why);
    return (sys::truncate(fd, 0) == 0 || why.note_errno()) && tpu_journal_write_header(fd, why);
}

}  // namespace

void add_journal_record(std::string& bytes, std::string_view text) {
    put_number(bytes, static_cast<std::uint32_t>(text.size()));
    bytes += text;
}

bool tpu_journal_write_header(int fd, Failure& why) {
    HeldSignal size_limit(SIGXFSZ);
    return write_all(fd, header(), why);
}

void tpu_journal_append(Buffer* buffer, const std::vector<std::string>& texts) {
    if (!buffer || !buffer->journaling || buffer->journal_file.empty()) return;
    if (texts.empty()) return;
    Failure why;
    JournalFile journal = open_journal(buffer->journal_file, O_WRONLY, why);
    if (!journal.file) return end_recording(*buffer, why);
    std::string bytes;
    if (journal.size == 0) {
        // A text journal must not begin like a binary one.
        bool misleads = !buffer->binary_journal && texts.front().starts_with(kJournalMagic);
        if (buffer->binary_journal) bytes += header();
        if (misleads) bytes += ' ';
    }
    for (const std::string& text : texts) {
        if (buffer->binary_journal) {
            add_journal_record(bytes, text);
        } else {
            bytes += as_line(text);
        }
    }
    if (!append(journal, bytes, why)) end_recording(*buffer, why);
}

std::optional<off_t> tpu_journal_size(const std::string& path) {
    struct stat status;
    if (stat(path.c_str(), &status) == 0) return status.st_size;
    return errno == ENOENT ? std::optional<off_t>(0) : std::nullopt;
}

void tpu_journal_cut(const std::string& path, off_t from, off_t to) noexcept {
    Failure untold;
    JournalFile journal = open_journal(path, O_WRONLY, untold);
    bool is_ours = journal.file && journal.size == from;
    if (is_ours) static_cast<void>(sys::truncate(journal.file.get(), to));
}

bool tpu_journal_open(Buffer& buffer, const std::string& path, bool binary, std::string& note,
                      Failure& why) {
    JournalFile journal = open_journal(path, O_RDWR, why);
    if (journal.size > 0 && buffer.journal_fault.starts_with(path + ": ")) {
        note = "The journal lacks what followed when it could not be written";
        return false;
    }
    if (!journal.file || !make_ready(journal, binary, note, why)) return false;
    buffer.journaling = true;
    buffer.binary_journal = binary;
    buffer.journal_file = path;
    buffer.journal_strayed = false;
    buffer.journal_follower.reset();
    buffer.journal_fault.clear();
    return true;
}

void tpu_journal_close(Buffer& buffer) {
    buffer.journaling = buffer.binary_journal = false;
    buffer.journal_file.clear();
}

}  // namespace tpu
