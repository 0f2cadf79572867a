#include "fs/SizeLedger.h"
#include "support/Mount.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>
#include <string>

namespace korvanti {
namespace {

/// Needs the right to mount: runs in the box as root.
class SizeLedgerBoxTests : public ::testing::Test {
protected:
    SizeLedgerBoxTests() {
        temp.file("tree/a/outside", {.allocatedBytes = 8192});
        temp.file("tree/a/volume/inside", {.allocatedBytes = 65536});
    }

    void expectTrueSize(const std::string& name) {
        SCOPED_TRACE(name);
        EXPECT_EQ(ledger.measure(temp.path(name)), SizeCalculator::measure(temp.path(name)));
    }

    testing::TempFolder temp;
    testing::Mount volume{temp.folder("tree/a/volume")};
    SizeLedger ledger;
};

TEST_F(SizeLedgerBoxTests, aMountedVolumeIsNamedWithEachFolderThatItLiesIn) {
    temp.file("tree/b/other");
    const auto sizes = ledger.measureAll({temp.path("tree"), temp.path("tree/a"), temp.path("tree/b")});
    for (const auto* name : {"tree", "tree/a", "tree/b"})
        EXPECT_EQ(sizes.at(temp.path(name)), SizeCalculator::measure(temp.path(name))) << name;
}

TEST_F(SizeLedgerBoxTests, whatIsKnownOfAFolderTellsItsMountsToTheWalkOfItsParent) {
    expectTrueSize("tree/a");
    expectTrueSize("tree");
}

TEST_F(SizeLedgerBoxTests, aVolumeThatIsAskedForItselfCountsOnlyThere) {
    expectTrueSize("tree/a/volume");
    expectTrueSize("tree");
    EXPECT_EQ(ledger.measure(temp.path("tree/a/volume")).bytes, 65536);
}

} // namespace
} // namespace korvanti
