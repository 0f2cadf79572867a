#include "shell/Background.h"

#include "ShellSupport.h"

#include <atomic>
#include <chrono>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <latch>
#include <memory>
#include <optional>
#include <string>
#include <sys/resource.h>
#include <thread>
#include <vector>

namespace korvanti {
namespace {

using namespace std::chrono_literals;
using namespace korvanti::testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Le;
using ::testing::SizeIs;

class BackgroundTests : public ::testing::Test {
protected:
    BackgroundTests() { application(); }

    QObject receiver;
};

TEST_F(BackgroundTests, workRunsElsewhereAndItsResultComesHere) {
    std::optional<std::thread::id> worker;
    std::optional<std::thread::id> end;
    Background background(receiver);
    background.start([] { return std::this_thread::get_id(); },
                     [&](std::thread::id id) {
                         worker = id;
                         end = std::this_thread::get_id();
                     });
    EXPECT_FALSE(end.has_value());
    ASSERT_TRUE(waitFor([&] { return end.has_value(); }));
    EXPECT_NE(worker, std::this_thread::get_id());
    EXPECT_EQ(end, std::this_thread::get_id());
}

TEST_F(BackgroundTests, piecesRunSideBySide) {
    std::latch both(2);
    int ended = 0;
    Background background(receiver);
    for (int i = 0; i < 2; ++i)
        background.start(
            [&] {
                both.arrive_and_wait();
                return 1;
            },
            [&](int one) { ended += one; });
    EXPECT_TRUE(waitFor([&] { return ended == 2; }));
}

TEST_F(BackgroundTests, aResultNeedsNoCopy) {
    std::unique_ptr<int> result;
    Background background(receiver);
    background.start([given = std::make_unique<int>(7)]() mutable { return std::move(given); },
                     [&](std::unique_ptr<int> value) { result = std::move(value); });
    ASSERT_TRUE(waitFor([&] { return result != nullptr; }));
    EXPECT_EQ(*result, 7);
}

TEST_F(BackgroundTests, theEndWaitsForWorkWhoseResultGoesNowhere) {
    const auto held = std::make_shared<int>();
    std::atomic<bool> ended = false;
    bool told = false;
    {
        QObject gone;
        Background background(gone);
        background.start(
            [&, held] {
                std::this_thread::sleep_for(50ms);
                ended = true;
                return held;
            },
            [&, held](const std::shared_ptr<int>&) { told = true; });
    }
    EXPECT_TRUE(ended);
    spinFor(20ms);
    EXPECT_FALSE(told);
    EXPECT_EQ(held.use_count(), 1);
}

TEST_F(BackgroundTests, whereThereAreNoMoreThreadsTheWorkIsDoneAllTheSame) {
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_NPROC, &before), 0);
    const rlimit none{.rlim_cur = 0, .rlim_max = before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NPROC, &none), 0);
    std::optional<std::thread::id> worker;
    Background background(receiver);
    background.start([] { return std::this_thread::get_id(); }, [&](std::thread::id id) { worker = id; });
    ASSERT_EQ(::setrlimit(RLIMIT_NPROC, &before), 0);
    EXPECT_FALSE(worker.has_value());
    ASSERT_TRUE(waitFor([&] { return worker.has_value(); }));
    EXPECT_EQ(worker, std::this_thread::get_id());
}

class ProgressRelayTests : public BackgroundTests {
protected:
    using Relay = ProgressRelay<int>;
    std::shared_ptr<Relay> relayTo(QObject& object) {
        return std::make_shared<Relay>(object, [this](int value) { shown.push_back(value); });
    }

    std::vector<int> shown;
};

TEST_F(ProgressRelayTests, aWordIsShownInTheEventLoop) {
    const auto relay = relayTo(receiver);
    relay->tell(1);
    EXPECT_THAT(shown, IsEmpty());
    QCoreApplication::processEvents();
    EXPECT_THAT(shown, ElementsAre(1));
}

TEST_F(ProgressRelayTests, noMoreIsShownThanAScreenCanAndTheLatestAlways) {
    const auto relay = relayTo(receiver);
    QElapsedTimer timer;
    timer.start();
    int told = 0;
    while (timer.elapsed() < 400) {
        relay->tell(++told);
        QCoreApplication::processEvents();
    }
    EXPECT_GT(told, 100);
    EXPECT_THAT(shown.size(), Le(2 + static_cast<std::size_t>(timer.elapsed()) / 33));
    EXPECT_GT(shown.size(), 3U);
    EXPECT_TRUE(waitFor([&] { return shown.back() == told; }));
    EXPECT_TRUE(std::ranges::is_sorted(shown));
}

TEST_F(ProgressRelayTests, theLastWordIsShownAtTheEndAndNothingBehindIt) {
    const auto relay = relayTo(receiver);
    relay->tell(1);
    relay->tell(2);
    relay->end();
    EXPECT_THAT(shown, ElementsAre(2));
    relay->tell(3);
    relay->end();
    spinFor(100ms);
    EXPECT_THAT(shown, ElementsAre(2));
}

TEST_F(ProgressRelayTests, aWordThatWaitsForItsTurnIsShownAtTheEnd) {
    const auto relay = relayTo(receiver);
    relay->tell(1);
    QCoreApplication::processEvents();
    relay->tell(2);
    QCoreApplication::processEvents(); // too early
    EXPECT_THAT(shown, ElementsAre(1));
    relay->end();
    EXPECT_THAT(shown, ElementsAre(1, 2));
    spinFor(100ms);
    EXPECT_THAT(shown, SizeIs(2));
}

TEST_F(ProgressRelayTests, theEndOfNothingShowsNothing) {
    relayTo(receiver)->end();
    spinFor(50ms);
    EXPECT_THAT(shown, IsEmpty());
}

TEST_F(ProgressRelayTests, nothingIsShownOnceTheReceiverIsGone) {
    auto gone = std::make_unique<QObject>();
    const auto relay = relayTo(*gone);
    relay->tell(1);
    QCoreApplication::processEvents();
    relay->tell(2);
    QCoreApplication::processEvents(); // waits for its turn
    gone.reset();
    spinFor(100ms);
    EXPECT_THAT(shown, ElementsAre(1));
}

TEST_F(ProgressRelayTests, manyThreadsMayTell) {
    const auto relay = relayTo(receiver);
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([relay] {
            for (int i = 1; i <= 1'000; ++i)
                relay->tell(i);
        });
    for (auto& thread : threads)
        thread.join();
    ASSERT_TRUE(waitFor([&] { return !shown.empty(); }));
    relay->end();
    EXPECT_THAT(shown.back(), Le(1'000));
}

TEST_F(ProgressRelayTests, aWordFromWithinAWordIsShownToo) {
    std::shared_ptr<Relay> relay;
    relay = std::make_shared<Relay>(receiver, [&](int value) {
        shown.push_back(value);
        if (value < 3)
            relay->tell(value + 1);
    });
    relay->tell(1);
    ASSERT_TRUE(waitFor([&] { return shown.size() == 3; }));
    EXPECT_THAT(shown, ElementsAre(1, 2, 3));
}

} // namespace
} // namespace korvanti
