#include "ShellSupport.h"
#include "shell/Desktop.h"
#include "support/BoxFolder.h"
#include "support/Mount.h"

#include <gtest/gtest.h>
#include <memory>
#include <optional>

/// Real mounts: in the box as root.
namespace korvanti {
namespace {

using namespace korvanti::testing;

class WatchingTests : public ::testing::Test {
protected:
    WatchingTests() {
        application();
        desktop->watchMounts([this] { ++changes; });
    }

    const BoxMac mac;
    const BoxFolder volumes{"/Volumes"};
    std::unique_ptr<Desktop> desktop = systemDesktop("/Users/tester");
    int changes = 0;
};

TEST_F(WatchingTests, nothingIsToldWhileNothingHappens) {
    spinFor(std::chrono::milliseconds(100));
    EXPECT_EQ(changes, 0);
}

TEST_F(WatchingTests, eachMountAndUnmountIsToldOnce) {
    const auto path = volumes.folder("Kerja");
    for (int round = 0; round < 3; ++round) {
        changes = 0;
        std::optional<Mount> mount(path);
        ASSERT_TRUE(waitFor([&] { return changes > 0; }));
        spinFor(std::chrono::milliseconds(50));
        EXPECT_EQ(changes, 1);
        mount.reset();
        ASSERT_TRUE(waitFor([&] { return changes > 1; }));
        spinFor(std::chrono::milliseconds(50));
        EXPECT_EQ(changes, 2);
    }
}

TEST_F(WatchingTests, nothingIsToldOnceTheDesktopIsGone) {
    desktop.reset();
    const Mount mount(volumes.folder("Kerja"));
    spinFor(std::chrono::milliseconds(100));
    EXPECT_EQ(changes, 0);
}

} // namespace
} // namespace korvanti
