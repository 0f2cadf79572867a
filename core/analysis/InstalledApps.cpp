#include "analysis/InstalledApps.h"

#include "base/PropertyList.h"
#include "fs/FileContents.h"
#include "fs/PathTools.h"
#include "platform/Platform.h"

#include <optional>

namespace korvanti::InstalledApps {
namespace {

/// The folders of a bundle whose entries are bundles of their own.
constexpr const char* innerFolders[] = {"Contents/PlugIns", "Contents/Library/LoginItems", "Contents/Helpers",
                                        "Contents/Frameworks"};

void insertIdentifier(const std::string& bundle, std::set<std::string>& identifiers) {
    const auto bytes = FileContents::read(PathTools::joined(bundle, "Contents/Info.plist"));
    const auto info = bytes ? PropertyList::parse(*bytes) : std::nullopt;
    if (auto identifier = info ? info->text("CFBundleIdentifier") : std::nullopt)
        identifiers.insert(*std::move(identifier));
}

} // namespace

const std::vector<std::string>& applicationRoots() {
    static const std::vector<std::string> roots = {"/Applications", "/Applications/Utilities",
                                                   PathTools::joined(Platform::homeFolder(), "Applications"),
                                                   "/System/Applications"};
    return roots;
}

std::set<std::string> bundleIdentifiers() {
    return bundleIdentifiers(applicationRoots());
}

std::set<std::string> bundleIdentifiers(const std::vector<std::string>& roots) {
    std::set<std::string> identifiers;
    for (const auto& root : roots) {
        for (const auto& application : PathTools::children(root)) {
            if (PathTools::pathExtension(application) != "app")
                continue;
            insertIdentifier(application, identifiers);
            for (const auto* folder : innerFolders) {
                for (const auto& bundle : PathTools::children(PathTools::joined(application, folder)))
                    insertIdentifier(bundle, identifiers);
            }
        }
    }
    return identifiers;
}

} // namespace korvanti::InstalledApps
