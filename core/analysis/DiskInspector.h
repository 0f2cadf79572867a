#pragma once

#include "scan/DiskSnapshot.h"

#include <string>

/// How full and how worn the start-up disk is. Nothing here fails: what is not told is zero, empty or absent.
namespace korvanti::DiskInspector {

/// One full look at the disk that holds `home`. Blocks; not for the main thread of a window.
[[nodiscard]] DiskSnapshot snapshot(const std::string& home);

/// There is no interface to ask; only a process with Full Disk Access can open the system's privacy database.
[[nodiscard]] bool hasFullDiskAccess();

} // namespace korvanti::DiskInspector
