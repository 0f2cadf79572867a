#include "UiSupport.h"
#include "scan/CleanupItem.h"
#include "ui/SafetyDisplay.h"
#include "ui/SymbolProvider.h"

#include <QAccessible>
#include <QColor>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace korvanti {
namespace {

using namespace korvanti::testing;

class ComponentTests : public UiTests {
protected:
    /// A component below a root that counts what it asks for.
    void showControl(const QString& qml, QSize size = {400, 200}) {
        show("Rectangle { id: root; objectName: \"root\"; color: Brand.window; anchors.fill: parent\n"
             "property int count: 0; property string told: \"\"\n" +
                 qml + "}",
             size);
        settle();
    }
    [[nodiscard]] int count() { return item("root").property("count").toInt(); }
    [[nodiscard]] QString told() { return item("root").property("told").toString(); }
    /// What is read out.
    [[nodiscard]] std::string nameOf(const QString& objectName) {
        return QAccessible::queryAccessibleInterface(&item(objectName))
            ->text(QAccessible::Name)
            .toStdString();
    }
    [[nodiscard]] std::string descriptionOf(const QString& objectName) {
        return QAccessible::queryAccessibleInterface(&item(objectName))
            ->text(QAccessible::Description)
            .toStdString();
    }
    [[nodiscard]] QColor brand(const QString& name) {
        QQmlComponent component(&engine());
        component.setData(
            ("import QtQuick\nimport Korvanti.Ui\nQtObject { property color c: Brand." + name + " }")
                .toUtf8(),
            {});
        const std::unique_ptr<QObject> made(component.create());
        return made ? made->property("c").value<QColor>() : QColor();
    }
    /// Tells a colour of the picture in the middle of an item.
    [[nodiscard]] QColor seen(const QString& objectName, QPointF at = {0.5, 0.5}) {
        const auto there = place(objectName);
        return grab().pixelColor(static_cast<int>(there.x() + there.width() * at.x()),
                                 static_cast<int>(there.y() + there.height() * at.y()));
    }
};

struct PaletteRow {
    const char* name;
    const char* dark;
    const char* light;
};

const PaletteRow palette[] = {
    {"accent", "#5AB3FF", "#0064AF"},
    {"ink", "#EAF3FF", "#082E52"},
    {"sky", "#4FB2FF", "#1F8CF0"},
    {"muted", "#B3C6D8", "#405B73"},
    {"iceFill", "#10283F", "#E4F3FF"},
    {"blueWash", "#152D47", "#DCEAFF"},
    {"peachWash", "#3A2923", "#FFE3D7"},
    {"limeWash", "#262F1D", "#E6EDCD"},
    {"lilacWash", "#29253D", "#EDE9FA"},
    {"heroFill", "#0B2E4E", "#08375F"},
    {"green", "#4CC38A", "#1A7A50"},
    {"amber", "#F0B14A", "#B07612"},
    {"coral", "#FF7A66", "#C2412D"},
    {"capacityCyan", "#4FD7F8", "#4FD7F8"},
    {"window", "#12181F", "#F7F9FB"},
    {"sidebar", "#171E27", "#EDF1F6"},
    {"card", "#1A222C", "#FFFFFF"},
    {"list", "#151C24", "#FFFFFF"},
    {"sheet", "#1B232D", "#FFFFFF"},
    {"innerList", "#151C24", "#F9FBFC"},
    {"cardBorder", "#28333F", "#E2E8EF"},
    {"separator", "#252F3A", "#E3E9EF"},
    {"capacityTrack", "#2B3744", "#DBE4ED"},
    {"segmentedTrack", "#1E2731", "#E8EDF3"},
    {"rowHover", "#1F2933", "#F1F5F9"},
    {"rowPressed", "#263240", "#E8EEF4"},
    {"panel", "#1B232D", "#FBFCFD"},
    {"text", "#E8EEF5", "#15212E"},
    {"text2", "#A9B7C6", "#4A5B6C"},
    {"text3", "#8C9CAC", "#5E6F80"},
    {"warnText", "#F0B14A", "#8A5800"},
    {"control", "#26313D", "#FFFFFF"},
    {"controlBorder", "#384552", "#CBD5DF"},
    {"controlHover", "#2E3A47", "#F3F6F9"},
    {"controlPressed", "#202A34", "#E6ECF2"},
    {"disabledFill", "#26313D", "#DDE4EC"},
    {"checkboxBorder", "#6B7B8C", "#8494A5"},
    {"sidebarSelected", "#22364B", "#D9E6F4"},
    {"sidebarHover", "#1E2833", "#E4EAF1"},
    {"focusRing", "#5AB3FF", "#0064AF"},
    {"fill", "#0064AF", "#0064AF"},
    {"fillHover", "#00589B", "#00589B"},
    {"fillPressed", "#004A82", "#004A82"},
    {"danger", "#C2412D", "#C2412D"},
    {"dangerHover", "#AD3826", "#AD3826"},
    {"dangerPressed", "#962F1F", "#962F1F"},
};

TEST_F(ComponentTests, everyColourHasItsTwoValues) {
    for (const auto& row : palette)
        EXPECT_EQ(brand(row.name), QColor(row.light)) << row.name;
    setDark(true);
    for (const auto& row : palette)
        EXPECT_EQ(brand(row.name), QColor(row.dark)) << row.name;
}

TEST_F(ComponentTests, theAppearanceFollowsTheSystem) {
    EXPECT_FALSE(theme().dark());
    setDark(true);
    EXPECT_TRUE(theme().dark());
    setDark(false);
    EXPECT_FALSE(theme().dark());
}

TEST_F(ComponentTests, textGrowsWithTheSystemsFontAndNeverShrinks) {
    EXPECT_DOUBLE_EQ(theme().fontScale(), 1);
    setFontScale(2);
    EXPECT_NEAR(theme().fontScale(), 2, 0.05);
    setFontScale(0.3);
    EXPECT_DOUBLE_EQ(theme().fontScale(), 1);
    setFontScale(50);
    EXPECT_DOUBLE_EQ(theme().fontScale(), 3);
}

struct TypeRow {
    const char* style;
    int size;
    int weight;
    int line;
    double tracking;
};

const TypeRow types[] = {
    {"HeroNumber", 40, 700, 48, -0.4},  {"Capacity", 30, 600, 38, -0.2}, {"TileValue", 26, 700, 32, -0.2},
    {"ResultTitle", 22, 600, 28, -0.1}, {"Title", 20, 600, 26, -0.1},    {"BrandName", 18, 700, 22, -0.4},
    {"PaneTitle", 17, 600, 22, -0.25},  {"Headline", 14, 600, 19, -0.1}, {"Body", 13, 400, 19, 0},
    {"BodyMedium", 13, 500, 19, 0},     {"RowSize", 13, 600, 19, 0},     {"Callout", 12, 400, 18, 0},
    {"CalloutMedium", 12, 500, 18, 0},  {"Caption", 11, 400, 16, 0},     {"CaptionMedium", 11, 500, 16, 0},
    {"Overline", 11, 600, 14, 0.6},     {"Path", 10, 400, 15, 0},
};

TEST_F(ComponentTests, everyStyleIsSetAsDrawn) {
    for (const auto& row : types) {
        showControl(
            QString("BrandText { objectName: \"text\"; style: BrandText.%1; text: \"Ag\" }").arg(row.style));
        const auto font = item("text").property("font").value<QFont>();
        EXPECT_EQ(font.pixelSize(), row.size) << row.style;
        EXPECT_EQ(font.weight(), row.weight) << row.style;
        EXPECT_NEAR(font.letterSpacing(), row.tracking, 0.02) << row.style;
        EXPECT_NEAR(item("text").height(), row.line, 1) << row.style;
        const auto family = std::string(row.style) == "Path" ? theme().monoFamily()
                            : row.size < 20                  ? theme().textFamily()
                                                             : theme().displayFamily();
        EXPECT_EQ(font.family(), family) << row.style;
    }
}

TEST_F(ComponentTests, textIsNeverTakenForMarkup) {
    showControl("BrandText { objectName: \"text\"; text: \"<b>a</b>&amp;\" }");
    EXPECT_EQ(item("text").property("textFormat").toInt(), 0);
}

TEST_F(ComponentTests, everyDigitOfAFigureIsEquallyWide) {
    showControl("Column { Figure { objectName: \"ones\"; text: \"1,11 GB\" } Figure { objectName: \"zeros\"; "
                "text: \"0,00 GB\" } "
                "Figure { objectName: \"none\"; text: \"\" } }");
    EXPECT_EQ(item("ones").width(), item("zeros").width());
    EXPECT_GT(item("ones").width(), 30);
    EXPECT_EQ(item("none").width(), 0);
}

TEST_F(ComponentTests, theUnitOfAFigureStandsApartFromIt) {
    showControl("Column { Figure { objectName: \"apart\"; text: \"550 MB\" } Figure { objectName: \"none\"; "
                "text: \"550MB\" } }");
    EXPECT_GE(item("apart").width() - item("none").width(), 0.25 * 13);
}

struct SafetyRow {
    Safety safety;
    const char* label;
    const char* symbol;
};

const SafetyRow safeties[] = {
    {Safety::regenerable, "Aman", "checkmark.seal.fill"},
    {Safety::costly, "Aman · unduh ulang", "arrow.down.circle.fill"},
    {Safety::review, "Periksa dulu", "eye.fill"},
    {Safety::keep, "Penting", "lock.fill"},
    {Safety::managed, "Dikelola sistem", "gearshape.fill"},
};

TEST_F(ComponentTests, aBadgeTellsItsClassByColourSymbolAndWord) {
    const char* washes[] = {"limeWash", "blueWash", "peachWash", "lilacWash", "lilacWash"};
    const SafetyDisplay display;
    for (int place = 0; place < 5; ++place) {
        const auto& row = safeties[place];
        EXPECT_EQ(static_cast<int>(row.safety), place);
        EXPECT_EQ(display.label(place), row.label);
        EXPECT_EQ(display.symbol(place), row.symbol);
        EXPECT_EQ(SymbolProvider::find(row.symbol).name, row.symbol);
        showControl(QString("SafetyBadge { objectName: \"badge\"; safety: %1 }").arg(place));
        EXPECT_THAT(texts(), ::testing::ElementsAre(QString(row.label)));
        EXPECT_EQ(seen("badge", {0.03, 0.5}), brand(washes[place])) << row.label;
        EXPECT_EQ(item("badge").height(), 20);
    }
    for (const int place : {-1, 5, 1'000'000}) {
        EXPECT_EQ(display.label(place), "");
        EXPECT_EQ(display.symbol(place), "");
    }
}

TEST_F(ComponentTests, aPillShowsRestHoverPressAndThatItIsOff) {
    for (const auto& [kind, rest, over, down] :
         {std::tuple{"Filled", "fill", "fillHover", "fillPressed"},
          std::tuple{"Destructive", "danger", "dangerHover", "dangerPressed"},
          std::tuple{"Hero", "heroControl", "heroControlHover", "heroControlPressed"}}) {
        showControl(QString("PillButton { objectName: \"pill\"; x: 100; y: 100; kind: PillButton.%1; text: "
                            "\"Go\"; onClicked: parent.count++ }")
                        .arg(kind));
        EXPECT_EQ(seen("pill", {0.5, 0.12}), brand(rest)) << kind;
        hover("pill");
        settle(200);
        EXPECT_EQ(seen("pill", {0.5, 0.12}), brand(over)) << kind;
        hold("pill");
        settle(200);
        EXPECT_EQ(seen("pill", {0.5, 0.12}), brand(down)) << kind;
        release("pill");
        EXPECT_EQ(count(), 1) << kind;
        EXPECT_EQ(item("pill").height(), 32);
        item("pill").setEnabled(false);
        settle(200);
        EXPECT_NE(seen("pill", {0.5, 0.12}), brand(rest)) << kind;
        click("pill");
        EXPECT_EQ(count(), 1) << kind;
    }
}

TEST_F(ComponentTests, everyControlAnswersToTheKeyboard) {
    for (const auto* qml :
         {"PillButton { text: \"Go\"", "PlainButton { text: \"Go\"", "LinkButton { text: \"Go\"",
          "IconButton { symbol: \"xmark\"; hint: \"Go\"", "CheckMark { marked: false; label: \"Go\""}) {
        showControl(QString(qml) + "; objectName: \"control\"; x: 50; y: 50; onClicked: parent.count++ }");
        press(Qt::Key_Tab);
        EXPECT_TRUE(item("control").hasActiveFocus()) << qml;
        EXPECT_TRUE(item("control").property("visualFocus").toBool()) << qml;
        press(Qt::Key_Space);
        EXPECT_EQ(count(), 1) << qml;
        press(Qt::Key_Return);
        EXPECT_EQ(count(), 2) << qml;
        auto* const told = QAccessible::queryAccessibleInterface(&item("control"));
        ASSERT_TRUE(told) << qml;
        EXPECT_EQ(told->text(QAccessible::Name), "Go") << qml;
        EXPECT_NE(told->role(), QAccessible::NoRole) << qml;
    }
}

constexpr const char* controls[] = {
    "PillButton { text: \"Go\"",
    "PlainButton { text: \"Go\"",
    "LinkButton { text: \"Go\"",
    "IconButton { symbol: \"xmark\"; hint: \"Go\"",
    "CheckMark { marked: false; label: \"Go\"",
    "Toggle { marked: false; label: \"Go\"",
    "SafetyTile { safety: 0; title: \"Go\"; value: \"1\"; caption: \"\"",
    "OverviewCategoryRow { width: 300; symbol: \"xmark\"; title: \"Go\"; sizeText: \"1\"; share: 1"};

TEST_F(ComponentTests, aKeyThatIsHeldDownPressesOnce) {
    for (const auto* qml : controls) {
        for (const auto key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
            showControl(QString(qml) +
                        "; objectName: \"control\"; x: 50; y: 50; onClicked: parent.count++ }");
            press(Qt::Key_Tab);
            ASSERT_TRUE(item("control").hasActiveFocus()) << qml;
            holdKey(key);
            EXPECT_EQ(count(), 1) << qml << key;
        }
    }
}

TEST_F(ComponentTests, whatCannotBeUsedSaysSoAndIsPressedByNobody) {
    for (const auto* qml : controls) {
        showControl(QString(qml) + "; objectName: \"control\"; x: 50; y: 50; onClicked: parent.count++ }");
        EXPECT_EQ(descriptionOf("control"), "") << qml;
        item("control").setEnabled(false);
        EXPECT_EQ(descriptionOf("control"), "tidak tersedia") << qml;
        item("control").forceActiveFocus(Qt::TabFocusReason);
        press(Qt::Key_Return);
        QAccessible::queryAccessibleInterface(&item("control"))
            ->actionInterface()
            ->doAction(QAccessibleActionInterface::pressAction());
        EXPECT_EQ(count(), 0) << qml;
    }
}

TEST_F(ComponentTests, whatAButtonHasToSayIsSaidBesideThatItCannotBeUsed) {
    showControl("PlainButton { objectName: \"control\"; text: \"Go\"; hint: \"Sekarang\"; enabled: false }");
    EXPECT_EQ(descriptionOf("control"), "Sekarang, tidak tersedia");
    item("control").setEnabled(true);
    EXPECT_EQ(descriptionOf("control"), "Sekarang");
}

TEST_F(ComponentTests, withLessMotionTheKnobJumps) {
    for (const bool reduced : {false, true}) {
        theme().setReducedMotion(reduced);
        showControl("Toggle { objectName: \"toggle\"; x: 50; y: 50; marked: root.count > 0; label: \"Go\" }");
        item("root").setProperty("count", 1);
        EXPECT_EQ(place("knob").right() > place("toggle").right() - 3, reduced);
        settle(200);
        EXPECT_GT(place("knob").right(), place("toggle").right() - 3);
    }
}

TEST_F(ComponentTests, theRingIsForTheKeyboardOnly) {
    for (const bool byKeyboard : {false, true}) {
        showControl("PillButton { objectName: \"pill\"; x: 50; y: 50; text: \"Go\" }");
        if (byKeyboard)
            press(Qt::Key_Tab);
        else
            click("pill");
        settle(150);
        EXPECT_TRUE(item("pill").hasActiveFocus());
        const auto ring = grab().pixelColor(place("pill").center().toPoint() - QPoint(0, 19));
        EXPECT_EQ(ring, brand(byKeyboard ? "focusRing" : "window"));
    }
}

TEST_F(ComponentTests, aBusyButtonKeepsItsWidthAndDoesNothing) {
    showControl("PlainButton { objectName: \"plain\"; text: \"Pindai ulang\"; symbol: \"arrow.clockwise\"; "
                "onClicked: parent.count++ }");
    const auto width = item("plain").width();
    item("plain").setProperty("busy", true);
    item("plain").setEnabled(false);
    settle();
    EXPECT_EQ(item("plain").width(), width);
    click("plain");
    EXPECT_EQ(count(), 0);
}

TEST_F(ComponentTests, aCheckMarkOnlyAsks) {
    showControl("CheckMark { objectName: \"check\"; x: 20; y: 20; marked: false; label: \"a\"; onClicked: "
                "parent.count++ }");
    click("check");
    EXPECT_EQ(count(), 1);
    EXPECT_FALSE(item("check").property("marked").toBool());
    EXPECT_NE(seen("check"), brand("fill"));
    item("check").setProperty("marked", true);
    hover("root");
    settle(150);
    EXPECT_EQ(seen("check", {0.2, 0.2}), brand("fill"));
}

TEST_F(ComponentTests, aSegmentOnlyAsksAndTheArrowsDo) {
    showControl(
        "SegmentedPicker { objectName: \"seg\"; model: [\"A\", \"B\", \"C\"]; currentIndex: parent.count; "
        "onActivated: index => { parent.told += index; parent.count = index } }");
    click("segment2");
    EXPECT_EQ(told(), "2");
    click("segment2");
    EXPECT_EQ(told(), "2") << "already chosen";
    press(Qt::Key_Tab);
    press(Qt::Key_Right);
    press(Qt::Key_Left);
    press(Qt::Key_Left);
    press(Qt::Key_Left);
    EXPECT_EQ(told(), "210");
}

TEST_F(ComponentTests, theKeysAreAtTheChosenSegmentWhichIsToldAsThat) {
    QAccessible::setActive(true);
    showControl("SegmentedPicker { objectName: \"seg\"; label: \"Tampilkan\"; model: [\"A\", \"B\", \"C\"]; "
                "currentIndex: 1; onActivated: index => currentIndex = index }");
    const auto faceOf = [&](const char* name) { return QAccessible::queryAccessibleInterface(&item(name)); };
    for (const auto* segment : {"segment0", "segment1", "segment2"}) {
        EXPECT_EQ(faceOf(segment)->role(), QAccessible::RadioButton);
        EXPECT_TRUE(faceOf(segment)->state().checkable);
    }
    EXPECT_FALSE(faceOf("segment0")->state().checked);
    EXPECT_TRUE(faceOf("segment1")->state().checked);
    EXPECT_EQ(nameOf("seg"), "Tampilkan");
    EXPECT_EQ(faceOf("seg")->text(QAccessible::Description), "B");
    press(Qt::Key_Tab);
    EXPECT_TRUE(item("segment1").hasActiveFocus());
    press(Qt::Key_Right);
    EXPECT_TRUE(item("segment2").hasActiveFocus());
    EXPECT_TRUE(faceOf("segment2")->state().checked);
    EXPECT_FALSE(faceOf("segment1")->state().checked);
    press(Qt::Key_Tab);
    press(Qt::Key_Tab, Qt::ShiftModifier);
    EXPECT_TRUE(item("segment2").hasActiveFocus()) << "one stop";
    faceOf("segment0")->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(item("seg").property("currentIndex").toInt(), 0);
    QAccessible::setActive(false);
}

TEST_F(ComponentTests, segmentsShareWhatRoomThereIs) {
    showControl("SegmentedPicker { objectName: \"seg\"; model: [\"Rekomendasi\", \"Bisa dibersihkan\", "
                "\"Periksa dulu\"]; currentIndex: 0; width: 150 }");
    EXPECT_LE(place("segment2").right(), place("seg").right());
    item("seg").setWidth(800);
    settle();
    EXPECT_LT(place("segment2").right(), 500);
}

TEST_F(ComponentTests, aDropdownTellsWhatIsChosen) {
    showControl("DropdownPicker { objectName: \"drop\"; model: [\"Semua\", \"Xcode\", \"Simulator\"]; "
                "onActivated: index => parent.told += index }");
    click("drop");
    settle(300);
    click("choice1");
    EXPECT_EQ(told(), "1");
    settle(300);
    press(Qt::Key_Space);
    settle(300);
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    EXPECT_EQ(told(), "12");
}

TEST_F(ComponentTests, whatTheKeysAreAtInADropdownIsTold) {
    showControl("DropdownPicker { objectName: \"drop\"; label: \"Kategori\"; model: [\"Semua\", \"Xcode\", "
                "\"Simulator\"] }");
    const auto description = [&] {
        return QAccessible::queryAccessibleInterface(&item("drop"))
            ->text(QAccessible::Description)
            .toStdString();
    };
    press(Qt::Key_Tab);
    EXPECT_EQ(nameOf("drop"), "Kategori");
    EXPECT_EQ(description(), "Semua, tertutup");
    press(Qt::Key_Space);
    settle(300);
    EXPECT_EQ(nameOf("drop"), "Kategori, Semua");
    EXPECT_EQ(description(), "Semua, terbuka");
    press(Qt::Key_Down);
    EXPECT_EQ(nameOf("drop"), "Kategori, Xcode");
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&item("choice1"))->role(), QAccessible::ListItem);
    press(Qt::Key_Escape);
    settle(300);
    EXPECT_EQ(nameOf("drop"), "Kategori");
    EXPECT_EQ(description(), "Semua, tertutup");
}

