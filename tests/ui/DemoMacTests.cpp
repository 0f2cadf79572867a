#include "UiSupport.h"
#include "fs/SizeCalculator.h"
#include "process/Toolchain.h"
#include "sample/DemoMac.h"
#include "support/Environment.h"

#include <QTest>
#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>
#include <iterator>
#include <string>

/// The window over the Mac of ./demo, with its disks: a whole visit by mouse and keyboard. One test, as that
/// Mac is made once a box.
namespace korvanti {
namespace {

using namespace korvanti::testing;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::SizeIs;

constexpr std::int64_t gigabyte = 1'000'000'000;
constexpr auto archives = "/Users/tester/Library/Developer/Xcode/Archives";
constexpr auto archivesOnSsd = "/Volumes/SSD Kerja/Korvanti Offload/Library/Developer/Xcode/Archives";

class DemoMacTests : public UiTests {
protected:
    DemoMacTests() { makeDemoMac(); }

    void waitForScan() {
        ASSERT_TRUE(waitFor([&] { return model().report() && !model().isScanning(); }));
        settle(100);
    }
    /// Of the item with the menu of the cleanup pane, sought by its name.
    void openMenuOf(const std::string& path, const QString& words) {
        click("pane1");
        settle(200);
        click("segment3"); // all
        press(Qt::Key_F, Qt::ControlModifier);
        type(words);
        settle(200);
        QTest::mouseClick(&window(), Qt::RightButton, Qt::NoModifier,
                          place("row:" + QString::fromStdString(path)).center().toPoint());
        settle(200);
    }
    /// By the menu of a folder's row in the pane of the disks, which is made high enough to hold all rows.
    void bringBack(const std::string& originalPath) {
        const auto& records = model().offloads();
        const auto record = std::ranges::find(records, originalPath, &OffloadRecord::originalPath);
        ASSERT_NE(record, records.end());
        resize(1140, 2400);
        click("pane4");
        settle(200);
        const auto* const button = item(QString("moved%1").arg(std::distance(records.begin(), record)))
                                       .findChild<QQuickItem*>("movedActions");
        ASSERT_NE(button, nullptr);
        const QPointF middle(button->width() / 2, button->height() / 2);
        QTest::mouseClick(&window(), Qt::LeftButton, Qt::NoModifier, button->mapToScene(middle).toPoint());
        settle(200);
        click("restoreEntry");
    }
    static SizeResult sizeOf(const std::string& path) { return SizeCalculator::measure(path); }
    static std::string simulators() {
        return Toolchain::simctl({"list", "devices", "-j"}, std::chrono::seconds(10))->out;
    }

    const ScopedVariable developer{"DEVELOPER_DIR", std::nullopt};
};

TEST_F(DemoMacTests, isScannedCleanedMovedToTheSsdAndBack) {
    window();
    waitForScan(); // on its own, without a report
    ASSERT_TRUE(waitFor([&] { return model().workVolume().has_value(); }));
    EXPECT_THAT(model().volumes(), SizeIs(2));
    EXPECT_THAT(model().offloads(), SizeIs(1));
    EXPECT_TRUE(model().storageMap().has_value());
    EXPECT_GE(model().activity().size(), 10U);
    EXPECT_EQ(model().totalBytes(), 245'107'195'904);
    EXPECT_TRUE(model().isLowSpace());

    // Cleaned: what the overview recommends.
    const auto free = model().freeBytes();
    const auto recommended = model().selectedBytes();
    EXPECT_GT(recommended, 40 * gigabyte);
    EXPECT_THAT(simulators(), HasSubstr("iPhone 14\""));
    click("cleanRecommendedButton");
    ASSERT_TRUE(waitFor([&] { return find("confirmButton") && item("confirmButton").isEnabled(); }));
    readSheet();
    EXPECT_TRUE(texts().join(' ').contains("Gradle daemon sedang berjalan"));
    settle(300);
    click("confirmButton");
    ASSERT_TRUE(waitFor([&] { return !model().isCleaning() && !model().outcomes().empty(); }));
    for (const auto& outcome : model().outcomes())
        EXPECT_TRUE(outcome.success) << outcome.item.path << ": " << outcome.message;
    EXPECT_FALSE(std::filesystem::exists("/Users/tester/Library/Developer/Xcode/DerivedData"));
    EXPECT_THAT(simulators(), Not(HasSubstr("iPhone 14\"")));
    EXPECT_FALSE(Toolchain::isRunning("GradleDaemon"));
    EXPECT_NEAR(static_cast<double>(model().freeBytes()), static_cast<double>(free + recommended), 0.5e9);
    settle(300);
    readSheet();
    press(Qt::Key_Return); // closes the result
    settle(300);
    EXPECT_FALSE(model().pendingCleanup().has_value());
    EXPECT_FALSE(model().isLowSpace());

    // To the SSD.
    const auto before = sizeOf(archives);
    const auto freeAfterCleaning = model().freeBytes();
    openMenuOf(archives, "xcarchive");
    EXPECT_EQ(text("offloadEntry"), "Pindahkan ke SSD Kerja");
    click("offloadEntry");
    ASSERT_TRUE(waitFor([&] { return model().offloads().size() == 2; }))
        << model().errorMessage().value_or("");
    ASSERT_TRUE(waitFor([&] { return !model().busyMessage(); }));
    EXPECT_TRUE(std::filesystem::is_symlink(archives));
    EXPECT_EQ(sizeOf(archivesOnSsd).logicalBytes, before.logicalBytes);
    EXPECT_NEAR(static_cast<double>(model().freeBytes()),
                static_cast<double>(freeAfterCleaning + before.bytes), 0.1e9);

    // And back.
    bringBack(archives);
    ASSERT_TRUE(waitFor([&] { return model().offloads().size() == 1; }))
        << model().errorMessage().value_or("");
    ASSERT_TRUE(waitFor([&] { return !model().busyMessage(); }));
    EXPECT_FALSE(std::filesystem::is_symlink(archives));
    EXPECT_EQ(sizeOf(archives).bytes, before.bytes);
    EXPECT_FALSE(std::filesystem::exists(archivesOnSsd));
    EXPECT_EQ(model().errorMessage(), std::nullopt);

    // A second look finds it there again, and nothing of what was cleaned.
    press(Qt::Key_R, Qt::ControlModifier);
    EXPECT_TRUE(model().isScanning());
    waitForScan();
    const auto finds = [&](const std::string& path) {
        return std::ranges::find(model().report()->items, path, &CleanupItem::path) !=
               model().report()->items.end();
    };
    EXPECT_TRUE(finds(archives));
    EXPECT_FALSE(finds("/Users/tester/Library/Developer/Xcode/DerivedData"));
}

} // namespace
} // namespace korvanti
