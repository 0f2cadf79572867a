#include "support/RunProgram.h"
#include "support/TempFolder.h"

#include <QBuffer>
#include <QColor>
#include <QImage>
#include <QImageReader>
#include <cstdint>
#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace korvanti::testing {
namespace {

using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::Not;

const std::string icons = KORVANTI_BUILD "/packaging/icons";

std::uint32_t number(const std::string& bytes, std::size_t at) {
    std::uint32_t value = 0;
    for (std::size_t i = at; i < at + 4; ++i)
        value = value << 8U | static_cast<unsigned char>(bytes.at(i));
    return value;
}

using Entries = std::vector<std::pair<std::string, std::string>>;

/// The types and contents of an icon file; every length must lead to the next entry, and the last to the end.
Entries entriesOf(const std::string& file) {
    EXPECT_EQ(file.substr(0, 4), "icns");
    EXPECT_EQ(number(file, 4), file.size());
    Entries entries;
    for (std::size_t at = 8; at < file.size();) {
        const auto length = number(file, at + 4);
        if (length <= 8 || at + length > file.size()) {
            ADD_FAILURE() << "an entry of " << length << " bytes at " << at;
            break;
        }
        entries.emplace_back(file.substr(at, 4), file.substr(at + 8, length - 8));
        at += length;
    }
    return entries;
}

QImage picture(const std::string& bytes) {
    return QImage::fromData(QByteArray::fromStdString(bytes), "PNG");
}

/// Four packed channels, one behind the other.
QImage unpacked(const std::string& bytes, int pixels) {
    EXPECT_EQ(bytes.substr(0, 4), "ARGB");
    std::string plain;
    for (std::size_t at = 4; at < bytes.size();) {
        const auto head = static_cast<unsigned char>(bytes[at]);
        if (head < 0x80) {
            plain += bytes.substr(at + 1, head + 1U);
            at += head + 2U;
        } else {
            plain.append(head - 0x80U + 3U, bytes.at(at + 1));
            at += 2;
        }
    }
    const auto count = static_cast<std::size_t>(pixels) * static_cast<std::size_t>(pixels);
    if (plain.size() != 4 * count) {
        ADD_FAILURE() << plain.size() << " bytes in four channels of " << count;
        return {};
    }
    QImage image(pixels, pixels, QImage::Format_ARGB32);
    for (std::size_t i = 0; i < count; ++i) {
        const auto channel = [&](std::size_t which) {
            return static_cast<unsigned char>(plain[which * count + i]);
        };
        const auto place = static_cast<int>(i);
        image.setPixel(place % pixels, place / pixels, qRgba(channel(1), channel(2), channel(3), channel(0)));
    }
    return image;
}

/// The colour at a place of the drawing, which is 512 wide; its middle is at 256.
QColor at(const QImage& image, double x, double y) {
    const double scale = image.width() / 512.0;
    return image.pixelColor(static_cast<int>(x * scale), static_cast<int>(y * scale));
}

/// The place lies within one colour at every size that is asked.
void expectColour(const QImage& image, double x, double y, const char* colour) {
    const QColor found = at(image, x, y);
    const QColor wanted(colour);
    EXPECT_EQ(found.alpha(), 255) << image.width() << " pixels, at " << x << ", " << y;
    EXPECT_LE(std::abs(found.red() - wanted.red()) + std::abs(found.green() - wanted.green()) +
                  std::abs(found.blue() - wanted.blue()),
              image.width() < 32 ? 40 : 12) // few pixels lie wholly within
        << image.width() << " pixels, at " << x << ", " << y << ": " << found.name().toStdString();
}

/// What the mark's rules say of any size of its picture.
void expectTheMark(const QImage& image, int pixels) {
    ASSERT_EQ(image.width(), pixels);
    ASSERT_EQ(image.height(), pixels);
    EXPECT_EQ(at(image, 4, 4).alpha(), 0) << "outside the body";
    EXPECT_EQ(at(image, 508, 4).alpha(), 0);
    expectColour(image, 256, 180, "#FFFFFF"); // the flower, above the spark
    expectColour(image, 180, 256, "#FFFFFF");
    expectColour(image, 257, 257, pixels > 16 ? "#0064AF" : "#FFFFFF"); // the spark
}

TEST(IconTests, theMacsFileHoldsEachSizeAtBothDensities) {
    std::vector<std::pair<std::string, int>> found;
    for (const auto& [type, data] : entriesOf(textOf(icons + "/korvanti.icns"))) {
        if (type == "ic04" || type == "ic05") {
            const int pixels = type == "ic04" ? 16 : 32;
            expectTheMark(unpacked(data, pixels), pixels);
            found.emplace_back(type, pixels);
        } else {
            const QImage image = picture(data);
            expectTheMark(image, image.width());
            found.emplace_back(type, image.width());
        }
    }
    const std::vector<std::pair<std::string, int>> wanted = {
        {"ic04", 16},  {"ic11", 32},  {"ic05", 32},  {"ic12", 64},  {"ic07", 128},
        {"ic13", 256}, {"ic08", 256}, {"ic14", 512}, {"ic09", 512}, {"ic10", 1024}};
    EXPECT_THAT(found, ElementsAreArray(wanted));
}

TEST(IconTests, packedPixelsAreThoseOfThePictureOfTheSameSize) {
    const QImage unpackedIcon = unpacked(entriesOf(textOf(icons + "/korvanti.icns")).at(2).second, 32);
    EXPECT_EQ(
        unpackedIcon,
        picture(textOf(icons + "/hicolor/32x32/apps/korvanti.png")).convertToFormat(QImage::Format_ARGB32));
}

TEST(IconTests, theDesktopsFolderHoldsEachSizeThatItNames) {
    for (const int pixels : {16, 22, 24, 32, 48, 64, 128, 256, 512}) {
        const auto side = std::to_string(pixels);
        expectTheMark(picture(textOf(icons + "/hicolor/" + side + "x" + side + "/apps/korvanti.png")),
                      pixels);
    }
    EXPECT_EQ(textOf(icons + "/hicolor/scalable/apps/korvanti.svg"),
              textOf(KORVANTI_SOURCE "/app/ui/art/application.svg"));
}

TEST(IconTests, theBodyRunsFromLightToDarkOnASoftShadow) {
    const QImage image = picture(textOf(icons + "/hicolor/512x512/apps/korvanti.png"));
    EXPECT_GT(at(image, 90, 90).lightness(), at(image, 256, 70).lightness());
    EXPECT_GT(at(image, 256, 70).lightness(), at(image, 420, 420).lightness());
    EXPECT_GT(at(image, 256, 466).alpha(), at(image, 256, 476).alpha()) << "below the body";
    EXPECT_GT(at(image, 256, 476).alpha(), 0);
    EXPECT_LT(at(image, 256, 466).alpha(), 80);
    EXPECT_EQ(at(image, 256, 466).lightness(), 0);
    EXPECT_GT(at(image, 256, 466).alpha(), at(image, 256, 45).alpha())
        << "above it, where the shadow is less";
    EXPECT_EQ(at(image, 256, 510).alpha(), 0);
}

TEST(IconTests, drawnAgainEveryFileIsTheSame) {
    const TempFolder temp;
    const auto result = runProgram(
        {KORVANTI_BUILD "/packaging/korvanti_icons", KORVANTI_SOURCE "/app/ui/art", temp.path("icons")});
    ASSERT_EQ(result.status, 0) << result.err;
    const auto difference = runProgram({"diff", "-r", temp.path("icons"), icons});
    EXPECT_EQ(difference.status, 0) << difference.out << difference.err;
}

TEST(IconTests, withoutDrawingsNothingIsMade) {
    const TempFolder temp;
    const auto result =
        runProgram({KORVANTI_BUILD "/packaging/korvanti_icons", temp.path(), temp.path("icons")});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("no drawings in " + temp.path()));
    EXPECT_EQ(runProgram({"ls", temp.path()}).out, "");
}

} // namespace
} // namespace korvanti::testing
