#include "terminal/MapText.h"

#include "base/ByteText.h"
#include "base/Text.h"
#include "terminal/TextColumns.h"

#include <cstddef>
#include <fmt/format.h>
#include <ranges>

namespace korvanti::MapText {
namespace {

/// What is shown of a root's children, and of each child's.
constexpr std::ptrdiff_t longestFirstLevel = 15;
constexpr std::ptrdiff_t longestSecondLevel = 4;

auto firstChildren(const MapNode& node, std::ptrdiff_t count) {
    static const std::vector<MapNode> none;
    return (node.children ? *node.children : none) | std::views::take(count);
}

std::string sizeColumn(const MapNode& node) {
    return TextColumns::rightAligned(bytesText(node.bytes), 9);
}

} // namespace

std::vector<std::string> lines(const StorageMap& map) {
    std::vector<std::string> lines;
    for (const auto& root : map.roots) {
        lines.push_back(fmt::format("\n■ {} — {}", Text::printable(root.name), bytesText(root.bytes)));
        if (root.unreadable > 0)
            lines.back() += fmt::format(" ({} folder tak terbaca)", root.unreadable);
        for (const auto& child : firstChildren(root, longestFirstLevel)) {
            lines.push_back(fmt::format("  {}  {}", sizeColumn(child), Text::printable(child.name)));
            if (child.unreadable > 0)
                lines.back() += fmt::format("  [{} tak terbaca]", child.unreadable);
            for (const auto& grandchild : firstChildren(child, longestSecondLevel))
                lines.push_back(
                    fmt::format("      {}  {}", sizeColumn(grandchild), Text::printable(grandchild.name)));
        }
    }
    return lines;
}

} // namespace korvanti::MapText
