#include "base/FileDescriptor.h"
#include "fs/SizeCalculator.h"
#include "platform/Platform.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <atomic>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <oneapi/tbb/global_control.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace korvanti {
namespace {

using korvanti::testing::blocksOf;
using korvanti::testing::TempFolder;

class SizeCalculatorTests : public ::testing::Test {
protected:
    TempFolder temp;

    /// A chain of folders, which may be deeper than any path is long, with one file of 4096 bytes at its end.
    /// Beside each link of it stand so many empty folders. The links have names of their own, so that on any
    /// file system some are listed before their siblings.
    void makeChain(int depth, int siblings) {
        FileDescriptor folder(::open(temp.path().c_str(), O_RDONLY | O_DIRECTORY));
        for (int level = 0; level < depth; ++level) {
            for (int sibling = 0; sibling < siblings / 2; ++sibling)
                ASSERT_EQ(::mkdirat(folder.get(), ("before" + std::to_string(sibling)).c_str(), 0755), 0);
            const auto deeper = "deeper" + std::to_string(level);
            ASSERT_EQ(::mkdirat(folder.get(), deeper.c_str(), 0755), 0);
            for (int sibling = siblings / 2; sibling < siblings; ++sibling)
                ASSERT_EQ(::mkdirat(folder.get(), ("behind" + std::to_string(sibling)).c_str(), 0755), 0);
            FileDescriptor next(::openat(folder.get(), deeper.c_str(), O_RDONLY | O_DIRECTORY));
            ASSERT_TRUE(next);
            folder = std::move(next);
        }
        const FileDescriptor file(::openat(folder.get(), "end", O_WRONLY | O_CREAT, 0644));
        const std::string contents(4096, 'x');
        ASSERT_EQ(::write(file.get(), contents.data(), contents.size()), 4096);
    }
};

TEST_F(SizeCalculatorTests, aMissingPathIsOneUnreadableEntry) {
    EXPECT_EQ(SizeCalculator::measure(temp.path("missing")), SizeResult{.unreadable = 1});
}

TEST_F(SizeCalculatorTests, aLinkToALargeFolderIsEmpty) {
    temp.file("large/file", {.allocatedBytes = 1 << 20});
    EXPECT_EQ(SizeCalculator::measure(temp.symlink("link", temp.path("large")), {.trackNewest = true}),
              SizeResult{});
}

TEST_F(SizeCalculatorTests, aFolderCountsTheBlocksAndLengthsOfItsFiles) {
    const auto one = temp.file("tree/one", {.text = "hello"});
    const auto two = temp.file("tree/sub/.hidden", {.allocatedBytes = 12'288});
    const auto result = SizeCalculator::measure(temp.path("tree"));
    EXPECT_EQ(result.bytes, blocksOf(one) + blocksOf(two));
    EXPECT_EQ(result.logicalBytes, 5 + 12'288);
    EXPECT_EQ(result.files, 2);
    EXPECT_EQ(result.unreadable, 0);
    EXPECT_TRUE(result.mountPoints.empty());
}

TEST_F(SizeCalculatorTests, foldersThemselvesCountNothing) {
    temp.folder("tree/a/b/c");
    EXPECT_EQ(SizeCalculator::measure(temp.path("tree")), SizeResult{});
}

TEST_F(SizeCalculatorTests, countsEachNameOfAHardLinkedFile) {
    const auto one = temp.file("tree/one", {.allocatedBytes = 8192});
    temp.hardLink("tree/sub/two", one);
    const auto result = SizeCalculator::measure(temp.path("tree"));
    EXPECT_EQ(result.bytes, 16'384);
    EXPECT_EQ(result.files, 2);
}

TEST_F(SizeCalculatorTests, aSparseFileCountsFarBelowItsLength) {
    temp.file("tree/sparse", {.sparseBytes = 1'000'000'000});
    const auto result = SizeCalculator::measure(temp.path("tree"));
    EXPECT_EQ(result.logicalBytes, 1'000'000'000);
    EXPECT_LT(result.bytes, 1'000'000);
}

TEST_F(SizeCalculatorTests, aLinkInsideIsCountedAsItselfAndNotFollowed) {
    temp.file("outside/large", {.allocatedBytes = 1 << 20});
    const auto link = temp.symlink("tree/link", temp.path("outside"));
    temp.symlink("tree/loop", temp.path("tree"));
    temp.symlink("tree/dangling", "nowhere");
    const auto result = SizeCalculator::measure(temp.path("tree"));
    EXPECT_EQ(result.files, 3);
    EXPECT_LT(result.bytes, 1 << 20);
    EXPECT_EQ(result.unreadable, 0);
}

TEST_F(SizeCalculatorTests, aPipeIsAnEntryAndIsNotOpened) {
    temp.folder("tree");
    ASSERT_EQ(::mkfifo(temp.path("tree/pipe").c_str(), 0600), 0);
    EXPECT_EQ(SizeCalculator::measure(temp.path("tree")), SizeResult{.files = 1});
    EXPECT_EQ(SizeCalculator::measure(temp.path("tree/pipe")).files, 1);
}

#ifndef __APPLE__ // whose file systems take no such names
TEST_F(SizeCalculatorTests, namesThatAreNoTextAreCountedLikeAnyOther) {
    temp.file("tree/\xff\xfe/\x80", {.allocatedBytes = 4096});
    temp.file("tree/two\nlines/\x1b[31m", {.allocatedBytes = 4096});
    const auto result = SizeCalculator::measure(temp.path("tree"));
    EXPECT_EQ(result.bytes, 8192);
    EXPECT_EQ(result.files, 2);
}
#endif

class SizeStampTests : public ::testing::Test {
protected:
    SizeStampTests() {
        temp.file("tree/a/file", {.text = "12345", .modified = 1'700'000'000});
        temp.folder("tree/empty");
        temp.symlink("tree/link", "target");
    }
    [[nodiscard]] std::uint64_t stamp(const std::string& relative = "tree") const {
        return SizeCalculator::measure(temp.path(relative), {.takeStamp = true}).stamp;
    }
    /// The change is seen.
    template <class Change> void expectSeen(const Change& change) const {
        const auto before = stamp();
        change();
        EXPECT_NE(stamp(), before);
    }

    TempFolder temp;
};

TEST_F(SizeStampTests, anUntouchedTreeKeepsItsStamp) {
    const auto before = stamp();
    EXPECT_NE(before, 0u);
    EXPECT_EQ(korvanti::testing::textOf(temp.path("tree/a/file")), "12345");
    EXPECT_EQ(stamp(), before);
}

TEST_F(SizeStampTests, noStampIsTakenUnlessAskedFor) {
    EXPECT_EQ(SizeCalculator::measure(temp.path("tree")).stamp, 0u);
    EXPECT_EQ(SizeCalculator::measure(temp.path("tree/a/file")).stamp, 0u);
}

TEST_F(SizeStampTests, aFileWrittenAnewWithTheSameLengthIsSeen) {
    expectSeen([&] { temp.file("tree/a/file", {.text = "54321"}); });
}

TEST_F(SizeStampTests, aModificationWithinTheSameSecondIsSeen) {
    expectSeen([&] {
        const timespec times[] = {{0, UTIME_OMIT}, {1'700'000'000, 1}};
        ASSERT_EQ(::utimensat(AT_FDCWD, temp.path("tree/a/file").c_str(), times, 0), 0);
    });
}

TEST_F(SizeStampTests, aNewEmptyFileIsSeen) {
    expectSeen([&] { temp.file("tree/a/new"); });
}

TEST_F(SizeStampTests, aNewFolderIsSeen) {
    expectSeen([&] { temp.folder("tree/a/new"); });
}

TEST_F(SizeStampTests, aNewNameIsSeen) {
    expectSeen(
        [&] { ASSERT_EQ(::rename(temp.path("tree/a/file").c_str(), temp.path("tree/a/elif").c_str()), 0); });
}

TEST_F(SizeStampTests, aFileThatMovesToAnotherFolderIsSeen) {
    expectSeen([&] {
        ASSERT_EQ(::rename(temp.path("tree/a/file").c_str(), temp.path("tree/empty/file").c_str()), 0);
    });
}

TEST_F(SizeStampTests, twoFilesThatChangePlacesAreSeen) {
    temp.file("tree/empty/file", {.text = "54321", .modified = 1'700'000'001});
    expectSeen([&] {
        ASSERT_EQ(::rename(temp.path("tree/a/file").c_str(), temp.path("tree/other").c_str()), 0);
        ASSERT_EQ(::rename(temp.path("tree/empty/file").c_str(), temp.path("tree/a/file").c_str()), 0);
        ASSERT_EQ(::rename(temp.path("tree/other").c_str(), temp.path("tree/empty/file").c_str()), 0);
    });
}

TEST_F(SizeStampTests, aSingleFileHasAStampToo) {
    const auto before = stamp("tree/a/file");
    temp.file("tree/a/file", {.text = "54321"});
    EXPECT_NE(stamp("tree/a/file"), before);
}

TEST_F(SizeCalculatorTests, appleDoubleFilesAreLeftOutOnlyWhenAsked) {
    temp.file("tree/._one", {.allocatedBytes = 4096});
    temp.file("tree/sub/._two", {.allocatedBytes = 4096});
    EXPECT_EQ(SizeCalculator::measure(temp.path("tree"), {.ignoreAppleDouble = true}), SizeResult{});
    EXPECT_EQ(SizeCalculator::measure(temp.path("tree")).bytes, 8192);
    EXPECT_EQ(SizeCalculator::measure(temp.path("tree")).files, 2);
}

TEST_F(SizeCalculatorTests, aFolderWithAnAppleDoubleNameIsEntered) {
    temp.file("tree/._folder/file", {.allocatedBytes = 4096});
    EXPECT_EQ(SizeCalculator::measure(temp.path("tree"), {.ignoreAppleDouble = true}).bytes, 4096);
}

TEST_F(SizeCalculatorTests, aSingleAppleDoubleFileIsCountedAllTheSame) {
    const auto file = temp.file("._file", {.allocatedBytes = 4096});
    const auto result = SizeCalculator::measure(file, {.ignoreAppleDouble = true});
    EXPECT_EQ(result.bytes, 4096);
    EXPECT_EQ(result.files, 1);
}

TEST_F(SizeCalculatorTests, theNewestDateOfAFolderIsTrackedOnlyWhenAsked) {
    temp.file("tree/old", {.modified = 1'000'000});
    temp.file("tree/sub/new", {.modified = 2'000'000});
    temp.file("tree/sub/middle", {.modified = 1'500'000});
    EXPECT_EQ(SizeCalculator::measure(temp.path("tree"), {.trackNewest = true}).newest,
              instantFromSeconds(2'000'000));
    EXPECT_EQ(SizeCalculator::measure(temp.path("tree")).newest, std::nullopt);
    EXPECT_EQ(SizeCalculator::measure(temp.folder("empty"), {.trackNewest = true}).newest, std::nullopt);
}

TEST_F(SizeCalculatorTests, datesBefore1970AreDatesToo) {
    temp.file("tree/old", {.modified = -1'000'000});
    EXPECT_EQ(SizeCalculator::measure(temp.path("tree"), {.trackNewest = true}).newest,
              instantFromSeconds(-1'000'000));
}

TEST_F(SizeCalculatorTests, aSingleFileAlwaysTellsItsDate) {
    const auto file = temp.file("file", {.text = "x", .modified = 1'234'567});
    EXPECT_EQ(SizeCalculator::measure(file).newest, instantFromSeconds(1'234'567));
}

TEST_F(SizeCalculatorTests, aFolderOfAHundredThousandEntriesIsCountedWhole) {
    temp.folder("tree");
    const int folder = ::open(temp.path("tree").c_str(), O_RDONLY | O_DIRECTORY);
    for (int i = 0; i < 100'000; ++i)
        ::close(::openat(folder, std::to_string(i).c_str(), O_WRONLY | O_CREAT, 0644));
    ::close(folder);
    EXPECT_EQ(SizeCalculator::measure(temp.path("tree")), SizeResult{.files = 100'000});
}

TEST_F(SizeCalculatorTests, aChainDeeperThanAPathMayBeLongIsWalkedToItsEnd) {
    makeChain(3000, 0);
    EXPECT_EQ(SizeCalculator::measure(temp.path()),
              (SizeResult{.bytes = 4096, .logicalBytes = 4096, .files = 1}));
    Platform::raiseOpenFileLimit(); // the library that removes the tree takes a descriptor for each level
}

TEST_F(SizeCalculatorTests, moreFoldersThanDescriptorsAreWalkedAllTheSame) {
    rlimit before{};
    ::getrlimit(RLIMIT_NOFILE, &before);
    const rlimit few = {.rlim_cur = 96, .rlim_max = before.rlim_max};
    makeChain(200, 6);
    // One thread goes down first and leaves siblings on its way for later.
    const tbb::global_control alone(tbb::global_control::max_allowed_parallelism, 1);
    ::setrlimit(RLIMIT_NOFILE, &few);
    const auto result = SizeCalculator::measure(temp.path());
    ::setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_EQ(result, (SizeResult{.bytes = 4096, .logicalBytes = 4096, .files = 1}));
}

TEST_F(SizeCalculatorTests, aTreeThatChangesDuringTheWalkGivesASizeAndNoFault) {
    temp.file("outside/large", {.allocatedBytes = 1 << 20});
    for (int i = 0; i < 50; ++i)
        temp.file("tree/stays" + std::to_string(i) + "/file", {.allocatedBytes = 4096});
    const auto swapped = temp.path("tree/swapped");
    std::atomic<bool> stop = false;
    std::thread other([&] {
        while (!stop) {
            ::mkdir(swapped.c_str(), 0755);
            ::rmdir(swapped.c_str());
            static_cast<void>(::symlink(temp.path("outside").c_str(), swapped.c_str()));
            ::unlink(swapped.c_str());
        }
    });
    for (int i = 0; i < 300; ++i) {
        const auto result = SizeCalculator::measure(temp.path("tree"));
        // The link itself may have been seen, never what it leads to.
        EXPECT_GE(result.bytes, 50 * 4096);
        EXPECT_LT(result.bytes, 50 * 4096 + 8192);
        EXPECT_EQ(result.unreadable, 0);
    }
    stop = true;
    other.join();
}

TEST_F(SizeCalculatorTests, manyThreadsMeasureAtOnceAndAgree) {
    for (int i = 0; i < 200; ++i)
        temp.file("tree/" + std::to_string(i % 20) + "/" + std::to_string(i), {.allocatedBytes = 4096});
    std::vector<SizeResult> results(14);
    std::vector<std::thread> threads;
    for (auto& result : results)
        threads.emplace_back(
            [&] { result = SizeCalculator::measure(temp.path("tree"), {.trackNewest = true}); });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(results.front().bytes, 200 * 4096);
    EXPECT_EQ(std::ranges::adjacent_find(results, std::not_equal_to()), results.end());
}

TEST_F(SizeCalculatorTests, measureAllGivesEachPathItsOwnResult) {
    std::vector<std::string> paths;
    for (int i = 1; i <= 20; ++i)
        paths.push_back(temp.file("file" + std::to_string(i), {.allocatedBytes = i * 4096}));
    paths.push_back(paths.front());
    paths.push_back(temp.path("missing"));
    const auto results = SizeCalculator::measureAll(paths);
    ASSERT_EQ(results.size(), 21U);
    for (int i = 1; i <= 20; ++i)
        EXPECT_EQ(results.at(paths[static_cast<std::size_t>(i - 1)]).bytes, i * 4096);
    EXPECT_EQ(results.at(temp.path("missing")), SizeResult{.unreadable = 1});
}

TEST_F(SizeCalculatorTests, measureAllTracksTheNewestDateWhenAskedAndNeverLeavesAppleDoubleOut) {
    temp.file("tree/._file", {.allocatedBytes = 4096, .modified = 1'000});
    const auto tree = temp.path("tree");
    EXPECT_EQ(SizeCalculator::measureAll({tree}, {.trackNewest = true}).at(tree).newest,
              instantFromSeconds(1'000));
    EXPECT_EQ(SizeCalculator::measureAll({tree}).at(tree).newest, std::nullopt);
    EXPECT_EQ(SizeCalculator::measureAll({tree}).at(tree).bytes, 4096);
}

TEST_F(SizeCalculatorTests, measureAllWithoutConcurrencyMeasuresNothing) {
    EXPECT_TRUE(SizeCalculator::measureAll({temp.file("file")}, {.concurrency = 0}).empty());
}

TEST_F(SizeCalculatorTests, measureAllOfNothingIsEmpty) {
    EXPECT_TRUE(SizeCalculator::measureAll({}).empty());
}

TEST_F(SizeCalculatorTests, measureAllWithNegativeConcurrencyIsAFault) {
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(static_cast<void>(SizeCalculator::measureAll({}, {.concurrency = -1})), "");
}

} // namespace
} // namespace korvanti
