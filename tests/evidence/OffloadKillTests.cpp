// Moves to a volume and back that end at any moment or meet any fault: at each instant one complete copy
// exists, what is told is true, and the next attempt works. As root in the box.
#include "OffloadWorld.h"
#include "TreePicture.h"
#include "fs/PathTools.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace korvanti::testing {
namespace {

using ::testing::AnyOf;
using ::testing::Contains;
using ::testing::Not;

unsigned seedOfTheRun() {
    const char* const given = std::getenv("KORVANTI_SEED");
    return given ? static_cast<unsigned>(std::strtoul(given, nullptr, 10)) : std::random_device()();
}

/// How a move is disturbed.
enum class Trouble {
    killed,         ///< at some time
    killedWithTool, ///< and the tool with it
    killedBefore,   ///< some call
    killedBehind,
    volumeGone,
    diskFull,
    callFails,     ///< a call of the program
    toolCallFails, ///< a call of the tool that copies
    toolDies
};
constexpr std::array troubles = {Trouble::killed,       Trouble::killedWithTool, Trouble::killedBefore,
                                 Trouble::killedBehind, Trouble::volumeGone,     Trouble::diskFull,
                                 Trouble::callFails,    Trouble::toolCallFails,  Trouble::toolDies};
constexpr std::array troubleNames = {
    "killed",      "killed with tool", "killed before a call", "killed behind a call",
    "volume gone", "disk full",        "a call fails",         "a call of the tool fails",
    "tool dies"};
const char* nameOf(Trouble trouble) {
    return troubleNames[static_cast<std::size_t>(trouble)];
}

bool kills(Trouble trouble) {
    return trouble <= Trouble::killedBehind;
}

/// Calls after which the disk is another.
const std::set<std::string> changing = {"unlinkat", "symlink",     "symlinkat", "mkdir",
                                        "mkdirat",  "rename",      "mkostemp",  "syncfs",
                                        "write",    "posix_spawn", "waitpid",   "fsync"};

/// Those of them that there are few of, between the long stretches of reading and removing.
const std::set<std::string> decisive = {"symlink", "symlinkat", "mkdir",       "mkdirat", "rename",
                                        "syncfs",  "mkostemp",  "posix_spawn", "fsync"};

struct CallMade {
    std::string function;
    int number = 0; ///< among those of the same function
};

/// What is left of a tree at a place.
enum class State { none, link, part, whole };
constexpr std::array stateNames = {"none", "link", "part", "whole"};

struct Aftermath {
    State old = State::none;  ///< at the old place
    State copy = State::none; ///< on the volume
    bool recorded = false;
    bool operator==(const Aftermath&) const = default;

    std::string text() const {
        return std::string("old ") + stateNames[static_cast<std::size_t>(old)] + ", copy " +
               stateNames[static_cast<std::size_t>(copy)] + (recorded ? ", recorded" : "");
    }
};

/// How the disturbed run ended.
struct Ending {
    std::string answer; ///< its first word; empty when it was killed
    std::string line;
    std::string failedCall; ///< with its target
    Aftermath left;

    /// The call that failed is one about the records, which fails no move.
    bool wasAboutRecords() const {
        return failedCall.contains("/Korvanti/offloads.json") || failedCall.contains("manifest.json") ||
               failedCall.ends_with("/Korvanti") || failedCall.contains("/activity.jsonl");
    }
};

class OffloadKillTests : public ::testing::Test {
protected:
    OffloadKillTests() : random(seed) { std::printf("KORVANTI_SEED=%u\n", seed); }

    ~OffloadKillTests() override {
        for (const auto& [what, count] : table)
            std::printf("%5d  %s\n", count, what.c_str());
    }

    int number(int first, int last) { return std::uniform_int_distribution(first, last)(random); }

    State stateOf(const std::string& path, const OffloadWorld& world) const {
        if (!PathTools::exists(path))
            return State::none;
        if (PathTools::isSymlink(path))
            return State::link;
        const auto picture = pictureOf(path);
        return picture == world.tree() ? State::whole : State::part;
    }

