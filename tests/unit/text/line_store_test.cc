#include "text/line_store.h"

#include <gtest/gtest.h>

#include <random>

namespace tpu {
namespace {

using Lines = std::vector<std::string>;

// The same text twice: as a LineStore and as a plain vector of lines.
struct Twins {
    LineStore store;
    Lines lines{""};

    void expect_same() const {
        store.check_invariants();
        ASSERT_EQ(store.size(), lines.size());
        ASSERT_EQ(store.lines(), lines);
    }
};

class RandomEdits : public testing::TestWithParam<unsigned> {
  protected:
    std::uint64_t below(std::uint64_t n) { return n == 0 ? 0 : random_() % n; }

    std::string some_text(bool feeds) {
        std::string text;
        std::uint64_t size = below(10) == 0 ? below(120) : below(6);
        for (std::uint64_t i = 0; i < size; ++i) {
            text += feeds && below(6) == 0 ? '\n' : static_cast<char>('a' + below(26));
        }
        return text;
    }

    void edit(Twins& t) {
        std::uint64_t row = below(t.lines.size());
        auto line = t.lines.begin() + static_cast<std::ptrdiff_t>(row);
        std::uint64_t column = below(line->size() + 1);
        std::uint64_t offset = t.store.offset({row, column});
        switch (below(9)) {
            case 0:
            case 1: {  // bytes into a line, now and then with a line feed among them
                std::string text = some_text(below(8) == 0);
                t.store.insert(offset, text);
                line->insert(column, text);
                break;
            }
            case 2: {  // split
                t.store.insert_break(offset);
                std::string rest = line->substr(column);
                line->resize(column);
                t.lines.insert(line + 1, rest);
                break;
            }
            case 3: {  // join or erase within the line
                if (row + 1 < t.lines.size() && below(2) == 0) {
                    std::uint64_t end = t.store.offset({row, line->size()});
                    t.store.erase(end, end + 1);
                    *line += *(line + 1);
                    t.lines.erase(line + 1);
                } else {
                    std::uint64_t count = below(line->size() - column + 1);
                    t.store.erase(offset, offset + count);
                    line->erase(column, count);
                }
                break;
            }
            case 4: {
                std::string text = some_text(false);
                t.store.set(row, text);
                *line = text;
                break;
            }
            case 5: {
                std::string text = some_text(false);
                t.store.insert_line(row, text);
                t.lines.insert(line, text);
                break;
            }
            case 6:
                t.store.erase_line(row);
                t.lines.erase(line);
                if (t.lines.empty()) t.lines.emplace_back();
                break;
            case 7: {  // a text of several lines
                Lines fresh;
                for (std::uint64_t i = below(30); i > 0; --i) fresh.push_back(some_text(false));
                if (fresh.empty()) fresh.emplace_back();
                t.store.insert(offset, LineStore(fresh));
                std::string rest = line->substr(column);
                line->resize(column);
                *line += fresh.front();
                t.lines.insert(line + 1, fresh.begin() + 1, fresh.end());
                t.lines[row + fresh.size() - 1] += rest;
                break;
            }
            default: {  // erase across lines
                std::uint64_t last = std::min<std::uint64_t>(row + below(12), t.lines.size() - 1);
                std::uint64_t to = below(t.lines[last].size() + 1);
                if (last == row && to < column) to = column;
                t.store.erase(offset, t.store.offset({last, to}));
                std::string joined = line->substr(0, column) + t.lines[last].substr(to);
                t.lines.erase(line, line + static_cast<std::ptrdiff_t>(last - row));
                t.lines[row] = joined;
                break;
            }
        }
    }

