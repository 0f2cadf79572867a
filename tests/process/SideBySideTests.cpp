#include "process/SideBySide.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <gtest/gtest.h>
#include <latch>
#include <thread>
#include <vector>

namespace korvanti {
namespace {

TEST(SideBySideTests, eachPieceIsDoneOnce) {
    std::vector<std::atomic<int>> counts(1000);
    runSideBySide(counts.size(), 8, [&](std::size_t index) { ++counts[index]; });
    for (const auto& count : counts)
        EXPECT_EQ(count, 1);
}

TEST(SideBySideTests, asManyAsAllowedAreUnderWayAtOnce) {
    std::latch allThere(8); // which nobody passes alone
    runSideBySide(8, 8, [&](std::size_t) { allThere.arrive_and_wait(); });
    SUCCEED();
}

TEST(SideBySideTests, noMoreThanAllowedAreUnderWayAtOnce) {
    std::atomic<int> underWay = 0;
    std::atomic<bool> tooMany = false;
    runSideBySide(40, 8, [&](std::size_t) {
        if (++underWay > 8)
            tooMany = true;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        --underWay;
    });
    EXPECT_FALSE(tooMany);
}

TEST(SideBySideTests, onePieceRunsOnTheCallingThread) {
    std::thread::id where;
    runSideBySide(1, 8, [&](std::size_t) { where = std::this_thread::get_id(); });
    EXPECT_EQ(where, std::this_thread::get_id());
}

TEST(SideBySideTests, withoutConcurrencyThePiecesRunOneAfterTheOther) {
    std::vector<std::size_t> order;
    runSideBySide(3, 0, [&](std::size_t index) { order.push_back(index); });
    EXPECT_EQ(order, (std::vector<std::size_t>{0, 1, 2}));
}

TEST(SideBySideTests, noWorkCallsNothing) {
    runSideBySide(0, 8, [](std::size_t) { ADD_FAILURE(); });
}

} // namespace
} // namespace korvanti