    Aftermath aftermath(const OffloadWorld& world) const {
        const auto records = OffloadWorld::recordsIn(world.store());
        const bool recorded =
            std::ranges::any_of(records, [&](const auto& one) { return one.originalPath == world.source(); });
        return {.old = stateOf(world.source(), world),
                .copy = stateOf(world.copy(), world),
                .recorded = recorded};
    }

    /// The calls of an undisturbed run, and how long one takes.
    struct Course {
        std::vector<CallMade> calls;
        std::vector<CallMade> changing;
        std::vector<CallMade> decisive;
        std::chrono::microseconds time{};
    };
    template <class Build>
    Course courseOf(const Build& build, const std::vector<std::string>& command, const std::string& answer) {
        Course course;
        {
            const OffloadWorld world(places);
            build(world);
            const auto begin = std::chrono::steady_clock::now();
            EXPECT_EQ(runWithChildren(command).out, answer + "\n");
            course.time = std::chrono::duration_cast<std::chrono::microseconds>(
                std::chrono::steady_clock::now() - begin);
        }
        if (aSanitizerStandsInTheWay)
            return course;
        const OffloadWorld world(places);
        build(world);
        EXPECT_EQ(runWithChildren(command, {.environment = {{"LD_PRELOAD", KORVANTI_CALL_PRELOAD},
                                                            {"KORVANTI_FAULT_RECORD", record}}})
                      .out,
                  answer + "\n");
        std::map<std::string, int> counts;
        std::ifstream lines(record);
        for (std::string line; std::getline(lines, line);) {
            const auto function = line.substr(0, line.find(' '));
            if (function.empty() || !line.contains(' '))
                continue;
            course.calls.push_back({function, ++counts[function]});
            if (changing.contains(function))
                course.changing.push_back(course.calls.back());
            if (decisive.contains(function))
                course.decisive.push_back(course.calls.back());
        }
        EXPECT_FALSE(course.changing.empty() || course.decisive.empty());
        return course;
    }

    /// Runs a move in such a trouble.
    Ending disturbed(Trouble trouble, std::vector<std::string> command, const Course& course,
                     const OffloadWorld& world) {
        std::filesystem::remove(record);
        ProgramOptions options;
        const auto* const moment =
            std::array{"before", "middle", "after"}[static_cast<std::size_t>(number(0, 2))];
        const int errors[] = {EIO, ENOSPC};
        const int error = errors[number(0, 1)];
        const auto script = [&](const std::string& body) {
            OffloadWorld::setDitto(moment + ("() { " + body + "; }"));
        };
        switch (trouble) {
        case Trouble::killed:
        case Trouble::killedWithTool: {
            char seconds[32];
            std::snprintf(seconds, sizeof seconds, "%.6f",
                          std::uniform_real_distribution(0.02, 1.1)(random) *
                              static_cast<double>(course.time.count()) / 1e6);
            std::vector<std::string> words = {"timeout", "--signal=KILL"};
            if (trouble == Trouble::killed)
                words.emplace_back("--foreground");
            words.emplace_back(seconds);
            command.insert(command.begin(), words.begin(), words.end());
            break;
        }
        case Trouble::killedBefore:
        case Trouble::killedBehind:
        case Trouble::callFails: {
            const std::vector<CallMade>* const choices[] = {&course.calls, &course.changing,
                                                            &course.decisive};
            const auto& calls = *choices[number(0, 2)];
            const auto& call = calls[static_cast<std::size_t>(number(0, static_cast<int>(calls.size()) - 1))];
            const int what = trouble == Trouble::killedBefore   ? -1
                             : trouble == Trouble::killedBehind ? -2
                                                                : error;
            options.environment = {{"LD_PRELOAD", KORVANTI_CALL_PRELOAD},
                                   {"KORVANTI_FAULT", call.function + " " + std::to_string(call.number) +
                                                          " " + std::to_string(what)},
                                   {"KORVANTI_FAULT_RECORD", record}};
            break;
        }
        case Trouble::volumeGone:
            script("umount -l /Volumes/SSD");
            break;
        case Trouble::diskFull:
            script("fill");
            break;
        case Trouble::toolDies:
            script("die");
            break;
        case Trouble::toolCallFails: {
            // What cp takes for a failure. An attribute that can't be kept is none to it.
            const char* const functions[] = {"openat",    "copy_file_range", "mkdir",  "mkdirat",
                                             "symlinkat", "linkat",          "fchmod", "utimensat"};
            OffloadWorld::setDitto("before() { export LD_PRELOAD=" KORVANTI_CALL_PRELOAD " KORVANTI_FAULT='" +
                                   std::string(functions[number(0, std::ssize(functions) - 1)]) + " " +
                                   std::to_string(number(1, 6)) + " " + std::to_string(error) + "'; }");
            break;
        }
        }
        const auto program = runWithChildren(command, options);
        Ending ending{.line = program.out};
        ending.answer = program.out.substr(0, program.out.find_first_of(" \n"));
        std::getline(std::ifstream(record), ending.failedCall);
        // Without the list there is no record to bring back.
        EXPECT_TRUE(kills(trouble) || program.status == 0 ||
                    (program.status == 2 && ending.wasAboutRecords()))
            << program.status << program.err;
        ending.left = aftermath(world);
        ++table[std::string(nameOf(trouble)) + ": " + (ending.answer.empty() ? "-" : ending.answer) + ": " +
                ending.left.text()];
        ++troublesMet[trouble];
        states.insert(ending.left.text());
        answers.insert(ending.answer);
        return ending;
    }

