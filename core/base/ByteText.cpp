#include "base/ByteText.h"

#include <array>
#include <cmath>
#include <string_view>

namespace korvanti {
namespace {

struct Unit {
    std::string_view name;
    int digits; ///< behind the separator, at most
};
constexpr std::array<Unit, 7> units{
    {{"", 0}, {"KB", 0}, {"MB", 1}, {"GB", 2}, {"TB", 2}, {"PB", 2}, {"EB", 2}}};

constexpr int scaleOf(const Unit& unit) {
    return unit.digits == 2 ? 100 : unit.digits == 1 ? 10 : 1;
}

std::string byteCount(std::int64_t bytes, double base, Language language) {
    const bool indonesian = language == Language::indonesian;
    const double magnitude = std::fabs(static_cast<double>(bytes));
    std::size_t index = 0;
    double divisor = 1;
    while (index + 1 < units.size() && magnitude >= divisor * base) {
        divisor *= base;
        ++index;
    }
    // Half away from zero, counted in the last digit that is shown: 12.3 MB is 123.
    auto rounded = [&] {
        return std::llround(std::floor(magnitude / divisor * scaleOf(units[index]) + 0.5));
    };
    long long shown = rounded();
    if (index + 1 < units.size() && static_cast<double>(shown) >= base * scaleOf(units[index])) {
        divisor *= base;
        ++index;
        shown = rounded(); // 999,999 is 1 MB, never 1,000 KB
    }

    const Unit& unit = units[index];
    std::string number = std::to_string(shown / scaleOf(unit));
    if (number.size() > 3)
        number.insert(number.size() - 3, 1, indonesian ? '.' : ',');
    if (const long long fraction = shown % scaleOf(unit); fraction != 0) {
        std::string digits = std::to_string(fraction);
        digits.insert(0, static_cast<std::size_t>(unit.digits) - digits.size(), '0');
        digits.erase(digits.find_last_not_of('0') + 1);
        number += (indonesian ? "," : ".") + digits;
    }
    const std::string_view name = index > 0 ? unit.name : indonesian || magnitude == 1 ? "byte" : "bytes";
    return (bytes < 0 ? "-" : "") + number + " " + std::string(name);
}

} // namespace

std::string bytesText(std::int64_t bytes, Language language) {
    return byteCount(bytes, 1000, language);
}

std::string memoryText(std::int64_t bytes, Language language) {
    return byteCount(bytes, 1024, language);
}

} // namespace korvanti
