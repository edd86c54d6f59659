// A save of which any call fails, or is the last before the editor is killed. After it the
// old or the new text is there in whole.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include "buffer/buffer.h"
#include "editor/recovery.h"
#include "editor/section.h"
#include "os/system_calls.h"
#include "store/buffer_file.h"
#include "store/old_text.h"
#include "support/session.h"
#include "unit/store/temp_folder.h"

namespace tpu {
namespace {

namespace fs = std::filesystem;

enum class Fate {
    fails,
    fails_for_good,
    finds_a_full_disk,
    fails_half_way,
    is_killed,
    is_killed_half_way
};

Fate fate;
int calls_left = 0;
bool unlink_failed = false;

int disturb(sys::Call call) {
    if (--calls_left > 0) return 0;
    const bool half_way = fate == Fate::fails_half_way || fate == Fate::is_killed_half_way;
    const int calls_since = -calls_left - (half_way ? 1 : 0);
    if (calls_since < 0) return call == sys::Call::write ? sys::kHalf : 0;
    if (fate == Fate::is_killed || fate == Fate::is_killed_half_way) raise(SIGKILL);
    const bool needs_room =
        call == sys::Call::write || call == sys::Call::sync || call == sys::Call::truncate;
    if (fate == Fate::finds_a_full_disk) return needs_room ? ENOSPC : 0;
    if (calls_since > 0 && fate != Fate::fails_for_good) return 0;
    unlink_failed = unlink_failed || call == sys::Call::unlink;
    return calls_left % 2 == 0 ? ENOSPC : EIO;
}

const std::string kOld = "old\ntext", kNew = "new\ntext of\nother size";

void link_to_real(const TempFolder& f) {
    fs::create_symlink("real", f.path("file"));
}

// Of what is saved as "file".
struct Kind {
    const char* what;
    void (*prepare)(const TempFolder& folder);
    bool backup = true;
    bool in_place = false;  // the old text may be where opening the file finds it
    bool locked = false;    // its folder takes no files
    bool section = false;
};
const Kind kKinds[] = {
    {"a new file", [](const TempFolder&) {}},
    {"a new file behind a link", link_to_real},
    {"a file", [](const TempFolder& f) { f.write("file", kOld); }},
    {"a file with an older backup",
     [](const TempFolder& f) {
         f.write("file", kOld);
         f.write("file.bak", "older");
     }},
    {"a file without backup", [](const TempFolder& f) { f.write("file", kOld); }, false},
    {"a file behind a link",
     [](const TempFolder& f) {
         f.write("real", kOld);
         link_to_real(f);
     }},
    {"a file with two names",
     [](const TempFolder& f) { fs::create_hard_link(f.write("file", kOld), f.path("other")); },
     true, true},
    {"a file with two names, without backup",
     [](const TempFolder& f) { fs::create_hard_link(f.write("file", kOld), f.path("other")); },
     false, true},
    {"a file in a folder that takes none", [](const TempFolder& f) { f.write("file", kOld); }, true,
     true, true},
    {"a section file", [](const TempFolder&) {}, false, false, false, true},
};

// Permissions bind the tests, even when root runs them.
struct SaveFaults : testing::Test {
    SaveFaults() {
        keep_old_texts_in(state.path("texts"));
        if (geteuid() != 0) return;
        constexpr uid_t kNobody = 65534;
        for (const TempFolder* each : {&folder, &state}) {
            EXPECT_EQ(chown(each->path("").c_str(), kNobody, kNobody), 0);
        }
        EXPECT_EQ(seteuid(kNobody), 0);
    }
    ~SaveFaults() override {
        keep_old_texts_in("");
        [[maybe_unused]] bool is_back = seteuid(getuid()) == 0;
    }

    void lock(bool locked) { chmod(folder.path("").c_str(), locked ? 0555 : 0755); }

