#include "UiSupport.h"
#include "support/Mount.h"

#include <QTest>
#include <filesystem>
#include <fmt/format.h>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <sys/sysmacros.h>

/// A drive that things can be moved to: a real mount, in the box as root.
namespace korvanti {
namespace {

using namespace korvanti::testing;

class CleanupMountTests : public UiTests {
protected:
    CleanupMountTests() { std::filesystem::remove("/box/ditto"); }

    /// Plugs a drive in, which becomes the work volume.
    void plugWorkVolume() {
        const auto path = volumes.folder("Kerja");
        drive = std::make_unique<Mount>(path, 64 * 1024 * 1024);
        struct stat facts {};
        ASSERT_EQ(::stat(path.c_str(), &facts), 0);
        database.file(fmt::format("b{}:{}", major(facts.st_dev), minor(facts.st_dev)),
                      {.text = "E:ID_FS_LABEL_ENC=Kerja\nE:ID_FS_UUID=aa-1\n"});
        mac.answer(
            "diskutil info -plist " + path,
            "<plist version=\"1.0\"><dict><key>FilesystemType</key><string>apfs</string></dict></plist>");
        model().refreshVolumes();
        ASSERT_TRUE(waitFor([&] { return model().workVolume().has_value(); }));
    }
    /// The window with one item that can be moved, and its menu open.
    void openTheMenu() {
        mac.home.file("Library/Developer/Xcode/Archives/One/file", {.text = "12345"});
        CleanupItem archives;
        archives.title = "Arsip";
        archives.path = archivesPath;
        archives.bytes = 5;
        archives.category = ItemCategory::xcode;
        archives.safety = Safety::review;
        archives.action = CleanupAction::trash();
        archives.offloadable = true;
        saveReport({archives});
        plugWorkVolume();
        model().setFilter(ItemFilter::all);
        model().setPane(Pane::cleanup);
        window();
        settle();
        QTest::mouseClick(&window(), Qt::RightButton, Qt::NoModifier,
                          place("row:" + QString(archivesPath)).center().toPoint());
        settle(150);
    }

    static constexpr auto archivesPath = "/Users/tester/Library/Developer/Xcode/Archives";
    const BoxFolder volumes{"/Volumes"};
    const BoxFolder database{"/run/udev/data"};
    std::unique_ptr<Mount> drive;
};

TEST_F(CleanupMountTests, anItemIsMovedToTheWorkVolumeByItsMenu) {
    openTheMenu();
    EXPECT_EQ(text("offloadEntry"), "Pindahkan ke Kerja");
    EXPECT_TRUE(item("offloadEntry").isEnabled());
    click("offloadEntry");
    EXPECT_TRUE(model().busyMessage().has_value());
    EXPECT_FALSE(cleanup().canOffload()) << "while one move is under way";
    ASSERT_TRUE(waitFor([&] { return !model().busyMessage().has_value(); }));
    EXPECT_TRUE(
        std::filesystem::exists("/Volumes/Kerja/Korvanti Offload/Library/Developer/Xcode/Archives/One/file"));
    EXPECT_TRUE(std::filesystem::is_symlink(archivesPath));
    settle();
    EXPECT_EQ(text("emptyTitle"), "Tidak ada item");
}

TEST_F(CleanupMountTests, theMenuForgetsADriveThatIsPulledOut) {
    openTheMenu();
    drive.reset();
    model().refreshVolumes();
    ASSERT_TRUE(waitFor([&] { return !model().workVolume().has_value(); }));
    settle();
    EXPECT_EQ(text("offloadEntry"), "Pindahkan ke SSD (pilih SSD kerja dulu)");
    EXPECT_FALSE(item("offloadEntry").isEnabled());
}

} // namespace
} // namespace korvanti
