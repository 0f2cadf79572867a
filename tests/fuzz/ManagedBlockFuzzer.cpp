#include "Require.h"
#include "drives/ManagedBlock.h"

#include <string>
#include <vector>

using namespace korvanti;
using ManagedBlock::Targets;

namespace {

const std::string firstMarker = "# >>> Korvanti: cache dev di SSD (dikelola otomatis, jangan diedit) >>>";
const std::string lastMarker = "# <<< Korvanti <<<";

/// The profile in pieces: the markers, and what stands between them.
std::vector<std::string> piecesOf(std::string_view profile) {
    std::vector<std::string> pieces = {""};
    while (!profile.empty()) {
        for (const auto& marker : {firstMarker, lastMarker}) {
            if (profile.starts_with(marker)) {
                pieces.push_back(marker);
                pieces.emplace_back();
                profile.remove_prefix(marker.size());
            }
        }
        if (!profile.empty() && !profile.starts_with(firstMarker) && !profile.starts_with(lastMarker)) {
            pieces.back() += profile.front();
            profile.remove_prefix(1);
        }
    }
    return pieces;
}

/// The profile without its block; `isWhole` tells whether there was one.
std::string rest(std::string_view profile, bool& isWhole) {
    auto pieces = piecesOf(profile);
    std::size_t first = 0;
    isWhole = false;
    for (std::size_t index = 0; index < pieces.size() && !isWhole; ++index) {
        if (pieces[index] == firstMarker)
            first = index;
        if (pieces[index] == lastMarker && first != 0) {
            isWhole = true;
            for (auto gone = first; gone <= index; ++gone)
                pieces[gone].clear();
            if (pieces[index + 1].starts_with('\n'))
                pieces[index + 1].erase(0, 1);
        }
    }
    std::string text;
    for (const auto& piece : pieces)
        text += piece;
    return text;
}

bool holdsBlock(std::string_view profile) {
    bool isWhole = false;
    static_cast<void>(rest(profile, isWhole));
    return isWhole;
}

void check(std::string_view profile, const Targets& targets) {
    bool hadBlock = false;
    const auto kept = rest(profile, hadBlock);
    const auto block = ManagedBlock::text(targets);
    require(block.empty() == targets.empty() && block.starts_with('#') == !targets.empty());
    require(ManagedBlock::targets(block) == targets);

    const auto rewritten = ManagedBlock::rewritten(profile, targets);
    const bool wantsLineFeed = !block.empty() && !kept.empty() && kept.back() != '\n';
    const auto user = kept + (wantsLineFeed ? "\n" : "");
    require(rewritten == user + (block.empty() ? "" : block + "\n"));
    if (!holdsBlock(kept)) { // otherwise that one is next
        require(ManagedBlock::rewritten(rewritten, targets) == rewritten);
        require(ManagedBlock::rewritten(rewritten, {}) == user);
    }
}

} // namespace

/// Any bytes as a profile: the block goes as a whole or stays as a half, a new one is read as it was written,
/// and the user's bytes stay. The input is the profile; its start serves as a path, too.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto profile = textOf(data, size);
    const auto path = std::string(profile.substr(0, 40));
    const auto found = ManagedBlock::targets(profile);
    for (const auto& [cache, target] : found)
        require(cache != DevCache::xcodeDerivedData && ManagedBlock::canHold(target));
    check(profile, {});
    check(profile, found);
    check(profile, {{DevCache::gradleHome, "/Volumes/Work/Korvanti Dev/gradle.noindex"},
                    {DevCache::npmCache, "/Volumes/Work/Korvanti Dev/npm-cache.noindex"}});
    if (ManagedBlock::canHold(path))
        check(profile, {{DevCache::npmCache, path}});
    return 0;
}
