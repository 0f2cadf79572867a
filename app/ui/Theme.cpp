#include "ui/Theme.h"

#include "ui/MotionWatch.h"

#include <QEvent>
#include <QFontDatabase>
#include <QFontInfo>
#include <QGuiApplication>
#include <QPalette>
#include <QStringList>
#include <algorithm>
#include <utility>

namespace korvanti {
namespace {

bool systemIsDark() {
    return QGuiApplication::palette().color(QPalette::Window).lightness() < 128;
}

/// The system's own font up to this size counts as usual; Macs and desktops differ in what they begin with.
constexpr double usualPoints = 13;

double systemFontScale() {
    return std::clamp(QFontInfo(QGuiApplication::font()).pointSizeF() / usualPoints, 1.0, 3.0);
}

/// The first that there is; otherwise the system's own.
QString family(const QStringList& wanted, QFontDatabase::SystemFont fallback) {
    const auto present = QFontDatabase::families();
    const auto found = std::ranges::find_if(wanted, [&](const auto& name) { return present.contains(name); });
    return found == wanted.end() ? QFontDatabase::systemFont(fallback).family() : *found;
}

#ifdef Q_OS_MACOS
const QStringList textFamilies;
const QStringList displayFamilies;
const QStringList monoFamilies = {"Menlo"};
#else
const QStringList textFamilies = {"Inter"};
const QStringList displayFamilies = {"Inter Display", "Inter"};
const QStringList monoFamilies = {"DejaVu Sans Mono"};
#endif

} // namespace

Theme::Theme(QObject* parent)
    : QObject(parent), dark_(systemIsDark()), fontScale_(systemFontScale()),
      textFamily_(family(textFamilies, QFontDatabase::GeneralFont)),
      displayFamily_(family(displayFamilies, QFontDatabase::GeneralFont)),
      monoFamily_(family(monoFamilies, QFontDatabase::FixedFont)),
      motion_(watchMotion([this](bool reduced) { setReducedMotion(reduced); })) {
    qGuiApp->installEventFilter(this);
}

Theme::~Theme() = default;

bool Theme::eventFilter(QObject* watched, QEvent* event) {
    if (watched == qGuiApp) {
        if (event->type() == QEvent::ApplicationPaletteChange)
            setDark(systemIsDark());
        else if (event->type() == QEvent::ApplicationFontChange)
            setFontScale(systemFontScale());
    }
    return QObject::eventFilter(watched, event);
}

void Theme::setDark(bool dark) {
    if (std::exchange(dark_, dark) != dark)
        emit darkChanged();
}

void Theme::setReducedMotion(bool reduced) {
    if (std::exchange(reducedMotion_, reduced) != reduced)
        emit reducedMotionChanged();
}

void Theme::setFontScale(double scale) {
    if (!qFuzzyCompare(std::exchange(fontScale_, scale), scale))
        emit fontScaleChanged();
}

} // namespace korvanti
