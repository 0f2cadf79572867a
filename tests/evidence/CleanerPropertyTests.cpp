#include "CleaningCases.h"
#include "CleaningModel.h"
#include "DiskPicture.h"

#include "base/Instant.h"
#include "base/Json.h"
#include "base/Text.h"
#include "base/Uuid.h"
#include "cleaning/ActivityLog.h"
#include "cleaning/Cleaner.h"
#include "cleaning/SafetyGuard.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <set>
#include <sstream>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace korvanti {
namespace {

using testing::CaseWorld;
using testing::CleaningCase;
using testing::CleaningModel;
using testing::Coverage;
using testing::DiskPicture;
using testing::MountMade;
using testing::Prediction;
using testing::SeenInTrash;
using testing::shown;

constexpr const char* logPath = "/box/activity.jsonl";
constexpr const char* callsPath = "/box/calls";
constexpr const char* oldLine = R"({"written":"before"})";
constexpr int shards = 8;

std::uint64_t fromEnvironment(const char* name, std::uint64_t otherwise) {
    const char* text = std::getenv(name);
    return text == nullptr ? otherwise : std::strtoull(text, nullptr, 0);
}

std::uint64_t firstSeed() {
    static const std::uint64_t seed =
        fromEnvironment("KORVANTI_SEED", std::random_device()() * std::uint64_t{1'000'000});
    return seed;
}

std::string textOf(const char* path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

bool concernsGradle(const CleanupItem& item) {
    return item.path.contains("/.gradle/");
}

/// All that went another way than the model says, in the words of a report.
class Complaints {
public:
    template <class Seen, class Expected>
    void compare(const std::string& what, const Seen& seen, const Expected& expected) {
        if (!(seen == expected))
            add(what + " is " + text(seen) + ", not " + text(expected));
    }
    void add(std::string line) { lines_.push_back(std::move(line)); }
    [[nodiscard]] const std::vector<std::string>& lines() const { return lines_; }

private:
    static std::string text(const std::string& words) { return "\"" + shown(words) + "\""; }
    static std::string text(bool truth) { return truth ? "true" : "false"; }
    template <std::integral Number> static std::string text(Number number) { return std::to_string(number); }

    std::vector<std::string> lines_;
};

std::string verdictText(const std::optional<GuardError>& error) {
    return error ? std::to_string(static_cast<int>(error->kind)) + " " + error->payload + " " +
                       error->description()
                 : "lets through";
}

template <class Result> std::optional<GuardError> refusalOf(const Result& result) {
    return result ? std::nullopt : std::optional(result.error());
}

/// The guard alone, on the disk as it is before the run.
void compareVerdicts(const CleaningCase& tried, const CleaningModel& model, Complaints& complaints) {
    const SafetyGuard guard(tried.home);
    const auto text = [&](const testing::Verdict& verdict) {
        return verdict ? std::to_string(static_cast<int>(verdict->kind)) + " " + verdict->payload + " " +
                             model.description(*verdict)
                       : "lets through";
    };
    unsigned turn = 0;
    const auto compareOn = [&](const std::string& path) {
        const bool isInTrash = turn % 2 != 0;
        const bool isUninstall = turn / 2 % 2 != 0;
        const auto seen =
            guard.validate(path, {.allowRepository = isInTrash, .allowApplicationBundle = isUninstall});
        const auto expected =
            model.verdictOn(path, {.allowRepository = isInTrash, .allowApplicationBundle = isUninstall});
        complaints.compare("Verdict on " + shown(path), verdictText(refusalOf(seen)), text(expected));
        ++turn;
    };
    for (const auto& item : tried.items) {
        complaints.compare("Verdict on item " + shown(item.path),
                           verdictText(refusalOf(guard.validate(item))), text(model.verdictOn(item)));
        compareOn(item.path);
        for (const auto& path : item.relatedPaths.value_or(std::vector<std::string>()))
            compareOn(path);
    }
}

struct Run {
    std::vector<CleanupOutcome> outcomes;
    std::vector<SeenInTrash> trash; ///< after each item
    std::vector<std::string> progress;
    Instant begin;
    Instant end;
};

Run run(const CleaningCase& tried) {
    Run run;
    run.begin = currentInstant();
    const bool looksIntoTrash = std::ranges::any_of(
        tried.items, [](const auto& item) { return item.action.kind == CleanupAction::Kind::trash; });
    const auto progress = [&](std::size_t index, std::size_t count, const std::string& title) {
        run.progress.push_back(std::to_string(index) + " " + std::to_string(count) + " " + title);
        if (index > 0)
            run.trash.push_back(looksIntoTrash ? testing::listed(testing::realHome + std::string("/.Trash"))
                                               : SeenInTrash());
    };
    run.outcomes = Cleaner(tried.home, ActivityLog(logPath)).run(tried.items, progress);
    run.end = currentInstant();
    return run;
}

void compareProgress(const CleaningCase& tried, const Run& run, Complaints& complaints) {
    const auto count = std::to_string(tried.items.size());
    std::vector<std::string> expected;
    for (const auto& item : tried.items)
        expected.push_back(std::to_string(expected.size()) + " " + count + " " + item.title);
    expected.push_back(count + " " + count + " ");
    if (run.progress != expected)
        complaints.add("The progress was told otherwise");
}

void compareOutcome(const CleanupItem& item, const CleanupOutcome& seen, const Prediction& expected,
                    Complaints& complaints) {
    const auto what = "Outcome of " + shown(item.path);
    if (!(seen.item == item))
        complaints.add(what + " is about another item");
    complaints.compare(what + ", success", seen.success, expected.success);
    complaints.compare(what + ", freed bytes", seen.freedBytes, expected.freedBytes);
    if (expected.message)
        complaints.compare(what + ", message", seen.message, *expected.message);
    else if (seen.message.empty())
        complaints.add(what + " has no message");
    if (!expected.complaint.empty())
        complaints.add(what + ": " + expected.complaint);
}

/// The lines of the log are JSON, which knows only Unicode.
void compareLog(const CleaningCase& tried, const Run& run, Complaints& complaints) {
    std::istringstream log(textOf(logPath));
    std::vector<std::string> lines;
    for (std::string line; std::getline(log, line);)
        lines.push_back(line);
    if (tried.hasLog) {
        if (lines.empty() || lines.front() != oldLine)
            return complaints.add("The log lost its old line");
        lines.erase(lines.begin());
    }
    complaints.compare("Number of lines in the log", lines.size(), run.outcomes.size());
    if (lines.size() != run.outcomes.size())
        return;
    std::set<std::string> identifiers;
    for (std::size_t index = 0; index < lines.size(); ++index) {
        const auto& outcome = run.outcomes[index];
        const auto json = Json::parse(lines[index], nullptr, false);
        const auto what = "Line " + std::to_string(index + 1) + " of the log";
        if (!json.is_object() || json.size() != 8)
            return complaints.add(what + " is " + shown(lines[index]));
        const auto text = [&](const char* key) {
            const auto value = json.find(key);
            return value != json.end() && value->is_string() ? value->get<std::string>() : "no text";
        };
        complaints.compare(what + ", kind", text("kind"), std::string(outcome.item.action.verb()));
        complaints.compare(what + ", title", text("title"), Text::repaired(outcome.item.title));
        complaints.compare(what + ", path", text("path"), Text::repaired(outcome.item.path));
        complaints.compare(what + ", message", text("message"), Text::repaired(outcome.message));
        if (json["bytes"] != outcome.freedBytes || !json["bytes"].is_number_integer())
            complaints.add(what + " has other bytes");
        if (json["success"] != outcome.success)
            complaints.add(what + " has another success");
        const auto date = instantFromStrictIso8601(text("date"));
        if (!date || text("date").size() != 20 || *date < run.begin - std::chrono::seconds(1) ||
            *date > run.end)
            complaints.add(what + " has the date " + text("date"));
        if (!Uuid::parse(text("id")) || !identifiers.insert(text("id")).second)
            complaints.add(what + " has the identifier " + text("id"));
    }
}

/// What went another way than the model says; nothing when all is well.
std::vector<std::string> complaintsOf(const CleaningCase& tried, Coverage& met) {
    Complaints complaints;
    std::filesystem::remove(logPath);
    if (tried.hasLog)
        std::ofstream(logPath) << oldLine << '\n';
    std::filesystem::resize_file(callsPath, 0);

    CaseWorld world(tried.makings);
    DiskPicture disk(testing::worldTops, testing::realHome, world.mounts());
    CleaningModel model(testing::realHome, disk, met);
    if (!world.mounts().empty())
        ++met["world: mounts"];
    Coverage beforehand;
    compareVerdicts(tried, CleaningModel(testing::realHome, disk, beforehand), complaints);

    const auto seen = run(tried);
    compareProgress(tried, seen, complaints);
    complaints.compare("Number of outcomes", seen.outcomes.size(), tried.items.size());
    if (seen.outcomes.size() == tried.items.size() && seen.trash.size() == tried.items.size()) {
        for (std::size_t index = 0; index < tried.items.size(); ++index)
            compareOutcome(tried.items[index], seen.outcomes[index],
                           model.perform(tried.items[index], seen.trash[index]), complaints);
    }
    for (const auto& line : disk.differencesFromDisk())
        complaints.add(line);
    if (!world.mounts().empty()) {
        if (!world.unmountAll())
            complaints.add("A mount could not be taken away");
        disk.forgetMounts();
        for (const auto& line : disk.differencesFromDisk())
            complaints.add("Below a mount: " + line);
    }
    compareLog(tried, seen, complaints);
    const bool stopsDaemons = std::ranges::any_of(tried.items, concernsGradle);
    complaints.compare("Calls of tools", textOf(callsPath),
                       std::string(stopsDaemons ? "pkill -f GradleDaemon\n" : ""));
    if (stopsDaemons)
        ++met["run: Gradle daemons stopped"];
    return complaints.lines();
}

/// Leaves out one after the other what the failure does not need.
CleaningCase shrunk(CleaningCase failing) {
    const auto stillFails = [](const CleaningCase& smaller) {
        Coverage met;
        return !complaintsOf(smaller, met).empty();
    };
    const auto shrink = [&](auto part) {
        bool isSmaller = false;
        for (std::size_t index = part(failing).size(); index-- > 0;) {
            auto smaller = failing;
            part(smaller).erase(part(smaller).begin() + static_cast<std::ptrdiff_t>(index));
            if (stillFails(smaller)) {
                failing = std::move(smaller);
                isSmaller = true;
            }
        }
        return isSmaller;
    };
    for (bool isSmaller = true; isSmaller;) {
        isSmaller = shrink([](CleaningCase& tried) -> auto& { return tried.items; });
        for (std::size_t index = 0; index < failing.items.size(); ++index) {
            if (failing.items[index].relatedPaths)
                isSmaller |= shrink(
                    [index](CleaningCase& tried) -> auto& { return *tried.items[index].relatedPaths; });
        }
        isSmaller |= shrink([](CleaningCase& tried) -> auto& { return tried.makings; });
    }
    return failing;
}

void report(const CleaningCase& tried) {
    const auto smallest = shrunk(tried);
    Coverage met;
    std::string text;
    for (const auto& line : complaintsOf(smallest, met))
        text += "  " + line + "\n";
    ADD_FAILURE() << "Repeat with KORVANTI_SEED=" << tried.seed
                  << " KORVANTI_CLEANER_CASES=1. The smallest that fails:\n"
                  << testing::described(smallest) << text;
}

struct KindToMeet {
    std::string name;
    std::uint64_t cases = 1'000; ///< in so many it can't be missed, unless the cases no longer lead there
};

std::vector<KindToMeet> kindsToMeet() {
    constexpr std::uint64_t many = 20'000;
    std::vector<KindToMeet> kinds = {
        {"refused: class Penting"},
        {"refused: class Dikelola sistem"},
        {"refused: identifier"},
        {"refused: manual step"},
        {"refused: another Trash"},
        {"refused: no slash in front"},
        {"refused: parent folder inside"},
        {"refused: parent folder at the end"},
        {"refused: NUL"},
        {"refused: environment file"},
        {"refused: home itself"},
        {"refused: outside home"},
        {"refused: directly in home"},
        {"refused: missing"},
        {"refused: repository"},
        {"refused: mount point", many},
        {"refused: mount inside", many},
        {"refused: application of the system", many},
        {"refused: application missing"},
        {"accepted: application"},
        {"accepted: link"},
        {"accepted: file"},
        {"accepted: folder"},
        {"accepted: repository in the Trash", many},
        {"text: not normalised"},
        {"text: application elsewhere"},
        {"failed: removal through a link", many},
        {"failed: removal of a mounted file", many},
        {"failed: move through a link", many},
        {"failed: move of a mount point", many},
        {"failed: move to another volume", many},
        {"failed: no folder as Trash"},
        {"related: not there"},
        {"related: done"},
        {"related: skipped"},
        {"Trash: made", many},
        {"Trash: own name"},
        {"Trash: another name", many},
        {"Trash: another name where it lay", many},
        {"Trash: empty"},
        {"Trash: with contents"},
        {"Trash: none to list"},
        {"done: deleted"},
        {"done: moved to the Trash"},
        {"done: moved with a mount inside", many},
        {"done: Trash emptied"},
        {"done: Trash emptied in part"},
        {"world: mounts"},
        {"run: Gradle daemons stopped"},
    };
    for (const auto suffix : testing::model::sensitiveSuffixes)
        kinds.push_back({"refused: suffix " + std::string(suffix), many});
    for (const auto root : testing::model::protectedRoots)
        kinds.push_back({"refused: root " + std::string(root), many});
    for (const auto tree : testing::model::protectedTrees)
        kinds.push_back({"refused: tree " + std::string(tree), many});
    for (const auto tree : testing::model::ownTrees)
        kinds.push_back({"refused: own tree " + std::string(tree), many});
    return kinds;
}

/// Nobody's processes are to be looked for: what stops the Gradle daemons only says that it was called.
bool layDownPkill() {
    constexpr const char* standIn = "/box/pkill";
    std::ofstream(standIn) << "#!/bin/sh\nprintf '%s\\n' \"pkill $*\" >>" << callsPath << "\n";
    return ::chmod(standIn, 0755) == 0 && ::mount(standIn, "/usr/bin/pkill", nullptr, MS_BIND, nullptr) == 0;
}

class CleanerPropertyTests : public ::testing::TestWithParam<int> {
protected:
    static void SetUpTestSuite() {
        isReady = std::filesystem::exists(callsPath) && ::chdir(testing::realHome) == 0 && layDownPkill();
    }
    inline static bool isReady = false;
};

TEST_P(CleanerPropertyTests, aRunDoesWhatTheModelSaysAndNothingElse) {
    ASSERT_TRUE(isReady) << "Only inside the box: tests/box/enter --root";
    const auto cases = fromEnvironment("KORVANTI_CLEANER_CASES", 10'000);
    std::printf("First seed: %llu\n", static_cast<unsigned long long>(firstSeed()));
    Coverage met;
    std::uint64_t done = 0;
    int failures = 0;
    const auto begin = std::chrono::steady_clock::now();
    for (auto index = static_cast<std::uint64_t>(GetParam()); index < cases && failures < 3;
         index += shards, ++done) {
        const auto tried = testing::randomCase(firstSeed() + index);
        if (!complaintsOf(tried, met).empty()) {
            report(tried);
            ++failures;
        }
    }
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - begin;
    std::printf("%llu cases, %.3f ms each\n", static_cast<unsigned long long>(done),
                time.count() / static_cast<double>(std::max<std::uint64_t>(done, 1)));
    for (const auto& [kind, count] : met)
        std::printf("%8ld %s\n", count, kind.c_str());

    for (const auto& kind : kindsToMeet()) {
        if (failures == 0 && done >= kind.cases) {
            EXPECT_GT(met[kind.name], 0) << kind.name;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Shards, CleanerPropertyTests, ::testing::Range(0, shards));

TEST(CleaningModelTests, itsTablesNameEachPlaceOnce) {
    std::set<std::string_view> names;
    names.insert(testing::model::sensitiveSuffixes.begin(), testing::model::sensitiveSuffixes.end());
    names.insert(testing::model::protectedRoots.begin(), testing::model::protectedRoots.end());
    names.insert(testing::model::protectedTrees.begin(), testing::model::protectedTrees.end());
    names.insert(testing::model::ownTrees.begin(), testing::model::ownTrees.end());
    EXPECT_EQ(names.size(), 11U + 35U + 28U + 1U);
    EXPECT_FALSE(names.contains(""));
}

} // namespace
} // namespace korvanti
