#include "terminal/MapText.h"

#include "support/Environment.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

namespace korvanti {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class MapTextTests : public ::testing::Test {
protected:
    static std::vector<std::string> linesOf(MapNode root) {
        return MapText::lines({.roots = {std::move(root)}});
    }
    /// "n1" with one byte, "n2" with two …
    static std::vector<MapNode> nodes(int count) {
        std::vector<MapNode> all;
        for (int number = 1; number <= count; ++number)
            all.push_back({.name = "n" + std::to_string(number), .bytes = number});
        return all;
    }

    /// Sizes are in the system's language.
    testing::ScopedVariable language{"LC_ALL", "en_US.UTF-8"};
};

TEST_F(MapTextTests, aWholeMapHasItsLinesInOrder) {
    const StorageMap map = {
        .roots = {{.name = "Home (~)",
                   .path = "/Users/tester",
                   .bytes = 123'400'000'000,
                   .unreadable = 3,
                   .children = {{{.name = "Library",
                                  .bytes = 100'000'000'000,
                                  .unreadable = 2,
                                  .children = {{{.name = "Caches", .bytes = 60'250'000'000, .unreadable = 1},
                                                {.name = "Developer", .bytes = 40'000'000}}}},
                                 {.name = "film.mov", .bytes = 20'000'768}}}},
                  {.name = "/Applications", .path = "/Applications", .bytes = 1'000'000'000},
                  {.name = "local", .path = "/usr/local", .unreadable = 1}}};

    EXPECT_THAT(MapText::lines(map),
                ElementsAre("\n■ Home (~) — 123.4 GB (3 folder tak terbaca)", //
                            "     100 GB  Library  [2 tak terbaca]",          //
                            "       60.25 GB  Caches",                        //
                            "          40 MB  Developer",                     //
                            "      20 MB  film.mov",                          //
                            "\n■ /Applications — 1 GB",                       //
                            "\n■ local — 0 bytes (1 folder tak terbaca)"));
}

TEST_F(MapTextTests, aMapWithoutRootsHasNoLines) {
    EXPECT_THAT(MapText::lines({}), IsEmpty());
}

TEST_F(MapTextTests, aRootShowsItsFirstFifteenChildrenAndDoesNotCountTheOthers) {
    EXPECT_THAT(linesOf({.children = nodes(15)}), SizeIs(16));
    const auto lines = linesOf({.children = nodes(16)});
    ASSERT_THAT(lines, SizeIs(16));
    EXPECT_EQ(lines[1], "     1 byte  n1");
    EXPECT_EQ(lines[15], "   15 bytes  n15");
}

TEST_F(MapTextTests, aChildShowsItsFirstFourChildren) {
    const auto lines = linesOf({.children = {{{.name = "child", .children = nodes(5)}, {.name = "next"}}}});
    EXPECT_THAT(lines, ElementsAre("\n■  — 0 bytes", "    0 bytes  child", "         1 byte  n1",
                                   "        2 bytes  n2", "        3 bytes  n3", "        4 bytes  n4",
                                   "    0 bytes  next"));
}

TEST_F(MapTextTests, theThirdLevelIsTheLastThatIsShown) {
    const MapNode deepest = {.name = "deepest"};
    const MapNode third = {.name = "third", .children = {{deepest}}};
    const MapNode second = {.name = "second", .children = {{third}}};
    EXPECT_THAT(linesOf({.name = "first", .children = {{second}}}), SizeIs(3));
}

TEST_F(MapTextTests, theOrderIsThatOfTheMap) {
    const auto lines =
        linesOf({.children = {{{.name = "small", .bytes = 1}, {.name = "large", .bytes = 2}}}});
    EXPECT_EQ(lines[1], "     1 byte  small");
}

TEST_F(MapTextTests, absentAndEmptyChildrenLookTheSame) {
    EXPECT_EQ(linesOf({.name = "a", .children = std::vector<MapNode>()}), linesOf({.name = "a"}));
}

TEST_F(MapTextTests, namesCannotBreakALineOrSpeakToTheTerminal) {
    const std::string odd = "a\n\x1b[31m\xff";
    EXPECT_THAT(linesOf({.name = odd, .children = {{{.name = odd, .children = {{{.name = odd}}}}}}}),
                ElementsAre("\n■ a\uFFFD\uFFFD[31m\uFFFD — 0 bytes", "    0 bytes  a\uFFFD\uFFFD[31m\uFFFD",
                            "        0 bytes  a\uFFFD\uFFFD[31m\uFFFD"));
}

TEST_F(MapTextTests, sizesAreInTheSystemsLanguage) {
    const testing::ScopedVariable indonesian{"LC_ALL", "id_ID.UTF-8"};
    EXPECT_THAT(linesOf({.name = "a", .bytes = 123'400'000}), ElementsAre("\n■ a — 123,4 MB"));
}

TEST_F(MapTextTests, whatNoDiskCanHoldIsPrintedAllTheSame) {
    constexpr auto least = std::numeric_limits<std::int64_t>::min();
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    EXPECT_THAT(linesOf({.name = "a",
                         .bytes = least,
                         .unreadable = least,
                         .children = {{{.name = "b", .bytes = most, .unreadable = most},
                                       {.name = "c", .bytes = -1, .unreadable = -1}}}}),
                ElementsAre("\n■ a — -9.22 EB",
                            "    9.22 EB  b  [9223372036854775807 tak terbaca]", //
                            "    -1 byte  c"));
}

} // namespace
} // namespace korvanti
