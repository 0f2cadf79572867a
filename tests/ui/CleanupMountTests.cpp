#include "SsdSupport.h"

#include <filesystem>

/// A drive that things can be moved to: a real mount, in the box as root.
namespace korvanti {
namespace {

using namespace korvanti::testing;

class CleanupMountTests : public SsdFixture {};

TEST_F(CleanupMountTests, anItemIsMovedToTheWorkVolumeByItsMenu) {
    openMenuOfArchives();
    EXPECT_EQ(text("offloadEntry"), "Pindahkan ke Kerja");
    EXPECT_TRUE(item("offloadEntry").isEnabled());
    click("offloadEntry");
    EXPECT_TRUE(model().busyMessage().has_value());
    EXPECT_FALSE(cleanup().canOffload()) << "while one move is under way";
    ASSERT_TRUE(isIdle());
    EXPECT_TRUE(
        std::filesystem::exists("/Volumes/Kerja/Korvanti Offload/Library/Developer/Xcode/Archives/One/file"));
    EXPECT_TRUE(std::filesystem::is_symlink(archivesPath));
    settle();
    EXPECT_EQ(text("emptyTitle"), "Tidak ada item");
}

TEST_F(CleanupMountTests, theMenuForgetsADriveThatIsPulledOut) {
    openMenuOfArchives();
    unplug("Kerja");
    ASSERT_TRUE(sees(0));
    settle();
    EXPECT_EQ(text("offloadEntry"), "Pindahkan ke SSD (pilih SSD kerja dulu)");
    EXPECT_FALSE(item("offloadEntry").isEnabled());
}

} // namespace
} // namespace korvanti
