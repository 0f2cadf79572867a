#pragma once

#include <map>
#include <string>
#include <string_view>

#include "drives/DevCache.h"

/// The lines of a shell profile that the program owns: pure text in, text out, byte by byte, so that what is
/// around them stays as it is in whatever encoding.
namespace korvanti::ManagedBlock {

/// Where the environment points each cache; `xcodeDerivedData` is never among them.
using Targets = std::map<DevCache, std::string>;

/// A path that can stand in the block: one with a line feed, a zero or a marker of the block in it would tear
/// the block apart.
[[nodiscard]] bool canHold(std::string_view path);

/// What the block in a profile says; empty without a whole block.
[[nodiscard]] Targets targets(std::string_view profile);

/// The block without a line feed at its end; empty without targets, each of which it can hold.
[[nodiscard]] std::string text(const Targets& targets);

/// The profile with its block taken out, and the one for `targets` put at its end. The block is the part from
/// a first marker to the nearest last marker behind it that holds no other first marker; half a one is left
/// as it is.
[[nodiscard]] std::string rewritten(std::string_view profile, const Targets& targets);

} // namespace korvanti::ManagedBlock
