// What must come before what when a folder moves to a volume or back, what stays when one certain call fails,
// and two programs at it at once. As root in the box.
#include "OffloadWorld.h"
#include "TreePicture.h"
#include "fs/PathTools.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <thread>
#include <tuple>
#include <vector>

namespace korvanti::testing {
namespace {

using ::testing::AnyOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

using Lines = std::vector<std::string>;
constexpr const char* record = "/box/calls.recorded";

class OffloadFaultTests : public ::testing::Test {
protected:
    void SetUp() override {
        if (aSanitizerStandsInTheWay)
            GTEST_SKIP() << "a sanitizer stands in front of the same functions";
        std::filesystem::remove(record);
    }

    /// "FUNCTION TARGET" of each call, and "ditto ended" where that was.
    static Lines callsOf(const std::vector<std::string>& command, const std::string& answer) {
        OffloadWorld::setDitto("after() { echo 'ditto ended' >>/box/calls.recorded; }");
        const auto program = runWithChildren(command, {.environment = {{"LD_PRELOAD", KORVANTI_CALL_PRELOAD},
                                                                       {"KORVANTI_FAULT_RECORD", record}}});
        EXPECT_EQ(program.out, answer + "\n") << program.err;
        OffloadWorld::setDitto({});
        Lines lines;
        std::ifstream stream(record);
        for (std::string line; std::getline(stream, line);)
            lines.push_back(line);
        return lines;
    }

    /// Answers with the call's first line of that kind that fails.
    static std::string withFailing(const std::string& function, int number, int error,
                                   const std::vector<std::string>& command) {
        const auto fault = function + " " + std::to_string(number) + " " + std::to_string(error);
        std::filesystem::remove(record);
        const auto program = runWithChildren(command, {.environment = {{"LD_PRELOAD", KORVANTI_CALL_PRELOAD},
                                                                       {"KORVANTI_FAULT", fault},
                                                                       {"KORVANTI_FAULT_RECORD", record}}});
        EXPECT_TRUE(std::filesystem::exists(record) && std::filesystem::file_size(record) > 0)
            << "no such call: " << fault;
        return program.out;
    }

    static std::size_t first(const Lines& lines, std::size_t from,
                             const std::function<bool(const std::string&)>& is) {
        return static_cast<std::size_t>(
            std::ranges::find_if(lines.begin() + static_cast<std::ptrdiff_t>(from), lines.end(), is) -
            lines.begin());
    }

    /// A call that could take something from below a path.
    static bool takes(const std::string& line, const std::string& path) {
        return (line.starts_with("unlink") || line.starts_with("rename")) && line.contains(" " + path) &&
               !line.contains("manifest.json");
    }

