#pragma once

#include <set>
#include <string>
#include <vector>

namespace korvanti::InstalledApps {

/// The folders that applications are installed in. The one in the home folder is that of the process's own
/// user.
[[nodiscard]] const std::vector<std::string>& applicationRoots();

/// The bundle identifiers of everything installed: of each application, and of the plug-ins, login items,
/// helpers and frameworks inside it. Reads each property list anew.
[[nodiscard]] std::set<std::string> bundleIdentifiers();
/// The same for other roots.
[[nodiscard]] std::set<std::string> bundleIdentifiers(const std::vector<std::string>& roots);

} // namespace korvanti::InstalledApps
