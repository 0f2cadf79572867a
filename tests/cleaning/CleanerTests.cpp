#include "cleaning/Cleaner.h"

#include "base/ByteText.h"
#include "base/Text.h"
#include "support/BoxFolder.h"
#include "support/Environment.h"
#include "support/NewProcess.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <limits>
#include <optional>
#include <ostream>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <utility>
#include <vector>

namespace korvanti {

inline void PrintTo(const CleanupOutcome& outcome, std::ostream* stream) {
    *stream << (outcome.success ? "success, " : "failure, ") << outcome.freedBytes << " bytes, \""
            << outcome.message << "\" for " << outcome.item.path;
}

namespace {

using namespace std::chrono_literals;
using testing::BoxMac;
using ::testing::Contains;
using ::testing::ElementsAre;
using testing::inANewProcess;
using ::testing::IsEmpty;
using testing::ScopedVariable;
using ::testing::SizeIs;
using testing::textOf;

const std::string udid = "E621E1F8-C36C-495A-93FC-0C247A3E6E5F";
const std::string openXcode =
    "Xcode sedang terbuka. Sebaiknya tutup Xcode dulu agar DerivedData/simulator tidak "
    "dipakai saat dihapus.";
const std::string runningGradle =
    "Gradle daemon sedang berjalan dan akan dihentikan sebelum cache Gradle dihapus.";
const std::string noPermission = "Tidak ada izin. Aktifkan Full Disk Access untuk Korvanti.";
const std::string needsAdmin = "Butuh izin admin. Hapus lewat Finder (seret ke Tong Sampah) atau Launchpad.";

constexpr std::int64_t bytes = 4711;

/// Something that may be deleted.
CleanupItem item(const std::string& path, const CleanupAction& action = CleanupAction::delete_(),
                 std::optional<std::vector<std::string>> related = std::nullopt) {
    return {.title = "Judul " + path,
            .detail = "Rincian",
            .path = path,
            .bytes = bytes,
            .category = ItemCategory::appCaches,
            .safety = Safety::costly,
            .action = action,
            .recommended = true,
            .warnings = {"Awas"},
            .relatedPaths = std::move(related)};
}

CleanupOutcome succeeded(const CleanupItem& item, std::int64_t freed, const std::string& message) {
    return {.item = item, .success = true, .freedBytes = freed, .message = message};
}
CleanupOutcome failed(const CleanupItem& item, const std::string& message) {
    return {.item = item, .success = false, .freedBytes = 0, .message = message};
}

/// There is an entry, be it a dangling link.
bool stands(const std::string& path) {
    return std::filesystem::symlink_status(path).type() != std::filesystem::file_type::not_found;
}

/// In the box as an ordinary user.
class CleanerTests : public ::testing::Test {
protected:
    CleanerTests() { mac.home.folder("Library/Caches"); }

    [[nodiscard]] std::string in(const std::string& relative) const { return mac.home.path(relative); }

    [[nodiscard]] std::vector<CleanupOutcome> run(const std::vector<CleanupItem>& items) const {
        return cleaner.run(items, [](auto, auto, const auto&) {});
    }
    /// The outcome of a run with this item alone.
    [[nodiscard]] CleanupOutcome outcomeOf(const CleanupItem& one) const {
        const auto outcomes = run({one});
        EXPECT_THAT(outcomes, SizeIs(1));
        return outcomes.empty() ? CleanupOutcome{} : outcomes.front();
    }
    /// A repository with something in it.
    std::string repository(const std::string& relative) const {
        mac.home.folder(relative + "/.git");
        return in(relative);
    }
    /// A file in a folder where nothing may be removed or added.
    std::string lockedFile(const std::string& relative) const {
        const auto file = mac.home.file(relative);
        mac.home.setMode(relative.substr(0, relative.rfind('/')), 0555);
        return file;
    }
    /// A folder that can't be removed since something in it can't.
    std::string lockedFolder(const std::string& relative) const {
        lockedFile(relative + "/locked/file");
        return in(relative);
    }
    [[nodiscard]] std::vector<std::string> logLines() const {
        if (!stands(log.url()))
            return {};
        std::vector<std::string> lines;
        const auto text = textOf(log.url());
        std::ranges::transform(Text::pieces(text, '\n'), std::back_inserter(lines),
                               [](auto line) { return std::string(line); });
        return lines;
    }

    const BoxMac mac;
    const ScopedVariable developer{"DEVELOPER_DIR", std::nullopt};
    const ActivityLog log{mac.home.file("log/activity.jsonl")};
    const Cleaner cleaner{mac.home.path(), log};
};

// Warnings before a run

class PreflightTests : public CleanerTests {
protected:
    PreflightTests() {
        mac.answer("pgrep -x Xcode", "4711\n");
        mac.answer("pgrep -f GradleDaemon", "4711\n");
    }

    static std::vector<std::string> warnings(const std::vector<CleanupItem>& items) {
        return Cleaner::preflightWarnings(items);
    }
    static CleanupItem of(ItemCategory category) {
        auto one = item("/Users/tester/x/y");
        one.category = category;
        return one;
    }
    static CleanupItem trashed(std::int64_t size) {
        auto one = item("/Users/tester/x/y", CleanupAction::trash());
        one.bytes = size;
        return one;
    }

