#include "providers/EditorExtensionProvider.h"

#include "fs/PathTools.h"
#include "support/Items.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace korvanti {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using testing::titles;
using ::testing::UnorderedElementsAre;

constexpr std::int64_t block = 4096;
constexpr std::int64_t justBelow5MB = 5'000'000 / block * block;
constexpr std::int64_t justAbove5MB = justBelow5MB + block;

std::vector<std::string> details(const std::vector<CleanupItem>& items) {
    std::vector<std::string> details;
    std::ranges::transform(items, std::back_inserter(details), &CleanupItem::detail);
    return details;
}

class EditorExtensionProviderTests : public ::testing::Test {
protected:
    std::string extension(const std::string& name, const std::string& root = ".vscode/extensions",
                          std::int64_t bytes = justAbove5MB) const {
        home.file(root + "/" + name + "/extension.js", {.allocatedBytes = bytes});
        return home.path(root + "/" + name);
    }
    void obsolete(const std::string& text, const std::string& root = ".vscode/extensions") const {
        home.file(root + "/.obsolete", {.text = text});
    }

    [[nodiscard]] std::vector<CleanupItem> items() const {
        ScanContext context;
        context.home = home.path();
        return testing::itemsOfOneScan(EditorExtensionProvider(), context);
    }

    testing::TempFolder home;
};

TEST_F(EditorExtensionProviderTests, hasItsNameAndPriority) {
    EXPECT_EQ(EditorExtensionProvider().name(), "Ekstensi editor");
    EXPECT_EQ(EditorExtensionProvider().priority(), 80);
}

TEST_F(EditorExtensionProviderTests, findsNothingInAnEmptyHome) {
    EXPECT_THAT(items(), IsEmpty());
}

// What an item says

