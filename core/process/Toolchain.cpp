#include "process/Toolchain.h"

#include "fs/PathTools.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace korvanti::Toolchain {

const std::optional<std::string>& developerDir() {
    static const auto found = findDeveloperDir("/Applications");
    return found;
}

std::optional<std::string> findDeveloperDir(const std::string& applications) {
    std::vector<std::string> names;
    for (const auto& path : PathTools::children(applications)) {
        const auto name = PathTools::lastComponent(path);
        if (name.starts_with("Xcode") && name.ends_with(".app"))
            names.emplace_back(name);
    }
    // "Xcode.app" comes before every other, betas and old versions included.
    std::ranges::sort(names, {},
                      [](const std::string& name) { return std::pair(name != "Xcode.app", name); });
    for (const auto& name : names) {
        auto folder = PathTools::joined(applications, name + "/Contents/Developer");
        if (PathTools::exists(folder))
            return folder;
    }
    return std::nullopt;
}

} // namespace korvanti::Toolchain
