#pragma once

#include "shell/AppModel.h"

#include <QColor>
#include <QImage>
#include <QQuickImageProvider>
#include <QString>
#include <string>

namespace korvanti {

/// Draws the icons of applications, for QML as "image://app/NAME/AARRGGBB/AARRGGBB". Where the system has
/// none it draws one mark for all, in the first colour on a ground of the second.
class AppIconProvider : public QQuickImageProvider {
public:
    /// The model must outlive the engine that this is given to.
    explicit AppIconProvider(const AppModel& model) : QQuickImageProvider(Image), model_(model) {}
    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;

    /// A bundle's path for use in such an address: its very bytes, which need not be text.
    [[nodiscard]] static QString nameOf(const std::string& bundle);
    [[nodiscard]] static QImage drawMark(int pixels, const QColor& color, const QColor& ground);

private:
    const AppModel& model_;
};

} // namespace korvanti
