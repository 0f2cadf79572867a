#pragma once

#include "base/ByteText.h"
#include "base/Text.h"

#include <QString>
#include <cstdint>
#include <string>
#include <string_view>

namespace korvanti {

/// Bytes that may be anything, such as a name from the disk, as one line for the screen. For showing only:
/// nothing is found again by it.
[[nodiscard]] inline QString screenText(std::string_view bytes) {
    return QString::fromStdString(Text::printable(bytes));
}

/// A size for the screen.
[[nodiscard]] inline QString sizeText(std::int64_t bytes) {
    return QString::fromStdString(bytesText(bytes));
}

/// "%.0f" in no locale: what lies in the middle goes to the even side.
[[nodiscard]] QString roundedText(double number);

/// How long something took, without its fraction: "58 dtk". A saved file may hold any number.
[[nodiscard]] QString secondsText(double seconds);

} // namespace korvanti
