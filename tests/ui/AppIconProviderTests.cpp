#include "ui/AppIconProvider.h"

#include "UiSupport.h"

#include <QBuffer>
#include <QColor>
#include <QImage>
#include <gtest/gtest.h>
#include <string>

namespace korvanti {
namespace {

using namespace korvanti::testing;

std::string pngOf(const QColor& color, int width, int height) {
    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(color);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes.toStdString();
}

class AppIconProviderTests : public UiTests {
protected:
    QImage requested(const std::string& bundle, QSize asked, QSize* size = nullptr) {
        AppIconProvider provider(model());
        return provider.requestImage(AppIconProvider::nameOf(bundle) + "/ff0000/0000ff", size, asked);
    }
};

TEST_F(AppIconProviderTests, theSystemsIconIsGivenAtTheSizeThatIsAskedFor) {
    desktop.icons["/Applications/Tool.app"] = pngOf(Qt::green, 28, 28);
    QSize size;
    const auto image = requested("/Applications/Tool.app", {28, 28}, &size);
    EXPECT_EQ(image.size(), QSize(28, 28));
    EXPECT_EQ(size, QSize(28, 28));
    EXPECT_EQ(image.pixelColor(0, 0), QColor(Qt::green));
    EXPECT_EQ(requested("/Applications/Tool.app", {56, 56}).size(), QSize(56, 56));
}

TEST_F(AppIconProviderTests, aPathIsItsBytes) {
    const std::string odd = "/Applications/a?b#c%2F \xff\xfe\n\"d\".app";
    desktop.icons[odd] = pngOf(Qt::green, 28, 28);
    EXPECT_EQ(requested(odd, {28, 28}).pixelColor(14, 14), QColor(Qt::green));
    for (const auto character : AppIconProvider::nameOf(odd))
        EXPECT_TRUE(character.isLetterOrNumber() || character == '-' || character == '_')
            << character.toLatin1() << " would mean something in an address";
}

TEST_F(AppIconProviderTests, withoutAnIconThereIsAMarkInTheColoursGiven) {
    const auto image = requested("/Applications/Tool.app", {100, 100});
    EXPECT_EQ(image.size(), QSize(100, 100));
    EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0) << "its corners are round";
    EXPECT_EQ(image.pixelColor(50, 8), QColor(Qt::blue));
    int marked = 0;
    for (int x = 0; x < 100; ++x)
        marked += image.pixelColor(x, 40) == QColor(Qt::red) ? 1 : 0;
    EXPECT_GT(marked, 2);
}

TEST_F(AppIconProviderTests, whatIsNoPictureIsNone) {
    for (const auto& bytes : {std::string("no picture"), std::string(1, '\0'),
                              pngOf(Qt::green, 28, 28).substr(0, 30), std::string("<svg/>")}) {
        desktop.icons["/Applications/Tool.app"] = bytes;
        EXPECT_EQ(requested("/Applications/Tool.app", {28, 28}).pixelColor(14, 2), QColor(Qt::blue));
    }
}

TEST_F(AppIconProviderTests, whateverIsAskedForThereIsAPictureOfASoundSize) {
    EXPECT_EQ(requested("", {0, 0}).size(), QSize(28, 28));
    EXPECT_EQ(requested("", {-1, -1}).size(), QSize(28, 28));
    EXPECT_EQ(requested("", {1, 0}).size(), QSize(1, 1));
    EXPECT_EQ(requested("", {1'000'000, 1}).size(), QSize(1024, 1024));
    AppIconProvider provider(model());
    EXPECT_EQ(provider.requestImage("", nullptr, {28, 28}).size(), QSize(28, 28));
    EXPECT_EQ(provider.requestImage("%%%/no colour", nullptr, {28, 28}).size(), QSize(28, 28));
}

} // namespace
} // namespace korvanti
