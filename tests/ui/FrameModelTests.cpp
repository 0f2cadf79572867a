#include "ui/FrameModel.h"

#include "UiSupport.h"
#include "base/ByteText.h"
#include "support/BeforeCall.h"
#include "support/DiskSpace.h"
#include "support/Environment.h"
#include "ui/SymbolProvider.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <latch>
#include <limits>
#include <string>
#include <vector>

namespace korvanti {
namespace {

using namespace korvanti::testing;
using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr std::int64_t limit = 20 * GB;
constexpr std::int64_t total = 245'110'000'000;

class FrameModelTests : public UiTests {
protected:
    [[nodiscard]] CleanupItem item(const std::string& name, std::int64_t bytes,
                                   bool recommended = true) const {
        CleanupItem item;
        item.path = mac.home.path("Library/Caches/" + name);
        item.title = name;
        item.bytes = bytes;
        item.recommended = recommended;
        item.action = CleanupAction::delete_();
        item.safety = Safety::regenerable;
        return item;
    }
    [[nodiscard]] std::vector<std::string> column(RowList* rows, const char* role) const {
        std::vector<std::string> values;
        for (const auto& row : rows->rows())
            values.push_back(row.value(role).toString().toStdString());
        return values;
    }
    [[nodiscard]] std::string badge(Pane pane) {
        return column(frame().panes(), "badge")[static_cast<std::size_t>(pane)];
    }
    /// A scan goes on until `letScanEnd`.
    void holdScans() const {
        mac.answerWithScript("tmutil listlocalsnapshots /",
                             "while [ ! -e /box/answers/go ]; do sleep 0.02; done");
    }
    void letScanEnd() {
        mac.answers.file("go");
        EXPECT_TRUE(waitFor([&] { return !model().isScanning(); }));
    }
    [[nodiscard]] std::vector<std::string> pending() {
        std::vector<std::string> titles;
        for (const auto& item : model().pendingCleanup().value_or(std::vector<CleanupItem>()))
            titles.push_back(item.title);
        return titles;
    }

