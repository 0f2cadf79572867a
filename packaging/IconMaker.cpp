#include <QBuffer>
#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <QtEndian>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string_view>
#include <vector>

// korvanti_icons ART OUT: draws the application's icon from the drawings of the window, at all sizes that the
// systems ask for: OUT/korvanti.icns for macOS, OUT/hicolor for the desktops of Linux.

namespace {

constexpr double canvas = 512; ///< what the drawings are made on, and the numbers below
constexpr double shadowDrop = 8;
constexpr double shadowDeviation = 8;
constexpr double shadowOpacity = 0.3;
constexpr QRectF body(50, 50, 412, 412);
constexpr double bodyRadius = 92.7;

using Row = std::vector<float>;

Row bellCurve(double deviation) {
    const auto reach = static_cast<int>(std::ceil(3 * deviation));
    Row weights;
    float sum = 0;
    for (int i = -reach; i <= reach; ++i) {
        weights.push_back(static_cast<float>(std::exp(-0.5 * i * i / (deviation * deviation))));
        sum += weights.back();
    }
    for (float& weight : weights)
        weight /= sum;
    return weights;
}

/// Blurs the rows of a square and turns it on its diagonal: twice gives the whole blur, upright again.
Row blurredRows(const Row& square, std::size_t side, const Row& weights) {
    Row turned(square.size());
    const std::size_t reach = weights.size() / 2;
    for (std::size_t y = 0; y < side; ++y) {
        for (std::size_t x = 0; x < side; ++x) {
            float sum = 0;
            const std::size_t first = reach > x ? reach - x : 0;
            const std::size_t end = std::min(weights.size(), side - x + reach);
            for (std::size_t i = first; i < end; ++i)
                sum += weights[i] * square[y * side + x + i - reach];
            turned[x * side + y] = sum;
        }
    }
    return turned;
}

/// Qt's SVG knows no blur, so the shadow is made here.
QImage shadow(int pixels) {
    const double scale = pixels / canvas;
    QImage shape(pixels, pixels, QImage::Format_Alpha8);
    shape.fill(0);
    QPainter painter(&shape);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(scale, scale);
    painter.translate(0, shadowDrop);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::black);
    painter.drawRoundedRect(body, bodyRadius, bodyRadius);
    painter.end();

    const auto side = static_cast<std::size_t>(pixels);
    Row square;
    for (int y = 0; y < pixels; ++y)
        square.insert(square.end(), shape.constScanLine(y), shape.constScanLine(y) + pixels);
    const Row weights = bellCurve(shadowDeviation * scale);
    square = blurredRows(blurredRows(square, side, weights), side, weights);
    for (std::size_t y = 0; y < side; ++y) {
        std::transform(square.begin() + static_cast<std::ptrdiff_t>(y * side),
                       square.begin() + static_cast<std::ptrdiff_t>((y + 1) * side),
                       shape.scanLine(static_cast<int>(y)),
                       [](float alpha) { return static_cast<uchar>(std::lround(alpha * shadowOpacity)); });
    }
    return shape;
}

/// The smallest leaves the spark out, which could not be told there.
QImage icon(const QString& art, int pixels) {
    QSvgRenderer drawing(art + (pixels <= 16 ? "/application-16.svg" : "/application.svg"));
    if (!drawing.isValid())
        return {};
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.drawImage(0, 0, shadow(pixels));
    drawing.render(&painter, QRectF(0, 0, pixels, pixels));
    painter.end();
    return image;
}

