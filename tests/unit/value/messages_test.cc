#include "value/messages.h"

#include <gtest/gtest.h>

#include <set>

namespace tpu {
namespace {

TEST(Messages, have_rows_that_are_looked_up_by_their_exact_names) {
    std::set<std::string_view> texts;
    for (const CatalogMessage& row : message_catalog()) {
        EXPECT_EQ(tpu_lookup_message(std::string(row.name)), &row) << row.name;
        EXPECT_TRUE(texts.insert(row.text).second) << row.text;
    }
    for (const char* name : {"", "SUCCESS", "tpu$_success", "TPU$_SUCCES", "TPU$_ZZZ"})
        EXPECT_EQ(tpu_lookup_message(name), nullptr) << name;
}

}  // namespace
}  // namespace tpu