    static std::string told(Trouble trouble, const Ending& ending) {
        return std::string(nameOf(trouble)) + " (" + ending.failedCall + "): " + ending.line + " left " +
               ending.left.text();
    }

    /// The list on the volume is no more damaged than the store.
    static void expectRecordsOfOthers(const OffloadWorld& world, const Ending& ending) {
        if (!ending.wasAboutRecords()) {
            EXPECT_THAT(OffloadWorld::recordsIn(world.store()), Contains(world.other()));
        }
        const auto manifest = OffloadWorld::recordsIn("/box/disk/Korvanti Offload/manifest.json");
        EXPECT_LE(manifest.size(), 2U);
    }

    /// Another folder goes to the volume and comes back.
    void expectServiceWorks(const OffloadWorld& world) {
        places.home.file("Library/Developer/Xcode/spare/file", {.text = "spare"});
        const auto spare = places.home.path("Library/Developer/Xcode/spare");
        const auto picture = pictureOf(spare);
        EXPECT_EQ(runWithChildren(world.offloadCommand(true, spare)).out, "moved\n");
        EXPECT_TRUE(PathTools::isSymlink(spare));
        EXPECT_EQ(runWithChildren(world.command("restore")).out, "restored\n");
        EXPECT_EQ(pictureOf(spare), picture);
    }

