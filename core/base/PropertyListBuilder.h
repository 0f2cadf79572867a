#pragma once

#include "base/PropertyList.h"

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace korvanti {

/// Puts a property list together from what a reader meets, one thing after another, within
/// `PropertyListLimits`. False: that can't stand here, or a limit is reached; the list is then damaged.
class PropertyListBuilder {
public:
    bool openArray() { return open(PropertyList::Array()); }
    bool openDictionary() { return open(PropertyList::Dictionary()); }
    bool closeArray() { return close<PropertyList::Array>(); }
    bool closeDictionary() { return close<PropertyList::Dictionary>(); }

    /// Names the next value of the innermost dictionary. The last of equal keys wins.
    bool key(std::string name);
    bool add(PropertyList value);

    /// The outermost value is whole.
    [[nodiscard]] bool complete() const { return root_.has_value(); }
    /// That value, once; absent while it is not whole.
    [[nodiscard]] std::optional<PropertyList> take() { return std::exchange(root_, std::nullopt); }

private:
    using Contents = std::variant<PropertyList::Array, PropertyList::Dictionary>;
    struct Container {
        Contents contents;
        std::optional<std::string> key; ///< waits for its value
    };

    bool open(Contents contents);
    template <class Type> bool close();
    bool place(PropertyList value);

    std::vector<Container> open_; ///< from the outermost to the innermost
    std::optional<PropertyList> root_;
    std::size_t values_ = 0;
};

} // namespace korvanti
