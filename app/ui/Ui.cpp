#include "ui/Ui.h"

#include "ui/SymbolProvider.h"

#include <QGuiApplication>
#include <QQmlEngine>
#include <QStyleHints>

namespace korvanti {

void prepareForUi(QQmlEngine& engine) {
    QGuiApplication::styleHints()->setUseHoverEffects(true); // our controls have theirs on every system
    engine.addImportPath(":/qt/qml");
    engine.addImageProvider("symbol", new SymbolProvider); // the engine's from now on
}

} // namespace korvanti
