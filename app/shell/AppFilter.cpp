#include "shell/AppFilter.h"

#include "base/Formatters.h"

#include <cstdint>
#include <limits>
#include <utility>

namespace korvanti {
namespace {

constexpr std::int64_t rareDays = 90;
constexpr auto never = std::numeric_limits<std::int64_t>::max();

} // namespace

std::string_view rawValue(AppFilter filter) {
    switch (filter) {
    case AppFilter::suggested:
        return "Saran";
    case AppFilter::rarelyUsed:
        return "Jarang dipakai";
    case AppFilter::largest:
        return "Terbesar";
    case AppFilter::all:
        return "Semua";
    }
    std::unreachable();
}

bool matches(AppFilter filter, const InstalledApp& app, Instant now) {
    switch (filter) {
    case AppFilter::suggested:
        return app.suggested;
    case AppFilter::rarelyUsed:
        return app.isRemovable() && Formatters::days(app.lastActivity(), now).value_or(never) > rareDays;
    case AppFilter::largest:
        return app.isRemovable();
    case AppFilter::all:
        return app.isRemovable() || app.bytes >= 1;
    }
    std::unreachable();
}

} // namespace korvanti
