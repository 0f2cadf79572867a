#include "CleanupSupport.h"
#include "UiSupport.h"
#include "analysis/StorageMapper.h"
#include "base/Json.h"
#include "settings/AppPaths.h"
#include "support/BeforeCall.h"
#include "support/Environment.h"

#include <QAbstractItemModelTester>
#include <QAccessible>
#include <QClipboard>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QSignalSpy>
#include <QTest>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <latch>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace korvanti {
namespace {

using namespace korvanti::testing;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;
using Tester = QAbstractItemModelTester;

MapNode leaf(const std::string& path, std::int64_t bytes = 1'000, std::int64_t unreadable = 0) {
    return {.name = path.substr(path.rfind('/') + 1),
            .path = path,
            .bytes = bytes,
            .unreadable = unreadable,
            .children = std::nullopt};
}

MapNode folder(const std::string& path, std::vector<MapNode> children, std::int64_t bytes = 1'000) {
    auto node = leaf(path, bytes);
    node.children = std::move(children);
    return node;
}

StorageMap mapOf(std::vector<MapNode> roots) {
    return {.createdAt = instantFromSeconds(1'700'000'000), .roots = std::move(roots), .duration = 58.9};
}

/// That node alone in a folder. Without a list in braces, which would copy all below.
MapNode folderAround(const std::string& path, MapNode node) {
    auto around = folder(path, {});
    around.children->push_back(std::move(node));
    return around;
}

/// a(100): b(60): c(30), d; e — f(50): g
StorageMap smallMap() {
    return mapOf(
        {folder("/a", {folder("/a/b", {leaf("/a/b/c", 30), leaf("/a/b/d", 10)}, 60), leaf("/a/e", 5)}, 100),
         folder("/f", {leaf("/f/g", 20)}, 50)});
}

/// The names that can be seen, with their depth in front.
std::vector<std::string> shape(const MapTree& tree) {
    std::vector<std::string> names;
    for (int row = 0; row < tree.rowCount(); ++row)
        names.push_back(std::to_string(roleOf(tree, row, "depth").toInt()) + " " +
                        roleOf(tree, row, "name").toString().toStdString());
    return names;
}

// The tree alone

class MapTreeTests : public ::testing::Test {
protected:
    MapTree& showing(StorageMap map) {
        map_ = std::move(map);
        tree.setMap(&map_);
        return tree;
    }
    const ScopedVariable language{"LC_ALL", "id_ID.UTF-8"};
    MapTree tree;
    Tester tester{&tree, Tester::FailureReportingMode::Fatal};

private:
    StorageMap map_;
};

TEST_F(MapTreeTests, startsWithTheRoots) {
    EXPECT_EQ(tree.rowCount(), 0);
    EXPECT_THAT(shape(showing(smallMap())), ElementsAre("0 a", "0 f"));
    EXPECT_TRUE(roleOf(tree, 0, "isExpandable").toBool());
    EXPECT_FALSE(roleOf(tree, 0, "isExpanded").toBool());
}

TEST_F(MapTreeTests, anExpandedNodeShowsItsChildren) {
    showing(smallMap());
    QSignalSpy inserted(&tree, &MapTree::rowsInserted);
    EXPECT_TRUE(tree.expand(0));
    EXPECT_THAT(shape(tree), ElementsAre("0 a", "1 b", "1 e", "0 f"));
    EXPECT_TRUE(roleOf(tree, 0, "isExpanded").toBool());
    EXPECT_EQ(inserted.count(), 1);
    EXPECT_FALSE(tree.expand(0)) << "it is already";
    EXPECT_FALSE(tree.expand(2)) << "a leaf";
    EXPECT_EQ(inserted.count(), 1);
}

TEST_F(MapTreeTests, aCollapsedNodeRemembersWhatWasExpandedBelow) {
    showing(smallMap());
    tree.expand(0);
    tree.expand(1);
    EXPECT_THAT(shape(tree), ElementsAre("0 a", "1 b", "2 c", "2 d", "1 e", "0 f"));
    QSignalSpy removed(&tree, &MapTree::rowsRemoved);
    EXPECT_TRUE(tree.collapse(0));
    EXPECT_THAT(shape(tree), ElementsAre("0 a", "0 f"));
    EXPECT_EQ(removed.count(), 1);
    EXPECT_FALSE(tree.collapse(0));
    EXPECT_TRUE(tree.expand(0));
    EXPECT_THAT(shape(tree), ElementsAre("0 a", "1 b", "2 c", "2 d", "1 e", "0 f"));
}

TEST_F(MapTreeTests, theRowAboveInTheTreeIsFound) {
    showing(smallMap());
    tree.expand(0);
    tree.expand(1);
    EXPECT_EQ(tree.parentRow(0), -1);
    EXPECT_EQ(tree.parentRow(1), 0);
    EXPECT_EQ(tree.parentRow(3), 1);
    EXPECT_EQ(tree.parentRow(4), 0);
    EXPECT_EQ(tree.parentRow(5), -1);
}

TEST_F(MapTreeTests, aNumberThatIsNoRowChangesNothing) {
    showing(smallMap());
    for (const int row : {-1, 2, 1'000'000}) {
        EXPECT_FALSE(tree.expand(row));
        EXPECT_FALSE(tree.collapse(row));
        EXPECT_EQ(tree.parentRow(row), -1);
        EXPECT_EQ(tree.node(row), nullptr);
    }
}

TEST_F(MapTreeTests, anEmptyListOfChildrenIsNoLeaf) {
    showing(mapOf({folder("/a", {}), leaf("/b")}));
    EXPECT_TRUE(roleOf(tree, 0, "isExpandable").toBool());
    EXPECT_FALSE(roleOf(tree, 1, "isExpandable").toBool());
    EXPECT_TRUE(tree.expand(0));
    EXPECT_EQ(tree.rowCount(), 2);
    EXPECT_TRUE(tree.collapse(0));
}

TEST_F(MapTreeTests, whatWasExpandedStaysSoInANewMapByItsPath) {
    showing(smallMap());
    tree.expand(0);
    tree.expand(1);
    const auto next = mapOf({folder("/f", {leaf("/f/g")}, 500),
                             folder("/a", {leaf("/a/new"), folder("/a/b", {leaf("/a/b/c")})})});
    tree.setMap(&next);
    EXPECT_THAT(shape(tree), ElementsAre("0 f", "0 a", "1 new", "1 b", "2 c"));
    tree.setMap(nullptr);
    EXPECT_EQ(tree.rowCount(), 0);
    showing(smallMap());
    EXPECT_EQ(tree.rowCount(), 6);
}

TEST_F(MapTreeTests, aNewMapTouchesOnlyWhatComesAndGoes) {
    showing(smallMap());
    tree.expand(0);
    QSignalSpy reset(&tree, &MapTree::modelReset);
    QSignalSpy removed(&tree, &MapTree::rowsRemoved);
    QSignalSpy inserted(&tree, &MapTree::rowsInserted);
    const auto fewer = mapOf({leaf("/only")});
    tree.setMap(&fewer);
    EXPECT_THAT(shape(tree), ElementsAre("0 only"));
    EXPECT_EQ(removed.count(), 1);
    const auto more = smallMap();
    tree.setMap(&more);
    EXPECT_EQ(tree.rowCount(), 4);
    EXPECT_EQ(inserted.count(), 1);
    EXPECT_EQ(reset.count(), 0);
}

TEST_F(MapTreeTests, everyBarIsMeasuredByTheFirstRoot) {
    showing(smallMap());
    tree.expand(0);
    tree.expand(1);
    EXPECT_DOUBLE_EQ(roleOf(tree, 0, "fraction").toDouble(), 1);
    EXPECT_DOUBLE_EQ(roleOf(tree, 2, "fraction").toDouble(), 0.3) << "not by its parent";
    EXPECT_DOUBLE_EQ(roleOf(tree, 5, "fraction").toDouble(), 0.5);
}

TEST_F(MapTreeTests, sizesThatNoDiskHasGiveABarAllTheSame) {
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    showing(mapOf({leaf("/zero", 0), leaf("/most", most), leaf("/negative", -5)}));
    EXPECT_DOUBLE_EQ(roleOf(tree, 0, "fraction").toDouble(), 0);
    EXPECT_DOUBLE_EQ(roleOf(tree, 1, "fraction").toDouble(), 1);
    EXPECT_DOUBLE_EQ(roleOf(tree, 2, "fraction").toDouble(), 0);
    EXPECT_FALSE(roleOf(tree, 1, "sizeText").toString().isEmpty());
}

TEST_F(MapTreeTests, onlyWhatCouldNotBeReadHasALock) {
    showing(mapOf({leaf("/none", 9, 0), leaf("/one", 9, 1), leaf("/many", 9, 12), leaf("/odd", 9, -3)}));
    EXPECT_THAT(column(tree, "lockText"),
                ElementsAre("", "1 folder tidak terbaca — aktifkan Full Disk Access",
                            "12 folder tidak terbaca — aktifkan Full Disk Access", ""));
}

TEST_F(MapTreeTests, oddNamesStayOneLineOfText) {
    auto odd = leaf("/a\nb\xFF", 1'000);
    odd.name = "<b>a\nb\xFF</b>";
    showing(mapOf({odd}));
    EXPECT_EQ(roleOf(tree, 0, "name").toString().toStdString(), "<b>a\uFFFDb\uFFFD</b>");
    EXPECT_EQ(roleOf(tree, 0, "path").toString().toStdString(), "/a\uFFFDb\uFFFD");
}

TEST_F(MapTreeTests, pathsThatOccurTwiceAreRowsOfTheirOwn) {
    showing(mapOf({folder("/a", {leaf("/a/b")}), folder("/a", {leaf("/a/c")})}));
    EXPECT_TRUE(tree.expand(1));
    EXPECT_THAT(shape(tree), ElementsAre("0 a", "0 a", "1 c"));
    EXPECT_TRUE(tree.expand(0));
    EXPECT_TRUE(tree.collapse(0));
    EXPECT_THAT(shape(tree), ElementsAre("0 a", "0 a", "1 c"));
}

TEST_F(MapTreeTests, aTreeOfAnyDepthOpens) {
    constexpr int depth = 2'000;
    std::string path(static_cast<std::size_t>(depth), 'x');
    auto node = leaf(path);
    for (int level = depth - 1; level > 0; --level)
        node = folderAround(path.substr(0, static_cast<std::size_t>(level)), std::exchange(node, {}));
    const auto map = mapOf({std::move(node)});
    MapTree deep; // the tester would look at all rows after each step
    deep.setMap(&map);
    for (int row = 0; row < depth - 1; ++row)
        ASSERT_TRUE(deep.expand(row));
    EXPECT_EQ(deep.rowCount(), depth);
    EXPECT_EQ(roleOf(deep, depth - 1, "depth").toInt(), depth - 1);
    EXPECT_TRUE(deep.collapse(0));
    EXPECT_EQ(deep.rowCount(), 1);
    EXPECT_TRUE(deep.expand(0));
    EXPECT_EQ(deep.rowCount(), depth) << "all at once";
}

TEST_F(MapTreeTests, whatIsReadOutTellsSizeStateAndLevel) {
    auto map = smallMap();
    map.roots[0].unreadable = 2;
    showing(std::move(map));
    tree.expand(0);
    EXPECT_EQ(roleOf(tree, 0, "spokenText").toString(),
              "a, 100 byte, 2 folder tidak terbaca — aktifkan Full Disk Access");
    EXPECT_EQ(roleOf(tree, 0, "spokenState").toString(), "terbuka, tingkat 1");
    EXPECT_EQ(roleOf(tree, 1, "spokenState").toString(), "tertutup, tingkat 2");
    EXPECT_EQ(roleOf(tree, 2, "spokenState").toString(), "tingkat 2");
}

// What stands above it

class MapModelTests : public UiTests {
protected:
    static void save(const StorageMap& map) { StorageMapper::save(map); }
    const ScopedVariable language{"LC_ALL", "id_ID.UTF-8"};
};

TEST_F(MapModelTests, withoutAMapItSaysWhatItWouldRead) {
    EXPECT_FALSE(map().hasMap());
    EXPECT_EQ(map().caption(),
              "Menelusuri home, Applications, Library, aset macOS, dan Homebrew (±1 menit).");
    EXPECT_EQ(map().actionText(), "Petakan sekarang");
    EXPECT_EQ(map().tree()->rowCount(), 0);
}

TEST_F(MapModelTests, aMapTellsItsAgeAndWholeSeconds) {
    save(smallMap());
    const MapModel shown(model(), [] { return instantFromSeconds(1'700'000'000 + 86'400); });
    EXPECT_TRUE(shown.hasMap());
    EXPECT_EQ(shown.caption(), "Dipetakan 1 hari yang lalu · 58 dtk");
    EXPECT_EQ(shown.actionText(), "Petakan ulang");
}

TEST_F(MapModelTests, theAgeKeepsUpWithTheClock) {
    save(smallMap());
    auto now = instantFromSeconds(1'700'000'000 + 86'400);
    MapModel shown(model(), [&] { return now; });
    QSignalSpy told(&shown, &MapModel::captionChanged);
    expectToFollow(*shown.clock(), told, [&] { now += std::chrono::hours(24); });
    EXPECT_EQ(shown.caption(), "Dipetakan 4 hari yang lalu · 58 dtk");
}

TEST_F(MapModelTests, anyDurationIsCutToAWholeNumber) {
    struct Case {
        double seconds;
        const char* text;
    };
    for (const auto& [seconds, text] :
         {Case{0, " 0 dtk"}, Case{0.99, " 0 dtk"}, Case{-0.5, " 0 dtk"}, Case{59.999, " 59 dtk"},
          Case{-3.7, " -3 dtk"}, Case{1e300, " 1000000000000000 dtk"},
          Case{-1e300, " -1000000000000000 dtk"}}) {
        auto saved = smallMap();
        saved.duration = seconds;
        save(saved);
        AppModel fresh(std::make_unique<ScriptedDesktop>(desktop));
        EXPECT_TRUE(MapModel(fresh).caption().endsWith(text)) << text;
    }
}

TEST_F(MapModelTests, aDamagedMapIsNoMap) {
    for (const char* text : {"", "{", "[]", R"({"createdAt":"x","roots":[],"duration":1})",
                             R"({"createdAt":"2026-01-01T00:00:00Z","roots":{"name":1},"duration":1})",
                             R"({"createdAt":"2026-01-01T00:00:00Z","roots":[{"name":"a"}],"duration":1})"}) {
        mac.home.file("Library/Application Support/Korvanti/storage-map.json", {.text = text});
        ASSERT_TRUE(AppPaths::storageMap().ends_with("Korvanti/storage-map.json"));
        AppModel fresh(std::make_unique<ScriptedDesktop>(desktop));
        EXPECT_FALSE(MapModel(fresh).hasMap()) << text;
    }
}

TEST_F(MapModelTests, aMapMadeNowReplacesTheOldOneAndIsSaved) {
    mac.home.file("Documents/large", {.allocatedBytes = 1 << 20});
    save(smallMap());
    map().tree()->expand(0);
    QSignalSpy caption(&map(), &MapModel::captionChanged);
    map().generate();
    EXPECT_TRUE(map().isMapping());
    map().generate();
    ASSERT_TRUE(waitFor([&] { return !map().isMapping(); }));
    EXPECT_EQ(map().mapStatus(), "");
    EXPECT_GE(caption.count(), 1);
    EXPECT_THAT(column(*map().tree(), "path"), Contains("/Users/tester"));
    EXPECT_THAT(column(*map().tree(), "path"), Not(Contains("/a")));
    ASSERT_TRUE(StorageMapper::load());
    EXPECT_EQ(StorageMapper::load()->roots, model().storageMap()->roots);
}

TEST_F(MapModelTests, theMenuKeepsHoldOfItsPath) {
    save(mapOf({leaf("/a/<b>é"), leaf("/other")}));
    map().openMenu(0);
    map().openMenu(7);
    map().generate();
    ASSERT_TRUE(waitFor([&] { return !map().isMapping(); }));
    map().copyPath();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "/a/<b>é");
    map().reveal();
    EXPECT_THAT(desktop.opened, ElementsAre("/a")) << "it is gone, but its folder";
    EXPECT_THAT(desktop.revealed, ElementsAre());
}

// The pane

class MapViewTests : public MapModelTests {
protected:
    void open(const StorageMap& map, QSize size = {1140, 760}) {
        save(map);
        openPane(size);
    }
    void openPane(QSize size = {1140, 760}) {
        saveReport({});
        model().setPane(Pane::map);
        window();
        resize(size.width(), size.height());
    }
    void rightClick(const QString& name) {
        QTest::mouseClick(&window(), Qt::RightButton, Qt::NoModifier, place(name).center().toPoint());
        settle(150);
    }
    void clickCaret(const std::string& path) {
        click(QString::fromStdString("caret:" + path));
        settle();
    }
    static QString copied() { return QGuiApplication::clipboard()->text(); }
    void focusTree() { item("mapTree").forceActiveFocus(Qt::TabFocusReason); }
    int current() { return item("mapTree").property("currentIndex").toInt(); }
};

TEST_F(MapViewTests, withoutAMapThePaneSaysWhatItIsFor) {
    openPane();
    EXPECT_EQ(text("emptyTitle"), "Belum ada peta");
    EXPECT_EQ(text("emptyBody"),
              "Peta menunjukkan folder mana yang paling besar, termasuk yang bukan cache.");
    EXPECT_EQ(text("generateButton"), "Petakan sekarang");
    EXPECT_TRUE(texts().contains("Peta penyimpanan"));
    EXPECT_FALSE(find("mapStatus"));
    EXPECT_FALSE(find("mapTree"));
}

TEST_F(MapViewTests, whileItMapsTheButtonRestsAndTheStatusIsTold) {
    mac.home.file("Documents/large", {.allocatedBytes = 1 << 20});
    std::latch released{1};
    const BeforeCall gate(Call::openAt, "Documents", [&] { released.wait(); });
    openPane();
    click("generateButton");
    EXPECT_TRUE(model().isMapping());
    EXPECT_FALSE(item("generateButton").isEnabled());
    EXPECT_TRUE(find("mapStatus"));
    released.count_down();
    ASSERT_TRUE(waitFor([&] { return !model().isMapping(); }));
    settle();
    EXPECT_EQ(text("generateButton"), "Petakan ulang");
    EXPECT_TRUE(item("generateButton").isEnabled());
    EXPECT_FALSE(find("mapStatus"));
    EXPECT_TRUE(find("row:/Users/tester"));
}

TEST_F(MapViewTests, aRowHasNameLockBarAndSize) {
    auto map = smallMap();
    map.roots[1].unreadable = 3;
    open(map);
    EXPECT_FALSE(find("lock:/a"));
    ASSERT_TRUE(find("lock:/f"));
    EXPECT_EQ(place("bar:/a").size(), QSizeF(160, 6));
    EXPECT_EQ(place("fill:/a").width(), 160);
    EXPECT_EQ(place("fill:/f").width(), 80);
    EXPECT_EQ(text("size:/a"), "100 byte");
    EXPECT_EQ(place("size:/a").right(), window().width() - 24);
    EXPECT_EQ(place("bar:/a").right(), window().width() - 24 - 90 - 12);
    EXPECT_EQ(place("row:/a").height(), 34);
}

TEST_F(MapViewTests, theSmallestBarIsTwoWide) {
    open(mapOf({leaf("/a", 1'000'000'000), leaf("/b", 1), leaf("/c", -7)}));
    EXPECT_EQ(place("fill:/b").width(), 2);
    EXPECT_EQ(place("fill:/c").width(), 2);
}

TEST_F(MapViewTests, theLockSaysWhatItMeans) {
    open(mapOf({leaf("/a", 100, 4)}));
    hover("lock:/a");
    settle(900);
    EXPECT_TRUE(texts().contains("4 folder tidak terbaca — aktifkan Full Disk Access"));
}

TEST_F(MapViewTests, theCaretOpensAndClosesARow) {
    open(smallMap());
    clickCaret("/a");
    EXPECT_TRUE(find("row:/a/b"));
    EXPECT_EQ(place("caret:/a/b").left(), place("caret:/a").left() + 20);
    EXPECT_FALSE(find("caret:/a/e")) << "a leaf";
    clickCaret("/a");
    EXPECT_FALSE(find("row:/a/b"));
}

TEST_F(MapViewTests, aDoubleClickOnTheNameOpensAndAClickDoesNot) {
    open(smallMap());
    click("row:/a");
    settle();
    EXPECT_FALSE(find("row:/a/b"));
    QTest::mouseDClick(&window(), Qt::LeftButton, Qt::NoModifier, place("row:/a").center().toPoint());
    settle();
    EXPECT_TRUE(find("row:/a/b"));
}

TEST_F(MapViewTests, theArrowsGoThroughTheTree) {
    open(smallMap());
    focusTree();
    press(Qt::Key_Left);
    EXPECT_EQ(current(), 0) << "a closed root has nowhere to go";
    press(Qt::Key_Right);
    settle();
    EXPECT_TRUE(find("row:/a/b"));
    press(Qt::Key_Down);
    press(Qt::Key_Right);
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    EXPECT_TRUE(item("row:/a/b/d").hasActiveFocus());
    press(Qt::Key_Right);
    EXPECT_EQ(current(), 3) << "a leaf stays";
    press(Qt::Key_Left);
    EXPECT_TRUE(item("row:/a/b").hasActiveFocus()) << "its parent";
    press(Qt::Key_Left);
    settle();
    EXPECT_FALSE(find("row:/a/b/c"));
    EXPECT_TRUE(item("row:/a/b").hasActiveFocus());
    press(Qt::Key_Space);
    settle();
    EXPECT_TRUE(find("row:/a/b/c"));
    press(Qt::Key_Space);
    settle();
    EXPECT_FALSE(find("row:/a/b/c"));
    press(Qt::Key_Home);
    press(Qt::Key_Up);
    EXPECT_EQ(current(), 0);
    press(Qt::Key_End);
    press(Qt::Key_Down);
    EXPECT_EQ(current(), 3);
}

TEST_F(MapViewTests, theRightKeyGoesIntoAnOpenFolder) {
    open(smallMap());
    item("generateButton").forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_Tab);
    EXPECT_TRUE(item("row:/a").hasActiveFocus());
    press(Qt::Key_Right);
    settle();
    EXPECT_EQ(current(), 0) << "it opens first";
    press(Qt::Key_Right);
    EXPECT_TRUE(item("row:/a/b").hasActiveFocus());
    press(Qt::Key_End);
    const int last = current();
    press(Qt::Key_Right);
    EXPECT_EQ(current(), last) << "a leaf";
}

TEST_F(MapViewTests, theMenuOpensByMouseAndCopiesAndReveals) {
    mac.home.file("things/a");
    open(mapOf({leaf("/Users/tester/things/a"), leaf("/b c")}));
    rightClick("row:/b c");
    EXPECT_EQ(text("revealEntry"), "Tampilkan di Finder");
    EXPECT_EQ(text("copyPathEntry"), "Salin path");
    click("copyPathEntry");
    EXPECT_EQ(copied(), "/b c");
    settle(200);
    rightClick("row:/Users/tester/things/a");
    click("revealEntry");
    EXPECT_THAT(desktop.revealed, ElementsAre("/Users/tester/things/a"));
}

TEST_F(MapViewTests, theMenuOpensByKeyAsWell) {
    open(smallMap());
    focusTree();
    press(Qt::Key_Down);
    press(Qt::Key_F10, Qt::ShiftModifier);
    settle(150);
    ASSERT_TRUE(find("copyPathEntry"));
    EXPECT_TRUE(item("revealEntry").hasActiveFocus()) << "the first is there already";
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    settle(150);
    EXPECT_EQ(copied(), "/f");
    EXPECT_TRUE(item("row:/f").hasActiveFocus());
    press(Qt::Key_Up);
    press(Qt::Key_Menu);
    settle(150);
    EXPECT_TRUE(find("copyPathEntry"));
    press(Qt::Key_Escape);
    settle(200);
    EXPECT_FALSE(find("copyPathEntry"));
}

TEST_F(MapViewTests, aNewMapLeavesTheKeyboardWhereItIs) {
    mac.home.file("Documents/large", {.allocatedBytes = 1 << 20});
    open(smallMap());
    focusTree();
    press(Qt::Key_Home);
    model().generateMap();
    ASSERT_TRUE(waitFor([&] { return !model().isMapping(); }));
    settle();
    EXPECT_NE(map().tree()->node(0)->path, "/a");
    EXPECT_TRUE(item("mapTree").property("currentItem").value<QQuickItem*>()->hasActiveFocus());
    press(Qt::Key_Down);
    EXPECT_EQ(current(), 1);
}

TEST_F(MapViewTests, aMapOfFiftyThousandRowsIsFluent) {
    std::vector<MapNode> children;
    for (int i = 0; i < 50'000; ++i)
        children.push_back(leaf("/big/" + std::to_string(i), 50'000 - i));
    open(mapOf({folder("/big", std::move(children), 50'000), leaf("/last", 5)}));
    QElapsedTimer timer;
    timer.start();
    clickCaret("/big");
    focusTree();
    press(Qt::Key_End);
    EXPECT_TRUE(item("row:/last").hasActiveFocus());
    press(Qt::Key_Up);
    press(Qt::Key_PageUp);
    EXPECT_GT(current(), 49'900);
    EXPECT_LT(current(), 50'000);
    press(Qt::Key_Left);
    EXPECT_TRUE(item("row:/big").hasActiveFocus());
    press(Qt::Key_Left);
    EXPECT_EQ(map().tree()->rowCount(), 2);
    EXPECT_LT(timer.elapsed(), 5'000);
    EXPECT_LT(item("rows").property("contentItem").value<QQuickItem*>()->childItems().size(), 120)
        << "only what can be seen is made";
}

TEST_F(MapViewTests, anyDepthAndNameLeavesRoomForTheFigures) {
    std::string path = "/a";
    auto node = leaf("/deep", 1'000);
    node.name = std::string(5'000, 'W');
    for (int level = 0; level < 60; ++level)
        node = folderAround("/" + std::to_string(level), std::exchange(node, {}));
    open(mapOf({std::move(node)}), {960, 620});
    for (int row = 0; row < 60; ++row)
        map().tree()->expand(row);
    settle();
    focusTree();
    press(Qt::Key_End);
    settle();
    EXPECT_EQ(place("size:/deep").right(), window().width() - 24);
    const auto& name = item("row:/deep");
    const auto* label = name.findChild<QQuickItem*>("name");
    ASSERT_TRUE(label);
    const auto lies = label->mapRectToScene(QRectF(0, 0, label->width(), label->height()));
    EXPECT_GE(lies.width(), 60);
    EXPECT_LE(lies.right(), place("bar:/deep").left());
}

TEST_F(MapViewTests, largeTypeCutsNothing) {
    setFontScale(2);
    auto map = smallMap();
    map.roots[0].bytes = 888'888'888'888;
    open(map, {960, 620});
    EXPECT_GE(place("size:/a").left(), place("bar:/a").right());
    EXPECT_GE(place("row:/a").height(), 68);
    EXPECT_LE(place("mapCaption").right(), place("generateButton").left());
    EXPECT_LE(place("generateButton").right(), window().width());
}

TEST_F(MapViewTests, everythingHasItsNameAndRole) {
    auto map = smallMap();
    map.roots[0].unreadable = 1;
    open(map);
    const auto faceOf = [&](const QString& name) {
        return QAccessible::queryAccessibleInterface(&item(name));
    };
    EXPECT_EQ(faceOf("rows")->role(), QAccessible::Tree);
    EXPECT_EQ(faceOf("rows")->text(QAccessible::Name), "Peta penyimpanan");
    auto* const row = faceOf("row:/a");
    EXPECT_EQ(row->role(), QAccessible::TreeItem);
    EXPECT_EQ(row->text(QAccessible::Name),
              "a, 100 byte, 1 folder tidak terbaca — aktifkan Full Disk Access");
    EXPECT_EQ(row->text(QAccessible::Description), "tertutup, tingkat 1, 1 dari 2");
    row->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    settle();
    EXPECT_EQ(row->text(QAccessible::Description), "terbuka, tingkat 1, 1 dari 4");
    EXPECT_TRUE(find("row:/a/b"));
    EXPECT_EQ(faceOf("generateButton")->text(QAccessible::Name), "Petakan ulang");
}

} // namespace
} // namespace korvanti
