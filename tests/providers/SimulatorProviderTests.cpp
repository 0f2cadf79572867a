#include "providers/SimulatorProvider.h"

#include "process/SimulatorLists.h"
#include "support/TempFolder.h"

#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <utility>

namespace korvanti {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

using SimulatorLists::Device;
using SimulatorLists::DeviceList;
using SimulatorLists::Runtime;

std::string sample(const std::string& name) {
    return testing::textOf(std::string(KORVANTI_TEST_DATA) + "/" + name);
}

/// A list with one device, which has these fields besides the three that it must have.
std::string deviceWith(const std::string& fields) {
    return R"({"devices":{"r":[{"udid":"U","name":"N","state":"Shutdown",)" + fields + "}]}}";
}

/// A list with one runtime, which has these fields besides the one that it must have.
std::string runtimeWith(const std::string& fields) {
    return R"({"k":{"identifier":"I",)" + fields + "}}";
}

TEST(SimulatorProviderTests, hasItsNameAndPriority) {
    EXPECT_EQ(SimulatorProvider().name(), "Simulator");
    EXPECT_EQ(SimulatorProvider().priority(), 100);
}

// Devices

TEST(SimulatorProviderTests, readsTheDevicesThatTheToolLists) {
    const std::string folder = "/Users/budi/Library/Developer/CoreSimulator/Devices/";
    const std::string missing = R"(runtime profile not found using "System" match policy)";

    const auto list = SimulatorLists::devices(sample("simctl-devices.json"));

    ASSERT_TRUE(list);
    EXPECT_THAT(
        list->devices,
        ElementsAre(DeviceList::Group{"com.apple.CoreSimulator.SimRuntime.iOS-16-4",
                                      {{.udid = "0B7E1E0A-6C55-4B3F-9F0D-5D1C2F7A8E01",
                                        .name = "iPhone 14",
                                        .state = "Shutdown",
                                        .isAvailable = false,
                                        .dataPath = folder + "0B7E1E0A-6C55-4B3F-9F0D-5D1C2F7A8E01/data",
                                        .dataPathSize = 1'893'421'056,
                                        .availabilityError = missing},
                                       {.udid = "1C8F2F1B-7D66-4C40-8A1E-6E2D308B9F12",
                                        .name = "iPad (10th generation)",
                                        .state = "Shutdown",
                                        .isAvailable = false,
                                        .dataPath = folder + "1C8F2F1B-7D66-4C40-8A1E-6E2D308B9F12/data",
                                        .dataPathSize = 13'340'672,
                                        .availabilityError = missing}}},
                    DeviceList::Group{"com.apple.CoreSimulator.SimRuntime.iOS-17-5",
                                      {{.udid = "2D903A2C-8E77-4D51-9B2F-7F3E419CA023",
                                        .name = "iPhone 15 Pro",
                                        .state = "Booted",
                                        .isAvailable = true,
                                        .dataPath = folder + "2D903A2C-8E77-4D51-9B2F-7F3E419CA023/data",
                                        .dataPathSize = 5'821'399'040},
                                       {.udid = "3EA14B3D-9F88-4E62-AC30-804F52ADB134",
                                        .name = "iPhone SE (3rd generation)",
                                        .state = "Shutdown",
                                        .isAvailable = true,
                                        .dataPath = folder + "3EA14B3D-9F88-4E62-AC30-804F52ADB134/data",
                                        .dataPathSize = 13'340'672}}},
                    DeviceList::Group{"com.apple.CoreSimulator.SimRuntime.watchOS-10-5",
                                      {{.udid = "4FB25C4E-A099-4F73-BD41-915063BEC245",
                                        .name = "Apple Watch Series 9 (45mm)",
                                        .state = "Shutdown",
                                        .isAvailable = true,
                                        .dataPath = folder + "4FB25C4E-A099-4F73-BD41-915063BEC245/data",
                                        .dataPathSize = 19'156'992}}},
                    DeviceList::Group{"com.apple.CoreSimulator.SimRuntime.tvOS-17-5", {}}));
}

TEST(SimulatorProviderTests, readsEveryFieldOfADevice) {
    const auto list = SimulatorLists::devices(
        R"({"devices":{"r":[{"udid":"U","name":"N","state":"S","isAvailable":true,"dataPath":"/d",
            "dataPathSize":7,"lastUsedAt":"later","availabilityError":"E"}]}})");

    ASSERT_TRUE(list);
    EXPECT_THAT(list->devices, ElementsAre(DeviceList::Group{"r",
                                                             {{.udid = "U",
                                                               .name = "N",
                                                               .state = "S",
                                                               .isAvailable = true,
                                                               .dataPath = "/d",
                                                               .dataPathSize = 7,
                                                               .lastUsedAt = "later",
                                                               .availabilityError = "E"}}}));
}

