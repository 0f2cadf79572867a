#pragma once

#include "base/ByteText.h"
#include "base/Text.h"

#include <QChar>
#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace korvanti {

/// Bytes that may be anything, such as a name from the disk, as one line for the screen. For showing only:
/// nothing is found again by it.
[[nodiscard]] inline QString screenText(std::string_view bytes) {
    return QString::fromStdString(Text::printable(bytes));
}

/// The same where several lines are meant, such as what a tool said: each line as `screenText` makes it.
[[nodiscard]] inline QString screenLines(std::string_view bytes) {
    QStringList lines;
    for (std::size_t start = 0, end = 0; start <= bytes.size(); start = end + 1) {
        end = std::min(bytes.find('\n', start), bytes.size());
        lines.append(screenText(Text::trimmed(bytes.substr(start, end - start), "\r")));
    }
    return lines.join('\n').trimmed();
}

/// The same for a sentence that may be broken into lines: the sizes in it ("350 MB") stay whole.
[[nodiscard]] inline QString screenSentence(std::string_view bytes) {
    static const QRegularExpression size("(?<=[0-9]) (?=(?:byte|[KMGTPE]B)\\b)");
    return screenText(bytes).replace(size, QString(QChar::Nbsp));
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
