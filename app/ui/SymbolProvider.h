#pragma once

#include <QColor>
#include <QImage>
#include <QQuickImageProvider>
#include <QString>
#include <span>
#include <string_view>

namespace korvanti {

/// How one symbol is drawn.
struct SymbolDrawing {
    std::string_view name;  ///< the platform's name for it
    std::string_view icon;  ///< the file in icons/
    std::string_view badge; ///< a second file, drawn small in the bottom right corner; or empty
    int turn = 0;           ///< degrees, clockwise
};

/// Draws symbols in one colour, for QML as "image://symbol/NAME/AARRGGBB".
class SymbolProvider : public QQuickImageProvider {
public:
    SymbolProvider() : QQuickImageProvider(Image) {}
    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;

    /// All symbols that there are.
    [[nodiscard]] static std::span<const SymbolDrawing> symbols();
    /// A name that is not known gives a question mark in a circle, which people see and tell us of.
    [[nodiscard]] static const SymbolDrawing& find(const QString& name);
    /// A square picture with that many pixels a side, transparent but for the symbol.
    [[nodiscard]] static QImage draw(const QString& name, int pixels, const QColor& color);
};

} // namespace korvanti