TEST(SimulatorProviderTests, readsADeviceOfWhichLittleIsKnown) {
    const Device device = {.udid = "U", .name = "N", .state = "Shutdown"};

    for (
        const char* fields :
        {R"("unknown":[1,{"deep":null}])",
         R"("isAvailable":null,"dataPath":null,"dataPathSize":null,"lastUsedAt":null,"availabilityError":null)"}) {
        const auto list = SimulatorLists::devices(deviceWith(fields));
        ASSERT_TRUE(list) << fields;
        EXPECT_THAT(list->devices, ElementsAre(DeviceList::Group{"r", {device}})) << fields;
    }
}

TEST(SimulatorProviderTests, refusesDevicesOfWhichOneLacksAField) {
    for (const char* device :
         {R"({"name":"N","state":"S"})", R"({"udid":"U","state":"S"})", R"({"udid":"U","name":"N"})",
          R"({"udid":null,"name":"N","state":"S"})", "{}", "null", "5", R"("U")", "[]"}) {
        const auto text =
            R"({"devices":{"a":[{"udid":"U","name":"N","state":"S"}],"b":[)" + std::string(device) + "]}}";
        EXPECT_FALSE(SimulatorLists::devices(text)) << text;
    }
}

TEST(SimulatorProviderTests, refusesDevicesOfWhichOneHasAFieldOfAnotherType) {
    for (const char* field : {R"("isAvailable":"YES")", R"("isAvailable":1)", R"("dataPath":5)",
                              R"("dataPath":["/d"])", R"("dataPathSize":"5")", R"("dataPathSize":true)",
                              R"("lastUsedAt":1794768179)", R"("availabilityError":false)"})
        EXPECT_FALSE(SimulatorLists::devices(deviceWith(field))) << field;
    for (const char* text : {R"({"devices":{"r":[{"udid":5,"name":"N","state":"S"}]}})",
                             R"({"devices":{"r":[{"udid":"U","name":5,"state":"S"}]}})",
                             R"({"devices":{"r":[{"udid":"U","name":"N","state":5}]}})"})
        EXPECT_FALSE(SimulatorLists::devices(text)) << text;
}

