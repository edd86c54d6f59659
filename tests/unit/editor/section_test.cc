// Section files: what is written, what comes back, and files that are something else.
#include "editor/section.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "app/this_system.h"
#include "commands/vocabulary.h"
#include "store/section_format.h"
#include "support/session.h"
#include "unit/store/temp_folder.h"

namespace tpu {
namespace {

using Lines = std::vector<std::string>;

class Sections : public testing::Test {
  protected:
    void run(TPUEditor& editor, const std::string& source) { editor.parser.compile_text(source); }
    std::string call(const std::string& name) { return name + "(\"" + path + "\")"; }
    std::string binding(TPUEditor& editor, const std::string& map, int code) {
        const KeyBinding* found = editor.key_maps.at(map)->lookup(code);
        return found ? found->text + "/" + found->comment : "none";
    }

    TempFolder folder;
    const std::string path = folder.path("s.sect");
    FakeTerminal terminal;
    FakeClock clock;
    ThisSystem system;
};

TEST_F(Sections, have_their_format_to_the_byte) {
    TPUEditor editor({terminal, clock, system}, vocabulary());
    editor.create_buffer("MAIN", "");
    run(editor, R"(
PROCEDURE zeta ; x:=1 ; IF x THEN y := "two
lines" ; ENDIF ; ENDPROCEDURE
CONSTANT limit := 9; b := 1; A{1} := 2; zeta
PROCEDURE Alpha(one, two)
  RETURN one)");
    editor.parser.procedures["HELD"] = std::make_unique<Procedure>();
    editor.parser.procedures["HELD"]->name = "held";
    KeyMap* map = editor.create_key_map("M");
    map->define_key(300, {"a\\b\nc", {}, "bar | here"});
    map->define_key(10, {"", {}, ""});
    editor.create_key_map("EMPTY");
    KeyMapList* list = editor.create_key_map_list("L", map);
    list->add_first(editor.key_maps["EMPTY"].get());
    list->add_last(nullptr);
    run(editor, "SAVE(\"" + path + "\", \"IDENT\", \"mine\")");
    EXPECT_EQ(editor.message, "SAVE section -> " + path);
    EXPECT_EQ(folder.read("s.sect"),
              "#ZKSECT 1\nIDENT=mine\n"
              "BEGIN PROCEDURES\n"
              "PROCEDURE Alpha(one, two)\nENDPROCEDURE;\n"
              "PROCEDURE held\nENDPROCEDURE;\n"
              "PROCEDURE zeta\nx:=1\nIF x THEN y := \"two\nlines\"\nENDIF\nENDPROCEDURE;\n"
              "END PROCEDURES\n"
              "BEGIN VARIABLES\nA\nB\nX\nY\nEND VARIABLES\n"
              "BEGIN CONSTANTS\nLIMIT\nEND CONSTANTS\n"
              "BEGIN KEYMAPS\nKEYMAP EMPTY\nKEYMAP M\nKEY 10||\nKEY 300|a\\\\b\\nc|bar | here\n"
              "END KEYMAPS\n"
              "BEGIN KEYMAP_LISTS\nLIST L EMPTY M\nEND KEYMAP_LISTS\n"
              "#END\n");
    run(editor, call("SAVE"));
    EXPECT_TRUE(folder.read("s.sect").starts_with("#ZKSECT 1\nIDENT=V1.00-0\n"));
    EXPECT_EQ(folder.files(), std::set<std::string>{"s.sect"});
}

TEST_F(Sections, bring_back_a_session) {
    Session s;
    run(s.editor, R"tpu(
PROCEDURE risky; RETURN "a
END PROCEDURES
ENDPROCEDURE!" & STR(nothing); ENDPROCEDURE
CONSTANT limit := 9; count := 5
DEFINE_KEY("MESSAGE(1)", "F8", "with | bar")
)tpu");
    s.editor.key_maps["TPU$KEY_MAP"]->define_key(400, {"a|b\r\n\\", {}, "c"});
    ASSERT_TRUE(tpu_section_save(s.editor, path, ""));

    Session again({"text"});
    again.editor.key_maps["TPU$KEY_MAP"]->undefine_key(kKeyDown);
    run(again.editor, "count := 7; " + call("RESTORE") + "; x := risky()");
    auto restored = [&](const std::string& name) {
        return variable(again.editor, name)->as_string();
    };
    const std::string keys = std::to_string(s.editor.key_maps["TPU$KEY_MAP"]->bindings.size());
    EXPECT_EQ(again.editor.message,
              "RESTORE section " + path + " (1 proc groups, 1 vars, " + keys + " keys)");
    EXPECT_EQ(restored("X"), "a\nEND PROCEDURES\nENDPROCEDURE!NOTHING");
    EXPECT_EQ(restored("COUNT"), "7") << "a variable that exists keeps its value";
    EXPECT_EQ(binding(again.editor, "TPU$KEY_MAP", kKeyF0 + 8), "MESSAGE(1)/with | bar");
    EXPECT_EQ(binding(again.editor, "TPU$KEY_MAP", 400), "a/b\r\n\\|c") << "a bar cuts a text";
    again.press("<RIGHT><RIGHT>x<DOWN><HOME>y");
    EXPECT_EQ(again.lines(), Lines{"ytexxt"}) << "restored keys do what they did";

    run(again.editor, "limit := 3");
    EXPECT_EQ(again.editor.parser.error_text, "CONSTANT LIMIT may not be reassigned");
    run(again.editor, "CONSTANT limit := 4; CONSTANT limit := 5");
    EXPECT_EQ(restored("LIMIT"), "4") << "its declaration still gives it a value, once";
}

TEST_F(Sections, are_read_whatever_is_in_them) {
    folder.write(
        "s.sect",
        "#ZKSECT 7\nIDENT=\nstray\nBEGIN PROCEDURES\nloose := 1\n"
        "PROCEDURE open_ended\nPROCEDURE good\nnonsense!\nRETURN 1\nENDPROCEDURE; rest\n"
        "ABORT\nPROCEDURE late; after := 1\nENDPROCEDURE;\n"
        "PROCEDURE two\n endprocedure;\nbetween := 1\nprocedure three\nENDPROCEDURE;\n"
        "last := late\nEND PROCEDURES\n"
        "BEGIN VARIABLES\nv w\n\nEND VARIABLES\n"
        "BEGIN KEYMAPS\nKEY 65|lost|\nKEYMAP MY MAP\nKEY x|bad|\nKEY 66\nKEY 67|half\n"
        "KEY 99999999999|far|\nKEY 68|a|b|c\nKEY 260||LEFT\nEND KEYMAPS\n"
        "BEGIN KEYMAP_LISTS\nLIST L NONE MY\nLIST\nEND KEYMAP_LISTS\n#END\nBEGIN VARIABLES\nno\n");
    Session s;
    EXPECT_TRUE(tpu_section_restore(s.editor, path));
    EXPECT_EQ(s.editor.message, "RESTORE section " + path + " (7 proc groups, 1 vars, 3 keys)");
    EXPECT_EQ(s.editor.parser.error_list,
              (Lines{"error: missing ENDPROCEDURE for open_ended (near line 1)",
                     "Unknown command: rest  (line 4)"}));
    EXPECT_TRUE(variable(s.editor, "LOOSE") && variable(s.editor, "V W"));
    EXPECT_TRUE(variable(s.editor, "LAST")) << "an error in one group does not end the rest";
    EXPECT_TRUE(variable(s.editor, "BETWEEN") && s.editor.parser.procedures.contains("THREE"));
    EXPECT_FALSE(variable(s.editor, "NO"));
    EXPECT_EQ(binding(s.editor, "MY MAP", 67) + binding(s.editor, "MY MAP", 68), "half/a/b|c");
    EXPECT_TRUE(s.editor.key_maps["MY MAP"]->lookup(kKeyLeft)->action);
    EXPECT_TRUE(s.editor.key_map_lists["L"]->maps.empty());
}

TEST_F(Sections, have_procedures_that_say_the_same_when_they_are_parsed_late) {
    const char* const bodies[] = {
        "LOCAL n; n := a - -\n 1\nRETURN n",
        "RETURN DEBUG_LINE",
        "x := \"!\" & a; RETURN x",
        "IF a THEN\nRETURN \"; ENDPROCEDURE\"\nENDIF; RETURN 7",
        "nonsense\nRETURN ERROR_LINE",
        "! \"\nRETURN 1 ! \"",
        "RETURN \"open",
        "IF a THEN RETURN 3 -\nENDIF",
    };
    for (const char* body : bodies) {
        std::string source = std::string("PROCEDURE p ( a )\n") + body + "\nENDPROCEDURE;\n";
        folder.write("s.sect", "#ZKSECT 1\nBEGIN PROCEDURES\n" + source + "END PROCEDURES\n#END\n");
        Session late, early;
        tpu_section_restore(late.editor, path);
        run(early.editor, source);
        for (Session* s : {&late, &early}) run(s->editor, "r := p(2)");
        EXPECT_EQ(late.editor.parser.error_list, early.editor.parser.error_list) << body;
        EXPECT_EQ(variable(late.editor, "R")->as_string(), variable(early.editor, "R")->as_string())
            << body;
    }
}

TEST_F(Sections, stay_as_they_were_when_they_cannot_be_written) {
    folder.write("s.sect", "#ZKSECT old");
    Session s;
    {
        FileSizeLimit limit(64);
        EXPECT_FALSE(tpu_section_save(s.editor, path, ""));
    }
    EXPECT_EQ(folder.read("s.sect"), "#ZKSECT old");
    EXPECT_EQ(folder.files(), std::set<std::string>{"s.sect"});
}

TEST_F(Sections, end_at_no_name) {
    Session s, again;
    run(s.editor,
        "l := CREATE_KEY_MAP_LIST(\"list\", CREATE_KEY_MAP(\"a\" & FAO(\"!/\") & \"#END\"))");
    run(s.editor, "m := CREATE_KEY_MAP(\"z\")");
    EXPECT_TRUE(tpu_section_save(s.editor, path, ""));
    EXPECT_TRUE(tpu_section_restore(again.editor, path));
    EXPECT_TRUE(again.editor.key_maps.contains("z") || again.editor.key_maps.contains("Z"));
    EXPECT_EQ(again.editor.key_map_lists.size(), s.editor.key_map_lists.size());
}

TEST(EscapedLines, come_back_as_they_were) {
    const std::string text = "a\\n|\\\nb\r\\\\r\t\xff";
    EXPECT_EQ(tpu_escape_line(text), "a\\\\n|\\\\\\nb\\r\\\\\\\\r\t\xff");
    EXPECT_EQ(tpu_unescape_line(tpu_escape_line(text)), text);
    EXPECT_EQ(tpu_unescape_line("\\x\\"), "\\x\\");
}

}  // namespace
}  // namespace tpu
