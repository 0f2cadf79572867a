#include "providers/SimulatorProvider.h"

#include "RulesSupport.h"
#include "base/Formatters.h"
#include "support/BoxFolder.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

namespace korvanti {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::StartsWith;
using ::testing::UnorderedElementsAre;

using testing::ago;
using testing::day;
using testing::now;
using testing::paths;
using testing::sizeBelow;
using testing::sizeFrom;
using testing::titles;

constexpr std::int64_t MB = 1'000'000;
const std::string runtime17 = "com.apple.CoreSimulator.SimRuntime.iOS-17-2";
const std::string folder = "/Users/tester/Library/Developer/CoreSimulator/Devices/";

const std::string resetText =
    " Reset mengembalikan simulator ke kondisi baru: app uji & datanya hilang, simulatornya tetap ada.";
const std::string goneText = "Runtime-nya sudah tidak terpasang, simulator ini tidak bisa dipakai lagi.";
const std::string unusedText =
    "Tidak dipakai simulator mana pun dalam 60 hari. Bisa diunduh ulang dari Xcode › "
    "Settings › Components.";
const std::string usedText = "Dipakai simulator Anda. Dikelola Xcode (disimpan di /System/Library/AssetsV2).";

std::string lastUsedText(Instant instant) {
    return "Terakhir dipakai " + Formatters::relative(instant, now()) + ".";
}

/// The fields of a device or runtime in JSON: given as such, so that anything can stand there.
using Fields = std::vector<std::pair<std::string, std::string>>;

std::string quoted(const std::string& text) {
    return "\"" + text + "\"";
}

std::string object(const Fields& fields) {
    std::string text = "{";
    for (const auto& [key, value] : fields)
        text += (text.size() > 1 ? ", " : "") + quoted(key) + ": " + value;
    return text + "}";
}

/// A device called "iPhone 15" with a folder of its own; `fields` are set over these, an empty one goes.
std::string device(const std::string& udid, const Fields& fields = {}) {
    Fields all = {{"udid", quoted(udid)},
                  {"name", quoted("iPhone 15")},
                  {"state", quoted("Shutdown")},
                  {"isAvailable", "true"},
                  {"dataPath", quoted(folder + udid + "/data")},
                  {"dataPathSize", "100000000"}};
    for (const auto& [key, value] : fields) {
        std::erase_if(all, [&](const auto& field) { return field.first == key; });
        if (!value.empty())
            all.emplace_back(key, value);
    }
    return object(all);
}

std::string at(Instant instant) {
    return quoted(iso8601Text(instant));
}

std::string list(const std::vector<std::string>& entries) {
    std::string text = "[";
    for (const auto& entry : entries)
        text += (text.size() > 1 ? ", " : "") + entry;
    return text + "]";
}

class SimulatorRulesTests : public ::testing::Test {
protected:
    SimulatorRulesTests() {
        mac.applications.folder("Xcode.app/Contents/Developer");
        mac.answer("xcode-select -p", "/Applications/Xcode.app/Contents/Developer\n");
    }
    void answerDevices(const std::string& text, int status = 0) const {
        mac.answer("xcrun simctl list devices -j", text, status);
    }
    /// The devices of one runtime.
    void devices(const std::vector<std::string>& entries, const std::string& runtime = runtime17) const {
        answerDevices(object({{"devices", object({{runtime, list(entries)}})}}));
    }
    void answerRuntimes(const std::string& text, int status = 0) const {
        mac.answer("xcrun simctl runtime list -j", text, status);
    }
    void runtimes(const std::vector<Fields>& entries) const {
        Fields all;
        for (const auto& entry : entries)
            all.emplace_back("KEY-" + std::to_string(all.size()), object(entry));
        answerRuntimes(object(all));
    }
    /// A runtime of `runtime17` that nothing marks as used.
    void idleRuntime() const {
        runtimes({{{"identifier", quoted("ID")}, {"runtimeIdentifier", quoted(runtime17)}}});
    }
    [[nodiscard]] std::vector<CleanupItem> items() const {
        ScanContext context;
        context.home = mac.home.path();
        context.inactiveDays = 21;
        context.now = now();
        return SimulatorProvider().items(context);
    }
    [[nodiscard]] CleanupItem item() const {
        const auto found = items();
        EXPECT_THAT(found, SizeIs(1)) << ::testing::PrintToString(titles(found));
        return found.size() == 1 ? found[0] : CleanupItem();
    }
    /// What is said of the one runtime.
    [[nodiscard]] Safety runtimeSafety() const {
        const auto found = items();
        for (const auto& item : found)
            if (item.title.starts_with("Runtime "))
                return item.safety;
        ADD_FAILURE() << "no runtime";
        return Safety::keep;
    }

