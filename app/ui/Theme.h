#pragma once

#include <QObject>
#include <QString>
#include <memory>
#include <qqmlregistration.h>

namespace korvanti {

class MotionWatch;

/// What the system says of its looks. Follows its changes.
class Theme : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(bool dark READ dark NOTIFY darkChanged)
    Q_PROPERTY(bool reducedMotion READ reducedMotion NOTIFY reducedMotionChanged)
    Q_PROPERTY(double fontScale READ fontScale NOTIFY fontScaleChanged)
    Q_PROPERTY(QString textFamily READ textFamily CONSTANT)
    Q_PROPERTY(QString displayFamily READ displayFamily CONSTANT)
    Q_PROPERTY(QString monoFamily READ monoFamily CONSTANT)

public:
    explicit Theme(QObject* parent = nullptr);
    ~Theme() override;

    [[nodiscard]] bool dark() const { return dark_; }
    /// The user has asked for less motion.
    [[nodiscard]] bool reducedMotion() const { return reducedMotion_; }
    /// By how much text is larger than usual: 1 to 3.
    [[nodiscard]] double fontScale() const { return fontScale_; }
    [[nodiscard]] QString textFamily() const { return textFamily_; }
    [[nodiscard]] QString displayFamily() const { return displayFamily_; } ///< from 20 px up
    [[nodiscard]] QString monoFamily() const { return monoFamily_; }

    void setReducedMotion(bool reduced);

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    void darkChanged();
    void reducedMotionChanged();
    void fontScaleChanged();

private:
    void setDark(bool dark);
    void setFontScale(double scale);

    bool dark_;
    bool reducedMotion_ = false;
    double fontScale_;
    QString textFamily_;
    QString displayFamily_;
    QString monoFamily_;
    std::unique_ptr<MotionWatch> motion_;
};

} // namespace korvanti
