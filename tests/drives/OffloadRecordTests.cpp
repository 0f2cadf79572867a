#include "drives/OffloadRecord.h"

#include "base/Instant.h"
#include "support/TempFolder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

namespace korvanti {
namespace {

using korvanti::testing::TempFolder;
using korvanti::testing::textOf;

OffloadRecord fullRecord() {
    return {.id = *Uuid::parse("6F9619FF-8B86-D011-B42D-00C04FC964FF"),
            .title = "DeviceSupport",
            .originalPath = "/Users/a/Library/x",
            .destinationPath = "/Volumes/Work/Korvanti Offload/Library/x",
            .volumeUUID = "0C3F",
            .volumeName = "Work",
            .bytes = 12'345,
            .date = instantFromSeconds(1'763'232'179),
            .symlinked = true};
}

constexpr auto fullText = R"([
  {
    "bytes" : 12345,
    "date" : "2025-11-15T18:42:59Z",
    "destinationPath" : "\/Volumes\/Work\/Korvanti Offload\/Library\/x",
    "id" : "6F9619FF-8B86-D011-B42D-00C04FC964FF",
    "originalPath" : "\/Users\/a\/Library\/x",
    "symlinked" : true,
    "title" : "DeviceSupport",
    "volumeName" : "Work",
    "volumeUUID" : "0C3F"
  }
])";

class OffloadRecordTests : public ::testing::Test {
protected:
    [[nodiscard]] std::vector<OffloadRecord> readFrom(const std::string& text) const {
        return OffloadRecords::read(temp.file("offloads.json", {.text = text}));
    }

    TempFolder temp;
    std::string file = temp.path("offloads.json");
};

TEST_F(OffloadRecordTests, theFileIsPrettyWithSortedKeys) {
    OffloadRecords::write(file, {fullRecord()});
    EXPECT_EQ(textOf(file), fullText);
    EXPECT_EQ(OffloadRecords::read(file), std::vector{fullRecord()});
}

TEST_F(OffloadRecordTests, aVolumeWithoutUuidLeavesItsKeyOut) {
    auto record = fullRecord();
    record.volumeUUID.reset();
    OffloadRecords::write(file, {record});
    EXPECT_EQ(textOf(file).find("volumeUUID"), std::string::npos);
    EXPECT_EQ(OffloadRecords::read(file), std::vector{record});
}

TEST_F(OffloadRecordTests, anEmptyListIsAFileToo) {
    OffloadRecords::write(file, {});
    EXPECT_EQ(textOf(file), "[\n\n]");
    EXPECT_TRUE(OffloadRecords::read(file).empty());
}

TEST_F(OffloadRecordTests, aMissingFileHoldsNothing) {
    EXPECT_TRUE(OffloadRecords::read(file).empty());
}

TEST_F(OffloadRecordTests, eachKeyButTheUuidIsRequired) {
    for (const std::string key :
         {"bytes", "date", "destinationPath", "id", "originalPath", "symlinked", "title", "volumeName"}) {
        auto json = toJson(fullRecord());
        json.erase(key);
        EXPECT_TRUE(readFrom(Json::array({json}).dump()).empty()) << key;
    }
    auto json = toJson(fullRecord());
    json["volumeUUID"] = nullptr;
    EXPECT_EQ(readFrom(Json::array({json}).dump()).size(), 1u);
}

TEST_F(OffloadRecordTests, oneDamagedRecordSpoilsTheWholeList) {
    auto damaged = toJson(fullRecord());
    damaged["id"] = "not a UUID";
    EXPECT_TRUE(readFrom(Json::array({toJson(fullRecord()), damaged}).dump()).empty());
}

TEST_F(OffloadRecordTests, whatIsNoListHoldsNothing) {
    for (const auto* text : {"", "{}", "null", "[", "[1]", "[null]", R"("text")", "\xff\xfe"})
        EXPECT_TRUE(readFrom(text).empty()) << text;
}

TEST_F(OffloadRecordTests, aFileThatCannotBeWrittenStays) {
    temp.file("folder", {.text = "no folder"});
    OffloadRecords::write(temp.path("folder/offloads.json"), {fullRecord()});
    EXPECT_EQ(textOf(temp.path("folder")), "no folder");
}

TEST_F(OffloadRecordTests, anUpdateGivesWhatTheFileHoldsNow) {
    OffloadRecords::write(file, {fullRecord()});
    const auto now = OffloadRecords::update(file, [](auto& records) { records.push_back(records.front()); });
    EXPECT_EQ(now, (std::vector{fullRecord(), fullRecord()}));
    EXPECT_EQ(OffloadRecords::read(file), now);
}

TEST_F(OffloadRecordTests, anUpdateOfADamagedFileBeginsWithNothing) {
    temp.file("offloads.json", {.text = "[{"});
    OffloadRecords::update(file, [](auto& records) { records.push_back(fullRecord()); });
    EXPECT_EQ(OffloadRecords::read(file), std::vector{fullRecord()});
}

TEST_F(OffloadRecordTests, manyUpdatesAtOnceLoseNothing) {
    constexpr int writers = 4;
    constexpr int each = 10;
    std::vector<std::thread> threads;
    for (int writer = 0; writer < writers; ++writer) {
        threads.emplace_back([&] {
            for (int i = 0; i < each; ++i)
                OffloadRecords::update(file, [](auto& records) { records.push_back(fullRecord()); });
        });
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(OffloadRecords::read(file).size(), static_cast<std::size_t>(writers * each));
}

TEST_F(OffloadRecordTests, nothingButTheFileIsLeftInItsFolder) {
    OffloadRecords::update(file, [](auto& records) { records.push_back(fullRecord()); });
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(temp.path()), {}), 1);
}

TEST(OffloadStatusTests, eachStatusHasItsLabel) {
    EXPECT_EQ(label(OffloadStatus::available), "Tersedia di SSD");
    EXPECT_EQ(label(OffloadStatus::volumeMissing), "SSD tidak terpasang");
    EXPECT_EQ(label(OffloadStatus::destinationMissing), "Folder di SSD hilang");
}

} // namespace
} // namespace korvanti
