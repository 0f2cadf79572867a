#include "drives/ManagedBlock.h"

#include "base/Text.h"
#include "fs/PathTools.h"

#include <array>
#include <cstddef>
#include <optional>

namespace korvanti::ManagedBlock {
namespace {

constexpr std::string_view firstMarker =
    "# >>> Korvanti: cache dev di SSD (dikelola otomatis, jangan diedit) >>>";
constexpr std::string_view lastMarker = "# <<< Korvanti <<<";

/// Those with a variable, in the order of their lines.
constexpr std::array cachesInBlock = {DevCache::gradleHome, DevCache::npmCache};

/// What stands in front of the path in a line of the block.
std::string assignment(DevCache cache) {
    return "export " + std::string(environmentVariable(cache)) + "=\"";
}

std::optional<std::string_view> assignedPath(std::string_view line, DevCache cache) {
    const auto start = assignment(cache);
    if (!line.starts_with(start))
        return std::nullopt;
    line.remove_prefix(start.size());
    if (!line.ends_with('"'))
        return std::nullopt;
    line.remove_suffix(1);
    return line;
}

std::string withoutBlock(std::string_view profile) {
    std::string rest(profile);
    const auto first = profile.find(firstMarker);
    const auto last = profile.find(lastMarker, first);
    if (first == std::string_view::npos || last == std::string_view::npos)
        return rest;
    // A first marker further up has lost its own last marker, and what follows it is the user's.
    const auto begin = profile.rfind(firstMarker, last);
    auto end = last + lastMarker.size();
    if (profile.substr(end).starts_with('\n'))
        ++end;
    return rest.erase(begin, end - begin);
}

} // namespace

bool canHold(std::string_view path) {
    return !path.contains('\n') && !path.contains('\0') && !path.contains(firstMarker) &&
           !path.contains(lastMarker);
}

Targets targets(std::string_view profile) {
    const auto first = profile.find(firstMarker);
    const auto last = profile.find(lastMarker);
    if (first == std::string_view::npos || last == std::string_view::npos || last < first)
        return {};
    const auto begin = first + firstMarker.size();
    Targets found;
    for (const auto line : Text::pieces(profile.substr(begin, last - begin), '\n')) {
        for (const auto cache : cachesInBlock) {
            const auto path = assignedPath(Text::trimmed(line, " \t"), cache);
            if (path && canHold(*path))
                found.insert_or_assign(cache, std::string(*path)); // the shell takes the last one, too
        }
    }
    return found;
}

std::string text(const Targets& targets) {
    std::string lines;
    for (const auto cache : cachesInBlock) {
        const auto target = targets.find(cache);
        if (target == targets.end())
            continue;
        const auto& path = target->second;
        lines.append("if [ -d \"").append(PathTools::parent(path)).append("\" ]; then\n");
        lines.append("  ").append(assignment(cache)).append(path).append("\"\n");
        lines.append("fi\n");
    }
    if (lines.empty())
        return {};
    return std::string(firstMarker).append("\n").append(lines).append(lastMarker);
}

std::string rewritten(std::string_view profile, const Targets& targets) {
    auto result = withoutBlock(profile);
    const auto block = text(targets);
    if (block.empty())
        return result;
    if (!result.empty() && !result.ends_with('\n'))
        result += '\n';
    return result.append(block).append("\n");
}

} // namespace korvanti::ManagedBlock