    std::mt19937_64 random_{GetParam()};
};

TEST_P(RandomEdits, leave_the_same_lines_as_in_a_vector) {
    Twins now;
    std::vector<Twins> snapshots;
    for (int i = 0; i < 3000; ++i) {
        if (below(20) == 0) snapshots.push_back(now);
        if (below(40) == 0 && !snapshots.empty()) now = snapshots[below(snapshots.size())];
        edit(now);
        now.expect_same();
        if (HasFatalFailure()) return;
    }
    for (const Twins& snapshot : snapshots) {
        snapshot.expect_same();
        EXPECT_EQ(snapshot.store == now.store, snapshot.lines == now.lines);
        EXPECT_TRUE(snapshot.store == LineStore(snapshot.lines));
    }
}

TEST_P(RandomEdits, keep_offsets_positions_chunks_and_searches_right) {
    Twins now;
    for (int i = 0; i < 400; ++i) edit(now);
    now.expect_same();
    std::string flat;
    for (std::size_t row = 0; row < now.lines.size(); ++row) {
        if (row > 0) flat += '\n';
        EXPECT_EQ(now.store.row_start(row), flat.size());
        EXPECT_EQ(now.store.length(row), now.lines[row].size());
        for (std::uint64_t column = 0; column <= now.lines[row].size(); ++column) {
            Position here{row, column};
            EXPECT_EQ(now.store.position(flat.size() + column), here);
            EXPECT_EQ(now.store.slice(here, 5), now.lines[row].substr(column, 5));
        }
        flat += now.lines[row];
    }
    EXPECT_EQ(now.store.bytes(), flat.size());
    EXPECT_EQ(now.store.text(0, flat.size()), flat);
    for (int i = 0; i < 200; ++i) {
        std::string needle = some_text(below(5) == 0).substr(0, below(4) + 1);
        if (needle.empty()) continue;
        std::uint64_t from = below(flat.size() + 1);
        std::optional<std::uint64_t> expected;
        std::uint64_t start = 0;
        for (const std::string& line : now.lines) {
            std::uint64_t skip = from > start ? from - start : 0;
            std::size_t hit = skip <= line.size() ? line.find(needle, skip) : std::string::npos;
            if (hit != std::string::npos) {
                expected = start + hit;
                break;
            }
            start += line.size() + 1;
        }
        EXPECT_EQ(now.store.find(needle, from), expected) << needle << " from " << from;
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomEdits, testing::Range(1u, 9u));

TEST(LineStore, has_one_empty_line_when_there_is_no_text) {
    LineStore store;
    EXPECT_EQ(store.size(), 1u);
    EXPECT_EQ(store.length(0), 0u);
    EXPECT_EQ(store.position(0), (Position{0, 0}));
    EXPECT_EQ(store, LineStore(Lines{}));
    store.insert_break(0);
    EXPECT_EQ(store.lines(), (Lines{"", ""}));
}

TEST(LineStore, keeps_line_feeds_as_text_apart_from_line_breaks) {
    LineStore text(Lines{"a\nb", "c"});
    EXPECT_EQ(text.size(), 2u);
    EXPECT_EQ(text[0], "a\nb");
    EXPECT_FALSE(text == LineStore(Lines{"a", "b\nc"}));
    EXPECT_EQ(text.find("a\nb", 0), 0u);
    EXPECT_EQ(text.find("b\nc", 0), std::nullopt);
}

TEST(LineStore, shares_what_a_copy_does_not_change) {
    LineStore store = LineStore::from_text(std::string(100'000, 'x'));
    LineStore copy = store;
    EXPECT_TRUE(copy.is_same_version(store));
    copy.insert(50'000, "y");
    EXPECT_FALSE(copy == store);
    EXPECT_EQ(store.text(49'999, 50'002), "xxx");
    copy.erase(50'000, 50'001);
    EXPECT_FALSE(copy.is_same_version(store));
    EXPECT_TRUE(copy == store);
}

TEST(LineStore, joins_small_pieces_of_many_edits) {
    LineStore store = LineStore::from_text(std::string(200, '\n'));
    for (std::uint64_t row = 0; row < 200; ++row) store.insert(store.row_start(row), "> ");
    store.check_invariants();
    EXPECT_EQ(store[150], "> ");
    std::size_t spans = 0;
    store.for_each_span(0, store.bytes(), [&](std::string_view) { return ++spans, true; });
    EXPECT_LT(spans, 200u);  // 400 without
}

}  // namespace
}  // namespace tpu
