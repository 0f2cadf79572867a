#pragma once

#include "base/FileDescriptor.h"
#include "base/FileError.h"

#include <expected>
#include <string>
#include <string_view>

namespace korvanti::FolderChain {

/// Makes the folder `relative` below the open folder `base` with its missing parents, and gives it open, not
/// for listing. A link on the way is an error (ELOOP), and so is a component that leads elsewhere ("..",
/// EINVAL). `basePath` is for the errors' path. An empty `relative` is the base itself.
[[nodiscard]] std::expected<FileDescriptor, FileError> create(int base, const std::string& basePath,
                                                              std::string_view relative);

} // namespace korvanti::FolderChain
