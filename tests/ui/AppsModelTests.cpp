#include "ui/AppsModel.h"

#include "AppsSupport.h"
#include "base/ByteText.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <filesystem>
#include <gmock/gmock.h>
#include <string>
#include <vector>

namespace korvanti {
namespace {

using namespace korvanti::testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using ::testing::UnorderedElementsAre;

class AppsModelTests : public AppsFixture {
protected:
    AppListModel& rows() { return *apps().rows(); }
    std::vector<std::string> names() { return columnOf(rows(), "name"); }
    std::string value(int row, const char* role) {
        return roleOf(rows(), row, role).toString().toStdString();
    }
    void reload() {
        apps().reload();
        ASSERT_TRUE(waitFor([&] { return !model().appsLoading(); }));
    }
};

// When they are listed

TEST_F(AppsModelTests, theyAreListedWhenThePaneIsOpened) {
    installSome();
    panes();
    EXPECT_FALSE(model().appsLoading());
    model().setPane(Pane::apps);
    EXPECT_TRUE(model().appsLoading());
    EXPECT_TRUE(apps().isLoading());
    EXPECT_TRUE(apps().isFirstLoading());
    EXPECT_FALSE(apps().isEmpty());
    ASSERT_TRUE(waitFor([&] { return !model().appsLoading(); }));
    EXPECT_FALSE(apps().isLoading());
    EXPECT_FALSE(apps().isFirstLoading());
    EXPECT_EQ(model().apps().size(), 4U);
}

TEST_F(AppsModelTests, aPaneThatIsOpenFromTheStartListsThem) {
    model().setPane(Pane::apps);
    panes();
    EXPECT_TRUE(model().appsLoading());
}

TEST_F(AppsModelTests, theyAreListedButOnce) {
    installSome();
    load();
    model().setPane(Pane::overview);
    model().setPane(Pane::apps);
    EXPECT_FALSE(model().appsLoading());
}

TEST_F(AppsModelTests, whereThereWereNoneTheyAreLookedForAgain) {
    load();
    EXPECT_THAT(model().apps(), IsEmpty());
    model().setPane(Pane::overview);
    EXPECT_FALSE(model().appsLoading());
    model().setPane(Pane::apps);
    EXPECT_TRUE(model().appsLoading());
}

TEST_F(AppsModelTests, whileTheyAreListedAnewTheOldOnesStay) {
    installSome();
    load();
    apps().setFilterIndex(3);
    apps().reload();
    EXPECT_TRUE(apps().isLoading());
    EXPECT_FALSE(apps().isFirstLoading());
    EXPECT_FALSE(apps().isEmpty());
    EXPECT_EQ(rows().rowCount(), 4);
}

// Filters

TEST_F(AppsModelTests, theFiltersAreThese) {
    EXPECT_EQ(apps().filters(), (QStringList{"Saran", "Jarang dipakai", "Terbesar", "Semua"}));
    EXPECT_EQ(apps().filterIndex(), 0);
}

TEST_F(AppsModelTests, eachFilterShowsItsOwnLargestFirst) {
    installSome();
    load();
    EXPECT_THAT(names(), ElementsAre("Game", "Old"));
    apps().setFilterIndex(1);
    EXPECT_THAT(names(), ElementsAre("Game", "Old"));
    apps().setFilterIndex(2);
    EXPECT_THAT(names(), ElementsAre("Tool", "Game", "Old"));
    apps().setFilterIndex(3);
    EXPECT_THAT(names(), ElementsAre("Tool", "Game", "Old", "Sys"));
}

TEST_F(AppsModelTests, aNumberThatIsNoFilterChangesNothing) {
    QSignalSpy changes(&apps(), &AppsModel::filterIndexChanged);
    for (const int index : {-1, 4, 0, 1'000'000})
        apps().setFilterIndex(index);
    EXPECT_EQ(apps().filterIndex(), 0);
    EXPECT_EQ(changes.size(), 0);
    apps().setFilterIndex(2);
    EXPECT_EQ(changes.size(), 1);
}

TEST_F(AppsModelTests, withoutASuggestionThereIsNoEmptyTable) {
    install("Sys", {.identifier = "com.apple.sys"});
    load();
    EXPECT_TRUE(apps().isEmpty());
    EXPECT_EQ(apps().emptyTitle(), "Tidak ada saran");
    EXPECT_EQ(apps().emptyText(),
              "Semua app masih dipakai. Lihat 'Terbesar' untuk app yang paling makan tempat.");
    for (const int filter : {1, 2}) {
        apps().setFilterIndex(filter);
        EXPECT_TRUE(apps().isEmpty());
        EXPECT_EQ(apps().emptyTitle(), "Tidak ada app");
        EXPECT_EQ(apps().emptyText(), "");
    }
    apps().setFilterIndex(3);
    EXPECT_FALSE(apps().isEmpty());
}

// Summary

TEST_F(AppsModelTests, theSummaryCountsWhatIsSuggested) {
    installSome();
    load();
    const auto bytes = appNamed("Game").totalBytes() + appNamed("Old").totalBytes();
    EXPECT_EQ(apps().summary().toStdString(), "2 app disarankan · " + bytesText(bytes));
    apps().setFilterIndex(3);
    EXPECT_EQ(apps().summary().toStdString(), "2 app disarankan · " + bytesText(bytes));
}

TEST_F(AppsModelTests, withoutASuggestionThereIsNoSummary) {
    install("Sys", {.identifier = "com.apple.sys"});
    load();
    EXPECT_EQ(apps().summary(), "");
}

// Rows

TEST_F(AppsModelTests, aRowIsReadyToBeShown) {
    installSome();
    load();
    apps().setFilterIndex(3);
    const auto& tool = appNamed("Tool");
    EXPECT_EQ(value(0, "path"), "/Applications/Tool.app");
    EXPECT_EQ(value(0, "advice"), "Masih dipakai, datanya terakhir berubah 3 hari yang lalu.");
    EXPECT_EQ(value(0, "role"), "Kerja");
    EXPECT_EQ(value(0, "reason"), "Tool developer");
    EXPECT_EQ(value(0, "sizeText"), bytesText(tool.totalBytes()));
    EXPECT_EQ(value(0, "dataText"), "data " + bytesText(tool.dataBytes()));
    EXPECT_EQ(value(0, "lastActivity"), "3 hari yang lalu");
    EXPECT_EQ(value(0, "isSuggested"), "false");
    EXPECT_EQ(value(0, "isNonWork"), "false");
    EXPECT_EQ(value(0, "isRemovable"), "true");
    EXPECT_EQ(value(0, "spokenTitle"), "Tool, Kerja, " + bytesText(tool.totalBytes()));
    EXPECT_EQ(value(0, "spokenDetail"),
              "Masih dipakai, datanya terakhir berubah 3 hari yang lalu., Tool developer, data " +
                  bytesText(tool.dataBytes()) + ", Terakhir dipakai: 3 hari yang lalu");
    EXPECT_THAT(columnOf(rows(), "role"), ElementsAre("Kerja", "Non-kerja", "Lainnya", "Sistem"));
    EXPECT_THAT(columnOf(rows(), "isNonWork"), ElementsAre("false", "true", "false", "false"));
    EXPECT_THAT(columnOf(rows(), "isSuggested"), ElementsAre("false", "true", "true", "false"));
    EXPECT_THAT(columnOf(rows(), "isRemovable"), ElementsAre("true", "true", "true", "false"));
    EXPECT_EQ(value(1, "dataText"), "") << "it has none";
    EXPECT_EQ(value(1, "lastActivity"), "Tidak tercatat");
    EXPECT_THAT(value(1, "spokenTitle"), StartsWith("Game, Disarankan, Non-kerja, "));
}

TEST_F(AppsModelTests, theDatesKeepUpWithTheClock) {
    installSome();
    load();
    auto now = currentInstant();
    AppListModel timed(model(), [&] { return now; });
    timed.setFilter(AppFilter::largest);
    const QAbstractItemModelTester tester(&timed);
    QSignalSpy changes(&timed, &AppListModel::dataChanged);
    now += std::chrono::hours(24);
    expectToFollow(*timed.clock(), changes);
    EXPECT_EQ(columnOf(timed, "lastActivity").front(), "4 hari yang lalu");
    EXPECT_THAT(columnOf(timed, "spokenDetail").front(),
                ::testing::EndsWith("Terakhir dipakai: 4 hari yang lalu"));
    timed.clock()->setIsShown(true);
    ASSERT_EQ(changes.count(), 1);
    const auto names = timed.roleNames();
    EXPECT_THAT(changes.front()[2].value<QList<int>>(),
                UnorderedElementsAre(names.key("lastActivity"), names.key("spokenDetail")));
}

TEST_F(AppsModelTests, theListIsWellBehaved) {
    installSome();
    panes();
    const QAbstractItemModelTester tester(&rows());
    load();
    for (int filter = 0; filter < 4; ++filter)
        apps().setFilterIndex(filter);
    std::filesystem::remove_all("/Applications/Game.app");
    std::filesystem::remove_all("/Applications/Tool.app");
    reload();
    EXPECT_THAT(names(), ElementsAre("Old", "Sys"));
    EXPECT_FALSE(rows().data(rows().index(0), Qt::DisplayRole).isValid());
    EXPECT_FALSE(rows().data(rows().index(9), Qt::UserRole + 1).isValid());
    EXPECT_FALSE(rows().data({}, Qt::UserRole + 1).isValid());
    EXPECT_EQ(rows().rowCount(rows().index(0)), 0);
}

TEST_F(AppsModelTests, whatGoesIsTakenOutOfTheListThatStays) {
    installSome();
    load();
    apps().setFilterIndex(3);
    QSignalSpy resets(&rows(), &QAbstractItemModel::modelReset);
    QSignalSpy changes(&rows(), &QAbstractItemModel::dataChanged);
    std::filesystem::remove_all("/Applications/Game.app");
    mac.applications.file("Old.app/Contents/more", {.allocatedBytes = 100'000});
    const auto before = value(2, "sizeText");
    reload();
    EXPECT_THAT(names(), ElementsAre("Tool", "Old", "Sys"));
    EXPECT_EQ(resets.size(), 0);
    EXPECT_EQ(changes.size(), 1);
    EXPECT_EQ(value(1, "sizeText"), bytesText(appNamed("Old").totalBytes()));
    EXPECT_NE(value(1, "sizeText"), before);
}

TEST_F(AppsModelTests, anotherOrderIsAnotherList) {
    installSome();
    load();
    apps().setFilterIndex(3);
    QSignalSpy resets(&rows(), &QAbstractItemModel::modelReset);
    mac.applications.file("Old.app/Contents/more", {.allocatedBytes = 50'000'000});
    reload();
    EXPECT_THAT(names(), ElementsAre("Old", "Tool", "Game", "Sys"));
    EXPECT_EQ(resets.size(), 1);
}

TEST_F(AppsModelTests, oddNamesAreOneLineOfText) {
    for (const std::string name : {"a\xff", "b\nc", "<b>d", "\u05e9\u05dc\u05d5\u05dd"})
        install(name, {.category = "public.app-category.games"});
    load();
    EXPECT_THAT(names(), UnorderedElementsAre("a\uFFFD", ::testing::Not(::testing::HasSubstr("\n")), "<b>d",
                                              "\u05e9\u05dc\u05d5\u05dd"));
}

// Removing

TEST_F(AppsModelTests, theSheetIsOpenedAboutARow) {
    installSome();
    load();
    apps().openUninstall(1);
    EXPECT_TRUE(apps().uninstall()->isOpen());
    EXPECT_EQ(apps().uninstall()->name(), "Old");
}

TEST_F(AppsModelTests, noSheetIsOpenedAboutTheSystemOrNothing) {
    installSome();
    load();
    apps().setFilterIndex(3);
    for (const int row : {-1, 3, 4, 1'000'000}) {
        apps().openUninstall(row);
        EXPECT_FALSE(apps().uninstall()->isOpen()) << row;
    }
}

} // namespace
} // namespace korvanti
