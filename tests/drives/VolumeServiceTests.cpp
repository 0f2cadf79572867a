#include "drives/VolumeService.h"

#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace korvanti {
namespace {

using Dictionary = PropertyList::Dictionary;
using Platform::MountedVolume;
using testing::textOf;
using VolumeService::volumeInfo;

Dictionary sample(const std::string& name) {
    const auto list = PropertyList::parse(textOf(KORVANTI_TEST_DATA "/" + name));
    return list && list->dictionary() ? *list->dictionary() : Dictionary();
}

PropertyList text(const std::string& value) {
    return PropertyList(value);
}

/// What the platform tells of a drive at its best.
MountedVolume told() {
    return {.mountPath = "/Volumes/Kerja",
            .fsType = "apfs",
            .name = "Kerja",
            .uuid = "7D5A2B10-3F4E-4C6D-8B9A-A0B1C2D3E4F5",
            .formatDescription = "APFS (peka huruf)",
            .isInternal = false,
            .isEjectable = true,
            .isRemovable = false,
            .isLocal = true,
            .isRootFileSystem = false,
            .total = 999'995'129'856,
            .available = 731'204'890'624};
}

TEST(VolumeServiceTests, whatIsLocalBelowVolumesAndNotTheRootIsExternal) {
    struct Row {
        const char* path;
        std::optional<bool> isLocal;
        std::optional<bool> isRoot;
        bool isExternal;
    };
    for (const auto& [path, isLocal, isRoot, isExternal] :
         {Row{"/Volumes/A", true, false, true}, Row{"/Volumes/A", true, std::nullopt, true},
          Row{"/Volumes/A", std::nullopt, false, false}, Row{"/Volumes/A", false, false, false},
          Row{"/Volumes/A", true, true, false}, Row{"/Volumes/A/B", true, false, true},
          Row{"/Volumes", true, false, false}, Row{"/Volumes2/A", true, false, false},
          Row{"/volumes/A", true, false, false}, Row{"/", true, false, false},
          Row{"/private/Volumes/A", true, false, false}, Row{"Volumes/A", true, false, false},
          Row{"", true, false, false}})
        EXPECT_EQ(
            VolumeService::isExternal({.mountPath = path, .isLocal = isLocal, .isRootFileSystem = isRoot}),
            isExternal)
            << path;
}

TEST(VolumeServiceTests, anInternalVolumeAndADiskImageAreListedLikeAnyOther) {
    EXPECT_TRUE(VolumeService::isExternal({.mountPath = "/Volumes/A", .isInternal = true, .isLocal = true}));
}

TEST(VolumeServiceTests, anExternalDriveIsWhatBothTellOfIt) {
    EXPECT_EQ(volumeInfo(told(), sample("diskutil-info-external-apfs.plist")),
              (VolumeInfo{.name = "Kerja",
                          .mountPath = "/Volumes/Kerja",
                          .uuid = "7D5A2B10-3F4E-4C6D-8B9A-A0B1C2D3E4F5",
                          .formatName = "APFS (Case-sensitive)",
                          .fsType = "apfs",
                          .isInternal = false,
                          .isEjectable = true,
                          .total = 999'995'129'856,
                          .free = 731'204'890'624,
                          .busProtocol = "USB",
                          .solidState = true,
                          .ownersEnabled = false,
                          .encrypted = true,
                          .smart = SmartInfo{.status = "Not Supported"},
                          .deviceIdentifier = "disk6s1"}));
}

TEST(VolumeServiceTests, aStickTellsLess) {
    const MountedVolume stick{.mountPath = "/Volumes/FLASHDISK", .fsType = "exfat", .isRemovable = true};
    EXPECT_EQ(volumeInfo(stick, sample("diskutil-info-external.plist")),
              (VolumeInfo{.name = "FLASHDISK",
                          .mountPath = "/Volumes/FLASHDISK",
                          .formatName = "ExFAT",
                          .fsType = "exfat",
                          .isEjectable = true,
                          .busProtocol = "USB",
                          .ownersEnabled = false,
                          .smart = SmartInfo{.status = "Not Supported"},
                          .deviceIdentifier = "disk4s1"}));
}

TEST(VolumeServiceTests, aForeignFormatKeepsItsNames) {
    const auto volume = volumeInfo(told(), sample("diskutil-info-external-ntfs.plist"));
    EXPECT_EQ(volume.formatName, "Windows NT File System (NTFS)");
    EXPECT_EQ(volume.fsType, "ntfs");
    EXPECT_EQ(volume.solidState, false);
    EXPECT_EQ(volume.encrypted, std::nullopt);
}

TEST(VolumeServiceTests, wearComesWithTheHealth) {
    EXPECT_EQ(volumeInfo(told(), sample("diskutil-info-root.plist")).smart->percentageUsed, 3);
}

TEST(VolumeServiceTests, withoutTheToolThePlatformsWordCounts) {
    EXPECT_EQ(volumeInfo(told(), {}), (VolumeInfo{.name = "Kerja",
                                                  .mountPath = "/Volumes/Kerja",
                                                  .uuid = "7D5A2B10-3F4E-4C6D-8B9A-A0B1C2D3E4F5",
                                                  .formatName = "APFS (peka huruf)",
                                                  .fsType = "apfs",
                                                  .isInternal = false,
                                                  .isEjectable = true,
                                                  .total = 999'995'129'856,
                                                  .free = 731'204'890'624}));
}

TEST(VolumeServiceTests, whereNothingIsToldTheFallbacksHold) {
    EXPECT_EQ(volumeInfo({.mountPath = "/Volumes/X"}, {}),
              (VolumeInfo{.name = "X", .mountPath = "/Volumes/X", .isEjectable = true}));
}

TEST(VolumeServiceTests, theTypeIsInLowerCaseFromTheToolAndAsItIsFromTheKernel) {
    const MountedVolume mounted{.mountPath = "/Volumes/X", .fsType = "MacFUSE"};
    EXPECT_EQ(volumeInfo(mounted, {{"FilesystemType", text("ExFAT")}}).fsType, "exfat");
    EXPECT_EQ(volumeInfo(mounted, {}).fsType, "MacFUSE");
    EXPECT_EQ(volumeInfo(mounted, {{"FilesystemType", text("")}}).fsType, "MacFUSE");
    EXPECT_EQ(volumeInfo(mounted, {{"FilesystemType", PropertyList(true)}}).fsType, "MacFUSE");
}

TEST(VolumeServiceTests, theFormatForPeopleIsTheToolsThenThePlatformsThenTheType) {
    const MountedVolume mounted{
        .mountPath = "/Volumes/X", .fsType = "exfat", .formatDescription = "Format Lokal"};
    EXPECT_EQ(volumeInfo(mounted, {{"FilesystemUserVisibleName", text("ExFAT")}}).formatName, "ExFAT");
    EXPECT_EQ(volumeInfo(mounted, {{"FilesystemUserVisibleName", PropertyList(1.0)}}).formatName,
              "Format Lokal");
    EXPECT_EQ(volumeInfo({.mountPath = "/Volumes/X", .fsType = "exfat"}, {}).formatName, "exfat");
    EXPECT_EQ(volumeInfo({.mountPath = "/Volumes/X"}, {{"FilesystemType", text("HFS")}}).formatName, "hfs");
}

TEST(VolumeServiceTests, whetherItEjectsIsToldOrFollowsFromRemovableOrIsTrue) {
    const auto isEjectable = [](std::optional<bool> ejectable, std::optional<bool> removable) {
        return volumeInfo({.mountPath = "/Volumes/X", .isEjectable = ejectable, .isRemovable = removable}, {})
            .isEjectable;
    };
    EXPECT_FALSE(isEjectable(false, true));
    EXPECT_TRUE(isEjectable(true, false));
    EXPECT_TRUE(isEjectable(std::nullopt, true));
    EXPECT_FALSE(isEjectable(std::nullopt, false));
    EXPECT_TRUE(isEjectable(std::nullopt, std::nullopt));
}

TEST(VolumeServiceTests, anInternalVolumeIsOneThatIsToldToBe) {
    EXPECT_TRUE(volumeInfo({.mountPath = "/Volumes/X", .isInternal = true}, {}).isInternal);
    EXPECT_FALSE(volumeInfo({.mountPath = "/Volumes/X"}, {}).isInternal);
}

TEST(VolumeServiceTests, whetherItIsEncryptedStandsUnderTheFirstKeyThatIsABoolean) {
    const PropertyList yes(true);
    const PropertyList no(false);
    const PropertyList one(std::int64_t{1});
    const auto encrypted = [](const Dictionary& info) { return volumeInfo(told(), info).encrypted; };
    EXPECT_EQ(encrypted({{"Encryption", yes}, {"FileVault", no}}), true);
    EXPECT_EQ(encrypted({{"Encryption", no}, {"FileVault", yes}}), false);
    EXPECT_EQ(encrypted({{"FileVault", yes}}), true);
    EXPECT_EQ(encrypted({{"FileVault", no}}), false);
    EXPECT_EQ(encrypted({{"Encryption", one}, {"FileVault", no}}), false);
    EXPECT_EQ(encrypted({{"Encryption", text("true")}, {"FileVault", yes}}), true);
    EXPECT_EQ(encrypted({{"Encryption", one}, {"FileVault", one}}), std::nullopt);
    EXPECT_EQ(encrypted({}), std::nullopt);
}

TEST(VolumeServiceTests, valuesOfAnotherTypeAreNotTold) {
    const PropertyList one(std::int64_t{1});
    const auto volume =
        volumeInfo({.mountPath = "/Volumes/X"}, {{"FilesystemType", one},
                                                 {"FilesystemUserVisibleName", one},
                                                 {"BusProtocol", one},
                                                 {"SolidState", one},
                                                 {"GlobalPermissionsEnabled", text("yes")},
                                                 {"DeviceIdentifier", PropertyList(Dictionary())},
                                                 {"SMARTDeviceSpecificKeysMayVaryNotGuaranteed", one}});
    EXPECT_EQ(volume, (VolumeInfo{.name = "X", .mountPath = "/Volumes/X", .isEjectable = true}));
}

TEST(VolumeServiceTests, ofSizesOnlyThePlatformsCount) {
    const auto volume = volumeInfo({.mountPath = "/Volumes/X"}, sample("diskutil-info-external-apfs.plist"));
    EXPECT_EQ(volume.total, 0);
    EXPECT_EQ(volume.free, 0);
    EXPECT_EQ(volume.uuid, std::nullopt);
    EXPECT_EQ(volume.name, "X");
}

} // namespace
} // namespace korvanti