TEST_F(EditorExtensionProviderTests, recommendsToDeleteAnOldVersion) {
    extension("ms-python.python-2024.10.0-darwin-arm64");
    const auto old = extension("ms-python.python-2024.9.1-darwin-arm64");
    home.setModified(".vscode/extensions/ms-python.python-2024.9.1-darwin-arm64", 1'600'000'000);

    EXPECT_THAT(items(),
                ElementsAre(CleanupItem{.title = "Ekstensi lama: ms-python.python 2024.9.1",
                                        .detail = "Versi lama; yang aktif 2024.10.0. Editor: .vscode",
                                        .path = old,
                                        .bytes = justAbove5MB,
                                        .category = ItemCategory::aiTools,
                                        .safety = Safety::regenerable,
                                        .action = CleanupAction::delete_(),
                                        .recommended = true,
                                        .lastActivity = instantFromSeconds(1'600'000'000)}));
}

TEST_F(EditorExtensionProviderTests, recommendsToDeleteWhatTheEditorItselfHasMarked) {
    obsolete(R"({"ms-python.python-2024.9.1":true})");
    const auto marked = extension("ms-python.python-2024.9.1");
    home.setModified(".vscode/extensions/ms-python.python-2024.9.1", 1'600'000'000);

    EXPECT_THAT(items(), ElementsAre(CleanupItem{.title = "Ekstensi lama: ms-python.python-2024.9.1",
                                                 .detail = "Ditandai usang oleh editor.",
                                                 .path = marked,
                                                 .bytes = justAbove5MB,
                                                 .category = ItemCategory::aiTools,
                                                 .safety = Safety::regenerable,
                                                 .action = CleanupAction::delete_(),
                                                 .recommended = true,
                                                 .lastActivity = instantFromSeconds(1'600'000'000)}));
}

// Which versions are old

TEST_F(EditorExtensionProviderTests, leavesTheNewestOfAllVersions) {
    for (const char* name : {"a.b-1.9.0", "a.b-1.10.0", "a.b-1.2.30"})
        extension(name);

    EXPECT_THAT(titles(items()),
                UnorderedElementsAre("Ekstensi lama: a.b 1.9.0", "Ekstensi lama: a.b 1.2.30"));
}

TEST_F(EditorExtensionProviderTests, leavesAnExtensionOfOneVersion) {
    extension("a.b-1.0.0", ".vscode/extensions", 4 * justAbove5MB);
    extension("a.c-2.0.0");

    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(EditorExtensionProviderTests, comparesVersionsOfOneExtensionOnly) {
    for (const char* name : {"a.b-1.0.0", "a.B-2.0.0", "a.bc-3.0.0", "a.b-x-4.0.0"})
        extension(name);

    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(EditorExtensionProviderTests, comparesVersionsOfOneEditorOnly) {
    extension("a.b-1.0.0", ".vscode/extensions");
    extension("a.b-2.0.0", ".cursor/extensions");

    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(EditorExtensionProviderTests, keepsOneOfEqualVersions) {
    extension("a.b-1.0.0");
    extension("a.b-1.0.0-darwin-arm64");
    extension("a.b-1.00.0");

    auto expected = PathTools::subfolders(home.path(".vscode/extensions"));
    expected.erase(expected.begin()); // the first of the listing stays
    EXPECT_EQ(testing::paths(items()), expected);
}

TEST_F(EditorExtensionProviderTests, countsATooSmallNewestAsTheNewest) {
    extension("a.b-2.0.0", ".vscode/extensions", block);
    extension("a.b-1.0.0");

    EXPECT_THAT(details(items()), ElementsAre("Versi lama; yang aktif 2.0.0. Editor: .vscode"));
}

TEST_F(EditorExtensionProviderTests, takesIdentifierAndVersionFromTheName) {
    extension("a-b.c-d-10.20.30-linux-x64-1.0.0");
    extension("a-b.c-d-99.0.0");
    extension("1.2.3-4.5.6-7.8.9");
    extension("1.2.3-4.5.7");

    EXPECT_THAT(titles(items()),
                UnorderedElementsAre("Ekstensi lama: a-b.c-d 10.20.30", "Ekstensi lama: 1.2.3 4.5.6"));
}

TEST_F(EditorExtensionProviderTests, passesOverNamesWithoutAThreePartVersion) {
    extension("a.b-9.0.0");
    for (const char* name : {"a.b-1.0", "a.b-1", "a.b", "a.b-1.0.0.0", "a.b-1.0.0beta", "a.b-1.0.0-",
                             "-1.0.0", "1.0.0", "a.b 1.0.0", ".a.b-1.0"})
        extension(name);

    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(EditorExtensionProviderTests, passesOverLinksAndFiles) {
    extension("a.b-2.0.0");
    home.symlink(".vscode/extensions/a.b-1.0.0", home.path(".vscode/extensions/a.b-2.0.0"));
    home.symlink(".vscode/extensions/a.b-3.0.0", home.path(".vscode/extensions/a.b-2.0.0"));
    home.file(".vscode/extensions/a.b-1.1.0", {.allocatedBytes = justAbove5MB});
    obsolete(R"({"a.b-1.0.0":true,"a.b-1.1.0":true})");

    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(EditorExtensionProviderTests, shows5MBAndHidesLess) {
    extension("a.b-9.0.0");
    extension("a.b-1.0.0", ".vscode/extensions", justAbove5MB);
    const auto little = extension("a.b-2.0.0", ".vscode/extensions", justBelow5MB);
    extension("a.c-1.0.0", ".vscode/extensions", justBelow5MB);
    obsolete(R"({"a.c-1.0.0":true})");
    ASSERT_EQ(testing::blocksOf(little + "/extension.js"), justBelow5MB);

    EXPECT_THAT(titles(items()), ElementsAre("Ekstensi lama: a.b 1.0.0"));
}

// Editors

TEST_F(EditorExtensionProviderTests, looksThroughTheEditorsInTheirOrder) {
    for (const std::string editor : {".zed", ".kiro", ".antigravity", ".antigravity-ide", ".windsurf",
                                     ".cursor", ".vscode-insiders", ".vscode"}) {
        extension("a.b-1.0.0", editor + "/extensions");
        extension("a.b-2.0.0", editor + "/extensions");
    }

    EXPECT_THAT(details(items()), ElementsAre("Versi lama; yang aktif 2.0.0. Editor: .vscode",
                                              "Versi lama; yang aktif 2.0.0. Editor: .vscode-insiders",
                                              "Versi lama; yang aktif 2.0.0. Editor: .cursor",
                                              "Versi lama; yang aktif 2.0.0. Editor: .windsurf",
                                              "Versi lama; yang aktif 2.0.0. Editor: .antigravity-ide",
                                              "Versi lama; yang aktif 2.0.0. Editor: .antigravity",
                                              "Versi lama; yang aktif 2.0.0. Editor: .kiro"));
}

TEST_F(EditorExtensionProviderTests, readsTheMarksOfEachEditorForItself) {
    extension("a.b-1.0.0", ".vscode/extensions");
    const auto marked = extension("a.b-1.0.0", ".kiro/extensions");
    obsolete(R"({"a.b-1.0.0":true})", ".kiro/extensions");

    const auto found = items();

    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(found[0].path, marked);
}

// What the editor has marked

TEST_F(EditorExtensionProviderTests, passesOverAMarkOfFalse) {
    extension("a.b-1.0.0");
    extension("a.c-1.0.0");
    obsolete(R"({"a.b-1.0.0":false,"a.c-1.0.0":true})");

    EXPECT_THAT(titles(items()), ElementsAre("Ekstensi lama: a.c-1.0.0"));
}

TEST_F(EditorExtensionProviderTests, showsAMarkedOldVersionOnceAsAnOldVersion) {
    extension("a.b-1.0.0");
    extension("a.b-2.0.0");
    obsolete(R"({"a.b-1.0.0":true})");

    EXPECT_THAT(details(items()), ElementsAre("Versi lama; yang aktif 2.0.0. Editor: .vscode"));
}

TEST_F(EditorExtensionProviderTests, showsAMarkedNewestVersion) {
    extension("a.b-1.0.0");
    extension("a.b-2.0.0");
    obsolete(R"({"a.b-2.0.0":true})");

    EXPECT_THAT(titles(items()), ElementsAre("Ekstensi lama: a.b 1.0.0", "Ekstensi lama: a.b-2.0.0"));
}

TEST_F(EditorExtensionProviderTests, showsAMarkedFolderOfAnyName) {
    extension("half done");
    extension(".hidden");
    extension("..dots");
    obsolete(R"({"half done":true,".hidden":true,"..dots":true,"missing-1.0.0":true})");

    EXPECT_THAT(titles(items()),
                ElementsAre("Ekstensi lama: half done", "Ekstensi lama: .hidden", "Ekstensi lama: ..dots"));
}

TEST_F(EditorExtensionProviderTests, neverFollowsAMarkOutOfTheFolder) {
    extension("a.b-1.0.0");
    home.file("precious/file", {.allocatedBytes = justAbove5MB});
    for (const std::string name : {"", ".", "..", "/", "../", "../../precious", "a.b-1.0.0/..", "a.b-1.0.0/",
                                   "./a.b-1.0.0", "a.b-1.0.0/../../../precious", "../extensions/a.b-1.0.0",
                                   "a.b-1.0.0\\u0000", "a.b-1.0.0\\u0000x"}) {
        obsolete("{\"" + name + "\":true}");
        EXPECT_THAT(items(), IsEmpty()) << name;
    }
    obsolete("{\"" + home.path("precious") + "\":true}");
    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(EditorExtensionProviderTests, looksInsideNoMarkedFolder) {
    extension("a.b-1.0.0/node_modules");
    obsolete(R"({"a.b-1.0.0/node_modules":true})");

    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(EditorExtensionProviderTests, hasNoMarksWhereTheyAreNotAllTrueOrFalse) {
    extension("a.b-1.0.0");
    obsolete(R"({"a.b-1.0.0":true,"a.c-1.0.0":null})");

    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(EditorExtensionProviderTests, findsOldVersionsWhereTheMarksCannotBeRead) {
    extension("a.b-1.0.0");
    extension("a.b-2.0.0");
    ASSERT_EQ(::mkfifo(home.path(".vscode/extensions/.obsolete").c_str(), 0600), 0);

    EXPECT_THAT(titles(items()), ElementsAre("Ekstensi lama: a.b 1.0.0"));
}

TEST_F(EditorExtensionProviderTests, readsNoMarksOutOfAHugeFile) {
    const std::string marks = R"({"a.b-1.0.0":true})";
    extension("a.b-1.0.0");
    obsolete(marks + std::string(4 * 1024 * 1024 - marks.size(), ' '));
    EXPECT_THAT(items(), SizeIs(1));

    obsolete(marks + std::string(4 * 1024 * 1024 - marks.size() + 1, ' '));
    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(EditorExtensionProviderTests, namesOldVersionsBeforeMarksInTheOrderOfTheFile) {
    for (const char* name : {"a.b-1.0.0", "a.b-2.0.0", "z.z-1.0.0", "y.y-1.0.0"})
        extension(name);
    obsolete(R"({"z.z-1.0.0":true,"y.y-1.0.0":true})");

    EXPECT_THAT(titles(items()), ElementsAre("Ekstensi lama: a.b 1.0.0", "Ekstensi lama: z.z-1.0.0",
                                             "Ekstensi lama: y.y-1.0.0"));
}

#ifndef __APPLE__ // whose file systems take no such names
TEST_F(EditorExtensionProviderTests, keepsTheBytesOfANameThatIsNotUtf8) {
    const auto old = extension("a\xff-1.0.0");
    extension("a\xff-2.0.0");

    const auto found = items();

    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(found[0].path, old);
    EXPECT_EQ(found[0].title, "Ekstensi lama: a\xff 1.0.0");
}
#endif

} // namespace
} // namespace korvanti
