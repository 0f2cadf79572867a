#include "fs/SizeLedger.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace korvanti {
namespace {

class SizeLedgerTests : public ::testing::Test {
protected:
    /// Expects that the ledger says of a path just what the calculator says.
    void expectTrueSize(const std::string& path) {
        for (const bool trackNewest : {true, false}) {
            SCOPED_TRACE(path + (trackNewest ? ", with newest" : ""));
            EXPECT_EQ(ledger.measure(path, {.trackNewest = trackNewest}),
                      SizeCalculator::measure(path, {.trackNewest = trackNewest}));
        }
    }

    void makeLarge(const std::string& folder) const {
        for (int number = 0; number < 600; ++number)
            temp.file(folder + "/" + std::to_string(number));
    }

    testing::TempFolder temp;
    SizeLedger ledger;
};

TEST_F(SizeLedgerTests, givesWhatTheCalculatorGives) {
    temp.file("tree/a/one", {.allocatedBytes = 8192, .modified = 1000});
    temp.file("tree/a/b/two", {.allocatedBytes = 4096, .modified = 5000});
    temp.file("tree/three", {.text = "3", .modified = 3000});
    temp.symlink("link", temp.path("tree"));
    temp.folder("empty");
    for (const auto* name :
         {"tree", "tree/a", "tree/a/b", "tree/three", "link", "empty", "missing", "link/a"})
        expectTrueSize(temp.path(name));
}

TEST_F(SizeLedgerTests, aFolderAndOneInsideItHaveTheirOwnSizesInOneCall) {
    const auto file = temp.file("tree/inner/one", {.allocatedBytes = 8192, .modified = 1000});
    temp.file("tree/two", {.allocatedBytes = 4096, .modified = 2000});
    const auto sizes =
        ledger.measureAll({temp.path("tree/inner"), temp.path("tree"), file}, {.trackNewest = true});
    ASSERT_EQ(sizes.size(), 3U);
    for (const auto& [path, size] : sizes) {
        SCOPED_TRACE(path);
        EXPECT_EQ(size, SizeCalculator::measure(path, {.trackNewest = true}));
    }
}

TEST_F(SizeLedgerTests, aPathThatIsAskedForTwiceInOneCallIsThereOnce) {
    temp.file("tree/one", {.allocatedBytes = 8192});
    const auto sizes = ledger.measureAll({temp.path("tree"), temp.path("tree")});
    ASSERT_EQ(sizes.size(), 1U);
    EXPECT_EQ(sizes.begin()->second.bytes, 8192);
}

TEST_F(SizeLedgerTests, whatLiesBehindALinkInsideAnotherFolderIsMeasuredToo) {
    temp.file("elsewhere/inner/one", {.allocatedBytes = 8192});
    temp.folder("tree");
    temp.symlink("tree/link", temp.path("elsewhere"));
    const auto sizes =
        ledger.measureAll({temp.path("tree"), temp.path("tree/link"), temp.path("tree/link/inner")});
    EXPECT_EQ(sizes.at(temp.path("tree")), SizeCalculator::measure(temp.path("tree")));
    EXPECT_EQ(sizes.at(temp.path("tree/link")), SizeResult{});
    EXPECT_EQ(sizes.at(temp.path("tree/link/inner")).bytes, 8192);
}

// A file that comes between two questions shows which folders are gone through again.

TEST_F(SizeLedgerTests, aFolderIsWalkedOnceHoweverOftenItIsAskedFor) {
    temp.file("tree/one", {.allocatedBytes = 8192});
    EXPECT_EQ(ledger.measure(temp.path("tree")).bytes, 8192);
    temp.file("tree/late", {.allocatedBytes = 4096});
    EXPECT_EQ(ledger.measure(temp.path("tree"), {.trackNewest = true}).bytes, 8192);
}

TEST_F(SizeLedgerTests, aFolderThatIsKnownIsNotEnteredAgainByTheWalkOfItsParent) {
    temp.file("tree/inner/one", {.allocatedBytes = 8192, .modified = 9000});
    temp.file("tree/two", {.allocatedBytes = 4096, .modified = 1000});
    EXPECT_EQ(ledger.measure(temp.path("tree/inner")).bytes, 8192);
    temp.file("tree/inner/late", {.allocatedBytes = 4096});
    const auto size = ledger.measure(temp.path("tree"), {.trackNewest = true});
    EXPECT_EQ(size.bytes, 12288);
    EXPECT_EQ(size.files, 2);
    EXPECT_EQ(size.newest, instantFromSeconds(9000));
}

TEST_F(SizeLedgerTests, aLargeFolderInsideAKnownOneIsNotWalkedAgain) {
    makeLarge("tree/large");
    EXPECT_EQ(ledger.measure(temp.path("tree")).files, 600);
    temp.file("tree/large/late");
    EXPECT_EQ(ledger.measure(temp.path("tree/large")).files, 600);
}

TEST_F(SizeLedgerTests, aSmallFolderInsideAKnownOneIsWalkedWhenItIsAskedFor) {
    temp.file("tree/small/one", {.allocatedBytes = 8192});
    EXPECT_EQ(ledger.measure(temp.path("tree")).files, 1);
    expectTrueSize(temp.path("tree/small"));
}

TEST_F(SizeLedgerTests, anUnreadableFolderIsALowerBoundForItAndForItsParent) {
    temp.file("tree/locked/one");
    temp.setMode("tree/locked", 0);
    expectTrueSize(temp.path("tree"));
    expectTrueSize(temp.path("tree/locked"));
    temp.setMode("tree/locked", 0700);
}

TEST_F(SizeLedgerTests, whoeverAsksInWhateverOrderGetsTheTrueSizes) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const auto upTo = [&](std::size_t most) {
        return std::uniform_int_distribution<std::size_t>(0, most)(random);
    };

    std::vector<std::string> folders = {"tree"};
    std::vector<std::string> paths = {temp.folder("tree")};
    for (int made = 0; made < 300; ++made) {
        const auto name = folders[upTo(folders.size() - 1)] + "/" + std::to_string(made);
        if (upTo(2) == 0) {
            folders.push_back(name);
            paths.push_back(temp.folder(name));
        } else {
            paths.push_back(temp.file(name, {.allocatedBytes = static_cast<std::int64_t>(4096 * upTo(3)),
                                             .modified = static_cast<std::int64_t>(upTo(1'000'000))}));
        }
    }
    makeLarge("tree/large/inner");

    std::vector<std::vector<std::string>> questions(8);
    for (auto& question : questions) {
        for (int asked = 0; asked < 40; ++asked)
            question.push_back(paths[upTo(paths.size() - 1)]);
    }
    questions[0].push_back(temp.path("tree/large"));
    questions[1].push_back(temp.path("tree/large/inner"));

    std::vector<std::thread> threads;
    for (const auto& question : questions) {
        threads.emplace_back([&, question] {
            for (std::size_t next = 0; next < question.size(); next += 7) {
                const std::vector<std::string> part(
                    question.begin() + static_cast<std::ptrdiff_t>(next),
                    question.begin() + static_cast<std::ptrdiff_t>(std::min(next + 7, question.size())));
                for (const auto& [path, size] : ledger.measureAll(part, {.trackNewest = true}))
                    EXPECT_EQ(size, SizeCalculator::measure(path, {.trackNewest = true})) << path;
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
}

} // namespace
} // namespace korvanti
