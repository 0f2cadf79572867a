#include "fs/SlidingWindow.h"

#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace korvanti {
namespace {

TEST(SlidingWindowTests, twentyPiecesOfWorkNeverHaveMoreThanSixUnderWay) {
    std::atomic<int> underWay = 0;
    std::atomic<int> most = 0;
    std::atomic<int> done = 0;
    runInSlidingWindow(20, 6, [&](std::size_t) {
        const int now = ++underWay;
        for (int seen = most; seen < now && !most.compare_exchange_weak(seen, now);) {
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        --underWay;
        ++done;
    });
    EXPECT_EQ(done, 20);
    EXPECT_LE(most, 6);
    EXPECT_GT(most, 1);
}

TEST(SlidingWindowTests, eachPieceIsDoneOnce) {
    std::vector<std::atomic<int>> counts(1000);
    runInSlidingWindow(counts.size(), 6, [&](std::size_t index) { ++counts[index]; });
    for (const auto& count : counts)
        EXPECT_EQ(count, 1);
}

TEST(SlidingWindowTests, windowsInsideWindowsComeToAnEnd) {
    std::atomic<int> done = 0;
    runInSlidingWindow(30, 20,
                       [&](std::size_t) { runInSlidingWindow(10, 20, [&](std::size_t) { ++done; }); });
    EXPECT_EQ(done, 300);
}

TEST(SlidingWindowTests, noWorkAndNoWindowCallNothing) {
    runInSlidingWindow(0, 6, [](std::size_t) { ADD_FAILURE(); });
    runInSlidingWindow(5, 0, [](std::size_t) { ADD_FAILURE(); });
}

} // namespace
} // namespace korvanti
