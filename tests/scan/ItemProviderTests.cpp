#include "scan/ItemProvider.h"

#include <chrono>
#include <gtest/gtest.h>
#include <optional>

namespace korvanti {
namespace {

using namespace std::chrono_literals;

class ScanContextTests : public ::testing::Test {
protected:
    const Instant now = instantFromSeconds(1'800'000'000);
    ScanContext context;

    ScanContextTests() {
        context.home = "/Users/tester";
        context.inactiveDays = 21;
        context.now = now;
    }

    [[nodiscard]] Instant ago(std::chrono::microseconds distance) const { return now - distance; }
};

TEST_F(ScanContextTests, noDateIsNoNumberOfDays) {
    EXPECT_EQ(context.daysSince(std::nullopt), std::nullopt);
}

TEST_F(ScanContextTests, daysAreCutTowardZero) {
    EXPECT_EQ(context.daysSince(now), 0);
    EXPECT_EQ(context.daysSince(ago(86399s)), 0);
    EXPECT_EQ(context.daysSince(ago(86400s - 1us)), 0);
    EXPECT_EQ(context.daysSince(ago(86400s)), 1);
    EXPECT_EQ(context.daysSince(ago(2 * 86400s - 1s)), 1);
}

TEST_F(ScanContextTests, aDateToComeIsZeroOrLess) {
    EXPECT_EQ(context.daysSince(ago(-1s)), 0);
    EXPECT_EQ(context.daysSince(ago(-86399s)), 0);
    EXPECT_EQ(context.daysSince(ago(-86400s)), -1);
    EXPECT_EQ(context.daysSince(ago(-3 * 86400s + 1s)), -2);
}

TEST_F(ScanContextTests, noSignOfUseIsInactive) {
    EXPECT_TRUE(context.isInactive(std::nullopt));
}

TEST_F(ScanContextTests, exactlyTheLimitIsNotInactive) {
    EXPECT_FALSE(context.isInactive(ago(21 * 86400s)));
    EXPECT_FALSE(context.isInactive(ago(22 * 86400s - 1s)));
}

TEST_F(ScanContextTests, oneFullDayMoreIsInactive) {
    EXPECT_TRUE(context.isInactive(ago(22 * 86400s)));
}

TEST_F(ScanContextTests, aDateToComeIsNotInactive) {
    EXPECT_FALSE(context.isInactive(ago(-400 * 86400s)));
}

TEST_F(ScanContextTests, aPathIsPutUnderTheHomeFolder) {
    EXPECT_EQ(context.url("Library/Caches"), "/Users/tester/Library/Caches");
}

} // namespace
} // namespace korvanti
