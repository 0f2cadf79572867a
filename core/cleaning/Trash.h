#pragma once

#include "base/FileError.h"
#include "cleaning/AdmittedEntry.h"

#include <expected>
#include <string>

namespace korvanti::Trash {

/// Moves a file, a link or a folder as a whole to the Trash of the user whose home folder is given, under a
/// name that is free there ("name 2"). On failure it stands where it stood.
[[nodiscard]] std::expected<void, FileError> move(const AdmittedEntry& admitted, const std::string& home);

} // namespace korvanti::Trash
