#include "window/KorvantiApp.h"

#include "UiSupport.h"
#include "support/DiskSpace.h"
#include "support/Environment.h"

#include <QCoreApplication>
#include <QEvent>
#include <QImage>
#include <QKeyEvent>
#include <QSignalSpy>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace korvanti {
namespace {

using namespace korvanti::testing;

/// An item in a menu bar that the test holds in its hand.
class FakeItem : public MenuBarItem {
public:
    struct State {
        Clicked clicked;
        std::string icon;
        std::string text;
        bool isThere = true;
        std::optional<Place> place = Place{.x = 600, .y = 0, .width = 60, .height = 24};
    };

    FakeItem(State& state, Clicked clicked) : state_(state) { state_.clicked = std::move(clicked); }
    void show(const std::string& icon, const std::string& text) override {
        state_.icon = icon;
        state_.text = text;
    }
    [[nodiscard]] bool isThere() const override { return state_.isThere; }
    [[nodiscard]] std::optional<Place> place() const override { return state_.place; }

private:
    State& state_;
};

class KorvantiAppTests : public UiTests {
protected:
    KorvantiApp& app() {
        if (!app_) {
            app_ = std::make_unique<KorvantiApp>(
                std::make_unique<ScriptedDesktop>(desktop), [this](MenuBarItem::Clicked clicked) {
                    return std::make_unique<FakeItem>(item_, std::move(clicked));
                });
            EXPECT_TRUE(app_->open());
            settle();
        }
        return *app_;
    }
    void openPanel() {
        app();
        item_.clicked();
        settle();
        adopt(*app().panel());
    }
    /// As the system does when its user wants to shut down, or chooses "Quit".
    static void askToQuit() {
        QEvent wish(QEvent::Quit);
        QCoreApplication::sendEvent(QCoreApplication::instance(), &wish);
    }
    void holdScans() const {
        mac.answerWithScript("tmutil listlocalsnapshots /",
                             "while [ ! -e /box/answers/go ]; do sleep 0.02; done");
    }
    void letScanEnd() {
        mac.answers.file("go");
        EXPECT_TRUE(waitFor([&] { return !app().model().isScanning(); }));
    }