TEST_F(ComponentTests, theSearchTellsWhatIsWrittenAndEscapeTakesItAway) {
    showControl("SearchField { objectName: \"search\"; placeholderText: \"Cari\"; onEdited: text => { "
                "parent.told = text; parent.count++ } }");
    click("search");
    type("ab");
    EXPECT_EQ(told(), "ab");
    press(Qt::Key_Escape);
    EXPECT_EQ(told(), "");
    EXPECT_EQ(text("search"), "");
    type("c");
    click("clearSearchButton");
    EXPECT_EQ(told(), "");
    EXPECT_FALSE(find("clearSearchButton"));
}

struct BarRow {
    const char* used;
    const char* total;
    double width; ///< of 500
    const char* name;
};

const BarRow bars[] = {
    {"0", "100", 6, "Terpakai 0 persen"},
    {"1", "1000", 6, "Terpakai 0 persen"},
    {"29", "100", 145, "Terpakai 29 persen"},
    {"57", "100", 285, "Terpakai 57 persen"},
    {"999", "1000", 499.5, "Terpakai 99 persen"},
    {"100", "100", 500, "Terpakai 100 persen"},
    {"250", "100", 500, "Terpakai 100 persen"},
    {"-5", "100", 6, "Terpakai 0 persen"},
    {"9223372036854775807", "9223372036854775807", 500, "Terpakai 100 persen"},
};

