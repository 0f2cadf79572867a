#include "Require.h"
#include "base/Text.h"
#include "scan/ProjectFiles.h"
#include "scan/ProjectIndex.h"

#include <algorithm>
#include <optional>
#include <string>

using namespace korvanti;

namespace {

constexpr std::string_view digits = "0123456789";
constexpr std::string_view blanks = " \t\n\v\f\r";
constexpr std::size_t npos = std::string_view::npos;

std::size_t countOf(std::string_view characters, std::string_view text) {
    return std::min(text.find_first_not_of(characters), text.size());
}

std::optional<std::string> expectedDistribution(std::string_view text) {
    constexpr std::string_view word = "gradle-";
    constexpr auto part = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz.-";
    for (auto at = text.find(word); at != npos; at = text.find(word, at + 1)) {
        const auto rest = text.substr(at + word.size());
        const auto run = rest.substr(0, countOf(part, rest));
        if (countOf(digits, run) == 0)
            continue;
        const auto bin = run.rfind("-bin");
        const auto all = run.rfind("-all");
        const auto last = bin == npos ? all : all == npos ? bin : std::max(bin, all);
        if (last != npos)
            return std::string(text.substr(at, word.size() + last + 4));
    }
    return std::nullopt;
}

std::optional<std::string> expectedRustToolchain(std::string_view text) {
    for (auto at = text.find_first_of(digits); at != npos; at = text.find_first_of(digits, at)) {
        auto end = at;
        int numbers = 0;
        while (numbers < 3) {
            const auto separator = numbers == 0 ? 0U : 1U;
            const auto rest = text.substr(end);
            const auto length = rest.size() < separator ? 0 : countOf(digits, rest.substr(separator));
            if (length == 0 || (separator == 1 && rest.front() != '.'))
                break;
            end += separator + length;
            ++numbers;
        }
        if (numbers >= 2)
            return std::string(text.substr(at, end - at));
        at = end;
    }
    return std::nullopt;
}

std::set<std::int64_t> expectedCompileSdks(std::string_view text) {
    constexpr std::string_view word = "compileSdk";
    constexpr std::string_view longer = "Version";
    std::set<std::int64_t> levels;
    for (auto at = text.find(word); at != npos; at = text.find(word, at + 1)) {
        auto rest = text.substr(at + word.size());
        if (rest.starts_with(longer))
            rest.remove_prefix(longer.size());
        const auto behindWord = rest.size();
        rest.remove_prefix(countOf(blanks, rest));
        if (rest.starts_with('=') || rest.starts_with('(')) {
            rest.remove_prefix(1);
            rest.remove_prefix(countOf(blanks, rest));
        }
        if (rest.size() == behindWord)
            continue;
        if (rest.starts_with('"'))
            rest.remove_prefix(1);
        if (countOf(digits, rest) >= 2)
            levels.insert((rest[0] - '0') * 10 + (rest[1] - '0'));
    }
    return levels;
}

/// In a longer text the engine may have given up.
template <class Expected>
void requireFirst(const std::optional<std::string>& found, std::string_view text, Expected expected) {
    constexpr std::size_t surelySearched = 4096;
    require(text.size() > surelySearched ? !found || text.contains(*found) : found == expected(text));
}

void checkCompileSdks(std::string_view text) {
    const auto found = ProjectFiles::compileSdks(text);
    const auto expected = expectedCompileSdks(text);
    require(std::ranges::includes(found, expected));
    // Beyond ASCII there are more blanks.
    const bool isAscii = std::ranges::all_of(text, [](char c) { return static_cast<signed char>(c) >= 0; });
    require(!isAscii || found == expected);
}

void checkNodeVersion(std::string_view text) {
    const auto version = ProjectFiles::nodeVersion(text);
    require(version.has_value() == !Text::trimmed(Text::trimmed(text), "v").empty());
    require(!version || (text.contains(*version) && !version->starts_with('v') && !version->ends_with('v')));
}

} // namespace

/// The patterns agree with searches by hand.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto text = textOf(data, size);

    const auto distribution = ProjectFiles::gradleDistribution(text);
    requireFirst(distribution, text, expectedDistribution);
    if (distribution) {
        ProjectIndex index;
        index.gradleDistributions = {*distribution};
        const auto versions = index.gradleVersions();
        require(versions.size() == 1 && digits.contains(versions.begin()->front()));
    }

    requireFirst(ProjectFiles::rustToolchain(text), text, expectedRustToolchain);
    checkNodeVersion(text);
    checkCompileSdks(text);
    return 0;
}
