#pragma once

#include "shell/AppModel.h"

#include <QObject>
#include <QString>
#include <cstdint>
#include <qqmlregistration.h>

namespace korvanti {

/// A number among the settings that goes up and down by steps. A saved one may lie outside its range: the
/// first step leads to the nearer bound.
class SteppedSetting : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the program")
    Q_PROPERTY(QString text READ text NOTIFY changed)
    /// For those who can't see the sentence; a number that fits no `int` is the nearest that does.
    Q_PROPERTY(int number READ shownNumber NOTIFY changed)
    Q_PROPERTY(int lowest READ lowest CONSTANT)
    Q_PROPERTY(int highest READ highest CONSTANT)
    Q_PROPERTY(bool canRaise READ canRaise NOTIFY changed)
    Q_PROPERTY(bool canLower READ canLower NOTIFY changed)

public:
    struct Range {
        int lowest;
        int highest;
        int step;
    };
    /// Which one, what it goes through, and its sentence with "%1" for the number.
    SteppedSetting(AppModel& model, std::int64_t KorvantiSettings::*number, Range range, QString sentence);

    [[nodiscard]] QString text() const { return sentence_.arg(number()); }
    [[nodiscard]] int shownNumber() const;
    [[nodiscard]] int lowest() const { return range_.lowest; }
    [[nodiscard]] int highest() const { return range_.highest; }
    [[nodiscard]] bool canRaise() const { return raised() != number(); }
    [[nodiscard]] bool canLower() const { return lowered() != number(); }
    Q_INVOKABLE void raise() { set(raised()); }
    Q_INVOKABLE void lower() { set(lowered()); }

signals:
    void changed();

private:
    [[nodiscard]] std::int64_t number() const { return model_.settings().*number_; }
    [[nodiscard]] std::int64_t raised() const;
    [[nodiscard]] std::int64_t lowered() const;
    void set(std::int64_t number);

    AppModel& model_;
    std::int64_t KorvantiSettings::*number_;
    Range range_;
    QString sentence_;
};

} // namespace korvanti