TEST_F(ComponentTests, theBarIsAsFullAsTheDisk) {
    for (const auto& row : bars) {
        showControl(QString("CapacityBar { objectName: \"bar\"; width: 500; used: %1; total: %2 }")
                        .arg(row.used, row.total),
                    {600, 100});
        EXPECT_DOUBLE_EQ(item("capacityFill").width(), row.width) << row.used;
        EXPECT_EQ(item("bar").height(), 12);
        EXPECT_EQ(nameOf("bar"), row.name) << row.used;
    }
}

TEST_F(ComponentTests, withoutACapacityTheBarIsEmpty) {
    for (const auto* total : {"0", "-1"}) {
        showControl(QString("CapacityBar { objectName: \"bar\"; width: 500; used: 7; total: %1 }").arg(total),
                    {600, 100});
        EXPECT_FALSE(find("capacityFill"));
        EXPECT_EQ(nameOf("bar"), "Terpakai 0 persen");
    }
}

TEST_F(ComponentTests, theBarRunsThroughItsColours) {
    showControl("CapacityBar { objectName: \"bar\"; width: 300; used: 1; total: 1 }");
    EXPECT_NEAR(seen("bar", {0.03, 0.5}).blueF(), brand("capacityCyan").blueF(), 0.05);
    EXPECT_NEAR(seen("bar", {0.5, 0.5}).redF(), brand("sky").redF(), 0.05);
    EXPECT_NEAR(seen("bar", {0.97, 0.5}).greenF(), brand("accent").greenF(), 0.06);
    item("bar").setProperty("warning", true);
    settle();
    EXPECT_NEAR(seen("bar", {0.97, 0.5}).redF(), brand("coral").redF(), 0.05);
    EXPECT_NEAR(seen("bar", {0.97, 0.5}).greenF(), brand("coral").greenF(), 0.05);
}