TEST(SimulatorProviderTests, readsSizesOf64BitsAndNoOthers) {
    const std::pair<const char*, std::int64_t> rows[] = {
        {"9223372036854775807", std::numeric_limits<std::int64_t>::max()},
        {"-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
        {"0", 0},
        {"5.0e7", 50'000'000},
    };
    for (const auto& [number, bytes] : rows) {
        const std::string text = number;
        const auto list = SimulatorLists::devices(deviceWith("\"dataPathSize\":" + text));
        const auto runtimes = SimulatorLists::runtimes(runtimeWith("\"sizeBytes\":" + text));
        ASSERT_TRUE(list && runtimes) << text;
        EXPECT_EQ(list->devices[0].devices[0].dataPathSize, bytes);
        EXPECT_EQ((*runtimes)[0].sizeBytes, bytes);
    }
    for (const std::string number : {"9223372036854775808", "-9223372036854775809", "50000000.5", "1e300"}) {
        EXPECT_FALSE(SimulatorLists::devices(deviceWith("\"dataPathSize\":" + number))) << number;
        EXPECT_FALSE(SimulatorLists::runtimes(runtimeWith("\"sizeBytes\":" + number))) << number;
    }
}

TEST(SimulatorProviderTests, refusesTextsThatListNoDevices) {
    for (const char* text : {"", "{}", "[]", "null", "5", R"({"devices":null})", R"({"devices":[]})",
                             R"({"devices":{"r":{}}})", R"({"devices":{"r":null}})", R"({"Devices":{}})",
                             R"({"devices":{)", R"({"devices":{}} and more)", "No devices"})
        EXPECT_FALSE(SimulatorLists::devices(text)) << text;
}

TEST(SimulatorProviderTests, readsAListWithoutDevices) {
    const auto list = SimulatorLists::devices(R"({"devices":{}})");

    ASSERT_TRUE(list);
    EXPECT_THAT(list->devices, IsEmpty());
}

TEST(SimulatorProviderTests, refusesEveryBeginningOfTheList) {
    const auto devices = sample("simctl-devices.json");
    const auto runtimes = sample("simctl-runtimes.json");
    for (std::size_t length = 0; length < devices.rfind('}'); length += 7)
        EXPECT_FALSE(SimulatorLists::devices(devices.substr(0, length))) << length;
    for (std::size_t length = 0; length < runtimes.rfind('}'); length += 7)
        EXPECT_FALSE(SimulatorLists::runtimes(runtimes.substr(0, length))) << length;
}

TEST(SimulatorProviderTests, takesTheFirstOfEqualRuntimes) {
    const auto list =
        SimulatorLists::devices(R"({"devices":{"r":[],"s":[],"r":[{"udid":"U","name":"N","state":"S"}]}})");

    ASSERT_TRUE(list);
    EXPECT_THAT(list->devices, ElementsAre(DeviceList::Group{"r", {}}, DeviceList::Group{"s", {}}));
}

// Runtimes

TEST(SimulatorProviderTests, readsTheRuntimesThatTheToolLists) {
    const auto runtimes = SimulatorLists::runtimes(sample("simctl-runtimes.json"));

    ASSERT_TRUE(runtimes);
    EXPECT_THAT(
        *runtimes,
        ElementsAre(Runtime{.identifier = "5A0D8C6E-1111-4F6B-9E3C-0A4B5C6D7E8F",
                            .version = "17.5",
                            .build = "21F79",
                            .sizeBytes = 7'384'921'088,
                            .lastUsedAt = "2025-05-30T08:41:55Z",
                            .deletable = true,
                            .runtimeIdentifier = "com.apple.CoreSimulator.SimRuntime.iOS-17-5",
                            .path = "/System/Library/AssetsV2/com_apple_MobileAsset_iOSSimulatorRuntime/"
                                    "3f9b1c.asset/AssetData/Restore/062-10233-014.dmg"},
                    Runtime{.identifier = "6B1E9D7F-2222-4A7C-8F4D-1B5C6D7E8F90",
                            .version = "16.4",
                            .build = "20E247",
                            .sizeBytes = 6'250'741'760,
                            .deletable = true,
                            .runtimeIdentifier = "com.apple.CoreSimulator.SimRuntime.iOS-16-4",
                            .path = "/Library/Developer/CoreSimulator/Images/"
                                    "6B1E9D7F-2222-4A7C-8F4D-1B5C6D7E8F90.dmg"},
                    Runtime{.identifier = "7C2FAE80-3333-4B8D-9A5E-2C6D7E8F9011",
                            .version = "10.5",
                            .build = "21T569",
                            .sizeBytes = 3'982'311'424,
                            .deletable = false,
                            .runtimeIdentifier = "com.apple.CoreSimulator.SimRuntime.watchOS-10-5",
                            .path = "/System/Library/AssetsV2/com_apple_MobileAsset_watchOSSimulatorRuntime/"
                                    "a871de.asset/AssetData/Restore/062-10277-009.dmg"}));
}

TEST(SimulatorProviderTests, readsAListWithoutRuntimes) {
    const auto runtimes = SimulatorLists::runtimes(sample("simctl-runtimes-empty.json"));

    ASSERT_TRUE(runtimes);
    EXPECT_THAT(*runtimes, IsEmpty());
}

TEST(SimulatorProviderTests, readsARuntimeOfWhichLittleIsKnown) {
    const Runtime runtime = {.identifier = "I"};

    for (const char* fields :
         {R"("unknown":{})", R"("version":null,"build":null,"sizeBytes":null,"lastUsedAt":null,
                                "deletable":null,"runtimeIdentifier":null,"path":null)"}) {
        const auto runtimes = SimulatorLists::runtimes(runtimeWith(fields));
        ASSERT_TRUE(runtimes) << fields;
        EXPECT_THAT(*runtimes, ElementsAre(runtime)) << fields;
    }
}

TEST(SimulatorProviderTests, readsRuntimesThatShareAnIdentifier) {
    const auto runtimes = SimulatorLists::runtimes(R"({"a":{"identifier":"I"},"b":{"identifier":"I"}})");

    ASSERT_TRUE(runtimes);
    EXPECT_THAT(*runtimes, SizeIs(2));
}

TEST(SimulatorProviderTests, refusesRuntimesOfWhichOneIsWrong) {
    for (const char* field :
         {R"("version":17.5)", R"("build":21)", R"("sizeBytes":"5")", R"("lastUsedAt":1794768179)",
          R"("deletable":"true")", R"("deletable":0)", R"("runtimeIdentifier":5)", R"("path":false)"})
        EXPECT_FALSE(SimulatorLists::runtimes(runtimeWith(field))) << field;
    for (const char* runtime :
         {"{}", R"({"identifier":null})", R"({"identifier":5})", "null", "5", R"("I")", "[]"}) {
        const auto text = R"({"a":{"identifier":"I"},"b":)" + std::string(runtime) + "}";
        EXPECT_FALSE(SimulatorLists::runtimes(text)) << text;
    }
}

TEST(SimulatorProviderTests, refusesTextsThatListNoRuntimes) {
    for (const char* text : {"", "[]", R"([{"identifier":"I"}])", "null", "5", "{", "No runtimes"})
        EXPECT_FALSE(SimulatorLists::runtimes(text)) << text;
}

// Names

TEST(SimulatorProviderTests, namesARuntimeByTheEndOfItsIdentifier) {
    const std::pair<const char*, const char*> rows[] = {
        {"com.apple.CoreSimulator.SimRuntime.iOS-17-2", "iOS 17.2"},
        {"com.apple.CoreSimulator.SimRuntime.iOS-17-0-1", "iOS 17.0.1"},
        {"com.apple.CoreSimulator.SimRuntime.watchOS-10", "watchOS 10"},
        {"com.apple.CoreSimulator.SimRuntime.xrOS-1-0-beta", "xrOS 1.0.beta"},
        {".tvOS-17-5", "tvOS 17.5"},
        {"a.--iOS---17--2-", "iOS 17.2"},
    };
    for (const auto& [identifier, name] : rows)
        EXPECT_EQ(SimulatorLists::runtimeName(identifier), name) << identifier;
}

TEST(SimulatorProviderTests, leavesABlankBehindANameWithoutAVersion) {
    EXPECT_EQ(SimulatorLists::runtimeName("com.apple.CoreSimulator.SimRuntime.iOS"), "iOS ");
    EXPECT_EQ(SimulatorLists::runtimeName("a.-iOS-"), "iOS ");
}

TEST(SimulatorProviderTests, leavesAnEndWithoutPiecesAsItStands) {
    EXPECT_EQ(SimulatorLists::runtimeName("com.apple.--"), "--");
    EXPECT_EQ(SimulatorLists::runtimeName("-"), "-");
}

TEST(SimulatorProviderTests, leavesAnIdentifierWithoutPartsAsItStands) {
    EXPECT_EQ(SimulatorLists::runtimeName(""), "");
    EXPECT_EQ(SimulatorLists::runtimeName("..."), "...");
}

TEST(SimulatorProviderTests, namesARuntimeWithoutADotByTheWholeOfIt) {
    EXPECT_EQ(SimulatorLists::runtimeName("iOS-17-2"), "iOS 17.2");
}

} // namespace
} // namespace korvanti
