#include "ModelFixture.h"
#include "support/BeforeCall.h"

#include <QSignalSpy>
#include <QTimer>
#include <chrono>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <latch>
#include <optional>
#include <string>
#include <thread>
#include <vector>

/// The program is to quit while something is under way. In the box.
namespace korvanti {
namespace {

using namespace korvanti::testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class AppModelEndTests : public ModelFixture {
protected:
    void release() { released.count_down(); }

    /// Cleans three items and comes back when the second is under way.
    void beginCleanup() {
        gate.emplace(Call::unlinkAt, "second", [this] { released.wait(); });
        saveReport({first, second, third});
        model().requestCleanup({first, second, third});
        model().confirmCleanup();
        ASSERT_TRUE(waitFor([&] { return model().cleanCurrent() == second.title; }));
    }
    void expectTwoOfThreeDone() {
        EXPECT_FALSE(model().isCleaning());
        ASSERT_THAT(model().outcomes(), SizeIs(2));
        EXPECT_EQ(model().outcomes()[0].id(), first.id());
        EXPECT_TRUE(model().outcomes()[1].success) << model().outcomes()[1].message;
        EXPECT_THAT(savedPaths(), ElementsAre(third.path));
        EXPECT_THAT(model().selection(), ElementsAre(third.path));
        EXPECT_THAT(ActivityLog(AppPaths::activity()).load(10), SizeIs(2));
        EXPECT_TRUE(std::filesystem::exists(third.path));
    }

    const CleanupItem first = folderItem("Library/Caches/first");
    const CleanupItem second = folderItem("Library/Caches/second"); ///< which takes until `release`
    const CleanupItem third = folderItem("Library/Caches/third");
    std::latch released{1};
    std::optional<BeforeCall> gate;
};

TEST_F(AppModelEndTests, withNothingUnderWayTheEndIsToldAtOnceButLater) {
    QSignalSpy ended(&model(), &AppModel::workEnded);
    EXPECT_FALSE(model().hasWorkThatMustEnd());
    EXPECT_FALSE(model().isEnding());
    model().endSoon();
    EXPECT_TRUE(model().isEnding());
    EXPECT_EQ(ended.count(), 0);
    ASSERT_TRUE(waitFor([&] { return ended.count() == 1; }));
}

TEST_F(AppModelEndTests, aCleanupEndsBehindTheItemThatItIsAt) {
    beginCleanup();
    EXPECT_TRUE(model().hasWorkThatMustEnd());
    QSignalSpy ended(&model(), &AppModel::workEnded);
    model().endSoon();
    model().endSoon();
    spinFor(std::chrono::milliseconds(100));
    EXPECT_EQ(ended.count(), 0);
    EXPECT_TRUE(model().isCleaning());
    release();
    ASSERT_TRUE(waitFor([&] { return ended.count() > 0; }));
    expectTwoOfThreeDone();
    EXPECT_FALSE(model().hasWorkThatMustEnd());
    spinFor(std::chrono::milliseconds(50));
    EXPECT_EQ(ended.count(), 1);
    EXPECT_LT(model().cleanProgress(), 1.0);
}

TEST_F(AppModelEndTests, theEndCanBeAwaitedWithoutAnEventLoop) {
    beginCleanup();
    QTimer::singleShot(100, &model(), [&] { release(); });
    model().awaitEnd();
    expectTwoOfThreeDone();
    model().awaitEnd(); // there is nothing any more
}

TEST_F(AppModelEndTests, nothingThatMustEndBeginsAnyMore) {
    model().endSoon();
    model().requestCleanup({first});
    model().confirmCleanup();
    EXPECT_FALSE(model().isCleaning());
    model().restore({});
    EXPECT_FALSE(model().busyMessage().has_value());
    EXPECT_FALSE(model().hasWorkThatMustEnd());
    EXPECT_TRUE(std::filesystem::exists(first.path));
}

TEST_F(AppModelEndTests, whatOnlyReadsNeedNotEnd) {
    model().scan();
    model().generateMap();
    model().loadApps();
    EXPECT_FALSE(model().hasWorkThatMustEnd());
    QSignalSpy ended(&model(), &AppModel::workEnded);
    model().endSoon();
    ASSERT_TRUE(waitFor([&] { return ended.count() == 1; }));
}

TEST_F(AppModelEndTests, noFurtherApplicationIsAskedFor) {
    mac.home.file(".Trash", {.text = "no folder"});
    std::vector<CleanupItem> applications;
    for (const auto* name : {"One", "Two"}) {
        mac.installApplication(name, std::string("org.example.") + name);
        applications.push_back(
            item(std::string("/Applications/") + name + ".app", Safety::review, CleanupAction::trash()));
    }
    saveReport(applications);
    model().requestCleanup(applications);
    desktop.whileRecycling = [&] { model().endSoon(); };
    model().confirmCleanup();
    ASSERT_TRUE(waitFor([&] { return !model().isCleaning(); }));
    EXPECT_THAT(desktop.recycled, ElementsAre("/Applications/One.app"));
    ASSERT_THAT(model().outcomes(), SizeIs(2));
    EXPECT_TRUE(model().outcomes()[0].success);
    EXPECT_FALSE(model().outcomes()[1].success);
    EXPECT_THAT(savedPaths(), ElementsAre("/Applications/Two.app"));
}

TEST_F(AppModelEndTests, aModelThatGoesStopsItsCleanup) {
    beginCleanup();
    std::thread later([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        release();
    });
    startAgain();
    later.join();
    EXPECT_FALSE(std::filesystem::exists(second.path));
    EXPECT_TRUE(std::filesystem::exists(third.path));
}

TEST_F(AppModelEndTests, aModelMayGoWhileAllIsUnderWay) {
    for (int i = 0; i < 5; ++i) {
        model().scan();
        model().generateMap();
        model().loadApps();
        model().refreshVolumes();
        model().speedTest({.mountPath = home("none")});
        spinFor(std::chrono::milliseconds(i * 3));
        startAgain();
    }
    spinFor(std::chrono::milliseconds(100));
    EXPECT_FALSE(model().isScanning());
}

} // namespace
} // namespace korvanti
