#include "scan/ProjectFiles.h"

#include "base/Regex.h"
#include "base/Text.h"

namespace korvanti::ProjectFiles {
namespace {

std::optional<std::string> firstMatch(const Regex& expression, std::string_view text) {
    const auto match = expression.first(text);
    return match ? match->groups[0] : std::nullopt;
}

} // namespace

std::optional<std::string> gradleDistribution(std::string_view text) {
    static const Regex expression(R"(gradle-[0-9][0-9A-Za-z.\-]*-(bin|all))");
    return firstMatch(expression, text);
}

std::optional<std::string> rustToolchain(std::string_view text) {
    static const Regex expression(R"([0-9]+\.[0-9]+(\.[0-9]+)?)");
    return firstMatch(expression, text);
}

std::optional<std::string> nodeVersion(std::string_view text) {
    const auto version = Text::trimmed(Text::trimmed(text), "v");
    return version.empty() ? std::nullopt : std::optional<std::string>(version);
}

std::set<std::int64_t> compileSdks(std::string_view text) {
    // White space, "=" or "(", white space, at least one character in all; said so that a long run of blanks
    // is gone through once.
    static const Regex expression(R"(compileSdk(?:Version)?(?:\s*[=(]\s*|\s+)\"?(\d{2}))");
    std::set<std::int64_t> levels;
    for (const auto& match : expression.all(text)) {
        if (const auto level = Text::integer(match.groups[1].value_or("")))
            levels.insert(*level);
    }
    return levels;
}

} // namespace korvanti::ProjectFiles
