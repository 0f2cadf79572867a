#include "analysis/StorageMap.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

namespace korvanti {
namespace {

using ::testing::SizeIs;

/// 2026-01-02T03:04:05Z
constexpr std::int64_t start = 1'767'323'045;

StorageMap example() {
    return {.createdAt = instantFromSeconds(start),
            .roots = {{.name = "Home (~)",
                       .path = "/Users/tester",
                       .bytes = 30'000'000,
                       .unreadable = 1,
                       .children =
                           {{{.name = "Library",
                              .path = "/Users/tester/Library",
                              .bytes = 20'000'000,
                              .unreadable = 1,
                              .children = std::vector<MapNode>()},
                             {.name = "film.mov", .path = "/Users/tester/film.mov", .bytes = 10'000'000}}}},
                      {.name = "/Applications", .path = "/Applications"}},
            .duration = 1.5};
}

const std::string exampleText =
    R"json({"createdAt":"2026-01-02T03:04:05Z","roots":[)json"
    R"json({"name":"Home (~)","path":"\/Users\/tester","bytes":30000000,"unreadable":1,"children":[)json"
    R"json({"name":"Library","path":"\/Users\/tester\/Library","bytes":20000000,"unreadable":1,"children":[]},)json"
    R"json({"name":"film.mov","path":"\/Users\/tester\/film.mov","bytes":10000000,"unreadable":0}]},)json"
    R"json({"name":"\/Applications","path":"\/Applications","bytes":0,"unreadable":0}],"duration":1.5})json";

const std::string oneNode = R"({"name":"a","path":"/a","bytes":1,"unreadable":2,"children":[]})";

std::expected<StorageMap, JsonError> mapOf(const std::string& text) {
    const auto json = parseJson(text);
    if (!json)
        return std::unexpected(json.error());
    return storageMapFromJson(*json);
}

std::string withRoot(const std::string& node) {
    return R"({"createdAt":"2026-01-02T03:04:05Z","duration":1,"roots":[)" + node + "]}";
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    const auto place = text.find(from);
    EXPECT_NE(place, std::string::npos) << from;
    return text.replace(place, from.size(), to);
}

TEST(StorageMapTests, isWrittenCompactlyWithItsKeysInTheOrderOfTheRecord) {
    EXPECT_EQ(compactJson(toJson(example())), exampleText);
}

TEST(StorageMapTests, isReadAsItWasWritten) {
    EXPECT_EQ(mapOf(exampleText), example());
}

TEST(StorageMapTests, absentAndEmptyChildrenStayWhatTheyAre) {
    const auto map = mapOf(exampleText);
    ASSERT_TRUE(map);
    const auto& home = map->roots.front();
    EXPECT_EQ(home.children->at(0).children, std::vector<MapNode>());
    EXPECT_EQ(home.children->at(1).children, std::nullopt);
}

TEST(StorageMapTests, childrenThatAreNullAreAbsent) {
    const auto map = mapOf(withRoot(replaced(oneNode, "[]", "null")));
    ASSERT_TRUE(map);
    EXPECT_EQ(map->roots.front().children, std::nullopt);
}

TEST(StorageMapTests, theIdIsThePathAndIsNotWritten) {
    EXPECT_EQ(example().roots.front().id(), "/Users/tester");
    EXPECT_FALSE(toJson(example().roots.front()).contains("id"));
}

TEST(StorageMapTests, theDateLosesItsFraction) {
    auto map = example();
    map.createdAt += std::chrono::microseconds(999'999);
    EXPECT_EQ(compactJson(toJson(map)), exampleText);
}

TEST(StorageMapTests, nodesAreEqualWhenAllOfTheirFieldsAre) {
    const auto node = example().roots.front();
    EXPECT_EQ(node, example().roots.front());
    for (const auto& change : std::vector<void (*)(MapNode&)>{
             [](MapNode& n) { n.name += "x"; }, [](MapNode& n) { n.path += "x"; },
             [](MapNode& n) { ++n.bytes; }, [](MapNode& n) { ++n.unreadable; },
             [](MapNode& n) { n.children.reset(); }, [](MapNode& n) { ++n.children->front().bytes; }}) {
        auto other = node;
        change(other);
        EXPECT_NE(node, other);
    }
}

TEST(StorageMapTests, everyKeyButTheChildrenIsRequired) {
    ASSERT_TRUE(mapOf(withRoot(oneNode)));
    for (const auto* key : {"name", "path", "bytes", "unreadable"})
        EXPECT_FALSE(mapOf(withRoot(replaced(oneNode, key, "other")))) << key;
    for (const auto* key : {"createdAt", "duration", "roots"})
        EXPECT_FALSE(mapOf(replaced(withRoot(oneNode), key, "other"))) << key;
}

TEST(StorageMapTests, aValueOfAnotherTypeIsAnErrorOfTheWhole) {
    const auto damaged = [](const std::string& from, const std::string& to) {
        return !mapOf(replaced(withRoot(oneNode), from, to));
    };
    EXPECT_TRUE(damaged(R"("name":"a")", R"("name":1)"));
    EXPECT_TRUE(damaged(R"("path":"/a")", R"("path":null)"));
    EXPECT_TRUE(damaged(R"("bytes":1)", R"("bytes":"1")"));
    EXPECT_TRUE(damaged(R"("bytes":1)", R"("bytes":1.5)"));
    EXPECT_TRUE(damaged(R"("bytes":1)", R"("bytes":9223372036854775808)"));
    EXPECT_TRUE(damaged(R"("unreadable":2)", R"("unreadable":true)"));
    EXPECT_TRUE(damaged(R"("children":[])", R"("children":{})"));
    EXPECT_TRUE(damaged(R"("children":[])", R"("children":[1])"));
    EXPECT_TRUE(damaged(R"("children":[])", R"("children":[{}])"));
    EXPECT_TRUE(damaged(R"("duration":1)", R"("duration":"1")"));
    EXPECT_TRUE(damaged(R"("duration":1)", R"("duration":1e999)"));
    EXPECT_TRUE(damaged("2026-01-02T03:04:05Z", "2026"));
    EXPECT_TRUE(damaged(R"("roots":[)", R"("roots":[null,)"));
    EXPECT_FALSE(mapOf("[]"));
    EXPECT_FALSE(mapOf("null"));
}

TEST(StorageMapTests, unknownKeysAreIgnored) {
    EXPECT_EQ(mapOf(withRoot(replaced(oneNode, "{", R"({"id":7,"more":{},)"))), mapOf(withRoot(oneNode)));
}

TEST(StorageMapTests, numbersOfAnySizeArePlainData) {
    constexpr auto least = std::numeric_limits<std::int64_t>::min();
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    const StorageMap map = {.roots = {{.name = "a", .path = "/a", .bytes = least, .unreadable = least},
                                      {.name = "b", .path = "/b", .bytes = most, .unreadable = most}},
                            .duration = -1e300};
    EXPECT_EQ(mapOf(compactJson(toJson(map))), map);
}

TEST(StorageMapTests, namesThatAreNoTextAreRepaired) {
    const auto again =
        mapOf(compactJson(toJson(StorageMap{.roots = {{.name = "a\xff\n", .path = "/a\xff\n"}}})));
    ASSERT_TRUE(again);
    EXPECT_EQ(again->roots.front(), (MapNode{.name = "a\uFFFD\n", .path = "/a\uFFFD\n"}));
}

TEST(StorageMapTests, isReadAsDeeplyNestedAsATextMayBe) {
    const auto nested = [](int levels) {
        const auto children = oneNode.find("[]") + 1;
        std::string text;
        for (int level = 0; level < levels; ++level)
            text += oneNode.substr(0, children);
        for (int level = 0; level < levels; ++level)
            text += oneNode.substr(children);
        return withRoot(text);
    };
    // The map and its list of roots are two levels of text, a node with its children two more.
    EXPECT_TRUE(mapOf(nested(255)));
    EXPECT_FALSE(mapOf(nested(256)));
    EXPECT_FALSE(mapOf(nested(20'000)));
}

TEST(StorageMapTests, isReadWithVeryManyChildren) {
    std::string children = oneNode;
    for (int count = 1; count < 30'000; ++count)
        children += "," + oneNode;
    const auto map = mapOf(withRoot(replaced(oneNode, "[]", "[" + children + "]")));
    ASSERT_TRUE(map);
    EXPECT_THAT(*map->roots.front().children, SizeIs(30'000));
}

} // namespace
} // namespace korvanti
