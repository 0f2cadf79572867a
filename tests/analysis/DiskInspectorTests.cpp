#include "analysis/DiskInspector.h"

#include "fs/PathTools.h"
#include "platform/Platform.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>
#include <limits>
#include <utility>

namespace korvanti {
namespace {

using Array = PropertyList::Array;
using Dictionary = PropertyList::Dictionary;
using testing::TempFolder;
using testing::textOf;

constexpr std::int64_t bytesPerDataUnit = 512'000;
constexpr auto largest = std::numeric_limits<std::int64_t>::max();

PropertyList integer(std::int64_t value) {
    return PropertyList(value);
}

PropertyList text(const std::string& value) {
    return PropertyList(value);
}

Dictionary infoWith(Dictionary details) {
    return {{"SMARTDeviceSpecificKeysMayVaryNotGuaranteed", PropertyList(std::move(details))}};
}

Dictionary sample(const std::string& name) {
    const auto list = PropertyList::parse(textOf(KORVANTI_TEST_DATA "/" + name));
    return list && list->dictionary() ? *list->dictionary() : Dictionary();
}

std::optional<std::int64_t> wearOf(PropertyList value) {
    const auto smart = DiskInspector::smart(infoWith({{"PERCENTAGE_USED", std::move(value)}}));
    EXPECT_TRUE(smart.has_value());
    return smart ? smart->percentageUsed : std::nullopt;
}

std::optional<std::int64_t> writtenOf(PropertyList units) {
    const auto smart = DiskInspector::smart(infoWith({{"DATA_UNITS_WRITTEN_0", std::move(units)}}));
    EXPECT_TRUE(smart.has_value());
    return smart ? smart->dataWrittenBytes : std::nullopt;
}

/// An integer that a property list may hold and 64 signed bits may not.
PropertyList beyondRange() {
    return *PropertyList::parse("<plist><integer>9223372036854775808</integer></plist>");
}

// The drive's health

TEST(DiskInspectorTests, anInternalDriveTellsAllSixFields) {
    EXPECT_EQ(DiskInspector::smart(sample("diskutil-info-root.plist")),
              (SmartInfo{.percentageUsed = 3,
                         .dataWrittenBytes = 31'695'114'752'000,
                         .powerOnHours = 1873,
                         .availableSpare = 100,
                         .status = "Verified",
                         .unsafeShutdowns = 17}));
}

TEST(DiskInspectorTests, theBinaryFormTellsTheSame) {
    EXPECT_EQ(DiskInspector::smart(sample("diskutil-info-root-binary.plist")),
              DiskInspector::smart(sample("diskutil-info-root.plist")));
}

TEST(DiskInspectorTests, eachFieldComesFromItsOwnKey) {
    EXPECT_EQ(DiskInspector::smart(infoWith({{"PERCENTAGE_USED", integer(1)},
                                             {"DATA_UNITS_WRITTEN_0", integer(2)},
                                             {"POWER_ON_HOURS_0", integer(3)},
                                             {"AVAILABLE_SPARE", integer(4)},
                                             {"UNSAFE_SHUTDOWNS_0", integer(5)},
                                             {"DATA_UNITS_WRITTEN_1", integer(6)},
                                             {"DATA_UNITS_READ_0", integer(7)}})),
              (SmartInfo{.percentageUsed = 1,
                         .dataWrittenBytes = 2 * bytesPerDataUnit,
                         .powerOnHours = 3,
                         .availableSpare = 4,
                         .status = std::nullopt,
                         .unsafeShutdowns = 5}));
}

TEST(DiskInspectorTests, aDriveThatOnlyTellsItsStatusHasNothingElse) {
    EXPECT_EQ(DiskInspector::smart({{"SMARTStatus", text("Verified")}}), (SmartInfo{.status = "Verified"}));
}

TEST(DiskInspectorTests, anyStatusComesThroughAsItStands) {
    for (const auto* status : {"Not Supported", "Failing", "About to Fail", "", "verified \xF0\x9F\x94\xA5"})
        EXPECT_EQ(DiskInspector::smart({{"SMARTStatus", text(status)}}), (SmartInfo{.status = status}));
    EXPECT_EQ(DiskInspector::smart(sample("diskutil-info-external.plist")),
              (SmartInfo{.status = "Not Supported"}));
    EXPECT_EQ(DiskInspector::smart(sample("diskutil-info-root-failing.plist")),
              (SmartInfo{.status = "Failing"}));
}

TEST(DiskInspectorTests, aDriveThatTellsNeitherHasNoHealth) {
    EXPECT_EQ(DiskInspector::smart({{"DeviceIdentifier", text("disk4")}}), std::nullopt);
    EXPECT_EQ(DiskInspector::smart(sample("diskutil-info-error.plist")), std::nullopt);
}

TEST(DiskInspectorTests, nothingToldIsNoHealth) {
    EXPECT_EQ(DiskInspector::smart({}), std::nullopt);
}

TEST(DiskInspectorTests, anEmptyDictionaryOfDetailsIsHealthWithoutFields) {
    EXPECT_EQ(DiskInspector::smart(infoWith({})), SmartInfo());
}

TEST(DiskInspectorTests, detailsOfAnotherTypeAreNone) {
    for (const auto& wrong : {text("PERCENTAGE_USED"), integer(3), PropertyList(Array()), PropertyList()}) {
        Dictionary info = {{"SMARTDeviceSpecificKeysMayVaryNotGuaranteed", wrong}};
        EXPECT_EQ(DiskInspector::smart(info), std::nullopt);
        info.emplace("SMARTStatus", text("Verified"));
        EXPECT_EQ(DiskInspector::smart(info), (SmartInfo{.status = "Verified"}));
    }
}

TEST(DiskInspectorTests, aStatusOfAnotherTypeIsAbsentButStillTellsThatThereIsHealth) {
    EXPECT_EQ(DiskInspector::smart({{"SMARTStatus", integer(1)}}), SmartInfo());
}

TEST(DiskInspectorTests, theStatusIsNotLookedForAmongTheDetails) {
    EXPECT_EQ(DiskInspector::smart(infoWith({{"SMARTStatus", text("Verified")}})), SmartInfo());
}

TEST(DiskInspectorTests, countersAreNotLookedForOutsideTheDetails) {
    EXPECT_EQ(DiskInspector::smart({{"PERCENTAGE_USED", integer(3)}, {"SMARTStatus", text("Verified")}}),
              (SmartInfo{.status = "Verified"}));
}

TEST(DiskInspectorTests, aMissingCounterIsAbsentAndTheOthersStand) {
    EXPECT_EQ(DiskInspector::smart(infoWith({{"AVAILABLE_SPARE", integer(0)}})),
              (SmartInfo{.availableSpare = 0}));
}

// A number read as an integer

TEST(DiskInspectorTests, aCounterIsAnyWholeNumber) {
    for (const std::int64_t value : {std::int64_t(0), std::int64_t(255), std::int64_t(-1), largest,
                                     std::numeric_limits<std::int64_t>::min()})
        EXPECT_EQ(wearOf(integer(value)), value);
}

TEST(DiskInspectorTests, aRealLosesItsFraction) {
    EXPECT_EQ(wearOf(PropertyList(3.0)), 3);
    EXPECT_EQ(wearOf(PropertyList(3.99)), 3);
    EXPECT_EQ(wearOf(PropertyList(-3.99)), -3);
    EXPECT_EQ(wearOf(PropertyList(-0x1p63)), std::numeric_limits<std::int64_t>::min());
}

TEST(DiskInspectorTests, aRealThatIsNoIntegerIsAbsent) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (const double value : {0x1p63, -0x1.0000000000001p63, 1e300, infinity, -infinity,
                               std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(wearOf(PropertyList(value)), std::nullopt) << value;
}

TEST(DiskInspectorTests, anIntegerBeyondTheRangeIsAbsent) {
    EXPECT_EQ(wearOf(beyondRange()), std::nullopt);
    EXPECT_EQ(writtenOf(beyondRange()), std::nullopt);
}

TEST(DiskInspectorTests, aCounterOfAnotherTypeIsAbsent) {
    for (const auto& wrong :
         {PropertyList(true), text("3"), PropertyList(Array{integer(3)}), PropertyList(Dictionary()),
          PropertyList(PropertyList::Data{"3"}), PropertyList(Instant()), PropertyList()}) {
        EXPECT_EQ(wearOf(wrong), std::nullopt);
        EXPECT_EQ(writtenOf(wrong), std::nullopt);
    }
}

TEST(DiskInspectorTests, whatWasWrittenIsAbsentWhereItsBytesAreBeyondTheRange) {
    constexpr auto most = largest / bytesPerDataUnit;
    EXPECT_EQ(writtenOf(integer(most)), most * bytesPerDataUnit);
    EXPECT_EQ(writtenOf(integer(most + 1)), std::nullopt);
    EXPECT_EQ(writtenOf(integer(largest)), std::nullopt);
    EXPECT_EQ(writtenOf(integer(-most - 1)), std::nullopt);
    EXPECT_EQ(writtenOf(PropertyList(9e18)), std::nullopt);
}

// Without diskutil

TEST(DiskInspectorTests, theSnapshotIsThatOfTheVolumeOfTheHomeFolder) {
    const TempFolder home;
    const auto capacity = Platform::volumeCapacity(home.path());
    const auto disk = DiskInspector::snapshot(home.path(), {});
    EXPECT_EQ(disk.total, capacity.total);
    EXPECT_GT(disk.available, 0);
    EXPECT_LE(disk.available, disk.total);
    EXPECT_GE(disk.availableImportant, disk.available);
    EXPECT_EQ(disk.physicalMemory, Platform::physicalMemory());
}

#ifdef __linux__ // where nothing is purgeable and there is no diskutil
TEST(DiskInspectorTests, whereNothingIsPurgeableAnImportantUseMayHaveWhatIsFree) {
    const TempFolder home;
    const auto disk = DiskInspector::snapshot(home.path(), {});
    EXPECT_EQ(disk.availableImportant, disk.available);
    EXPECT_EQ(disk.purgeable(), 0);
}

TEST(DiskInspectorTests, aMissingToolTellsNothing) {
    ASSERT_FALSE(PathTools::exists("/usr/sbin/diskutil"));

    EXPECT_EQ(DiskInspector::diskutilInfo("/"), std::nullopt);
    EXPECT_TRUE(DiskInspector::apfsVolumes().empty());
    EXPECT_EQ(DiskInspector::snapshot("/", {.includeSmart = true}).smart, std::nullopt);
}
#endif

TEST(DiskInspectorTests, aHomeThatDoesNotExistHasNoCapacity) {
    const auto disk = DiskInspector::snapshot("/no/such/home", {});
    EXPECT_EQ(disk.total, 0);
    EXPECT_EQ(disk.available, 0);
    EXPECT_EQ(disk.availableImportant, 0);
    EXPECT_GT(disk.physicalMemory, 0);
}

TEST(DiskInspectorTests, theFreeSpaceIsThatOfTheVolumeOfTheFolder) {
    const TempFolder home;
    const auto space = DiskInspector::freeSpace(home.path());
    EXPECT_EQ(space.total, Platform::volumeCapacity(home.path()).total);
    EXPECT_GT(space.available, 0);
    EXPECT_LE(space.available, space.total);
}

TEST(DiskInspectorTests, aFolderThatDoesNotExistHasNoFreeSpace) {
    EXPECT_EQ(DiskInspector::freeSpace("/no/such/home"), DiskInspector::FreeSpace());
    EXPECT_EQ(DiskInspector::freeSpace(""), DiskInspector::FreeSpace());
}

TEST(DiskInspectorTests, swapInUseIsNotNegative) {
    EXPECT_GE(DiskInspector::swapUsed(), 0);
}

} // namespace
} // namespace korvanti
