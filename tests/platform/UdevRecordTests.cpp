#include "platform/linux/UdevRecord.h"

#include <gtest/gtest.h>

namespace korvanti {
namespace {

using Platform::decodedUdevName;
using Platform::UdevRecord;
using Platform::udevRecordFromText;

TEST(UdevRecordTests, theLabelAndTheUuidAreFoundAmongAllElse) {
    EXPECT_EQ(udevRecordFromText("S:disk/by-uuid/4F21-00AB\n"
                                 "W:12\n"
                                 "I:1234567\n"
                                 "E:ID_FS_LABEL=Kerja_Lama\n"
                                 "E:ID_FS_LABEL_ENC=Kerja\\x20Lama\n"
                                 "E:ID_FS_UUID=4F21-00AB\n"
                                 "E:ID_FS_UUID_ENC=4F21-00AB\n"
                                 "G:systemd\n"),
              (UdevRecord{.label = "Kerja Lama", .uuid = "4F21-00AB"}));
}

TEST(UdevRecordTests, whatIsNotToldIsAbsent) {
    EXPECT_EQ(udevRecordFromText(""), UdevRecord{});
    EXPECT_EQ(udevRecordFromText("E:ID_FS_TYPE=ext4\n"), UdevRecord{});
    EXPECT_EQ(udevRecordFromText("E:ID_FS_UUID=1\n"), (UdevRecord{.label = {}, .uuid = "1"}));
    EXPECT_EQ(udevRecordFromText("E:ID_FS_LABEL_ENC=1\n"), (UdevRecord{.label = "1", .uuid = {}}));
}

TEST(UdevRecordTests, anEmptyValueIsNone) {
    EXPECT_EQ(udevRecordFromText("E:ID_FS_LABEL_ENC=\nE:ID_FS_UUID=\n"), UdevRecord{});
}

TEST(UdevRecordTests, ofTwoLinesForOneValueTheLastOneCounts) {
    EXPECT_EQ(
        udevRecordFromText("E:ID_FS_UUID=1\nE:ID_FS_LABEL_ENC=a\nE:ID_FS_UUID=2\nE:ID_FS_LABEL_ENC=b\n"),
        (UdevRecord{.label = "b", .uuid = "2"}));
}

TEST(UdevRecordTests, theLastLineNeedsNoEnd) {
    EXPECT_EQ(udevRecordFromText("E:ID_FS_UUID=ab-cd").uuid, "ab-cd");
}

TEST(UdevRecordTests, aKeyThatOnlyBeginsOrEndsAlikeIsAnother) {
    EXPECT_EQ(udevRecordFromText("E:ID_FS_UUID_SUB=1\n E:ID_FS_UUID=2\nID_FS_UUID=3\nE:ID_FS_LABEL=4\n"),
              UdevRecord{});
}

TEST(UdevRecordTests, whatStandsInCodeIsDecodedOnce) {
    EXPECT_EQ(decodedUdevName("Kerja\\x20Lama"), "Kerja Lama");
    EXPECT_EQ(decodedUdevName("\\x5cx20"), "\\x20");
    EXPECT_EQ(decodedUdevName("a\\x2Fb\\x2fc"), "a/b/c");
    EXPECT_EQ(decodedUdevName("\\xc3\\xa9\\xFF"), "\xc3\xa9\xff");
    EXPECT_EQ(decodedUdevName(std::string_view("\\x00")), std::string(1, '\0'));
}

TEST(UdevRecordTests, aBackslashThatStartsNoCodeStandsForItself) {
    for (const auto* text : {"\\", "\\x", "\\x2", "\\x2g", "\\xg2", "\\x-1", "\\x+1", "\\x 1", "\\X20",
                             "\\040", "a\\", "\\\\", "plain", ""})
        EXPECT_EQ(decodedUdevName(text), text);
}

} // namespace
} // namespace korvanti
