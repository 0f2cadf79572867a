#include "providers/SystemProvider.h"

#include "support/BoxFolder.h"
#include "support/Items.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace korvanti {
namespace {

using testing::BoxFolder;
using testing::BoxMac;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::paths;
using testing::textOf;

const std::string infoCall = "diskutil info -plist /";
const std::string layoutCall = "diskutil apfs list -plist";
const std::string snapshotCall = "tmutil listlocalsnapshots /";

std::string sample(const std::string& name) {
    return textOf(KORVANTI_TEST_DATA "/" + name);
}

class SystemProviderBoxTests : public ::testing::Test {
protected:
    [[nodiscard]] std::vector<CleanupItem> items() const {
        ScanContext context;
        context.home = mac.home.path();
        return testing::itemsOfOneScan(SystemProvider(), context);
    }
    void answerWithVolumes() const {
        mac.answer(infoCall, sample("diskutil-info-root.plist"));
        mac.answer(layoutCall, sample("diskutil-apfs-list.plist"));
    }

    BoxMac mac;
    BoxFolder assets{"/System/Library/AssetsV2"};
};

TEST_F(SystemProviderBoxTests, assetsComeFirstThenVolumesThenSnapshots) {
    assets.file("com_apple_MobileAsset_MetalToolchain/data", {.allocatedBytes = 301'000'000});
    assets.file("com_apple_MobileAsset_Small/data", {.allocatedBytes = 4096});
    answerWithVolumes();
    mac.answer(snapshotCall, sample("tmutil-snapshots.txt"));

    const auto found = items();

    EXPECT_THAT(paths(found),
                ElementsAre("/System/Library/AssetsV2/com_apple_MobileAsset_MetalToolchain",
                            "apfs:Macintosh HD:System", "apfs:Preboot:Preboot", "apfs:Recovery:Recovery",
                            "apfs:Update:Update", "apfs:VM:VM", "apfs:Proyek:", "tmutil:localsnapshots"));
    for (const auto& item : found) {
        EXPECT_EQ(item.category, ItemCategory::system) << item.path;
        EXPECT_FALSE(item.isSelectable()) << item.path;
    }
}

TEST_F(SystemProviderBoxTests, doesNotAskForTheDrivesHealth) {
    answerWithVolumes();

    (void)items();

    EXPECT_THAT(BoxMac::calls(), ElementsAre(infoCall, layoutCall, snapshotCall));
}

TEST_F(SystemProviderBoxTests, withoutAnswersThereIsNothingToExplain) {
    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(SystemProviderBoxTests, snapshotsCountWhateverTheToolsExitStatus) {
    mac.answer(snapshotCall, sample("tmutil-snapshots-group.txt"), 1);
    EXPECT_THAT(paths(items()), ElementsAre("tmutil:localsnapshots"));
}

TEST_F(SystemProviderBoxTests, whatTheToolSaysOnStandardErrorIsNoSnapshot) {
    mac.answerWithScript(snapshotCall, "echo com.apple.TimeMachine >&2");
    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(SystemProviderBoxTests, anUnreadableFolderOfAssetsHidesNothingElse) {
    assets.setMode("", 0);
    mac.answer(snapshotCall, sample("tmutil-snapshots-group.txt"));
    EXPECT_THAT(paths(items()), ElementsAre("tmutil:localsnapshots"));
    assets.setMode("", 0755);
}

} // namespace
} // namespace korvanti
