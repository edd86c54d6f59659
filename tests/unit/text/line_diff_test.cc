// What two texts differ in.
#include "text/line_diff.h"

#include <gtest/gtest.h>

#include <random>

namespace tpu {
namespace {

LineStore numbered_lines(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += "line " + std::to_string(i) + "\n";
    return LineStore::from_text(text);
}

std::string mended(const LineStore& old, const LineStore& fresh, std::uint64_t* replaced) {
    LineStore text = old;
    *replaced = 0;
    for (const Difference& d : differences(old, fresh)) {
        text.replace(d.new_begin, d.new_begin + d.old_end - d.old_begin,
                     fresh.part(d.new_begin, d.new_end));
        *replaced += d.new_end - d.new_begin + d.old_end - d.old_begin;
    }
    return text.text();
}

TEST(Differences, are_few_where_little_has_changed) {
    const LineStore old = numbered_lines(100'000);
    LineStore fresh = old;
    EXPECT_TRUE(differences(old, fresh).empty());
    // A copy of the end at the begin does not make all between a difference.
    fresh.insert(0, old.part(old.bytes() - 5000, old.bytes()));
    fresh.erase(300'000, 300'010);
    fresh.insert(fresh.bytes(), "end");
    std::uint64_t replaced = 0;
    EXPECT_EQ(mended(old, fresh, &replaced), fresh.text());
    EXPECT_EQ(differences(old, fresh).size(), 3u);
    EXPECT_LT(replaced, 30'000u);
}

TEST(Differences, lead_from_any_text_to_any_other) {
    std::mt19937 random(1);
    for (int round = 0; round < 200; ++round) {
        LineStore old = numbered_lines(static_cast<int>(random() % 8000)), fresh = old;
        for (auto edits = random() % 12; edits > 0; --edits) {
            LineStore& text = edits % 3 == 0 ? old : fresh;
            std::uint64_t from = random() % (text.bytes() + 1);
            std::uint64_t to = std::min<std::uint64_t>(text.bytes(), from + random() % 20'000);
            LineStore part = random() % 2 ? old.part(0, old.bytes() / 3) : text.part(from, to);
            text.replace(from, random() % 2 ? from : to, part);
            if (random() % 2) text.insert(from, "typed");
        }
        std::uint64_t replaced = 0;
        EXPECT_EQ(mended(old, fresh, &replaced), fresh.text());
    }
}

}  // namespace
}  // namespace tpu
