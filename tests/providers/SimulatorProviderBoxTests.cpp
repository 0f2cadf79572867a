#include "providers/SimulatorProvider.h"

#include "support/BoxFolder.h"
#include "support/Items.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace korvanti {
namespace {

using std::chrono::days;
using std::chrono::hours;
using std::chrono::seconds;
using testing::BoxMac;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using testing::titles;

constexpr std::int64_t block = 4096;
constexpr std::int64_t justBelow50MB = 50'000'000 / block * block;
constexpr std::int64_t justAbove50MB = justBelow50MB + block;

const std::string ios17 = "com.apple.CoreSimulator.SimRuntime.iOS-17-2";
const Instant now = instantFromSeconds(1'794'768'179); // 2026-11-15T18:42:59Z

/// `"lastUsedAt":"…"`
std::string usedBefore(seconds duration) {
    return R"("lastUsedAt":")" + iso8601Text(now - duration) + "\"";
}

/// A device of 50,000,000 bytes that was never used; `fields` are set over this.
std::string device(const std::string& fields = "") {
    return "{" + fields + (fields.empty() ? "" : ",") +
           R"("udid":"U-1","name":"iPhone 15","state":"Shutdown","dataPath":"/sims/U-1/data",)"
           R"("dataPathSize":50000000})";
}

std::string devicesOf(const std::string& runtime, const std::string& devices) {
    return R"({"devices":{")" + runtime + R"(":[)" + devices + "]}}";
}

/// A runtime of iOS 17.2; `fields` are set over this.
std::string runtime(const std::string& fields = "") {
    return R"({"key":{)" + fields + (fields.empty() ? "" : ",") +
           R"("identifier":"R-1","version":"17.2","build":"21C62","sizeBytes":7000000000,)"
           R"("runtimeIdentifier":")" +
           ios17 + R"(","path":"/images/R-1.dmg"}})";
}

class SimulatorProviderBoxTests : public ::testing::Test {
protected:
    SimulatorProviderBoxTests() {
        const auto xcode = mac.applications.folder("Xcode.app/Contents/Developer");
        mac.answer("xcode-select -p", xcode + "\n");
        context.home = mac.home.path();
        context.now = now;
    }

    void answerDevices(const std::string& json, int status = 0) const {
        mac.answer("xcrun simctl list devices -j", json, status);
    }
    void answerRuntimes(const std::string& json, int status = 0) const {
        mac.answer("xcrun simctl runtime list -j", json, status);
    }

    [[nodiscard]] std::vector<CleanupItem> items() const {
        return testing::itemsOfOneScan(SimulatorProvider(), context);
    }

    /// The items of one device with these fields.
    [[nodiscard]] std::vector<CleanupItem> itemsOfDevice(const std::string& fields = "") const {
        answerDevices(devicesOf(ios17, device(fields)));
        return items();
    }
    /// The only item of one device with these fields.
    [[nodiscard]] CleanupItem itemOfDevice(const std::string& fields = "") const {
        const auto found = itemsOfDevice(fields);
        EXPECT_THAT(found, SizeIs(1)) << fields;
        return found.empty() ? CleanupItem{} : found.front();
    }
    /// The only item of one runtime with these fields, where no device gives an item.
    [[nodiscard]] CleanupItem itemOfRuntime(const std::string& fields = "",
                                            const std::string& devices = R"({"devices":{}})") const {
        answerDevices(devices);
        answerRuntimes(runtime(fields));
        const auto found = items();
        EXPECT_THAT(found, SizeIs(1)) << fields;
        return found.empty() ? CleanupItem{} : found.front();
    }
    /// Whether a device with these fields, too small for an item, keeps its runtime in use.
    [[nodiscard]] bool keepsItsRuntime(const std::string& fields) const {
        const auto small = R"("dataPathSize":1,)" + fields;
        return itemOfRuntime("", devicesOf(ios17, device(small))).safety == Safety::managed;
    }

    BoxMac mac;
    ScanContext context;
};

TEST_F(SimulatorProviderBoxTests, asksTheToolForDevicesAndThenForRuntimes) {
    answerDevices(devicesOf(ios17, device()));
    answerRuntimes(runtime());

    EXPECT_THAT(titles(items()), ElementsAre("iPhone 15 · iOS 17.2", "Runtime iOS 17.2 (21C62)"));
    EXPECT_THAT(BoxMac::calls(), ElementsAre("xcode-select -p", "xcrun simctl list devices -j",
                                             "xcrun simctl runtime list -j"));
}

