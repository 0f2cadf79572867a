#include "ui/SafetyDisplay.h"

#include "ui/ScreenText.h"

#include <cstddef>
#include <optional>
#include <utility>

namespace korvanti {
namespace {

std::optional<Safety> safetyAt(int place) {
    if (place < 0 || std::cmp_greater_equal(place, allCases<Safety>.size()))
        return std::nullopt;
    return allCases<Safety>.at(static_cast<std::size_t>(place));
}

} // namespace

std::string_view symbol(Safety safety) {
    switch (safety) {
    case Safety::regenerable:
        return "checkmark.seal.fill";
    case Safety::costly:
        return "arrow.down.circle.fill";
    case Safety::review:
        return "eye.fill";
    case Safety::keep:
        return "lock.fill";
    case Safety::managed:
        return "gearshape.fill";
    }
    std::unreachable();
}

QString SafetyDisplay::label(int safety) const {
    const auto known = safetyAt(safety);
    return known ? screenText(korvanti::label(*known)) : QString();
}

QString SafetyDisplay::symbol(int safety) const {
    const auto known = safetyAt(safety);
    return known ? screenText(korvanti::symbol(*known)) : QString();
}

} // namespace korvanti