TEST_F(ComponentTests, anUnevenCardHasOneOtherCorner) {
    showControl("UnevenCard { objectName: \"card\"; width: 100; height: 80; color: \"black\"; radius: 22; "
                "small: 6 }");
    const auto picture = grab();
    const QColor ground = picture.pixelColor(150, 150);
    EXPECT_EQ(picture.pixelColor(3, 3), ground);
    EXPECT_EQ(picture.pixelColor(96, 3), ground);
    EXPECT_EQ(picture.pixelColor(96, 76), ground);
    EXPECT_EQ(picture.pixelColor(3, 76), QColor("black"));
    EXPECT_EQ(picture.pixelColor(0, 79), ground);
}

TEST_F(ComponentTests, aCardStacksWhatIsInIt) {
    showControl("Card { objectName: \"card\"; width: 200; Rectangle { objectName: \"one\"; width: "
                "parent.width; height: 20 } "
                "Rectangle { objectName: \"two\"; width: 10; height: 20 } }");
    EXPECT_EQ(place("one"), QRectF(18, 18, 164, 20));
    EXPECT_EQ(place("two").top(), 48);
    EXPECT_EQ(item("card").height(), 86);
}

TEST_F(ComponentTests, aCalloutBreaksAtBlanksOnly) {
    showControl(
        "Callout { objectName: \"note\"; width: 160; symbol: \"star.fill\"; tint: Brand.amber; text: "
        "\"aa bb Xcode/Gradle-xx\" } BrandText { objectName: \"word\"; y: 100; style: BrandText.Callout; "
        "text: \"Xcode/Gradle-xx\" }");
    EXPECT_EQ(nameOf("note"), "aa bb Xcode/Gradle-xx");
    EXPECT_NEAR(item("calloutText").property("contentWidth").toDouble(), item("word").width(), 2);
    EXPECT_EQ(item("note").height(), 2 * 18 + 20);
}