TEST_F(SimulatorProviderBoxTests, readsWhatTheToolReallySays) {
    const auto sample = [](const std::string& name) {
        return testing::textOf(std::string(KORVANTI_TEST_DATA) + "/" + name);
    };
    answerDevices(sample("simctl-devices.json"));
    answerRuntimes(sample("simctl-runtimes.json"));

    const auto found = items();

    EXPECT_THAT(titles(found), ElementsAre("iPhone 14 · iOS 16.4", "iPad (10th generation) · iOS 16.4",
                                           "iPhone 15 Pro · iOS 17.5", "Runtime iOS 17.5 (21F79)",
                                           "Runtime iOS 16.4 (20E247)", "Runtime watchOS 10.5 (21T569)"));
    ASSERT_THAT(found, SizeIs(6));
    EXPECT_EQ(found[0].path,
              "/Users/budi/Library/Developer/CoreSimulator/Devices/0B7E1E0A-6C55-4B3F-9F0D-5D1C2F7A8E01");
    EXPECT_EQ(found[0].action, CleanupAction::simulatorDelete("0B7E1E0A-6C55-4B3F-9F0D-5D1C2F7A8E01"));
    EXPECT_EQ(found[1].bytes, 13'340'672);
    EXPECT_EQ(found[2].safety, Safety::keep);
    EXPECT_EQ(found[3].safety, Safety::costly);
    EXPECT_EQ(found[3].lastActivity, instantFromIso8601("2025-05-30T08:41:55Z"));
    EXPECT_EQ(found[5].safety, Safety::managed);
}

// What fails

TEST_F(SimulatorProviderBoxTests, asksNothingWithoutAnXcode) {
    std::filesystem::remove_all(mac.applications.path("Xcode.app"));
    mac.answer("xcode-select -p", "/Library/Developer/CommandLineTools\n");
    answerDevices(devicesOf(ios17, device()));
    answerRuntimes(runtime());

    EXPECT_THAT(items(), IsEmpty());
    EXPECT_THAT(BoxMac::calls(), ElementsAre("xcode-select -p"));
}

TEST_F(SimulatorProviderBoxTests, yieldsNoRuntimesEitherWhenTheDevicesFail) {
    answerDevices(devicesOf(ios17, device()), 1);
    answerRuntimes(runtime());

    EXPECT_THAT(items(), IsEmpty());
    EXPECT_THAT(BoxMac::calls(), ElementsAre("xcode-select -p", "xcrun simctl list devices -j"));
}

TEST_F(SimulatorProviderBoxTests, yieldsNoRuntimesEitherWhenTheDevicesAreNotAsExpected) {
    answerRuntimes(runtime());
    for (const std::string& text : {std::string(), std::string("No devices are booted."), std::string("[]"),
                                    devicesOf(ios17, device() + R"(,{"udid":"U-2","state":"Shutdown"})"),
                                    devicesOf(ios17, device() + "," + device(R"("dataPathSize":1.5)")),
                                    devicesOf(ios17, device()) + "x"}) {
        answerDevices(text);
        EXPECT_THAT(items(), IsEmpty()) << text;
    }
}

TEST_F(SimulatorProviderBoxTests, keepsTheDevicesWhenTheRuntimesFail) {
    answerDevices(devicesOf(ios17, device()));
    answerRuntimes(runtime(), 72);

    EXPECT_THAT(titles(items()), ElementsAre("iPhone 15 · iOS 17.2"));
}

TEST_F(SimulatorProviderBoxTests, keepsTheDevicesWhenTheRuntimesAreNotAsExpected) {
    answerDevices(devicesOf(ios17, device()));
    for (const std::string& text : {std::string(), std::string("[]"), std::string(R"({"key":{}})"),
                                    runtime(R"("sizeBytes":"7")"), runtime(R"("deletable":1)")}) {
        answerRuntimes(text);
        EXPECT_THAT(titles(items()), ElementsAre("iPhone 15 · iOS 17.2")) << text;
    }
}

