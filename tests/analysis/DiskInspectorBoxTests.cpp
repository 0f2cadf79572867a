#include "analysis/DiskInspector.h"

#include "platform/Platform.h"
#include "support/BoxFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace korvanti {
namespace {

using testing::BoxMac;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::textOf;

const std::string infoCall = "diskutil info -plist /";
const std::string layoutCall = "diskutil apfs list -plist";

std::string sample(const std::string& name) {
    return textOf(KORVANTI_TEST_DATA "/" + name);
}

std::string list(const std::string& contents) {
    return R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0">)" + contents + "</plist>";
}

std::string dictionary(const std::string& entries) {
    return "<dict>" + entries + "</dict>";
}

std::string infoNaming(const std::string& container) {
    return list(dictionary("<key>APFSContainerReference</key><string>" + container + "</string>"));
}

/// One volume as XML, in a container of its own.
std::string layoutOf(const std::string& volume) {
    return list(dictionary("<key>Containers</key><array><dict><key>Volumes</key><array>" + volume +
                           "</array></dict></array>"));
}

std::string container(const std::string& reference, const std::string& volume) {
    return "<dict><key>ContainerReference</key><string>" + reference +
           "</string><key>Volumes</key><array><dict><key>Name</key><string>" + volume +
           "</string></dict></array></dict>";
}

std::string layoutOfContainers(const std::string& containers) {
    return list(dictionary("<key>Containers</key><array>" + containers + "</array>"));
}

class DiskInspectorBoxTests : public ::testing::Test {
protected:
    std::vector<APFSVolumeUsage> volumesIn(const std::string& layout) const {
        mac.answer(layoutCall, layout);
        return DiskInspector::apfsVolumes();
    }
    std::vector<std::string> namesIn(const std::string& layout) const {
        std::vector<std::string> names;
        for (const auto& volume : volumesIn(layout))
            names.push_back(volume.name);
        return names;
    }

