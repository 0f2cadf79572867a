#include "providers/AndroidCandidate.h"

#include "support/Items.h"
#include "support/TempFolder.h"

#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace korvanti {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::paths;

class AndroidCandidateTests : public ::testing::Test {
protected:
    [[nodiscard]] AndroidCandidate candidate(const std::string& relative, std::int64_t bytes) const {
        return {.path = temp.file(relative, {.allocatedBytes = bytes}), .safety = Safety::regenerable};
    }

    testing::TempFolder temp;
    ScanContext context;
};

TEST_F(AndroidCandidateTests, exactlyTheLeastSizeIsShown) {
    const auto file = candidate("file", 8192);

    EXPECT_THAT(paths(itemsOf({file}, context, 8192)), ElementsAre(file.path));
    EXPECT_THAT(itemsOf({file}, context, 8193), IsEmpty());
}

TEST_F(AndroidCandidateTests, whatIsGoneInTheMeantimeIsNotShown) {
    EXPECT_THAT(itemsOf({{.path = temp.path("gone")}}, context, 1), IsEmpty());
}

TEST_F(AndroidCandidateTests, itemsKeepTheOrderOfTheCandidates) {
    const auto small = candidate("small", 4096);
    const auto large = candidate("large", 409'600);
    const auto middle = candidate("middle", 40'960);

    EXPECT_THAT(paths(itemsOf({middle, small, large}, context, 1)),
                ElementsAre(middle.path, small.path, large.path));
}

} // namespace
} // namespace korvanti
