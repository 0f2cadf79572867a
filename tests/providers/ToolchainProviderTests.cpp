#include "providers/ToolchainProvider.h"

#include "support/Items.h"
#include "support/TempFolder.h"

#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
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
constexpr std::int64_t justBelow20MB = 20'000'000 / block * block;
constexpr std::int64_t justAbove20MB = justBelow20MB + block;

class ToolchainProviderTests : public ::testing::Test {
protected:
    ToolchainProviderTests() { context.home = home.path(); }

    std::string node(const std::string& name, std::int64_t bytes = justAbove20MB) const {
        home.file(".nvm/versions/node/" + name + "/bin/node", {.allocatedBytes = bytes});
        return home.path(".nvm/versions/node/" + name);
    }
    std::string rust(const std::string& name, std::int64_t bytes = justAbove20MB) const {
        home.file(".rustup/toolchains/" + name + "/bin/rustc", {.allocatedBytes = bytes});
        return home.path(".rustup/toolchains/" + name);
    }
    void defaultAlias(const std::string& text) const { home.file(".nvm/alias/default", {.text = text}); }

    [[nodiscard]] std::vector<CleanupItem> items() const {
        return testing::itemsOfOneScan(ToolchainProvider(), context);
    }
    /// The titles of those that are still used.
    [[nodiscard]] std::vector<std::string> kept() const {
        auto found = items();
        std::erase_if(found, [](const CleanupItem& item) { return item.safety != Safety::keep; });
        return titles(found);
    }

    testing::TempFolder home;
    ScanContext context;
};

TEST_F(ToolchainProviderTests, hasItsNameAndPriority) {
    EXPECT_EQ(ToolchainProvider().name(), "Toolchain");
    EXPECT_EQ(ToolchainProvider().priority(), 85);
}

TEST_F(ToolchainProviderTests, findsNothingInAnEmptyHome) {
    EXPECT_THAT(items(), IsEmpty());
}

// What an item says

