#include "ui/AppIconProvider.h"

#include "ui/SymbolProvider.h"

#include <QByteArray>
#include <QPainter>
#include <algorithm>

namespace korvanti {
namespace {

constexpr auto encoding = QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals;

} // namespace

QString AppIconProvider::nameOf(const std::string& bundle) {
    return QString::fromLatin1(QByteArray::fromStdString(bundle).toBase64(encoding));
}

QImage AppIconProvider::drawMark(int pixels, const QColor& color, const QColor& ground) {
    constexpr double corner = 0.22; // of a side
    constexpr double symbol = 0.57;
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground);
    painter.drawRoundedRect(image.rect(), corner * pixels, corner * pixels);
    const int side = std::max(1, qRound(symbol * pixels));
    const int margin = (pixels - side) / 2;
    painter.drawImage(margin, margin, SymbolProvider::draw("square.grid.2x2", side, color));
    return image;
}

QImage AppIconProvider::requestImage(const QString& id, QSize* size, const QSize& requestedSize) {
    constexpr int usual = 28;
    constexpr int largest = 1024;
    const int asked = std::max(requestedSize.width(), requestedSize.height());
    const int pixels = asked < 1 ? usual : std::min(asked, largest);
    const auto bundle = QByteArray::fromBase64(id.section('/', 0, 0).toLatin1(), encoding).toStdString();
    auto image = QImage::fromData(QByteArray::fromStdString(model_.icon(bundle, pixels)), "PNG");
    if (image.isNull())
        image = drawMark(pixels, QColor("#" + id.section('/', 1, 1)), QColor("#" + id.section('/', 2, 2)));
    else if (image.size() != QSize(pixels, pixels))
        image = image.scaled(pixels, pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    if (size)
        *size = image.size();
    return image;
}

} // namespace korvanti
