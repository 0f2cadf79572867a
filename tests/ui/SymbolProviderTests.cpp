#include "ui/SymbolProvider.h"

#include "UiSupport.h"
#include "scan/CleanupItem.h"

#include <QFileInfo>
#include <gtest/gtest.h>
#include <set>
#include <string>

namespace korvanti {
namespace {

using namespace korvanti::testing;

class SymbolProviderTests : public UiTests {
protected:
    static int inkedPixels(const QImage& image) {
        int count = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                count += qAlpha(image.pixel(x, y)) > 128 ? 1 : 0;
        }
        return count;
    }
    static int inkedPixels(const QString& name) {
        return inkedPixels(SymbolProvider::draw(name, 64, Qt::black));
    }
};

struct Row {
    std::string name;
    std::string icon;
    std::string badge;
    int turn = 0;
};

const Row rows[] = {
    {"hammer", "hammer"},
    {"ipad.and.iphone", "devices"},
    {"square.stack.3d.up", "stack"},
    {"folder.badge.gearshape", "folder", "gear-six-fill"},
    {"shippingbox", "package"},
    {"sparkles", "sparkle"},
    {"sparkles.fill", "sparkle-fill"},
    {"globe", "globe"},
    {"gamecontroller", "game-controller"},
    {"photo.on.rectangle", "images"},
    {"gearshape.2", "gear"},
    {"gauge.with.dots.needle.67percent", "gauge"},
    {"gauge.with.dots.needle.67percent.fill", "gauge-fill"},
    {"square.grid.3x3.square", "grid-nine"},
    {"square.grid.3x3.square.fill", "grid-nine-fill"},
    {"square.grid.2x2", "squares-four"},
    {"square.grid.2x2.fill", "squares-four-fill"},
    {"externaldrive", "hard-drive"},
    {"externaldrive.fill", "hard-drive-fill"},
    {"externaldrive.fill.badge.exclamationmark", "hard-drive-fill", "warning-circle-fill"},
    {"externaldrive.badge.questionmark", "hard-drive", "question"},
    {"internaldrive", "hard-drives"},
    {"clock", "clock"},
    {"folder", "folder"},
    {"minus.circle", "minus-circle"},
    {"clock.arrow.circlepath", "clock-counter-clockwise"},
    {"clock.arrow.circlepath.fill", "clock-counter-clockwise-fill"},
    {"checkmark.seal.fill", "seal-check-fill"},
    {"arrow.down.circle.fill", "arrow-circle-down-fill"},
    {"eye.fill", "eye-fill"},
    {"lock.fill", "lock-fill"},
    {"lock.shield", "lock-key"},
    {"gearshape.fill", "gear-six-fill"},
    {"magnifyingglass", "magnifying-glass"},
    {"arrow.clockwise", "arrow-clockwise"},
    {"exclamationmark.triangle.fill", "warning-fill"},
    {"info.circle.fill", "info-fill"},
    {"checkmark.circle", "check-circle"},
    {"checkmark.circle.fill", "check-circle-fill"},
    {"xmark", "x-bold"},
    {"xmark.octagon.fill", "warning-octagon-fill"},
    {"hand.point.right.fill", "hand-pointing-fill", "", 90},
    {"hand.tap", "hand-tap"},
    {"star.fill", "star-fill"},
    {"memorychip", "memory"},
    {"speedometer", "speedometer"},
    {"checkmark", "check-bold"},
    {"minus", "minus-bold"},
    {"plus", "plus-bold"},
    {"chevron.up.chevron.down", "caret-up-down-bold"},
    {"chevron.right", "caret-right-bold"},
    {"chevron.down", "caret-down-bold"},
};

TEST_F(SymbolProviderTests, drawsEachSymbolFromItsIcon) {
    std::set<std::string> names;
    for (const auto& row : rows) {
        const auto& drawing = SymbolProvider::find(QString::fromStdString(row.name));
        EXPECT_EQ(drawing.name, row.name);
        EXPECT_EQ(drawing.icon, row.icon) << row.name;
        EXPECT_EQ(drawing.badge, row.badge) << row.name;
        EXPECT_EQ(drawing.turn, row.turn) << row.name;
        names.insert(row.name);
    }
    for (const auto& drawing : SymbolProvider::symbols())
        EXPECT_TRUE(names.contains(std::string(drawing.name))) << drawing.name;
    EXPECT_EQ(SymbolProvider::symbols().size(), std::size(rows));
}

TEST_F(SymbolProviderTests, hasAFileForEachIcon) {
    for (const auto& drawing : SymbolProvider::symbols()) {
        for (const auto icon : {drawing.icon, drawing.badge.empty() ? drawing.icon : drawing.badge}) {
            const auto file = ":/qt/qml/Korvanti/Ui/icons/" + std::string(icon) + ".svg";
            EXPECT_TRUE(QFileInfo::exists(QString::fromStdString(file))) << file;
        }
        EXPECT_GT(inkedPixels(QString::fromUtf8(drawing.name.data(), qsizetype(drawing.name.size()))), 100)
            << drawing.name;
    }
}

TEST_F(SymbolProviderTests, knowsTheSymbolOfEachCategory) {
    for (const auto category : allCases<ItemCategory>) {
        const auto name = symbol(category);
        EXPECT_EQ(SymbolProvider::find(QString::fromStdString(std::string(name))).name, name);
    }
}

TEST_F(SymbolProviderTests, drawsAQuestionMarkForANameThatItDoesNotKnow) {
    for (const auto* name : {"", "no.such.symbol", "../hammer", "hammer.svg", "HAMMER"}) {
        EXPECT_EQ(SymbolProvider::find(name).icon, "question") << name;
        EXPECT_GT(inkedPixels(QString(name)), 100) << name;
    }
}

TEST_F(SymbolProviderTests, drawsInTheColourThatIsAskedFor) {
    const auto image = SymbolProvider::draw("square.grid.2x2.fill", 64, QColor(0x12, 0x34, 0x56));
    EXPECT_EQ(image.pixelColor(20, 20), QColor(0x12, 0x34, 0x56));
    EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0);
}

