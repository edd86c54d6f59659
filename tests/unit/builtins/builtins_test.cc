#include <gtest/gtest.h>

#include <set>

#include "builtins/table.h"
#include "lang/builtin.h"
#include "lang/words.h"
#include "text/ascii.h"

namespace tpu {
namespace {

TEST(Builtins, every_row_says_how_it_is_written_and_what_it_does) {
    for (std::span<const Builtin> family : all_builtins().families()) {
        for (const Builtin& row : family) {
            EXPECT_EQ(row.name, ascii::upper(row.name));
            EXPECT_TRUE(row.form.starts_with(row.name)) << row.name;
            EXPECT_TRUE(row.help.ends_with('.')) << row.name;
            bool runs = row.statement || row.function || row.declares != Declares::nothing;
            EXPECT_TRUE(runs) << row.name;
        }
    }
}

TEST(Builtins, no_name_means_two_things) {
    std::set<std::string_view> names;
    for (std::span<const Builtin> family : all_builtins().families()) {
        for (const Builtin& row : family) EXPECT_TRUE(names.insert(row.name).second) << row.name;
    }
    // A word that always stands for its value would hide a built-in without arguments.
    for (std::string_view word : constant_words()) {
        const Builtin* row = all_builtins().find(word);
        EXPECT_FALSE(row && row->bare) << word;
    }
}

}  // namespace
}  // namespace tpu
