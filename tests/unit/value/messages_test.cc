#include "value/messages.h"

#include <gtest/gtest.h>

#include <set>

namespace tpu {
namespace {

TEST(Messages, are_found_in_any_case_and_without_the_prefix) {
    for (const char* code : {"TPU$_STRNOTFOUND", "tpu$_strnotfound", "StrNotFound"})
        EXPECT_EQ(tpu_message_text_for(code), "string not found") << code;
}

TEST(Messages, leave_an_unknown_code_as_it_was_given) {
    for (const char* code : {"", "tpu$_", "tpu$_NoSuch", "NoSuch", "tpu$_tpu$_success", "zzz"})
        EXPECT_EQ(tpu_message_text_for(code), code);
}

TEST(Messages, have_rows_that_are_looked_up_by_their_exact_names) {
    std::set<std::string_view> texts;
    for (const CatalogMessage& row : message_catalog()) {
        EXPECT_EQ(tpu_lookup_message(std::string(row.name)), &row) << row.name;
        EXPECT_TRUE(texts.insert(row.text).second) << row.text;
    }
    for (const char* name : {"", "SUCCESS", "tpu$_success", "TPU$_SUCCES", "TPU$_ZZZ"})
        EXPECT_EQ(tpu_lookup_message(name), nullptr) << name;
}

TEST(Messages, carry_severity_and_text) {
    const CatalogMessage rows[] = {
        {"SUCCESS", 1, "successful completion"},
        {"STRNOTFOUND", 2, "string not found"},
        {"CONTRADEF", 3, "contradictory definition for variable or constant 'name'"},
        {"CONTROLC", 3, "operation aborted by Ctrl/C"},
        {"FAILURE_STATUS", 3, "facility returned failure status"},
        {"NOTMODIFIABLE", 2, "attempt to change unmodifiable buffer 'string'"},
        {"BADKEY", 2, "'keyword' is an invalid keyword"},
        {"NOTDEFINABLE", 2, "that key is not deOnable"},
        {"ACCVIO", 4,
         "access violation, reason mask='xx', virtual address='xxxxxxxx', PC='xxxxxxxx', "
         "PSL='xxxxxxxx'"},
        {"ATPROCLINE", 1, "at line 'integer' of procedure 'name'"},
        {"FAILURE", 4, "internal Marrowind failure detected"},
        {"READLINEHELP", 1,
         "Marrowind is executing the READ_LINE built-in function, enter text or cancel"},
        {"REQUIRESDECW", 3, "feature requires the Marrowind DECwindows screen updater"},
        {"REQUIRESMOTIF", 3, "feature requires the Marrowind Motif screen updater"},
    };
    for (const CatalogMessage& expected : rows) {
        const CatalogMessage* row = tpu_lookup_message("TPU$_" + std::string(expected.name));
        ASSERT_NE(row, nullptr) << expected.name;
        EXPECT_EQ(row->severity, expected.severity) << expected.name;
        EXPECT_EQ(row->text, expected.text);
    }
}

}  // namespace
}  // namespace tpu