TEST_F(SymbolProviderTests, readsNameColourAndSizeFromTheAddress) {
    SymbolProvider provider;
    QSize size;
    const auto image = provider.requestImage("square.grid.2x2.fill/80ff0000", &size, {32, 32});
    EXPECT_EQ(size, QSize(32, 32));
    EXPECT_EQ(image.pixelColor(10, 10).alpha(), 0x80);
    EXPECT_EQ(image.pixelColor(10, 10).red(), 255);
}

TEST_F(SymbolProviderTests, answersAnAddressThatMakesNoSense) {
    SymbolProvider provider;
    for (const auto* id : {"", "/", "hammer", "hammer/", "hammer/nonsense", "a/b/c/ff0000"})
        EXPECT_GT(inkedPixels(provider.requestImage(id, nullptr, {-1, -1})), 10) << id;
    EXPECT_LE(provider.requestImage("hammer/ff0000", nullptr, {1'000'000, 1'000'000}).width(), 1024);
}

TEST_F(SymbolProviderTests, laysABadgeIntoAGap) {
    const auto plain = SymbolProvider::draw("externaldrive.fill", 64, Qt::black);
    const auto marked = SymbolProvider::draw("externaldrive.fill.badge.exclamationmark", 64, Qt::black);
    EXPECT_EQ(plain.pixelColor(25, 32), marked.pixelColor(25, 32));
    EXPECT_GT(plain.pixelColor(28, 36).alpha(), 200);
    EXPECT_LT(SymbolProvider::draw("externaldrive.fill.badge.exclamationmark", 64, Qt::black)
                  .pixelColor(38, 26)
                  .alpha(),
              60);
    EXPECT_GT(marked.pixelColor(45, 57).alpha(), 200);
    EXPECT_EQ(plain.pixelColor(45, 57).alpha(), 0);
}

TEST_F(SymbolProviderTests, turnsTheHandToTheRight) {
    const auto hand = SymbolProvider::draw("hand.point.right.fill", 64, Qt::black);
    int tip = 0;
    for (int y = 0; y < 64; ++y)
        tip += qAlpha(hand.pixel(58, y)) > 128 ? 1 : 0;
    EXPECT_GT(tip, 3);
    EXPECT_LT(tip, 14) << "a finger, not the wrist";
}

} // namespace
} // namespace korvanti
