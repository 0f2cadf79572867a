#pragma once

#include <array>
#include <string_view>
#include <utility>

/// What applications are told by, plain data. Identifiers and categories count with their case; names are in
/// lower case.
namespace korvanti::AppRules {

/// Beginnings of bundle identifiers.
extern const std::array<std::string_view, 44> workPrefixes;
extern const std::array<std::string_view, 10> communicationPrefixes;

/// Parts of names.
extern const std::array<std::string_view, 17> leisureNames;

/// Parts of categories.
extern const std::array<std::string_view, 8> leisureCategories;

/// The folders of a library in which an application has one of its own, under its identifier.
extern const std::array<std::string_view, 7> identifierFolders;

/// The folders of a library in which an application may have one under its name.
extern const std::array<std::string_view, 3> nameFolders;

/// Names under which vendors or everybody keep things: never one application's own.
extern const std::array<std::string_view, 12> sharedNames;

/// Folders of a library, relative to it, that hold the user's own and no application's: backups of devices
/// first of all.
extern const std::array<std::string_view, 4> personalFolders;

/// What lies in which folder of a library, in words.
extern const std::array<std::pair<std::string_view, std::string_view>, 10> kindsOfLocations;

} // namespace korvanti::AppRules
