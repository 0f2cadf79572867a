#include "ui/UninstallModel.h"

#include "AppsSupport.h"
#include "base/ByteText.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <gmock/gmock.h>
#include <memory>
#include <string>
#include <vector>

namespace korvanti {
namespace {

using namespace korvanti::testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Optional;
using ::testing::SizeIs;

class UninstallModelTests : public AppsFixture {
protected:
    UninstallModel& sheet() {
        if (!sheet_)
            sheet_ = std::make_unique<UninstallModel>(model());
        return *sheet_;
    }
    [[nodiscard]] static InstalledApp tool() {
        InstalledApp app;
        app.name = "Tool";
        app.path = "/Applications/Tool.app";
        app.bundleID = "org.example.tool";
        app.version = "1.2";
        app.bytes = 1'000;
        app.data = {
            {.path = "/Users/tester/Library/Caches/org.example.tool", .kind = "Cache", .bytes = 300},
            {.path = "/Users/tester/Library/Application Support/Tool", .kind = "Data aplikasi", .bytes = 20}};
        app.advice = "Masih dipakai.";
        return app;
    }
    [[nodiscard]] std::vector<bool> chosen() {
        std::vector<bool> chosen;
        for (const auto& row : sheet().rows()->rows())
            chosen.push_back(row["isChosen"].toBool());
        return chosen;
    }
    [[nodiscard]] const CleanupItem& requested() {
        if (!model().pendingCleanup() || model().pendingCleanup()->size() != 1)
            throw std::runtime_error("not one item was asked for");
        return model().pendingCleanup()->front();
    }

private:
    std::unique_ptr<UninstallModel> sheet_;
};

TEST_F(UninstallModelTests, itIsClosedAtFirst) {
    EXPECT_FALSE(sheet().isOpen());
    sheet().confirm();
    sheet().confirmDataOnly();
    sheet().toggle(0);
    EXPECT_FALSE(model().pendingCleanup().has_value());
}

TEST_F(UninstallModelTests, itShowsTheBundleAndItsData) {
    sheet().open(tool());
    EXPECT_TRUE(sheet().isOpen());
    EXPECT_EQ(sheet().name(), "Tool");
    EXPECT_EQ(sheet().totalText().toStdString(), bytesText(1'320));
    EXPECT_EQ(sheet().advice(), "Masih dipakai.");
    EXPECT_FALSE(sheet().isSuggested());
    EXPECT_THAT(columnOf(*sheet().rows(), "title"), ElementsAre("Aplikasi", "Cache", "Data aplikasi"));
    EXPECT_THAT(columnOf(*sheet().rows(), "path"),
                ElementsAre("/Applications/Tool.app", "~/Library/Caches/org.example.tool",
                            "~/Library/Application Support/Tool"));
    EXPECT_THAT(columnOf(*sheet().rows(), "sizeText"),
                ElementsAre(bytesText(1'000), bytesText(300), bytesText(20)));
}

TEST_F(UninstallModelTests, theFirstOfferIsTheBundleAlone) {
    sheet().open(tool());
    EXPECT_THAT(chosen(), ElementsAre(true, false, false));
    EXPECT_EQ(sheet().confirmText(), moveText(1'000));
    EXPECT_TRUE(sheet().canConfirm());
}

TEST_F(UninstallModelTests, versionAndStoreAreToldWhereTheyAreKnown) {
    struct Row {
        std::optional<std::string> version;
        bool fromAppStore;
        const char* origin;
    };
    for (const auto& [version, fromAppStore, origin] :
         {Row{"1.2", true, "Versi 1.2 · App Store"}, Row{"1.2", false, "Versi 1.2"},
          Row{std::nullopt, true, "App Store"}, Row{std::nullopt, false, ""}}) {
        auto app = tool();
        app.version = version;
        app.fromAppStore = fromAppStore;
        sheet().open(app);
        EXPECT_EQ(sheet().origin(), origin);
    }
}

TEST_F(UninstallModelTests, theSizeIsThatOfWhatIsChosen) {
    sheet().open(tool());
    sheet().toggle(1);
    EXPECT_EQ(sheet().confirmText(), moveText(1'300));
    sheet().toggle(2);
    EXPECT_EQ(sheet().confirmText(), moveText(1'320));
    sheet().toggle(0);
    EXPECT_EQ(sheet().confirmText(), moveText(320));
    sheet().toggle(1);
    EXPECT_EQ(sheet().confirmText(), moveText(20));
    EXPECT_THAT(chosen(), ElementsAre(false, false, true));
}

TEST_F(UninstallModelTests, withNothingChosenThereIsNothingToConfirm) {
    sheet().open(tool());
    sheet().toggle(0);
    EXPECT_FALSE(sheet().canConfirm());
    sheet().confirm();
    EXPECT_TRUE(sheet().isOpen());
    EXPECT_FALSE(model().pendingCleanup().has_value());
}

TEST_F(UninstallModelTests, aBundleWithoutASizeCannotBeConfirmedByTheButton) {
    auto app = tool();
    app.bytes = 0;
    sheet().open(app);
    EXPECT_FALSE(sheet().canConfirm());
    sheet().toggle(2);
    EXPECT_TRUE(sheet().canConfirm());
}

TEST_F(UninstallModelTests, theBundleAloneIsOneItem) {
    sheet().open(tool());
    sheet().confirm();
    EXPECT_FALSE(sheet().isOpen());
    CleanupItem expected;
    expected.title = "Tool";
    expected.detail = "Masih dipakai.";
    expected.path = "/Applications/Tool.app";
    expected.bytes = 1'000;
    expected.category = ItemCategory::apps;
    expected.safety = Safety::review;
    expected.action = CleanupAction::trash();
    expected.recommended = false;
    expected.relatedPaths.emplace();
    EXPECT_EQ(requested(), expected);
}

TEST_F(UninstallModelTests, itsDataFollowInTheirOrder) {
    sheet().open(tool());
    sheet().toggle(2);
    sheet().toggle(1);
    sheet().confirm();
    EXPECT_EQ(requested().title, "Tool");
    EXPECT_EQ(requested().path, "/Applications/Tool.app");
    EXPECT_EQ(requested().bytes, 1'320);
    EXPECT_THAT(requested().relatedPaths,
                Optional(ElementsAre("/Users/tester/Library/Caches/org.example.tool",
                                     "/Users/tester/Library/Application Support/Tool")));
}

TEST_F(UninstallModelTests, someDataAloneAreNamedSo) {
    sheet().open(tool());
    sheet().toggle(0);
    sheet().toggle(2);
    sheet().confirm();
    EXPECT_EQ(requested().title, "Data Tool");
    EXPECT_EQ(requested().path, "/Users/tester/Library/Application Support/Tool");
    EXPECT_EQ(requested().bytes, 20);
    EXPECT_THAT(requested().relatedPaths, Optional(IsEmpty()));
}

TEST_F(UninstallModelTests, allItsDataAloneGoByOneButton) {
    sheet().open(tool());
    EXPECT_TRUE(sheet().hasData());
    sheet().confirmDataOnly();
    EXPECT_FALSE(sheet().isOpen());
    EXPECT_EQ(requested().title, "Data Tool");
    EXPECT_EQ(requested().path, "/Users/tester/Library/Caches/org.example.tool");
    EXPECT_EQ(requested().bytes, 320);
    EXPECT_THAT(requested().relatedPaths,
                Optional(ElementsAre("/Users/tester/Library/Application Support/Tool")));
}

TEST_F(UninstallModelTests, withoutDataThereIsNothingToRemoveAlone) {
    auto app = tool();
    app.data.clear();
    sheet().open(app);
    EXPECT_FALSE(sheet().hasData());
    EXPECT_THAT(sheet().rows()->rows(), SizeIs(1));
    sheet().confirmDataOnly();
    EXPECT_FALSE(model().pendingCleanup().has_value());
    EXPECT_TRUE(sheet().isOpen());
}

TEST_F(UninstallModelTests, whatWasChosenForOneIsForgottenForTheNext) {
    sheet().open(tool());
    sheet().toggle(0);
    sheet().toggle(1);
    sheet().dismiss();
    sheet().open(tool());
    EXPECT_THAT(chosen(), ElementsAre(true, false, false));
}

TEST_F(UninstallModelTests, whatItShowedStaysWhileItCloses) {
    sheet().open(tool());
    sheet().dismiss();
    EXPECT_FALSE(sheet().isOpen());
    EXPECT_EQ(sheet().name(), "Tool");
    EXPECT_THAT(sheet().rows()->rows(), SizeIs(3));
    EXPECT_FALSE(model().pendingCleanup().has_value());
    sheet().toggle(1);
    sheet().confirm();
    EXPECT_FALSE(model().pendingCleanup().has_value()) << "a second click comes too late";
}

TEST_F(UninstallModelTests, aNumberThatIsNoRowChangesNothing) {
    sheet().open(tool());
    for (const int row : {-1, 3, 1'000'000})
        sheet().toggle(row);
    EXPECT_THAT(chosen(), ElementsAre(true, false, false));
}

TEST_F(UninstallModelTests, aRowThatIsToggledStays) {
    const QAbstractItemModelTester tester(sheet().rows());
    sheet().open(tool());
    const QSignalSpy removed(sheet().rows(), &QAbstractItemModel::rowsRemoved);
    const QSignalSpy inserted(sheet().rows(), &QAbstractItemModel::rowsInserted);
    const QSignalSpy reset(sheet().rows(), &QAbstractItemModel::modelReset);
    sheet().toggle(1);
    EXPECT_EQ(removed.size() + inserted.size() + reset.size(), 0);
}

TEST_F(UninstallModelTests, anOpenApplicationIsWarnedOf) {
    desktop.running = {"/Applications/Tool.app"};
    sheet().open(tool());
    EXPECT_EQ(sheet().runningText(), "Tool sedang terbuka. Tutup dulu sebelum menghapus.");
    EXPECT_TRUE(sheet().canConfirm()) << "no more than a warning";
    sheet().closeApp();
    EXPECT_THAT(desktop.askedToEnd, ElementsAre("/Applications/Tool.app"));
    EXPECT_NE(sheet().runningText(), "") << "it takes its time";
    desktop.running.clear();
    EXPECT_TRUE(waitFor([&] { return sheet().runningText().isEmpty(); }));
}

TEST_F(UninstallModelTests, oneThatIsOpenedMeanwhileIsWarnedOf) {
    sheet().open(tool());
    EXPECT_EQ(sheet().runningText(), "");
    desktop.running = {"/Applications/Tool.app"};
    EXPECT_TRUE(waitFor([&] { return !sheet().runningText().isEmpty(); }));
}

TEST_F(UninstallModelTests, withoutAnIdentifierNobodyCanTell) {
    desktop.running = {"/Applications/Tool.app"};
    auto app = tool();
    app.bundleID.reset();
    sheet().open(app);
    EXPECT_EQ(sheet().runningText(), "");
}

TEST_F(UninstallModelTests, namesAreShownAsOneLineOfText) {
    auto app = tool();
    app.name = "<b>A</b>\nB\xff";
    app.version = "1\n2";
    app.data[0].path = "/Users/tester/Library/Caches/\xff\n";
    sheet().open(app);
    EXPECT_FALSE(sheet().name().contains('\n'));
    EXPECT_TRUE(sheet().name().startsWith("<b>A</b>"));
    EXPECT_FALSE(sheet().origin().contains('\n'));
    EXPECT_FALSE(columnOf(*sheet().rows(), "path")[1].contains('\n'));
    sheet().toggle(1);
    sheet().confirm();
    EXPECT_EQ(requested().title, "<b>A</b>\nB\xff");
    EXPECT_THAT(requested().relatedPaths, Optional(ElementsAre("/Users/tester/Library/Caches/\xff\n")))
        << "its very bytes";
}

} // namespace
} // namespace korvanti