TEST_F(SimulatorProviderBoxTests, yieldsNothingWhenTheToolIsEnded) {
    mac.answerWithScript("xcrun simctl list devices -j",
                         "echo '" + devicesOf(ios17, device()) + "'\nkill $$");

    EXPECT_THAT(items(), IsEmpty());
}

// Devices

TEST_F(SimulatorProviderBoxTests, offersToResetADevice) {
    EXPECT_EQ(itemOfDevice(usedBefore(days(2))),
              (CleanupItem{.title = "iPhone 15 · iOS 17.2",
                           .detail = "Terakhir dipakai 2 hari yang lalu. Reset mengembalikan simulator ke "
                                     "kondisi baru: app uji & datanya hilang, simulatornya tetap ada.",
                           .path = "/sims/U-1",
                           .bytes = 50'000'000,
                           .category = ItemCategory::simulators,
                           .safety = Safety::regenerable,
                           .action = CleanupAction::simulatorErase("U-1"),
                           .recommended = false,
                           .lastActivity = now - days(2)}));
}

TEST_F(SimulatorProviderBoxTests, recommendsToResetADeviceThatWasNeverUsed) {
    const auto item = itemOfDevice();

    EXPECT_EQ(item.detail,
              "Belum pernah dijalankan. Reset mengembalikan simulator ke kondisi baru: app uji & "
              "datanya hilang, simulatornya tetap ada.");
    EXPECT_EQ(item.lastActivity, std::nullopt);
    EXPECT_TRUE(item.recommended);
}

TEST_F(SimulatorProviderBoxTests, recommendsToResetADeviceAfterMoreThanThirtyWholeDays) {
    EXPECT_FALSE(itemOfDevice(usedBefore(days(30))).recommended);
    EXPECT_FALSE(itemOfDevice(usedBefore(days(31) - seconds(1))).recommended);
    EXPECT_TRUE(itemOfDevice(usedBefore(days(31))).recommended);
    EXPECT_FALSE(itemOfDevice(usedBefore(-days(400))).recommended);
}

TEST_F(SimulatorProviderBoxTests, takesADateThatCannotBeReadForNone) {
    for (const char* text :
         {"2026-11-13T18:42:59.000Z", "2026-11-13", "2026-02-30T00:00:00Z", "kemarin", ""}) {
        const auto item = itemOfDevice(R"("lastUsedAt":")" + std::string(text) + "\"");
        EXPECT_EQ(item.lastActivity, std::nullopt) << text;
        EXPECT_TRUE(item.detail.starts_with("Belum pernah dijalankan. ")) << text;
        EXPECT_TRUE(item.recommended) << text;
    }
}

TEST_F(SimulatorProviderBoxTests, offersToDeleteADeviceWhoseRuntimeIsGone) {
    EXPECT_EQ(
        itemOfDevice(R"("isAvailable":false,"name":"iPhone 14",)" + usedBefore(days(2))),
        (CleanupItem{.title = "iPhone 14 · iOS 17.2",
                     .detail = "Runtime-nya sudah tidak terpasang, simulator ini tidak bisa dipakai lagi.",
                     .path = "/sims/U-1",
                     .bytes = 50'000'000,
                     .category = ItemCategory::simulators,
                     .safety = Safety::regenerable,
                     .action = CleanupAction::simulatorDelete("U-1"),
                     .recommended = true,
                     .lastActivity = now - days(2)}));
}

TEST_F(SimulatorProviderBoxTests, keepsADeviceThatRunsWhetherAvailableOrNot) {
    for (const std::string isAvailable : {"true", "false", "null"}) {
        EXPECT_EQ(
            itemOfDevice(R"("state":"Booted","isAvailable":)" + isAvailable + "," + usedBefore(hours(3))),
            (CleanupItem{.title = "iPhone 15 · iOS 17.2",
                         .detail = "Sedang berjalan. Terakhir dipakai 3 jam yang lalu.",
                         .path = "/sims/U-1",
                         .bytes = 50'000'000,
                         .category = ItemCategory::simulators,
                         .safety = Safety::keep,
                         .action = CleanupAction::manual("Matikan simulator dulu bila ingin di-reset."),
                         .lastActivity = now - hours(3)}));
    }
    EXPECT_EQ(itemOfDevice(R"("state":"Booted")").detail, "Sedang berjalan. Belum pernah dijalankan.");
}

