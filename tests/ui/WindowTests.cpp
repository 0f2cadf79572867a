#include "UiSupport.h"
#include "base/ByteText.h"
#include "support/BeforeCall.h"
#include "support/DiskSpace.h"
#include "support/Environment.h"

#include <QAccessible>
#include <QSignalSpy>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <latch>
#include <optional>
#include <string>
#include <vector>

namespace korvanti {
namespace {

using namespace korvanti::testing;
using namespace std::chrono_literals;

class WindowTests : public UiTests {
protected:
    void open() {
        saveReport({cache("one")});
        window();
    }
    [[nodiscard]] static bool isInside(const QRectF& inner, const QRectF& outer) {
        return outer.adjusted(-0.5, -0.5, 0.5, 0.5).contains(inner);
    }

    const ScopedVariable language{"LC_ALL", "id_ID.UTF-8"};
};

TEST_F(WindowTests, hasItsTitleAndItsSizes) {
    open();
    EXPECT_EQ(window().title(), "Korvanti");
    EXPECT_EQ(window().size(), QSize(1140, 760));
    EXPECT_EQ(window().minimumSize(), QSize(960, 620));
    EXPECT_EQ(item("pane0").mapToScene({}).x(), 10);
}

TEST_F(WindowTests, theDatesOfJustThePaneThatIsSeenKeepUpWithTheClock) {
    open();
    const std::vector<DateClock*> clocks = {overview().clock(), cleanup().items()->clock(),
                                            map().clock(),      apps().rows()->clock(),
                                            ssd().clock(),      history().clock()};
    const auto expectShown = [&](std::optional<std::size_t> shown) {
        for (std::size_t pane = 0; pane < clocks.size(); ++pane)
            EXPECT_EQ(clocks[pane]->isShown(), pane == shown) << pane;
    };
    for (std::size_t pane = 0; pane < clocks.size(); ++pane) {
        frame().choosePane(static_cast<int>(pane));
        expectShown(pane);
    }
    window().hide();
    expectShown(std::nullopt);
    window().show();
    expectShown(5);
    window().showMinimized();
    expectShown(std::nullopt);
    EXPECT_FALSE(frame().clock()->isShown()) << "the panel";
}

TEST_F(WindowTests, aClickOnARowShowsItsPane) {
    open();
    for (const auto& [row, title] : std::initializer_list<std::pair<int, const char*>>{{1, "Pembersihan"},
                                                                                       {2, "Peta Storage"},
                                                                                       {3, "Aplikasi"},
                                                                                       {4, "SSD Eksternal"},
                                                                                       {5, "Riwayat"},
                                                                                       {0, "Ringkasan"}}) {
        click(QString("pane%1").arg(row));
        EXPECT_EQ(frame().pane(), row);
        EXPECT_EQ(texts().count(title), 2) << title << ": its row, its head";
    }
}

TEST_F(WindowTests, keysChooseThePane) {
    open();
    const Qt::Key keys[] = {Qt::Key_1, Qt::Key_2, Qt::Key_3, Qt::Key_4, Qt::Key_5, Qt::Key_6};
    for (const int row : {5, 4, 3, 2, 1, 0}) {
        press(keys[row], Qt::ControlModifier);
        EXPECT_EQ(frame().pane(), row);
    }
}

TEST_F(WindowTests, theArrowsGoThroughTheSidebarAndStopAtItsEnds) {
    open();
    item("paneList").forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_Up);
    EXPECT_EQ(frame().pane(), 0);
    for (int i = 0; i < 8; ++i)
        press(Qt::Key_Down);
    EXPECT_EQ(frame().pane(), 5);
    press(Qt::Key_Up);
    EXPECT_EQ(frame().pane(), 4);
}

TEST_F(WindowTests, theChosenPaneHasTheFocusInTheSidebar) {
    open();
    frame().choosePane(4);
    item("paneList").forceActiveFocus(Qt::TabFocusReason);
    EXPECT_TRUE(item("pane4").hasActiveFocus()) << "what a reader tells";
    for (const auto key : {Qt::Key_Space, Qt::Key_Return}) {
        press(key);
        EXPECT_EQ(frame().pane(), 4);
    }
    press(Qt::Key_Down);
    EXPECT_TRUE(item("pane5").hasActiveFocus());
    press(Qt::Key_Home);
    EXPECT_EQ(frame().pane(), 0);
    EXPECT_TRUE(item("pane0").hasActiveFocus());
    press(Qt::Key_End);
    EXPECT_EQ(frame().pane(), 5);
    EXPECT_TRUE(item("pane5").hasActiveFocus());
    click("pane2");
    EXPECT_TRUE(item("pane2").hasActiveFocus());
}

TEST_F(WindowTests, aPaneChosenByItsKeyIsReadOut) {
    open();
    press(Qt::Key_2, Qt::ControlModifier);
    EXPECT_TRUE(item("pane1").hasActiveFocus());
    click("searchField");
    press(Qt::Key_2, Qt::ControlModifier);
    EXPECT_TRUE(item("searchField").hasActiveFocus()) << "it is there already";
    press(Qt::Key_4, Qt::ControlModifier);
    EXPECT_TRUE(item("pane3").hasActiveFocus());
}

TEST_F(WindowTests, aRowOfTheSidebarIsAnItemOfAListForWhoeverListens) {
    QAccessible::setActive(true);
    open();
    auto* const face = QAccessible::queryAccessibleInterface(&item("pane1"));
    EXPECT_EQ(face->role(), QAccessible::ListItem);
    EXPECT_TRUE(face->text(QAccessible::Name).startsWith("Pembersihan"));
    EXPECT_FALSE(face->state().selected);
    frame().choosePane(1);
    EXPECT_TRUE(face->state().selected);
    QAccessible::setActive(false);
}

TEST_F(WindowTests, theScanKeyScansAndDoesNothingDuringAScan) {
    open();
    mac.answerWithScript("tmutil listlocalsnapshots /",
                         "while [ ! -e /box/answers/go ]; do sleep 0.02; done");
    QSignalSpy scanning(&model(), &AppModel::isScanningChanged);
    EXPECT_FALSE(model().isScanning()) << "there is a report";
    press(Qt::Key_R, Qt::ControlModifier);
    EXPECT_TRUE(model().isScanning());
    press(Qt::Key_R, Qt::ControlModifier);
    press(Qt::Key_R, Qt::ControlModifier);
    mac.answers.file("go");
    ASSERT_TRUE(waitFor([&] { return !model().isScanning(); }));
    settle(100);
    EXPECT_EQ(scanning.count(), 2) << "one scan, its beginning and its end";
}

TEST_F(WindowTests, withoutAReportTheWindowScansOnceItIsOpen) {
    QSignalSpy scanning(&model(), &AppModel::isScanningChanged);
    window();
    EXPECT_EQ(scanning.count() % 2, model().isScanning() ? 1 : 0);
    EXPECT_GE(scanning.count(), 1);
    ASSERT_TRUE(waitFor([&] { return !model().isScanning(); }));
    EXPECT_EQ(scanning.count(), 2);
    EXPECT_TRUE(model().report().has_value());
}

TEST_F(WindowTests, theSearchKeyGoesToTheSearchOfTheCleanup) {
    open();
    press(Qt::Key_2, Qt::ControlModifier);
    press(Qt::Key_F, Qt::ControlModifier);
    EXPECT_TRUE(item("searchField").hasActiveFocus());
    type("one");
    EXPECT_EQ(model().search(), "one");
}

TEST_F(WindowTests, theSheetIsThereAsLongAsItemsWait) {
    open();
    EXPECT_FALSE(find("confirmButton"));
    model().requestCleanup(model().selectedItems());
    settle(300);
    EXPECT_TRUE(texts().contains("Konfirmasi pembersihan"));
    press(Qt::Key_Escape);
    settle(300);
    EXPECT_FALSE(model().pendingCleanup().has_value());
    EXPECT_FALSE(texts().contains("Konfirmasi pembersihan"));
}

TEST_F(WindowTests, duringACleanupTheSheetCannotBeDismissed) {
    open();
    std::latch released{1};
    const BeforeCall gate(Call::unlinkAt, "one", [&] { released.wait(); });
    model().requestCleanup(model().selectedItems());
    settle(300);
    model().confirmCleanup();
    press(Qt::Key_Escape);
    settle(100);
    EXPECT_TRUE(model().isCleaning());
    EXPECT_TRUE(model().pendingCleanup().has_value());
    released.count_down();
    ASSERT_TRUE(waitFor([&] { return !model().isCleaning(); }));
}

TEST_F(WindowTests, aMessageStandsAboveThePaneUntilItIsDismissed) {
    open();
    frame().choosePane(2);
    settle();
    const auto before = place("paneTitle");
    EXPECT_FALSE(find("errorBanner"));
    desktop.loginItem = std::unexpected("<b>tak</b> &amp; bisa");
    model().setLoginItem(true);
    settle(400);
    ASSERT_TRUE(find("errorBanner"));
    EXPECT_TRUE(texts().contains("Gagal mengubah 'buka saat login': <b>tak</b> &amp; bisa"));
    EXPECT_GE(place("paneTitle").top(), before.top() + 40);
    EXPECT_EQ(item("bannerText").property("textFormat").toInt(), 0) << "plain";
    grab("banner.png");
    click("dismissBanner");
    settle(400);
    EXPECT_FALSE(model().errorMessage().has_value());
    EXPECT_FALSE(find("errorBanner"));
    EXPECT_EQ(place("paneTitle"), before);
}

TEST_F(WindowTests, allMessagesStandInOrder) {
    open();
    frame().choosePane(2);
    model().setLoginItem(true);
    model().offload(cache("one"));
    model().revertRelocation({DevCache::npmCache});
    settle(400);
    EXPECT_LT(place("errorBanner").bottom(), place("noticeBanner").bottom());
    EXPECT_EQ(place("errorBanner").bottom(), place("noticeBanner").top());
    grab("banners.png");
}

TEST_F(WindowTests, aVeryLongMessageTakesThreeLinesAtMost) {
    open();
    frame().choosePane(2);
    desktop.loginItem = std::unexpected(std::string(4000, 'x') + std::string(4000, ' ') + "y");
    model().setLoginItem(true);
    settle(400);
    EXPECT_LE(item("bannerText").property("lineCount").toInt(), 3);
    EXPECT_LT(place("errorBanner").height(), 90);
    EXPECT_TRUE(isInside(place("bannerText"), place("errorBanner")));
    EXPECT_LE(place("bannerText").right(), place("dismissBanner").left());
}

TEST_F(WindowTests, theFooterIsRedWhenSpaceIsLow) {
    const DiskSpace low(14'200'000'000, 245'110'000'000);
    open();
    EXPECT_EQ(text("sidebarCapacityText"), "14,2 GB kosong dari 245,11 GB");
    EXPECT_EQ(item("sidebarCapacityText").property("color").value<QColor>(), QColor(0xC2, 0x41, 0x2D));
    EXPECT_TRUE(item("sidebarCapacity").property("warning").toBool());
}

TEST_F(WindowTests, theFooterIsQuietWhenThereIsSpace) {
    const DiskSpace plenty(62'700'000'000, 245'110'000'000);
    open();
    EXPECT_EQ(item("sidebarCapacityText").property("color").value<QColor>(), QColor(0x4A, 0x5B, 0x6C));
    EXPECT_FALSE(item("sidebarCapacity").property("warning").toBool());
}

TEST_F(WindowTests, withADiskThatCannotBeAskedTheBarIsEmpty) {
    const DiskSpace unknown(0, 0);
    open();
    EXPECT_EQ(item("sidebarCapacity").property("fraction").toDouble(), 0);
    EXPECT_FALSE(find("capacityFill"));
}

TEST_F(WindowTests, theSidebarHoldsAtTheSmallestSizeAndTheLargestText) {
    const DiskSpace low(14'200'000'000, 245'110'000'000);
    open();
    for (const double scale : {1.0, 1.5, 2.0}) {
        setFontScale(scale);
        resize(960, 620);
        settle(100);
        grab(QString("smallest-%1.png").arg(scale));
        const auto name = place("pane1");
        const auto badge = place("paneBadge1");
        EXPECT_TRUE(isInside(badge, name)) << scale;
        EXPECT_LE(place("sidebarCapacityText").bottom(), 620 - 15) << scale;
        EXPECT_LE(place("paneList").bottom(), place("sidebarCapacity").top()) << scale;
        EXPECT_EQ(text("paneBadge1"), "31,46 GB");
        EXPECT_FALSE(item("paneBadge1").property("truncated").toBool());
    }
}

TEST_F(WindowTests, quittingDuringWorkAsksInTheWindow) {
    open();
    std::latch released{1};
    const BeforeCall gate(Call::unlinkAt, "one", [&] { released.wait(); });
    model().requestCleanup(model().selectedItems());
    model().confirmCleanup();
    frame().quit();
    readSheet();
    EXPECT_TRUE(texts().contains("Keluar dari Korvanti?"));
    grab("quit.png");
    click("stayButton");
    settle(300);
    EXPECT_FALSE(find("quitButton"));
    EXPECT_FALSE(model().isEnding());
    frame().quit();
    settle(300);
    press(Qt::Key_Escape);
    EXPECT_FALSE(frame().asksToQuit());
    settle(300);
    frame().quit();
    readSheet();
    click("quitButton");
    settle(300);
    EXPECT_TRUE(model().isEnding());
    EXPECT_TRUE(texts().contains("Menyelesaikan pekerjaan terakhir…"));
    EXPECT_FALSE(find("quitButton"));
    released.count_down();
    ASSERT_TRUE(waitFor([&] { return !model().isCleaning(); }));
}

TEST_F(WindowTests, theQuestionGoesWithTheWorkThatItIsAbout) {
    open();
    std::latch released{1};
    const BeforeCall gate(Call::unlinkAt, "one", [&] { released.wait(); });
    model().requestCleanup(model().selectedItems());
    model().confirmCleanup();
    frame().quit();
    readSheet();
    ASSERT_TRUE(find("quitButton"));
    released.count_down();
    ASSERT_TRUE(waitFor([&] { return !model().isCleaning(); }));
    settle(300);
    EXPECT_FALSE(frame().asksToQuit());
    EXPECT_FALSE(find("quitButton"));
    EXPECT_FALSE(model().isEnding());
}

TEST_F(WindowTests, theQuestionIsAsHighAsItsWords) {
    setFontScale(2);
    open();
    std::latch released{1};
    const BeforeCall gate(Call::unlinkAt, "one", [&] { released.wait(); });
    model().requestCleanup(model().selectedItems());
    model().confirmCleanup();
    frame().quit();
    readSheet();
    grab("quit-large.png");
    EXPECT_NEAR(place("quitButton").top() - place("quitText").bottom(), 24 + 20, 8);
    released.count_down();
    ASSERT_TRUE(waitFor([&] { return !model().isCleaning(); }));
}

} // namespace
} // namespace korvanti
