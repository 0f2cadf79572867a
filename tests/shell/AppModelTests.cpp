#include "shell/AppModel.h"

#include "ModelFixture.h"
#include "base/ByteText.h"

#include <QSignalSpy>
#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

/// Against the real core: runs in the box.
namespace korvanti {
namespace {

using namespace korvanti::testing;
using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::Optional;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAre;

/// What a stand-in does to wait for `answers.file("go")`.
const std::string untilTold = "while [ ! -e /box/answers/go ]; do sleep 0.02; done";
const std::string xcodeLocation = "defaults read com.apple.dt.Xcode IDECustomDerivedDataLocation";

class AppModelTests : public ModelFixture {};

// Start

TEST_F(AppModelTests, withoutASavedReportThereIsNoneAndNothingIsSelected) {
    EXPECT_FALSE(model().report().has_value());
    EXPECT_THAT(model().selection(), IsEmpty());
    EXPECT_FALSE(model().isScanning());
    EXPECT_EQ(model().pane(), Pane::overview);
    EXPECT_GT(model().totalBytes(), 0);
}

TEST_F(AppModelTests, whatWasDoneBeforeIsThereFromTheStart) {
    const ActivityLog log(AppPaths::activity());
    for (int i = 0; i < 501; ++i)
        log.append({.title = std::to_string(i)});
    ASSERT_THAT(model().activity(), SizeIs(500));
    EXPECT_EQ(model().activity().front().title, "500");
    EXPECT_EQ(model().activity().back().title, "1");
    EXPECT_THAT(model().offloads(), IsEmpty());
    EXPECT_FALSE(model().storageMap().has_value());
}

TEST_F(AppModelTests, aSavedReportIsRestoredWithItsRecommendationSelected) {
    saveReport({item("/a"), item("/b", Safety::review)});
    ASSERT_TRUE(model().report().has_value());
    EXPECT_EQ(pathsOf(model().report()->items), (std::vector<std::string>{"/a", "/b"}));
    EXPECT_THAT(model().selection(), ElementsAre("/a"));
}

// Scan

TEST_F(AppModelTests, aScanReplacesTheSelectionWithTheRecommendation) {
    mac.home.file("Library/Developer/Xcode/DerivedData/App/file", {.allocatedBytes = 60'000'000});
    saveReport({item("/old")});
    QSignalSpy reports(&model(), &AppModel::reportChanged);
    model().toggle(item("/own", Safety::review));
    model().scan();
    EXPECT_TRUE(model().isScanning());
    EXPECT_EQ(model().scanStatus(), "Memulai…");
    ASSERT_TRUE(waitFor([&] { return !model().isScanning(); }));
    EXPECT_EQ(reports.count(), 1);
    EXPECT_THAT(model().selection(), UnorderedElementsAre(home("Library/Developer/Xcode/DerivedData")));
    EXPECT_EQ(model().scanStatus(), "");
    EXPECT_EQ(savedPaths(), pathsOf(model().report()->items));
}

TEST_F(AppModelTests, aSecondScanWhileOneRunsChangesNothing) {
    model().scan();
    QSignalSpy states(&model(), &AppModel::isScanningChanged);
    QSignalSpy lines(&model(), &AppModel::scanStatusChanged);
    model().scan();
    EXPECT_EQ(states.count(), 0);
    EXPECT_EQ(lines.count(), 0);
    ASSERT_TRUE(waitFor([&] { return !model().isScanning(); }));
    EXPECT_EQ(states.count(), 1);
}

TEST_F(AppModelTests, noLateWordOfAScanStandsBehindItsEnd) {
    model().scan();
    ASSERT_TRUE(waitFor([&] { return !model().isScanning(); }));
    QSignalSpy lines(&model(), &AppModel::scanStatusChanged);
    EXPECT_FALSE(lines.wait(200));
    EXPECT_EQ(model().scanStatus(), "");
}

TEST_F(AppModelTests, whatWasCleanedDuringAScanDoesNotComeBackByIt) {
    const auto cleaned = home("Library/Developer/Xcode/DerivedData");
    mac.home.file("Library/Developer/Xcode/DerivedData/App/file", {.allocatedBytes = 60'000'000});
    mac.home.file(".gradle/caches/modules-2/file", {.allocatedBytes = 60'000'000});
    // The second one asks when all items have been found.
    const std::string call = "diskutil info -plist /";
    mac.answerWithScript(call, "[ $(grep -cxF '" + call + "' /box/calls) -lt 2 ] || " + untilTold);
    model().scan();
    ASSERT_TRUE(waitFor([&] { return std::ranges::count(BoxMac::calls(), call) == 2; }));
    clean({item(cleaned)});
    ASSERT_TRUE(model().outcomes().front().success);
    mac.answers.file("go");
    ASSERT_TRUE(waitFor([&] { return !model().isScanning(); }));
    EXPECT_THAT(model().report()->items, Not(IsEmpty()));
    EXPECT_THAT(savedPaths(), Not(Contains(cleaned)));
    EXPECT_EQ(savedPaths(), pathsOf(model().report()->items));

    mac.home.file("Library/Developer/Xcode/DerivedData/App/file", {.allocatedBytes = 60'000'000});
    model().scan();
    ASSERT_TRUE(waitFor([&] { return !model().isScanning(); }));
    EXPECT_THAT(savedPaths(), Contains(cleaned)) << "made again since";
}

// Selection and filters

TEST_F(AppModelTests, togglingWhatMayNotGoChangesNothing) {
    QSignalSpy changes(&model(), &AppModel::selectionChanged);
    for (const auto& kept : {item("/keep", Safety::keep), item("/managed", Safety::managed),
                             item("/manual", Safety::review, CleanupAction::manual("do it"))})
        model().toggle(kept);
    EXPECT_EQ(changes.count(), 0);
    EXPECT_THAT(model().selection(), IsEmpty());
}

TEST_F(AppModelTests, togglingAddsAndTakesAway) {
    const auto review = item("/review", Safety::review);
    model().toggle(review);
    EXPECT_THAT(model().selection(), ElementsAre("/review"));
    model().toggle(review);
    EXPECT_THAT(model().selection(), IsEmpty());
}

TEST_F(AppModelTests, onlyItemsThatMayGoAreAmongTheSelectedOnes) {
    auto kept = item("/keep", Safety::keep);
    kept.recommended = true; // as a damaged file may have it
    saveReport({item("/b"), kept, item("/a")});
    EXPECT_THAT(model().selection(), UnorderedElementsAre("/a", "/b", "/keep"));
    EXPECT_EQ(pathsOf(model().selectedItems()), (std::vector<std::string>{"/b", "/a"}));
    EXPECT_EQ(model().selectedBytes(), 2'000);
}

TEST_F(AppModelTests, eachFilterShowsItsItems) {
    saveReport({item("/recommended"), item("/costly", Safety::costly), item("/review", Safety::review),
                item("/manual", Safety::review, CleanupAction::manual("do it")), item("/keep", Safety::keep),
                item("/managed", Safety::managed)});
    const auto shown = [&](ItemFilter filter) {
        model().setFilter(filter);
        return pathsOf(model().filteredItems());
    };
    using Paths = std::vector<std::string>;
    EXPECT_EQ(shown(ItemFilter::recommended), Paths{"/recommended"});
    EXPECT_EQ(shown(ItemFilter::deletable), (Paths{"/recommended", "/costly", "/review"}));
    EXPECT_EQ(shown(ItemFilter::review), (Paths{"/review", "/manual"}));
    EXPECT_EQ(shown(ItemFilter::all),
              (Paths{"/recommended", "/costly", "/review", "/manual", "/keep", "/managed"}));
}

TEST_F(AppModelTests, aNameIsFoundHoweverItIsComposed) {
    saveReport({item("/Users/tester/Projects/Cafe\u0301")}); // as older disks keep it
    for (const auto* text : {"caf\u00E9", "CAFE\u0301", "tester"}) {
        model().setSearch(text);
        EXPECT_THAT(model().filtered(), SizeIs(1)) << text;
    }
}

TEST_F(AppModelTests, aSearchIsNoPattern) {
    auto odd = item("/x/\xFF.*<b>");
    odd.title = "a.*(b";
    saveReport({item("/Library/Caches/y"), odd});
    model().setFilter(ItemFilter::all);
    for (const auto* text : {".*", "A.*(", "<B>"}) {
        model().setSearch(text);
        EXPECT_THAT(model().filtered(), SizeIs(1)) << text;
    }
    model().setSearch("\n");
    EXPECT_THAT(model().filtered(), IsEmpty());
}

TEST_F(AppModelTests, theSearchLooksAtTitleAndPathInAnyCase) {
    auto other = item("/somewhere/x");
    other.title = "ÄRGER";
    other.category = ItemCategory::android;
    saveReport({item("/Library/Caches/y"), other});
    const auto found = [&](const std::string& text) {
        model().setSearch(text);
        return pathsOf(model().filteredItems());
    };
    EXPECT_THAT(found("caches"), ElementsAre("/Library/Caches/y"));
    EXPECT_THAT(found("\t Ärger "), ElementsAre("/somewhere/x"));
    EXPECT_THAT(found("nothing"), IsEmpty());
    EXPECT_THAT(found(" \t "), SizeIs(2));
    model().setCategoryFilter(ItemCategory::android);
    EXPECT_THAT(found(""), ElementsAre("/somewhere/x"));
}

// Cleaning

TEST_F(AppModelTests, aRequestWithNothingThatMayGoChangesNothing) {
    clean({folderItem("Library/Caches/x")});
    ASSERT_THAT(model().outcomes(), SizeIs(1));
    model().dismissCleanup();
    model().requestCleanup({item("/manual", Safety::review, CleanupAction::manual("do it"))});
    EXPECT_FALSE(model().pendingCleanup().has_value());
    EXPECT_THAT(model().outcomes(), SizeIs(1));
}

TEST_F(AppModelTests, whatIsCleanedLeavesDiskReportSelectionFileAndEntersTheLog) {
    const auto first = folderItem("Library/Caches/x");
    const auto second = folderItem("Library/Caches/y");
    saveReport({first, second});
    clean({first});
    EXPECT_FALSE(std::filesystem::exists(first.path));
    EXPECT_TRUE(std::filesystem::exists(second.path));
    EXPECT_EQ(pathsOf(model().report()->items), std::vector{second.path});
    EXPECT_THAT(model().selection(), ElementsAre(second.path));
    EXPECT_EQ(savedPaths(), std::vector{second.path});
    ASSERT_THAT(model().activity(), SizeIs(1));
    EXPECT_EQ(model().activity().front().path, first.path);
    EXPECT_TRUE(model().activity().front().success);
    EXPECT_EQ(model().cleanProgress(), 1.0);
    EXPECT_EQ(model().cleanCurrent(), "");
    EXPECT_TRUE(model().pendingCleanup().has_value()); // until the sheet is closed
}

TEST_F(AppModelTests, itemsThatVanishedMeanwhileFailAndStay) {
    const auto gone = item(home("Library/Caches/gone"));
    const auto there = folderItem("Library/Caches/there");
    saveReport({gone, there});
    clean({gone, there});
    ASSERT_THAT(model().outcomes(), SizeIs(2));
    EXPECT_FALSE(model().outcomes()[0].success);
    EXPECT_TRUE(model().outcomes()[1].success);
    EXPECT_EQ(savedPaths(), std::vector{gone.path});
}

TEST_F(AppModelTests, aNameThatIsNoTextIsCleaned) {
    const auto odd = folderItem("Library/Caches/\xFF\n<b>");
    clean({odd});
    EXPECT_TRUE(model().outcomes().at(0).success) << model().outcomes().at(0).message;
    EXPECT_FALSE(std::filesystem::exists(odd.path));
}

TEST_F(AppModelTests, aCleanupWithoutAReportMakesNone) {
    clean({folderItem("Library/Caches/x")});
    EXPECT_FALSE(model().report().has_value());
    EXPECT_FALSE(std::filesystem::exists(home("Library/Application Support/Korvanti/last-report.json")));
}

TEST_F(AppModelTests, aReportThatCannotBeWrittenIsNoMatter) {
    const auto one = folderItem("Library/Caches/x");
    saveReport({one});
    model();
    mac.home.setMode("Library/Application Support/Korvanti", 0555);
    clean({one});
    mac.home.setMode("Library/Application Support/Korvanti", 0755);
    EXPECT_TRUE(model().outcomes().at(0).success);
    EXPECT_THAT(model().report()->items, IsEmpty());
    EXPECT_EQ(savedPaths(), std::vector{one.path});
}

TEST_F(AppModelTests, theWayOfACleanupIsToldInOrderAndEndsFull) {
    std::vector<CleanupItem> items;
    for (int i = 0; i < 50; ++i)
        items.push_back(folderItem("Library/Caches/" + std::to_string(i)));
    std::vector<double> steps;
    QObject::connect(&model(), &AppModel::cleanProgressChanged,
                     [&] { steps.push_back(model().cleanProgress()); });
    clean(items);
    ASSERT_FALSE(steps.empty());
    EXPECT_TRUE(std::ranges::is_sorted(steps));
    EXPECT_EQ(steps.back(), 1.0);
    EXPECT_THAT(steps, Each(::testing::AllOf(::testing::Ge(0.0), ::testing::Le(1.0))));
}

TEST_F(AppModelTests, nothingToDoIsDone) {
    EXPECT_EQ(AppModel::fraction(0, 0), 1.0);
    EXPECT_EQ(AppModel::fraction(0, 4), 0.0);
    EXPECT_EQ(AppModel::fraction(1, 4), 0.25);
    EXPECT_EQ(AppModel::fraction(4, 4), 1.0);
}

TEST_F(AppModelTests, applicationsAreListedAnewWhenOneWasCleaned) {
    mac.installApplication("Tool", "org.example.tool");
    auto application = item("/Applications/Tool.app", Safety::review, CleanupAction::trash());
    application.category = ItemCategory::apps;
    QSignalSpy loading(&model(), &AppModel::appsLoadingChanged);
    clean({folderItem("Library/Caches/x")});
    EXPECT_EQ(loading.count(), 0);
    clean({application, folderItem("Library/Caches/x")});
    ASSERT_TRUE(waitFor([&] { return loading.count() == 2; }));
    EXPECT_TRUE(model().outcomes().at(0).success);
    EXPECT_THAT(model().apps(), IsEmpty());
}

TEST_F(AppModelTests, anApplicationThatGoesWhileTheyAreListedLeavesTheList) {
    mac.installApplication("Tool", "org.example.tool");
    auto application = item("/Applications/Tool.app", Safety::review, CleanupAction::trash());
    application.category = ItemCategory::apps;
    mac.answerWithScript("ps -axo comm=", untilTold); // asked when the bundles have been found
    model().loadApps();
    ASSERT_TRUE(waitFor([&] { return std::ranges::count(BoxMac::calls(), "ps -axo comm=") > 0; }));
    clean({application});
    ASSERT_TRUE(model().outcomes().front().success);
    ASSERT_TRUE(model().appsLoading());
    mac.answers.file("go");
    ASSERT_TRUE(waitFor([&] { return !model().appsLoading(); }));
    EXPECT_THAT(model().apps(), IsEmpty());
}

TEST_F(AppModelTests, aCleanupGoesByTheListThatWasConfirmed) {
    mac.answerWithScript("pkill -f GradleDaemon", untilTold);
    const auto confirmed = folderItem(".gradle/caches/x");
    const auto other = folderItem("Library/Caches/x");
    model().requestCleanup({confirmed});
    model().confirmCleanup();
    model().requestCleanup({other});
    EXPECT_THAT(model().pendingCleanup(), Optional(ElementsAre(confirmed)));
    mac.answers.file("go");
    ASSERT_TRUE(waitFor([&] { return !model().isCleaning(); }));
    ASSERT_THAT(model().outcomes(), SizeIs(1));
    EXPECT_EQ(model().outcomes().front().item, confirmed);
    EXPECT_TRUE(std::filesystem::exists(other.path));
}

TEST_F(AppModelTests, theTrashIsEmptiedBeforeAnythingIsPutThere) {
    mac.home.file(".Trash/old", {.text = "12345"});
    const auto kept = folderItem("Movies/export", Safety::review, CleanupAction::trash());
    const auto trash = item(home(".Trash"), Safety::review, CleanupAction::emptyTrash());
    clean({kept, trash});
    EXPECT_THAT(model().outcomes(), Each(Field(&CleanupOutcome::success, true)));
    EXPECT_EQ(textOf(home(".Trash/export/file")), "12345");
    EXPECT_FALSE(std::filesystem::exists(home(".Trash/old")));
}

TEST_F(AppModelTests, whatFailsStaysEverywhereAndIsNotTriedAgain) {
    const auto repository = folderItem("Library/Caches/x");
    mac.home.file("Library/Caches/x/.git/HEAD");
    saveReport({repository});
    clean({repository});
    ASSERT_THAT(model().outcomes(), SizeIs(1));
    EXPECT_FALSE(model().outcomes().front().success);
    EXPECT_THAT(desktop.recycled, IsEmpty());
    EXPECT_THAT(model().selection(), ElementsAre(repository.path));
    EXPECT_EQ(savedPaths(), std::vector{repository.path});
}

TEST_F(AppModelTests, theSheetStaysWhileACleanupRuns) {
    model().requestCleanup({folderItem("Library/Caches/x")});
    model().confirmCleanup();
    model().dismissCleanup();
    EXPECT_TRUE(model().pendingCleanup().has_value());
    ASSERT_TRUE(waitFor([&] { return !model().isCleaning(); }));
    model().dismissCleanup();
    EXPECT_FALSE(model().pendingCleanup().has_value());
}

TEST_F(AppModelTests, aSecondConfirmationWhileACleanupRunsChangesNothing) {
    model().confirmCleanup(); // nothing is pending
    EXPECT_FALSE(model().isCleaning());
    model().requestCleanup({folderItem("Library/Caches/x")});
    model().confirmCleanup();
    model().confirmCleanup();
    ASSERT_TRUE(waitFor([&] { return !model().isCleaning(); }));
    EXPECT_THAT(model().outcomes(), SizeIs(1));
    EXPECT_THAT(model().activity(), SizeIs(1));
}

// Applications get a second way

class ApplicationRetryTests : public AppModelTests {
protected:
    /// An application that the cleaner can't move to the Trash, since a file stands where that would be.
    [[nodiscard]] CleanupItem stubbornApplication(std::vector<std::string> related = {}) {
        mac.installApplication("Tool", "org.example.tool");
        mac.home.file(".Trash", {.text = "no folder"});
        auto application = item("/Applications/Tool.app", Safety::review, CleanupAction::trash());
        application.category = ItemCategory::apps;
        if (!related.empty())
            application.relatedPaths = std::move(related);
        return application;
    }
    CleanupOutcome outcomeOf(const CleanupItem& application) {
        saveReport({application});
        clean({application});
        return model().outcomes().front();
    }
};

TEST_F(ApplicationRetryTests, theFileManagerMovesWhatTheCleanerCouldNot) {
    const auto outcome = outcomeOf(stubbornApplication());
    EXPECT_TRUE(outcome.success);
    EXPECT_EQ(outcome.message, "Dipindah ke Tong Sampah lewat Finder");
    EXPECT_THAT(desktop.recycled, ElementsAre("/Applications/Tool.app"));
    EXPECT_THAT(model().report()->items, IsEmpty());
    ASSERT_THAT(model().activity(), SizeIs(2));
    EXPECT_TRUE(model().activity()[0].success);
    EXPECT_EQ(model().activity()[0].message, outcome.message);
    EXPECT_EQ(model().activity()[0].path, "/Applications/Tool.app");
    EXPECT_FALSE(model().activity()[1].success) << "what the cleaner ran into";
}

TEST_F(ApplicationRetryTests, whatTheCleanerMovedIsNotLookedForAgain) {
    mac.installApplication("Tool", "org.example.tool");
    auto application = item("/Applications/Tool.app", Safety::review, CleanupAction::trash());
    application.relatedPaths = {folderItem(".ssh/org.example.tool").path};
    const auto outcome = outcomeOf(application);
    EXPECT_FALSE(outcome.success);
    EXPECT_EQ(outcome.message, "Sebagian dilewati: org.example.tool");
    EXPECT_FALSE(std::filesystem::exists("/Applications/Tool.app"));
    EXPECT_THAT(desktop.recycled, IsEmpty());
}

TEST_F(ApplicationRetryTests, whatWasGoneBeforeIsRefused) {
    const auto outcome = outcomeOf(item("/Applications/Tool.app", Safety::review, CleanupAction::trash()));
    EXPECT_EQ(outcome.message, "Tidak bisa dihapus: Sudah tidak ada: /Applications/Tool.app");
}

TEST_F(ApplicationRetryTests, itsRefusalIsToldInItsWords) {
    desktop.recycling = {std::unexpected("pengguna membatalkan")};
    const auto outcome = outcomeOf(stubbornApplication());
    EXPECT_FALSE(outcome.success);
    EXPECT_EQ(outcome.message, "Tidak bisa dihapus: pengguna membatalkan");
    EXPECT_THAT(model().report()->items, SizeIs(1));
}

TEST_F(ApplicationRetryTests, anApplicationOfTheSystemIsRefusedBeforeTheFileManagerIsAsked) {
    auto application = stubbornApplication();
    mac.installApplication("Tool", "com.apple.tool");
    const auto outcome = outcomeOf(application);
    EXPECT_FALSE(outcome.success);
    EXPECT_EQ(outcome.message, "Tidak bisa dihapus: Dilindungi (data penting): /Applications/Tool.app");
    EXPECT_THAT(desktop.recycled, IsEmpty());
}

TEST_F(ApplicationRetryTests, itsDataGoesToTheTrashBehindIt) {
    const auto cache = folderItem("Library/Caches/org.example.tool").path;
    const auto application = stubbornApplication({cache});
    desktop.whileRecycling = [&] { std::filesystem::remove(home(".Trash")); };
    const auto outcome = outcomeOf(application);
    EXPECT_TRUE(outcome.success);
    EXPECT_EQ(outcome.message, "Dipindah ke Tong Sampah lewat Finder");
    EXPECT_EQ(outcome.freedBytes, 0);
    EXPECT_FALSE(std::filesystem::exists(cache));
    EXPECT_TRUE(std::filesystem::exists(home(".Trash/org.example.tool/file")));
}

TEST_F(ApplicationRetryTests, dataThatStaysMakesItAFailure) {
    const auto cache = folderItem("Library/Caches/org.example.tool").path;
    const auto outcome = outcomeOf(stubbornApplication({cache}));
    EXPECT_FALSE(outcome.success);
    EXPECT_EQ(outcome.message, "App terhapus; sebagian data dilewati");
    EXPECT_THAT(model().report()->items, SizeIs(1));
    EXPECT_THAT(savedPaths(), ElementsAre("/Applications/Tool.app"));
    EXPECT_TRUE(std::filesystem::exists(cache));
}

TEST_F(ApplicationRetryTests, dataThatTheGuardRefusesMakesItAFailure) {
    const auto keys = folderItem(".ssh/org.example.tool").path;
    const auto application = stubbornApplication({keys});
    desktop.whileRecycling = [&] { std::filesystem::remove(home(".Trash")); };
    const auto outcome = outcomeOf(application);
    EXPECT_FALSE(outcome.success);
    EXPECT_EQ(outcome.message, "App terhapus; sebagian data dilewati");
    EXPECT_TRUE(std::filesystem::exists(keys));
}

TEST_F(ApplicationRetryTests, whatIsNoApplicationIsNotTriedAgain) {
    mac.home.file(".Trash", {.text = "no folder"});
    clean({folderItem("Library/Caches/x", Safety::review, CleanupAction::trash())});
    ASSERT_THAT(model().outcomes(), SizeIs(1));
    EXPECT_FALSE(model().outcomes().front().success);
    EXPECT_EQ(model().outcomes().front().message, "Gagal pada /Users/tester/Library/Caches/x: bukan folder");
    EXPECT_THAT(desktop.recycled, IsEmpty());
}

TEST_F(ApplicationRetryTests, oneIsAskedForAfterTheOther) {
    const auto first = stubbornApplication();
    mac.installApplication("Other", "org.example.other");
    const auto second = item("/Applications/Other.app", Safety::review, CleanupAction::trash());
    desktop.recycling = {std::unexpected("tidak"), {}};
    std::vector<std::size_t> asked;
    desktop.whileRecycling = [&] { asked.push_back(desktop.recycled.size()); };
    clean({first, item(home("Library/Caches/none")), second});
    EXPECT_THAT(desktop.recycled, ElementsAre("/Applications/Tool.app", "/Applications/Other.app"));
    EXPECT_THAT(asked, ElementsAre(1U, 2U));
    ASSERT_THAT(model().outcomes(), SizeIs(3));
    EXPECT_EQ(model().outcomes()[0].message, "Tidak bisa dihapus: tidak");
    EXPECT_FALSE(model().outcomes()[1].success);
    EXPECT_TRUE(model().outcomes()[2].success);
}

TEST_F(ApplicationRetryTests, manyRefusalsAreOnlyManyRefusals) {
    std::vector<CleanupItem> items(10'000, item(home("Documents/x.app"), Safety::review));
    clean(items);
    EXPECT_THAT(model().outcomes(), SizeIs(items.size()));
    EXPECT_TRUE(model().outcomes().back().message.starts_with("Tidak bisa dihapus: "));
    EXPECT_THAT(desktop.recycled, IsEmpty());
}

TEST_F(ApplicationRetryTests, anAnswerThatComesWhenTheModelIsGoneGoesNowhere) {
    const auto application = stubbornApplication();
    model().requestCleanup({application});
    model().confirmCleanup();
    ASSERT_TRUE(waitFor([&] { return !desktop.recycled.empty(); }));
    startAgain();
    spinFor(std::chrono::milliseconds(200));
}

// Messages, low space, the desktop

TEST_F(AppModelTests, spaceIsLowBelowTheLimitOnly) {
    auto settings = model().settings();
    const auto whole = model().freeBytes() / GB;
    settings.lowSpaceWarningGB = whole;
    model().setSettings(settings);
    EXPECT_FALSE(model().isLowSpace());
    settings.lowSpaceWarningGB = whole + 1;
    model().setSettings(settings);
    EXPECT_TRUE(model().isLowSpace());
    settings.lowSpaceWarningGB = INT64_MAX;
    model().setSettings(settings);
    EXPECT_TRUE(model().isLowSpace());
    settings.lowSpaceWarningGB = INT64_MIN;
    model().setSettings(settings);
    EXPECT_FALSE(model().isLowSpace());
}

TEST_F(AppModelTests, settingsAreSavedAtOnce) {
    auto settings = model().settings();
    settings.inactiveDays = 99;
    model().setSettings(settings);
    EXPECT_EQ(KorvantiSettings::load().inactiveDays, 99);
}

TEST_F(AppModelTests, offloadingWithoutAWorkVolumeIsAnError) {
    model().offload(folderItem("Library/Caches/x"));
    EXPECT_EQ(model().errorMessage(), "Pilih SSD kerja dulu di bagian SSD Eksternal.");
    EXPECT_FALSE(model().busyMessage().has_value());
    model().dismissError();
    EXPECT_FALSE(model().errorMessage().has_value());
}

TEST_F(AppModelTests, relocatingWithoutAWorkVolumeDoesNothing) {
    model().relocate({DevCache::npmCache});
    EXPECT_FALSE(model().errorMessage().has_value());
    EXPECT_FALSE(model().noticeMessage().has_value());
}

TEST_F(AppModelTests, aLoginItemThatCannotBeSwitchedIsTold) {
    model().setLoginItem(true);
    EXPECT_FALSE(model().errorMessage().has_value());
    EXPECT_FALSE(model().isLoginItem());
    desktop.isLoginItem = true;
    EXPECT_TRUE(model().isLoginItem());
    desktop.loginItem = std::unexpected("tidak boleh");
    model().setLoginItem(false);
    EXPECT_EQ(model().errorMessage(), "Gagal mengubah 'buka saat login': tidak boleh");
    EXPECT_THAT(desktop.loginItems, ElementsAre(true, false));
}

TEST_F(AppModelTests, whatIsThereIsShownAndElseTheFolderThatHeldIt) {
    const auto there = mac.home.file("Downloads/there");
    const auto dangling = mac.home.symlink("Downloads/link", "/nowhere");
    model().reveal(there);
    model().reveal(dangling);
    EXPECT_THAT(desktop.revealed, ElementsAre(there, dangling));
    EXPECT_THAT(desktop.opened, IsEmpty());
    model().reveal(home("Downloads/gone"));
    model().reveal("simulator:1234");
    model().reveal("");
    EXPECT_THAT(desktop.revealed, SizeIs(2));
    EXPECT_THAT(desktop.opened, ElementsAre(home("Downloads")));
}

TEST_F(AppModelTests, theDesktopOpensItsSettings) {
    model().openFullDiskAccessSettings();
    EXPECT_EQ(desktop.settingsOpened, 1);
}

TEST_F(AppModelTests, whatTheDesktopCannotOpenIsTold) {
    const auto there = mac.home.file("Downloads/there");
    model().reveal(there);
    model().openFullDiskAccessSettings();
    EXPECT_EQ(model().errorMessage(), std::nullopt);

    desktop.opening = std::unexpected("tidak ada.");
    model().reveal(there);
    EXPECT_EQ(model().errorMessage(), "Tidak bisa membuka ~/Downloads/there: tidak ada.");
    model().reveal(home("Downloads/gone"));
    EXPECT_EQ(model().errorMessage(), "Tidak bisa membuka ~/Downloads: tidak ada.");
    model().openFullDiskAccessSettings();
    EXPECT_EQ(model().errorMessage(), "Tidak bisa membuka pengaturan Full Disk Access: tidak ada.");
}

TEST_F(AppModelTests, errorAndNoticeStayUntilTheyAreDismissed) {
    model().offload(folderItem("Library/Caches/x"));
    model().revertRelocation({DevCache::npmCache});
    EXPECT_EQ(model().noticeMessage(), "Cache dev kembali ke lokasi bawaan di Mac.");
    EXPECT_TRUE(model().errorMessage().has_value());
    model().scan();
    ASSERT_TRUE(waitFor([&] { return !model().isScanning(); }));
    EXPECT_TRUE(model().errorMessage().has_value());
    model().dismissNotice();
    EXPECT_FALSE(model().noticeMessage().has_value());
    EXPECT_TRUE(model().errorMessage().has_value());
}

TEST_F(AppModelTests, aProfileThatCannotBeReadIsTold) {
    mac.home.folder(".zshenv");
    model().revertRelocation({DevCache::npmCache});
    EXPECT_EQ(model().errorMessage(), "Gagal pada /Users/tester/.zshenv: ternyata folder");
    EXPECT_FALSE(model().noticeMessage().has_value());
}

TEST_F(AppModelTests, anEjectionThatFailsIsToldInTheToolsWords) {
    mac.answerWithScript("diskutil eject /Volumes/Kerja", "echo 'in use' >&2; exit 1");
    mac.answer("diskutil eject /Volumes/Lain", "ejected");
    model().eject({.mountPath = "/Volumes/Lain"});
    EXPECT_FALSE(model().errorMessage().has_value());
    model().eject({.mountPath = "/Volumes/Kerja"});
    EXPECT_EQ(model().errorMessage(), "Gagal mengeluarkan: in use\n");
}

TEST_F(AppModelTests, theTimerLooksAtTheDiskAgainAndAgain) {
    interval = std::chrono::milliseconds(20);
    model();
    QSignalSpy space(&model(), &AppModel::freeBytesChanged);
    ASSERT_TRUE(waitFor([&] {
        mac.home.file("Library/more" + std::to_string(space.count()), {.allocatedBytes = 3'000'000});
        return space.count() >= 3;
    }));
}

// Map and applications

TEST_F(AppModelTests, aMapIsMadeShownAndSaved) {
    mac.home.file("Library/big", {.allocatedBytes = 12'000'000});
    model().generateMap();
    EXPECT_TRUE(model().isMapping());
    model().generateMap(); // does nothing
    ASSERT_TRUE(waitFor([&] { return !model().isMapping(); }));
    ASSERT_TRUE(model().storageMap().has_value());
    EXPECT_EQ(model().mapStatus(), "");
    const auto made = model().storageMap()->roots;
    startAgain();
    EXPECT_EQ(model().storageMap()->roots, made);
}

TEST_F(AppModelTests, applicationsAreListed) {
    mac.installApplication("Tool", "org.example.tool");
    model().loadApps();
    EXPECT_TRUE(model().appsLoading());
    ASSERT_TRUE(waitFor([&] { return !model().appsLoading(); }));
    ASSERT_THAT(model().apps(), SizeIs(1));
    EXPECT_EQ(model().apps().front().path, "/Applications/Tool.app");
}

TEST_F(AppModelTests, oneListOfApplicationsIsMadeAtATime) {
    QSignalSpy loading(&model(), &AppModel::appsLoadingChanged);
    model().loadApps();
    model().loadApps();
    ASSERT_TRUE(waitFor([&] { return !model().appsLoading(); }));
    EXPECT_EQ(loading.count(), 2);
}

TEST_F(AppModelTests, aSpeedTestWhereNothingCanBeWrittenIsAFailure) {
    model().speedTest({.mountPath = "/Volumes/Kerja", .uuid = "aa-1"});
    EXPECT_EQ(model().speedTesting(), "aa-1");
    ASSERT_TRUE(waitFor([&] { return !model().speedTesting().has_value(); }));
    EXPECT_EQ(model().errorMessage(), "Uji kecepatan gagal: Gagal pada /Volumes/Kerja: sudah tidak ada");
    EXPECT_THAT(model().speedResults(), IsEmpty());
    model().speedTest({.mountPath = "/Volumes/Lain"});
    EXPECT_EQ(model().speedTesting(), "/Volumes/Lain");
    ASSERT_TRUE(waitFor([&] { return !model().speedTesting().has_value(); }));
}

TEST_F(AppModelTests, mountsThatComeTogetherAreLookedAtOnceMore) {
    mac.answerWithScript("defaults read com.apple.dt.Xcode IDECustomDerivedDataLocation",
                         untilTold + "; echo /Volumes/X");
    model();
    for (int i = 0; i < 10; ++i)
        desktop.mountsChanged();
    mac.answers.file("go");
    ASSERT_TRUE(waitFor([&] { return std::ranges::count(BoxMac::calls(), xcodeLocation) == 2; }));
    spinFor(std::chrono::milliseconds(200));
    EXPECT_EQ(std::ranges::count(BoxMac::calls(), xcodeLocation), 2);
    EXPECT_EQ(model().relocationTargets(), (AppModel::Targets{{DevCache::xcodeDerivedData, "/Volumes/X"}}));
}

TEST_F(AppModelTests, aFieldThatStaysTheSameTellsNobody) {
    QSignalSpy panes(&model(), &AppModel::paneChanged);
    QSignalSpy space(&model(), &AppModel::totalBytesChanged);
    model().setPane(Pane::overview);
    model().refreshDisk();
    EXPECT_EQ(panes.count() + space.count(), 0);
    model().setPane(Pane::ssd);
    EXPECT_EQ(panes.count(), 1);
}

} // namespace
} // namespace korvanti
