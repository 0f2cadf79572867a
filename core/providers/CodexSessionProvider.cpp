#include "providers/CodexSessionProvider.h"

#include "base/Formatters.h"
#include "base/Text.h"
#include "fs/PathTools.h"
#include "providers/MeasuredItems.h"

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <utility>

namespace korvanti {
namespace {

constexpr std::int64_t smallestShown = 20'000'000;

struct Candidate {
    std::string location;
    int year;
    int month;
};

std::int64_t monthIndex(std::int64_t year, std::int64_t month) {
    return year * 12 + month;
}

/// The month of the user's wall calendar.
std::int64_t currentMonth(Instant now) {
    const std::time_t seconds = wholeSeconds(now);
    std::tm date{};
    if (!::localtime_r(&seconds, &date))
        return monthIndex(0, 0);
    return monthIndex(std::int64_t{1900} + date.tm_year, date.tm_mon + 1);
}

/// The number that an entry has for a name. What no calendar has counts as none.
std::optional<int> numberOf(const std::string& path) {
    const auto number = Text::integer(PathTools::lastComponent(path));
    return number && std::in_range<int>(*number) ? std::optional(static_cast<int>(*number)) : std::nullopt;
}

/// The months before the current one, which still grows.
std::vector<Candidate> pastMonths(const ScanContext& context) {
    const auto current = currentMonth(context.now);
    std::vector<Candidate> candidates;
    for (const auto& yearFolder : PathTools::children(context.url(".codex/sessions"))) {
        const auto year = numberOf(yearFolder);
        if (!year)
            continue;
        for (auto& location : PathTools::children(yearFolder)) {
            const auto month = numberOf(location);
            if (month && monthIndex(*year, *month) < current)
                candidates.push_back({std::move(location), *year, *month});
        }
    }
    return candidates;
}

CleanupItem item(const Candidate& candidate, std::int64_t bytes) {
    return CleanupItem::make(
        {.title = "Riwayat sesi Codex · " + Formatters::monthYear(candidate.year, candidate.month),
         .detail =
             "Transkrip percakapan Codex bulan itu. Sesi lama tidak bisa dilanjutkan lagi bila dihapus; "
             "pindahkan ke SSD bila ingin disimpan.",
         .path = candidate.location,
         .bytes = bytes,
         .category = ItemCategory::aiTools,
         .safety = Safety::review,
         .action = CleanupAction::trash(),
         .lastActivity = PathTools::modificationDate(candidate.location),
         .offloadable = true});
}

} // namespace

std::vector<CleanupItem> CodexSessionProvider::items(const ScanContext& context) const {
    return measuredItems(pastMonths(context), &Candidate::location, smallestShown, context, item);
}

} // namespace korvanti
