#include "providers/Catalog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace korvanti {
namespace {

using Kind = CleanupAction::Kind;
using ConditionKind = CatalogRule::AppCondition::Kind;

constexpr std::array<const char*, 13> columns = {
    "number",       "path",        "title",       "detail",   "category",  "safety",          "action",
    "instructions", "recommended", "offloadable", "minBytes", "condition", "bundleIdentifier"};

using Fields = std::vector<std::string>;

Fields split(const std::string& line) {
    Fields fields;
    std::size_t from = 0;
    for (std::size_t tab = line.find('\t'); tab != std::string::npos; tab = line.find('\t', from)) {
        fields.push_back(line.substr(from, tab - from));
        from = tab + 1;
    }
    fields.push_back(line.substr(from));
    return fields;
}

/// The rows of the table file, its first comment line left out.
std::vector<Fields> expectedRows() {
    std::ifstream file(KORVANTI_TEST_DATA "/catalog-rows.tsv", std::ios::binary);
    std::vector<Fields> rows;
    std::string line;
    while (std::getline(file, line))
        if (!line.starts_with('#'))
            rows.push_back(split(line));
    return rows;
}

std::string nameOf(Safety safety) {
    switch (safety) {
    case Safety::regenerable:
        return "regenerable";
    case Safety::costly:
        return "costly";
    case Safety::review:
        return "review";
    case Safety::keep:
        return "keep";
    case Safety::managed:
        return "managed";
    }
    return "?";
}

std::string nameOf(ItemCategory category) {
    switch (category) {
    case ItemCategory::xcode:
        return "xcode";
    case ItemCategory::simulators:
        return "simulators";
    case ItemCategory::android:
        return "android";
    case ItemCategory::projects:
        return "projects";
    case ItemCategory::toolchains:
        return "toolchains";
    case ItemCategory::aiTools:
        return "aiTools";
    case ItemCategory::appCaches:
        return "appCaches";
    case ItemCategory::apps:
        return "apps";
    case ItemCategory::personal:
        return "personal";
    case ItemCategory::system:
        return "system";
    }
    return "?";
}

/// Only the three kinds that a row may have.
std::string nameOf(Kind kind) {
    if (kind == Kind::delete_)
        return "delete";
    if (kind == Kind::trash)
        return "trash";
    return kind == Kind::manual ? "manual" : "?";
}

std::string nameOf(ConditionKind kind) {
    switch (kind) {
    case ConditionKind::appAbsent:
        return "appAbsent";
    case ConditionKind::appPresent:
        return "appPresent";
    case ConditionKind::always:
        return "always";
    }
    return "?";
}

std::string yesOrNo(bool value) {
    return value ? "yes" : "no";
}

Fields fieldsOf(const CatalogRule& rule, std::size_t number) {
    return {std::to_string(number),
            rule.path,
            rule.title,
            rule.detail,
            nameOf(rule.category),
            nameOf(rule.safety),
            nameOf(rule.action.kind),
            rule.action.payload,
            yesOrNo(rule.recommended),
            yesOrNo(rule.offloadable),
            std::to_string(rule.minBytes),
            nameOf(rule.condition.kind),
            rule.condition.bundleIdentifier};
}

std::string_view lastComponent(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

bool hasWildcard(const CatalogRule& rule) {
    return rule.path.contains('*');
}

TEST(CatalogTests, equalsTheTableFieldByField) {
    const std::vector<Fields> rows = expectedRows();
    const std::vector<CatalogRule>& rules = Catalog::rules();
    ASSERT_EQ(rows.size(), 198U) << "the table file is missing or not whole";
    ASSERT_EQ(rules.size(), rows.size());

    for (std::size_t index = 0; index < rows.size(); ++index) {
        ASSERT_EQ(rows[index].size(), columns.size()) << "row " << index + 1;
        SCOPED_TRACE("row " + rows[index][0] + ": " + rows[index][1]);
        const Fields actual = fieldsOf(rules[index], index + 1);
        for (std::size_t column = 0; column < columns.size(); ++column)
            EXPECT_EQ(actual[column], rows[index][column]) << columns[column];
    }
}

TEST(CatalogTests, isBuiltOnce) {
    EXPECT_EQ(&Catalog::rules(), &Catalog::rules());
}

/// The five groups stand one behind the other, each with its own categories.
TEST(CatalogTests, hasItsGroupsInOrderAndInSize) {
    struct Group {
        const char* name;
        std::size_t size;
        const char* firstPath;
        const char* lastPath;
        std::vector<ItemCategory> categories;
    };
    const std::vector<Group> groups = {
        {"Xcode",
         11,
         "Library/Developer/Xcode/DerivedData",
         "Library/Caches/CocoaPods",
         {ItemCategory::xcode, ItemCategory::simulators}},
        {"Android", 13, ".gradle/daemon", ".m2/repository", {ItemCategory::android}},
        {"toolchains", 25, ".npm/_cacache", "VirtualBox VMs", {ItemCategory::toolchains}},
        {"AI tools, written", 10, ".codex/cache", ".claude", {ItemCategory::aiTools}},
        {"AI tools, generated",
         126,
         "Library/Application Support/Code/Cache",
         "Library/Application Support/Microsoft Teams/DawnWebGPUCache",
         {ItemCategory::aiTools}},
        {"media",
         13,
         "Library/Caches/Google/Chrome",
         "Library/Application Support/Steam/steamapps",
         {ItemCategory::appCaches, ItemCategory::personal, ItemCategory::apps}},
    };

    const std::vector<CatalogRule>& rules = Catalog::rules();
    std::size_t first = 0;
    for (const Group& group : groups) {
        SCOPED_TRACE(group.name);
        ASSERT_LE(first + group.size, rules.size());
        EXPECT_EQ(rules[first].path, group.firstPath);
        EXPECT_EQ(rules[first + group.size - 1].path, group.lastPath);
        for (std::size_t index = first; index < first + group.size; ++index)
            EXPECT_TRUE(std::ranges::count(group.categories, rules[index].category) > 0) << rules[index].path;
        first += group.size;
    }
    EXPECT_EQ(first, rules.size());
}

TEST(CatalogTests, onlyTheTwoAndroidStudioRowsHaveAWildcard) {
    std::vector<std::string> paths;
    for (const CatalogRule& rule : Catalog::rules())
        if (hasWildcard(rule))
            paths.push_back(rule.path);
    EXPECT_EQ(paths, (std::vector<std::string>{"Library/Caches/Google/AndroidStudio*",
                                               "Library/Logs/Google/AndroidStudio*"}));
}

TEST(CatalogTests, onlyTheLastComponentHoldsAWildcard) {
    for (const CatalogRule& rule : Catalog::rules()) {
        const std::size_t lastStart = rule.path.size() - lastComponent(rule.path).size();
        EXPECT_FALSE(std::string_view(rule.path).substr(0, lastStart).contains('*')) << rule.path;
    }
}

TEST(CatalogTests, recommendedRowsCanBeRemovedWithoutLossAndByTheProgram) {
    for (const CatalogRule& rule : Catalog::rules()) {
        if (!rule.recommended)
            continue;
        EXPECT_TRUE(rule.safety == Safety::regenerable || rule.safety == Safety::costly) << rule.path;
        EXPECT_TRUE(rule.action.isAutomatic()) << rule.path;
    }
}

TEST(CatalogTests, keptAndManagedRowsAreManual) {
    for (const CatalogRule& rule : Catalog::rules()) {
        if (rule.safety >= Safety::keep) {
            EXPECT_EQ(rule.action.kind, Kind::manual) << rule.path;
        }
    }
}

TEST(CatalogTests, reviewRowsGoToTheTrash) {
    for (const CatalogRule& rule : Catalog::rules()) {
        if (rule.safety == Safety::review) {
            EXPECT_EQ(rule.action.kind, Kind::trash) << rule.path;
        }
    }
}

TEST(CatalogTests, regenerableAndCostlyRowsAreDeleted) {
    for (const CatalogRule& rule : Catalog::rules()) {
        if (rule.safety < Safety::review) {
            EXPECT_EQ(rule.action.kind, Kind::delete_) << rule.path;
        }
    }
}

TEST(CatalogTests, everyManualRowHasInstructionsAndNoOtherRowAPayload) {
    for (const CatalogRule& rule : Catalog::rules())
        EXPECT_EQ(rule.action.payload.empty(), rule.action.kind != Kind::manual) << rule.path;
}

TEST(CatalogTests, pathsStayUnderTheHomeFolder) {
    for (const CatalogRule& rule : Catalog::rules()) {
        EXPECT_FALSE(rule.path.empty()) << rule.title;
        EXPECT_FALSE(rule.path.starts_with('/')) << rule.path;
        EXPECT_FALSE(rule.path.ends_with('/')) << rule.path;
        EXPECT_FALSE(rule.path.contains("//")) << rule.path;
        EXPECT_FALSE(rule.path.contains("..")) << rule.path;
    }
}

TEST(CatalogTests, noPathIsListedTwiceUnderOneCondition) {
    std::vector<std::string> keys;
    for (const CatalogRule& rule : Catalog::rules())
        keys.push_back(rule.path + "\t" + nameOf(rule.condition.kind));
    std::ranges::sort(keys);
    const auto twice = std::ranges::adjacent_find(keys);
    EXPECT_EQ(twice, keys.end()) << *twice;
}

} // namespace
} // namespace korvanti
