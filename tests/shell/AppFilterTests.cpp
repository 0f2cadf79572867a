#include "shell/AppFilter.h"

#include "base/Instant.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace korvanti {
namespace {

constexpr std::int64_t day = 86'400;
const Instant now = instantFromSeconds(1'700'000'000);

Instant daysAgo(std::int64_t days) {
    return instantFromSeconds(1'700'000'000 - days * day);
}

std::vector<AppFilter> shownBy(const InstalledApp& app) {
    std::vector<AppFilter> filters;
    for (const auto filter : allCases<AppFilter>) {
        if (matches(filter, app, now))
            filters.push_back(filter);
    }
    return filters;
}

TEST(AppFilterTests, theFiltersAreTheseInThisOrder) {
    const std::vector<std::pair<AppFilter, std::string>> expected = {
        {AppFilter::suggested, "Saran"},
        {AppFilter::rarelyUsed, "Jarang dipakai"},
        {AppFilter::largest, "Terbesar"},
        {AppFilter::all, "Semua"}};
    std::vector<std::pair<AppFilter, std::string>> filters;
    for (const auto filter : allCases<AppFilter>)
        filters.emplace_back(filter, rawValue(filter));
    EXPECT_EQ(filters, expected);
}

/// Which filters show an application.
struct AppRow {
    AppRole role;
    bool isSuggested;
    std::optional<std::int64_t> daysUnused;
    std::int64_t bytes;
    std::vector<AppFilter> shownBy;
};

TEST(AppFilterTests, eachKindOfApplicationIsShownByItsFilters) {
    using enum AppFilter;
    const AppRow rows[] = {
        {AppRole::work, false, 3, 5, {largest, all}},
        {AppRole::work, true, 3, 5, {suggested, largest, all}},
        {AppRole::communication, false, 200, 5, {rarelyUsed, largest, all}},
        {AppRole::nonWork, true, 200, 5, {suggested, rarelyUsed, largest, all}},
        {AppRole::nonWork, true, std::nullopt, 0, {suggested, rarelyUsed, largest, all}},
        {AppRole::other, false, std::nullopt, 5, {rarelyUsed, largest, all}},
        {AppRole::other, false, 0, 0, {largest, all}},
        {AppRole::system, false, 3, 5, {all}},
        {AppRole::system, false, 200, 5, {all}},
        {AppRole::system, false, std::nullopt, 5, {all}},
        {AppRole::system, true, std::nullopt, 5, {suggested, all}},
    };
    for (const auto& row : rows) {
        InstalledApp app;
        app.role = row.role;
        app.suggested = row.isSuggested;
        app.bytes = row.bytes;
        if (row.daysUnused)
            app.lastUsed = daysAgo(*row.daysUnused);
        EXPECT_EQ(shownBy(app), row.shownBy) << label(row.role) << row.isSuggested;
    }
}

TEST(AppFilterTests, ninetyDaysAreNotYetRare) {
    InstalledApp app;
    const auto isRare = [&](Instant lastUsed) {
        app.lastUsed = lastUsed;
        return matches(AppFilter::rarelyUsed, app, now);
    };
    EXPECT_FALSE(isRare(daysAgo(90)));
    EXPECT_FALSE(isRare(instantFromSeconds(1'700'000'000 - 91 * day + 1)));
    EXPECT_TRUE(isRare(daysAgo(91)));
    EXPECT_FALSE(isRare(daysAgo(-10))) << "a clock that was wrong";
}

TEST(AppFilterTests, anApplicationThatWasNeverUsedIsRarelyUsed) {
    EXPECT_TRUE(matches(AppFilter::rarelyUsed, InstalledApp(), now));
}

TEST(AppFilterTests, aChangeOfItsDataCountsAsUse) {
    InstalledApp app;
    app.lastUsed = daysAgo(300);
    app.dataActivity = daysAgo(3);
    EXPECT_FALSE(matches(AppFilter::rarelyUsed, app, now));
}

TEST(AppFilterTests, aSystemApplicationIsShownOnlyWithASizeOfItsOwn) {
    InstalledApp app;
    app.role = AppRole::system;
    EXPECT_FALSE(matches(AppFilter::all, app, now));
    app.data = {{.path = "/x", .kind = "Cache", .bytes = 5}};
    EXPECT_FALSE(matches(AppFilter::all, app, now)) << "its data do not count";
    app.bytes = 1;
    EXPECT_TRUE(matches(AppFilter::all, app, now));
    EXPECT_FALSE(matches(AppFilter::largest, app, now));
}

} // namespace
} // namespace korvanti
