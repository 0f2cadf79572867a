#include "analysis/StorageMapper.h"

#include "fs/FileContents.h"
#include "fs/PathTools.h"
#include "fs/TreeWalk.h"
#include "platform/Platform.h"
#include "process/SideBySide.h"
#include "settings/AppPaths.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace korvanti::StorageMapper {
namespace {

/// What is smaller is left off the map, unless something in it could not be read.
constexpr std::int64_t smallest = 10'000'000;

using Nodes = std::vector<MapNode>;

void sortLargestFirst(Nodes& nodes) {
    std::ranges::sort(nodes, [](const MapNode& a, const MapNode& b) {
        return a.bytes != b.bytes ? a.bytes > b.bytes : a.name < b.name;
    });
}

/// The two levels below a root, put together from what a walk tells of them. Holds no more of the second
/// level than what is to be shown.
class Levels {
public:
    explicit Levels(const std::string& root) : root_(root) {}

    void add(const TreeWalk::Part& part) {
        if (part.folder.empty()) {
            // Whatever lies inside has been told before.
            auto inside = second_.extract(std::string(part.name));
            addTo(first_, part, root_, inside ? std::optional(std::move(inside.mapped())) : std::nullopt);
        } else {
            addTo(second_[std::string(part.folder)], part, PathTools::joined(root_, part.folder));
        }
    }

    /// The first level; absent when nothing was told.
    [[nodiscard]] std::optional<Nodes> take() {
        if (first_)
            sortLargestFirst(*first_);
        return std::move(first_);
    }

private:
    static void addTo(std::optional<Nodes>& level, const TreeWalk::Part& part, const std::string& folder,
                      std::optional<Nodes> children = {}) {
        if (!level)
            level.emplace();
        if (part.bytes < smallest && part.unreadable == 0)
            return;
        if (children)
            sortLargestFirst(*children);
        level->push_back({.name = std::string(part.name),
                          .path = PathTools::joined(folder, part.name),
                          .bytes = part.bytes,
                          .unreadable = part.unreadable,
                          .children = std::move(children)});
    }

    const std::string& root_;
    std::optional<Nodes> first_;
    std::unordered_map<std::string, std::optional<Nodes>> second_; ///< by the name of the folder on the first
};

MapNode mapTree(const std::string& root) {
    const auto path = PathTools::standardized(root);
    Levels levels(path);
    const auto size = PathTools::isDirectory(path)
                          ? TreeWalk::measureFolder(
                                path, {.toldPart = [&](const TreeWalk::Part& part) { levels.add(part); }})
                          : std::nullopt;
    if (!size)
        return {.name = std::string(PathTools::lastComponent(path)), .path = path, .unreadable = 1};
    return {.name = path == Platform::homeFolder() ? "Home (~)" : path,
            .path = path,
            .bytes = size->bytes,
            .unreadable = size->unreadable,
            .children = levels.take()};
}

} // namespace

std::vector<std::string> defaultRoots(const std::string& home) {
    std::vector<std::string> roots = {
        home,         "/Applications",       "/Library", "/System/Library/AssetsV2", "/opt/homebrew",
        "/usr/local", "/private/var/folders"};
    std::erase_if(roots, [](const std::string& root) { return !PathTools::isDirectory(root); });
    return roots;
}

StorageMap map(const std::vector<std::string>& roots, const Progress& progress) {
    const auto start = currentInstant();
    Nodes nodes(roots.size());
    runSideBySide(roots.size(), roots.size(), [&](std::size_t index) {
        const std::string path(PathTools::withoutTrailingSlashes(roots[index]));
        progress("Memetakan " + PathTools::abbreviatingHome(path) + "…");
        nodes[index] = mapTree(path);
    });
    std::ranges::stable_sort(nodes, std::ranges::greater(), &MapNode::bytes);
    return {
        .createdAt = start, .roots = std::move(nodes), .duration = secondsBetween(start, currentInstant())};
}

void save(const StorageMap& map) {
    static_cast<void>(FileContents::writeAtomically(AppPaths::storageMap(), compactJson(toJson(map))));
}

std::optional<StorageMap> load() {
    const auto text = FileContents::read(AppPaths::storageMap());
    if (!text)
        return std::nullopt;
    const auto json = parseJson(*text);
    if (!json)
        return std::nullopt;
    auto map = storageMapFromJson(*json);
    return map ? std::optional(*std::move(map)) : std::nullopt;
}

} // namespace korvanti::StorageMapper
