#pragma once

#include "UiSupport.h"

#include <QAbstractItemModel>
#include <QVariant>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace korvanti::testing {

/// The value of a role by its name.
inline QVariant roleOf(const QAbstractItemModel& list, int row, const char* role) {
    return list.data(list.index(row, 0), list.roleNames().key(role, -1));
}

/// The texts of one role, from top to bottom.
inline std::vector<std::string> column(const QAbstractItemModel& list, const char* role) {
    std::vector<std::string> texts;
    for (int row = 0; row < list.rowCount(); ++row)
        texts.push_back(roleOf(list, row, role).toString().toStdString());
    return texts;
}

/// A model over the real core in the box, which finds what a test has saved as the last report.
class CleanupFixture : public UiTests {
protected:
    /// An item of 1,000 bytes that nothing on the disk belongs to.
    [[nodiscard]] static CleanupItem item(const std::string& title, Safety safety = Safety::regenerable,
                                          CleanupAction action = CleanupAction::delete_()) {
        CleanupItem item;
        item.title = title;
        item.path = "/Users/tester/things/" + title;
        item.bytes = 1'000;
        item.category = ItemCategory::xcode;
        item.safety = safety;
        item.action = std::move(action);
        item.recommended = safety == Safety::regenerable && item.action.isAutomatic();
        return item;
    }
    [[nodiscard]] static CleanupItem itemOf(ItemCategory category, const std::string& title,
                                            std::int64_t bytes = 1'000) {
        auto made = item(title);
        made.category = category;
        made.bytes = bytes;
        return made;
    }
    [[nodiscard]] static CleanupItem manualItem(const std::string& title) {
        return item(title, Safety::managed, CleanupAction::manual("Buka " + title + " dan hapus di sana."));
    }
    /// Shows everything.
    void saveReport(std::vector<CleanupItem> items) {
        UiTests::saveReport(std::move(items));
        model().setFilter(ItemFilter::all);
    }
};

} // namespace korvanti::testing
