// What has changed in a text: the log, and what follows from it.
#include "text/differences.h"

#include <gtest/gtest.h>

#include <random>

namespace tpu {
namespace {

LineStore numbered_lines(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += "line " + std::to_string(i) + "\n";
    return LineStore::from_text(text);
}

// A text that keeps a log, and pictures of it that others have.
struct Logged {
    explicit Logged(int lines = 100'000) : text(numbered_lines(lines)) {}
    void change(std::uint64_t from, std::uint64_t to, const LineStore& part) {
        log.make_room();
        text.replace(from, to, part);
        log.add(from, to - from, part.bytes());
    }
    void go_back_to(std::size_t picture) {
        log.go_back_to(pictures[picture].second);
        text = pictures[picture].first;
    }
    void take_picture() { pictures.emplace_back(text, log.version()); }
    // How much has to be replaced in a picture to bring it up to date.
    std::uint64_t bring_up_to_date(std::size_t picture) {
        auto& [old, version] = pictures[picture];
        LineStore patched = old;
        std::uint64_t replaced = 0;
        for (const Difference& d : differences(old, text, log.since(version))) {
            patched.replace(d.new_begin, d.new_begin + d.old_end - d.old_begin,
                            text.part(d.new_begin, d.new_end));
            replaced += d.new_end - d.new_begin + d.old_end - d.old_begin;
        }
        EXPECT_EQ(patched, text);
        return replaced;
    }

    LineStore text;
    ChangeLog log;
    std::vector<std::pair<LineStore, std::uint64_t>> pictures{{text, log.version()}};
};

TEST(ChangeLog, leads_from_any_version_to_that_of_now) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        std::mt19937 random(seed);
        Logged logged(2000);
        std::uint64_t place = 0;
        for (int i = 0; i < 300; ++i) {
            const std::uint64_t bytes = logged.text.bytes();
            if (random() % 3 == 0) place = random() % (bytes + 1);
            const std::uint64_t from = std::min(place, bytes);
            std::uint64_t to = random() % 2 ? from : std::min(bytes, from + random() % 30);
            const LineStore part = LineStore::from_text(std::string(random() % 4, 'x'));
            logged.change(from, to, part);
            place = from + part.bytes();  // so that much of it is typing
            if (random() % 2) logged.take_picture();
            const std::size_t pictures = logged.pictures.size(),
                              recent = std::min<std::size_t>(pictures, 5);
            if (random() % 10 == 0) logged.go_back_to(pictures - 1 - random() % recent);
            logged.bring_up_to_date(random() % logged.pictures.size());
        }
    }
}

TEST(ChangeLog, finds_little_where_little_has_changed) {
    Logged logged;
    const std::uint64_t bytes = logged.text.bytes();
    logged.change(0, 0, LineStore::from_text("begin"));
    for (int i = 0; i < 1000; ++i) {
        logged.change(bytes / 2 + static_cast<std::uint64_t>(i),
                      bytes / 2 + static_cast<std::uint64_t>(i), LineStore::from_text("x"));
    }
    logged.change(logged.text.bytes(), logged.text.bytes(), LineStore::from_text("end"));
    EXPECT_EQ(logged.log.since(logged.pictures[0].second)->size(), 3u) << "typing is one change";
    EXPECT_EQ(logged.bring_up_to_date(0), 1008u);
    // Going to and fro costs no more each time.
    for (int i = 0; i < 100; ++i) {
        logged.take_picture();
        logged.go_back_to(0);
        logged.go_back_to(logged.pictures.size() - 1);
    }
    EXPECT_EQ(logged.log.since(logged.pictures[1].second)->size(), 100u * 6);
    EXPECT_EQ(logged.bring_up_to_date(0), 1008u);
    EXPECT_EQ(logged.bring_up_to_date(1), 0u);
}

TEST(ChangeLog, that_does_not_reach_back_leaves_what_both_texts_share) {
    Logged logged;
    const LineStore one = LineStore::from_text("1");
    logged.change(1000, 1001, one);
    for (std::size_t i = 0; i < ChangeLog::kMost; ++i)
        logged.change(2000 + i % 2 * 9, 2001 + i % 2 * 9, one);
    EXPECT_FALSE(logged.log.since(logged.pictures[0].second));
    EXPECT_LT(logged.bring_up_to_date(0), 50'000u);
    logged.go_back_to(0);
    EXPECT_EQ(logged.text, numbered_lines(100'000));
    EXPECT_TRUE(logged.log.since(logged.log.version()));
}

}  // namespace
}  // namespace tpu