    const ScopedVariable english{"LC_ALL", "C"};
};

TEST_F(PreflightTests, noItemsGiveNoWarningsAndStartNothing) {
    EXPECT_THAT(warnings({}), IsEmpty());
    EXPECT_THAT(BoxMac::calls(), IsEmpty());
}

TEST_F(PreflightTests, anOrdinaryItemStartsNothing) {
    EXPECT_THAT(warnings({item(in("Library/Caches/x"))}), IsEmpty());
    EXPECT_THAT(BoxMac::calls(), IsEmpty());
}

TEST_F(PreflightTests, anOpenXcodeIsToldOfForItsOwnItemsAndSimulators) {
    for (const auto category : {ItemCategory::xcode, ItemCategory::simulators})
        EXPECT_THAT(warnings({of(category)}), ElementsAre(openXcode));
    EXPECT_THAT(BoxMac::calls(), ElementsAre("pgrep -x Xcode", "pgrep -x Xcode"));
}

TEST_F(PreflightTests, noOtherCategoryAsksForXcode) {
    for (const auto category : allCases<ItemCategory>) {
        if (category != ItemCategory::xcode && category != ItemCategory::simulators) {
            EXPECT_THAT(warnings({of(category)}), IsEmpty()) << rawValue(category);
        }
    }
    EXPECT_THAT(BoxMac::calls(), IsEmpty());
}

TEST_F(PreflightTests, aClosedXcodeIsNoWarning) {
    for (const int status : {1, 2, 3}) {
        mac.answer("pgrep -x Xcode", "4711\n", status);
        EXPECT_THAT(warnings({of(ItemCategory::xcode)}), IsEmpty()) << status;
    }
}

TEST_F(PreflightTests, xcodeIsAskedForOnce) {
    const std::vector items = {item(in("Library/Caches/x")), of(ItemCategory::simulators),
                               of(ItemCategory::xcode), of(ItemCategory::simulators)};
    EXPECT_THAT(warnings(items), ElementsAre(openXcode));
    mac.answer("pgrep -x Xcode", "", 1);
    EXPECT_THAT(warnings(items), IsEmpty());
    EXPECT_THAT(BoxMac::calls(), ElementsAre("pgrep -x Xcode", "pgrep -x Xcode"));
}

TEST_F(PreflightTests, aRunningGradleDaemonIsToldOfForPathsInItsFolder) {
    for (const std::string& path :
         {in(".gradle/caches"), in(".gradle/"), in("Projects/app/.gradle/8.5"), std::string("/.gradle/x")}) {
        EXPECT_THAT(warnings({item(path)}), ElementsAre(runningGradle)) << path;
    }
    EXPECT_THAT(BoxMac::calls(), SizeIs(4));
    EXPECT_THAT(BoxMac::calls(), Contains("pgrep -f GradleDaemon").Times(4));
}

TEST_F(PreflightTests, noOtherPathAsksForTheGradleDaemon) {
    for (const std::string& path : {in(".gradle"), in("x/.gradle"), in("x.gradle/y"), in(".gradle-old/x"),
                                    in(".Gradle/x"), in("gradle/x"), std::string(".gradle/x")}) {
        auto one = item(path, CleanupAction::delete_(), {{in(".gradle/caches")}});
        one.title = one.detail = in(".gradle/caches");
        one.category = ItemCategory::android;
        EXPECT_THAT(warnings({one}), IsEmpty()) << path;
    }
    EXPECT_THAT(BoxMac::calls(), IsEmpty());
}

TEST_F(PreflightTests, aStoppedGradleDaemonIsNoWarning) {
    for (const int status : {1, 2, 3}) {
        mac.answer("pgrep -f GradleDaemon", "4711\n", status);
        EXPECT_THAT(warnings({item(in(".gradle/caches/x"))}), IsEmpty()) << status;
    }
}

TEST_F(PreflightTests, theGradleDaemonIsAskedForOnce) {
    EXPECT_THAT(warnings({item(in(".gradle/a/x")), item(in(".gradle/b/x"))}), ElementsAre(runningGradle));
    EXPECT_THAT(BoxMac::calls(), ElementsAre("pgrep -f GradleDaemon"));
}

TEST_F(PreflightTests, theWarningsComeInTheirOrder) {
    EXPECT_THAT(warnings({trashed(1'500'000), item(in(".gradle/a/x")), of(ItemCategory::simulators)}),
                ElementsAre(openXcode, runningGradle,
                            "1.5 MB dipindah ke Tong Sampah: ruangnya baru bebas setelah Tong Sampah "
                            "dikosongkan."));
    EXPECT_THAT(BoxMac::calls(), ElementsAre("pgrep -x Xcode", "pgrep -f GradleDaemon"));
}

TEST_F(PreflightTests, whatGoesToTheTrashIsAddedUp) {
    auto review = trashed(500'000);
    review.safety = Safety::review;
    auto kept = trashed(1'000'000'000);
    kept.safety = Safety::keep;
    EXPECT_THAT(warnings({trashed(1'000'000), item(in("Library/Caches/x")), review}),
                ElementsAre("1.5 MB dipindah ke Tong Sampah: ruangnya baru bebas setelah Tong Sampah "
                            "dikosongkan."));
    EXPECT_THAT(
        warnings({review, kept}),
        ElementsAre(bytesText(1'000'500'000) +
                    " dipindah ke Tong Sampah: ruangnya baru bebas setelah Tong Sampah dikosongkan."));
    EXPECT_THAT(BoxMac::calls(), IsEmpty());
}

TEST_F(PreflightTests, aSingleByteInTheTrashIsWorthANote) {
    EXPECT_THAT(
        warnings({trashed(0), trashed(1)}),
        ElementsAre(bytesText(1) +
                    " dipindah ke Tong Sampah: ruangnya baru bebas setelah Tong Sampah dikosongkan."));
    EXPECT_THAT(warnings({trashed(0), trashed(0)}), IsEmpty());
    EXPECT_THAT(warnings({trashed(-1)}), IsEmpty());
}

TEST_F(PreflightTests, onlyMovesToTheTrashAreAddedUp) {
    for (const auto& action :
         {CleanupAction::delete_(), CleanupAction::emptyTrash(), CleanupAction::manual("x"),
          CleanupAction::simulatorErase(udid), CleanupAction::simulatorDelete(udid),
          CleanupAction::simulatorRuntimeDelete(udid)})
        EXPECT_THAT(warnings({item(in("x/y"), action)}), IsEmpty()) << action.verb();
}

TEST_F(PreflightTests, theSizeIsInTheLanguageOfTheSystem) {
    const ScopedVariable indonesian("LC_ALL", "id_ID.UTF-8");
    EXPECT_THAT(warnings({trashed(1'500'000)}),
                ElementsAre("1,5 MB dipindah ke Tong Sampah: ruangnya baru bebas setelah Tong Sampah "
                            "dikosongkan."));
}

TEST_F(PreflightTests, aSumThatDoesNotFitEndsTheProgram) {
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    EXPECT_DEATH(static_cast<void>(warnings({trashed(most), trashed(1)})), "");
    EXPECT_THAT(warnings({trashed(most - 1), trashed(1)}), SizeIs(1));
}

TEST_F(PreflightTests, nothingIsTouched) {
    const auto path = mac.home.folder(".gradle/caches/x");
    static_cast<void>(warnings({item(path), item(path, CleanupAction::trash())}));
    EXPECT_TRUE(stands(path));
    EXPECT_THAT(logLines(), IsEmpty());
}

// The run

/// What a run tells while it goes on, and how far it had come at each call.
struct Step {
    std::size_t index;
    std::size_t count;
    std::string title;
    std::size_t logged;
    bool operator==(const Step&) const = default;
};

class RunTests : public CleanerTests {
protected:
    std::vector<CleanupOutcome> runInSteps(const std::vector<CleanupItem>& items,
                                           const std::function<void(std::size_t)>& atStep = {}) {
        return cleaner.run(items, [&](std::size_t index, std::size_t count, const std::string& title) {
            steps.push_back({index, count, title, logLines().size()});
            if (atStep)
                atStep(index);
        });
    }

    std::vector<Step> steps;
};

TEST_F(RunTests, noItemsAreOneCallAndStartNothing) {
    EXPECT_THAT(runInSteps({}), IsEmpty());
    EXPECT_THAT(steps, ElementsAre(Step{0, 0, "", 0}));
    EXPECT_THAT(BoxMac::calls(), IsEmpty());
    EXPECT_THAT(logLines(), IsEmpty());
}

TEST_F(RunTests, aStopLeavesWhatHasNotBegunUntouched) {
    const std::vector items = {item(mac.home.file("Library/Caches/a")), item(in("Library/Caches/missing")),
                               item(mac.home.file("Library/Caches/c"))};
    std::size_t asked = 0;
    const auto outcomes = cleaner.run(
        items,
        [&](std::size_t index, std::size_t count, const std::string& title) {
            steps.push_back({index, count, title, logLines().size()});
        },
        [&] { return ++asked > 2; });

    EXPECT_THAT(outcomes, SizeIs(2));
    EXPECT_THAT(steps,
                ElementsAre(Step{0, 3, items[0].title, 0}, Step{1, 3, items[1].title, 1}, Step{2, 3, "", 2}));
    EXPECT_EQ(asked, 3U);
    EXPECT_FALSE(stands(items[0].path));
    EXPECT_TRUE(stands(items[2].path));
}

TEST_F(RunTests, aStopBeforeTheFirstItemTouchesNone) {
    const auto one = item(mac.home.file("Library/Caches/a"));
    EXPECT_THAT(cleaner.run(
                    {one}, [](auto, auto, const auto&) {}, [] { return true; }),
                IsEmpty());
    EXPECT_TRUE(stands(one.path));
    EXPECT_THAT(logLines(), IsEmpty());
}

TEST_F(RunTests, theItemsAreDoneOneAfterAnotherAndEachIsLoggedAtOnce) {
    const std::vector items = {item(mac.home.file("Library/Caches/a")), item(in("Library/Caches/missing")),
                               item(mac.home.file("Library/Caches/c"), CleanupAction::trash())};
    std::vector<std::vector<bool>> there;
    const auto outcomes = runInSteps(items, [&](std::size_t) {
        there.push_back({stands(items[0].path), stands(items[2].path)});
    });

    EXPECT_THAT(outcomes, ElementsAre(succeeded(items[0], bytes, "Dihapus"),
                                      failed(items[1], "Sudah tidak ada: ~/Library/Caches/missing"),
                                      succeeded(items[2], 0, "Dipindah ke Tong Sampah")));
    EXPECT_THAT(steps, ElementsAre(Step{0, 3, items[0].title, 0}, Step{1, 3, items[1].title, 1},
                                   Step{2, 3, items[2].title, 2}, Step{3, 3, "", 3}));
    EXPECT_THAT(there, ElementsAre(ElementsAre(true, true), ElementsAre(false, true),
                                   ElementsAre(false, true), ElementsAre(false, false)));
}

TEST_F(RunTests, eachItemIsJudgedRightBeforeItAndNotInAdvance) {
    const auto repositoryNow = repository("Projects/was-a-repository");
    const std::vector items = {item(in("Projects/was-a-repository/.git")), item(repositoryNow),
                               item(mac.home.folder("Projects/becomes-a-repository"))};
    const auto outcomes = runInSteps(items, [&](std::size_t index) {
        if (index == 2)
            repository("Projects/becomes-a-repository");
    });

    EXPECT_THAT(
        outcomes,
        ElementsAre(succeeded(items[0], bytes, "Dihapus"), succeeded(items[1], bytes, "Dihapus"),
                    failed(items[2], "Ini repository git (kode sumber): ~/Projects/becomes-a-repository")));
    EXPECT_TRUE(stands(in("Projects/becomes-a-repository/.git")));
}

TEST_F(RunTests, theSamePathTwiceIsGoneTheSecondTime) {
    const auto one = item(mac.home.file("Library/Caches/a"));
    EXPECT_THAT(run({one, one}), ElementsAre(succeeded(one, bytes, "Dihapus"),
                                             failed(one, "Sudah tidak ada: ~/Library/Caches/a")));
}

TEST_F(RunTests, anImportantItemIsRefusedAndLoggedAndTheRunGoesOn) {
    auto kept = item(mac.home.file("Library/Caches/kept"));
    kept.safety = Safety::keep;
    auto managed = item(mac.home.file("Library/Caches/managed"), CleanupAction::trash());
    managed.safety = Safety::managed;
    const auto last = item(mac.home.file("Library/Caches/last"));

    EXPECT_THAT(runInSteps({kept, managed, last}),
                ElementsAre(failed(kept, "Tidak boleh dihapus: Penting"),
                            failed(managed, "Tidak boleh dihapus: Dikelola sistem"),
                            succeeded(last, bytes, "Dihapus")));
    EXPECT_TRUE(stands(kept.path));
    EXPECT_TRUE(stands(managed.path));
    EXPECT_FALSE(stands(last.path));
    const auto entries = log.load(500);
    ASSERT_THAT(entries, SizeIs(3));
    EXPECT_FALSE(entries[2].success);
    EXPECT_EQ(entries[2].message, "Tidak boleh dihapus: Penting");
    EXPECT_EQ(entries[2].path, kept.path);
}

TEST_F(RunTests, anOutcomeIsNamedByThePathOfItsItem) {
    const auto one = item(in("Library/Caches/x"));
    EXPECT_EQ(outcomeOf(one).id(), one.path);
}

TEST_F(RunTests, everyFieldOfTheItemIsGivenBack) {
    auto one =
        item(mac.home.file("Library/Caches/x"), CleanupAction::delete_(), {{in("Library/Caches/none")}});
    one.lastActivity = instantFromSeconds(1);
    one.offloadable = true;
    EXPECT_EQ(outcomeOf(one), succeeded(one, bytes, "Dihapus"));
}

TEST_F(RunTests, freedBytesAreThoseOfTheScan) {
    for (const std::int64_t size :
         {std::int64_t{0}, std::int64_t{-5}, std::numeric_limits<std::int64_t>::max()}) {
        auto one = item(mac.home.file("Library/Caches/x", {.text = "text"}));
        one.bytes = size;
        EXPECT_EQ(outcomeOf(one), succeeded(one, size, "Dihapus"));
    }
}

TEST_F(RunTests, whatAnotherHomeHoldsIsOutside) {
    const auto one = item(mac.home.file("Library/Caches/x"));
    EXPECT_THAT(Cleaner("/Users/other", log).run({one}, [](auto, auto, const auto&) {}),
                ElementsAre(failed(one, "Di luar area yang boleh dibersihkan: ~/Library/Caches/x")));
    EXPECT_TRUE(stands(one.path));
}

TEST_F(RunTests, theHomeMayBeWrittenInAnotherWay) {
    const Cleaner other("//Users/./tester/", log);
    const std::vector items = {item(mac.home.file("Library/Caches/a")),
                               item(mac.home.file("Library/Caches/b"), CleanupAction::trash()),
                               item(in(".Trash"), CleanupAction::emptyTrash())};
    EXPECT_THAT(other.run(items, [](auto, auto, const auto&) {}),
                ElementsAre(succeeded(items[0], bytes, "Dihapus"),
                            succeeded(items[1], 0, "Dipindah ke Tong Sampah"),
                            succeeded(items[2], bytes, "Tong Sampah dikosongkan")));
    EXPECT_TRUE(std::filesystem::is_empty(in(".Trash")));
}

TEST_F(RunTests, allHappensOnTheThreadOfTheCaller) {
    const auto here = std::this_thread::get_id();
    static_cast<void>(runInSteps({item(mac.home.file("Library/Caches/x"))},
                                 [&](std::size_t) { EXPECT_EQ(std::this_thread::get_id(), here); }));
    EXPECT_THAT(steps, SizeIs(2));
}

// The Gradle daemons

TEST_F(RunTests, theGradleDaemonsAreStoppedOnceBeforeTheFirstItem) {
    const std::vector items = {item(mac.home.folder("Library/Caches/x")),
                               item(mac.home.folder(".gradle/caches/a")),
                               item(mac.home.folder(".gradle/caches/b"))};
    std::vector<std::size_t> calls;
    static_cast<void>(runInSteps(items, [&](std::size_t) {
        calls.push_back(BoxMac::calls().size());
        EXPECT_TRUE(calls.size() > 1 || stands(items[0].path));
    }));
    EXPECT_THAT(BoxMac::calls(), ElementsAre("pkill -f GradleDaemon"));
    EXPECT_THAT(calls, ElementsAre(1, 1, 1, 1));
    EXPECT_THAT(logLines(), SizeIs(3)); // of the items only
}

TEST_F(RunTests, withoutAGradlePathNothingIsStopped) {
    auto related =
        item(mac.home.folder("Library/Caches/x"), CleanupAction::delete_(), {{in(".gradle/caches")}});
    related.title = in(".gradle/caches");
    static_cast<void>(run({item(in(".gradle")), item(in("x.gradle/y")), item(in(".gradle-old/x")),
                           item(".gradle/x"), related}));
    EXPECT_THAT(BoxMac::calls(), IsEmpty());
}

TEST_F(RunTests, theGradleDaemonsAreStoppedForAnyItemWithSuchAPath) {
    for (const auto& action :
         {CleanupAction::trash(), CleanupAction::manual("x"), CleanupAction::delete_()}) {
        auto kept = item(in("Projects/app/.gradle/x"), action);
        kept.safety = Safety::keep;
        static_cast<void>(run({kept}));
    }
    EXPECT_THAT(BoxMac::calls(), SizeIs(3));
}

TEST_F(RunTests, howTheStopOfTheGradleDaemonsEndsDoesNotMatter) {
    for (const int status : {0, 1, 2, 3}) {
        mac.answer("pkill -f GradleDaemon", "words", status);
        const auto one = item(mac.home.folder(".gradle/caches/a"));
        EXPECT_EQ(outcomeOf(one), succeeded(one, bytes, "Dihapus"));
    }
    mac.answerWithScript("pkill -f GradleDaemon", "kill -KILL $$");
    const auto one = item(mac.home.folder(".gradle/caches/a"));
    EXPECT_EQ(outcomeOf(one), succeeded(one, bytes, "Dihapus"));
}

TEST_F(RunTests, theStopOfTheGradleDaemonsHasTenSeconds) {
    mac.answerWithScript("pkill -f GradleDaemon", "exec sleep 50");
    const auto one = item(mac.home.folder(".gradle/caches/a"));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(outcomeOf(one), succeeded(one, bytes, "Dihapus"));
    const auto lasted = std::chrono::steady_clock::now() - start;
    EXPECT_GE(lasted, 9500ms);
    EXPECT_LT(lasted, 40s);
}

// The log

TEST_F(RunTests, aLineOfTheLogTellsWhatWasDone) {
    const auto one = item(mac.home.file("Library/Caches/x"));
    const auto before = wholeSeconds(currentInstant());
    static_cast<void>(run({one}));
    const auto after = wholeSeconds(currentInstant());

    const auto entries = log.load(500);
    ASSERT_THAT(entries, SizeIs(1));
    EXPECT_EQ(entries[0], (ActivityEntry{.id = entries[0].id,
                                         .date = entries[0].date,
                                         .kind = "Hapus permanen",
                                         .title = one.title,
                                         .path = one.path,
                                         .bytes = bytes,
                                         .success = true,
                                         .message = "Dihapus"}));
    EXPECT_GE(wholeSeconds(entries[0].date), before);
    EXPECT_LE(wholeSeconds(entries[0].date), after);
}

TEST_F(RunTests, aFailedLineOfTheLogTellsWhy) {
    const auto one = item(in("Library/Caches/x"));
    static_cast<void>(run({one}));
    const auto entries = log.load(500);
    ASSERT_THAT(entries, SizeIs(1));
    EXPECT_EQ(entries[0].kind, "Hapus permanen");
    EXPECT_EQ(entries[0].path, one.path);
    EXPECT_EQ(entries[0].bytes, 0);
    EXPECT_FALSE(entries[0].success);
    EXPECT_EQ(entries[0].message, "Sudah tidak ada: ~/Library/Caches/x");
}

TEST_F(RunTests, aMoveToTheTrashIsLoggedWithoutBytes) {
    static_cast<void>(run({item(mac.home.file("Library/Caches/x"), CleanupAction::trash())}));
    const auto entries = log.load(500);
    ASSERT_THAT(entries, SizeIs(1));
    EXPECT_TRUE(entries[0].success);
    EXPECT_EQ(entries[0].bytes, 0);
}

TEST_F(RunTests, theLogNamesEachActionByItsVerb) {
    for (const auto& action : {CleanupAction::delete_(), CleanupAction::trash(), CleanupAction::emptyTrash(),
                               CleanupAction::simulatorErase("x"), CleanupAction::simulatorDelete("x"),
                               CleanupAction::simulatorRuntimeDelete("x"), CleanupAction::manual("x")})
        static_cast<void>(run({item("relative", action)}));
    std::vector<std::string> kinds;
    std::ranges::transform(log.load(500), std::back_inserter(kinds), &ActivityEntry::kind);
    EXPECT_THAT(kinds, ElementsAre("Panduan", "Hapus runtime simulator", "Hapus simulator", "Reset simulator",
                                   "Kosongkan Tong Sampah", "Pindah ke Tong Sampah", "Hapus permanen"));
}

TEST_F(RunTests, relatedPathsHaveNoLineOfTheirOwn) {
    static_cast<void>(run({item(mac.home.file("Library/Caches/x"), CleanupAction::delete_(),
                                {{mac.home.file("Library/Caches/y"), repository("Projects/app")}})}));
    EXPECT_THAT(logLines(), SizeIs(1));
}

TEST_F(RunTests, aLogThatCanNotBeWrittenChangesNothing) {
    mac.home.setMode("log/activity.jsonl", 0400);
    for (const auto& url : {log.url(), in("missing/activity.jsonl"), in("log"), in("log/activity.jsonl/x")}) {
        const auto one = item(mac.home.file("Library/Caches/x"));
        EXPECT_THAT(Cleaner(mac.home.path(), ActivityLog(url)).run({one}, [](auto, auto, const auto&) {}),
                    ElementsAre(succeeded(one, bytes, "Dihapus")));
        EXPECT_FALSE(stands(one.path));
    }
}

TEST_F(RunTests, aNameThatIsNotUtf8GoesAndIsLogged) {
    const auto one = item(mac.home.file("Library/Caches/\xff\n\xfe"));
    EXPECT_EQ(outcomeOf(one), succeeded(one, bytes, "Dihapus"));
    EXPECT_FALSE(stands(one.path));
    const auto entries = log.load(500);
    ASSERT_THAT(entries, SizeIs(1));
    EXPECT_EQ(entries[0].path, in("Library/Caches/\uFFFD\n\uFFFD"));
}

// Simulators. Where the tools lie is found once a process.

class SimulatorTests : public CleanerTests {
protected:
    SimulatorTests() {
        mac.answer("xcode-select -p", mac.applications.folder("Xcode.app/Contents/Developer") + "\n");
    }

    /// What this call of the tool does, as a shell script.
    void simctl(const std::string& arguments, const std::string& script) const {
        mac.answerWithScript("xcrun simctl " + arguments, script);
    }
    /// What the tool says of its devices: their identifiers and states.
    static std::string deviceList(const std::vector<std::pair<std::string, std::string>>& devices) {
        std::string list;
        for (const auto& [identifier, state] : devices)
            list += std::string(list.empty() ? "" : ",") + R"({"udid":")" + identifier +
                    R"(","name":"iPhone","state":")" + state + "\"}";
        return R"({"devices":{"com.apple.CoreSimulator.SimRuntime.iOS-17-2":[)" + list + "]}}";
    }
    /// What the user is told when the tool fails after this script.
    void expectTold(const std::string& script, const std::string& message) const {
        simctl("erase " + udid, script);
        simctl("delete " + udid, script);
        simctl("runtime delete " + udid, script);
        inANewProcess([&] {
            for (const auto& action :
                 {CleanupAction::simulatorErase(udid), CleanupAction::simulatorDelete(udid),
                  CleanupAction::simulatorRuntimeDelete(udid)}) {
                const auto one = item("runtime:x", action);
                EXPECT_EQ(outcomeOf(one), failed(one, message)) << script;
            }
        });
    }
};

TEST_F(SimulatorTests, aSimulatorIsShutDownAndErased) {
    simctl("shutdown " + udid, "exit 0");
    simctl("erase " + udid, "exit 0");
    inANewProcess([&] {
        const auto one = item("runtime:x", CleanupAction::simulatorErase(udid));
        EXPECT_EQ(outcomeOf(one), succeeded(one, bytes, "Simulator di-reset"));
        EXPECT_THAT(BoxMac::calls(),
                    ElementsAre("xcode-select -p", "xcrun simctl list devices -j",
                                "xcrun simctl shutdown " + udid, "xcrun simctl erase " + udid));
    });
    EXPECT_THAT(log.load(1).at(0).kind, "Reset simulator");
    EXPECT_EQ(log.load(1).at(0).bytes, bytes);
}

TEST_F(SimulatorTests, aFailedShutdownDoesNotMatter) {
    simctl("shutdown " + udid, "echo 'Unable to shutdown device in current state: Shutdown' >&2; exit 149");
    simctl("erase " + udid, "exit 0");
    inANewProcess([&] {
        const auto one = item("runtime:x", CleanupAction::simulatorErase(udid));
        EXPECT_EQ(outcomeOf(one), succeeded(one, bytes, "Simulator di-reset"));
    });
}

TEST_F(SimulatorTests, aShutdownDoesNotMakeUpForAFailedErase) {
    simctl("shutdown " + udid, "exit 0");
    simctl("erase " + udid, "echo gagal >&2; exit 1");
    inANewProcess([&] {
        const auto one = item("runtime:x", CleanupAction::simulatorErase(udid));
        EXPECT_EQ(outcomeOf(one), failed(one, "gagal"));
    });
}

TEST_F(SimulatorTests, aSimulatorIsDeletedWithoutAShutdown) {
    simctl("delete " + udid, "exit 0");
    inANewProcess([&] {
        const auto one = item("runtime:x", CleanupAction::simulatorDelete(udid));
        EXPECT_EQ(outcomeOf(one), succeeded(one, bytes, "Simulator dihapus"));
        EXPECT_THAT(BoxMac::calls(), ElementsAre("xcode-select -p", "xcrun simctl list devices -j",
                                                 "xcrun simctl delete " + udid));
    });
}

// A report may be old, and the simulator in use by now.

TEST_F(SimulatorTests, aSimulatorThatRunsStaysAsItIs) {
    for (const auto* state : {"Booted", "Booting"}) {
        for (const auto& listed : {udid, Text::lowercased(udid)}) {
            simctl("list devices -j",
                   "cat <<'E'\n" + deviceList({{"A", "Shutdown"}, {listed, state}}) + "\nE");
            inANewProcess([&] {
                for (const auto& action :
                     {CleanupAction::simulatorErase(udid), CleanupAction::simulatorDelete(udid)}) {
                    const auto one = item("runtime:x", action);
                    EXPECT_EQ(outcomeOf(one), failed(one, "Sedang berjalan. Matikan simulator dulu."));
                }
                for (const auto& call : BoxMac::calls())
                    EXPECT_THAT(call, ::testing::AnyOf("xcode-select -p", "xcrun simctl list devices -j"));
            });
        }
    }
}

TEST_F(SimulatorTests, aSimulatorThatIsNotSaidToRunIsErasedAndDeleted) {
    simctl("erase " + udid, "exit 0");
    simctl("delete " + udid, "exit 0");
    const auto booted = deviceList({{udid, "Booted"}});
    for (const auto& script :
         {"cat <<'E'\n" + deviceList({{udid, "Shutdown"}}) + "\nE",
          "cat <<'E'\n" + deviceList({{"00000000-1111-2222-3333-444444444444", "Booted"}}) + "\nE",
          "cat <<'E'\n" + booted + "\nE\nexit 1", // of a tool that failed
          "cat <<'E'\n" + booted.substr(1) + "\nE", std::string("echo '{}'"), std::string("exit 0")}) {
        simctl("list devices -j", script);
        inANewProcess([&] {
            const auto erased = item("runtime:x", CleanupAction::simulatorErase(udid));
            EXPECT_EQ(outcomeOf(erased), succeeded(erased, bytes, "Simulator di-reset")) << script;
            const auto deleted = item("runtime:x", CleanupAction::simulatorDelete(udid));
            EXPECT_EQ(outcomeOf(deleted), succeeded(deleted, bytes, "Simulator dihapus")) << script;
        });
    }
}

TEST_F(SimulatorTests, aRuntimeIsDeletedByItsIdentifier) {
    simctl("runtime delete " + udid, "exit 0");
    inANewProcess([&] {
        const auto one = item("runtime:x", CleanupAction::simulatorRuntimeDelete(udid));
        EXPECT_EQ(outcomeOf(one), succeeded(one, bytes, "Runtime dihapus"));
        EXPECT_THAT(BoxMac::calls(), ElementsAre("xcode-select -p", "xcrun simctl runtime delete " + udid));
    });
}

TEST_F(SimulatorTests, theToolIsAskedOfTheDeveloperFolder) {
    simctl("delete " + udid, "printf '%s|' \"$DEVELOPER_DIR\" \"$@\" >&2; exit 1");
    inANewProcess([&] {
        const auto one = item("runtime:x", CleanupAction::simulatorDelete(udid));
        EXPECT_EQ(outcomeOf(one).message,
                  "/Applications/Xcode.app/Contents/Developer|simctl|delete|" + udid + "|");
    });
}

TEST_F(SimulatorTests, anIdentifierIsPassedOnAsItStands) {
    const std::string small = "e621e1f8-c36c-495a-93fc-0c247a3e6e5f";
    simctl("delete " + small, "exit 0");
    inANewProcess([&] {
        const auto one = item("runtime:x", CleanupAction::simulatorDelete(small));
        EXPECT_EQ(outcomeOf(one), succeeded(one, bytes, "Simulator dihapus"));
    });
}

TEST_F(SimulatorTests, whatTheToolSaysOfItsFailureIsTold) {
    expectTold("echo 'Invalid device' >&2; exit 164", "Invalid device");
    expectTold("printf '\\n \\t Baris satu\\n  baris dua \\r\\n\\n' >&2; exit 1", "Baris satu\n  baris dua");
    expectTold("printf 'a\\377b' >&2; exit 1", "a\uFFFDb");
    expectTold("echo rusak >&2; kill -KILL $$", "rusak");
}

TEST_F(SimulatorTests, aFailureWithoutWordsIsToldInOurs) {
    expectTold("exit 1", "simctl gagal");
    expectTold("printf ' \\n\\t\\r\\n' >&2; exit 1", "simctl gagal");
    expectTold("echo 'on the other stream'; exit 1", "simctl gagal");
    expectTold("kill -KILL $$", "simctl gagal");
}

TEST_F(SimulatorTests, wordsOfASuccessAreNotTold) {
    simctl("delete " + udid, "echo warning >&2; echo done; exit 0");
    inANewProcess([&] {
        const auto one = item("runtime:x", CleanupAction::simulatorDelete(udid));
        EXPECT_EQ(outcomeOf(one), succeeded(one, bytes, "Simulator dihapus"));
    });
}

TEST_F(SimulatorTests, withoutXcodeASimulatorStays) {
    std::filesystem::remove_all(mac.applications.path("Xcode.app"));
    mac.answer("xcode-select -p", "/Library/Developer/CommandLineTools\n");
    inANewProcess([&] {
        for (const auto& action : {CleanupAction::simulatorDelete(udid), CleanupAction::simulatorErase(udid),
                                   CleanupAction::simulatorRuntimeDelete(udid)}) {
            const auto one = item("runtime:x", action);
            EXPECT_EQ(outcomeOf(one), failed(one, "Xcode tidak ditemukan")) << action.verb();
        }
        EXPECT_THAT(BoxMac::calls(), ElementsAre("xcode-select -p"));
    });
}

TEST_F(SimulatorTests, anInvalidIdentifierStartsNothing) {
    inANewProcess([&] {
        for (const std::string bad : {"all", "$(reboot)", "", "--help"}) {
            for (const auto& action :
                 {CleanupAction::simulatorErase(bad), CleanupAction::simulatorDelete(bad),
                  CleanupAction::simulatorRuntimeDelete(bad)}) {
                const auto one = item("runtime:x", action);
                EXPECT_EQ(outcomeOf(one), failed(one, "ID tidak valid: " + bad));
            }
        }
        EXPECT_THAT(BoxMac::calls(), IsEmpty());
    });
}

TEST_F(SimulatorTests, filesOfASimulatorAreLeftToItsTool) {
    simctl("delete " + udid, "exit 0");
    const auto folder = mac.home.folder("Library/Developer/CoreSimulator/Devices/" + udid);
    const auto related = mac.home.file("Library/Logs/CoreSimulator/" + udid);
    inANewProcess([&] {
        const auto one =
            item(folder, CleanupAction::simulatorDelete(udid), {{related, repository("Projects/app")}});
        EXPECT_EQ(outcomeOf(one), succeeded(one, bytes, "Simulator dihapus"));
    });
    EXPECT_TRUE(stands(folder));
    EXPECT_TRUE(stands(related));
}

// Instructions

TEST_F(CleanerTests, aManualStepIsNeverTaken) {
    const auto one = item(mac.home.file("Library/Caches/x"), CleanupAction::manual("Hapus sendiri."));
    EXPECT_EQ(outcomeOf(one), failed(one, "Tidak boleh dihapus: butuh langkah manual"));
    EXPECT_TRUE(stands(one.path));
    EXPECT_THAT(BoxMac::calls(), IsEmpty());
}

// Deleting

TEST_F(CleanerTests, aFileAndAFolderWithAllInItAreDeleted) {
    mac.home.file("Library/Caches/folder/deep/inside/file", {.text = "text"});
    mac.home.file("Library/Caches/folder/.hidden");
    mac.home.symlink("Library/Caches/folder/link", in("Library"));
    for (const auto& path : {mac.home.file("Library/Caches/file"), in("Library/Caches/folder")}) {
        const auto one = item(path);
        EXPECT_EQ(outcomeOf(one), succeeded(one, bytes, "Dihapus"));
        EXPECT_FALSE(stands(path));
    }
    EXPECT_TRUE(stands(in("Library/Caches")));
    EXPECT_FALSE(stands(in(".Trash")));
    EXPECT_THAT(BoxMac::calls(), IsEmpty());
}

TEST_F(CleanerTests, aLinkIsDeletedAndNotWhatItLeadsTo) {
    const auto file = mac.home.file("Documents/x/file", {.text = "text"});
    for (const std::string& target : {in("Documents/x"), file, std::string("/no/such")}) {
        const auto one = item(mac.home.symlink("Library/Caches/link", target));
        EXPECT_EQ(outcomeOf(one), succeeded(one, bytes, "Dihapus"));
        EXPECT_FALSE(stands(one.path));
    }
    EXPECT_EQ(textOf(file), "text");
}

TEST_F(CleanerTests, aLinkWrittenWithASlashBehindItIsDeletedAndNotWhatItLeadsTo) {
    const auto file = mac.home.file("Documents/x/file", {.text = "text"});
    const auto link = mac.home.symlink("Library/Caches/link", in("Documents/x"));
    const auto one = item(link + "/");
    EXPECT_EQ(outcomeOf(one), succeeded(one, bytes, "Dihapus"));
    EXPECT_FALSE(stands(link));
    EXPECT_EQ(textOf(file), "text");
}

TEST_F(CleanerTests, nothingIsDeletedBehindALinkOnTheWay) {
    const auto file = mac.home.file("Documents/x/file", {.text = "text"});
    mac.home.symlink("Library/Caches/link", in("Documents"));
    const auto outcome = outcomeOf(item(in("Library/Caches/link/x")));
    EXPECT_FALSE(outcome.success);
    EXPECT_EQ(outcome.freedBytes, 0);
    EXPECT_EQ(textOf(file), "text");
}

TEST_F(CleanerTests, aPathIsDeletedHoweverItIsWritten) {
    for (const std::string written : {"//Users/tester/Library/Caches/x", "/Users/./tester/Library//Caches/x/",
                                      "/Users/tester/Library/Caches/x/."}) {
        mac.home.file("Library/Caches/x/file");
        const auto one = item(written);
        EXPECT_EQ(outcomeOf(one), succeeded(one, bytes, "Dihapus"));
        EXPECT_FALSE(stands(in("Library/Caches/x")));
    }
}

TEST_F(CleanerTests, whatTheGuardRefusesStays) {
    mac.home.file("Projects/app/.env", {.text = "SECRET"});
    mac.home.file(".ssh/id_rsa");
    repository("Projects/repository");
    mac.applications.folder("Lain.app");
    const std::vector<std::pair<std::string, std::string>> refusals = {
        {in("Projects/app/.env"), "Dilindungi (data penting): ~/Projects/app/.env"},
        {in("Projects"), "Dilindungi (data penting): ~/Projects"},
        {in("Library/Caches"), "Dilindungi (data penting): ~/Library/Caches"},
        {in(".ssh/id_rsa"), "Dilindungi (data penting): ~/.ssh/id_rsa"},
        {in("Projects/repository"), "Ini repository git (kode sumber): ~/Projects/repository"},
        {mac.home.path(), "Di luar area yang boleh dibersihkan: ~"},
        {"/Applications/Lain.app/Contents",
         "Di luar area yang boleh dibersihkan: /Applications/Lain.app/Contents"},
        {in("Projects/app/../app/.env"), "Path tidak valid: " + in("Projects/app/../app/.env")},
        {"", "Path tidak valid: "}};
    for (const auto& action : {CleanupAction::delete_(), CleanupAction::trash()}) {
        for (const auto& [path, message] : refusals) {
            const auto one = item(path, action, {{mac.home.file("Library/Caches/related")}});
            EXPECT_EQ(outcomeOf(one), failed(one, message));
        }
    }
    for (const auto* relative :
         {"Projects/app/.env", ".ssh/id_rsa", "Projects/repository/.git", "Library/Caches/related"})
        EXPECT_TRUE(stands(in(relative))) << relative;
    EXPECT_FALSE(stands(in(".Trash")));
}

TEST_F(CleanerTests, whatMayNotBeDeletedAsksForFullDiskAccess) {
    const auto related = mac.home.file("Library/Caches/related");
    for (const auto& path :
         {lockedFile("Library/Caches/locked/file"), lockedFolder("Library/Caches/folder")}) {
        const auto one = item(path, CleanupAction::delete_(), {{related}});
        EXPECT_EQ(outcomeOf(one), failed(one, noPermission));
        EXPECT_TRUE(stands(path));
    }
    EXPECT_TRUE(stands(related));
}

TEST_F(CleanerTests, aFolderThatMayNotBeListedAsksForFullDiskAccess) {
    mac.home.file("Library/Caches/x/file");
    mac.home.setMode("Library/Caches/x", 0000);
    const auto one = item(in("Library/Caches/x"));
    EXPECT_EQ(outcomeOf(one), failed(one, noPermission));
    mac.home.setMode("Library/Caches/x", 0700);
    EXPECT_TRUE(stands(in("Library/Caches/x/file")));
}

TEST_F(CleanerTests, anApplicationThatMayNotBeDeletedAsksForAnAdmin) {
    mac.home.file("Applications/A.app/Contents/Info.plist");
    mac.home.setMode("Applications", 0555);
    for (const auto& action : {CleanupAction::delete_(), CleanupAction::trash()}) {
        const auto one = item(in("Applications/A.app"), action);
        EXPECT_EQ(outcomeOf(one), failed(one, needsAdmin));
        EXPECT_TRUE(stands(one.path));
    }
    const auto other = item(mac.home.folder("Applications/A.app/Contents"));
    mac.home.setMode("Applications/A.app", 0555);
    EXPECT_EQ(outcomeOf(other), failed(other, noPermission));
    mac.home.setMode("Applications/A.app", 0755);
}

TEST_F(CleanerTests, theNameOfTheItemDecidesWhoIsAskedForPermission) {
    const auto bundle = item(lockedFolder("Applications/A.app"));
    EXPECT_EQ(outcomeOf(bundle), failed(bundle, needsAdmin));
    const auto folder = item(in("Library/Caches/x"));
    lockedFolder("Library/Caches/x/B.app");
    mac.home.setMode("Library/Caches/x", 0555);
    EXPECT_EQ(outcomeOf(folder), failed(folder, noPermission));
    const auto file = item(lockedFile("Library/Caches/y/file.app"));
    EXPECT_EQ(outcomeOf(file), failed(file, needsAdmin));
    for (const auto* name :
         {"Library/Caches/z/file.APP", "Library/Caches/w/app", "Library/Caches/v/a.app.x"}) {
        const auto other = item(lockedFile(name));
        EXPECT_EQ(outcomeOf(other), failed(other, noPermission)) << name;
    }
}

TEST_F(CleanerTests, whatCanNotBeSeenIsMissing) {
    mac.home.file("Library/Caches/closed/file");
    mac.home.setMode("Library/Caches/closed", 0000);
    for (const auto& action : {CleanupAction::delete_(), CleanupAction::trash()}) {
        const auto one = item(in("Library/Caches/closed/file"), action);
        EXPECT_EQ(outcomeOf(one), failed(one, "Sudah tidak ada: ~/Library/Caches/closed/file"));
    }
    mac.home.setMode("Library/Caches/closed", 0700);
    EXPECT_TRUE(stands(in("Library/Caches/closed/file")));
}

// Moving to the Trash

TEST_F(CleanerTests, whatIsMovedToTheTrashIsThereAndFreesNothing) {
    mac.home.file("Library/Caches/folder/file", {.text = "text"});
    const std::vector items = {
        item(mac.home.file("Library/Caches/file.txt", {.text = "file"}), CleanupAction::trash()),
        item(in("Library/Caches/folder"), CleanupAction::trash()),
        item(mac.home.symlink("Library/Caches/link", "/no/such"), CleanupAction::trash())};
    for (const auto& one : items) {
        EXPECT_EQ(outcomeOf(one), succeeded(one, 0, "Dipindah ke Tong Sampah"));
        EXPECT_FALSE(stands(one.path));
    }
    EXPECT_EQ(textOf(in(".Trash/file.txt")), "file");
    EXPECT_EQ(textOf(in(".Trash/folder/file")), "text");
    EXPECT_EQ(std::filesystem::read_symlink(in(".Trash/link")), "/no/such");
}

TEST_F(CleanerTests, aLinkIsMovedToTheTrashAndNotWhatItLeadsTo) {
    const auto file = mac.home.file("Documents/x/file", {.text = "text"});
    const auto one = item(mac.home.symlink("Library/Caches/link", in("Documents/x")), CleanupAction::trash());
    EXPECT_EQ(outcomeOf(one), succeeded(one, 0, "Dipindah ke Tong Sampah"));
    EXPECT_EQ(textOf(file), "text");
    EXPECT_TRUE(std::filesystem::is_symlink(in(".Trash/link")));
}

TEST_F(CleanerTests, aNameThatIsTakenInTheTrashIsCounted) {
    for (const std::string text : {"1", "2", "3"}) {
        const auto plain = item(mac.home.file("Library/Caches/name", {.text = text}), CleanupAction::trash());
        const auto extended =
            item(mac.home.file("Library/Caches/name.txt", {.text = text}), CleanupAction::trash());
        EXPECT_TRUE(outcomeOf(plain).success);
        EXPECT_TRUE(outcomeOf(extended).success);
    }
    EXPECT_EQ(textOf(in(".Trash/name")), "1");
    EXPECT_EQ(textOf(in(".Trash/name 2")), "2");
    EXPECT_EQ(textOf(in(".Trash/name 3")), "3");
    EXPECT_EQ(textOf(in(".Trash/name.txt")), "1");
    EXPECT_EQ(textOf(in(".Trash/name 2.txt")), "2");
    EXPECT_EQ(textOf(in(".Trash/name 3.txt")), "3");
}

TEST_F(CleanerTests, whatMayNotBeMovedToTheTrashAsksForFullDiskAccess) {
    const auto related = mac.home.file("Library/Caches/related");
    const auto one = item(lockedFile("Library/Caches/locked/file"), CleanupAction::trash(), {{related}});
    EXPECT_EQ(outcomeOf(one), failed(one, noPermission));
    EXPECT_TRUE(stands(one.path));
    EXPECT_TRUE(stands(related));
}

TEST_F(CleanerTests, aTrashThatMayNotBeWrittenAsksForFullDiskAccess) {
    mac.home.folder(".Trash");
    mac.home.setMode(".Trash", 0555);
    const auto one = item(mac.home.file("Library/Caches/x"), CleanupAction::trash());
    EXPECT_EQ(outcomeOf(one), failed(one, noPermission));
    EXPECT_TRUE(stands(one.path));
}

TEST_F(CleanerTests, anyOtherFailureIsToldInItsOwnWords) {
    mac.home.file(".Trash");
    for (const auto& path : {mac.home.file("Library/Caches/x"), mac.home.folder("Applications/A.app")}) {
        const auto one = item(path, CleanupAction::trash(), {{mac.home.file("Library/Caches/related")}});
        const auto outcome = outcomeOf(one);
        EXPECT_EQ(outcome, failed(one, outcome.message));
        EXPECT_NE(outcome.message, "");
        EXPECT_NE(outcome.message, noPermission);
        EXPECT_NE(outcome.message, needsAdmin);
        EXPECT_TRUE(stands(path));
    }
    EXPECT_TRUE(stands(in("Library/Caches/related")));
}

TEST_F(CleanerTests, anApplicationIsMovedToTheTrash) {
    for (const auto* name : {"Catatan.app", "Catatan 2.app"}) {
        mac.installApplication("Catatan", "com.contoh.catatan");
        const auto one = item("/Applications/Catatan.app", CleanupAction::trash());
        EXPECT_EQ(outcomeOf(one), succeeded(one, 0, "Dipindah ke Tong Sampah"));
        EXPECT_FALSE(stands(one.path));
        EXPECT_TRUE(stands(in(std::string(".Trash/") + name + "/Contents/Info.plist")));
    }
}

TEST_F(CleanerTests, anApplicationOfTheWholeMacIsNeverDeleted) {
    mac.installApplication("Catatan", "com.contoh.catatan");
    const auto one = item("/Applications/Catatan.app");
    EXPECT_EQ(outcomeOf(one), failed(one, "Di luar area yang boleh dibersihkan: /Applications/Catatan.app"));
    EXPECT_TRUE(stands(one.path));
}

TEST_F(CleanerTests, theSystemsApplicationStays) {
    mac.installApplication("Safari", "com.apple.Safari");
    const auto trashed = item("/Applications/Safari.app", CleanupAction::trash());
    EXPECT_EQ(outcomeOf(trashed), failed(trashed, "Dilindungi (data penting): /Applications/Safari.app"));
    const auto deleted = item("/Applications/Safari.app");
    EXPECT_EQ(outcomeOf(deleted),
              failed(deleted, "Di luar area yang boleh dibersihkan: /Applications/Safari.app"));
    EXPECT_TRUE(stands("/Applications/Safari.app"));
}

TEST_F(CleanerTests, anApplicationInASubfolderStays) {
    mac.installApplication("Utilities/Alat", "com.contoh.alat");
    const auto one = item("/Applications/Utilities/Alat.app", CleanupAction::trash());
    EXPECT_EQ(outcomeOf(one),
              failed(one, "Di luar area yang boleh dibersihkan: /Applications/Utilities/Alat.app"));
    EXPECT_TRUE(stands(one.path));
}

TEST_F(CleanerTests, anApplicationThatMayNotBeMovedAsksForAnAdmin) {
    mac.installApplication("Catatan", "com.contoh.catatan");
    mac.applications.setMode("", 0555);
    const auto one = item("/Applications/Catatan.app", CleanupAction::trash());
    EXPECT_EQ(outcomeOf(one), failed(one, needsAdmin));
    EXPECT_TRUE(stands(one.path));
    mac.applications.setMode("", 0755);
}

// Related paths

TEST_F(CleanerTests, relatedPathsAreDeletedWithTheItem) {
    const auto folder = mac.home.folder("Documents/x");
    const auto one = item(mac.home.folder("Library/Caches/x"), CleanupAction::delete_(),
                          {{mac.home.file("Library/Logs/x/log"), mac.home.folder("Library/Containers/x"),
                            mac.home.symlink("Projects/link", folder)}});
    EXPECT_EQ(outcomeOf(one), succeeded(one, bytes, "Dihapus"));
    for (const auto& path : *one.relatedPaths)
        EXPECT_FALSE(stands(path)) << path;
    EXPECT_TRUE(stands(folder));
    EXPECT_FALSE(stands(in(".Trash")));
}

TEST_F(CleanerTests, relatedPathsAreMovedToTheTrashWithTheItem) {
    const auto one = item(mac.home.file("Library/Caches/x", {.text = "1"}), CleanupAction::trash(),
                          {{mac.home.file("Library/Logs/x", {.text = "2"}), in("Library/Logs/missing"),
                            mac.home.folder("Library/Containers/y")}});
    EXPECT_EQ(outcomeOf(one), succeeded(one, 0, "Dipindah ke Tong Sampah"));
    EXPECT_EQ(textOf(in(".Trash/x")), "1");
    EXPECT_EQ(textOf(in(".Trash/x 2")), "2");
    EXPECT_TRUE(stands(in(".Trash/y")));
    for (const auto& path : *one.relatedPaths)
        EXPECT_FALSE(stands(path)) << path;
}

TEST_F(CleanerTests, relatedPathsThatAreGoneDoNotMatter) {
    for (const auto& related :
         std::vector<std::vector<std::string>>{{},
                                               {in("Library/Caches/missing")},
                                               {in(".ssh/missing"), "/no/such", "relative", ""},
                                               {in("Library/Caches/x"), in("Library/Caches/x/inside")}}) {
        mac.home.file("Library/Caches/x/inside");
        const auto one = item(in("Library/Caches/x"), CleanupAction::delete_(), related);
        EXPECT_EQ(outcomeOf(one), succeeded(one, bytes, "Dihapus"));
    }
}

TEST_F(CleanerTests, aRelatedPathThatCanNotBeSeenDoesNotMatter) {
    const auto file = mac.home.file("Library/Caches/closed/file");
    mac.home.setMode("Library/Caches/closed", 0000);
    const auto one = item(mac.home.file("Library/Caches/x"), CleanupAction::delete_(), {{file}});
    EXPECT_EQ(outcomeOf(one), succeeded(one, bytes, "Dihapus"));
    mac.home.setMode("Library/Caches/closed", 0700);
    EXPECT_TRUE(stands(file));
}

TEST_F(CleanerTests, aRelatedRepositoryStaysAndIsNamed) {
    const auto one =
        item(mac.home.folder("Library/Caches/x"), CleanupAction::delete_(), {{repository("Projects/app")}});
    EXPECT_EQ(outcomeOf(one), failed(one, "Sebagian dilewati: app"));
    EXPECT_FALSE(stands(one.path));
    EXPECT_TRUE(stands(in("Projects/app/.git")));
}

TEST_F(CleanerTests, skippedRelatedPathsAreNamedInTheirOrderAndTheOthersGo) {
    const auto related = [&] {
        return std::vector{mac.home.file("Library/Logs/pertama"),
                           repository("Projects/z repo"),
                           mac.home.file("Library/Logs/kedua"),
                           mac.home.file("Projects/app/.env"),
                           in("Library/Logs/missing"),
                           lockedFile("Projects/locked/a.txt"),
                           mac.home.folder(".ssh/kunci"),
                           mac.home.file("Library/Logs/ketiga")};
    }();
    for (const auto& action : {CleanupAction::delete_(), CleanupAction::trash()}) {
        for (const auto* gone : {"pertama", "kedua", "ketiga"})
            mac.home.file(std::string("Library/Logs/") + gone);
        const auto one = item(mac.home.file("Library/Caches/x"), action, related);
        EXPECT_EQ(outcomeOf(one), failed(one, "Sebagian dilewati: z repo, .env, a.txt, kunci"));
        EXPECT_FALSE(stands(one.path));
        for (const auto* gone : {"pertama", "kedua", "ketiga"})
            EXPECT_FALSE(stands(in(std::string("Library/Logs/") + gone))) << gone;
        for (const auto* kept :
             {"Projects/z repo/.git", "Projects/app/.env", "Projects/locked/a.txt", ".ssh/kunci"})
            EXPECT_TRUE(stands(in(kept))) << kept;
    }
}

TEST_F(CleanerTests, aSkippedPathIsNamedByItsLastComponent) {
    const auto one = item(mac.home.file("Library/Caches/x"), CleanupAction::delete_(),
                          {{repository("Projects/app") + "/", "/", mac.home.path(), "/Applications//", "."}});
    EXPECT_EQ(outcomeOf(one), failed(one, "Sebagian dilewati: app, /, tester, Applications, ."));
}

TEST_F(CleanerTests, aRelatedPathWithAZeroByteNamesNothing) {
    const auto file = mac.home.file("Library/Caches/y");
    const auto one = item(mac.home.file("Library/Caches/x"), CleanupAction::delete_(),
                          {{file + std::string(1, '\0'), file + std::string("\0z", 2)}});
    EXPECT_EQ(outcomeOf(one), succeeded(one, bytes, "Dihapus"));
    EXPECT_TRUE(stands(file));
}

TEST_F(CleanerTests, anApplicationThatIsRelatedStays) {
    mac.installApplication("Catatan", "com.contoh.catatan");
    for (const auto& action : {CleanupAction::delete_(), CleanupAction::trash()}) {
        const auto one = item(mac.home.file("Library/Caches/x"), action, {{"/Applications/Catatan.app"}});
        EXPECT_EQ(outcomeOf(one), failed(one, "Sebagian dilewati: Catatan.app"));
        EXPECT_TRUE(stands("/Applications/Catatan.app"));
    }
}

TEST_F(CleanerTests, relatedPathsStayWhenTheItemStays) {
    const auto related = mac.home.file("Library/Caches/related");
    auto kept = item(mac.home.file("Library/Caches/kept"), CleanupAction::delete_(), {{related}});
    kept.safety = Safety::keep;
    for (const auto& one :
         {kept, item(in("Library/Caches/missing"), CleanupAction::delete_(), {{related}}),
          item(lockedFolder("Library/Caches/locked"), CleanupAction::delete_(), {{related}}),
          item(repository("Projects/app"), CleanupAction::trash(), {{related}})}) {
        EXPECT_FALSE(outcomeOf(one).success);
        EXPECT_TRUE(stands(related)) << one.path;
    }
}

// Related paths, with an action of the caller's

class RelatedTests : public CleanerTests {
protected:
    [[nodiscard]] std::vector<std::string> skipped(std::optional<std::vector<std::string>> related) {
        return cleaner.processRelated(item(in("none"), CleanupAction::trash(), std::move(related)),
                                      [&](const std::string& path) {
                                          handed.push_back(path);
                                          return !failing.contains(path);
                                      });
    }

    std::vector<std::string> handed;
    std::string failing;
};

TEST_F(RelatedTests, withoutRelatedPathsNothingIsDone) {
    EXPECT_THAT(skipped(std::nullopt), IsEmpty());
    EXPECT_THAT(skipped(std::vector<std::string>()), IsEmpty());
    EXPECT_THAT(handed, IsEmpty());
}

TEST_F(RelatedTests, whatPassesIsHandedOnInItsOrder) {
    const std::vector related = {mac.home.file("Library/Logs/b"), in("Library/Logs/missing"),
                                 repository("Projects/app"), mac.home.symlink("Library/Logs/a", "/no/such"),
                                 mac.home.folder("Library/Containers/c")};
    EXPECT_THAT(skipped(related), ElementsAre("app"));
    EXPECT_THAT(handed, ElementsAre(related[0], related[3], related[4]));
    EXPECT_TRUE(stands(related[0])); // what is done is the caller's business
    EXPECT_THAT(logLines(), IsEmpty());
}

TEST_F(RelatedTests, whatFailsIsNamedAndTheRestHandedOnAllTheSame) {
    const auto first = mac.home.file("Library/Logs/a");
    const auto second = mac.home.file("Library/Logs/b");
    failing = first;
    EXPECT_THAT(skipped({{first, second}}), ElementsAre("a"));
    EXPECT_THAT(handed, ElementsAre(first, second));
    failing = first + second;
    EXPECT_THAT(skipped({{second, first}}), ElementsAre("b", "a"));
}

TEST_F(RelatedTests, theItemItselfIsNotLookedAt) {
    const auto file = mac.home.file("Library/Logs/a");
    CleanupItem kept{.path = "/System", .safety = Safety::keep, .relatedPaths = {{file}}};
    EXPECT_THAT(cleaner.processRelated(kept, [](const std::string&) { return true; }), IsEmpty());
    EXPECT_THAT(cleaner.processRelated(kept, [](const std::string&) { return false; }), ElementsAre("a"));
}

TEST_F(RelatedTests, eachPathIsJudgedRightBeforeIt) {
    const auto first = mac.home.folder("Projects/a");
    const auto second = mac.home.folder("Projects/b");
    const CleanupItem one{.path = "x", .relatedPaths = {{first, second}}};
    EXPECT_THAT(cleaner.processRelated(one,
                                       [&](const std::string& path) {
                                           EXPECT_EQ(path, first);
                                           return !repository("Projects/b").empty();
                                       }),
                ElementsAre("b"));
}

TEST_F(RelatedTests, anApplicationIsNotHandedOn) {
    mac.installApplication("Catatan", "com.contoh.catatan");
    EXPECT_THAT(skipped({{"/Applications/Catatan.app"}}), ElementsAre("Catatan.app"));
    EXPECT_THAT(handed, IsEmpty());
}

// Emptying the Trash

class EmptyTrashTests : public CleanerTests {
protected:
    [[nodiscard]] CleanupItem trash() const { return item(in(".Trash"), CleanupAction::emptyTrash()); }
    void expectFailures(int count) const {
        EXPECT_EQ(
            outcomeOf(trash()),
            failed(trash(), std::to_string(count) + " item tidak bisa dihapus (butuh Full Disk Access?)"));
    }
    [[nodiscard]] std::size_t left() const {
        const std::filesystem::directory_iterator entries(in(".Trash"));
        return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
    }
};

TEST_F(EmptyTrashTests, allInItGoesAndTheTrashStays) {
    mac.home.file(".Trash/file", {.text = "text"});
    mac.home.file(".Trash/folder/deep/file");
    mac.home.file(".Trash/.hidden");
    mac.home.file(".Trash/._x");
    mac.home.file(".Trash/.DS_Store");
    mac.home.file(".Trash/\xff\n");
    mac.home.symlink(".Trash/link", mac.home.folder("Documents/x"));
    mac.home.folder(".Trash/A.app");
    ASSERT_EQ(::mkfifo(in(".Trash/pipe").c_str(), 0600), 0);
    repository(".Trash/repository");

    EXPECT_EQ(outcomeOf(trash()), succeeded(trash(), bytes, "Tong Sampah dikosongkan"));
    EXPECT_TRUE(std::filesystem::is_directory(in(".Trash")));
    EXPECT_EQ(left(), 0U);
    EXPECT_TRUE(stands(in("Documents/x")));
    EXPECT_EQ(log.load(1).at(0).bytes, bytes);
}

TEST_F(EmptyTrashTests, anEmptyTrashIsEmptied) {
    mac.home.folder(".Trash");
    EXPECT_EQ(outcomeOf(trash()), succeeded(trash(), bytes, "Tong Sampah dikosongkan"));
    EXPECT_TRUE(stands(in(".Trash")));
}

TEST_F(EmptyTrashTests, aTrashThatCanNotBeListedCountsAsEmptied) {
    EXPECT_EQ(outcomeOf(trash()), succeeded(trash(), bytes, "Tong Sampah dikosongkan")); // is not there
    EXPECT_FALSE(stands(in(".Trash")));

    mac.home.file(".Trash/file");
    mac.home.setMode(".Trash", 0000);
    EXPECT_EQ(outcomeOf(trash()), succeeded(trash(), bytes, "Tong Sampah dikosongkan"));
    mac.home.setMode(".Trash", 0700);
    EXPECT_TRUE(stands(in(".Trash/file")));
}

TEST_F(EmptyTrashTests, aFileInPlaceOfTheTrashStays) {
    mac.home.file(".Trash", {.text = "text"});
    EXPECT_EQ(outcomeOf(trash()), succeeded(trash(), bytes, "Tong Sampah dikosongkan"));
    EXPECT_EQ(textOf(in(".Trash")), "text");
}

TEST_F(EmptyTrashTests, nothingGoesBehindALinkInPlaceOfTheTrash) {
    const auto file = mac.home.file("Documents/x/file", {.text = "text"});
    mac.home.symlink(".Trash", in("Documents/x"));
    static_cast<void>(outcomeOf(trash()));
    EXPECT_EQ(textOf(file), "text");
    EXPECT_TRUE(std::filesystem::is_symlink(in(".Trash")));
}

TEST_F(EmptyTrashTests, aSecretStaysAndIsCounted) {
    for (int count = 0; count < 10; ++count)
        mac.home.file(".Trash/file" + std::to_string(count));
    mac.home.file(".Trash/.env", {.text = "SECRET"});

    expectFailures(1);
    EXPECT_EQ(left(), 1U);
    EXPECT_EQ(textOf(in(".Trash/.env")), "SECRET");
}

TEST_F(EmptyTrashTests, everyRefusedOrFailedChildIsCounted) {
    mac.home.file(".Trash/.ENV.local");
    mac.home.file(".Trash/kunci.PEM");
    mac.home.folder(".Trash/Foto.photoslibrary");
    mac.home.file(".Trash/file");
    lockedFolder(".Trash/locked");
    repository(".Trash/repository");

    expectFailures(4);
    EXPECT_EQ(left(), 4U);
    EXPECT_TRUE(stands(in(".Trash/locked/locked/file")));
}

TEST_F(EmptyTrashTests, aTrashThatMayNotBeWrittenCountsAllInIt) {
    mac.home.file(".Trash/a");
    mac.home.file(".Trash/b");
    mac.home.setMode(".Trash", 0555);
    expectFailures(2);
    mac.home.setMode(".Trash", 0755);
    EXPECT_EQ(left(), 2U);
}

TEST_F(EmptyTrashTests, aSecretInsideAFolderGoesWithIt) {
    mac.home.file(".Trash/folder/.env");
    EXPECT_EQ(outcomeOf(trash()), succeeded(trash(), bytes, "Tong Sampah dikosongkan"));
    EXPECT_EQ(left(), 0U);
}

TEST_F(EmptyTrashTests, noOtherTrashIsEmptied) {
    const auto file = mac.home.file("other/.Trash/file");
    for (const auto& path : {in("other/.Trash"), in(".Trash/"), std::string("/Volumes/SSD/.Trashes/1000")}) {
        const auto one = item(path, CleanupAction::emptyTrash());
        EXPECT_EQ(outcomeOf(one), failed(one, "Path tidak valid: " + path));
    }
    EXPECT_TRUE(stands(file));
}

TEST_F(EmptyTrashTests, relatedPathsStay) {
    const auto related = mac.home.file("Library/Caches/x");
    auto one = trash();
    one.relatedPaths = {{related, repository("Projects/app")}};
    EXPECT_EQ(outcomeOf(one), succeeded(one, bytes, "Tong Sampah dikosongkan"));
    EXPECT_TRUE(stands(related));
}

} // namespace
} // namespace korvanti