    const ScopedVariable language{"LC_ALL", "id_ID.UTF-8"};
};

TEST_F(FrameModelTests, theSidebarHasARowForEachPaneInOrder) {
    const QAbstractItemModelTester tester(frame().panes(),
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    EXPECT_THAT(column(frame().panes(), "title"), ElementsAre("Ringkasan", "Pembersihan", "Peta Storage",
                                                              "Aplikasi", "SSD Eksternal", "Riwayat"));
    EXPECT_THAT(column(frame().panes(), "symbol"),
                ElementsAre("gauge.with.dots.needle.67percent", "sparkles", "square.grid.3x3.square",
                            "square.grid.2x2", "externaldrive", "clock.arrow.circlepath"));
    for (const auto* role : {"symbol", "chosenSymbol"}) {
        for (const auto& name : column(frame().panes(), role))
            EXPECT_EQ(SymbolProvider::find(QString::fromStdString(name)).name, name);
    }
}

TEST_F(FrameModelTests, theBadgeOfTheCleanupIsWhatIsRecommended) {
    saveReport({item("one", 31'000'000'000), item("two", 460'000'000), item("other", 5, false)});
    EXPECT_EQ(badge(Pane::cleanup), "31,46 GB");
    EXPECT_EQ(frame().recommendedText(), "31,46 GB");
    EXPECT_TRUE(frame().canClean());
    for (const auto pane : {Pane::overview, Pane::map, Pane::apps, Pane::ssd, Pane::history})
        EXPECT_EQ(badge(pane), "") << rawValue(pane);
}

TEST_F(FrameModelTests, withNothingRecommendedThereIsNoBadgeAndNothingToClean) {
    saveReport({item("empty", 0), item("other", 5, false)});
    EXPECT_TRUE(frame().hasReport());
    EXPECT_EQ(badge(Pane::cleanup), "");
    EXPECT_FALSE(frame().canClean());
}

TEST_F(FrameModelTests, oneByteHasABadge) {
    saveReport({item("one", 1)});
    EXPECT_EQ(badge(Pane::cleanup), bytesText(1));
    EXPECT_TRUE(frame().canClean());
}

TEST_F(FrameModelTests, withoutAReportThereIsNothingToTell) {
    EXPECT_FALSE(frame().hasReport());
    EXPECT_EQ(badge(Pane::cleanup), "");
    EXPECT_FALSE(frame().canClean());
    EXPECT_EQ(frame().scanText(), "");
}

TEST_F(FrameModelTests, theBadgeFollowsTheReport) {
    mac.home.file("Library/Caches/gone/file", {.text = "12345"});
    saveReport({item("gone", 2 * GB)});
    EXPECT_EQ(badge(Pane::cleanup), "2 GB");
    model().requestCleanup({item("gone", 2 * GB)});
    model().confirmCleanup();
    ASSERT_TRUE(waitFor([&] { return !model().isCleaning(); }));
    EXPECT_EQ(badge(Pane::cleanup), "");
}

TEST_F(FrameModelTests, aRowChoosesItsPane) {
    QSignalSpy changed(&frame(), &FrameModel::paneChanged);
    for (const int row : {5, 4, 3, 2, 1, 0}) {
        frame().choosePane(row);
        EXPECT_EQ(model().pane(), allCases<Pane>.at(static_cast<std::size_t>(row)));
        EXPECT_EQ(frame().pane(), row);
    }
    EXPECT_EQ(changed.count(), 6);
}

TEST_F(FrameModelTests, aNumberThatIsNoRowChangesNothing) {
    frame().choosePane(3);
    for (const int row : {-1, 6, 1'000'000, std::numeric_limits<int>::min()}) {
        frame().choosePane(row);
        EXPECT_EQ(frame().pane(), 3);
    }
}

TEST_F(FrameModelTests, aDiskThatCannotBeAskedIsEmpty) {
    const DiskSpace unknown(0, 0);
    EXPECT_EQ(frame().totalBytes(), 0);
    EXPECT_EQ(frame().usedBytes(), 0);
    EXPECT_EQ(frame().capacityText().toStdString(), bytesText(0) + " kosong dari " + bytesText(0));
    EXPECT_TRUE(frame().isLow());
}

TEST_F(FrameModelTests, justTheLimitIsNotLowAndOneByteLessIs) {
    {
        const DiskSpace space(limit, total);
        model().refreshDisk();
        EXPECT_FALSE(frame().isLow());
        EXPECT_EQ(frame().lowSpaceText(), "");
        EXPECT_EQ(frame().labelSymbol(), "internaldrive");
    }
    QSignalSpy changed(&frame(), &FrameModel::capacityChanged);
    const DiskSpace space(limit - 1, total);
    model().refreshDisk();
    EXPECT_EQ(changed.count(), 1);
    EXPECT_TRUE(frame().isLow());
    EXPECT_EQ(frame().lowSpaceText(), "Ruang di bawah 20 GB. Build Xcode/Gradle bisa gagal.");
    EXPECT_EQ(frame().labelSymbol(), "externaldrive.fill.badge.exclamationmark");
    EXPECT_EQ(SymbolProvider::find(frame().labelSymbol()).name, "externaldrive.fill.badge.exclamationmark");
    EXPECT_EQ(SymbolProvider::find("internaldrive").name, "internaldrive");
}

TEST_F(FrameModelTests, theLimitIsTheUsersOwn) {
    const DiskSpace space(limit, total);
    auto settings = model().settings();
    settings.lowSpaceWarningGB = 50;
    QSignalSpy changed(&frame(), &FrameModel::capacityChanged);
    model().setSettings(settings);
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(frame().lowSpaceText(), "Ruang di bawah 50 GB. Build Xcode/Gradle bisa gagal.");
}

TEST_F(FrameModelTests, theFooterTheLabelAndThePanelTellTheSameDisk) {
    const DiskSpace space(14'200'000'000, total);
    EXPECT_EQ(frame().capacityText(), "14,2 GB kosong dari 245,11 GB");
    EXPECT_EQ(frame().labelText(), "14,2 GB");
    EXPECT_EQ(frame().freeText(), "14,2 GB kosong");
    EXPECT_EQ(frame().totalText(), "dari 245,11 GB");
    EXPECT_EQ(frame().usedBytes(), total - 14'200'000'000);
    EXPECT_EQ(frame().totalBytes(), total);
}

TEST_F(FrameModelTests, capacitiesBeyondAllDisksAreTexts) {
    constexpr auto greatest = std::numeric_limits<std::int64_t>::max();
    const DiskSpace space(greatest, greatest);
    EXPECT_EQ(frame().capacityText(), "9,22 EB kosong dari 9,22 EB");
    EXPECT_EQ(frame().usedBytes(), 0);
}

TEST_F(FrameModelTests, moreFreeThanThereIsMakesUsedNegative) {
    const DiskSpace space(3 * GB, 1 * GB);
    EXPECT_EQ(frame().usedBytes(), -2 * GB);
}

TEST_F(FrameModelTests, theLabelFollowsTheDisk) {
    {
        const DiskSpace space(30 * GB, total);
        EXPECT_EQ(frame().labelText(), "30 GB");
    }
    const DiskSpace space(31 * GB, total);
    model().refreshDisk();
    EXPECT_EQ(frame().labelText(), "31 GB");
}

TEST_F(FrameModelTests, thePanelTellsWhenTheScanWas) {
    saveReport({item("one", 1)});
    Instant now = instantFromSeconds(1'700'000'000) + 2h;
    FrameModel timed(model(), [&] { return now; });
    EXPECT_EQ(timed.scanText(), "Pindaian 2 jam yang lalu");
    QSignalSpy changed(&timed, &FrameModel::scanTextChanged);
    now += 24h;
    expectToFollow(*timed.clock(), changed);
    EXPECT_EQ(timed.scanText(), "Pindaian 1 hari yang lalu");
}

TEST_F(FrameModelTests, theWindowScansOnItsOwnOnlyWithoutAReport) {
    holdScans();
    QSignalSpy changed(&frame(), &FrameModel::isScanningChanged);
    EXPECT_EQ(frame().scanAction(), "Pindai");
    frame().windowOpened();
    EXPECT_TRUE(frame().isScanning());
    EXPECT_EQ(frame().scanAction(), "Memindai…");
    frame().windowOpened();
    frame().scan();
    letScanEnd();
    EXPECT_EQ(changed.count(), 2) << "one scan, its beginning and its end";
    ASSERT_TRUE(frame().hasReport());
    frame().windowOpened();
    EXPECT_FALSE(frame().isScanning());
    frame().scan();
    EXPECT_TRUE(frame().isScanning());
    letScanEnd();
}

TEST_F(FrameModelTests, cleaningFromThePanelAsksForJustWhatItPromised) {
    saveReport({item("one", 10), item("two", 20), item("other", 30, false)});
    model().setFilter(ItemFilter::all);
    model().clearSelection();
    model().toggle(item("other", 30, false));
    QStringList order;
    const auto log = [&](auto signal, const char* name) {
        QObject::connect(&model(), signal, &frame(), [&order, name] { order.append(name); });
    };
    QObject::connect(&frame(), &FrameModel::windowRequested, &frame(), [&] { order.append("window"); });
    log(&AppModel::paneChanged, "pane");
    log(&AppModel::filterChanged, "filter");
    log(&AppModel::selectionChanged, "selection");
    log(&AppModel::pendingCleanupChanged, "pending");
    frame().cleanRecommended();
    EXPECT_EQ(order.join(' '), "pane window filter selection pending");
    EXPECT_EQ(model().pane(), Pane::cleanup);
    EXPECT_EQ(model().filter(), ItemFilter::recommended);
    EXPECT_THAT(pending(), ElementsAre("one", "two"));
}

TEST_F(FrameModelTests, withoutAReportCleaningFromThePanelAsksForNothing) {
    frame().cleanRecommended();
    EXPECT_FALSE(model().pendingCleanup().has_value());
}

TEST_F(FrameModelTests, thePanelOpensTheWindowOnTheOverview) {
    frame().choosePane(4);
    QSignalSpy requested(&frame(), &FrameModel::windowRequested);
    frame().openOverview();
    EXPECT_EQ(model().pane(), Pane::overview);
    EXPECT_EQ(requested.count(), 1);
}

TEST_F(FrameModelTests, messagesStayUntilTheyAreDismissed) {
    QSignalSpy changed(&frame(), &FrameModel::messagesChanged);
    EXPECT_EQ(frame().busyMessage() + frame().errorMessage() + frame().noticeMessage(), "");
    model().offload(item("one", 1));
    EXPECT_EQ(frame().errorMessage(), "Pilih SSD kerja dulu di bagian SSD Eksternal.");
    EXPECT_EQ(changed.count(), 1);
    frame().dismissNotice();
    EXPECT_NE(frame().errorMessage(), "");
    frame().dismissError();
    EXPECT_EQ(frame().errorMessage(), "");
    model().revertRelocation({DevCache::npmCache});
    EXPECT_EQ(frame().noticeMessage(), "Cache dev kembali ke lokasi bawaan di Mac.");
    frame().dismissError();
    EXPECT_NE(frame().noticeMessage(), "");
    frame().dismissNotice();
    EXPECT_EQ(frame().noticeMessage(), "");
}

TEST_F(FrameModelTests, aMessageIsOneLineWhateverNamesAreInIt) {
    desktop.loginItem = std::unexpected("tak\nbisa \x1b[31m\xff");
    model().setLoginItem(true);
    EXPECT_FALSE(frame().errorMessage().contains('\n'));
    EXPECT_FALSE(frame().errorMessage().contains(QChar(0x1b)));
    EXPECT_TRUE(frame().errorMessage().startsWith("Gagal mengubah 'buka saat login': tak bisa \uFFFD"));
}

TEST_F(FrameModelTests, withNothingUnderWayItQuitsWithoutAsking) {
    QSignalSpy requested(&frame(), &FrameModel::quitRequested);
    frame().quit();
    EXPECT_FALSE(frame().asksToQuit());
    EXPECT_TRUE(waitFor([&] { return requested.count() == 1; }));
    frame().quit();
    spinFor(20ms);
    EXPECT_EQ(requested.count(), 1);
}

TEST_F(FrameModelTests, duringAScanItAsksFirst) {
    holdScans();
    frame().scan();
    QSignalSpy requested(&frame(), &FrameModel::quitRequested);
    QSignalSpy window(&frame(), &FrameModel::windowRequested);
    frame().quit();
    EXPECT_TRUE(frame().asksToQuit());
    EXPECT_EQ(frame().quitText(), "Pemindaian sedang berjalan dan hasilnya tidak disimpan.");
    EXPECT_EQ(window.count(), 1) << "the question can be seen";
    frame().stay();
    EXPECT_FALSE(frame().asksToQuit());
    EXPECT_FALSE(frame().isQuitting());
    spinFor(20ms);
    EXPECT_EQ(requested.count(), 0);
    frame().quit();
    frame().confirmQuit();
    EXPECT_TRUE(waitFor([&] { return requested.count() == 1; }));
    EXPECT_TRUE(model().isScanning()) << "a scan is not waited for";
    letScanEnd();
}

TEST_F(FrameModelTests, aCleanupIsAskedAboutAndEndsBehindItsItem) {
    mac.home.file("Library/Caches/first/file", {.text = "12345"});
    mac.home.file("Library/Caches/second/file", {.text = "12345"});
    saveReport({item("first", 5), item("second", 5)});
    std::latch released{1};
    const BeforeCall gate(Call::unlinkAt, "first", [&] { released.wait(); });
    model().requestCleanup({item("first", 5), item("second", 5)});
    model().confirmCleanup();
    ASSERT_TRUE(waitFor([&] { return model().cleanCurrent() == "first"; }));
    QSignalSpy requested(&frame(), &FrameModel::quitRequested);
    frame().quit();
    EXPECT_TRUE(frame().quitText().startsWith("Pembersihan sedang berjalan."));
    frame().confirmQuit();
    EXPECT_TRUE(frame().isQuitting());
    spinFor(50ms);
    EXPECT_EQ(requested.count(), 0);
    released.count_down();
    EXPECT_TRUE(waitFor([&] { return requested.count() == 1; }));
    EXPECT_THAT(model().outcomes(), SizeIs(1));
    EXPECT_TRUE(std::filesystem::exists(mac.home.path("Library/Caches/second/file")));
}

} // namespace
} // namespace korvanti
