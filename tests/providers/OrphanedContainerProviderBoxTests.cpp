#include "providers/OrphanedContainerProvider.h"

#include "support/BoxFolder.h"
#include "support/Items.h"

#include <gtest/gtest.h>
#include <vector>

namespace korvanti {
namespace {

class OrphanedContainerProviderBoxTests : public ::testing::Test {
protected:
    OrphanedContainerProviderBoxTests() {
        mac.home.file("Library/Containers/com.contoh.app/data", {.allocatedBytes = 101'000'000});
    }

    [[nodiscard]] std::vector<CleanupItem> items() const {
        ScanContext context;
        context.home = mac.home.path();
        return testing::itemsOfOneScan(OrphanedContainerProvider(), context);
    }

    testing::BoxMac mac;
};

TEST_F(OrphanedContainerProviderBoxTests, anInstalledApplicationOwnsItsContainer) {
    EXPECT_EQ(items().size(), 1U);

    mac.installApplication("Contoh", "com.contoh.app");
    EXPECT_EQ(items().size(), 0U);
}

TEST_F(OrphanedContainerProviderBoxTests, anUnreadableFolderOfContainersHasNoOrphans) {
    mac.home.setMode("Library/Containers", 0);
    EXPECT_EQ(items().size(), 0U);
}

} // namespace
} // namespace korvanti