    unsigned seed = seedOfTheRun();
    std::mt19937 random;
    OffloadPlaces places;
    std::string record = "/box/calls.recorded";
    std::map<std::string, int> table;
    std::map<Trouble, int> troublesMet;
    std::set<std::string> states;
    std::set<std::string> answers;
};

std::vector<Trouble> troublesPossible() {
    if (!aSanitizerStandsInTheWay)
        return {troubles.begin(), troubles.end()};
    return {Trouble::killed, Trouble::killedWithTool, Trouble::volumeGone, Trouble::diskFull,
            Trouble::toolDies};
}

constexpr int movesEachWay = 306;

TEST_F(OffloadKillTests, anOffloadThatIsDisturbedLeavesOneCompleteCopyAndTheNextWorks) {
    std::map<bool, Course> courses;
    for (const bool link : {false, true}) {
        const auto command = OffloadWorld(places).offloadCommand(link);
        courses[link] = courseOf([](const OffloadWorld& world) { world.buildSource(); }, command, "moved");
    }
    for (int i = 0; i < movesEachWay && !HasFailure(); ++i) {
        const auto possible = troublesPossible();
        const auto trouble = possible[static_cast<std::size_t>(i) % possible.size()];
        const bool link = number(0, 1) == 0;
        OffloadWorld world(places);
        world.buildSource();
        const auto neighbours = world.neighbours();

        const auto ending = disturbed(trouble, world.offloadCommand(link), courses[link], world);
        SCOPED_TRACE(told(trouble, ending));
        const auto& left = ending.left;
        const bool gone = left.old == State::none || left.old == State::link;

        EXPECT_TRUE(left.old == State::whole || left.copy == State::whole);
        EXPECT_EQ(differences(neighbours, world.neighbours()), "");
        EXPECT_TRUE(!left.recorded || (gone && left.copy == State::whole));
        EXPECT_TRUE(left.old != State::part || isPartOf(pictureOf(world.source()), world.tree()));
        EXPECT_TRUE(left.old != State::link || link);
        if (left.old == State::link) {
            EXPECT_EQ(world.onDisk(std::filesystem::read_symlink(world.source())), world.copy());
        }
        expectRecordsOfOthers(world, ending);
        if (ending.answer == "moved") {
            EXPECT_EQ(left.old, link ? State::link : State::none);
            EXPECT_TRUE(left.recorded || ending.wasAboutRecords());
        } else if (ending.answer == "copyFailed") {
            EXPECT_EQ(left.old, State::whole);
            EXPECT_TRUE(left.copy == State::none || trouble == Trouble::volumeGone ||
                        trouble == Trouble::callFails);
        } else if (ending.answer == "verifyFailed") {
            EXPECT_EQ(left.old, State::whole);
            EXPECT_TRUE(left.copy != State::none || trouble == Trouble::volumeGone);
        } else if (!ending.answer.empty() && ending.answer != "system") {
            EXPECT_EQ(left.old, State::whole);
        }
        EXPECT_TRUE(ending.answer == "moved" || ending.answer.empty() || !left.recorded);

        // Everything is in order again, and the user goes on.
        world.putRight();
        if (left.old == State::whole) {
            EXPECT_EQ(runWithChildren(world.offloadCommand(link)).out, "moved\n");
            const auto records = OffloadWorld::recordsIn(world.store());
            ASSERT_FALSE(records.empty());
            EXPECT_EQ(pictureOf(world.onDisk(records.back().destinationPath)), world.tree());
            EXPECT_EQ(PathTools::isSymlink(world.source()), link);
            EXPECT_EQ(runWithChildren(world.command("restore")).out, "restored\n");
            EXPECT_EQ(pictureOf(world.source()), world.tree());
        } else if (left.recorded) {
            EXPECT_EQ(runWithChildren(world.command("restore")).out, "restored\n");
            EXPECT_EQ(pictureOf(world.source()), world.tree());
            EXPECT_EQ(pictureOf(world.copy()), Snapshot());
        } else {
            const auto again = runWithChildren(world.offloadCommand(link)).out;
            EXPECT_TRUE(left.old == State::part ? again == "moved\n" : again.starts_with("sourceMissing"))
                << again;
            EXPECT_EQ(pictureOf(world.copy()), world.tree());
        }
        expectServiceWorks(world);
    }
    for (const auto trouble : troublesPossible())
        EXPECT_GE(troublesMet[trouble], movesEachWay / std::ssize(troubles)) << nameOf(trouble);
    EXPECT_THAT(states, Contains("old whole, copy none"));
    EXPECT_THAT(states, Contains("old whole, copy part"));
    EXPECT_THAT(states, Contains("old whole, copy whole"));
    EXPECT_THAT(states, Contains("old none, copy whole, recorded"));
    EXPECT_THAT(states, Contains("old link, copy whole, recorded"));
    EXPECT_THAT(answers, Contains("copyFailed"));
    if (!aSanitizerStandsInTheWay) {
        EXPECT_THAT(states, Contains("old part, copy whole"));
        EXPECT_THAT(states, Contains(AnyOf("old none, copy whole", "old link, copy whole")));
        EXPECT_THAT(answers, Contains("system"));
    }
}

TEST_F(OffloadKillTests, aRestoreThatIsDisturbedLeavesOneCompleteCopyAndTheNextWorks) {
    std::map<bool, Course> courses;
    for (const bool link : {false, true}) {
        const auto command = OffloadWorld(places).command("restore");
        courses[link] =
            courseOf([&](const OffloadWorld& world) { world.buildCopy(link); }, command, "restored");
    }
    for (int i = 0; i < movesEachWay && !HasFailure(); ++i) {
        const auto possible = troublesPossible();
        const auto trouble = possible[static_cast<std::size_t>(i) % possible.size()];
        const bool link = number(0, 1) == 0;
        OffloadWorld world(places);
        world.buildCopy(link);
        const auto neighbours = world.neighbours();

        const auto ending = disturbed(trouble, world.command("restore"), courses[link], world);
        SCOPED_TRACE(told(trouble, ending));
        const auto& left = ending.left;

        EXPECT_TRUE(left.old == State::whole || left.copy == State::whole);
        EXPECT_EQ(differences(neighbours, world.neighbours()), "");
        EXPECT_TRUE(left.copy != State::part || isPartOf(pictureOf(world.copy()), world.tree()));
        if (!left.recorded && !ending.wasAboutRecords()) {
            EXPECT_EQ(left.old, State::whole);
            EXPECT_EQ(left.copy, State::none);
        }
        expectRecordsOfOthers(world, ending);
        if (ending.answer == "restored") {
            EXPECT_EQ(left.old, State::whole);
            EXPECT_EQ(left.copy, State::none);
            // A list that doesn't fit on the disk fails no move; the record is then about nothing.
            EXPECT_TRUE(!left.recorded || ending.wasAboutRecords() || trouble == Trouble::diskFull);
        } else if (!ending.answer.empty() && ending.answer != "system") {
            EXPECT_EQ(left.copy, State::whole);
            EXPECT_TRUE(left.recorded);
        }

        // Everything is in order again, and the user goes on.
        world.putRight();
        if (left.copy == State::whole && left.recorded) {
            if (left.old == State::part || left.old == State::whole) {
                const auto again = runWithChildren(world.command("restore")).out;
                EXPECT_TRUE(again.starts_with("originalOccupied")) << again;
                EXPECT_EQ(pictureOf(world.copy()), world.tree());
                std::filesystem::remove_all(world.source());
            }
            EXPECT_EQ(runWithChildren(world.command("restore")).out, "restored\n");
            EXPECT_EQ(pictureOf(world.copy()), Snapshot());
        } else if (left.recorded) {
            const auto again = runWithChildren(world.command("restore")).out;
            EXPECT_TRUE(left.copy == State::none ? again.starts_with("volumeMissing")
                                                 : again.starts_with("originalOccupied"))
                << again;
            EXPECT_EQ(runWithChildren(world.command("forget")).out, "forgotten\n");
        }
        EXPECT_EQ(pictureOf(world.source()), world.tree());
        EXPECT_THAT(OffloadWorld::recordsIn(world.store()), Not(Contains(world.record())));
        expectServiceWorks(world);
    }
    for (const auto trouble : troublesPossible())
        EXPECT_GE(troublesMet[trouble], movesEachWay / std::ssize(troubles)) << nameOf(trouble);
    EXPECT_THAT(states, Contains("old none, copy whole, recorded"));
    EXPECT_THAT(states, Contains("old part, copy whole, recorded"));
    EXPECT_THAT(states, Contains("old whole, copy whole, recorded"));
    EXPECT_THAT(states, Contains("old whole, copy none"));
    EXPECT_THAT(answers, Contains("copyFailed"));
    if (!aSanitizerStandsInTheWay) {
        EXPECT_THAT(states, Contains("old whole, copy part, recorded"));
        EXPECT_THAT(answers, Contains("system"));
    }
}

} // namespace
} // namespace korvanti::testing
