#pragma once

#include "base/PropertyList.h"

#include <optional>
#include <string_view>

/// The binary form, "bplist00": numbered objects that refer to one another, found through a table of their
/// places. What a reference leads to is checked when it is followed, so that no bytes can lead outside.
namespace korvanti::BinaryPropertyList {

[[nodiscard]] bool isBinary(std::string_view bytes);

/// Absent when damaged or beyond `PropertyListLimits`. A shared object counts each time that it is met; a
/// cycle therefore ends at the limit of the depth.
[[nodiscard]] std::optional<PropertyList> parse(std::string_view bytes);

} // namespace korvanti::BinaryPropertyList
