#include "drives/ProgressWatcher.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

namespace korvanti {
namespace {

TEST(ProgressWatcherTests, theEndIsReportedAtOnce) {
    std::atomic<int> reports = 0;
    {
        const ProgressWatcher watcher([&] { ++reports; });
    }
    EXPECT_EQ(reports, 1);
}

TEST(ProgressWatcherTests, aReportComesEveryThreeSecondsAndOneAtTheEnd) {
    using namespace std::chrono_literals;
    std::atomic<int> reports = 0;
    {
        const ProgressWatcher watcher([&] { ++reports; });
        while (reports < 1)
            std::this_thread::sleep_for(10ms);
    }
    EXPECT_EQ(reports, 2);
}

TEST(ProgressWatcherTests, reportsComeFromAThreadOfTheirOwn) {
    std::thread::id reporter;
    {
        const ProgressWatcher watcher([&] { reporter = std::this_thread::get_id(); });
    }
    EXPECT_NE(reporter, std::this_thread::get_id());
}

} // namespace
} // namespace korvanti