TEST_F(ComponentTests, anEmptyStateKeepsItsPlaceWhenSomethingBegins) {
    showControl("EmptyState { objectName: \"empty\"; anchors.fill: parent; symbol: \"magnifyingglass\"; "
                "title: \"Belum dipindai\"; "
                "body: \"Teks\"; buttonText: \"Pindai sekarang\"; onTriggered: parent.count++ }",
                {500, 400});
    const auto before = place("emptyTitle");
    click("emptyButton");
    EXPECT_EQ(count(), 1);
    item("empty").setProperty("statusText", "Selesai: Xcode");
    item("empty").setProperty("buttonEnabled", false);
    settle();
    EXPECT_EQ(place("emptyTitle"), before);
    EXPECT_EQ(text("emptyStatus"), "Selesai: Xcode");
    click("emptyButton");
    EXPECT_EQ(count(), 1);
}

TEST_F(ComponentTests, aSheetIsAnsweredFirst) {
    showControl(R"(PillButton { objectName: "behind"; text: "x"; onClicked: parent.told += "behind" }
        Sheet { shown: root.count === 0; sheetWidth: 200; sheetHeight: 120; defaultButton: go; onDismissed: root.told += "escape "
          PillButton { id: go; objectName: "go"; text: "Go"; onClicked: root.told += "go " } })");
    readSheet();
    EXPECT_TRUE(find("go"));
    click("behind");
    EXPECT_EQ(told(), "");
    press(Qt::Key_Escape);
    EXPECT_EQ(told(), "escape ");
    EXPECT_TRUE(find("go")) << "Escape only asks";
    press(Qt::Key_Return);
    click("go");
    EXPECT_EQ(told(), "escape go go ");
    item("root").setProperty("count", 1);
    settle(400);
    EXPECT_FALSE(find("go"));
}