    testing::BoxMac mac;
};

TEST_F(SimulatorRulesTests, hasItsNameAndPriority) {
    EXPECT_EQ(SimulatorProvider().name(), "Simulator");
    EXPECT_EQ(SimulatorProvider().priority(), 100);
}

class SimulatorWithoutXcodeRulesTests : public ::testing::Test {
protected:
    testing::BoxMac mac;
};

TEST_F(SimulatorWithoutXcodeRulesTests, nothingIsAskedAndNothingFoundWithoutXcode) {
    mac.answer("xcode-select -p", "/Library/Developer/CommandLineTools\n");
    mac.answer("xcrun simctl list devices -j",
               object({{"devices", object({{runtime17, list({device("A")})}})}}));
    mac.answer("xcrun simctl runtime list -j", object({{"K", object({{"identifier", quoted("R")}})}}));
    ScanContext context;
    context.home = mac.home.path();
    context.now = now();

    EXPECT_THAT(SimulatorProvider().items(context), IsEmpty());
    EXPECT_THAT(testing::BoxMac::calls(), Not(Contains(StartsWith("xcrun"))));
}

// What the tool is asked

TEST_F(SimulatorRulesTests, asksForDevicesAndThenForRuntimes) {
    devices({});
    runtimes({});

    EXPECT_THAT(items(), IsEmpty());
    EXPECT_THAT(testing::BoxMac::calls(), ElementsAre("xcode-select -p", "xcrun simctl list devices -j",
                                                      "xcrun simctl runtime list -j"));
}

TEST_F(SimulatorRulesTests, aFailedDeviceListLeavesTheRuntimesAloneToo) {
    answerDevices(object({{"devices", object({{runtime17, list({device("A")})}})}}), 1);
    idleRuntime();

    EXPECT_THAT(items(), IsEmpty());
    EXPECT_THAT(testing::BoxMac::calls(), Not(Contains(StartsWith("xcrun simctl runtime"))));
}

TEST_F(SimulatorRulesTests, aDeviceListThatDoesNotDecodeLeavesTheRuntimesAloneToo) {
    const auto good = device("A");
    const auto with = [&](const std::string& bad) {
        return object({{"devices", object({{runtime17, list({good, bad})}})}});
    };
    const std::vector<std::string> documents = {
        "",
        "no json",
        "[]",
        "{}",
        R"({"devices": []})",
        R"({"devices": null})",
        R"({"devices": {"a.b": {}}})",
        R"({"devices": {"a.b": [1]}})",
        with("{}"),
        with(device("B", {{"udid", ""}})),
        with(device("B", {{"name", ""}})),
        with(device("B", {{"state", ""}})),
        with(device("B", {{"udid", "null"}})),
        with(device("B", {{"name", "5"}})),
        with(device("B", {{"state", "true"}})),
        with(device("B", {{"isAvailable", "\"YES\""}})),
        with(device("B", {{"isAvailable", "1"}})),
        with(device("B", {{"dataPath", "[]"}})),
        with(device("B", {{"dataPathSize", "\"5\""}})),
        with(device("B", {{"dataPathSize", "5.5"}})),
        with(device("B", {{"dataPathSize", "9223372036854775808"}})),
        with(device("B", {{"lastUsedAt", "1700000000"}})),
        with(device("B", {{"availabilityError", "5"}})),
    };
    idleRuntime();
    for (const auto& document : documents) {
        answerDevices(document);

        EXPECT_THAT(titles(items()), IsEmpty()) << document;
    }
    EXPECT_THAT(testing::BoxMac::calls(), Not(Contains(StartsWith("xcrun simctl runtime"))));
}

TEST_F(SimulatorRulesTests, optionalFieldsMayBeAbsentOrNullAndUnknownOnesMayStand) {
    devices({device("A", {{"isAvailable", ""}, {"dataPath", "null"}, {"dataPathSize", ""}}),
             device("B", {{"isAvailable", "null"},
                          {"lastUsedAt", "null"},
                          {"availabilityError", "null"},
                          {"dataPathSize", "50000000.0"},
                          {"logPath", "7"}}),
             device("C", {{"availabilityError", quoted("runtime profile not found")}})});
    answerRuntimes("");

    EXPECT_THAT(paths(items()), ElementsAre(folder + "B", folder + "C"));
}

TEST_F(SimulatorRulesTests, aRuntimeWithoutDevicesHasNone) {
    answerDevices(R"({"devices": {"a.b-1": [], "a.c-2": []}, "more": 1})");
    answerRuntimes("{\n\n}");

    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(SimulatorRulesTests, aFailedRuntimeListLeavesTheDevices) {
    devices({device("A")});
    answerRuntimes(object({{"K", object({{"identifier", quoted("R")}})}}), 1);

    EXPECT_THAT(paths(items()), ElementsAre(folder + "A"));
}

TEST_F(SimulatorRulesTests, aRuntimeListThatDoesNotDecodeLeavesTheDevices) {
    devices({device("A")});
    const auto with = [](const std::string& bad) {
        return object({{"K", object({{"identifier", quoted("R")}})}, {"L", bad}});
    };
    for (const auto& document :
         {std::string("no json"), std::string("[]"), with("5"), with("{}"), with(R"({"identifier": 5})"),
          with(R"({"identifier": "R", "version": 17})"), with(R"({"identifier": "R", "build": 21})"),
          with(R"({"identifier": "R", "sizeBytes": "5"})"), with(R"({"identifier": "R", "sizeBytes": 5.5})"),
          with(R"({"identifier": "R", "lastUsedAt": 5})"), with(R"({"identifier": "R", "deletable": 1})"),
          with(R"({"identifier": "R", "runtimeIdentifier": []})"),
          with(R"({"identifier": "R", "path": {}})")}) {
        answerRuntimes(document);

        EXPECT_THAT(paths(items()), ElementsAre(folder + "A")) << document;
    }
}

TEST_F(SimulatorRulesTests, showsDevicesBeforeRuntimes) {
    devices({device("A")});
    idleRuntime();

    EXPECT_THAT(paths(items()), ElementsAre(folder + "A", "runtime:ID"));
}

// Devices

TEST_F(SimulatorRulesTests, aUsedDeviceMayBeReset) {
    const auto used = ago(40, 5);
    devices({device("A1", {{"lastUsedAt", at(used)}, {"dataPathSize", "123456789"}})});

    EXPECT_EQ(item(), (CleanupItem{.title = "iPhone 15 · iOS 17.2",
                                   .detail = lastUsedText(used) + resetText,
                                   .path = folder + "A1",
                                   .bytes = 123'456'789,
                                   .category = ItemCategory::simulators,
                                   .safety = Safety::regenerable,
                                   .action = CleanupAction::simulatorErase("A1"),
                                   .recommended = true,
                                   .lastActivity = used,
                                   .offloadable = false,
                                   .warnings = {},
                                   .relatedPaths = std::nullopt}));
}

TEST_F(SimulatorRulesTests, aDeviceThatWasNeverUsedMayBeResetAndIsRecommended) {
    devices({device("A1")});

    const auto found = item();

    EXPECT_EQ(found.detail, "Belum pernah dijalankan." + resetText);
    EXPECT_TRUE(found.recommended);
    EXPECT_EQ(found.lastActivity, std::nullopt);
}

TEST_F(SimulatorRulesTests, aDeviceIsRecommendedAfterMoreThanThirtyDays) {
    devices({device("A", {{"lastUsedAt", at(ago(30, day - 1))}}), device("B", {{"lastUsedAt", at(ago(31))}}),
             device("C", {{"lastUsedAt", at(ago(30))}}), device("D", {{"lastUsedAt", at(ago(-100))}})});

    const auto found = items();

    ASSERT_THAT(paths(found), ElementsAre(folder + "A", folder + "B", folder + "C", folder + "D"));
    EXPECT_FALSE(found[0].recommended);
    EXPECT_TRUE(found[1].recommended);
    EXPECT_FALSE(found[2].recommended);
    EXPECT_FALSE(found[3].recommended);
    EXPECT_EQ(found[3].detail, lastUsedText(ago(-100)) + resetText);
}

TEST_F(SimulatorRulesTests, aDeviceWithoutItsRuntimeMayBeDeleted) {
    devices({device("A1", {{"isAvailable", "false"}, {"lastUsedAt", at(ago(1))}})});

    EXPECT_EQ(item(), (CleanupItem{.title = "iPhone 15 · iOS 17.2",
                                   .detail = goneText,
                                   .path = folder + "A1",
                                   .bytes = 100'000'000,
                                   .category = ItemCategory::simulators,
                                   .safety = Safety::regenerable,
                                   .action = CleanupAction::simulatorDelete("A1"),
                                   .recommended = true,
                                   .lastActivity = ago(1),
                                   .offloadable = false,
                                   .warnings = {},
                                   .relatedPaths = std::nullopt}));
}

TEST_F(SimulatorRulesTests, aBootedDeviceIsKeptWhetherAvailableOrNot) {
    devices({device("A", {{"state", quoted("Booted")}, {"lastUsedAt", at(ago(40))}}),
             device("B", {{"state", quoted("Booted")}, {"isAvailable", "false"}, {"dataPathSize", "0"}})});

    const auto found = items();

    ASSERT_THAT(found, SizeIs(2));
    EXPECT_EQ(found[0],
              (CleanupItem{.title = "iPhone 15 · iOS 17.2",
                           .detail = "Sedang berjalan. " + lastUsedText(ago(40)),
                           .path = folder + "A",
                           .bytes = 100'000'000,
                           .category = ItemCategory::simulators,
                           .safety = Safety::keep,
                           .action = CleanupAction::manual("Matikan simulator dulu bila ingin di-reset."),
                           .recommended = false,
                           .lastActivity = ago(40),
                           .offloadable = false,
                           .warnings = {},
                           .relatedPaths = std::nullopt}));
    EXPECT_EQ(found[1].detail, "Sedang berjalan. Belum pernah dijalankan.");
    EXPECT_EQ(found[1].safety, Safety::keep);
    EXPECT_EQ(found[1].action.kind, CleanupAction::Kind::manual);
    EXPECT_EQ(found[1].bytes, 0);
}

TEST_F(SimulatorRulesTests, aSmallBootedDeviceThatIsAvailableIsNotShown) {
    devices({device("A", {{"state", quoted("Booted")}, {"dataPathSize", "49999999"}})});

    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(SimulatorRulesTests, onlyTheStateBootedMeansThatADeviceRuns) {
    devices({device("A", {{"state", quoted("booted")}}), device("B", {{"state", quoted("Booting")}}),
             device("C", {{"state", quoted("")}})});

    const auto found = items();

    ASSERT_THAT(found, SizeIs(3));
    for (const auto& item : found)
        EXPECT_EQ(item.action.kind, CleanupAction::Kind::simulatorErase) << item.path;
}

TEST_F(SimulatorRulesTests, aDeviceThatSaysNothingOfItIsAvailable) {
    devices({device("A", {{"isAvailable", ""}}), device("B", {{"isAvailable", ""}, {"dataPathSize", "1"}})});

    EXPECT_EQ(item().action, CleanupAction::simulatorErase("A"));
}

TEST_F(SimulatorRulesTests, anAvailableDeviceNeeds50MB) {
    devices({device("A", {{"dataPathSize", "49999999"}}), device("B", {{"dataPathSize", "50000000"}})});

    EXPECT_THAT(paths(items()), ElementsAre(folder + "B"));
}

TEST_F(SimulatorRulesTests, anUnavailableDeviceHasNoMinimum) {
    devices({device("A", {{"isAvailable", "false"}, {"dataPathSize", "1"}}),
             device("B", {{"isAvailable", "false"}, {"dataPathSize", "0"}}),
             device("C", {{"isAvailable", "false"}, {"dataPathSize", ""}})});

    const auto found = items();

    ASSERT_THAT(paths(found), ElementsAre(folder + "A", folder + "B", folder + "C"));
    EXPECT_EQ(found[0].bytes, 1);
    EXPECT_EQ(found[1].bytes, 0);
    EXPECT_EQ(found[2].bytes, 0);
}

TEST_F(SimulatorRulesTests, aDeviceWithoutAFolderIsNotShown) {
    devices({device("A", {{"dataPath", ""}}), device("B", {{"dataPath", ""}, {"isAvailable", "false"}}),
             device("C", {{"dataPath", ""}, {"state", quoted("Booted")}})});

    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(SimulatorRulesTests, theFolderOfADeviceIsTheParentOfItsData) {
    devices({device("A", {{"dataPath", quoted("/Volumes/Luar/Perangkat/A/data/")}}),
             device("B", {{"dataPath", quoted("/Volumes/Luar/B b/isi")}})});

    EXPECT_THAT(paths(items()), ElementsAre("/Volumes/Luar/Perangkat/A", "/Volumes/Luar/B b"));
}

TEST_F(SimulatorRulesTests, measuresTheWholeFolderOfADeviceWhoseSizeIsNotTold) {
    const std::string devicesFolder = "Library/Developer/CoreSimulator/Devices/";
    mac.home.file(devicesFolder + "A/data/a", {.allocatedBytes = 30 * 4096});
    mac.home.file(devicesFolder + "A/data/._b", {.allocatedBytes = 4096});
    mac.home.file(devicesFolder + "A/device.plist", {.allocatedBytes = sizeFrom(50 * MB) - 31 * 4096});
    mac.home.file(devicesFolder + "B/data/a", {.allocatedBytes = sizeBelow(50 * MB)});
    devices({device("A", {{"dataPathSize", ""}}), device("B", {{"dataPathSize", "null"}})});

    const auto found = item();

    EXPECT_EQ(found.path, folder + "A");
    EXPECT_EQ(found.bytes, sizeFrom(50 * MB));
    EXPECT_EQ(found.lastActivity, std::nullopt);
    EXPECT_EQ(found.detail, "Belum pernah dijalankan." + resetText);
}

TEST_F(SimulatorRulesTests, believesTheSizeThatIsTold) {
    mac.home.file("Library/Developer/CoreSimulator/Devices/A/data/a", {.allocatedBytes = sizeFrom(50 * MB)});
    devices({device("A", {{"dataPathSize", "0"}}), device("B", {{"dataPathSize", "70000000"}})});

    const auto found = item();

    EXPECT_EQ(found.path, folder + "B");
    EXPECT_EQ(found.bytes, 70 * MB);
}

// The name of a runtime in the title

TEST_F(SimulatorRulesTests, namesTheRuntimeByTheLastPartOfItsIdentifier) {
    const std::vector<std::pair<std::string, std::string>> names = {
        {"com.apple.CoreSimulator.SimRuntime.iOS-17-2", "iOS 17.2"},
        {"com.apple.CoreSimulator.SimRuntime.watchOS-10", "watchOS 10"},
        {"com.apple.CoreSimulator.SimRuntime.xrOS-1-0-2", "xrOS 1.0.2"},
        {"com.apple.CoreSimulator.SimRuntime.tvOS--17---4", "tvOS 17.4"},
        {"a.-iOS-17-", "iOS 17"},
        {"com.apple-x.Khusus", "Khusus "},
        {"com.apple.---", "---"},
        {"", ""},
    };
    for (const auto& [identifier, name] : names) {
        devices({device("A", {{"name", quoted("Uji")}})}, identifier);

        EXPECT_EQ(item().title, "Uji · " + name) << identifier;
    }
}

// Instants

TEST_F(SimulatorRulesTests, readsInstantsWithAZone) {
    for (const std::string text :
         {"2025-05-01T10:20:30Z", "2025-05-01T10:20:30z", "2025-05-01T17:20:30+07:00",
          "2025-05-01T17:20:30+0700", "2025-05-01T17:20:30+07", "2025-05-01T08:50:30-01:30"}) {
        devices({device("A", {{"lastUsedAt", quoted(text)}})});

        EXPECT_EQ(item().lastActivity, instantFromSeconds(1'746'094'830)) << text;
    }
}

TEST_F(SimulatorRulesTests, aTextThatIsNoInstantCountsAsNone) {
    for (const std::string text :
         {"", "kemarin", "2025-05-01T10:20:30", "2025-05-01 10:20:30Z", "2025-05-01t10:20:30Z",
          "2025-05-01T10:20:30.123Z", "2025-05-01T10:20:30.5+07:00", "2025-5-1T10:20:30Z",
          "2025-05-01T24:00:00Z", "2025-05-01T10:20:60Z", "2025-02-30T10:20:30Z", "2025-13-01T10:20:30Z",
          "20250501T102030Z", "2025-05-01", "2025-05-01T10:20Z"}) {
        devices({device("A", {{"lastUsedAt", quoted(text)}})});

        const auto found = item();

        EXPECT_EQ(found.lastActivity, std::nullopt) << text;
        EXPECT_EQ(found.detail, "Belum pernah dijalankan." + resetText) << text;
    }
}

TEST_F(SimulatorRulesTests, aDeviceWithABadInstantDoesNotKeepItsRuntimeInUse) {
    devices({device("A", {{"lastUsedAt", quoted("2025-06-15T10:00:00.000Z")}})});
    idleRuntime();

    EXPECT_EQ(runtimeSafety(), Safety::costly);
}

// Runtimes

TEST_F(SimulatorRulesTests, aRuntimeThatNoDeviceUsedMayBeDeleted) {
    devices({});
    runtimes({{{"identifier", quoted("0A1B")},
               {"version", quoted("17.2")},
               {"build", quoted("21C62")},
               {"sizeBytes", "7654321098"},
               {"lastUsedAt", at(ago(1))},
               {"deletable", "true"},
               {"runtimeIdentifier", quoted(runtime17)},
               {"path", quoted("/System/Library/AssetsV2/ios.dmg")},
               {"state", quoted("Ready")}}});

    EXPECT_EQ(item(), (CleanupItem{.title = "Runtime iOS 17.2 (21C62)",
                                   .detail = unusedText,
                                   .path = "/System/Library/AssetsV2/ios.dmg",
                                   .bytes = 7'654'321'098,
                                   .category = ItemCategory::simulators,
                                   .safety = Safety::costly,
                                   .action = CleanupAction::simulatorRuntimeDelete("0A1B"),
                                   .recommended = false,
                                   .lastActivity = ago(1),
                                   .offloadable = false,
                                   .warnings = {},
                                   .relatedPaths = std::nullopt}));
}

TEST_F(SimulatorRulesTests, aRuntimeThatADeviceUsedIsManaged) {
    devices({device("A", {{"dataPath", ""}, {"lastUsedAt", at(ago(10))}})});
    runtimes({{{"identifier", quoted("0A1B")},
               {"runtimeIdentifier", quoted(runtime17)},
               {"sizeBytes", "5"},
               {"lastUsedAt", at(ago(500))}}});

    EXPECT_EQ(item(), (CleanupItem{.title = "Runtime iOS 17.2 (?)",
                                   .detail = usedText,
                                   .path = "runtime:0A1B",
                                   .bytes = 5,
                                   .category = ItemCategory::simulators,
                                   .safety = Safety::managed,
                                   .action = CleanupAction::manual(
                                       "Xcode › Settings › Components untuk mengelola runtime."),
                                   .recommended = false,
                                   .lastActivity = ago(500),
                                   .offloadable = false,
                                   .warnings = {},
                                   .relatedPaths = std::nullopt}));
}

TEST_F(SimulatorRulesTests, aRuntimeThatCannotBeDeletedIsManagedWithTheSameText) {
    devices({});
    runtimes({{{"identifier", quoted("R")}, {"deletable", "false"}}});

    const auto found = item();

    EXPECT_EQ(found.safety, Safety::managed);
    EXPECT_EQ(found.detail, usedText);
    EXPECT_EQ(found.action, CleanupAction::manual("Xcode › Settings › Components untuk mengelola runtime."));
}

TEST_F(SimulatorRulesTests, aRuntimeThatTellsNothingIsShownAllTheSame) {
    devices({});
    runtimes({{{"identifier", quoted("R")}}});

    EXPECT_EQ(item(), (CleanupItem{.title = "Runtime simulator (?)",
                                   .detail = unusedText,
                                   .path = "runtime:R",
                                   .bytes = 0,
                                   .category = ItemCategory::simulators,
                                   .safety = Safety::costly,
                                   .action = CleanupAction::simulatorRuntimeDelete("R"),
                                   .recommended = false,
                                   .lastActivity = std::nullopt,
                                   .offloadable = false,
                                   .warnings = {},
                                   .relatedPaths = std::nullopt}));
}

TEST_F(SimulatorRulesTests, aRuntimeIsCalledByItsIdentifierThenItsVersion) {
    devices({});
    runtimes({{{"identifier", quoted("A")},
               {"version", quoted("17.2")},
               {"runtimeIdentifier", quoted("a.b.visionOS-1-0")}}});
    EXPECT_EQ(item().title, "Runtime visionOS 1.0 (?)");

    runtimes({{{"identifier", quoted("A")}, {"version", quoted("17.2")}, {"runtimeIdentifier", "null"}}});
    EXPECT_EQ(item().title, "Runtime 17.2 (?)");

    runtimes({{{"identifier", quoted("A")}, {"runtimeIdentifier", quoted("a.b.Khusus")}}});
    EXPECT_EQ(item().title, "Runtime Khusus  (?)");
}

TEST_F(SimulatorRulesTests, aRuntimeIsInUseForSixtyDays) {
    idleRuntime();
    const auto safety = [&](Instant lastUsed) {
        devices({device("A", {{"lastUsedAt", at(lastUsed)}})});
        return runtimeSafety();
    };

    EXPECT_EQ(safety(ago(60)), Safety::managed);
    EXPECT_EQ(safety(ago(60, day - 1)), Safety::managed);
    EXPECT_EQ(safety(ago(61)), Safety::costly);
    EXPECT_EQ(safety(ago(-10)), Safety::managed);
}

TEST_F(SimulatorRulesTests, aDeviceThatWasNeverUsedDoesNotKeepItsRuntimeInUse) {
    devices({device("A")});
    idleRuntime();

    EXPECT_EQ(runtimeSafety(), Safety::costly);
}

TEST_F(SimulatorRulesTests, anUnavailableDeviceDoesNotKeepItsRuntimeInUse) {
    devices({device("A", {{"isAvailable", "false"}, {"lastUsedAt", at(ago(1))}})});
    idleRuntime();

    EXPECT_EQ(runtimeSafety(), Safety::costly);
}

TEST_F(SimulatorRulesTests, aDeviceThatIsNotShownKeepsItsRuntimeInUse) {
    idleRuntime();
    devices({device("A", {{"lastUsedAt", at(ago(1))}, {"dataPathSize", "49999999"}})});
    EXPECT_EQ(item().safety, Safety::managed);

    devices({device("A", {{"lastUsedAt", at(ago(1))}, {"isAvailable", ""}, {"dataPath", ""}})});
    EXPECT_EQ(item().safety, Safety::managed);
}

TEST_F(SimulatorRulesTests, oneUsedDeviceAmongManyKeepsTheRuntimeInUse) {
    devices({device("A", {{"lastUsedAt", at(ago(100))}}), device("B", {{"lastUsedAt", at(ago(2))}}),
             device("C")});
    idleRuntime();

    EXPECT_EQ(runtimeSafety(), Safety::managed);
}

TEST_F(SimulatorRulesTests, aDeviceKeepsOnlyItsOwnRuntimeInUse) {
    devices({device("A", {{"lastUsedAt", at(ago(1))}})}, "other.iOS-17-2");
    idleRuntime();
    EXPECT_EQ(runtimeSafety(), Safety::costly);

    runtimes({{{"identifier", quoted("other.iOS-17-2")}}});
    EXPECT_EQ(runtimeSafety(), Safety::costly);
}

TEST_F(SimulatorRulesTests, judgesEachOfManyRuntimes) {
    const std::string runtime16 = "com.apple.CoreSimulator.SimRuntime.iOS-16-4";
    answerDevices(
        object({{"devices", object({{runtime16, list({device("A", {{"lastUsedAt", at(ago(90))}})})},
                                    {runtime17, list({device("B", {{"lastUsedAt", at(ago(5))}})})}})}}));
    runtimes({{{"identifier", quoted("R16")}, {"runtimeIdentifier", quoted(runtime16)}},
              {{"identifier", quoted("R17")}, {"runtimeIdentifier", quoted(runtime17)}},
              {{"identifier", quoted("R17b")}, {"runtimeIdentifier", quoted(runtime17)}}});

    auto found = items();

    std::ranges::sort(found, {}, &CleanupItem::path);
    ASSERT_THAT(paths(found),
                ElementsAre(folder + "A", folder + "B", "runtime:R16", "runtime:R17", "runtime:R17b"));
    EXPECT_EQ(found[0].title, "iPhone 15 · iOS 16.4");
    EXPECT_EQ(found[1].title, "iPhone 15 · iOS 17.2");
    EXPECT_EQ(found[2].safety, Safety::costly);
    EXPECT_EQ(found[3].safety, Safety::managed);
    EXPECT_EQ(found[4].safety, Safety::managed);
}

} // namespace
} // namespace korvanti