/// One channel in the packing of Apple's icon files: a byte below 128 announces that many and one bytes as
/// they are, any other the repetition of the next, 3 to 130 times.
QByteArray packed(const QByteArray& bytes) {
    constexpr qsizetype longestPlain = 128;
    constexpr qsizetype longestRun = 130;
    constexpr qsizetype shortestRun = 3;
    QByteArray result;
    qsizetype plainStart = 0;
    const auto endPlain = [&](qsizetype end) {
        while (plainStart < end) {
            const auto count = std::min(end - plainStart, longestPlain);
            result += static_cast<char>(count - 1);
            result += bytes.mid(plainStart, count);
            plainStart += count;
        }
    };
    for (qsizetype at = 0; at < bytes.size();) {
        qsizetype run = 1;
        while (run < longestRun && at + run < bytes.size() && bytes[at + run] == bytes[at])
            ++run;
        if (run >= shortestRun) {
            endPlain(at);
            result += static_cast<char>(run + 128 - shortestRun);
            result += bytes[at];
            plainStart = at + run;
        }
        at += run;
    }
    endPlain(bytes.size());
    return result;
}

QByteArray packedPixels(const QImage& image) {
    const QImage straight = image.convertToFormat(QImage::Format_ARGB32);
    QByteArray result = "ARGB";
    using Channel = int (*)(QRgb);
    for (const Channel channel : std::array<Channel, 4>{qAlpha, qRed, qGreen, qBlue}) {
        QByteArray bytes;
        for (int y = 0; y < straight.height(); ++y) {
            for (int x = 0; x < straight.width(); ++x)
                bytes += static_cast<char>(channel(straight.pixel(x, y)));
        }
        result += packed(bytes);
    }
    return result;
}

QByteArray png(const QImage& image) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    return image.save(&buffer, "PNG") ? bytes : QByteArray();
}

QByteArray bigEndian(qsizetype number) {
    std::array<char, 4> bytes{};
    qToBigEndian(static_cast<std::uint32_t>(number), bytes.data());
    return {bytes.data(), bytes.size()};
}

struct IconEntry {
    std::string_view type;
    int pixels;
    bool isPng = true; ///< the two smallest are shown from their pixels only
};

constexpr std::array<IconEntry, 10> entries = {{
    {"ic04", 16, false},
    {"ic11", 32}, // 16 at double density
    {"ic05", 32, false},
    {"ic12", 64},
    {"ic07", 128},
    {"ic13", 256},
    {"ic08", 256},
    {"ic14", 512},
    {"ic09", 512},
    {"ic10", 1024},
}};

constexpr std::array hicolorSizes = {16, 22, 24, 32, 48, 64, 128, 256, 512};

constexpr qsizetype headerSize = 8; ///< a type and a length, which counts the header, too

QByteArray icns(const QString& art) {
    QByteArray all;
    for (const auto& [type, pixels, isPng] : entries) {
        const QImage image = icon(art, pixels);
        const QByteArray data = isPng ? png(image) : packedPixels(image);
        all.append(type.data(), static_cast<qsizetype>(type.size()));
        all += bigEndian(data.size() + headerSize) + data;
    }
    return "icns" + bigEndian(all.size() + headerSize) + all;
}

bool write(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (!bytes.isEmpty() && QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly) &&
        file.write(bytes) == bytes.size() && file.flush())
        return true;
    std::fprintf(stderr, "korvanti_icons: %s can't be made\n", qPrintable(path));
    return false;
}

QByteArray contents(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool writeAll(const QString& art, const QString& out) {
    if (icon(art, 16).isNull() || icon(art, 32).isNull()) {
        std::fprintf(stderr, "korvanti_icons: no drawings in %s\n", qPrintable(art));
        return false;
    }
    const QString place = out + "/hicolor/%1/apps/korvanti.%2";
    for (const int pixels : hicolorSizes) {
        if (!write(place.arg(QString("%1x%1").arg(pixels), "png"), png(icon(art, pixels))))
            return false;
    }
    return write(place.arg("scalable", "svg"), contents(art + "/application.svg")) &&
           write(out + "/korvanti.icns", icns(art));
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("usage: korvanti_icons ART OUT\n", stderr);
        return 2;
    }
    return writeAll(QFile::decodeName(argv[1]), QFile::decodeName(argv[2])) ? 0 : 1;
}
