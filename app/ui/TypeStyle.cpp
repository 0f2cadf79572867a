#include "ui/TypeStyle.h"

#include "ui/Theme.h"

#include <QFont>
#include <QFontMetricsF>
#include <QQmlEngine>

namespace korvanti {

void TypeStyle::componentComplete() {
    auto* const theme = qmlEngine(this)->singletonInstance<Theme*>(qmlTypeId("Korvanti.Ui", 1, 0, "Theme"));
    measure(*theme);
    connect(theme, &Theme::fontScaleChanged, this, [this, theme] { measure(*theme); });
}

void TypeStyle::measure(const Theme& theme) {
    constexpr double smallestDisplay = 20;
    family_ = mono_                     ? theme.monoFamily()
              : size_ < smallestDisplay ? theme.textFamily()
                                        : theme.displayFamily();
    pixelSize_ = qRound(size_ * theme.fontScale());
    lineHeight_ = qRound(line_ * theme.fontScale());
    letterSpacing_ = tracking_ * theme.fontScale();

    QFont font(family_);
    font.setPixelSize(pixelSize_);
    font.setWeight(QFont::Weight(weight_));
    font.setLetterSpacing(QFont::AbsoluteSpacing, letterSpacing_);
    font.setHintingPreference(QFont::PreferNoHinting);
    const QFontMetricsF metrics(font);
    lead_ = qRound((lineHeight_ - metrics.height()) / 2);
    digitWidth_ = metrics.horizontalAdvance('0');
    emit measured();
}

} // namespace korvanti