    OffloadPlaces places;
};

TEST_F(OffloadFaultTests, theCopyIsOnItsDeviceBeforeTheSourceGoes) {
    const OffloadWorld world(places);
    world.buildSource();
    const auto calls = callsOf(world.offloadCommand(true), "moved");
    const auto ended = first(calls, 0, [](const auto& line) { return line == "ditto ended"; });
    const auto flushed =
        first(calls, ended, [](const auto& line) { return line.starts_with("syncfs /Volumes/SSD"); });
    const auto taken = first(calls, 0, [&](const auto& line) { return takes(line, world.source()); });
    ASSERT_LT(taken, calls.size());
    EXPECT_LT(ended, flushed);
    EXPECT_LT(flushed, taken);
}

TEST_F(OffloadFaultTests, whatWasBroughtBackIsOnItsDeviceBeforeTheCopyGoes) {
    const OffloadWorld world(places);
    world.buildCopy(true);
    const auto calls = callsOf(world.command("restore"), "restored");
    const auto ended = first(calls, 0, [](const auto& line) { return line == "ditto ended"; });
    const auto flushed =
        first(calls, ended, [&](const auto& line) { return line.starts_with("syncfs /Users/tester"); });
    const auto taken =
        first(calls, 0, [&](const auto& line) { return takes(line, world.record().destinationPath); });
    ASSERT_LT(taken, calls.size());
    EXPECT_LT(ended, flushed);
    EXPECT_LT(flushed, taken);
}

TEST_F(OffloadFaultTests, whereTheVolumeCantBeFlushedTheSourceStays) {
    const OffloadWorld world(places);
    world.buildSource();
    EXPECT_THAT(withFailing("syncfs", 1, EIO, world.offloadCommand(true)), StartsWith("system "));
    EXPECT_EQ(pictureOf(world.source()), world.tree());
    EXPECT_EQ(pictureOf(world.copy()), world.tree());
    EXPECT_THAT(OffloadWorld::recordsIn(world.store()), ElementsAre(world.other()));
}

TEST_F(OffloadFaultTests, whereTheHomeCantBeFlushedTheCopyStays) {
    const OffloadWorld world(places);
    world.buildCopy(true);
    EXPECT_THAT(withFailing("syncfs", 1, EIO, world.command("restore")), StartsWith("system "));
    EXPECT_EQ(pictureOf(world.source()), world.tree());
    EXPECT_EQ(pictureOf(world.copy()), world.tree());
    EXPECT_THAT(OffloadWorld::recordsIn(world.store()), ElementsAre(world.other(), world.record()));
}

TEST_F(OffloadFaultTests, withoutTheLinkTheCopyStaysAndThereIsNoRecord) {
    Lines calls;
    {
        const OffloadWorld world(places);
        world.buildSource();
        calls = callsOf(world.offloadCommand(true), "moved");
    }
    const OffloadWorld world(places);
    world.buildSource();
    const auto at = first(calls, 0, [&](const auto& line) {
        return line.starts_with("symlink") && line.ends_with(" " + world.source());
    });
    ASSERT_LT(at, calls.size());
    const auto function = calls[at].substr(0, calls[at].find(' '));
    const auto number = std::count_if(calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(at) + 1,
                                      [&](const auto& line) { return line.starts_with(function + " "); });
    for (const int error : {ENOSPC, EROFS}) {
        EXPECT_THAT(withFailing(function, static_cast<int>(number), error, world.offloadCommand(true)),
                    StartsWith("system "));
        EXPECT_FALSE(PathTools::exists(world.source()));
        EXPECT_EQ(pictureOf(world.copy()), world.tree());
        EXPECT_THAT(OffloadWorld::recordsIn(world.store()), ElementsAre(world.other()));
        std::filesystem::remove_all(world.copy());
        world.buildSource();
    }
}

/// Two programs on one volume and one store.
class TwoProgramsTests : public ::testing::Test {
protected:
    /// Runs both at once, the second a little later.
    static std::vector<std::string> answersOf(const std::vector<std::string>& one,
                                              const std::vector<std::string>& two,
                                              std::chrono::milliseconds later) {
        std::vector<std::string> answers(2);
        std::thread first([&] { answers[0] = runProgram(one).out; });
        std::this_thread::sleep_for(later);
        std::thread second([&] { answers[1] = runProgram(two).out; });
        first.join();
        second.join();
        return answers;
    }

