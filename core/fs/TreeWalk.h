#pragma once

#include "fs/SizeCalculator.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

/// The walk behind `SizeCalculator` and `SizeLedger`.
namespace korvanti::TreeWalk {

/// Folders by their place in the tree: what is known of them, and what is wanted.
struct KnownFolder {
    std::map<std::string, std::unique_ptr<KnownFolder>, std::less<>> children; ///< by name
    std::optional<SizeResult> size; ///< with `newest`; a walk that comes to it does not enter the folder
    bool wanted = false;            ///< a walk that goes through the folder tells its size

    /// The entry of a path below this one; null when there is none.
    [[nodiscard]] const KnownFolder* find(std::string_view path) const;
    /// The same, made where there is none.
    [[nodiscard]] KnownFolder& at(std::string_view path);
};

/// What lies in the first two levels of a tree, with all that is in it. The names are valid while it is told.
struct Part {
    std::string_view folder; ///< the name of the folder that holds it; empty where that is the root
    std::string_view name;
    std::int64_t bytes = 0;
    std::int64_t unreadable = 0;
};

struct Options {
    bool trackNewest = false;
    bool ignoreAppleDouble = false;
    bool takeStamp = false;
    /// The root of all paths; not changed while the walk lasts.
    const KnownFolder* known = nullptr;
    /// Told of each folder inside that is wanted or large, when it is done; one call at a time, from any
    /// thread.
    std::function<void(const std::string& path, SizeResult size)> told = {};
    /// Told of each folder of the first two levels in which something was counted, when it is done, and so
    /// before the folder that holds it; and of whatever else lies directly in the root. One call at a time,
    /// from any thread.
    std::function<void(const Part& part)> toldPart = {};
};

/// What `SizeCalculator::measure` gives.
[[nodiscard]] SizeResult measure(const std::string& path, const Options& options);

/// The same for what must be a folder and no link to one; absent when it can't be opened as such.
[[nodiscard]] std::optional<SizeResult> measureFolder(const std::string& path, const Options& options);

} // namespace korvanti::TreeWalk
