#include "CleanupSupport.h"
#include "UiSupport.h"
#include "base/Json.h"
#include "settings/AppPaths.h"
#include "settings/KorvantiSettings.h"
#include "support/Environment.h"
#include "ui/SettingsModel.h"

#include <QAbstractItemModelTester>
#include <QAccessible>
#include <QSignalSpy>
#include <QTest>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace korvanti {
namespace {

using namespace korvanti::testing;
using ::testing::ElementsAre;
using ::testing::SizeIs;
using Tester = QAbstractItemModelTester;

KorvantiSettings settingsWith(std::vector<std::string> roots, std::int64_t days = 21,
                              std::int64_t gigabytes = 20) {
    KorvantiSettings settings;
    settings.devRoots = std::move(roots);
    settings.inactiveDays = days;
    settings.lowSpaceWarningGB = gigabytes;
    return settings;
}

class SettingsTests : public UiTests {
protected:
    ~SettingsTests() override { show("Item {}"); } // the view goes before its model

    SettingsModel& settings() {
        if (!settings_)
            settings_ = std::make_unique<SettingsModel>(model());
        return *settings_;
    }
    void open(const KorvantiSettings& saved, QSize size = {520, 460}) {
        saved.save();
        show("SettingsView { anchors.fill: parent }", size, {{"model", QVariant::fromValue(&settings())}});
        settle();
    }
    [[nodiscard]] static std::string file() { return textOf(AppPaths::settings()); }
    /// As the file on the disk says now.
    [[nodiscard]] static KorvantiSettings saved() { return KorvantiSettings::load(); }
    std::string folder(const std::string& relative) const { return mac.home.folder(relative); }
    QQuickItem& half(const QString& stepper, const char* name) {
        return *item(stepper).findChild<QQuickItem*>(name);
    }
    void clickHalf(const QString& stepper, const char* name) {
        auto& button = half(stepper, name);
        const auto middle = button.mapToScene({button.width() / 2, button.height() / 2}).toPoint();
        QTest::mouseClick(item(stepper).window(), Qt::LeftButton, Qt::NoModifier, middle);
        QCoreApplication::processEvents();
    }
    void focus(const QString& name) { item(name).forceActiveFocus(Qt::TabFocusReason); }
    QAccessibleInterface& face(const QString& name) {
        return *QAccessible::queryAccessibleInterface(&item(name));
    }

