#pragma once

#include "base/Instant.h"

#include <concepts>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace korvanti {

/// A value of a property list, as the platform's tools and applications write them.
class PropertyList {
    template <class Value, class... Types> static constexpr bool OneOf = (std::same_as<Value, Types> || ...);

public:
    using Array = std::vector<PropertyList>;
    using Dictionary = std::map<std::string, PropertyList>;
    struct Data {
        std::string bytes;
        bool operator==(const Data&) const = default;
    };

    /// The empty value: a null or a reference of an archive.
    PropertyList() = default;
    /// Takes exactly the types below, so that no `int` or `const char*` turns into something else on its way.
    template <class Value>
        requires OneOf<Value, bool, std::int64_t, double, std::string, Instant, Data, Array, Dictionary>
    explicit PropertyList(Value value) : value_(std::move(value)) {}
    PropertyList(const PropertyList&) = default;
    PropertyList(PropertyList&&) = default;
    PropertyList& operator=(const PropertyList&) = default;
    PropertyList& operator=(PropertyList&&) = default;
    ~PropertyList();

    /// Reads an XML or binary property list. Damaged, cyclic, nested deeper than 512, larger than 64 MiB or
    /// unfolding to more than a million values or 64 MiB of text: absent. Text that is not Unicode is
    /// repaired. Safe on any bytes and from any thread, whatever the program's locale.
    [[nodiscard]] static std::optional<PropertyList> parse(std::string_view bytes);

    /// The value as one type; absent when it is of another. Integers beyond the signed 64-bit range are
    /// absent. Dates are moved to the nearest that an `Instant` holds.
    [[nodiscard]] std::optional<bool> boolean() const;
    [[nodiscard]] std::optional<std::int64_t> integer() const;
    [[nodiscard]] std::optional<double> real() const;
    [[nodiscard]] std::optional<std::string> text() const;
    [[nodiscard]] std::optional<Instant> date() const;
    [[nodiscard]] const Data* data() const;
    [[nodiscard]] const Array* array() const;
    [[nodiscard]] const Dictionary* dictionary() const;

    /// The value under a key of a dictionary; null when there is none or this is no dictionary.
    [[nodiscard]] const PropertyList* find(const std::string& key) const;
    /// The string under a key of a dictionary.
    [[nodiscard]] std::optional<std::string> text(const std::string& key) const;

    bool operator==(const PropertyList&) const = default;

private:
    std::variant<std::monostate, bool, std::int64_t, double, std::string, Instant, Data, Array, Dictionary>
        value_;
};

} // namespace korvanti
