#pragma once

#include <QColor>
#include <QObject>
#include <QQmlParserStatus>
#include <QString>
#include <qqmlregistration.h>

namespace korvanti {

class Theme;

/// How one kind of text is set. What is given is in pixels before the user's own scale, what is told is in
/// pixels of the window.
class TypeStyle : public QObject, public QQmlParserStatus {
    Q_OBJECT
    Q_INTERFACES(QQmlParserStatus)
    QML_ELEMENT
    Q_PROPERTY(double size MEMBER size_ REQUIRED FINAL)
    Q_PROPERTY(int weight MEMBER weight_ NOTIFY measured REQUIRED FINAL)
    Q_PROPERTY(double line MEMBER line_ REQUIRED FINAL)
    Q_PROPERTY(double tracking MEMBER tracking_ FINAL)
    Q_PROPERTY(bool mono MEMBER mono_ FINAL)
    Q_PROPERTY(QColor color MEMBER color_ NOTIFY colorChanged REQUIRED FINAL)
    Q_PROPERTY(QString family READ family NOTIFY measured)
    Q_PROPERTY(int pixelSize READ pixelSize NOTIFY measured)
    Q_PROPERTY(int lineHeight READ lineHeight NOTIFY measured)
    Q_PROPERTY(double letterSpacing READ letterSpacing NOTIFY measured)
    Q_PROPERTY(int lead READ lead NOTIFY measured)
    Q_PROPERTY(double digitWidth READ digitWidth NOTIFY measured)

public:
    using QObject::QObject;

    void classBegin() override {}
    void componentComplete() override;

    [[nodiscard]] QString family() const { return family_; }
    [[nodiscard]] int pixelSize() const { return pixelSize_; }
    [[nodiscard]] int lineHeight() const { return lineHeight_; }
    [[nodiscard]] double letterSpacing() const { return letterSpacing_; }
    /// By how much the line is higher than its font on the upper side: text is laid at the top of its line.
    [[nodiscard]] int lead() const { return lead_; }
    /// The cell of a digit in a column of figures.
    [[nodiscard]] double digitWidth() const { return digitWidth_; }

signals:
    void colorChanged();
    void measured();

private:
    void measure(const Theme& theme);

    double size_ = 0;
    int weight_ = 0;
    double line_ = 0;
    double tracking_ = 0;
    bool mono_ = false;
    QColor color_;
    QString family_;
    int pixelSize_ = 0;
    int lineHeight_ = 0;
    double letterSpacing_ = 0;
    int lead_ = 0;
    double digitWidth_ = 0;
};

} // namespace korvanti
