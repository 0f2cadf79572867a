#pragma once

#include "base/FileError.h"
#include "cleaning/AdmittedEntry.h"

#include <expected>

namespace korvanti::TreeRemover {

/// Removes a file, a link (never what it leads to) or a folder with all that is in it, for good.
///
/// Works on open folders only: never follows a link, never enters another volume, and lists each folder whole
/// before it removes in it. What another program has removed meanwhile is no failure, but for the entry
/// itself (ENOENT). What can't be removed, or was exchanged for something else, stays; the rest goes all the
/// same. Gives the first error. Blocks until all is done; any depth of folders takes the same stack and few
/// descriptors.
[[nodiscard]] std::expected<void, FileError> remove(const AdmittedEntry& admitted);

/// Removes a folder only if nothing is in it; otherwise it stays (ENOTEMPTY).
[[nodiscard]] std::expected<void, FileError> removeIfEmpty(const AdmittedEntry& admitted);

} // namespace korvanti::TreeRemover