TEST_F(ToolchainProviderTests, keepsTheDefaultNode) {
    defaultAlias("20\n");
    const auto path = node("v20.11.0");
    home.setModified(".nvm/versions/node/v20.11.0", 1'600'000'000);

    EXPECT_THAT(items(), ElementsAre(CleanupItem{.title = "Node v20.11.0",
                                                 .detail = "Versi default nvm.",
                                                 .path = path,
                                                 .bytes = justAbove20MB,
                                                 .category = ItemCategory::toolchains,
                                                 .safety = Safety::keep,
                                                 .action = CleanupAction::manual("Masih dipakai."),
                                                 .recommended = false,
                                                 .lastActivity = instantFromSeconds(1'600'000'000)}));
}

TEST_F(ToolchainProviderTests, keepsANodeThatAProjectPins) {
    context.projects.nodeVersions = {"18.19.0"};
    const auto path = node("v18.19.0");
    home.setModified(".nvm/versions/node/v18.19.0", 1'600'000'000);

    EXPECT_THAT(items(), ElementsAre(CleanupItem{.title = "Node v18.19.0",
                                                 .detail = "Dipin oleh .nvmrc proyek.",
                                                 .path = path,
                                                 .bytes = justAbove20MB,
                                                 .category = ItemCategory::toolchains,
                                                 .safety = Safety::keep,
                                                 .action = CleanupAction::manual("Masih dipakai."),
                                                 .recommended = false,
                                                 .lastActivity = instantFromSeconds(1'600'000'000)}));
}

TEST_F(ToolchainProviderTests, offersANodeThatNothingUses) {
    defaultAlias("20");
    const auto path = node("v16.20.2");
    home.setModified(".nvm/versions/node/v16.20.2", 1'600'000'000);

    EXPECT_THAT(items(), ElementsAre(CleanupItem{
                             .title = "Node v16.20.2 (bukan default)",
                             .detail = "Tidak dipakai sebagai default dan tidak dipin proyek. Pasang ulang "
                                       "dengan `nvm install` bila perlu.",
                             .path = path,
                             .bytes = justAbove20MB,
                             .category = ItemCategory::toolchains,
                             .safety = Safety::costly,
                             .action = CleanupAction::delete_(),
                             .recommended = false,
                             .lastActivity = instantFromSeconds(1'600'000'000)}));
}

TEST_F(ToolchainProviderTests, keepsTheMainRusts) {
    const auto path = rust("stable-aarch64-apple-darwin");
    home.setModified(".rustup/toolchains/stable-aarch64-apple-darwin", 1'600'000'000);

    EXPECT_THAT(items(), ElementsAre(CleanupItem{.title = "Rust stable-aarch64-apple-darwin",
                                                 .detail = "Toolchain utama rustup.",
                                                 .path = path,
                                                 .bytes = justAbove20MB,
                                                 .category = ItemCategory::toolchains,
                                                 .safety = Safety::keep,
                                                 .action = CleanupAction::manual("Masih dipakai."),
                                                 .recommended = false,
                                                 .lastActivity = instantFromSeconds(1'600'000'000)}));
}

TEST_F(ToolchainProviderTests, keepsARustThatAProjectPins) {
    context.projects.rustToolchains = {"1.75.0"};
    const auto path = rust("1.75.0-aarch64-apple-darwin");
    home.setModified(".rustup/toolchains/1.75.0-aarch64-apple-darwin", 1'600'000'000);

    EXPECT_THAT(items(), ElementsAre(CleanupItem{.title = "Rust 1.75.0-aarch64-apple-darwin",
                                                 .detail = "Dipin oleh rust-toolchain.toml proyek Anda.",
                                                 .path = path,
                                                 .bytes = justAbove20MB,
                                                 .category = ItemCategory::toolchains,
                                                 .safety = Safety::keep,
                                                 .action = CleanupAction::manual("Masih dipakai."),
                                                 .recommended = false,
                                                 .lastActivity = instantFromSeconds(1'600'000'000)}));
}

TEST_F(ToolchainProviderTests, offersARustThatNoProjectPins) {
    const auto path = rust("1.70.0-aarch64-apple-darwin");
    home.setModified(".rustup/toolchains/1.70.0-aarch64-apple-darwin", 1'600'000'000);

    EXPECT_THAT(items(),
                ElementsAre(CleanupItem{
                    .title = "Rust 1.70.0-aarch64-apple-darwin (tidak dipin)",
                    .detail = "Tidak ada proyek yang mem-pin versi ini. Pasang ulang via rustup bila "
                              "perlu.",
                    .path = path,
                    .bytes = justAbove20MB,
                    .category = ItemCategory::toolchains,
                    .safety = Safety::costly,
                    .action = CleanupAction::delete_(),
                    .recommended = false,
                    .lastActivity = instantFromSeconds(1'600'000'000)}));
}

// The default of nvm

TEST_F(ToolchainProviderTests, takesTheNewestOfTheLineThatTheAliasNames) {
    defaultAlias("20");
    for (const char* name : {"v20.9.0", "v20.11.0", "v20.2.10", "v22.1.0", "v18.20.0"})
        node(name);

    EXPECT_THAT(titles(items()),
                UnorderedElementsAre("Node v20.11.0", "Node v20.9.0 (bukan default)",
                                     "Node v20.2.10 (bukan default)", "Node v22.1.0 (bukan default)",
                                     "Node v18.20.0 (bukan default)"));
}

TEST_F(ToolchainProviderTests, readsTheAliasInEveryFormOfAVersion) {
    node("v20.11.0");
    node("v20.9.0");
    for (const char* alias :
         {"20", "v20", "20.11", "v20.11.0", " v20.11.0\n", "\t20.11.0\r\n", "vv20v", "2", "\xc2\xa0v20"}) {
        defaultAlias(alias);
        EXPECT_THAT(kept(), ElementsAre("Node v20.11.0")) << alias;
    }
    defaultAlias("v20.9.0");
    EXPECT_THAT(kept(), ElementsAre("Node v20.9.0"));
}

TEST_F(ToolchainProviderTests, hasNoDefaultWhereTheAliasNamesNoVersion) {
    node("v20.11.0");
    for (const char* alias : {"lts/iron", "lts/*", "node", "stable", "system", "21", "20.11.00", "", "\n",
                              "v", " vv ", "20\xff", "20.11.0\n18", "v 20"}) {
        defaultAlias(alias);
        EXPECT_THAT(kept(), IsEmpty()) << alias;
    }
}

TEST_F(ToolchainProviderTests, hasNoDefaultWithoutAnAliasThatCanBeRead) {
    node("v20.11.0");
    node("v18.19.0");
    context.projects.nodeVersions = {"18"};
    const auto expected = UnorderedElementsAre("Node v20.11.0 (bukan default)", "Node v18.19.0");

    EXPECT_THAT(titles(items()), expected);

    home.folder(".nvm/alias");
    ASSERT_EQ(::mkfifo(home.path(".nvm/alias/default").c_str(), 0600), 0);
    EXPECT_THAT(titles(items()), expected);
}

TEST_F(ToolchainProviderTests, hasNoDefaultWhereTheAliasIsAHugeFile) {
    node("v20.11.0");
    home.file(".nvm/alias/default", {.text = "20" + std::string(4 * 1024 * 1024 - 2, '\n')});
    EXPECT_THAT(kept(), ElementsAre("Node v20.11.0"));

    home.file(".nvm/alias/default", {.text = "20" + std::string(4 * 1024 * 1024 - 1, '\n')});
    EXPECT_THAT(kept(), IsEmpty());
}

TEST_F(ToolchainProviderTests, keepsOneOfEqualDefaults) {
    defaultAlias("20");
    node("v20.1");
    node("v20.1.0");
    node("v20.01");

    const auto found = items();

    ASSERT_THAT(found, SizeIs(3));
    EXPECT_EQ(found[0].safety, Safety::keep); // the first of the listing
    EXPECT_EQ(found[1].safety, Safety::costly);
    EXPECT_EQ(found[2].safety, Safety::costly);
}

TEST_F(ToolchainProviderTests, countsATooSmallDefaultAsTheDefault) {
    defaultAlias("20");
    node("v20.11.0", block);
    node("v20.9.0");

    EXPECT_THAT(titles(items()), ElementsAre("Node v20.9.0 (bukan default)"));
}

TEST_F(ToolchainProviderTests, saysThatAPinnedDefaultIsTheDefault) {
    defaultAlias("20");
    context.projects.nodeVersions = {"20.11.0"};
    node("v20.11.0");

    const auto found = items();

    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(found[0].detail, "Versi default nvm.");
}

// Pins

TEST_F(ToolchainProviderTests, pinsEveryNodeThatBeginsWithAPin) {
    context.projects.nodeVersions = {"18", "lts/iron", "20.1"};
    for (const char* name :
         {"v18.0.0", "v18.19.0", "v180.1.0", "v20.1.0", "v20.11.0", "v20.2.0", "v16.18.0", "v1.18.0"})
        node(name);

    EXPECT_THAT(kept(), UnorderedElementsAre("Node v18.0.0", "Node v18.19.0", "Node v180.1.0", "Node v20.1.0",
                                             "Node v20.11.0"));
}

TEST_F(ToolchainProviderTests, comparesAPinWithTheVersionBehindTheFirstCharacter) {
    context.projects.nodeVersions = {"v20", "20"};
    node("v22.0.0");
    node("x20.0.0");
    node("20.0.0");

    EXPECT_THAT(kept(), ElementsAre("Node x20.0.0"));
}

TEST_F(ToolchainProviderTests, keepsEveryStableBetaAndNightlyRust) {
    for (const char* name : {"stable", "stable-x86_64-apple-darwin", "beta-2023-01-01", "nightly",
                             "nightly-2019-05-01-aarch64-apple-darwin", "Stable", "my-nightly", "1.70.0"})
        rust(name);

    EXPECT_THAT(kept(),
                UnorderedElementsAre("Rust stable", "Rust stable-x86_64-apple-darwin", "Rust beta-2023-01-01",
                                     "Rust nightly", "Rust nightly-2019-05-01-aarch64-apple-darwin"));
}

TEST_F(ToolchainProviderTests, saysThatAPinnedNightlyIsAMainRust) {
    context.projects.rustToolchains = {"nightly-2019-05-01"};
    rust("nightly-2019-05-01");

    const auto found = items();

    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(found[0].detail, "Toolchain utama rustup.");
}

TEST_F(ToolchainProviderTests, pinsEveryRustThatBeginsWithAPin) {
    context.projects.rustToolchains = {"1.7"};
    for (const char* name : {"1.7.0", "1.75.0-aarch64-apple-darwin", "1.65.0", "11.7"})
        rust(name);

    EXPECT_THAT(kept(), UnorderedElementsAre("Rust 1.7.0", "Rust 1.75.0-aarch64-apple-darwin"));
}

TEST_F(ToolchainProviderTests, doesNotPinANodeByARustOrTheOtherWayRound) {
    context.projects.rustToolchains = {"20.11.0"};
    context.projects.nodeVersions = {"1.75.0"};
    node("v20.11.0");
    rust("1.75.0");

    EXPECT_THAT(kept(), IsEmpty());
}

// Which folders, which sizes, which order

TEST_F(ToolchainProviderTests, neverLetsAKeptOneBeChosen) {
    defaultAlias("20");
    node("v20.11.0");
    rust("stable");

    for (const auto& item : items())
        EXPECT_FALSE(item.isSelectable()) << item.title;
}

TEST_F(ToolchainProviderTests, shows20MBAndHidesLess) {
    defaultAlias("22");
    node("v16.0.0", justAbove20MB);
    const auto little = node("v18.0.0", justBelow20MB);
    node("v22.0.0", justBelow20MB);
    rust("1.70.0", justAbove20MB);
    rust("stable", justBelow20MB);
    ASSERT_EQ(testing::blocksOf(little + "/bin/node"), justBelow20MB);

    EXPECT_THAT(titles(items()), ElementsAre("Node v16.0.0 (bukan default)", "Rust 1.70.0 (tidak dipin)"));
}

TEST_F(ToolchainProviderTests, passesOverLinksAndFiles) {
    const auto elsewhere = home.folder("elsewhere");
    home.file("elsewhere/node", {.allocatedBytes = justAbove20MB});
    home.symlink(".nvm/versions/node/v20.11.0", elsewhere);
    home.file(".nvm/versions/node/v18.0.0", {.allocatedBytes = justAbove20MB});
    home.symlink(".rustup/toolchains/1.70.0", elsewhere);
    home.file(".rustup/toolchains/1.71.0", {.allocatedBytes = justAbove20MB});

    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(ToolchainProviderTests, hasNoDefaultThatIsALink) {
    defaultAlias("20");
    home.symlink(".nvm/versions/node/v20.11.0", home.path());
    node("v20.9.0");

    EXPECT_THAT(kept(), ElementsAre("Node v20.9.0"));
}

TEST_F(ToolchainProviderTests, namesNodesBeforeRusts) {
    rust("1.70.0");
    node("v16.0.0");
    rust("1.71.0");

    const auto found = titles(items());

    ASSERT_THAT(found, SizeIs(3));
    EXPECT_EQ(found[0], "Node v16.0.0 (bukan default)");
}

#ifndef __APPLE__ // whose file systems take no such names
TEST_F(ToolchainProviderTests, keepsTheBytesOfANameThatIsNotUtf8) {
    const auto path = node("v20\xff");

    const auto found = items();

    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(found[0].path, path);
    EXPECT_EQ(found[0].title, "Node v20\xff (bukan default)");
}

TEST_F(ToolchainProviderTests, hasNoDefaultWhereTheAliasIsNotUtf8) {
    defaultAlias("20\xff");
    node("v20\xff");

    EXPECT_THAT(kept(), IsEmpty());
}
#endif

TEST_F(ToolchainProviderTests, takesAFolderOfOneCharacter) {
    defaultAlias("20");
    context.projects.nodeVersions = {"20"};
    node("v");

    EXPECT_THAT(titles(items()), ElementsAre("Node v (bukan default)"));
}

} // namespace
} // namespace korvanti
