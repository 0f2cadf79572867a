#include "providers/SystemProvider.h"

#include "fs/PathTools.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace korvanti {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr std::int64_t block = 4096;
constexpr std::int64_t justBelow300MB = 300'000'000 / block * block;
constexpr std::int64_t justAbove300MB = justBelow300MB + block;

/// What the user reads of something that macOS manages.
struct Explained {
    std::string title;
    std::string instructions;
    bool operator==(const Explained&) const = default;
};

void PrintTo(const Explained& explained, std::ostream* stream) {
    *stream << explained.title << " / " << explained.instructions;
}

std::vector<Explained> explained(const std::vector<CleanupItem>& items) {
    std::vector<Explained> texts;
    for (const auto& item : items)
        texts.push_back({item.title, item.action.instructions().value_or("not manual")});
    return texts;
}

class SystemProviderTests : public ::testing::Test {
protected:
    /// A folder of assets that is large enough to be listed. All share one file's blocks.
    void assets(const std::string& name) {
        if (!PathTools::exists(temp.path("blocks")))
            temp.file("blocks", {.allocatedBytes = justAbove300MB});
        temp.hardLink("AssetsV2/" + name + "/data", temp.path("blocks"));
    }

    [[nodiscard]] std::vector<CleanupItem> assetItems() const {
        return SystemProvider::assets(temp.path("AssetsV2"), ScanContext{});
    }

    testing::TempFolder temp;
};

TEST_F(SystemProviderTests, hasItsNameAndPriority) {
    EXPECT_EQ(SystemProvider().name(), "Sistem");
    EXPECT_EQ(SystemProvider().priority(), 10);
}

// Assets

TEST_F(SystemProviderTests, explainsEveryKnownGroupOfAssets) {
    const struct {
        const char* folder;
        Explained explanation;
    } rows[] = {
        {"com_apple_MobileAsset_iOSSimulatorRuntime",
         {"Runtime Simulator iOS", "Kelola di Xcode › Settings › Components."}},
        {"com_apple_MobileAsset_AppleDeveloperDocumentation",
         {"Dokumentasi Xcode",
          "Xcode › Settings › Components › hapus Documentation bila jarang dibaca offline."}},
        {"com_apple_MobileAsset_MetalToolchain",
         {"Metal Toolchain",
          "Dibutuhkan untuk compile shader Metal. Kelola di Xcode › Settings › Components."}},
        {"com_apple_MobileAsset_UAF_LinguisticData",
         {"Model bahasa Apple Intelligence",
          "Dikelola macOS (System Settings › Apple Intelligence & Siri)."}},
        {"com_apple_MobileAsset_UAF_Siri_Understanding",
         {"Model Siri", "Dikelola macOS (System Settings › Apple Intelligence & Siri)."}},
        {"com_apple_MobileAsset_UAF_Photos_SpatialPhotosRelive", {"Model Photos", "Dikelola macOS."}},
    };
    for (const auto& row : rows)
        assets(row.folder);

    const auto items = assetItems();

    EXPECT_THAT(items, SizeIs(std::size(rows)));
    for (const auto& row : rows) {
        const auto item =
            std::ranges::find(items, temp.path("AssetsV2/" + std::string(row.folder)), &CleanupItem::path);
        ASSERT_NE(item, items.end()) << row.folder;
        EXPECT_THAT(explained({*item}), ElementsAre(row.explanation));
    }
}

TEST_F(SystemProviderTests, anUnknownGroupOfAssetsIsLabelledByItsFolder) {
    assets("com_apple_MobileAsset_UAF_FM_Visual");

    EXPECT_THAT(
        explained(assetItems()),
        ElementsAre(Explained{"Aset macOS: UAF FM Visual", "Dikelola macOS; tidak bisa dihapus manual."}));
}

TEST_F(SystemProviderTests, theLabelOfAnAssetLosesThePrefixWhereverItStands) {
    assets("a_com_apple_MobileAsset_b__com_apple_MobileAsset_");

    EXPECT_EQ(assetItems().at(0).title, "Aset macOS: a b  ");
}

