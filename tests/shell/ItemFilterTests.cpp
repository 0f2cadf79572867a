#include "shell/ItemFilter.h"

#include "shell/Pane.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace korvanti {
namespace {

TEST(ItemFilterTests, thePanesAreTheseInThisOrder) {
    const std::vector<std::pair<Pane, std::string>> expected = {
        {Pane::overview, "overview"}, {Pane::cleanup, "cleanup"}, {Pane::map, "map"},
        {Pane::apps, "apps"},         {Pane::ssd, "ssd"},         {Pane::history, "history"}};
    std::vector<std::pair<Pane, std::string>> panes;
    for (const auto pane : allCases<Pane>)
        panes.emplace_back(pane, rawValue(pane));
    EXPECT_EQ(panes, expected);
}

TEST(ItemFilterTests, theFiltersAreTheseInThisOrder) {
    const std::vector<std::pair<ItemFilter, std::string>> expected = {
        {ItemFilter::recommended, "Rekomendasi"},
        {ItemFilter::deletable, "Bisa dibersihkan"},
        {ItemFilter::review, "Periksa dulu"},
        {ItemFilter::all, "Semua"}};
    std::vector<std::pair<ItemFilter, std::string>> filters;
    for (const auto filter : allCases<ItemFilter>)
        filters.emplace_back(filter, title(filter));
    EXPECT_EQ(filters, expected);
}

/// Which filters show an item.
struct Row {
    Safety safety;
    bool isManual;
    bool isRecommended;
    std::vector<ItemFilter> shownBy;
};

TEST(ItemFilterTests, eachKindOfItemIsShownByItsFilters) {
    using enum ItemFilter;
    const Row rows[] = {
        {Safety::regenerable, false, true, {recommended, deletable, all}},
        {Safety::regenerable, false, false, {deletable, all}},
        {Safety::regenerable, true, true, {recommended, all}},
        {Safety::regenerable, true, false, {all}},
        {Safety::costly, false, true, {recommended, deletable, all}},
        {Safety::costly, false, false, {deletable, all}},
        {Safety::costly, true, true, {recommended, all}},
        {Safety::costly, true, false, {all}},
        {Safety::review, false, true, {recommended, deletable, review, all}},
        {Safety::review, false, false, {deletable, review, all}},
        {Safety::review, true, true, {recommended, review, all}},
        {Safety::review, true, false, {review, all}},
        {Safety::keep, false, true, {recommended, all}},
        {Safety::keep, false, false, {all}},
        {Safety::keep, true, true, {recommended, all}},
        {Safety::keep, true, false, {all}},
        {Safety::managed, false, true, {recommended, all}},
        {Safety::managed, false, false, {all}},
        {Safety::managed, true, true, {recommended, all}},
        {Safety::managed, true, false, {all}},
    };
    for (const auto& row : rows) {
        CleanupItem item;
        item.safety = row.safety;
        item.action = row.isManual ? CleanupAction::manual("do it") : CleanupAction::delete_();
        item.recommended = row.isRecommended;
        std::vector<ItemFilter> shownBy;
        for (const auto filter : allCases<ItemFilter>) {
            if (matches(filter, item))
                shownBy.push_back(filter);
        }
        EXPECT_EQ(shownBy, row.shownBy) << label(row.safety) << row.isManual << row.isRecommended;
    }
}

} // namespace
} // namespace korvanti
