#include "ui/ScreenText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace korvanti {

QString roundedText(double number) {
    std::array<char, 400> digits{}; // the largest number has 309
    const auto end =
        std::to_chars(digits.data(), digits.data() + digits.size(), number, std::chars_format::fixed, 0);
    return QString::fromLatin1(digits.data(), end.ptr - digits.data());
}

QString secondsText(double seconds) {
    constexpr double most = 1e15;
    return roundedText(std::trunc(std::clamp(seconds, -most, most)) + 0.0) + " dtk"; // no zero is below zero
}

} // namespace korvanti
