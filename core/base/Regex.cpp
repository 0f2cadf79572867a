#include "base/Regex.h"

#include <cstdint>
#include <cstdlib>
#include <unicode/uregex.h>
#include <unicode/utext.h>

namespace korvanti {
namespace {

/// In the engine's own unit, which is a millisecond or so.
constexpr std::int32_t stepLimit = 1000;

struct CloseText {
    void operator()(UText* text) const { utext_close(text); }
};
using TextPointer = std::unique_ptr<UText, CloseText>;

TextPointer opened(std::string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    TextPointer opened(utext_openUTF8(nullptr, text.data(), static_cast<std::int64_t>(text.size()), &status));
    if (U_FAILURE(status))
        std::abort(); // only without memory
    return opened;
}

} // namespace

Regex::Regex(std::string_view pattern) {
    const auto text = opened(pattern);
    UErrorCode status = U_ZERO_ERROR;
    expression_.reset(uregex_openUText(text.get(), 0, nullptr, &status));
    if (U_FAILURE(status))
        std::abort();
}

Regex::~Regex() = default;

void Regex::Close::operator()(URegularExpression* expression) const {
    uregex_close(expression);
}

/// Calls `found(match)` for each match until it says false.
template <class Found> void Regex::find(std::string_view text, Found found) const {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<URegularExpression, Close> search(uregex_clone(expression_.get(), &status));
    uregex_setTimeLimit(search.get(), stepLimit, &status); // a copy does not inherit it
    const auto searched = opened(text);
    uregex_setUText(search.get(), searched.get(), &status);
    const auto groups = uregex_groupCount(search.get(), &status);
    while (U_SUCCESS(status) && uregex_findNext(search.get(), &status) != 0 && U_SUCCESS(status)) {
        Match match;
        for (std::int32_t group = 0; group <= groups; ++group) {
            const auto start = uregex_start64(search.get(), group, &status);
            const auto end = uregex_end64(search.get(), group, &status);
            if (group == 0)
                match.position = static_cast<std::size_t>(start);
            match.groups.push_back(
                start < 0 ? std::nullopt
                          : std::optional(std::string(text.substr(static_cast<std::size_t>(start),
                                                                  static_cast<std::size_t>(end - start)))));
        }
        if (!found(std::move(match)))
            return;
    }
}

std::optional<Regex::Match> Regex::first(std::string_view text) const {
    std::optional<Match> first;
    find(text, [&](Match match) {
        first = std::move(match);
        return false;
    });
    return first;
}

std::vector<Regex::Match> Regex::all(std::string_view text) const {
    std::vector<Match> all;
    find(text, [&](Match match) {
        all.push_back(std::move(match));
        return true;
    });
    return all;
}

} // namespace korvanti
