#include "platform/linux/MountInfo.h"

#include <gtest/gtest.h>

namespace korvanti {
namespace {

using Points = std::vector<std::string>;
using Platform::mountPointsFromMountInfo;

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

} // namespace
} // namespace korvanti
