#pragma once

#include "base/PropertyList.h"

#include <optional>
#include <string_view>

/// The XML form, as the platform writes it: a small part of XML, without entities of its own, namespaces or
/// encodings other than UTF-8. What comes behind the list is not looked at.
namespace korvanti::XmlPropertyList {

/// Absent when damaged or beyond `PropertyListLimits`.
[[nodiscard]] std::optional<PropertyList> parse(std::string_view bytes);

} // namespace korvanti::XmlPropertyList
