#include "drives/RelocationService.h"

#include "fs/PathTools.h"
#include "support/BoxFolder.h"
#include "support/Mount.h"

#include <cerrno>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <variant>

namespace korvanti {
namespace {

using testing::BoxFolder;
using ::testing::ElementsAre;
using testing::Mount;
using testing::textOf;

constexpr std::int64_t page = 4096;

/// Needs the right to mount: runs in the box as root.
class RelocationServiceMountTests : public ::testing::Test {
protected:
    static VolumeInfo volume() { return {.mountPath = "/Volumes/Work", .fsType = "apfs"}; }

    testing::BoxMac mac;
    BoxFolder work{"/Volumes/Work"};
};

TEST_F(RelocationServiceMountTests, aFullVolumeGetsNoHalfFileThatWouldThenStay) {
    const std::string settings(3 * page, 'x');
    mac.home.file(".gradle/gradle.properties", {.text = settings});
    const RelocationService service(mac.home.path(), "com.example.Xcode");
    const auto folder = work.path("Korvanti Dev/gradle.noindex");
    {
        const Mount disk(work.path(), 2 * page);
        EXPECT_TRUE(service.apply({DevCache::gradleHome}, volume()));
        EXPECT_TRUE(PathTools::isDirectory(folder));
        EXPECT_EQ(PathTools::children(folder), std::vector<std::string>());
    }
    EXPECT_TRUE(service.apply({DevCache::gradleHome}, volume()));
    EXPECT_EQ(textOf(folder + "/gradle.properties"), settings);
}

TEST_F(RelocationServiceMountTests, onAFullDiskTheProfileStaysAsItIs) {
    const BoxFolder point("/box/home");
    const Mount disk(point.path(), 2 * page);
    const std::string text(page, 'x');
    point.file(".zshenv", {.text = text});

    const auto done =
        RelocationService(point.path(), "com.example.Xcode").apply({DevCache::npmCache}, volume());

    ASSERT_FALSE(done);
    const auto* error = std::get_if<FileError>(&done.error());
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->code.value(), ENOSPC);
    EXPECT_EQ(error->path, "/box/home/.zshenv");
    EXPECT_EQ(textOf("/box/home/.zshenv"), text);
    EXPECT_THAT(PathTools::children(point.path()), ElementsAre("/box/home/.zshenv"));
}

} // namespace
} // namespace korvanti
