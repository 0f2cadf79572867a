#include "platform/linux/MountInfo.h"

#include <gtest/gtest.h>
#include <sstream>

namespace korvanti {
namespace {

using Points = std::vector<std::string>;
using Platform::mountPointsFromMountInfo;
using Platform::MountRecord;
using Platform::mountRecordsFromMountInfo;
using Records = std::vector<MountRecord>;

TEST(MountInfoTests, theFifthFieldOfALineIsTheMountPoint) {
    EXPECT_EQ(mountPointsFromMountInfo("22 27 0:21 / /proc rw,relatime - proc proc rw\n"
                                       "27 1 254:0 / / rw,relatime shared:1 master:2 - ext4 /dev/vda rw\n"),
              (Points{"/proc", "/"}));
}

TEST(MountInfoTests, octalEscapesAreDecoded) {
    EXPECT_EQ(mountPointsFromMountInfo(R"(1 2 0:1 / /a\040b\011c\012d\134e rw - tmpfs t rw)"),
              (Points{"/a b\tc\nd\\e"}));
}

TEST(MountInfoTests, aBackslashThatStartsNoEscapeStandsForItself) {
    EXPECT_EQ(mountPointsFromMountInfo(R"(1 2 0:1 / /a\ rw)"), (Points{R"(/a\)"}));
    EXPECT_EQ(mountPointsFromMountInfo(R"(1 2 0:1 / /a\09 rw)"), (Points{R"(/a\09)"}));
    EXPECT_EQ(mountPointsFromMountInfo(R"(1 2 0:1 / /a\777 rw)"), (Points{R"(/a\777)"}));
}

TEST(MountInfoTests, twoMountsOnOnePointAreBothListed) {
    EXPECT_EQ(mountPointsFromMountInfo("1 2 0:1 / /x rw - a a rw\n3 1 0:2 / /x rw - b b rw\n"),
              (Points{"/x", "/x"}));
}

TEST(MountInfoTests, damagedLinesArePassedOver) {
    EXPECT_EQ(mountPointsFromMountInfo(""), Points{});
    EXPECT_EQ(mountPointsFromMountInfo("\n\n1 2 3\n1 2 0:1 / relative rw\nnonsense\n9 9 0:9 / /last"),
              (Points{"/last"}));
}

TEST(MountInfoTests, aRecordTellsWhatIsMountedWhereAndFromWhat) {
    EXPECT_EQ(
        mountRecordsFromMountInfo(
            "22 27 0:21 / /proc rw,relatime - proc proc rw\n"
            "27 1 254:3 / / rw,relatime shared:1 master:2 - ext4 /dev/vda rw\n"
            "40 27 8:17 /sub /Volumes/Kerja\\040Lama ro shared:7 - fuseblk /dev/disk\\040one rw,user_id=0\n"),
        (Records{{22, 27, 0, 21, "/proc", "proc", "proc"},
                 {27, 1, 254, 3, "/", "ext4", "/dev/vda"},
                 {40, 27, 8, 17, "/Volumes/Kerja Lama", "fuseblk", "/dev/disk one"}}));
}

TEST(MountInfoTests, whatADamagedLineLacksIsZeroOrEmpty) {
    EXPECT_EQ(mountRecordsFromMountInfo("9 8 0:9 / /last"), (Records{{9, 8, 0, 9, "/last", "", ""}}));
    EXPECT_EQ(mountRecordsFromMountInfo("9 8 0:9 / /last rw shared:1"),
              (Records{{9, 8, 0, 9, "/last", "", ""}}));
    EXPECT_EQ(mountRecordsFromMountInfo("9 8 0:9 / /last rw - ext4"),
              (Records{{9, 8, 0, 9, "/last", "ext4", ""}}));
    EXPECT_EQ(mountRecordsFromMountInfo("x y z / /last rw - a b c"),
              (Records{{0, 0, 0, 0, "/last", "a", "b"}}));
    EXPECT_EQ(mountRecordsFromMountInfo("99999999999999999999 1 -1:5x / /last rw - a b c"),
              (Records{{0, 1, 0, 0, "/last", "a", "b"}}));
    EXPECT_EQ(mountRecordsFromMountInfo("1 2 3\n\nrelative\n1 2 3:4 / relative rw - a b c\n"), Records{});
}

TEST(MountInfoTests, aSourceThatIsAHyphenDoesNotMisleadTheReader) {
    EXPECT_EQ(mountRecordsFromMountInfo("1 2 0:5 / /x rw - tmpfs - rw\n"),
              (Records{{1, 2, 0, 5, "/x", "tmpfs", "-"}}));
}

/// The mount points of those that are visible, each written as "id parent point".
Points visible(const std::vector<std::string>& mounts) {
    std::string text;
    for (const auto& mount : mounts) {
        std::istringstream fields(mount);
        std::string id, parent, point;
        fields >> id >> parent >> point;
        text.append(id).append(" ").append(parent).append(" 0:1 / ").append(point).append(" rw - a a rw\n");
    }
    Points points;
    for (const auto& mount : Platform::visibleMounts(mountRecordsFromMountInfo(text)))
        points.push_back(std::to_string(mount.id) + " " + mount.mountPoint);
    return points;
}

TEST(MountInfoTests, mountsBesideAndBelowEachOtherAreVisible) {
    EXPECT_EQ(visible({"1 0 /", "2 1 /a", "3 2 /a/b", "4 1 /ab", "5 1 /c/d"}),
              (Points{"1 /", "2 /a", "3 /a/b", "4 /ab", "5 /c/d"}));
}

TEST(MountInfoTests, ofMountsOnOnePointTheUppermostIsVisible) {
    EXPECT_EQ(visible({"1 0 /", "2 1 /a", "3 2 /a", "4 3 /a", "5 4 /a/b"}),
              (Points{"1 /", "4 /a", "5 /a/b"}));
    EXPECT_EQ(visible({"1 0 /", "2 1 /"}), (Points{"2 /"}));
}

TEST(MountInfoTests, whatLiesUnderAMountThatCameLaterIsNotVisible) {
    EXPECT_EQ(visible({"1 0 /", "2 1 /a/b", "3 1 /a", "4 2 /a/b/c"}), (Points{"1 /", "3 /a"}));
    EXPECT_EQ(visible({"1 0 /", "2 1 /a", "3 2 /a/b", "4 2 /a"}), (Points{"1 /", "4 /a"}));
    EXPECT_EQ(visible({"1 0 /", "2 1 /a/b", "3 1 /a", "4 3 /a/b"}), (Points{"1 /", "3 /a", "4 /a/b"}));
    EXPECT_EQ(visible({"1 0 /", "2 1 /a", "3 1 /"}), (Points{"3 /"}));
}

TEST(MountInfoTests, aMountThatLiesOnOneThatIsNotListedIsVisible) {
    EXPECT_EQ(visible({"7 3 /", "8 7 /a", "9 99 /b"}), (Points{"7 /", "8 /a", "9 /b"}));
}

TEST(MountInfoTests, aRootThatLiesOnItselfCoversNothing) {
    EXPECT_EQ(visible({"1 1 /", "2 1 /a"}), (Points{"1 /", "2 /a"}));
}

TEST(MountInfoTests, aTableThatLeadsInACircleIsReadToItsEnd) {
    EXPECT_EQ(visible({"1 2 /a", "2 1 /b"}), (Points{"1 /a", "2 /b"}));
}

} // namespace
} // namespace korvanti
