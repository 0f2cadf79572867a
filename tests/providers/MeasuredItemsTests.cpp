#include "providers/MeasuredItems.h"

#include "support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace korvanti {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::int64_t block = 4096;

struct Candidate {
    std::string place;
};

CleanupItem item(const Candidate& candidate, std::int64_t bytes) {
    return CleanupItem::make({.path = candidate.place, .bytes = bytes});
}

std::vector<CleanupItem> items(const std::vector<Candidate>& candidates, std::int64_t fewestBytes) {
    return measuredItems(candidates, &Candidate::place, fewestBytes, ScanContext{}, item);
}

TEST(MeasuredItemsTests, showsExactlyTheFewestBytesAndHidesOneLess) {
    const testing::TempFolder temp;
    const Candidate candidate = {temp.file("data", {.allocatedBytes = 5 * block})};

    EXPECT_THAT(items({candidate}, 5 * block), ElementsAre(item(candidate, 5 * block)));
    EXPECT_THAT(items({candidate}, 5 * block + 1), IsEmpty());
}

TEST(MeasuredItemsTests, keepsTheOrderOfTheCandidates) {
    const testing::TempFolder temp;
    const Candidate small = {temp.file("small", {.allocatedBytes = block})};
    const Candidate large = {temp.file("large", {.allocatedBytes = 9 * block})};
    const Candidate empty = {temp.file("empty")};

    EXPECT_THAT(items({small, empty, large, small}, 1),
                ElementsAre(item(small, block), item(large, 9 * block), item(small, block)));
}

} // namespace
} // namespace korvanti