    OffloadPlaces places;
};

TEST_F(TwoProgramsTests, twoFoldersEndCompleteAndRecordedOrRefused) {
    int refused = 0;
    int moved = 0;
    for (int later = 0; later < 40; later += 4) {
        const OffloadWorld world(places);
        world.buildSource();
        places.home.file("Library/Developer/Xcode/second/file", {.text = "second"});
        const auto second = places.home.path("Library/Developer/Xcode/second");
        const auto picture = pictureOf(second);
        if (later % 8 == 0)
            OffloadWorld::setDitto("middle() { sleep 0.05; }");

        const auto answers = answersOf(world.offloadCommand(true), world.offloadCommand(true, second),
                                       std::chrono::milliseconds(later));
        const auto records = OffloadWorld::recordsIn(world.store());
        const auto listed = OffloadWorld::recordsIn("/box/disk/Korvanti Offload/manifest.json");
        EXPECT_THAT(records, Contains(world.other()));
        for (const auto& [source, tree, answer] : {std::tuple(world.source(), world.tree(), answers[0]),
                                                   std::tuple(second, picture, answers[1])}) {
            SCOPED_TRACE(source + ": " + answer);
            const auto own = std::ranges::find(records, source, &OffloadRecord::originalPath);
            if (answer == "moved\n") {
                ++moved;
                ASSERT_NE(own, records.end());
                EXPECT_EQ(pictureOf(world.onDisk(own->destinationPath)), tree);
                EXPECT_TRUE(PathTools::isSymlink(source));
                EXPECT_THAT(listed, Contains(*own));
            } else {
                ++refused;
                EXPECT_THAT(answer, StartsWith("system "));
                EXPECT_EQ(own, records.end());
                EXPECT_EQ(pictureOf(source), tree);
            }
        }
        EXPECT_THAT(answers, Contains("moved\n"));
    }
    EXPECT_GT(moved, 0);
    EXPECT_GT(refused, 0);
}

TEST_F(TwoProgramsTests, oneFolderIsMovedOnce) {
    for (int later = 0; later < 40; later += 4) {
        const OffloadWorld world(places);
        world.buildSource();
        const auto answers = answersOf(world.offloadCommand(later % 8 == 0), world.offloadCommand(false),
                                       std::chrono::milliseconds(later));
        SCOPED_TRACE(answers[0] + answers[1]);
        EXPECT_EQ(std::ranges::count(answers, "moved\n"), 1);
        EXPECT_EQ(pictureOf(world.copy()), world.tree());
        EXPECT_EQ(pictureOf(world.copy() + " (2)"), Snapshot());
        EXPECT_THAT(OffloadWorld::recordsIn(world.store()), SizeIs(2));
    }
}

TEST_F(TwoProgramsTests, oneFolderIsBroughtBackOnce) {
    for (int later = 0; later < 40; later += 4) {
        const OffloadWorld world(places);
        world.buildCopy(true);
        if (later % 8 == 0)
            OffloadWorld::setDitto("middle() { sleep 0.05; }");
        const auto answers =
            answersOf(world.command("restore"), world.command("restore"), std::chrono::milliseconds(later));
        SCOPED_TRACE(answers[0] + answers[1]);
        // The second may find only the other record, whose folder it brings back.
        EXPECT_THAT(answers, Contains("restored\n"));
        EXPECT_EQ(pictureOf(world.source()), world.tree());
        EXPECT_EQ(pictureOf(world.copy()), Snapshot());
        EXPECT_THAT(OffloadWorld::recordsIn(world.store()), AnyOf(ElementsAre(world.other()), IsEmpty()));
    }
}

/// The program is killed, and the tool that it started goes on while the next program is at work.
class OutlivingToolTests : public ::testing::Test {
protected:
    /// Kills a program while its tool sleeps at such a moment.
    static void killAtRest(const std::string& moment, std::vector<std::string> command) {
        OffloadWorld::setDitto(moment + "() { rm /box/ditto; touch /box/resting; sleep 0.4; }");
        const std::vector<std::string> killer = {"sh", "-c",
                                                 "\"$@\" & while ! [ -e /box/resting ]; do sleep 0.01; done; "
                                                 "kill -KILL $!",
                                                 "sh"};
        command.insert(command.begin(), killer.begin(), killer.end());
        EXPECT_EQ(runProgram(command).out, "");
        std::filesystem::remove("/box/resting");
    }

    OffloadPlaces places;
};

TEST_F(OutlivingToolTests, theNextOffloadLosesNothing) {
    for (const auto* moment : {"before", "middle", "after"}) {
        const OffloadWorld world(places);
        world.buildSource();
        killAtRest(moment, world.offloadCommand(true));
        EXPECT_EQ(pictureOf(world.source()), world.tree());
        const auto program = runWithChildren(world.offloadCommand(true));
        ASSERT_EQ(program.out, "moved\n");
        const auto records = OffloadWorld::recordsIn(world.store());
        ASSERT_THAT(records, SizeIs(2));
        // A tool that had not begun yet takes the same name, and may add the link that it finds in the old
        // place.
        EXPECT_TRUE(isPartOf(world.tree(), pictureOf(world.onDisk(records[1].destinationPath)))) << moment;
    }
}

TEST_F(OutlivingToolTests, theNextRestoreLosesNothing) {
    for (const auto* moment : {"before", "middle", "after"}) {
        const OffloadWorld world(places);
        world.buildCopy(true);
        killAtRest(moment, world.command("restore"));
        const auto program = runWithChildren(world.command("restore"));
        EXPECT_TRUE(pictureOf(world.source()) == world.tree() || pictureOf(world.copy()) == world.tree())
            << moment << ": " << program.out;
        EXPECT_TRUE(program.out != "restored\n" || pictureOf(world.source()) == world.tree()) << moment;
    }
}

} // namespace
} // namespace korvanti::testing
