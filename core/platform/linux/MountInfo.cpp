#include "platform/linux/MountInfo.h"

namespace korvanti::Platform {
namespace {

bool isOctal(char c) {
    return c >= '0' && c <= '7';
}

/// The kernel writes space, tab, line feed and backslash as three octal digits.
std::string decodedEscapes(std::string_view field) {
    std::string decoded;
    for (std::size_t i = 0; i < field.size(); ++i) {
        if (field[i] == '\\' && i + 3 < field.size() && field[i + 1] <= '3' && isOctal(field[i + 1]) &&
            isOctal(field[i + 2]) && isOctal(field[i + 3])) {
            decoded += static_cast<char>((field[i + 1] - '0') * 64 + (field[i + 2] - '0') * 8 +
                                         (field[i + 3] - '0'));
            i += 3;
        } else {
            decoded += field[i];
        }
    }
    return decoded;
}

/// Cuts the next piece up to `separator` off the front.
std::string_view takePiece(std::string_view& rest, char separator) {
    const auto end = rest.find(separator);
    const auto piece = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    return piece;
}

} // namespace

std::vector<std::string> mountPointsFromMountInfo(std::string_view text) {
    std::vector<std::string> points;
    while (!text.empty()) {
        auto line = takePiece(text, '\n');
        // id, parent, device and root come first.
        for (int field = 0; field < 4; ++field)
            takePiece(line, ' ');
        const auto point = takePiece(line, ' ');
        if (point.starts_with('/'))
            points.push_back(decodedEscapes(point));
    }
    return points;
}

} // namespace korvanti::Platform
