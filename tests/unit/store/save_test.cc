#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <random>
#include <thread>

#include "buffer/buffer.h"
#include "os/file_traits.h"
#include "store/buffer_file.h"
#include "store/temp_file.h"
#include "text/charset.h"
#include "unit/store/temp_folder.h"
#ifdef __linux__
#include <sys/xattr.h>
#endif

namespace tpu {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;
using Files = std::set<std::string>;

// A modified buffer with these lines that belongs to no file.
struct Text : Buffer {
    explicit Text(const Lines& text) : Buffer("TEXT", "none") {
        set_text(LineStore(text));
        modified = true;
        file_time = 7;
    }
    // Still as it was constructed.
    bool is_unsaved() const { return modified && file_name == "none" && file_time == 7; }
};

bool write_text(const Lines& lines, const std::string& path) {
    Text text(lines);
    return write_file(text, path);
}

void expect_failure(Text& text, const std::string& path) {
    EXPECT_FALSE(write_file(text, path)) << path;
    EXPECT_TRUE(text.is_unsaved()) << path;
}

TEST(Save, writes_lines_with_line_feeds_between_them) {
    TempFolder folder;
    for (const Lines& lines :
         {Lines{""}, {"a", "b"}, {"", ""}, {std::string("\0\r\xff", 3), "a\nb", ""}}) {
        Text text(lines);
        std::string bytes = text.text().text(0, text.text().bytes());
        ASSERT_TRUE(write_file(text, folder.path("file")));
        EXPECT_EQ(folder.read("file"), bytes);
        EXPECT_FALSE(text.modified);
        EXPECT_EQ(text.file_name, folder.path("file"));
        EXPECT_EQ(text.file_time, file_mtime_ms(folder.path("file")));
    }
    Text text({"by its own name"});
    text.file_name = folder.path("file");
    EXPECT_TRUE(write_file(text, ""));
    EXPECT_EQ(folder.read("file"), "by its own name");
}

TEST(Save, writes_long_runs_and_scattered_changes_in_order) {
    TempFolder folder;
    std::string bytes;
    for (int i = 0; i < 300000; ++i) bytes += std::to_string(i) + "\n";
    Text text({});
    text.set_text(LineStore::from_text(bytes));
    std::mt19937 random(5);
    for (int i = 0; i < 300; ++i) {
        std::size_t at = random() % (bytes.size() / 4);
        text.edit(at, at, "<changed>");
        bytes.insert(at, "<changed>");
    }
    ASSERT_TRUE(write_file(text, folder.path("file")));
    EXPECT_TRUE(folder.read("file") == bytes);
}

TEST(Save, keeps_one_backup_of_the_text_before) {
    TempFolder folder;
    Text text({"1"});
    ASSERT_TRUE(write_file(text, folder.path("file")));
    EXPECT_EQ(folder.files(), Files{"file"});
    for (const char* line : {"2", "3"}) {
        text.set_text(LineStore({line}));
        ASSERT_TRUE(write_file(text, ""));
    }
    EXPECT_EQ(folder.read("file"), "3");
    EXPECT_EQ(folder.read("file.bak"), "2");
    text.backup_on_write = false;
    ASSERT_TRUE(write_file(text, folder.write("other", "before")));
    EXPECT_EQ(folder.read("other"), "3");
    EXPECT_EQ(folder.files(), (Files{"file", "file.bak", "other"}));
}

TEST(Save, keeps_the_mode_and_leaves_a_new_file_to_the_umask) {
    TempFolder folder;
    std::string path = folder.write("file", "old");
    for (mode_t mode : {0640u, 0444u, 0606u}) {
        chmod(path.c_str(), mode);
        ASSERT_TRUE(write_text({"new"}, path));
        EXPECT_EQ(status_of(path).st_mode & 07777, mode);
        EXPECT_EQ(status_of(path + ".bak").st_mode & 07777, mode);
    }
    mode_t before = umask(027);
    ASSERT_TRUE(write_text({"new"}, folder.path("fresh")));
    umask(before);
    EXPECT_EQ(status_of(folder.path("fresh")).st_mode & 07777, 0640u);
}

// Ways in which "file" can be a second name of the file "real".
struct Alias {
    const char* what;
    void (*make)(const TempFolder& folder);
};
const Alias kAliases[] = {
    {"relative link", [](const TempFolder& f) { fs::create_symlink("real", f.path("file")); }},
    {"absolute link",
     [](const TempFolder& f) { fs::create_symlink(f.path("real"), f.path("file")); }},
    {"hard link",
     [](const TempFolder& f) { fs::create_hard_link(f.path("real"), f.path("file")); }},
    // Only the name itself; for what must hold of any file.
    {"no alias", [](const TempFolder& f) { fs::rename(f.path("real"), f.path("file")); }},
};

TEST(Save, updates_the_file_behind_a_link_and_keeps_the_link) {
    for (const Alias& alias : kAliases) {
        if (alias.what == std::string("no alias")) continue;
        for (bool backup : {true, false}) {
            SCOPED_TRACE(alias.what);
            TempFolder folder;
            folder.write("real", "a longer old text");
            chmod(folder.path("real").c_str(), 0640);
            alias.make(folder);
            struct stat before;
            lstat(folder.path("file").c_str(), &before);
            const ino_t number = status_of(folder.path("real")).st_ino;
            Text text({"new"});
            text.backup_on_write = backup;
            ASSERT_TRUE(write_file(text, folder.path("file")));
            EXPECT_EQ(folder.read("real"), "new");
            struct stat after;
            lstat(folder.path("file").c_str(), &after);
            EXPECT_EQ(after.st_ino, before.st_ino);
            EXPECT_EQ(after.st_nlink, before.st_nlink);
            // Whoever reads the file behind a symbolic link meanwhile sees all of a text.
            EXPECT_EQ(status_of(folder.path("real")).st_ino != number, S_ISLNK(after.st_mode));
            Files files = {"file", "real"};
            if (backup) {
                files.insert("file.bak");
                EXPECT_EQ(folder.read("file.bak"), "a longer old text");
                EXPECT_EQ(status_of(folder.path("file.bak")).st_mode & 07777, 0640u);
            }
            EXPECT_EQ(folder.files(), files);
        }
    }
}

TEST(Save, does_not_write_through_a_backup_that_is_linked_to_the_file) {
    TempFolder folder;
    folder.write("file", "old");
    fs::create_hard_link(folder.path("file"), folder.path("file.bak"));
    ASSERT_TRUE(write_text({"new"}, folder.path("file")));
    EXPECT_EQ(folder.read("file"), "new");
    EXPECT_EQ(folder.read("file.bak"), "old");
}

TEST(Save, creates_the_file_that_a_link_waits_for) {
    TempFolder folder;
    fs::create_symlink("real", folder.path("file"));
    ASSERT_TRUE(write_text({"new"}, folder.path("file")));
    EXPECT_EQ(folder.read("real"), "new");
    EXPECT_EQ(folder.files(), (Files{"file", "real"}));
}

#ifdef __linux__
TEST(Save, replaces_a_file_with_extended_attributes_by_one_that_has_them) {
    TempFolder folder;
    std::string path = folder.write("file", "old");
    // User, a user by number, group, mask and others, each with its rights.
    const std::string list(
        "\2\0\0\0\1\0\6\0\xff\xff\xff\xff\2\0\4\0\x39\x30\0\0"
        "\4\0\0\0\xff\xff\xff\xff\x10\0\4\0\xff\xff\xff\xff"
        "\x20\0\0\0\xff\xff\xff\xff",
        44);
    auto set = [&](const char* name, const std::string& value) {
        return setxattr(path.c_str(), name, value.data(), value.size(), 0) == 0;
    };
    if (!set("user.test", "x") || !set("system.posix_acl_access", list)) GTEST_SKIP();
    const std::optional<FileTraits> before = traits_of(path);
    const ino_t number = status_of(path).st_ino;
    ASSERT_TRUE(write_text({"new"}, path));
    EXPECT_EQ(traits_of(path), before);
    EXPECT_EQ(before->attributes.size(), 2u);
    EXPECT_EQ(folder.read("file"), "new");
    EXPECT_EQ(folder.read("file.bak"), "old");
    EXPECT_EQ(status_of(path + ".bak").st_ino, number);
}
#endif

TEST(Save, of_a_long_name_shortens_the_names_beside_it) {
    constexpr std::size_t kLongest = 255;
    for (std::size_t size = 250; size <= kLongest; ++size) {
        for (bool linked : {false, true}) {
            TempFolder folder;
            std::string name(size % 2, 'x');
            while (name.size() < size) name += "\xc3\xa4";
            folder.write(name, "old");
            if (linked) fs::create_hard_link(folder.path(name), folder.path("other"));
            for (const char* line : {"new", "newer"}) {
                ASSERT_TRUE(write_text({line}, folder.path(name))) << size;
            }
            Files others = folder.files();
            others.erase(name);
            others.erase("other");
            ASSERT_EQ(others.size(), 1u);
            const std::string backup = *others.begin();
            EXPECT_EQ(folder.read(backup), "new");
            EXPECT_TRUE(backup.ends_with(".bak"));
            const std::string begin = backup.substr(0, backup.find_first_of("~."));
            EXPECT_TRUE(name.starts_with(begin));
            EXPECT_EQ(cut_character(begin), 0u);
        }
    }
}

TEST(Save, clears_what_a_killed_one_has_left_and_nothing_else) {
    TempFolder folder;
    const std::string path = folder.write("file", "old");
    folder.write(".tpu-user", "");
    folder.write(".file.tpu-12345678", "");
    Failure why;
    auto left = std::make_unique<TempFile>(path, why);
    Files files = folder.files();
    ASSERT_TRUE(write_text({"new"}, path));
    files.insert("file.bak");
    EXPECT_EQ(folder.files(), files);  // a session is still writing it
    const std::string name = left->name();
    left->keep();
    left.reset();
    EXPECT_EQ(folder.files(), files);
    ASSERT_TRUE(write_text({"new"}, path));
    files.erase(fs::path(name).filename().string());
    EXPECT_EQ(folder.files(), files);
}

TEST(Save, that_fails_half_way_leaves_the_old_text_and_no_other_file) {
    for (const Alias& alias : kAliases) {
        for (bool backup : {true, false}) {
            SCOPED_TRACE(alias.what);
            TempFolder folder;
            folder.write("real", "old text");
            alias.make(folder);
            Files files = folder.files();
            Text text({std::string(1000, 'x'), std::string(300000, 'y')});
            text.backup_on_write = backup;
            {
                FileSizeLimit limit(150000);
                expect_failure(text, folder.path("file"));
            }
            EXPECT_EQ(folder.read("file"), "old text");
            Files left = folder.files();
            if (left.erase("file.bak") > 0) {
                EXPECT_TRUE(backup);
                EXPECT_EQ(folder.read("file.bak"), "old text");
            }
            EXPECT_EQ(left, files);
        }
    }
}

TEST(Save, that_fails_half_way_removes_the_new_file) {
    TempFolder folder;
    fs::create_symlink("real", folder.path("link"));
    Text text({std::string(300000, 'y')});
    FileSizeLimit limit(150000);
    expect_failure(text, folder.path("file"));
    EXPECT_EQ(text.save_note, "File too large");
    expect_failure(text, folder.path("link"));
    EXPECT_EQ(folder.files(), Files{"link"});
}

TEST(Save, fails_where_no_file_or_no_backup_can_be_made) {
    TempFolder folder;
    Text text({"new"});
    expect_failure(text, folder.path(""));
    expect_failure(text, folder.path("nothing/file"));
    expect_failure(text, folder.write("file", "old") + "/below");
    text.file_name.clear();
    EXPECT_FALSE(write_file(text, ""));
    text.file_name = "none";

    mkdir(folder.path("file.bak").c_str(), 0700);
    mkdir(folder.path("link.bak").c_str(), 0700);
    fs::create_symlink("file", folder.path("link"));
    expect_failure(text, folder.path("file"));
    expect_failure(text, folder.path("link"));
    EXPECT_EQ(folder.read("file"), "old");
    EXPECT_EQ(folder.files(), (Files{"file", "file.bak", "link", "link.bak"}));
}

TEST(Save, gives_devices_and_pipes_the_text_and_makes_no_backup) {
    TempFolder folder;
    EXPECT_TRUE(write_text({"new"}, "/dev/null"));
    EXPECT_NE(access("/dev/null.bak", F_OK), 0);
    if (access("/dev/full", W_OK) == 0) {
        Text text({"new"});
        expect_failure(text, "/dev/full");
        EXPECT_EQ(text.save_note, "No space left on device");
    }
    std::string pipe = folder.path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    Text unread({"new"});
    expect_failure(unread, pipe);
    int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
    EXPECT_TRUE(write_text({"new"}, pipe));
    char got[4] = {};
    EXPECT_EQ(read(reader, got, 4), 3);
    EXPECT_STREQ(got, "new");
    close(reader);
    EXPECT_EQ(folder.files(), Files{"pipe"});
}

TEST(Save, to_standard_output_adds_to_what_it_was_redirected_to) {
    TempFolder folder;
    std::string path = folder.write("out", "before ");
    fflush(stdout);
    int saved = dup(STDOUT_FILENO), out = open(path.c_str(), O_WRONLY);
    lseek(out, 0, SEEK_END);
    dup2(out, STDOUT_FILENO);
    bool written = write_text({"new"}, "/dev/stdout");
    dup2(saved, STDOUT_FILENO);
    close(saved);
    close(out);
    EXPECT_TRUE(written);
    EXPECT_EQ(folder.read("out"), "before new");
}

}  // namespace
}  // namespace tpu