TEST_F(SystemProviderTests, aFolderOfAnotherNameIsItsOwnLabel) {
    assets("com_apple_mobileasset_Font-7.x");

    EXPECT_EQ(assetItems().at(0).title, "Aset macOS: com apple mobileasset Font-7.x");
}

TEST_F(SystemProviderTests, onlyTheWholeNameMakesAGroupOfAssetsKnown) {
    assets("com_apple_MobileAsset_MetalToolchain2");

    EXPECT_EQ(assetItems().at(0).title, "Aset macOS: MetalToolchain2");
}

TEST_F(SystemProviderTests, assetsOf300MBAreListedAndSmallerOnesAreNot) {
    temp.file("AssetsV2/cukup/data", {.allocatedBytes = justAbove300MB});
    temp.file("AssetsV2/kurang/data", {.allocatedBytes = justBelow300MB});
    temp.file("AssetsV2/com_apple_MobileAsset_MetalToolchain/data", {.allocatedBytes = justBelow300MB});

    EXPECT_THAT(explained(assetItems()),
                ElementsAre(Explained{"Aset macOS: cukup", "Dikelola macOS; tidak bisa dihapus manual."}));
}

TEST_F(SystemProviderTests, anAssetHasTheseFields) {
    assets("com_apple_MobileAsset_MetalToolchain");

    EXPECT_THAT(assetItems(),
                ElementsAre(CleanupItem{
                    .title = "Metal Toolchain",
                    .detail = "Aset unduhan macOS/Xcode di /System/Library/AssetsV2.",
                    .path = temp.path("AssetsV2/com_apple_MobileAsset_MetalToolchain"),
                    .bytes = justAbove300MB,
                    .category = ItemCategory::system,
                    .safety = Safety::managed,
                    .action = CleanupAction::manual(
                        "Dibutuhkan untuk compile shader Metal. Kelola di Xcode › Settings › Components."),
                    .recommended = false,
                    .lastActivity = std::nullopt,
                    .offloadable = false,
                    .warnings = {},
                    .relatedPaths = std::nullopt}));
}

TEST_F(SystemProviderTests, assetsKeepTheOrderOfTheListing) {
    for (const auto* name : {"delta", "alpha", "echo", "bravo", "charlie"})
        assets(name);

    std::vector<std::string> paths;
    for (const auto& item : assetItems())
        paths.push_back(item.path);
    ASSERT_THAT(paths, SizeIs(5));
    EXPECT_EQ(paths, PathTools::children(temp.path("AssetsV2")));
}

TEST_F(SystemProviderTests, aMissingFolderOfAssetsHasNone) {
    EXPECT_THAT(assetItems(), IsEmpty());
}

// Volumes

TEST_F(SystemProviderTests, explainsEveryRoleOfAVolume) {
    EXPECT_THAT(
        explained(SystemProvider::volumes({{"A", "VM", 1},
                                           {"B", "Preboot", 1},
                                           {"C", "Recovery", 1},
                                           {"D", "System", 1},
                                           {"E", "Update", 1},
                                           {"F", "xART", 1},
                                           {"G", "", 1},
                                           {"?", "vm", 1}})),
        ElementsAre(Explained{"Swap memori (VM)",
                              "macOS memakai SSD sebagai RAM tambahan. Berkurang setelah restart; tutup app "
                              "berat (browser, emulator) saat build."},
                    Explained{"Preboot (komponen boot & cryptex)",
                              "Dikelola macOS. Membesar sementara saat update; mengecil setelah update "
                              "selesai."},
                    Explained{"Recovery", "Partisi pemulihan macOS. Jangan diubah."},
                    Explained{"macOS (System)", "Volume sistem tersegel. Tidak bisa dikurangi."},
                    Explained{"Update macOS", "File update yang sedang disiapkan."},
                    Explained{"Volume F", "Dikelola macOS."}, Explained{"Volume G", "Dikelola macOS."},
                    Explained{"Volume ?", "Dikelola macOS."}));
}

