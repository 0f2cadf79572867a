#include "cleaning/Cleaner.h"

#include "support/BoxFolder.h"
#include "support/Mount.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace korvanti {
namespace {

using testing::Mount;
using ::testing::SizeIs;
using testing::textOf;

/// Needs the right to mount: runs in the box as root.
class CleanerMountTests : public ::testing::Test {
protected:
    [[nodiscard]] CleanupOutcome outcomeOf(const std::string& path, const CleanupAction& action,
                                           std::optional<std::vector<std::string>> related = {}) const {
        const CleanupItem item{.path = path,
                               .bytes = 4711,
                               .safety = Safety::regenerable,
                               .action = action,
                               .relatedPaths = std::move(related)};
        const auto outcomes = Cleaner(mac.home.path(), ActivityLog(mac.home.path("log")))
                                  .run({item}, [](auto, auto, const auto&) {});
        EXPECT_THAT(outcomes, SizeIs(1));
        return outcomes.empty() ? CleanupOutcome{} : outcomes.front();
    }

    testing::BoxMac mac;
};

TEST_F(CleanerMountTests, aFolderWithAVolumeInsideStaysWhole) {
    const auto folder = mac.home.folder("Library/Caches/x");
    mac.home.file("Library/Caches/x/file");
    const Mount volume(mac.home.folder("Library/Caches/x/volume"));
    mac.home.file("Library/Caches/x/volume/file", {.text = "text"});
    for (const auto& action : {CleanupAction::delete_(), CleanupAction::trash()}) {
        const auto outcome = outcomeOf(folder, action);
        EXPECT_FALSE(outcome.success);
        EXPECT_EQ(outcome.freedBytes, 0);
        EXPECT_EQ(outcome.message, "Berisi volume lain yang ter-mount (~/Library/Caches/x/volume) \u2014 "
                                   "dilewati agar isi perangkat tidak ikut terhapus");
    }
    EXPECT_TRUE(std::filesystem::exists(folder + "/file"));
    EXPECT_EQ(textOf(folder + "/volume/file"), "text");
}

TEST_F(CleanerMountTests, aRelatedFolderWithAVolumeInsideStaysAndIsNamed) {
    const auto folder = mac.home.folder("Library/Caches/terkait");
    const Mount volume(mac.home.folder("Library/Caches/terkait/volume"));
    mac.home.file("Library/Caches/terkait/volume/file", {.text = "text"});
    const auto main = mac.home.file("Library/Caches/x");
    const auto outcome = outcomeOf(main, CleanupAction::delete_(), {{folder}});
    EXPECT_EQ(outcome.message, "Sebagian dilewati: terkait");
    EXPECT_FALSE(outcome.success);
    EXPECT_FALSE(std::filesystem::exists(main));
    EXPECT_EQ(textOf(folder + "/volume/file"), "text");
}

TEST_F(CleanerMountTests, aVolumeInTheTrashStaysAndIsCounted) {
    const auto trash = mac.home.folder(".Trash");
    mac.home.folder(".Trash/repository/.git");
    const Mount inside(mac.home.folder(".Trash/repository/volume"));
    const Mount direct(mac.home.folder(".Trash/volume"));
    mac.home.file(".Trash/repository/volume/file", {.text = "text"});
    mac.home.file(".Trash/volume/file", {.text = "text"});
    mac.home.file(".Trash/file");
    const auto outcome = outcomeOf(trash, CleanupAction::emptyTrash());
    EXPECT_EQ(outcome.message, "2 item tidak bisa dihapus (butuh Full Disk Access?)");
    EXPECT_FALSE(outcome.success);
    EXPECT_EQ(outcome.freedBytes, 0);
    EXPECT_FALSE(std::filesystem::exists(trash + "/file"));
    EXPECT_TRUE(std::filesystem::exists(trash + "/repository/.git"));
    EXPECT_EQ(textOf(trash + "/repository/volume/file"), "text");
    EXPECT_EQ(textOf(trash + "/volume/file"), "text");
}

TEST_F(CleanerMountTests, aLinkToAVolumeGoesAndTheVolumeStays) {
    const Mount volume(mac.home.folder("Library/Caches/volume"));
    mac.home.file("Library/Caches/volume/file", {.text = "text"});
    const auto link = mac.home.symlink("Projects/link", mac.home.path("Library/Caches/volume"));
    EXPECT_EQ(outcomeOf(link, CleanupAction::delete_()).message, "Dihapus");
    EXPECT_FALSE(std::filesystem::is_symlink(link));
    EXPECT_EQ(textOf(mac.home.path("Library/Caches/volume/file")), "text");
}

} // namespace
} // namespace korvanti
