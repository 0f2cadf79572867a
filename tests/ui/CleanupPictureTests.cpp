#include "PictureSupport.h"

#include <QTest>
#include <filesystem>
#include <vector>

namespace korvanti {
namespace {

using namespace korvanti::testing;

class CleanupPictureTests : public PictureTests {
protected:
    [[nodiscard]] CleanupItem itemNamed(const std::string& title) const {
        for (const auto& item : report.items)
            if (item.title == title)
                return item;
        ADD_FAILURE() << "no sample is called " << title;
        return {};
    }
    /// Five things of three kinds.
    [[nodiscard]] std::vector<CleanupItem> chosen() const {
        return {itemNamed("DerivedData Xcode"), itemNamed("Simulator klon test paralel"),
                itemNamed("Cache build Gradle 8.4"), itemNamed("iPhone 12 mini · iOS 16.4"),
                itemNamed("Xcode_16.1.xip")};
    }
    void layChosen() const {
        for (const auto& item : chosen())
            if (item.action.kind == CleanupAction::Kind::delete_)
                std::filesystem::create_directories(item.path + "/contents");
    }
};

TEST_P(CleanupPictureTests, theCleanupPane) {
    open(Pane::cleanup);
    model().setFilter(ItemFilter::all);
    take("cleanup");
}

TEST_P(CleanupPictureTests, theMenuOfAnItem) {
    open(Pane::cleanup);
    model().setFilter(ItemFilter::review);
    model().setSearch("Xcode_16");
    settle();
    const auto row = QString::fromStdString("row:" + itemNamed("Xcode_16.1.xip").path);
    QTest::mouseClick(&window(), Qt::RightButton, Qt::NoModifier, place(row).center().toPoint());
    take("menu");
}

TEST_P(CleanupPictureTests, theChoiceOfACategory) {
    open(Pane::cleanup);
    settle();
    click("categoryPicker");
    take("categories");
}

TEST_P(CleanupPictureTests, whatToDoByHand) {
    open(Pane::cleanup);
    model().setFilter(ItemFilter::all);
    model().setSearch("Runtime iOS");
    settle();
    click("guideButton:" + QString::fromStdString(itemNamed("Runtime iOS 18.2").path));
    take("guide");
}

TEST_P(CleanupPictureTests, theQuestionBeforeACleanup) {
    open(Pane::cleanup);
    model().setFilter(ItemFilter::all);
    model().requestCleanup(chosen());
    settle(2'000); // the tools that are asked for warnings
    take("confirm");
}

TEST_P(CleanupPictureTests, aCleanupThatRuns) {
    mac.answerWithScript("xcrun simctl delete A3D94C12-7B60-49E1-8F02-5C1D9E7740AB", "exec sleep 3");
    open(Pane::cleanup);
    layChosen();
    model().requestCleanup(chosen());
    model().confirmCleanup();
    ASSERT_TRUE(waitFor([&] { return model().cleanCurrent() == "iPhone 12 mini · iOS 16.4"; }));
    take("running");
}

TEST_P(CleanupPictureTests, whatACleanupDid) {
    mac.answer("xcrun simctl delete A3D94C12-7B60-49E1-8F02-5C1D9E7740AB", "");
    open(Pane::cleanup);
    layChosen();
    model().requestCleanup(chosen());
    model().confirmCleanup();
    ASSERT_TRUE(waitFor([&] { return !model().isCleaning(); }));
    take("result");
}

TEST_P(CleanupPictureTests, whatAToolSaidInLines) {
    mac.answerWithScript("xcrun simctl delete A3D94C12-7B60-49E1-8F02-5C1D9E7740AB",
                         "printf 'An error was encountered.\\nUnable to delete.\\n' >&2; exit 1");
    open(Pane::cleanup);
    layChosen();
    model().requestCleanup(chosen());
    model().confirmCleanup();
    ASSERT_TRUE(waitFor([&] { return !model().isCleaning(); }));
    settle();
    EXPECT_TRUE(texts().contains("An error was encountered.\nUnable to delete."))
        << texts().join(" | ").toStdString();
    take("result-lines");
}

INSTANTIATE_TEST_SUITE_P(EachLook, CleanupPictureTests, eachLook, nameOfLook);

} // namespace
} // namespace korvanti
