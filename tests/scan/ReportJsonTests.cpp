#include "scan/ReportJson.h"

#include <chrono>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace korvanti {
namespace {

using namespace std::chrono_literals;
using Kind = CleanupAction::Kind;

/// An item with every field set.
CleanupItem fullItem() {
    return {.title = "Cache Xcode",
            .detail = "Cache internal › Xcode.",
            .path = "/Users/a/Library",
            .bytes = 9'007'199'254'740'993,
            .category = ItemCategory::xcode,
            .safety = Safety::costly,
            .action = CleanupAction::delete_(),
            .recommended = true,
            .lastActivity = instantFromSeconds(1'794'768'179),
            .offloadable = true,
            .warnings = {"satu", "dua"},
            .relatedPaths = std::vector<std::string>{"/b", "/c"}};
}

DiskSnapshot fullDisk() {
    return {.total = 1000,
            .available = 300,
            .availableImportant = 400,
            .apfsVolumes = {{.name = "Macintosh HD", .role = "System", .bytes = 5},
                            {.name = "?", .role = "", .bytes = 6}},
            .smart = SmartInfo{.percentageUsed = 3,
                               .dataWrittenBytes = 12'000'000'000'000,
                               .powerOnHours = 400,
                               .availableSpare = 100,
                               .status = "Verified",
                               .unsafeShutdowns = 7},
            .swapUsed = 11,
            .physicalMemory = 12,
            .hasFullDiskAccess = true};
}

ScanReport fullReport() {
    return {.startedAt = instantFromSeconds(1'794'768'179),
            .duration = 12.5,
            .items = {fullItem()},
            .disk = fullDisk(),
            .notes = {"catatan"}};
}

std::vector<std::string> keysOf(const Json& object) {
    std::vector<std::string> keys;
    for (const auto& entry : object.items())
        keys.push_back(entry.key());
    return keys;
}

Json parsed(std::string_view text) {
    const auto json = parseJson(text);
    EXPECT_TRUE(json.has_value()) << text;
    return json.value_or(Json());
}

std::string errorOf(std::string_view actionText) {
    const auto action = cleanupActionFromJson(parsed(actionText));
    return action ? "" : action.error().message;
}

TEST(ReportJsonTests, anItemHasItsKeysInOrder) {
    EXPECT_EQ(
        keysOf(toJson(fullItem())),
        (std::vector<std::string>{"title", "detail", "path", "bytes", "category", "safety", "action",
                                  "recommended", "lastActivity", "offloadable", "warnings", "relatedPaths"}));
}

TEST(ReportJsonTests, absentFieldsOfAnItemAreLeftOut) {
    CleanupItem item = fullItem();
    item.lastActivity.reset();
    item.relatedPaths.reset();
    EXPECT_EQ(keysOf(toJson(item)),
              (std::vector<std::string>{"title", "detail", "path", "bytes", "category", "safety", "action",
                                        "recommended", "offloadable", "warnings"}));
}

TEST(ReportJsonTests, anItemInCompactForm) {
    EXPECT_EQ(compactJson(toJson(fullItem())),
              R"({"title":"Cache Xcode","detail":"Cache internal › Xcode.","path":"\/Users\/a\/Library",)"
              R"("bytes":9007199254740993,"category":"xcode","safety":1,"action":{"delete":{}},)"
              R"("recommended":true,"lastActivity":"2026-11-15T18:42:59Z","offloadable":true,)"
              R"("warnings":["satu","dua"],"relatedPaths":["\/b","\/c"]})");
}

TEST(ReportJsonTests, everyActionHasOneKeyWithItsPayload) {
    const std::vector<std::pair<CleanupAction, std::string>> forms = {
        {CleanupAction::delete_(), R"({"delete":{}})"},
        {CleanupAction::trash(), R"({"trash":{}})"},
        {CleanupAction::emptyTrash(), R"({"emptyTrash":{}})"},
        {CleanupAction::simulatorErase("U-1"), R"({"simulatorErase":{"udid":"U-1"}})"},
        {CleanupAction::simulatorDelete("U-2"), R"({"simulatorDelete":{"udid":"U-2"}})"},
        {CleanupAction::simulatorRuntimeDelete("I-3"), R"({"simulatorRuntimeDelete":{"identifier":"I-3"}})"},
        {CleanupAction::manual("Begini."), R"({"manual":{"instructions":"Begini."}})"}};
    for (const auto& [action, text] : forms) {
        EXPECT_EQ(compactJson(toJson(action)), text);
        const auto read = cleanupActionFromJson(parsed(text));
        ASSERT_TRUE(read.has_value()) << text;
        EXPECT_EQ(*read, action);
    }
}

TEST(ReportJsonTests, anActionWithTwoKindsIsRejected) {
    EXPECT_EQ(errorOf(R"({"delete":{},"trash":{}})"), "Invalid number of keys found, expected one.");
}

TEST(ReportJsonTests, anActionWithoutAKnownKindIsRejected) {
    EXPECT_EQ(errorOf("{}"), "Invalid number of keys found, expected one.");
    EXPECT_EQ(errorOf(R"({"burn":{}})"), "Invalid number of keys found, expected one.");
}

TEST(ReportJsonTests, anUnknownKeyBesideTheKindOfAnActionDoesNotCount) {
    const auto action = cleanupActionFromJson(parsed(R"({"burn":{},"trash":{}})"));
    ASSERT_TRUE(action.has_value());
    EXPECT_EQ(*action, CleanupAction::trash());
}

TEST(ReportJsonTests, anActionWithoutItsPayloadIsRejected) {
    for (const char* text :
         {R"({"manual":{}})", R"({"manual":{"udid":"x"}})", R"({"manual":{"instructions":1}})",
          R"({"simulatorErase":{}})", R"({"simulatorDelete":{"identifier":"x"}})",
          R"({"simulatorRuntimeDelete":{"udid":"x"}})", R"({"trash":[]})", R"({"trash":true})", R"("trash")",
          "[]"})
        EXPECT_FALSE(cleanupActionFromJson(parsed(text)).has_value()) << text;
}

TEST(ReportJsonTests, anItemSurvivesTheWayThroughTheFile) {
    const auto read = cleanupItemFromJson(parsed(compactJson(toJson(fullItem()))));
    ASSERT_TRUE(read.has_value());
    EXPECT_EQ(*read, fullItem());
}

TEST(ReportJsonTests, theRuleOfRecommendationIsNotAppliedOnReading) {
    CleanupItem item = fullItem();
    item.safety = Safety::review;
    item.recommended = true;
    const auto review = cleanupItemFromJson(toJson(item));
    ASSERT_TRUE(review.has_value());
    EXPECT_TRUE(review->recommended);

    item.safety = Safety::regenerable;
    item.action = CleanupAction::manual("Begini.");
    const auto manual = cleanupItemFromJson(toJson(item));
    ASSERT_TRUE(manual.has_value());
    EXPECT_TRUE(manual->recommended);
}

TEST(ReportJsonTests, fractionsOfASecondAreLost) {
    CleanupItem item = fullItem();
    item.lastActivity = instantFromSeconds(1'794'768'179) + 999'999us;
    const auto read = cleanupItemFromJson(toJson(item));
    ASSERT_TRUE(read.has_value());
    EXPECT_EQ(read->lastActivity, instantFromSeconds(1'794'768'179));
}

/// Takes each key away in turn and tells which ones the reader can do without.
template <class Record, class Read>
std::set<std::string> keysThatMayBeMissing(const Record& record, Read read) {
    std::set<std::string> optional;
    const Json whole = toJson(record);
    EXPECT_TRUE(read(whole).has_value());
    for (const std::string& key : keysOf(whole)) {
        Json lacking = whole;
        lacking.erase(key);
        if (read(lacking).has_value())
            optional.insert(key);
    }
    return optional;
}

TEST(ReportJsonTests, onlyTheOptionalFieldsMayBeMissing) {
    using Keys = std::set<std::string>;
    EXPECT_EQ(keysThatMayBeMissing(fullItem(), cleanupItemFromJson), (Keys{"lastActivity", "relatedPaths"}));
    EXPECT_EQ(keysThatMayBeMissing(fullReport(), scanReportFromJson), Keys{});
    EXPECT_EQ(keysThatMayBeMissing(fullDisk(), diskSnapshotFromJson), Keys{"smart"});
    EXPECT_EQ(keysThatMayBeMissing(*fullDisk().smart, smartInfoFromJson),
              (Keys{"percentageUsed", "dataWrittenBytes", "powerOnHours", "availableSpare", "status",
                    "unsafeShutdowns"}));
    EXPECT_EQ(keysThatMayBeMissing(fullDisk().apfsVolumes[0], apfsVolumeUsageFromJson), Keys{});
}

TEST(ReportJsonTests, aWrongValueMakesAnItemUndecodable) {
    const std::vector<std::pair<const char*, Json>> wrong = {{"title", 1},
                                                             {"title", nullptr},
                                                             {"bytes", "5"},
                                                             {"bytes", 5.5},
                                                             {"bytes", 9223372036854775808ULL},
                                                             {"category", "Xcode"},
                                                             {"category", "games"},
                                                             {"category", 0},
                                                             {"safety", 5},
                                                             {"safety", -1},
                                                             {"safety", "costly"},
                                                             {"action", "delete"},
                                                             {"recommended", 1},
                                                             {"offloadable", "yes"},
                                                             {"lastActivity", 1'794'768'179},
                                                             {"lastActivity", "kemarin"},
                                                             {"warnings", "satu"},
                                                             {"warnings", Json::array({1})},
                                                             {"relatedPaths", "/b"}};
    for (const auto& [key, value] : wrong) {
        Json json = toJson(fullItem());
        json[key] = value;
        EXPECT_FALSE(cleanupItemFromJson(json).has_value()) << key << " " << value.dump();
    }
}

TEST(ReportJsonTests, everyClassAndCategoryIsReadBack) {
    for (const Safety safety : allCases<Safety>)
        for (const ItemCategory category : allCases<ItemCategory>) {
            CleanupItem item = fullItem();
            item.safety = safety;
            item.category = category;
            const Json json = toJson(item);
            EXPECT_EQ(json["safety"], static_cast<int>(safety));
            EXPECT_EQ(json["category"], std::string(rawValue(category)));
            const auto read = cleanupItemFromJson(json);
            ASSERT_TRUE(read.has_value());
            EXPECT_EQ(*read, item);
        }
}

TEST(ReportJsonTests, aReportHasItsKeysInOrder) {
    EXPECT_EQ(keysOf(toJson(fullReport())),
              (std::vector<std::string>{"startedAt", "duration", "items", "disk", "notes"}));
    EXPECT_EQ(keysOf(toJson(fullDisk())),
              (std::vector<std::string>{"total", "available", "availableImportant", "apfsVolumes", "smart",
                                        "swapUsed", "physicalMemory", "hasFullDiskAccess"}));
    EXPECT_EQ(keysOf(toJson(*fullDisk().smart)),
              (std::vector<std::string>{"percentageUsed", "dataWrittenBytes", "powerOnHours",
                                        "availableSpare", "status", "unsafeShutdowns"}));
    EXPECT_EQ(keysOf(toJson(fullDisk().apfsVolumes[0])), (std::vector<std::string>{"name", "role", "bytes"}));
}

TEST(ReportJsonTests, aDiskWithoutHealthHasNoSuchKey) {
    DiskSnapshot snapshot = fullDisk();
    snapshot.smart.reset();
    EXPECT_FALSE(toJson(snapshot).contains("smart"));
    EXPECT_EQ(compactJson(toJson(SmartInfo{})), "{}");
}

TEST(ReportJsonTests, aReportSurvivesTheWayThroughTheFile) {
    for (const std::string& text :
         {compactJson(toJson(fullReport())), prettySortedJson(toJson(fullReport()))}) {
        const auto read = scanReportFromJson(parsed(text));
        ASSERT_TRUE(read.has_value()) << read.error().message;
        EXPECT_EQ(*read, fullReport());
    }
}

TEST(ReportJsonTests, oneBadItemMakesTheReportUndecodable) {
    Json json = toJson(fullReport());
    json["items"].push_back(json["items"][0]);
    json["items"][1]["safety"] = 9;
    EXPECT_FALSE(scanReportFromJson(json).has_value());
}

TEST(ReportJsonTests, anythingButAnObjectIsNoReport) {
    for (const char* text : {"[]", "null", "5", "\"report\"", "{}"})
        EXPECT_FALSE(scanReportFromJson(parsed(text)).has_value()) << text;
}

TEST(ReportJsonTests, theStartOfAReportLosesItsFraction) {
    ScanReport report = fullReport();
    report.startedAt += 750'000us;
    EXPECT_EQ(toJson(report)["startedAt"], "2026-11-15T18:42:59Z");
}

TEST(ReportJsonTests, aPrettyReportHasSortedKeysAndEscapedSlashes) {
    ScanReport report = fullReport();
    report.items[0].warnings.clear();
    report.items[0].relatedPaths.reset();
    report.disk = {.total = 1, .available = 2, .availableImportant = 3};
    report.notes.clear();
    EXPECT_EQ(prettySortedJson(toJson(report)), R"({
  "disk" : {
    "apfsVolumes" : [

    ],
    "available" : 2,
    "availableImportant" : 3,
    "hasFullDiskAccess" : false,
    "physicalMemory" : 0,
    "swapUsed" : 0,
    "total" : 1
  },
  "duration" : 12.5,
  "items" : [
    {
      "action" : {
        "delete" : {

        }
      },
      "bytes" : 9007199254740993,
      "category" : "xcode",
      "detail" : "Cache internal › Xcode.",
      "lastActivity" : "2026-11-15T18:42:59Z",
      "offloadable" : true,
      "path" : "\/Users\/a\/Library",
      "recommended" : true,
      "safety" : 1,
      "title" : "Cache Xcode",
      "warnings" : [

      ]
    }
  ],
  "notes" : [

  ],
  "startedAt" : "2026-11-15T18:42:59Z"
})");
}

} // namespace
} // namespace korvanti
