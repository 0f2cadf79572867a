#include "ui/SymbolProvider.h"

#include <QPainter>
#include <QSvgRenderer>
#include <algorithm>
#include <array>

namespace korvanti {
namespace {

constexpr std::array drawings = {
    // Panes, and how they look when they are chosen.
    SymbolDrawing{.name = "gauge.with.dots.needle.67percent", .icon = "gauge"},
    SymbolDrawing{.name = "gauge.with.dots.needle.67percent.fill", .icon = "gauge-fill"},
    SymbolDrawing{.name = "sparkles", .icon = "sparkle"},
    SymbolDrawing{.name = "sparkles.fill", .icon = "sparkle-fill"},
    SymbolDrawing{.name = "square.grid.3x3.square", .icon = "grid-nine"},
    SymbolDrawing{.name = "square.grid.3x3.square.fill", .icon = "grid-nine-fill"},
    SymbolDrawing{.name = "square.grid.2x2", .icon = "squares-four"},
    SymbolDrawing{.name = "square.grid.2x2.fill", .icon = "squares-four-fill"},
    SymbolDrawing{.name = "externaldrive", .icon = "hard-drive"},
    SymbolDrawing{.name = "externaldrive.fill", .icon = "hard-drive-fill"},
    SymbolDrawing{.name = "clock.arrow.circlepath", .icon = "clock-counter-clockwise"},
    SymbolDrawing{.name = "clock.arrow.circlepath.fill", .icon = "clock-counter-clockwise-fill"},
    // Categories of items.
    SymbolDrawing{.name = "hammer", .icon = "hammer"},
    SymbolDrawing{.name = "ipad.and.iphone", .icon = "devices"},
    SymbolDrawing{.name = "square.stack.3d.up", .icon = "stack"},
    SymbolDrawing{.name = "folder.badge.gearshape", .icon = "folder", .badge = "gear-six-fill"},
    SymbolDrawing{.name = "shippingbox", .icon = "package"},
    SymbolDrawing{.name = "globe", .icon = "globe"},
    SymbolDrawing{.name = "gamecontroller", .icon = "game-controller"},
    SymbolDrawing{.name = "photo.on.rectangle", .icon = "images"},
    SymbolDrawing{.name = "gearshape.2", .icon = "gear"},
    // Classes of safety.
    SymbolDrawing{.name = "checkmark.seal.fill", .icon = "seal-check-fill"},
    SymbolDrawing{.name = "arrow.down.circle.fill", .icon = "arrow-circle-down-fill"},
    SymbolDrawing{.name = "eye.fill", .icon = "eye-fill"},
    SymbolDrawing{.name = "lock.fill", .icon = "lock-fill"},
    SymbolDrawing{.name = "gearshape.fill", .icon = "gear-six-fill"},
    // What is told and asked.
    SymbolDrawing{.name = "exclamationmark.triangle.fill", .icon = "warning-fill"},
    SymbolDrawing{.name = "info.circle.fill", .icon = "info-fill"},
    SymbolDrawing{.name = "checkmark.circle", .icon = "check-circle"},
    SymbolDrawing{.name = "checkmark.circle.fill", .icon = "check-circle-fill"},
    SymbolDrawing{.name = "xmark.octagon.fill", .icon = "warning-octagon-fill"},
    SymbolDrawing{.name = "hand.point.right.fill", .icon = "hand-pointing-fill", .turn = 90},
    SymbolDrawing{.name = "hand.tap", .icon = "hand-tap"},
    SymbolDrawing{.name = "star.fill", .icon = "star-fill"},
    SymbolDrawing{.name = "lock.shield", .icon = "lock-key"},
    SymbolDrawing{.name = "magnifyingglass", .icon = "magnifying-glass"},
    SymbolDrawing{.name = "arrow.clockwise", .icon = "arrow-clockwise"},
    SymbolDrawing{.name = "clock", .icon = "clock"},
    SymbolDrawing{.name = "folder", .icon = "folder"},
    // Drives and memory.
    SymbolDrawing{.name = "internaldrive", .icon = "hard-drives"},
    SymbolDrawing{.name = "externaldrive.fill.badge.exclamationmark",
                  .icon = "hard-drive-fill",
                  .badge = "warning-circle-fill"},
    SymbolDrawing{.name = "externaldrive.badge.questionmark", .icon = "hard-drive", .badge = "question"},
    SymbolDrawing{.name = "memorychip", .icon = "memory"},
    SymbolDrawing{.name = "speedometer", .icon = "speedometer"},
    // Parts of controls, which are small and therefore bold.
    SymbolDrawing{.name = "xmark", .icon = "x-bold"},
    SymbolDrawing{.name = "checkmark", .icon = "check-bold"},
    SymbolDrawing{.name = "minus", .icon = "minus-bold"},
    SymbolDrawing{.name = "minus.circle", .icon = "minus-circle"},
    SymbolDrawing{.name = "plus", .icon = "plus-bold"},
    SymbolDrawing{.name = "chevron.up.chevron.down", .icon = "caret-up-down-bold"},
    SymbolDrawing{.name = "chevron.right", .icon = "caret-right-bold"},
    SymbolDrawing{.name = "chevron.down", .icon = "caret-down-bold"},
};

constexpr SymbolDrawing unknown{.name = "", .icon = "question"};

void paint(QPainter& painter, std::string_view icon, const QRectF& place) {
    QSvgRenderer(":/qt/qml/Korvanti/Ui/icons/" + QString::fromUtf8(icon.data(), qsizetype(icon.size())) +
                 ".svg")
        .render(&painter, place);
}

} // namespace

std::span<const SymbolDrawing> SymbolProvider::symbols() {
    return drawings;
}

const SymbolDrawing& SymbolProvider::find(const QString& name) {
    const auto* const found = std::ranges::find(drawings, name.toStdString(), &SymbolDrawing::name);
    return found == drawings.end() ? unknown : *found;
}

QImage SymbolProvider::draw(const QString& name, int pixels, const QColor& color) {
    const auto& drawing = find(name);
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    const QRectF whole = image.rect();
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(whole.center());
    painter.rotate(drawing.turn);
    painter.translate(-whole.center());
    paint(painter, drawing.icon, whole);
    painter.resetTransform();
    if (!drawing.badge.empty()) {
        // The badge stands in a gap, so that it is told from what it lies on.
        const QPointF middle = whole.center() + QPointF(pixels, pixels) * 0.21;
        const auto around = [&](qreal side) {
            return QRectF(middle - QPointF(side, side) / 2, QSizeF(side, side));
        };
        painter.setCompositionMode(QPainter::CompositionMode_Clear);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::black);
        painter.drawEllipse(around(pixels * 0.68));
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        paint(painter, drawing.badge, around(pixels * 0.6));
    }
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), color);
    return image;
}

QImage SymbolProvider::requestImage(const QString& id, QSize* size, const QSize& requestedSize) {
    constexpr int usual = 24;
    constexpr int largest = 1024;
    const auto cut = id.lastIndexOf('/');
    const int asked = std::max(requestedSize.width(), requestedSize.height());
    const int pixels = asked < 1 ? usual : std::min(asked, largest);
    const QColor color("#" + id.mid(cut + 1));
    auto image = draw(id.left(cut), pixels, color.isValid() ? color : QColor(Qt::black));
    if (size)
        *size = image.size();
    return image;
}

} // namespace korvanti