    const ScopedVariable language{"LC_ALL", "id_ID.UTF-8"};
    FakeItem::State item_;
    std::unique_ptr<KorvantiApp> app_;
};

TEST_F(KorvantiAppTests, theWindowIsOpenAndThePanelIsNot) {
    saveReport({cache("one")});
    EXPECT_TRUE(app().window()->isVisible());
    EXPECT_FALSE(app().panel()->isVisible());
    EXPECT_EQ(app().window()->title(), "Korvanti");
}

TEST_F(KorvantiAppTests, theDatesOfThePanelKeepUpWithTheClockWhileItIsOpen) {
    saveReport({cache("one")});
    const auto* clock = app().panel()->property("frame").value<FrameModel*>()->clock();
    EXPECT_FALSE(clock->isShown());
    openPanel();
    EXPECT_TRUE(clock->isShown());
    app().panel()->hide();
    EXPECT_FALSE(clock->isShown());
}

TEST_F(KorvantiAppTests, theItemShowsWhatIsFreeAndFollowsIt) {
    saveReport({cache("one")});
    std::string roomy;
    {
        const DiskSpace space(62'700'000'000, 245'110'000'000);
        app();
        EXPECT_EQ(item_.text, "62,7 GB");
        roomy = item_.icon;
    }
    const DiskSpace low(14'200'000'000, 245'110'000'000);
    app().model().refreshDisk();
    EXPECT_EQ(item_.text, "14,2 GB");
    EXPECT_NE(item_.icon, roomy);
    const auto picture = QImage::fromData(QByteArray::fromStdString(item_.icon), "PNG");
    EXPECT_EQ(picture.size(), QSize(36, 36));
}

TEST_F(KorvantiAppTests, closingTheWindowEndsNothingWhileTheItemIsThere) {
    saveReport({cache("one")});
    QSignalSpy finished(&app(), &KorvantiApp::finished);
    app().window()->close();
    settle();
    EXPECT_FALSE(app().window()->isVisible());
    EXPECT_EQ(finished.count(), 0);
    openPanel();
    click("panelOpen");
    settle();
    EXPECT_TRUE(app().window()->isVisible());
    EXPECT_FALSE(app().panel()->isVisible());
    EXPECT_EQ(app().model().pane(), Pane::overview);
}

TEST_F(KorvantiAppTests, theDocksIconOpensTheWindowAgain) {
    saveReport({cache("one")});
    const auto activate = [] {
        QApplicationStateChangeEvent event(Qt::ApplicationActive);
        QCoreApplication::sendEvent(QCoreApplication::instance(), &event);
    };
    app().window()->close();
    settle();
    openPanel();
    activate();
    EXPECT_FALSE(app().window()->isVisible()) << "the panel is what was asked for";
    press(Qt::Key_Escape);
    settle();
    ASSERT_FALSE(app().panel()->isVisible());
    activate();
    EXPECT_TRUE(app().window()->isVisible());
}

TEST_F(KorvantiAppTests, theSettingsHaveAWindowOfTheirOwn) {
    saveReport({cache("one")});
    adopt(*app().window());
    EXPECT_EQ(app().settingsWindow(), nullptr);
    press(Qt::Key_Comma, Qt::ControlModifier);
    settle();
    ASSERT_NE(app().settingsWindow(), nullptr);
    EXPECT_TRUE(app().settingsWindow()->isVisible());
    EXPECT_EQ(app().settingsWindow()->title(), "Pengaturan");
    EXPECT_EQ(app().settingsWindow()->size(), QSize(520, 460));
    const auto away = app().settingsWindow()->geometry().center() - app().window()->geometry().center();
    EXPECT_LE(away.manhattanLength(), 2) << "over the middle of the window";
    adopt(*app().settingsWindow());
    EXPECT_TRUE(find("addFolderButton"));
    press(Qt::Key_Escape);
    settle();
    EXPECT_FALSE(app().settingsWindow()->isVisible());
    EXPECT_TRUE(app().window()->isVisible());
    adopt(*app().window());
    click("settingsButton");
    settle();
    EXPECT_TRUE(app().settingsWindow()->isVisible()) << "the same again";
}

TEST_F(KorvantiAppTests, withoutAnItemClosingTheWindowQuits) {
    saveReport({cache("one")});
    item_.isThere = false;
    QSignalSpy finished(&app(), &KorvantiApp::finished);
    app().window()->close();
    EXPECT_TRUE(waitFor([&] { return finished.count() == 1; }));
}

TEST_F(KorvantiAppTests, withoutAnItemClosingDuringAScanAsksFirst) {
    holdScans();
    item_.isThere = false;
    QSignalSpy finished(&app(), &KorvantiApp::finished);
    ASSERT_TRUE(app().model().isScanning());
    app().window()->close();
    settle(300);
    EXPECT_TRUE(app().window()->isVisible());
    EXPECT_EQ(finished.count(), 0);
    adopt(*app().window());
    readSheet();
    click("quitButton");
    EXPECT_TRUE(waitFor([&] { return finished.count() == 1; }));
    letScanEnd();
}

TEST_F(KorvantiAppTests, theSystemsWishToQuitIsAskedAboutToo) {
    holdScans();
    QSignalSpy finished(&app(), &KorvantiApp::finished);
    askToQuit();
    settle(300);
    EXPECT_EQ(finished.count(), 0);
    adopt(*app().window());
    EXPECT_TRUE(find("quitButton"));
    readSheet();
    click("stayButton");
    settle();
    EXPECT_FALSE(app().frame().asksToQuit());
    letScanEnd();
    askToQuit();
    EXPECT_TRUE(waitFor([&] { return finished.count() == 1; }));
}

TEST_F(KorvantiAppTests, aKeyThatIsLetGoAndPressedWithinOneMomentIsHeldDown) {
    struct Watch : QObject {
        std::vector<bool> repeats;
        bool eventFilter(QObject* /*watched*/, QEvent* event) override {
            if (event->type() == QEvent::KeyPress)
                repeats.push_back(static_cast<QKeyEvent*>(event)->isAutoRepeat());
            return false;
        }
    } watch;
    auto* const window = app().window();
    window->installEventFilter(&watch);
    const auto send = [&](QEvent::Type type, Qt::Key key, quint64 time) {
        QKeyEvent event(type, key, Qt::NoModifier);
        event.setTimestamp(time);
        QCoreApplication::sendEvent(window, &event);
    };
    send(QEvent::KeyPress, Qt::Key_A, 10);
    send(QEvent::KeyRelease, Qt::Key_A, 700);
    send(QEvent::KeyPress, Qt::Key_A, 700);
    send(QEvent::KeyRelease, Qt::Key_A, 740);
    send(QEvent::KeyPress, Qt::Key_B, 740);
    send(QEvent::KeyRelease, Qt::Key_B, 800);
    send(QEvent::KeyPress, Qt::Key_B, 801);
    EXPECT_EQ(watch.repeats, (std::vector{false, true, false, false}));
    window->removeEventFilter(&watch);
}

TEST_F(KorvantiAppTests, aClickOnTheItemOpensThePanelBelowIt) {
    saveReport({cache("one")});
    openPanel();
    ASSERT_TRUE(app().panel()->isVisible());
    EXPECT_EQ(app().panel()->position(), panelPosition(QRect(600, 0, 60, 24), app().panel()->size(),
                                                       app().panel()->screen()->availableGeometry()));
    EXPECT_EQ(item("panel").width(), 340);
    settle(300);
    item_.clicked();
    EXPECT_FALSE(app().panel()->isVisible());
    settle(20);
    item_.clicked();
    EXPECT_FALSE(app().panel()->isVisible()) << "the same click, which took the focus away";
    settle(250);
    item_.clicked();
    EXPECT_TRUE(app().panel()->isVisible());
}

TEST_F(KorvantiAppTests, escapeClosesThePanel) {
    saveReport({cache("one")});
    openPanel();
    press(Qt::Key_Escape);
    EXPECT_FALSE(app().panel()->isVisible());
}

TEST_F(KorvantiAppTests, thePanelTellsWhatTheMacNeeds) {
    const DiskSpace low(14'200'000'000, 245'110'000'000);
    saveReport({cache("one")});
    openPanel();
    EXPECT_EQ(text("panelFree"), "14,2 GB kosong");
    EXPECT_EQ(text("panelTotal"), "dari 245,11 GB");
    EXPECT_EQ(text("panelWarning"), "Ruang di bawah 20 GB. Build Xcode/Gradle bisa gagal.");
    EXPECT_EQ(text("panelRecommended"), "31,46 GB");
    EXPECT_TRUE(text("panelScanned").startsWith("Pindaian "));
    EXPECT_TRUE(texts().contains("Rekomendasi siap dibersihkan"));
    grab("panel-light.png");
    setDark(true);
    settle(200);
    grab("panel-dark.png");
    setFontScale(2);
    settle(200);
    grab("panel-large.png");
    EXPECT_LE(place("panelQuit").right(), place("panel").right() - 15);
    EXPECT_GE(place("panelOpen").width(), item("panelOpen").implicitWidth() - 1);
}

TEST_F(KorvantiAppTests, withoutAReportThePanelHasNothingToClean) {
    holdScans();
    openPanel();
    EXPECT_FALSE(find("panelRecommended"));
    EXPECT_FALSE(item("panelClean").isEnabled());
    EXPECT_FALSE(item("panelScan").isEnabled());
    EXPECT_EQ(text("panelScan"), "Memindai…");
    click("panelClean");
    EXPECT_FALSE(app().model().pendingCleanup().has_value());
    letScanEnd();
    settle();
    EXPECT_TRUE(item("panelScan").isEnabled());
    EXPECT_EQ(text("panelScan"), "Pindai");
}

TEST_F(KorvantiAppTests, withSpaceLeftThereIsNoWarning) {
    const DiskSpace space(62'700'000'000, 245'110'000'000);
    saveReport({cache("one")});
    openPanel();
    EXPECT_FALSE(find("panelWarning"));
}

TEST_F(KorvantiAppTests, cleaningFromThePanelOpensTheConfirmation) {
    saveReport({cache("one"), cache("two", false)});
    app().window()->close();
    settle();
    openPanel();
    click("panelClean");
    settle(400);
    EXPECT_FALSE(app().panel()->isVisible());
    EXPECT_TRUE(app().window()->isVisible());
    EXPECT_EQ(app().model().pane(), Pane::cleanup);
    ASSERT_TRUE(app().model().pendingCleanup().has_value());
    EXPECT_EQ(app().model().pendingCleanup()->size(), 1);
    EXPECT_TRUE(std::filesystem::exists(mac.home.path("Library/Caches/one/file"))) << "it only asks";
}

TEST_F(KorvantiAppTests, thePanelScansAndQuits) {
    saveReport({cache("one")});
    holdScans();
    openPanel();
    click("panelScan");
    EXPECT_TRUE(app().model().isScanning());
    EXPECT_TRUE(app().panel()->isVisible()) << "it shows that it scans";
    letScanEnd();
    QSignalSpy finished(&app(), &KorvantiApp::finished);
    click("panelQuit");
    EXPECT_TRUE(waitFor([&] { return finished.count() == 1; }));
}

struct PositionRow {
    const char* what;
    std::optional<QRect> item;
    QPoint expected;
};

const QRect screen(0, 25, 1000, 775);
const QSize panelSize(384, 344); // 340 by 300, and 22 on each side
const PositionRow positions[] = {
    {"below the item", QRect(480, 0, 40, 25), {308, 25 + 6 - 22}},
    {"within the left edge", QRect(0, 0, 40, 25), {-22, 9}},
    {"within the right edge", QRect(980, 0, 40, 25), {1000 + 22 - 384, 9}},
    {"above an item at the lower edge", QRect(480, 780, 40, 20), {308, 780 - 6 - 344 + 22}},
    {"in the corner without an item", std::nullopt, {1000 + 22 - 384 - 6, 25 + 6 - 22}},
};

TEST_F(KorvantiAppTests, thePanelLiesAtItsItemAndWithinTheScreen) {
    for (const auto& row : positions)
        EXPECT_EQ(panelPosition(row.item, panelSize, screen), row.expected) << row.what;
}

TEST_F(KorvantiAppTests, aPanelLargerThanTheScreenBeginsWithinIt) {
    EXPECT_EQ(panelPosition(QRect(480, 0, 40, 25), {3000, 3000}, screen), screen.topLeft() - QPoint(22, 22));
}

} // namespace
} // namespace korvanti
