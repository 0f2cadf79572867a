#include "ui/DateClock.h"

#include "base/Formatters.h"
#include "ui/ScreenText.h"

#include <chrono>
#include <utility>

namespace korvanti {

DateClock::DateClock(Clock clock, QObject* parent) : QObject(parent), clock_(std::move(clock)) {
    minute_.setInterval(std::chrono::minutes(1));
    minute_.setTimerType(Qt::VeryCoarseTimer);
    connect(&minute_, &QTimer::timeout, this, &DateClock::ticked);
}

QString DateClock::relative(Instant date) const {
    return screenText(Formatters::relative(date, now()));
}

void DateClock::setIsShown(bool isShown) {
    if (isShown == minute_.isActive())
        return;
    if (isShown) {
        minute_.start();
        emit ticked();
    } else {
        minute_.stop();
    }
    emit isShownChanged();
}

} // namespace korvanti