TEST_F(SystemProviderTests, theVolumeOfTheUsersDataIsNotListed) {
    EXPECT_THAT(SystemProvider::volumes({{"Data", "Data", 1'000'000}}), IsEmpty());
    EXPECT_THAT(SystemProvider::volumes({{"Data", "", 1'000'000}}), SizeIs(1));
}

TEST_F(SystemProviderTests, aVolumeOfOneByteIsListedAndAnEmptyOneIsNot) {
    EXPECT_THAT(SystemProvider::volumes({{"VM", "VM", 1}}), SizeIs(1));
    EXPECT_THAT(SystemProvider::volumes({{"VM", "VM", 0}, {"VM", "VM", -1}}), IsEmpty());
}

TEST_F(SystemProviderTests, aVolumeHasTheseFields) {
    EXPECT_THAT(SystemProvider::volumes({{"Proyek", "", 12'288}, {"Kerja: lama", "Update", 4096}}),
                ElementsAre(CleanupItem{.title = "Volume Proyek",
                                        .detail = "Volume APFS terpisah di disk internal.",
                                        .path = "apfs:Proyek:",
                                        .bytes = 12'288,
                                        .category = ItemCategory::system,
                                        .safety = Safety::managed,
                                        .action = CleanupAction::manual("Dikelola macOS."),
                                        .recommended = false,
                                        .lastActivity = std::nullopt,
                                        .offloadable = false,
                                        .warnings = {},
                                        .relatedPaths = std::nullopt},
                            CleanupItem{.title = "Update macOS",
                                        .detail = "Volume APFS terpisah di disk internal.",
                                        .path = "apfs:Kerja: lama:Update",
                                        .bytes = 4096,
                                        .category = ItemCategory::system,
                                        .safety = Safety::managed,
                                        .action = CleanupAction::manual("File update yang sedang disiapkan."),
                                        .recommended = false,
                                        .lastActivity = std::nullopt,
                                        .offloadable = false,
                                        .warnings = {},
                                        .relatedPaths = std::nullopt}));
}

// Snapshots

std::vector<CleanupItem> snapshotsInSample(const std::string& name) {
    return SystemProvider::snapshots(testing::textOf(KORVANTI_TEST_DATA "/" + name));
}

TEST_F(SystemProviderTests, allSnapshotsAreOneItemWithTheirCountAndNoBytes) {
    EXPECT_THAT(
        snapshotsInSample("tmutil-snapshots.txt"),
        ElementsAre(CleanupItem{.title = "Snapshot lokal Time Machine (5)",
                                .detail = "Snapshot menahan ruang file yang sudah dihapus.",
                                .path = "tmutil:localsnapshots",
                                .bytes = 0,
                                .category = ItemCategory::system,
                                .safety = Safety::managed,
                                .action = CleanupAction::manual(
                                    "Jalankan di Terminal: tmutil thinlocalsnapshots / 999999999999 4"),
                                .recommended = false,
                                .lastActivity = std::nullopt,
                                .offloadable = false,
                                .warnings = {},
                                .relatedPaths = std::nullopt}));
}

TEST_F(SystemProviderTests, oneSnapshotIsAnItem) {
    ASSERT_THAT(snapshotsInSample("tmutil-snapshots-group.txt"), SizeIs(1));
    EXPECT_EQ(snapshotsInSample("tmutil-snapshots-group.txt")[0].title, "Snapshot lokal Time Machine (1)");
}

TEST_F(SystemProviderTests, withoutSnapshotsThereIsNoItem) {
    EXPECT_THAT(snapshotsInSample("tmutil-snapshots-empty.txt"), IsEmpty());
    EXPECT_THAT(SystemProvider::snapshots(""), IsEmpty());
    EXPECT_THAT(SystemProvider::snapshots("\n\n"), IsEmpty());
}

TEST_F(SystemProviderTests, aLineCountsOnceWhereverItNamesApple) {
    EXPECT_EQ(SystemProvider::snapshots("(com.apple com.apple)\ncom.Apple\r\n  x com.apple").at(0).title,
              "Snapshot lokal Time Machine (2)");
}

} // namespace
} // namespace korvanti
