#include "ui/SteppedSetting.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace korvanti {

SteppedSetting::SteppedSetting(AppModel& model, std::int64_t KorvantiSettings::*number, Range range,
                               QString sentence)
    : model_(model), number_(number), range_(range), sentence_(std::move(sentence)) {
    connect(&model, &AppModel::settingsChanged, this, &SteppedSetting::changed);
}

int SteppedSetting::shownNumber() const {
    using Limits = std::numeric_limits<int>;
    return static_cast<int>(std::clamp<std::int64_t>(number(), Limits::min(), Limits::max()));
}

std::int64_t SteppedSetting::raised() const {
    if (number() >= range_.highest)
        return number();
    return number() < range_.lowest ? range_.lowest
                                    : std::min<std::int64_t>(number() + range_.step, range_.highest);
}

std::int64_t SteppedSetting::lowered() const {
    if (number() <= range_.lowest)
        return number();
    return number() > range_.highest ? range_.highest
                                     : std::max<std::int64_t>(number() - range_.step, range_.lowest);
}

void SteppedSetting::set(std::int64_t number) {
    if (number == this->number())
        return;
    auto settings = model_.settings();
    settings.*number_ = number;
    model_.setSettings(std::move(settings));
}

} // namespace korvanti
