#pragma once

#include "base/Instant.h"

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace korvanti {

/// How much disk a path occupies. Sizes are bytes.
struct SizeResult {
    std::int64_t bytes = 0;               ///< allocated blocks, not the length
    std::int64_t logicalBytes = 0;        ///< sum of the file lengths
    std::int64_t files = 0;               ///< entries that are no folder; each name of a hard link counts
    std::vector<std::string> mountPoints; ///< folders not entered: another volume is mounted there
    std::int64_t unreadable = 0;          ///< above 0 the size is a lower bound
    std::optional<Instant> newest;        ///< latest content modification, whole seconds
    std::uint64_t stamp = 0; ///< of a measurement asked for it: another one when the tree has changed since
    bool operator==(const SizeResult&) const = default;
};

namespace SizeCalculator {

struct Options {
    bool trackNewest = false;       ///< fill `newest` while walking a folder; a single file always has it
    bool ignoreAppleDouble = false; ///< leave out "._*" files inside a folder
    bool takeStamp =
        false; ///< fill `stamp`, by the names, kinds, lengths and modification times of all entries
};

/// Measures one path without following links or entering another volume. A link itself is empty.
/// Blocks for the whole walk; safe from any thread. Never fails: what can't be read is in `unreadable`.
[[nodiscard]] SizeResult measure(const std::string& path, Options options = {});

struct BatchOptions {
    bool trackNewest = false;
    int concurrency =
        6; ///< measurements under way at once; a negative one is a fault of the caller and aborts
};

/// Measures many paths, a few at a time. Blocks until all are done; safe from any thread.
[[nodiscard]] std::unordered_map<std::string, SizeResult> measureAll(const std::vector<std::string>& paths,
                                                                     BatchOptions options = {});

} // namespace SizeCalculator
} // namespace korvanti