    void prepare(const Kind& kind) {
        lock(false);
        for (const TempFolder* each : {&folder, &state}) {
            for (const std::string& name : each->files()) fs::remove_all(each->path(name));
        }
        kind.prepare(folder);
        old = folder.read("file");
        buffer = std::make_unique<Buffer>("b", path);
        buffer->set_text(LineStore::from_text(kNew));
        buffer->backup_on_write = kind.backup;
        buffer->modified = true;
        if (kind.section) prepare_section();
        lock(kind.locked);
    }
    void prepare_section() {
        if (old_section.empty()) {
            EXPECT_TRUE(tpu_section_save(session.editor, path, "after"));
            wanted_section = folder.read("file");
            EXPECT_TRUE(tpu_section_save(session.editor, path, "before"));
            old_section = folder.read("file");
        }
        folder.write("file", old = old_section);
    }
    bool save(const Kind& kind) {
        return kind.section ? tpu_section_save(session.editor, path, "after")
                            : write_file(*buffer, "");
    }
    // True when the call was reached; `done` becomes whether the save succeeded.
    bool save_disturbed(const Kind& kind, int call, bool& done) {
        calls_left = call;
        unlink_failed = false;
        auto run = [&] {
            sys::set_fault(disturb);
            done = save(kind);
            sys::set_fault(nullptr);
        };
        if (fate != Fate::is_killed && fate != Fate::is_killed_half_way) {
            run();
            return calls_left <= 0;
        }
        const pid_t child = fork();
        if (child == 0) {
            run();
            _exit(0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        return WIFSIGNALED(status);
    }

    std::string kept() {
        const std::optional<std::string> name = interrupted_save(path);
        if (!name) return "(nothing kept)";
        EXPECT_EQ(status_of(*name).st_mode & 0777, 0600u);
        std::ifstream in(*name, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    void check(const Kind& kind, bool done, const std::string& wanted) {
        const std::string now = folder.read("file");
        const bool is_whole = now == old || now == wanted;
        EXPECT_TRUE(is_whole || (kind.in_place && kept() == old)) << now << "\n" << kept();
        const bool is_kept = now == old || folder.read("file.bak") == old || kept() == old;
        EXPECT_TRUE(is_kept || !kind.backup || kind.locked || old == "(no file)");
        EXPECT_EQ(now, done ? wanted : now);
        EXPECT_EQ(buffer->text().text(), kNew);
    }
    // Nothing is left that a session does not want, but the old text, and that only where
    // it could not be removed.
    void check_next_save(const Kind& kind, const std::set<std::string>& usual,
                         const std::string& wanted) {
        EXPECT_TRUE(save(kind));
        EXPECT_EQ(folder.read("file"), wanted);
        const bool may_leave =
            unlink_failed || (fate != Fate::fails && fate != Fate::fails_half_way);
        for (const std::string& name : folder.files()) {
            if (usual.contains(name)) continue;
            EXPECT_TRUE(may_leave && kind.in_place && name == ".file.tpu-old") << name;
            EXPECT_EQ(folder.read(name), old);
        }
    }

    int sweep(const Kind& kind) {
        prepare(kind);
        EXPECT_TRUE(save(kind));
        std::set<std::string> usual = folder.files();
        if (kind.backup) usual.insert("file.bak");  // of what the first attempt has left
        int call = 1;
        for (bool reached = true; reached && call < 1000; ++call) {
            SCOPED_TRACE(std::string(kind.what) + ", fate " +
                         std::to_string(static_cast<int>(fate)) + " at call " +
                         std::to_string(call));
            prepare(kind);
            bool done = false;
            reached = save_disturbed(kind, call, done);
            const std::string wanted = kind.section ? wanted_section : kNew;
            check(kind, done, wanted);
            check_next_save(kind, usual, wanted);
            if (HasFailure()) return 0;
        }
        lock(false);
        return call;
    }

    TempFolder folder{folder_in_memory()}, state{folder_in_memory()};
    const std::string path = folder.path("file");
    std::string old, old_section, wanted_section;
    std::unique_ptr<Buffer> buffer;
    Session session;
};

TEST_F(SaveFaults, leave_the_old_or_the_new_text) {
    for (const Kind& kind : kKinds) {
        for (Fate each : {Fate::fails, Fate::fails_for_good, Fate::finds_a_full_disk,
                          Fate::fails_half_way, Fate::is_killed, Fate::is_killed_half_way}) {
            fate = each;
            const int calls = sweep(kind);
            if (HasFailure()) return;
            EXPECT_GE(calls, 6) << kind.what;
        }
    }
}

TEST_F(SaveFaults, are_told_when_the_file_is_opened_again) {
    const Kind& two_names = kKinds[6];
    prepare(two_names);
    session.editor.recovery = std::make_unique<Recovery>(session.editor, "");
    auto greeting = [&] { return session.editor.recovery->greeting(*buffer); };
    fate = Fate::is_killed;
    bool done = false;
    std::string told;
    for (int call = 1; told.empty() && save_disturbed(two_names, call, done); ++call) {
        told = greeting();
    }
    const std::string former = folder.path(".file.tpu-old");
    EXPECT_EQ(told, "A save was cut short; the former text is in " + former);
    {
        const Descriptor in_use = open_left_behind(former);
        EXPECT_EQ(greeting(), "");
    }
    // Nobody else's text is overwritten by the next save that is cut short.
    folder.write("file", "torn");
    EXPECT_TRUE(write_file(*buffer, ""));
    EXPECT_EQ(folder.read(".file.tpu-old"), kOld);
    EXPECT_EQ(greeting(), told);
    fs::copy_file(former, path, fs::copy_options::overwrite_existing);
    EXPECT_EQ(greeting(), "");
}

TEST_F(SaveFaults, in_a_folder_that_takes_no_files_are_few) {
    folder.write("file", kOld);
    lock(true);
    session.buffer->set_text(LineStore::from_text(kNew));
    session.buffer->file_name = path;
    session.press("<CTRL_S>");
    EXPECT_EQ(session.editor.message, "Written " + path + " (no .bak: the folder is read-only)");
    EXPECT_EQ(folder.read("file"), kNew);
    EXPECT_EQ(folder.files(), std::set<std::string>{"file"});
    EXPECT_TRUE(fs::is_empty(state.path("texts")));
    keep_old_texts_in("");
    session.press("<CTRL_S>");
    EXPECT_EQ(session.editor.message, "Write failed: " + path);
    EXPECT_EQ(session.buffer->save_note, "Permission denied");
    lock(false);
}

TEST_F(SaveFaults, of_a_protected_file_are_prevented_by_asking_once) {
    for (bool backup : {true, false}) {
        prepare({"", [](const TempFolder& f) { f.write("file", kOld); }, backup});
        chmod(path.c_str(), 0444);
        const std::string refusal =
            "Write failed: " + path + " (read only; save again to overwrite)";
        auto message_of_save = [&] {
            session.press("<CTRL_S>");
            return session.editor.message;
        };
        session.buffer->file_name = path;
        session.buffer->known_version.reset();
        session.buffer->backup_on_write = backup;
        session.buffer->set_text(LineStore::from_text(kNew));
        EXPECT_EQ(message_of_save(), refusal);
        session.press("x");
        EXPECT_EQ(message_of_save(), refusal);
        EXPECT_EQ(folder.read("file"), kOld);
        EXPECT_EQ(message_of_save(), "Written " + path);
        EXPECT_EQ(folder.read("file"), session.buffer->text().text());
        EXPECT_EQ(folder.read("file.bak"), kOld);
        EXPECT_EQ(session.buffer->backup_on_write, backup);
        EXPECT_EQ(message_of_save(), refusal);
        // A program is not asked, but must keep the text.
        EXPECT_EQ(write_file(*buffer, ""), backup);
    }
}

}  // namespace
}  // namespace tpu
