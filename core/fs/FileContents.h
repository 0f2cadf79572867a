#pragma once

#include "base/PropertyList.h"

#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

/// Whole files in and out.
namespace korvanti::FileContents {

/// Largest file that `read` takes unless told otherwise: no file that the program reads comes near it.
inline constexpr std::int64_t defaultLimit = 64 * 1024 * 1024;

/// The bytes of a regular file, links followed. Absent when it can't be read, is no regular file or is larger
/// than `limit` bytes. Never waits on a pipe or a device.
[[nodiscard]] std::optional<std::string> read(const std::string& path, std::int64_t limit = defaultLimit);
/// The same, or why there is nothing: the system's error, which is ENOENT for a missing file (and a dangling
/// link) alone, EISDIR for a folder, EINVAL for a pipe or a device, EFBIG for a file over the limit.
[[nodiscard]] std::expected<std::string, std::error_code> readOrError(const std::string& path,
                                                                      std::int64_t limit = defaultLimit);

/// The property list in a file; absent when `read` gives none or it is damaged.
[[nodiscard]] std::optional<PropertyList> readPropertyList(const std::string& path);
/// The same by a path that starts from an open folder.
[[nodiscard]] std::optional<PropertyList> readPropertyList(int folder, const std::string& relative);

/// The first bytes of a regular file, at most `limit` of them; otherwise as `read`. For files that other
/// programs own and that may be of any size.
[[nodiscard]] std::optional<std::string> readStart(const std::string& path, std::int64_t limit);

/// Replaces a file as a whole: written to a temporary file beside it, flushed, moved over it. On failure the
/// old file stands and nothing is left behind. The folder is flushed as well, where it can be.
[[nodiscard]] std::expected<void, std::error_code> writeAtomically(const std::string& path,
                                                                   std::string_view bytes);

/// Creates a folder with its missing parents.
[[nodiscard]] std::expected<void, std::error_code> createFolders(const std::string& path);

} // namespace korvanti::FileContents
