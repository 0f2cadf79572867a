#pragma once

#include "ui/DateClock.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QVariant>
#include <cstddef>
#include <string_view>

namespace korvanti {

/// What a list model says of a row, under the name that QML knows. What has a date in it asks the clock.
template <class Row> struct ListRole {
    using Value = QVariant (*)(const Row& row);
    using DatedValue = QVariant (*)(const Row& row, const DateClock& clock);

    constexpr ListRole(std::string_view called, Value told) : name(called), value(told) {}
    constexpr ListRole(std::string_view called, DatedValue told) : name(called), datedValue(told) {}

    std::string_view name;
    Value value = nullptr;
    DatedValue datedValue = nullptr; ///< just one of the two
};

/// The roles of a list model as a table, numbered in its order.
namespace ListRoles {

inline constexpr int first = Qt::UserRole + 1;

[[nodiscard]] consteval int number(const auto& roles, std::string_view name) {
    int number = first;
    for (const auto& role : roles) {
        if (role.name == name)
            return number;
        ++number;
    }
    throw "no such role";
}

[[nodiscard]] QHash<int, QByteArray> names(const auto& roles) {
    QHash<int, QByteArray> names;
    for (int number = first; const auto& role : roles)
        names.insert(number++, QByteArray(role.name.data(), static_cast<qsizetype>(role.name.size())));
    return names;
}

/// The numbers of those that change with the clock.
[[nodiscard]] QList<int> dated(const auto& roles) {
    QList<int> numbers;
    for (int number = first; const auto& role : roles) {
        if (role.datedValue)
            numbers.append(number);
        ++number;
    }
    return numbers;
}

/// Nothing for a number that is no role, and without a row.
[[nodiscard]] QVariant value(const auto& roles, int number, const auto* row, const DateClock& clock) {
    if (row == nullptr || number < first || number - first >= static_cast<int>(roles.size()))
        return {};
    const auto& role = roles[static_cast<std::size_t>(number - first)];
    return role.value ? role.value(*row) : role.datedValue(*row, clock);
}

} // namespace ListRoles
} // namespace korvanti