    BoxMac mac;
};

// Device information

TEST_F(DiskInspectorBoxTests, theInformationIsWhatTheToolTellsOfTheTarget) {
    mac.answer("diskutil info -plist /Volumes/Kerja Lama", sample("diskutil-info-external-apfs.plist"));

    const auto info = DiskInspector::diskutilInfo("/Volumes/Kerja Lama");

    ASSERT_TRUE(info.has_value());
    EXPECT_EQ(info->at("APFSContainerReference").text(), "disk6");
    EXPECT_THAT(BoxMac::calls(), ElementsAre("diskutil info -plist /Volumes/Kerja Lama"));
}

TEST_F(DiskInspectorBoxTests, aToolThatFailsTellsNothingWhateverItPrints) {
    mac.answer(infoCall, sample("diskutil-info-root.plist"), 1);
    EXPECT_EQ(DiskInspector::diskutilInfo("/"), std::nullopt);
    mac.answer(infoCall, sample("diskutil-info-error.plist"), 1);
    EXPECT_EQ(DiskInspector::diskutilInfo("/"), std::nullopt);
}

TEST_F(DiskInspectorBoxTests, aToolThatIsKilledTellsNothing) {
    mac.answerWithScript(infoCall, "printf '<dict/>'; kill -KILL $$");
    EXPECT_EQ(DiskInspector::diskutilInfo("/"), std::nullopt);
}

TEST_F(DiskInspectorBoxTests, outputThatIsNoListTellsNothing) {
    const auto whole = sample("diskutil-info-root.plist");
    for (const auto& damaged : {std::string(), std::string("Could not find disk"),
                                whole.substr(0, whole.size() / 2), whole.substr(whole.size() / 2)}) {
        mac.answer(infoCall, damaged);
        EXPECT_EQ(DiskInspector::diskutilInfo("/"), std::nullopt);
    }
}

TEST_F(DiskInspectorBoxTests, aListThatIsNoDictionaryTellsNothing) {
    for (const auto* other : {"<array><dict/></array>", "<string>disk3</string>", "<integer>1</integer>"}) {
        mac.answer(infoCall, list(other));
        EXPECT_EQ(DiskInspector::diskutilInfo("/"), std::nullopt) << other;
    }
}

TEST_F(DiskInspectorBoxTests, anEmptyDictionaryIsAnAnswer) {
    mac.answer(infoCall, list("<dict/>"));
    EXPECT_EQ(DiskInspector::diskutilInfo("/"), PropertyList::Dictionary());
}

TEST_F(DiskInspectorBoxTests, theBinaryFormTellsTheSameAsTheXml) {
    mac.answer(infoCall, sample("diskutil-info-root.plist"));
    const auto xml = DiskInspector::diskutilInfo("/");
    mac.answer(infoCall, sample("diskutil-info-root-binary.plist"));
    ASSERT_TRUE(xml.has_value());
    EXPECT_EQ(DiskInspector::diskutilInfo("/"), xml);
}

TEST_F(DiskInspectorBoxTests, aNameThatIsNotUtf8IsRepaired) {
    mac.answer(infoCall, list(dictionary("<key>VolumeName</key><string>Kerja\xFF</string>")));

    const auto info = DiskInspector::diskutilInfo("/");

    ASSERT_TRUE(info.has_value());
    EXPECT_EQ(info->at("VolumeName").text(), "Kerja\uFFFD");
}

// APFS volumes

TEST_F(DiskInspectorBoxTests, theVolumesAreThoseOfTheStartUpContainerInTheToolsOrder) {
    mac.answer(infoCall, sample("diskutil-info-root.plist"));

    EXPECT_THAT(volumesIn(sample("diskutil-apfs-list.plist")),
                ElementsAre(APFSVolumeUsage{"Macintosh HD", "System", 11'215'204'352},
                            APFSVolumeUsage{"Preboot", "Preboot", 7'110'123'520},
                            APFSVolumeUsage{"Recovery", "Recovery", 1'021'059'072},
                            APFSVolumeUsage{"Update", "Update", 2'097'152},
                            APFSVolumeUsage{"Data", "Data", 354'203'189'248},
                            APFSVolumeUsage{"VM", "VM", 8'589'955'072},
                            APFSVolumeUsage{"Proyek", "", 12'288}));
}

TEST_F(DiskInspectorBoxTests, theVolumesTakeTwoCalls) {
    mac.answer(infoCall, sample("diskutil-info-root.plist"));

    (void)volumesIn(sample("diskutil-apfs-list.plist"));

    EXPECT_THAT(BoxMac::calls(), ElementsAre(infoCall, layoutCall));
}

TEST_F(DiskInspectorBoxTests, whereNoContainerIsTheStartUpOneTheFirstStandsIn) {
    mac.answer(infoCall, infoNaming("disk9"));
    EXPECT_THAT(namesIn(sample("diskutil-apfs-list.plist")),
                ElementsAre("iSCPreboot", "xarts", "Hardware", "Recovery"));
}

TEST_F(DiskInspectorBoxTests, whereTheStartUpContainerIsNotToldTheFirstStandsIn) {
    const auto layout = layoutOfContainers(container("disk1", "Pertama") + container("disk2", "Kedua"));

    EXPECT_THAT(namesIn(layout), ElementsAre("Pertama")); // no answer at all
    for (const auto* info :
         {"<dict/>", "<array/>", "<dict><key>APFSContainerReference</key><true/></dict>"}) {
        mac.answer(infoCall, list(info));
        EXPECT_THAT(namesIn(layout), ElementsAre("Pertama")) << info;
    }
}

TEST_F(DiskInspectorBoxTests, ofTwoContainersOfTheSameNameTheFirstCounts) {
    mac.answer(infoCall, infoNaming("disk2"));
    EXPECT_THAT(namesIn(layoutOfContainers(container("disk1", "Satu") + container("disk2", "Dua") +
                                           container("disk2", "Tiga"))),
                ElementsAre("Dua"));
}

TEST_F(DiskInspectorBoxTests, aContainerWhoseReferenceIsNoTextMatchesNothing) {
    mac.answer(infoCall, infoNaming("7"));
    EXPECT_THAT(namesIn(layoutOfContainers(
                    container("disk1", "Satu") +
                    "<dict><key>ContainerReference</key><integer>7</integer><key>Volumes</key><array>"
                    "<dict/></array></dict>")),
                ElementsAre("Satu"));
}

TEST_F(DiskInspectorBoxTests, aContainerWithoutAReferenceIsNotTheUnknownStartUpContainer) {
    EXPECT_THAT(namesIn(layoutOfContainers(container("disk1", "Satu") + "<dict/>")), ElementsAre("Satu"));
}

TEST_F(DiskInspectorBoxTests, aLayoutThatFailsOrIsNoDictionaryHasNoVolumes) {
    mac.answer(infoCall, sample("diskutil-info-root.plist"));
    EXPECT_THAT(DiskInspector::apfsVolumes(), IsEmpty()); // no answer at all

    const auto whole = sample("diskutil-apfs-list.plist");
    mac.answer(layoutCall, whole.substr(0, whole.size() - 60));
    EXPECT_THAT(DiskInspector::apfsVolumes(), IsEmpty());
    mac.answer(layoutCall, list("<array/>"));
    EXPECT_THAT(DiskInspector::apfsVolumes(), IsEmpty());
    mac.answer(layoutCall, whole, 1);
    EXPECT_THAT(DiskInspector::apfsVolumes(), IsEmpty());
}

TEST_F(DiskInspectorBoxTests, withoutContainersThereAreNoVolumes) {
    mac.answer(infoCall, sample("diskutil-info-root.plist"));

    EXPECT_THAT(volumesIn(sample("diskutil-apfs-list-empty.plist")), IsEmpty());
    EXPECT_THAT(volumesIn(list("<dict/>")), IsEmpty());
    EXPECT_THAT(volumesIn(list("<dict><key>Containers</key><string>disk3</string></dict>")), IsEmpty());
}

TEST_F(DiskInspectorBoxTests, anArrayOfMoreThanDictionariesHoldsNoContainers) {
    EXPECT_THAT(volumesIn(layoutOfContainers(container("disk1", "Satu") + "<string>disk2</string>")),
                IsEmpty());
}

TEST_F(DiskInspectorBoxTests, aContainerWithoutAnArrayOfVolumesHasNone) {
    EXPECT_THAT(volumesIn(layoutOfContainers("<dict/>")), IsEmpty());
    EXPECT_THAT(volumesIn(layoutOfContainers("<dict><key>Volumes</key><dict/></dict>")), IsEmpty());
    EXPECT_THAT(volumesIn(layoutOf("<dict/><string>disk1s1</string>")), IsEmpty());
}

TEST_F(DiskInspectorBoxTests, aVolumeThatTellsNothingIsAQuestionMarkWithoutRoleAndBytes) {
    EXPECT_THAT(volumesIn(layoutOf("<dict/>")), ElementsAre(APFSVolumeUsage{"?", "", 0}));
}

TEST_F(DiskInspectorBoxTests, fieldsOfAnotherTypeAreNotTold) {
    EXPECT_THAT(volumesIn(layoutOf("<dict><key>Name</key><integer>1</integer>"
                                   "<key>Roles</key><string>VM</string>"
                                   "<key>CapacityInUse</key><string>4096</string></dict>")),
                ElementsAre(APFSVolumeUsage{"?", "", 0}));
    EXPECT_THAT(volumesIn(layoutOf("<dict><key>Name</key><array/>"
                                   "<key>Roles</key><array><string>VM</string><integer>1</integer></array>"
                                   "<key>CapacityInUse</key><true/></dict>")),
                ElementsAre(APFSVolumeUsage{"?", "", 0}));
}

TEST_F(DiskInspectorBoxTests, anEmptyArrayOfRolesIsNoRole) {
    EXPECT_THAT(volumesIn(layoutOf("<dict><key>Name</key><string>A</string><key>Roles</key><array/></dict>")),
                ElementsAre(APFSVolumeUsage{"A", "", 0}));
}

TEST_F(DiskInspectorBoxTests, theFirstRoleCounts) {
    EXPECT_THAT(volumesIn(layoutOf("<dict><key>Roles</key><array><string>System</string><string>Data</string>"
                                   "</array></dict>")),
                ElementsAre(APFSVolumeUsage{"?", "System", 0}));
}

TEST_F(DiskInspectorBoxTests, theBytesAreANumberThatADiskCanHold) {
    const auto bytesOf = [this](const std::string& number) {
        return volumesIn(layoutOf("<dict><key>CapacityInUse</key>" + number + "</dict>")).at(0).bytes;
    };
    EXPECT_EQ(bytesOf("<integer>1000000000000000</integer>"), 1'000'000'000'000'000);
    EXPECT_EQ(bytesOf("<integer>1000000000000001</integer>"), 0);
    EXPECT_EQ(bytesOf("<integer>9223372036854775807</integer>"), 0);
    EXPECT_EQ(bytesOf("<integer>9223372036854775808</integer>"), 0);
    EXPECT_EQ(bytesOf("<integer>-5</integer>"), 0);
    EXPECT_EQ(bytesOf("<real>4096.5</real>"), 4096);
    EXPECT_EQ(bytesOf("<real>1e30</real>"), 0);
}

// A whole look

TEST_F(DiskInspectorBoxTests, aLookWithHealthAsksForTheInformationTwice) {
    mac.answer(infoCall, sample("diskutil-info-root.plist"));
    mac.answer(layoutCall, sample("diskutil-apfs-list.plist"));

    const auto disk = DiskInspector::snapshot(mac.home.path(), {.includeSmart = true});

    ASSERT_TRUE(disk.smart.has_value());
    EXPECT_EQ(disk.smart->percentageUsed, 3);
    EXPECT_EQ(disk.apfsVolumes.size(), 7U);
    EXPECT_THAT(BoxMac::calls(), ElementsAre(infoCall, infoCall, layoutCall));
}

TEST_F(DiskInspectorBoxTests, aLookWithoutHealthStillReadsTheVolumes) {
    mac.answer(infoCall, sample("diskutil-info-root.plist"));
    mac.answer(layoutCall, sample("diskutil-apfs-list.plist"));

    const auto disk = DiskInspector::snapshot(mac.home.path(), {.includeSmart = false});

    EXPECT_EQ(disk.smart, std::nullopt);
    EXPECT_EQ(disk.apfsVolumes.size(), 7U);
    EXPECT_THAT(BoxMac::calls(), ElementsAre(infoCall, layoutCall));
}

TEST_F(DiskInspectorBoxTests, eachInformationServesOnlyItsOwnPurpose) {
    mac.answer(layoutCall, sample("diskutil-apfs-list.plist"));
    mac.answer("first", sample("diskutil-info-root.plist"));
    mac.answer("second", infoNaming("disk6"));
    mac.answerWithScript(infoCall, "cd /box/answers; cat first; [ ! -e second ] || mv second first");

    const auto disk = DiskInspector::snapshot(mac.home.path(), {.includeSmart = true});

    ASSERT_TRUE(disk.smart.has_value());
    EXPECT_EQ(disk.smart->status, "Verified");
    EXPECT_THAT(disk.apfsVolumes, ElementsAre(APFSVolumeUsage{"Kerja", "", 268'541'206'528},
                                              APFSVolumeUsage{"Cadangan", "Backup", 20'480}));
}

TEST_F(DiskInspectorBoxTests, aLookTellsAllElseWithoutTheTool) {
    mac.grantFullDiskAccess();

    const auto disk = DiskInspector::snapshot(mac.home.path(), {.includeSmart = true});

    EXPECT_GT(disk.total, 0);
    EXPECT_EQ(disk.smart, std::nullopt);
    EXPECT_THAT(disk.apfsVolumes, IsEmpty());
    EXPECT_EQ(disk.swapUsed, DiskInspector::swapUsed());
    EXPECT_EQ(disk.physicalMemory, Platform::physicalMemory());
    EXPECT_TRUE(disk.hasFullDiskAccess);
}

TEST_F(DiskInspectorBoxTests, theCheapLookStartsNoProcess) {
    EXPECT_GT(DiskInspector::freeSpace(mac.home.path()).available, 0);
    EXPECT_THAT(BoxMac::calls(), IsEmpty());
}

// Full Disk Access

TEST_F(DiskInspectorBoxTests, whoCanOpenThePrivacyDatabaseHasFullDiskAccess) {
    mac.grantFullDiskAccess();
    EXPECT_TRUE(DiskInspector::hasFullDiskAccess());
}

TEST_F(DiskInspectorBoxTests, withoutThePrivacyDatabaseThereIsNoFullDiskAccess) {
    EXPECT_FALSE(DiskInspector::hasFullDiskAccess());
    EXPECT_FALSE(DiskInspector::snapshot(mac.home.path(), {}).hasFullDiskAccess);
}

TEST_F(DiskInspectorBoxTests, aLockedPrivacyDatabaseIsNoFullDiskAccess) {
    mac.grantFullDiskAccess();
    mac.privacy.setMode("TCC.db", 0);
    EXPECT_FALSE(DiskInspector::hasFullDiskAccess());
}

} // namespace
} // namespace korvanti
