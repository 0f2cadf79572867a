#include "ui/DateClock.h"

#include "UiSupport.h"
#include "support/Environment.h"

#include <QSignalSpy>
#include <chrono>
#include <gtest/gtest.h>

namespace korvanti {
namespace {

using namespace korvanti::testing;
using namespace std::chrono_literals;

class DateClockTests : public UiTests {
protected:
    Instant now = instantFromSeconds(1'700'000'000);
    DateClock clock{[this] { return now; }};
    const ScopedVariable language{"LC_ALL", "id_ID.UTF-8"};
};

TEST_F(DateClockTests, itTicksAtOnceWhenItIsShownAndOnAndNeverOtherwise) {
    QSignalSpy ticked(&clock, &DateClock::ticked);
    expectToFollow(clock, ticked);
}

TEST_F(DateClockTests, whatIsShownAlreadyIsNotToldAgain) {
    QSignalSpy ticked(&clock, &DateClock::ticked);
    QSignalSpy shown(&clock, &DateClock::isShownChanged);
    clock.setIsShown(false);
    EXPECT_EQ(shown.count(), 0);
    clock.setIsShown(true);
    clock.setIsShown(true);
    EXPECT_TRUE(clock.isShown());
    EXPECT_EQ(ticked.count(), 1);
    EXPECT_EQ(shown.count(), 1);
    clock.setIsShown(false);
    EXPECT_FALSE(clock.isShown());
    EXPECT_EQ(shown.count(), 2);
}

TEST_F(DateClockTests, aDateIsToldFromNow) {
    EXPECT_EQ(clock.relative(now - 2h), "2 jam yang lalu");
    EXPECT_EQ(clock.relative(now + 3h), "dalam 3 jam");
}

} // namespace
} // namespace korvanti
