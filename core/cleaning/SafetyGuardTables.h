#pragma once

#include <array>
#include <string_view>

/// What the guard refuses, plain data. The paths are relative to the home folder.
namespace korvanti::SafetyGuardTables {

/// Endings of file names in lower case: keys, certificates and photo libraries.
extern const std::array<std::string_view, 11> sensitiveSuffixes;

/// Folders that must stay, though what lies in them may go.
extern const std::array<std::string_view, 35> protectedRoots;

/// Never touched, neither themselves nor anything below them.
extern const std::array<std::string_view, 28> protectedTrees;

/// Likewise: what the program itself remembers, first of all what it did and what it moved where.
extern const std::array<std::string_view, 1> ownTrees;

} // namespace korvanti::SafetyGuardTables
