#pragma once

#include "base/Instant.h"

#include <QObject>
#include <QString>
#include <QTimer>
#include <functional>
#include <qqmlregistration.h>

namespace korvanti {

using Clock = std::function<Instant()>;

/// The clock by which a model tells its dates. The dates keep up with it while somebody sees them: it ticks
/// when they come into sight and once a minute from then on.
class DateClock : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the models")
    /// Told by what is on the screen, see DateWatch.qml.
    Q_PROPERTY(bool isShown READ isShown WRITE setIsShown NOTIFY isShownChanged)

public:
    explicit DateClock(Clock clock, QObject* parent = nullptr);

    [[nodiscard]] Instant now() const { return clock_(); }
    /// The distance of a date from now: "2 jam yang lalu".
    [[nodiscard]] QString relative(Instant date) const;

    [[nodiscard]] bool isShown() const { return minute_.isActive(); }
    void setIsShown(bool isShown);

signals:
    void ticked(); ///< the dates have to be told anew
    void isShownChanged();

private:
    Clock clock_;
    QTimer minute_{this};
};

} // namespace korvanti