TEST_F(SimulatorProviderBoxTests, takesEveryOtherStateForNotRunning) {
    for (const std::string state : {"Booting", "booted", "Shutting Down", ""})
        EXPECT_EQ(itemOfDevice(R"("state":")" + state + "\"").safety, Safety::regenerable) << state;
}

TEST_F(SimulatorProviderBoxTests, takesADeviceForAvailableUnlessToldOtherwise) {
    EXPECT_EQ(itemOfDevice(R"("isAvailable":null)").action, CleanupAction::simulatorErase("U-1"));
    EXPECT_EQ(itemOfDevice(R"("isAvailable":true)").action, CleanupAction::simulatorErase("U-1"));
    EXPECT_EQ(itemOfDevice(R"("isAvailable":false)").action, CleanupAction::simulatorDelete("U-1"));
}

TEST_F(SimulatorProviderBoxTests, showsAnAvailableDeviceOf50MBAndHidesASmallerOne) {
    EXPECT_THAT(itemsOfDevice(R"("dataPathSize":50000000)"), SizeIs(1));
    EXPECT_THAT(itemsOfDevice(R"("dataPathSize":49999999)"), IsEmpty());
    EXPECT_THAT(itemsOfDevice(R"("state":"Booted","dataPathSize":49999999)"), IsEmpty());
    EXPECT_THAT(itemsOfDevice(R"("dataPathSize":-9223372036854775808)"), IsEmpty());
}