TEST_F(ComponentTests, theMarkIsAFlowerOnASkyWithoutAName) {
    showControl("BrandMark { objectName: \"mark\"; size: 100 }");
    EXPECT_EQ(seen("mark", {0.5, 0.5}), QColor(0x00, 0x64, 0xAF)) << "the spark";
    EXPECT_EQ(seen("mark", {0.5, 0.25}), QColor(Qt::white)) << "a petal";
    EXPECT_EQ(seen("mark", {0.01, 0.01}), brand("window")) << "round";
    EXPECT_EQ(item("mark").property("width").toInt(), 100);
}

TEST_F(ComponentTests, controlsGrowWithTheText) {
    setFontScale(2);
    showControl("Column { PillButton { objectName: \"pill\"; text: \"Go\" } PlainButton { objectName: "
                "\"plain\"; text: \"Go\" } "
                "SafetyBadge { objectName: \"badge\"; safety: 0 } Symbol { objectName: \"symbol\"; name: "
                "\"star.fill\"; size: 16 } }");
    EXPECT_NEAR(item("pill").height(), 64, 2);
    EXPECT_NEAR(item("plain").height(), 56, 2);
    EXPECT_NEAR(item("badge").height(), 40, 2);
    EXPECT_NEAR(item("symbol").height(), 32, 1);
}

} // namespace
} // namespace korvanti
