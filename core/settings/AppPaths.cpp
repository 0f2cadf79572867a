#include "settings/AppPaths.h"

#include "fs/FileContents.h"
#include "fs/PathTools.h"
#include "platform/Platform.h"

namespace korvanti::AppPaths {

std::string support() {
    auto folder = PathTools::joined(Platform::homeFolder(), "Library/Application Support/Korvanti");
    static_cast<void>(FileContents::createFolders(folder));
    return folder;
}

std::string settings() {
    return PathTools::joined(support(), "settings.json");
}
std::string lastReport() {
    return PathTools::joined(support(), "last-report.json");
}
std::string storageMap() {
    return PathTools::joined(support(), "storage-map.json");
}
std::string activity() {
    return PathTools::joined(support(), "activity.jsonl");
}
std::string offloads() {
    return PathTools::joined(support(), "offloads.json");
}

} // namespace korvanti::AppPaths
