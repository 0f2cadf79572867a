#include "ui/Clipboard.h"

#include <QByteArray>
#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

namespace korvanti {

void copyToClipboard(std::string_view bytes) {
    auto* copied = new QMimeData; // the clipboard's
    copied->setData("text/plain", QByteArray(bytes.data(), static_cast<qsizetype>(bytes.size())));
    QGuiApplication::clipboard()->setMimeData(copied);
}

} // namespace korvanti
