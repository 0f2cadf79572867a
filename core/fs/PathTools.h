#pragma once

#include "base/Instant.h"
#include "platform/Platform.h"

#include <compare>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

/// Questions about paths, all answered by `lstat`: but for `resolved` and `realPath`, a link is never
/// followed. Paths are bytes. A negative or empty answer stands for every failure, where no error is given.
namespace korvanti::PathTools {

/// There is an entry, be it a dangling link.
[[nodiscard]] bool exists(const std::string& path);
[[nodiscard]] bool isSymlink(const std::string& path);
/// A real folder; a link to one is not.
[[nodiscard]] bool isDirectory(const std::string& path);
/// The modification time in whole seconds.
[[nodiscard]] std::optional<Instant> modificationDate(const std::string& path);

/// One entry of a folder.
struct Entry {
    std::string name;
    Platform::EntryKind kind = Platform::EntryKind::other;
    bool operator==(const Entry&) const = default;
};
/// The direct entries of a folder, hidden ones included, in the system's order. None when it can't be read to
/// its end.
[[nodiscard]] std::vector<Entry> entries(const std::string& folder);
/// The same as full paths.
[[nodiscard]] std::vector<std::string> children(const std::string& folder);
/// Those of them that are real folders.
[[nodiscard]] std::vector<std::string> subfolders(const std::string& folder);
/// The entries of an open folder, read from where it stands; the system's error where it can't be read to its
/// end.
[[nodiscard]] std::expected<std::vector<Entry>, std::error_code> entries(int folder);

/// The path with its links followed, where all of it exists; otherwise the path as it is. To be compared only
/// with what this function gave, too.
[[nodiscard]] std::string resolved(const std::string& path);

/// The same, or the system's error where not all of it exists or can be gone through.
[[nodiscard]] std::expected<std::string, std::error_code> realPath(const std::string& path);

/// An absolute path in the platform's standard spelling: without ".", "..", repeated and trailing slashes,
/// and without "/private" in front where the rest alone leads somewhere in a folder that is a link to there.
/// Links are followed only where there is a "..", which means something else behind one. A path that is not
/// absolute stays as it is.
[[nodiscard]] std::string standardized(const std::string& path);

/// What a link says, followed no further; the system's error where there is no link.
[[nodiscard]] std::expected<std::string, std::error_code> linkTarget(const std::string& path);

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

/// The text names an entry of a folder and leads nowhere else.
[[nodiscard]] bool isEntryName(std::string_view text);
/// All components of the text are entry names, so that it leads below the folder that it starts from,
/// whatever that is (but for links on the way). To be asked of relative paths that others wrote.
[[nodiscard]] bool leadsDown(std::string_view text);

/// `folder` + "/" + `relative`, with one slash between.
[[nodiscard]] std::string joined(std::string_view folder, std::string_view relative);
/// The same path; "/" stays. The system follows a link in the last component when a slash stands behind it.
[[nodiscard]] std::string_view withoutTrailingSlashes(std::string_view path);
/// The text behind the last slash; trailing slashes don't count. "/" gives "/".
[[nodiscard]] std::string_view lastComponent(std::string_view path);
/// The path without its last component: "/a/b" gives "/a", "/a" and "/" give "/", "a" gives "".
[[nodiscard]] std::string_view parent(std::string_view path);
/// The text behind the last dot of the last component; empty where the platform sees no extension (".bashrc",
/// "a.", "v1.2 copy").
[[nodiscard]] std::string_view pathExtension(std::string_view path);
/// The last component without its extension and the dot before it.
[[nodiscard]] std::string_view stem(std::string_view path);

} // namespace korvanti::PathTools
