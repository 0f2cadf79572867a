#include "SsdSupport.h"
#include "fs/PathTools.h"

#include <gmock/gmock.h>

/// Whole ways through the pane, from the first click to what lies on the disk.
namespace korvanti {
namespace {

using namespace korvanti::testing;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class SSDMountTests : public SsdFixture {
protected:
    /// Moved by the menu of its row, and the pane about it.
    void moveArchives() {
        openMenuOfArchives();
        click("offloadEntry");
        ASSERT_TRUE(isIdle());
        ASSERT_TRUE(waitFor([&] { return model().offloads().size() == 1; }));
        model().setPane(Pane::ssd);
        settle();
    }
    void openMenu(const QString& record) {
        clickIn(record, "movedActions");
        settle(150);
    }

    static constexpr auto movedPath =
        "/Volumes/Kerja/Korvanti Offload/Library/Developer/Xcode/Archives/One/file";
};

TEST_F(SSDMountTests, aFolderIsMovedAndComesBack) {
    moveArchives();
    EXPECT_EQ(textOf(movedPath), "12345");
    EXPECT_TRUE(PathTools::isSymlink(archivesPath));
    EXPECT_EQ(textIn("moved0", "movedTitle"), "Arsip");
    EXPECT_EQ(textIn("moved0", "movedPath"), "~/Library/Developer/Xcode/Archives");
    EXPECT_EQ(textIn("moved0", "movedStatus"), "Tersedia di SSD");
    EXPECT_EQ(find("nothingMoved"), nullptr);
    openMenu("moved0");
    EXPECT_EQ(text("restoreEntry"), "Kembalikan ke Mac");
    click("restoreEntry");
    EXPECT_EQ(model().busyMessage(), "Mengembalikan Arsip ke Mac…");
    ASSERT_TRUE(isIdle());
    ASSERT_TRUE(waitFor([&] { return model().offloads().empty(); }));
    settle();
    EXPECT_FALSE(PathTools::isSymlink(archivesPath));
    EXPECT_EQ(textOf(std::string(archivesPath) + "/One/file"), "12345");
    EXPECT_FALSE(PathTools::exists(movedPath));
    EXPECT_NE(find("nothingMoved"), nullptr);
    EXPECT_EQ(find("moved0"), nullptr);
}

TEST_F(SSDMountTests, aDriveThatIsPulledOutIsSeenAtOnceAndItsRecordForgotten) {
    moveArchives();
    openMenu("moved0");
    EXPECT_TRUE(item("restoreEntry").isEnabled());
    unplug("Kerja");
    desktop.mountsChanged();
    ASSERT_TRUE(waitFor([&] { return model().volumes().empty(); }));
    settle();
    EXPECT_EQ(find("volume0"), nullptr);
    EXPECT_NE(find("noVolumes"), nullptr);
    EXPECT_EQ(textIn("moved0", "movedStatus"), "SSD tidak terpasang");
    EXPECT_EQ(text("restoreEntry"), "SSD tidak terpasang");
    EXPECT_FALSE(item("restoreEntry").isEnabled());
    click("restoreEntry");
    EXPECT_FALSE(model().busyMessage().has_value());
    EXPECT_FALSE(model().errorMessage().has_value());
    click("forgetEntry");
    settle(150);
    EXPECT_EQ(find("moved0"), nullptr);
    EXPECT_NE(find("nothingMoved"), nullptr);
    EXPECT_THAT(OffloadRecords::read(AppPaths::offloads()), IsEmpty());
    EXPECT_TRUE(PathTools::isSymlink(archivesPath)) << "no file is touched";
}

TEST_F(SSDMountTests, aRecordIsForgottenAndItsFolderStays) {
    moveArchives();
    openMenu("moved0");
    click("forgetEntry");
    settle(150);
    EXPECT_EQ(find("moved0"), nullptr);
    EXPECT_EQ(textOf(movedPath), "12345");
    EXPECT_TRUE(PathTools::isSymlink(archivesPath));
}

TEST_F(SSDMountTests, cachesArePointedAtTheDriveAndBack) {
    plug("Kerja", {.uuid = "aa-1"});
    ASSERT_TRUE(sees(1));
    open();
    EXPECT_EQ(textIn("cacheCard", "relocateButton"), "Arahkan ke Kerja");
    EXPECT_FALSE(isEnabledIn("cacheCard", "relocateButton"));
    EXPECT_FALSE(isEnabledIn("cacheCard", "revertButton"));
    clickIn("cache1", "cacheCheck");
    clickIn("cache2", "cacheCheck");
    EXPECT_TRUE(itemIn("cache1", "cacheCheck").property("checked").toBool());
    EXPECT_EQ(findIn("cache1", "cacheTarget"), nullptr);
    clickIn("cacheCard", "relocateButton");
    EXPECT_EQ(model().noticeMessage(),
              "Cache dev diarahkan ke Kerja. Buka terminal baru agar Gradle/npm memakainya.");
    const auto profile = textOf(mac.home.path(".zshenv"));
    EXPECT_THAT(profile, HasSubstr("GRADLE_USER_HOME"));
    EXPECT_THAT(profile, HasSubstr("/Volumes/Kerja/Korvanti Dev/gradle.noindex"));
    EXPECT_THAT(profile, HasSubstr("npm_config_cache"));
    ASSERT_TRUE(waitFor([&] { return model().relocationTargets().size() == 2; }));
    settle();
    EXPECT_EQ(textIn("cache1", "cacheTarget"), "Aktif: /Volumes/Kerja/Korvanti Dev/gradle.noindex");
    EXPECT_EQ(findIn("cache0", "cacheTarget"), nullptr);
    clickIn("cache1", "cacheCheck");
    clickIn("cacheCard", "revertButton");
    EXPECT_EQ(model().noticeMessage(), "Cache dev kembali ke lokasi bawaan di Mac.");
    ASSERT_TRUE(waitFor([&] { return model().relocationTargets().size() == 1; }));
    EXPECT_THAT(textOf(mac.home.path(".zshenv")), HasSubstr("GRADLE_USER_HOME"));
    EXPECT_THAT(textOf(mac.home.path(".zshenv")), Not(HasSubstr("npm_config_cache")));
}

TEST_F(SSDMountTests, aDriveIsEjectedByItsOwnButton) {
    plug("Dua", {.uuid = "aa-2"});
    plug("Satu", {.uuid = "aa-1"});
    ASSERT_TRUE(sees(2));
    open();
    const auto name = textIn("volume1", "name").toStdString();
    mac.answerWithScript("diskutil eject /Volumes/" + name, "umount /Volumes/" + name);
    clickIn("volume1", "ejectButton");
    EXPECT_FALSE(model().errorMessage().has_value());
    ASSERT_TRUE(waitFor([&] { return model().volumes().size() == 1; }));
    settle();
    EXPECT_EQ(find("volume1"), nullptr);
    EXPECT_NE(textIn("volume0", "name").toStdString(), name);
}

TEST_F(SSDMountTests, aDriveThatIsInUseSaysWhyItStays) {
    plug("Kerja", {.uuid = "aa-1"});
    ASSERT_TRUE(sees(1));
    open();
    mac.answerWithScript("diskutil eject /Volumes/Kerja", "echo 'Volume is busy' >&2; exit 1");
    clickIn("volume0", "ejectButton");
    EXPECT_THAT(model().errorMessage().value_or(""), HasSubstr("Gagal mengeluarkan: Volume is busy"));
    EXPECT_NE(find("volume0"), nullptr);
}

TEST_F(SSDMountTests, theSpeedOfADriveIsToldWhenItsTestIsOver) {
    plug("Dua", {.uuid = "aa-2"});
    plug("Satu", {.uuid = "aa-1"});
    ASSERT_TRUE(sees(2));
    open();
    EXPECT_EQ(findIn("volume1", "speed"), nullptr);
    clickIn("volume1", "testButton");
    ASSERT_TRUE(model().speedTesting().has_value());
    EXPECT_EQ(textIn("volume1", "testButton"), "Menguji…");
    EXPECT_FALSE(isEnabledIn("volume1", "testButton"));
    EXPECT_EQ(textIn("volume0", "testButton"), "Uji kecepatan (1 GB)");
    EXPECT_FALSE(isEnabledIn("volume0", "testButton"));
    ASSERT_TRUE(waitFor([&] { return !model().speedTesting().has_value(); }));
    settle();
    EXPECT_EQ(textIn("volume1", "testButton"), "Uji kecepatan (1 GB)");
    EXPECT_TRUE(isEnabledIn("volume0", "testButton"));
    EXPECT_THAT(textIn("volume1", "speed").toStdString(),
                ::testing::MatchesRegex("Tulis [0-9]+ MB/s · Baca [0-9]+ MB/s"));
    EXPECT_EQ(findIn("volume0", "speed"), nullptr);
    const auto buttons = placeOf(itemIn("volume1", "ejectButton"));
    const auto speed = placeOf(itemIn("volume1", "speed"));
    EXPECT_EQ(speed.center().y(), buttons.center().y());
    EXPECT_EQ(speed.right(), placeOf(itemIn("volume1", "capacity")).right());
    grab("ssd-speed.png");
}

TEST_F(SSDMountTests, aDriveThatIsPulledOutWhileItsButtonIsHeldTakesTheClickAlong) {
    plug("Dua", {.uuid = "aa-2"});
    plug("Satu", {.uuid = "aa-1"});
    ASSERT_TRUE(sees(2));
    open();
    const auto first = textIn("volume0", "name").toStdString();
    const auto at = placeOf(itemIn("volume0", "ejectButton")).center().toPoint();
    QTest::mousePress(&window(), Qt::LeftButton, Qt::NoModifier, at);
    unplug(first);
    ASSERT_TRUE(sees(1));
    settle();
    QTest::mouseRelease(&window(), Qt::LeftButton, Qt::NoModifier, at);
    settle();
    for (const auto& call : BoxMac::calls())
        EXPECT_THAT(call, Not(HasSubstr("diskutil eject")));
}

} // namespace
} // namespace korvanti
