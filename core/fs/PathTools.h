#pragma once

#include "base/Instant.h"

#include <compare>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Questions about paths, all answered by `lstat`: a link is never followed. Paths are bytes. Nothing here
/// fails; a negative or empty answer stands for every failure.
namespace korvanti::PathTools {

/// There is an entry, be it a dangling link.
[[nodiscard]] bool exists(const std::string& path);
[[nodiscard]] bool isSymlink(const std::string& path);
/// A real folder; a link to one is not.
[[nodiscard]] bool isDirectory(const std::string& path);
/// The modification time in whole seconds.
[[nodiscard]] std::optional<Instant> modificationDate(const std::string& path);
/// The direct entries of a folder as full paths, hidden ones included, in the system's order.
[[nodiscard]] std::vector<std::string> children(const std::string& folder);

/// Shell pattern without flags, as the Mac's `fnmatch` takes it, byte by byte: `*` and `?` also match a slash
/// and a leading dot.
[[nodiscard]] bool matches(std::string_view name, std::string_view pattern);

/// Compares the runs of digits, each as a number: "1.10" is above "1.9", "1.2" equals "1.2.0" and
/// "android-1.2".
[[nodiscard]] std::strong_ordering compareVersions(std::string_view a, std::string_view b);

/// `path` is `ancestor` or lies under it, by whole components of the text.
[[nodiscard]] bool isSameOrAncestor(std::string_view ancestor, std::string_view path);

/// The home folder at the start of a path as "~", for people.
[[nodiscard]] std::string abbreviatingHome(const std::string& path);
[[nodiscard]] std::string abbreviatingHome(const std::string& path, std::string_view home);

/// `folder` + "/" + `relative`, with one slash between.
[[nodiscard]] std::string joined(std::string_view folder, std::string_view relative);
/// The text behind the last slash; trailing slashes don't count. "/" gives "/".
[[nodiscard]] std::string_view lastComponent(std::string_view path);
/// The path without its last component: "/a/b" gives "/a", "/a" and "/" give "/", "a" gives "".
[[nodiscard]] std::string_view parent(std::string_view path);
/// The text behind the last dot of the last component; empty where the platform sees no extension (".bashrc",
/// "a.", "v1.2 copy").
[[nodiscard]] std::string_view pathExtension(std::string_view path);

} // namespace korvanti::PathTools
