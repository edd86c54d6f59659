#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "app/signals.h"
#include "buffer/buffer.h"
#include "os/file_io.h"
#include "os/terminal_state.h"
#include "store/buffer_file.h"
#include "store/read_file.h"
#include "text/text_block.h"
#include "unit/store/temp_folder.h"

namespace tpu {
namespace {

Failure why;

using Lines = std::vector<std::string>;

// A text in which `mark` begins one byte before every border that reading in parts may have.
std::string text_with_borders(const std::string& mark) {
    std::string text;
    for (std::size_t border = 64; border <= std::size_t{2} << 20; border *= 2) {
        while (text.size() < border - 1) text += text.size() % 61 == 0 ? '\n' : 'x';
        text += mark;
    }
    return text + "end\r";
}

// What loading makes of a text, put down byte by byte.
Lines split(const std::string& text) {
    Lines lines(1);
    for (char c : text) {
        if (c != '\n') {
            lines.back() += c;
            continue;
        }
        if (lines.back().ends_with('\r')) lines.back().pop_back();
        lines.emplace_back();
    }
    if (lines.back().ends_with('\r')) lines.back().pop_back();
    if (text.ends_with('\n')) lines.pop_back();
    return lines;
}

// Compares without taking every line out of the text.
void expect_lines(const LineStore& text, const Lines& lines) {
    EXPECT_EQ(text.size(), lines.size());
    EXPECT_TRUE(text == LineStore(lines));
    text.check_invariants();
}

TEST(Load, splits_at_line_feeds_and_drops_one_cr_at_a_line_end) {
    EXPECT_EQ(split("a\r\nb\rc\n\r"), (Lines{"a", "b\rc", ""}));
    EXPECT_EQ(split("a\r\r\n\n"), (Lines{"a\r", ""}));
    TempFolder folder;
    for (std::string text : {std::string("a\0b\n\xff\xc3\n", 7), std::string("\n\rc\r\n")}) {
        Buffer buffer("B", "");
        ASSERT_TRUE(load_file(buffer, folder.write("file", text)));
        EXPECT_EQ(buffer.text().lines(), split(text)) << testing::PrintToString(text);
    }
}

// Of up to six characters.
std::vector<std::string> all_short_texts() {
    std::vector<std::string> texts = {""};
    for (std::size_t i = 0; texts[i].size() < 6; ++i) {
        for (char c : {'a', '\n', '\r'}) texts.push_back(texts[i] + c);
    }
    return texts;
}

TEST(Load, of_every_short_text_gives_its_lines_whichever_way_it_is_read) {
    TempFolder folder;
    for (const std::string& text : all_short_texts()) {
        SCOPED_TRACE(testing::PrintToString(text));
        std::string path = folder.write("file", text);
        Buffer buffer("B", "");
        ASSERT_TRUE(load_file(buffer, path));
        EXPECT_EQ(buffer.text().lines(), split(text));
        Descriptor file = open_file(path, O_RDONLY);
        Ref<TextBlock> block;
        if (std::optional<LineStore> mapped = map_lines(file.get(), text.size(), block)) {
            EXPECT_EQ(mapped->lines(), split(text));
        }
#ifdef __linux__
        // A pipe that gives one byte at a time.
        int ends[2];
        ASSERT_EQ(pipe2(ends, O_DIRECT), 0);
        for (char c : text) EXPECT_EQ(write(ends[1], &c, 1), 1);
        close(ends[1]);
        ASSERT_TRUE(load_file(buffer, "/dev/fd/" + std::to_string(ends[0])));
        EXPECT_EQ(buffer.text().lines(), split(text));
        close(ends[0]);
#endif
    }
}

TEST(Load, finds_pairs_wherever_the_parts_of_a_large_file_meet) {
    TempFolder folder;
    for (const char* mark : {"\r\n", "\r\r\n", "\rx"}) {
        std::string text = text_with_borders(mark);
        Buffer buffer("B", "");
        ASSERT_TRUE(load_file(buffer, folder.write("file", text)));
        SCOPED_TRACE(testing::PrintToString(mark));
        expect_lines(buffer.text(), split(text));
    }
}

TEST(Load, of_what_never_ends_fails) {
    std::optional<InputFile> zeros = InputFile::open("/dev/zero", why);
    ASSERT_TRUE(zeros);
    EXPECT_FALSE(read_lines(*zeros, why, std::uint64_t{1} << 20));
    EXPECT_EQ(why.text(), "File too large");
}

void detach_all() {
    while (!TextBlock::detach_some()) {
    }
}

TEST(Load, in_steps_gives_the_same_lines_and_owns_them_once_detached) {
    TempFolder folder;
    for (const char* mark : {"\r\n", "\rx", "\n"}) {
        std::string text = text_with_borders(mark) + (*mark == '\n' ? "x\n" : "x");
        std::string path = folder.write("file", text);
        Buffer buffer("B", "");
        ASSERT_TRUE(load_file(buffer, path, Loading::in_steps));
        EXPECT_EQ(buffer.loading_size > 0, *mark == '\n' || mark[1] == 'x');
        expect_lines(buffer.text(), split(text));
        detach_all();
        std::filesystem::resize_file(path, 3);
        finish_loading(buffer);
        EXPECT_EQ(buffer.loading_size, 0u);
        expect_lines(buffer.text(), split(text));
    }
}

TEST(Load, in_steps_stays_sound_when_the_file_is_changed_meanwhile) {
    TempFolder folder;
    std::string text = text_with_borders("x") + "x";
    std::string path = folder.write("file", text);
    // A change in the same tick of the system's clock would not show.
    using std::filesystem::last_write_time;
    last_write_time(path, last_write_time(path) - std::chrono::seconds(1));
    Buffer buffer("B", "");
    ASSERT_TRUE(load_file(buffer, path, Loading::in_steps));
    ASSERT_GT(buffer.loading_size, 0u);
    buffer.push_undo(true);
    buffer.copy_text("typed");
    {
        std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
        file.seekp(1'500'000);
        file << "\n\n\nnew\n";
    }
    detach_all();
    finish_loading(buffer);
    buffer.text().check_invariants();
    EXPECT_NE(buffer.text().find("new", 0), std::nullopt);
    EXPECT_TRUE(buffer.undo());
    std::string now = folder.read("file");
    expect_lines(buffer.text(), split(now));
}

#ifdef __linux__
TEST(Load, in_steps_has_zeros_for_what_the_file_has_lost_meanwhile) {
    TempFolder folder;
    std::string text = text_with_borders("x") + "x";
    std::string path = folder.write("file", text);
    Buffer buffer("B", "");
    ASSERT_TRUE(load_file(buffer, path, Loading::in_steps));
    ASSERT_GT(buffer.loading_size, 0u);
    handle_faults();
    std::filesystem::resize_file(path, 100'000);
    EXPECT_EQ(buffer.text().find("none of that", 0), std::nullopt);
    detach_all();
    EXPECT_TRUE(finish_loading(buffer).starts_with(path + " shrank while it was read"));
    buffer.text().check_invariants();
    EXPECT_EQ(buffer.text().bytes(), text.size());
    EXPECT_EQ(buffer.text().text(0, 100'000), text.substr(0, 100'000));
    EXPECT_EQ(buffer.text().text(1'000'000, 1'000'002), std::string(2, '\0'));
    EXPECT_FALSE(write_file(buffer, "")) << "what is left is given up for zeros";
    EXPECT_EQ(std::filesystem::file_size(path), 100'000u);
    EXPECT_TRUE(write_file(buffer, folder.path("elsewhere")));
    EXPECT_TRUE(write_file(buffer, "")) << "it is another file now";
}
#endif

TEST(Load, drops_a_final_line_feed_that_fills_up_a_piece) {
    TempFolder folder;
    for (std::size_t size = 16; size <= std::size_t{1} << 20; size *= 2) {
        std::string line(size - 1, 'x');
        Buffer buffer("B", "");
        ASSERT_TRUE(load_file(buffer, folder.write("file", line + "\n")));
        expect_lines(buffer.text(), {line});
    }
}

TEST(Load, reads_a_pipe_of_unknown_size) {
    TempFolder folder;
    std::string text = text_with_borders("\r\n"), pipe = folder.path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    std::thread writer([&] { std::ofstream(pipe, std::ios::binary) << text; });
    Buffer buffer("B", "");
    EXPECT_TRUE(load_file(buffer, pipe));
    writer.join();
    expect_lines(buffer.text(), split(text));
}

TEST(Load, gives_up_on_a_pipe_that_nobody_writes_to_but_not_on_a_slow_writer) {
    TempFolder folder;
    const std::string pipe = folder.path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    constexpr std::chrono::milliseconds kPatience(60);
    EXPECT_FALSE(read_whole(pipe, why, {{}, kPatience}));
    EXPECT_EQ(why.text(), "Nobody writes to the pipe");
    Descriptor writer = open_file(pipe, O_RDWR);
    int looks = 0;
    auto write_late = [&] {
        if (++looks == 4) {
            EXPECT_TRUE(write_all(writer.get(), "text\n", why));
            writer.close();
        }
        return false;
    };
    EXPECT_EQ(read_whole(pipe, why, {write_late, kPatience}), "text\n");
}

TEST(Load, begins_at_the_top_unmodified_and_keeps_the_undo_stack) {
    TempFolder folder;
    std::string path = folder.write("file", "one\ntwo\n");
    timespec times[2] = {{1, 0}, {1234567, 891999999}};
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    Buffer buffer("B", "");
    buffer.copy_text("old text");
    buffer.push_undo(true);
    buffer.view_line = 3;
    ASSERT_TRUE(load_file(buffer, path));
    EXPECT_EQ(buffer.cursor_row + buffer.cursor_column + buffer.view_line, 0u);
    EXPECT_FALSE(buffer.modified);
    EXPECT_EQ(buffer.file_time, 1234567891u);
    EXPECT_EQ(file_mtime_ms(path), 1234567891u);
    EXPECT_EQ(file_mtime_ms(folder.path("nothing")), 0u);
    ASSERT_TRUE(buffer.undo());
    EXPECT_EQ(buffer.text().lines(), Lines{"old text"});
}

TEST(Load, takes_the_name_but_not_the_text_of_what_cannot_be_read) {
    TempFolder folder;
    Lines names = {folder.path(""), folder.path("nothing"), ""};
#ifdef __linux__
    names.push_back("/proc/self/mem");  // opens, but its first page cannot be read
#endif
    for (const std::string& name : names) {
        Buffer buffer("B", "before");
        buffer.copy_text("text");
        EXPECT_FALSE(load_file(buffer, name)) << name;
        EXPECT_EQ(buffer.file_name, name);
        EXPECT_EQ(buffer.text().lines(), Lines{"text"});
        EXPECT_TRUE(buffer.modified);
        EXPECT_EQ(buffer.cursor_column, 4u);
    }
}

}  // namespace
}  // namespace tpu
