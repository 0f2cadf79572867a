#include "providers/EditorExtensionProvider.h"

#include "base/Regex.h"
#include "fs/FileContents.h"
#include "fs/PathTools.h"
#include "providers/MeasuredItems.h"
#include "providers/NewestVersions.h"
#include "providers/ObsoleteExtensions.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <string_view>
#include <utility>

namespace korvanti {
namespace {

constexpr std::array<std::string_view, 7> extensionFolders = {
    ".vscode/extensions",   ".vscode-insiders/extensions", ".cursor/extensions",
    ".windsurf/extensions", ".antigravity-ide/extensions", ".antigravity/extensions",
    ".kiro/extensions"};
constexpr std::int64_t smallestShown = 5'000'000;
constexpr std::int64_t longestObsoleteFile = std::int64_t{4} * 1024 * 1024;

struct Candidate {
    std::string location;
    std::string label;
    std::string detail;
};

/// One installed version of an extension.
struct Extension {
    std::string location;
    std::string id;
    std::string version;
};

std::vector<Extension> extensionsIn(const std::string& root) {
    std::vector<Extension> extensions;
    for (auto& location : PathTools::subfolders(root)) {
        if (auto named = EditorExtensionProvider::named(PathTools::lastComponent(location)))
            extensions.push_back({std::move(location), std::move(named->id), std::move(named->version)});
    }
    return extensions;
}

std::vector<Candidate> candidatesIn(const std::string& root, const std::string& editor) {
    const auto extensions = extensionsIn(root);
    const auto newest = newestVersions(extensions, &Extension::id, &Extension::version);
    std::vector<Candidate> candidates;
    for (const Extension& extension : extensions) {
        const Extension* const active = newest.at(extension.id);
        if (&extension != active)
            candidates.push_back({extension.location, extension.id + " " + extension.version,
                                  "Versi lama; yang aktif " + active->version + ". Editor: " + editor});
    }
    const auto marks = FileContents::read(PathTools::joined(root, ".obsolete"), longestObsoleteFile);
    for (const auto& name : ObsoleteExtensions::names(marks.value_or(""))) {
        auto location = PathTools::joined(root, name);
        const bool isNew = std::ranges::find(candidates, location, &Candidate::location) == candidates.end();
        if (isNew && PathTools::isDirectory(location))
            candidates.push_back({std::move(location), name, "Ditandai usang oleh editor."});
    }
    return candidates;
}

CleanupItem item(const Candidate& candidate, std::int64_t bytes) {
    return CleanupItem::make({.title = "Ekstensi lama: " + candidate.label,
                              .detail = candidate.detail,
                              .path = candidate.location,
                              .bytes = bytes,
                              .category = ItemCategory::aiTools,
                              .safety = Safety::regenerable,
                              .action = CleanupAction::delete_(),
                              .recommended = true,
                              .lastActivity = PathTools::modificationDate(candidate.location)});
}

} // namespace

std::vector<CleanupItem> EditorExtensionProvider::items(const ScanContext& context) const {
    std::vector<Candidate> candidates;
    for (const auto folder : extensionFolders) {
        const std::string editor(folder.substr(0, folder.find('/')));
        std::ranges::move(candidatesIn(context.url(folder), editor), std::back_inserter(candidates));
    }
    return measuredItems(candidates, &Candidate::location, smallestShown, context, item);
}

std::optional<EditorExtensionProvider::Named> EditorExtensionProvider::named(std::string_view folder) {
    static const Regex pattern(R"(^(.+?)-(\d+\.\d+\.\d+)(?:-(.+))?$)");
    const auto match = pattern.first(folder);
    return match ? std::optional(Named{match->groups[1].value_or(""), match->groups[2].value_or("")})
                 : std::nullopt;
}

} // namespace korvanti