    const ScopedVariable language{"LC_ALL", "id_ID.UTF-8"};

private:
    std::unique_ptr<SettingsModel> settings_;
};

// Folders

TEST_F(SettingsTests, aChosenFolderIsSavedAtOnceWithATildeForTheHome) {
    settingsWith({}).save();
    settings().addFolders({folder("Projects"), folder("Klien/mobile") + "/"});
    EXPECT_THAT(saved().devRoots, ElementsAre("~/Projects", "~/Klien/mobile"));
    EXPECT_THAT(column(*settings().folders(), "path"), ElementsAre("~/Projects", "~/Klien/mobile"));
    EXPECT_EQ(settings().folderMessage(), "");
}

TEST_F(SettingsTests, aFolderThatIsThereAlreadyChangesNothing) {
    settingsWith({"~/Projects"}).save();
    folder("Projects");
    QSignalSpy changed(&model(), &AppModel::settingsChanged);
    const auto before = file();
    settings().addFolders({mac.home.path("Projects"), mac.home.path("Projects/")});
    EXPECT_EQ(changed.count(), 0);
    EXPECT_EQ(file(), before);
    EXPECT_EQ(settings().folderMessage(), "");
    settings().addFolders({folder("two"), folder("two")});
    EXPECT_THAT(saved().devRoots, ElementsAre("~/Projects", "~/two"));
}

TEST_F(SettingsTests, onlyTheHomeItselfIsATilde) {
    settingsWith({}).save();
    const BoxFolder other("/Users/tester2");
    settings().addFolders({"/Users/tester", "/Users/tester2", "/"});
    EXPECT_THAT(saved().devRoots, ElementsAre("~", "/Users/tester2", "/"));
}

TEST_F(SettingsTests, aNameThatIsNoTextIsRefusedAndTheOthersAreKept) {
    settingsWith({}).save();
    const auto odd = folder("odd\xFFname");
    settings().addFolders({odd, folder("fine")});
    EXPECT_THAT(saved().devRoots, ElementsAre("~/fine"));
    EXPECT_EQ(settings().folderMessage().toStdString(),
              "Nama folder ini bukan teks UTF-8, jadi tidak bisa disimpan: /Users/tester/odd\uFFFDname");
    settings().addFolders({folder("more")});
    EXPECT_EQ(settings().folderMessage(), "");
}

TEST_F(SettingsTests, whatADialogMangledIsNotAdded) {
    settingsWith({}).save();
    folder("odd\xFFname");
    settings().addFolders({mac.home.path("odd\uFFFDname"), "", "relative"});
    EXPECT_THAT(saved().devRoots, SizeIs(0));
    EXPECT_EQ(settings().folderMessage().toStdString(),
              "Folder tidak ditemukan: /Users/tester/odd\uFFFDname\nFolder tidak ditemukan: \n"
              "Folder tidak ditemukan: relative");
}

TEST_F(SettingsTests, theBytesOfAnAddressAreThoseOfThePath) {
    settingsWith({}).save();
    folder("a b%25#é");
    settings().addFolderUrls({QUrl::fromLocalFile("/Users/tester/a b%25#é")});
    EXPECT_THAT(saved().devRoots, ElementsAre("~/a b%25#é"));
    folder("odd\xFFname");
    settings().addFolderUrls({QUrl("file:///Users/tester/odd%FFname")});
    EXPECT_TRUE(settings().folderMessage().startsWith("Nama folder ini bukan teks"))
        << "found, as it was given";
    settings().addFolderUrls({QUrl("https://example.org/Users/tester"), QUrl()});
    EXPECT_TRUE(settings().folderMessage().startsWith("Folder tidak ditemukan"));
    EXPECT_THAT(saved().devRoots, SizeIs(1));
}

TEST_F(SettingsTests, aFolderIsRemovedByItsButton) {
    open(settingsWith({"~/one", "/Users/tester/two", "~/three"}));
    EXPECT_TRUE(texts().contains("~/two")) << "the home in short, however it was saved";
    click("remove:~/two");
    EXPECT_THAT(saved().devRoots, ElementsAre("~/one", "~/three"));
    EXPECT_FALSE(find("folder:~/two"));
    focus("remove:~/one");
    press(Qt::Key_Space);
    EXPECT_THAT(saved().devRoots, ElementsAre("~/three"));
    settings().removeFolder(-1);
    settings().removeFolder(1);
    EXPECT_THAT(saved().devRoots, ElementsAre("~/three"));
    click("remove:~/three");
    EXPECT_THAT(saved().devRoots, SizeIs(0));
    EXPECT_TRUE(find("addFolderButton"));
}

TEST_F(SettingsTests, theListOfFoldersIsAnHonestModel) {
    settingsWith({"~/one"}).save();
    const Tester tester(settings().folders(), Tester::FailureReportingMode::Fatal);
    settings().addFolders({folder("two"), folder("three")});
    settings().removeFolder(0);
    EXPECT_EQ(settings().folders()->rowCount(), 2);
}

TEST_F(SettingsTests, twentyFoldersScrollAndTheRestIsReached) {
    std::vector<std::string> roots;
    for (int i = 0; i < 20; ++i)
        roots.push_back("~/" + std::to_string(i) + std::string(i == 3 ? 300 : 0, 'x'));
    open(settingsWith(roots));
    EXPECT_GT(place("logButton").top(), 460);
    focus("logButton");
    settle();
    EXPECT_LE(place("logButton").bottom(), 460);
    EXPECT_GE(place("logButton").top(), 0);
    EXPECT_LE(place("remove:~/0").right(), 520 - 24);
}

TEST_F(SettingsTests, whyAFolderWasNotAddedIsSaid) {
    open(settingsWith({}));
    EXPECT_FALSE(find("groupWarning"));
    settings().addFolders({"/gone"});
    settle();
    EXPECT_EQ(text("groupWarning"), "Folder tidak ditemukan: /gone");
}

TEST_F(SettingsTests, theDialogHandsOverWhatWasChosen) {
    folder("Chosen");
    auto& view = show("SettingsView { anchors.fill: parent }", {520, 460},
                      {{"model", QVariant::fromValue(&settings())}});
    auto* const dialog = view.findChild<QObject*>("folderDialog");
    ASSERT_TRUE(dialog);
    EXPECT_EQ(dialog->property("acceptLabel").toString(), "Tambahkan");
    click("addFolderButton");
    settle(500);
    grab("dialog.png");
    EXPECT_TRUE(dialog->property("visible").toBool());
    EXPECT_EQ(dialog->property("currentFolder").toUrl(), QUrl("file:///Users/tester"));
    dialog->setProperty("selectedFolder",
                        QUrl::fromLocalFile(QString::fromStdString(mac.home.path("Chosen"))));
    QMetaObject::invokeMethod(dialog, "accept");
    settle(200);
    EXPECT_FALSE(dialog->property("visible").toBool());
    EXPECT_THAT(saved().devRoots, ElementsAre("~/Chosen"));
}

// Numbers

TEST_F(SettingsTests, aStepIsOnTheDiskAtOnce) {
    open(settingsWith({"~/one"}, 21, 20));
    EXPECT_TRUE(texts().contains("Proyek dianggap tidak aktif setelah 21 hari"));
    EXPECT_TRUE(texts().contains("Peringatan bila ruang kosong < 20 GB"));
    clickHalf("inactiveStepper", "raise");
    EXPECT_EQ(saved(), settingsWith({"~/one"}, 22, 20));
    clickHalf("lowSpaceStepper", "lower");
    EXPECT_EQ(saved(), settingsWith({"~/one"}, 22, 15));
    EXPECT_TRUE(texts().contains("Proyek dianggap tidak aktif setelah 22 hari"));
    EXPECT_TRUE(texts().contains("Peringatan bila ruang kosong < 15 GB"));
    EXPECT_FALSE(model().isScanning()) << "it counts from the next scan on";
}

TEST_F(SettingsTests, theSteppersStopAtTheirBoundsByMouse) {
    open(settingsWith({}, 179, 90));
    for (int i = 0; i < 5; ++i) {
        clickHalf("inactiveStepper", "raise");
        clickHalf("lowSpaceStepper", "raise");
    }
    EXPECT_EQ(saved(), settingsWith({}, 180, 100));
    EXPECT_FALSE(half("inactiveStepper", "raise").isEnabled());
    EXPECT_TRUE(half("inactiveStepper", "lower").isEnabled());
    model().setSettings(settingsWith({}, 4, 10));
    for (int i = 0; i < 5; ++i) {
        clickHalf("inactiveStepper", "lower");
        clickHalf("lowSpaceStepper", "lower");
    }
    EXPECT_EQ(saved(), settingsWith({}, 3, 5));
    EXPECT_FALSE(half("lowSpaceStepper", "lower").isEnabled());
    EXPECT_TRUE(half("lowSpaceStepper", "raise").isEnabled());
}

TEST_F(SettingsTests, theSteppersStopAtTheirBoundsByKey) {
    open(settingsWith({}, 4, 95));
    focus("inactiveStepper");
    for (int i = 0; i < 3; ++i)
        press(Qt::Key_Down);
    EXPECT_EQ(saved().inactiveDays, 3);
    press(Qt::Key_Up);
    EXPECT_EQ(saved().inactiveDays, 4);
    focus("lowSpaceStepper");
    for (int i = 0; i < 3; ++i)
        press(Qt::Key_Up);
    EXPECT_EQ(saved().lowSpaceWarningGB, 100);
    press(Qt::Key_Down);
    EXPECT_EQ(saved().lowSpaceWarningGB, 95);
    press(Qt::Key_Plus);
    EXPECT_EQ(saved().lowSpaceWarningGB, 100);
    press(Qt::Key_Minus);
    EXPECT_EQ(saved().lowSpaceWarningGB, 95);
}

TEST_F(SettingsTests, theSteppersStopAtTheirBoundsForAScreenReader) {
    open(settingsWith({}, 179, 10));
    auto& days = face("inactiveStepper");
    EXPECT_EQ(days.role(), QAccessible::SpinBox);
    EXPECT_EQ(days.text(QAccessible::Name), "Proyek dianggap tidak aktif setelah 179 hari");
    EXPECT_EQ(days.valueInterface()->currentValue().toInt(), 179);
    EXPECT_EQ(days.valueInterface()->minimumValue().toInt(), 3);
    EXPECT_EQ(days.valueInterface()->maximumValue().toInt(), 180);
    for (int i = 0; i < 3; ++i)
        days.actionInterface()->doAction(QAccessibleActionInterface::increaseAction());
    EXPECT_EQ(saved().inactiveDays, 180);
    EXPECT_EQ(days.text(QAccessible::Name), "Proyek dianggap tidak aktif setelah 180 hari");
    auto& space = face("lowSpaceStepper");
    for (int i = 0; i < 3; ++i)
        space.actionInterface()->doAction(QAccessibleActionInterface::decreaseAction());
    EXPECT_EQ(saved().lowSpaceWarningGB, 5);
}

TEST_F(SettingsTests, aSavedNumberOutsideComesBackToTheNearerBound) {
    struct Case {
        std::int64_t saved;
        std::int64_t lowered;
        std::int64_t raised;
    };
    constexpr auto least = std::numeric_limits<std::int64_t>::min();
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    for (const auto& [start, lowered, raised] :
         {Case{least, least, 5}, Case{0, 0, 5}, Case{5, 5, 10}, Case{7, 5, 12}, Case{98, 93, 100},
          Case{100, 95, 100}, Case{101, 100, 101}, Case{most, 100, most}}) {
        model().setSettings(settingsWith({}, 21, start));
        EXPECT_EQ(settings().lowSpace()->canLower(), lowered != start) << start;
        EXPECT_EQ(settings().lowSpace()->canRaise(), raised != start) << start;
        settings().lowSpace()->lower();
        EXPECT_EQ(model().settings().lowSpaceWarningGB, lowered) << start;
        model().setSettings(settingsWith({}, 21, start));
        settings().lowSpace()->raise();
        EXPECT_EQ(model().settings().lowSpaceWarningGB, raised) << start;
    }
}

TEST_F(SettingsTests, aDamagedFileGivesTheDefaultsAndStaysUntilSomethingIsChanged) {
    for (const char* damaged :
         {"", "{", "[1]", R"({"devRoots":"~/x","inactiveDays":9})",
          R"({"devRoots":[],"inactiveDays":"9","lowSpaceWarningGB":5,"relocations":{}})"}) {
        mac.home.file("Library/Application Support/Korvanti/settings.json", {.text = damaged});
        ASSERT_TRUE(AppPaths::settings().ends_with("Korvanti/settings.json"));
        AppModel fresh(std::make_unique<ScriptedDesktop>(desktop));
        SettingsModel shown(fresh);
        EXPECT_EQ(shown.inactiveDays()->text(), "Proyek dianggap tidak aktif setelah 21 hari");
        EXPECT_EQ(shown.folders()->rowCount(), 0);
        EXPECT_EQ(file(), damaged);
        shown.inactiveDays()->raise();
        EXPECT_EQ(saved().inactiveDays, 22) << damaged;
    }
}

TEST_F(SettingsTests, whatIsNotInTheFormIsKept) {
    auto before = settingsWith({"~/one"});
    before.workVolumeUUID = "UUID";
    before.relocations = {{"npm", "/Volumes/Work/npm"}};
    open(before);
    clickHalf("inactiveStepper", "raise");
    before.inactiveDays = 22;
    EXPECT_EQ(saved(), before);
}

// The system

TEST_F(SettingsTests, theToggleShowsWhatTheSystemSays) {
    open(settingsWith({}));
    EXPECT_FALSE(item("loginToggle").property("checked").toBool());
    desktop.isLoginItem = true;
    settings().opened();
    settle();
    EXPECT_TRUE(item("loginToggle").property("checked").toBool());
    click("loginToggle");
    EXPECT_THAT(desktop.loginItems, ElementsAre(false));
    desktop.isLoginItem = false;
    settings().opened();
    focus("loginToggle");
    press(Qt::Key_Space);
    EXPECT_THAT(desktop.loginItems, ElementsAre(false, true));
    EXPECT_EQ(settings().loginMessage(), "");
    EXPECT_FALSE(model().errorMessage().has_value());
}

TEST_F(SettingsTests, aRefusedLoginItemLeavesTheToggleOffAndIsTold) {
    desktop.loginItem = std::unexpected("Tidak <b>diizinkan</b>");
    open(settingsWith({}));
    click("loginToggle");
    settle(150);
    EXPECT_THAT(desktop.loginItems, ElementsAre(true));
    EXPECT_FALSE(item("loginToggle").property("checked").toBool());
    EXPECT_EQ(model().errorMessage(), "Gagal mengubah 'buka saat login': Tidak <b>diizinkan</b>");
    EXPECT_EQ(text("groupWarning"), "Gagal mengubah 'buka saat login': Tidak <b>diizinkan</b>");
    EXPECT_EQ(item("groupWarning").property("textFormat").toInt(), 0) << "plain";
    desktop.loginItem = {};
    click("loginToggle");
    EXPECT_FALSE(find("groupWarning"));
}

TEST_F(SettingsTests, theButtonsOpenWhatTheySay) {
    open(settingsWith({}));
    click("accessButton");
    EXPECT_EQ(desktop.settingsOpened, 1);
    click("logButton");
    EXPECT_THAT(desktop.opened, ElementsAre(AppPaths::support())) << "there is no log yet";
    mac.home.file("Library/Application Support/Korvanti/activity.jsonl");
    click("logButton");
    EXPECT_THAT(desktop.revealed, ElementsAre(AppPaths::support() + "/activity.jsonl"));
}

// The window

TEST_F(SettingsTests, theFormFitsItsWindow) {
    open(settingsWith({"~/Projects", "~/Klien/mobile"}, 14, 20));
    for (const char* words :
         {"Folder proyek", "~/Projects", "~/Klien/mobile", "Tambah folder…",
          "Korvanti mencari repo git & artefak build di folder ini. Folder lain tidak pernah dipindai "
          "sebagai proyek.",
          "Penilaian", "Proyek dianggap tidak aktif setelah 14 hari", "Peringatan bila ruang kosong < 20 GB",
          "Sistem", "Buka Korvanti saat login (ikon menu bar)", "Buka pengaturan Full Disk Access",
          "Tampilkan log aktivitas"})
        EXPECT_TRUE(texts().contains(words)) << words;
    EXPECT_LE(place("logButton").bottom(), 460 - 24) << "without scrolling";
    EXPECT_EQ(place("inactiveStepper").size(), QSizeF(48, 22));
    EXPECT_EQ(place("loginToggle").size(), QSizeF(36, 20));
    EXPECT_EQ(place("inactiveStepper").right(), place("loginToggle").right());
}

TEST_F(SettingsTests, largeTypeCutsNothing) {
    setFontScale(2);
    open(settingsWith({"~/Projects"}));
    for (const char* control :
         {"inactiveStepper", "lowSpaceStepper", "loginToggle", "accessButton", "logButton"})
        EXPECT_LE(place(control).right(), 520 - 24) << control;
    EXPECT_GE(place("logButton").top(), place("accessButton").bottom()) << "under each other";
}

TEST_F(SettingsTests, everythingHasItsNameAndRole) {
    desktop.isLoginItem = true;
    open(settingsWith({"~/one"}));
    EXPECT_EQ(face("remove:~/one").text(QAccessible::Name), "Keluarkan ~/one dari daftar");
    EXPECT_EQ(face("remove:~/one").role(), QAccessible::Button);
    EXPECT_EQ(face("addFolderButton").text(QAccessible::Name), "Tambah folder…");
    EXPECT_EQ(face("loginToggle").text(QAccessible::Name), "Buka Korvanti saat login (ikon menu bar)");
    EXPECT_EQ(face("loginToggle").role(), QAccessible::CheckBox);
    EXPECT_TRUE(face("loginToggle").state().checked);
    EXPECT_EQ(face("accessButton").text(QAccessible::Name), "Buka pengaturan Full Disk Access");
}

TEST_F(SettingsTests, theTabKeyGoesThroughTheForm) {
    open(settingsWith({"~/one"}));
    focus("remove:~/one");
    for (const char* next : {"addFolderButton", "inactiveStepper", "lowSpaceStepper", "loginToggle",
                             "accessButton", "logButton", "remove:~/one"}) {
        press(Qt::Key_Tab);
        EXPECT_TRUE(item(next).hasActiveFocus()) << next;
    }
}

TEST_F(SettingsTests, theSidebarAsksForTheSettings) {
    saveReport({});
    window();
    QSignalSpy requested(&frame(), &FrameModel::settingsRequested);
    click("settingsButton");
    EXPECT_EQ(requested.count(), 1);
    EXPECT_EQ(text("settingsButton", "hint"), "Pengaturan");
    press(Qt::Key_Comma, Qt::ControlModifier);
    EXPECT_EQ(requested.count(), 2);
}

} // namespace
} // namespace korvanti