TEST_F(SimulatorProviderBoxTests, showsAnUnavailableDeviceOfAnySize) {
    for (const std::int64_t bytes : {std::int64_t{1}, std::int64_t{0}, std::int64_t{1'000'000'000'000'000}}) {
        const auto item = itemOfDevice(R"("isAvailable":false,"dataPathSize":)" + std::to_string(bytes));
        EXPECT_EQ(item.bytes, bytes);
        EXPECT_EQ(item.action, CleanupAction::simulatorDelete("U-1"));
    }
}

TEST_F(SimulatorProviderBoxTests, aSizeThatNoDiskHasCountsAsNotTold) {
    const std::string sizes[] = {"-1", "1000000000000001", "9223372036854775807"};
    for (const auto& size : sizes)
        EXPECT_EQ(itemOfDevice(R"("isAvailable":false,"dataPathSize":)" + size).bytes, 0);
    for (const auto& size : sizes)
        EXPECT_EQ(itemOfRuntime(R"("sizeBytes":)" + size).bytes, 0);
}

TEST_F(SimulatorProviderBoxTests, measuresTheFolderOfADeviceWhoseSizeIsNotKnown) {
    const auto folder = mac.home.folder("Devices/U-1");
    const auto fields = R"("dataPathSize":null,"dataPath":")" + folder + "/data\"";
    mac.home.file("Devices/U-1/data/._app", {.allocatedBytes = justBelow50MB, .modified = 1'700'000'000});

    EXPECT_THAT(itemsOfDevice(fields), IsEmpty());

    mac.home.file("Devices/U-1/device.plist", {.allocatedBytes = block, .modified = 1'700'000'000});
    const auto item = itemOfDevice(fields);
    EXPECT_EQ(item.path, folder);
    EXPECT_EQ(item.bytes, justAbove50MB);
    EXPECT_EQ(item.lastActivity, std::nullopt);
}

TEST_F(SimulatorProviderBoxTests, believesTheToolWhereItKnowsTheSize) {
    const auto path = R"("dataPath":")" + mac.home.folder("Devices/U-1") + "/data\",";
    mac.home.file("Devices/U-1/data/app", {.allocatedBytes = justAbove50MB});

    EXPECT_THAT(itemsOfDevice(path + R"("dataPathSize":0)"), IsEmpty());
    EXPECT_EQ(itemOfDevice(path + R"("dataPathSize":60000000)").bytes, 60'000'000);
}

TEST_F(SimulatorProviderBoxTests, showsAnUnavailableDeviceWhoseFolderIsMissing) {
    const auto item = itemOfDevice(R"("isAvailable":false,"dataPathSize":null)");

    EXPECT_EQ(item.bytes, 0);
    EXPECT_EQ(item.path, "/sims/U-1");
}

TEST_F(SimulatorProviderBoxTests, yieldsNothingForADeviceWithoutAFolderOfItsOwn) {
    for (const std::string path :
         {"null", R"("")", R"("data")", R"("U-1/data")", R"("./U-1/data")", R"("~/U-1/data")", R"("/data")",
          R"("/")", R"("//data/")", R"("/Users/tester/data")", R"("/Users/tester")", R"("/sims\u0000/data")"})
        EXPECT_THAT(itemsOfDevice(R"("isAvailable":false,"dataPath":)" + path), IsEmpty()) << path;
}

TEST_F(SimulatorProviderBoxTests, takesTheFolderAroundTheDataHoweverItIsWritten) {
    for (const std::string path : {R"(\/sims\/U-1\/data)", "/sims/U-1/data/", "/sims/U-1//data"})
        EXPECT_EQ(itemOfDevice(R"("dataPath":")" + path + "\"").path, "/sims/U-1") << path;
}

TEST_F(SimulatorProviderBoxTests, keepsTheOrderInWhichTheDevicesAreListed) {
    const auto named = [](const std::string& name) { return device(R"("name":")" + name + "\""); };
    answerDevices(R"({"devices":{"b.tvOS-1":[)" + named("3") + "," + named("1") + R"(],"a.iOS-2":[)" +
                  named("2") + "]}}");

    EXPECT_THAT(titles(items()), ElementsAre("3 · tvOS 1", "1 · tvOS 1", "2 · iOS 2"));
}

// Runtimes

TEST_F(SimulatorProviderBoxTests, offersToDeleteARuntimeThatNothingUses) {
    EXPECT_EQ(
        itemOfRuntime(usedBefore(days(2))),
        (CleanupItem{.title = "Runtime iOS 17.2 (21C62)",
                     .detail = "Tidak dipakai simulator mana pun dalam 60 hari. Bisa diunduh ulang dari "
                               "Xcode › Settings › Components.",
                     .path = "/images/R-1.dmg",
                     .bytes = 7'000'000'000,
                     .category = ItemCategory::simulators,
                     .safety = Safety::costly,
                     .action = CleanupAction::simulatorRuntimeDelete("R-1"),
                     .recommended = false,
                     .lastActivity = now - days(2)}));
}

TEST_F(SimulatorProviderBoxTests, leavesARuntimeInUseToXcode) {
    EXPECT_EQ(
        itemOfRuntime("", devicesOf(ios17, device(R"("dataPath":null,)" + usedBefore(days(2))))),
        (CleanupItem{
            .title = "Runtime iOS 17.2 (21C62)",
            .detail = "Dipakai simulator Anda. Dikelola Xcode (disimpan di /System/Library/AssetsV2).",
            .path = "/images/R-1.dmg",
            .bytes = 7'000'000'000,
            .category = ItemCategory::simulators,
            .safety = Safety::managed,
            .action = CleanupAction::manual("Xcode › Settings › Components untuk mengelola runtime.")}));
}

TEST_F(SimulatorProviderBoxTests, saysTheSameOfARuntimeThatCannotBeDeleted) {
    const auto item = itemOfRuntime(R"("deletable":false)");

    EXPECT_EQ(item.safety, Safety::managed);
    EXPECT_EQ(item.detail, "Dipakai simulator Anda. Dikelola Xcode (disimpan di /System/Library/AssetsV2).");
    EXPECT_EQ(item.action.kind, CleanupAction::Kind::manual);
}

TEST_F(SimulatorProviderBoxTests, takesARuntimeForDeletableUnlessToldOtherwise) {
    EXPECT_EQ(itemOfRuntime(R"("deletable":null)").safety, Safety::costly);
    EXPECT_EQ(itemOfRuntime(R"("deletable":true)").safety, Safety::costly);
}

TEST_F(SimulatorProviderBoxTests, takesARuntimeForUsedForSixtyWholeDays) {
    EXPECT_TRUE(keepsItsRuntime(usedBefore(days(60))));
    EXPECT_TRUE(keepsItsRuntime(usedBefore(days(61) - seconds(1))));
    EXPECT_FALSE(keepsItsRuntime(usedBefore(days(61))));
    EXPECT_TRUE(keepsItsRuntime(usedBefore(-days(400))));
}

TEST_F(SimulatorProviderBoxTests, takesARuntimeForUnusedWhoseDeviceWasNeverUsed) {
    EXPECT_FALSE(keepsItsRuntime(R"("isAvailable":true)"));
    EXPECT_FALSE(keepsItsRuntime(R"("lastUsedAt":"2026-11-15T18:42:59.5Z")"));
}

TEST_F(SimulatorProviderBoxTests, takesARuntimeForUnusedWhoseDeviceIsNotAvailable) {
    answerDevices(devicesOf(ios17, device(R"("isAvailable":false,)" + usedBefore(days(2)))));
    answerRuntimes(runtime());

    const auto found = items();

    ASSERT_THAT(found, SizeIs(2));
    EXPECT_EQ(found[1].safety, Safety::costly);
}

TEST_F(SimulatorProviderBoxTests, takesARuntimeForUsedWhoseDeviceYieldsNoItem) {
    EXPECT_TRUE(keepsItsRuntime(usedBefore(days(2))));
    EXPECT_TRUE(keepsItsRuntime(R"("dataPathSize":49999999,)" + usedBefore(days(2))));
    EXPECT_TRUE(keepsItsRuntime(R"("dataPath":null,)" + usedBefore(days(2))));
    EXPECT_TRUE(keepsItsRuntime(R"("dataPath":"",)" + usedBefore(days(2))));
}

TEST_F(SimulatorProviderBoxTests, comparesRuntimesByTheirWholeIdentifiers) {
    const auto used = device(R"("dataPath":null,)" + usedBefore(days(2)));

    EXPECT_EQ(itemOfRuntime("", devicesOf("other.iOS-17-2", used)).safety, Safety::costly);
    EXPECT_EQ(itemOfRuntime("", devicesOf("iOS-17-2", used)).safety, Safety::costly);
    EXPECT_EQ(itemOfRuntime(R"("runtimeIdentifier":null)", devicesOf("", used)).safety, Safety::costly);
    EXPECT_EQ(itemOfRuntime(R"("runtimeIdentifier":"")", devicesOf("", used)).safety, Safety::managed);
}

TEST_F(SimulatorProviderBoxTests, namesARuntimeByWhatIsKnownOfIt) {
    EXPECT_EQ(itemOfRuntime(R"("runtimeIdentifier":"a.xrOS-1-0","version":"9")").title,
              "Runtime xrOS 1.0 (21C62)");
    EXPECT_EQ(itemOfRuntime(R"("runtimeIdentifier":"a.iOS")").title, "Runtime iOS  (21C62)");
    EXPECT_EQ(itemOfRuntime(R"("runtimeIdentifier":null)").title, "Runtime 17.2 (21C62)");
    EXPECT_EQ(itemOfRuntime(R"("runtimeIdentifier":null,"version":null,"build":null)").title,
              "Runtime simulator (?)");
}

TEST_F(SimulatorProviderBoxTests, showsARuntimeOfNoKnownSizeAsEmpty) {
    EXPECT_EQ(itemOfRuntime(R"("sizeBytes":null)").bytes, 0);
    EXPECT_EQ(itemOfRuntime(R"("sizeBytes":1)").bytes, 1);
}

TEST_F(SimulatorProviderBoxTests, namesARuntimeWithoutAPlaceByItsIdentifier) {
    for (const std::string path : {"null", R"("")", R"("R-1.dmg")", R"("/")", R"("/Users")",
                                   R"("/Users/tester")", R"("/R-1\u0000.dmg")"})
        EXPECT_EQ(itemOfRuntime(R"("path":)" + path).path, "runtime:R-1") << path;
}

TEST_F(SimulatorProviderBoxTests, takesARuntimeWithoutADateForOneOfNoKnownActivity) {
    EXPECT_EQ(itemOfRuntime().lastActivity, std::nullopt);
    EXPECT_EQ(itemOfRuntime(R"("lastUsedAt":"2026-11-13T18:42:59.5Z")").lastActivity, std::nullopt);
}

TEST_F(SimulatorProviderBoxTests, showsNothingOfAnEmptyMac) {
    answerDevices(R"({"devices":{}})");
    answerRuntimes("{\n\n}\n");

    EXPECT_THAT(items(), IsEmpty());
}

} // namespace
} // namespace korvanti
