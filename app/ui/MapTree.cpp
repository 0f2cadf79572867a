#include "ui/MapTree.h"

#include "ui/ScreenText.h"

#include <QStringList>
#include <algorithm>
#include <cstddef>
#include <iterator>

namespace korvanti {
namespace {

enum Role {
    nameRole = Qt::UserRole + 1,
    pathRole,
    depthRole,
    isExpandableRole,
    isExpandedRole,
    fractionRole,
    sizeTextRole,
    lockTextRole,
    spokenTextRole,
    spokenStateRole
};

/// Stands in for nodes of a map that is no longer there.
const MapNode gone;

QString lockText(const MapNode& node) {
    return node.unreadable < 1
               ? QString()
               : QString("%1 folder tidak terbaca — aktifkan Full Disk Access").arg(node.unreadable);
}

} // namespace

std::vector<MapTree::Row> MapTree::rowsOf(const std::vector<MapNode>& nodes, int depth) const {
    struct Level {
        const std::vector<MapNode>& nodes;
        std::size_t next = 0;
    };
    std::vector<Row> rows;
    for (std::vector<Level> open = {{nodes}}; !open.empty();) {
        auto& [siblings, next] = open.back();
        if (next == siblings.size()) {
            open.pop_back();
            continue;
        }
        const auto& node = siblings[next++];
        const bool isExpanded = node.children && expanded_.contains(node.path);
        rows.push_back({&node, depth + static_cast<int>(open.size()) - 1, isExpanded});
        if (isExpanded)
            open.push_back({*node.children});
    }
    return rows;
}

void MapTree::setMap(const StorageMap* map) {
    const auto rows = map == nullptr ? std::vector<Row>() : rowsOf(map->roots, 0);
    largest_ = map == nullptr || map->roots.empty()
                   ? 1
                   : std::max(1.0, static_cast<double>(map->roots.front().bytes));
    const auto kept = std::min(rows_.size(), rows.size());
    std::copy_n(rows.begin(), kept, rows_.begin());
    // The old map may be gone already, and who hears of a change may ask for any row.
    std::fill(rows_.begin() + static_cast<std::ptrdiff_t>(kept), rows_.end(), Row{.node = &gone});
    if (kept > 0)
        emit dataChanged(index(0), index(static_cast<int>(kept) - 1));
    if (rows_.size() > kept) {
        beginRemoveRows({}, static_cast<int>(kept), rowCount() - 1);
        rows_.resize(kept);
        endRemoveRows();
    }
    if (rows.size() > kept) {
        beginInsertRows({}, static_cast<int>(kept), static_cast<int>(rows.size()) - 1);
        rows_.insert(rows_.end(), rows.begin() + static_cast<std::ptrdiff_t>(kept), rows.end());
        endInsertRows();
    }
}

int MapTree::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant MapTree::data(const QModelIndex& index, int role) const {
    const auto* shown = index.isValid() ? node(index.row()) : nullptr;
    if (shown == nullptr)
        return {};
    const auto& row = rows_[static_cast<std::size_t>(index.row())];
    switch (role) {
    case nameRole:
        return screenText(shown->name);
    case pathRole:
        return screenText(shown->path);
    case depthRole:
        return row.depth;
    case isExpandableRole:
        return shown->children.has_value();
    case isExpandedRole:
        return row.isExpanded;
    case fractionRole:
        return std::clamp(static_cast<double>(shown->bytes) / largest_, 0.0, 1.0);
    case sizeTextRole:
        return sizeText(shown->bytes);
    case lockTextRole:
        return lockText(*shown);
    case spokenTextRole: {
        QStringList texts = {screenText(shown->name), sizeText(shown->bytes), lockText(*shown)};
        texts.removeAll("");
        return texts.join(", ");
    }
    case spokenStateRole: {
        const QString level = QString("tingkat %1").arg(row.depth + 1);
        if (!shown->children)
            return level;
        return (row.isExpanded ? "terbuka, " : "tertutup, ") + level;
    }
    default:
        return {};
    }
}

QHash<int, QByteArray> MapTree::roleNames() const {
    return {{nameRole, "name"},
            {pathRole, "path"},
            {depthRole, "depth"},
            {isExpandableRole, "isExpandable"},
            {isExpandedRole, "isExpanded"},
            {fractionRole, "fraction"},
            {sizeTextRole, "sizeText"},
            {lockTextRole, "lockText"},
            {spokenTextRole, "spokenText"},
            {spokenStateRole, "spokenState"}};
}

const MapNode* MapTree::node(int row) const {
    return row >= 0 && row < rowCount() ? rows_[static_cast<std::size_t>(row)].node : nullptr;
}

int MapTree::parentRow(int row) const {
    if (node(row) == nullptr)
        return -1;
    const auto at = rows_.begin() + row;
    const auto above = std::find_if(std::reverse_iterator(at), rows_.rend(),
                                    [&](const Row& other) { return other.depth < at->depth; });
    return static_cast<int>(std::distance(above, rows_.rend())) - 1;
}

int MapTree::endOf(int row) const {
    const auto at = rows_.begin() + row;
    const auto end =
        std::find_if(at + 1, rows_.end(), [&](const Row& other) { return other.depth <= at->depth; });
    return static_cast<int>(std::distance(rows_.begin(), end));
}

void MapTree::setExpanded(int row, bool isExpanded) {
    rows_[static_cast<std::size_t>(row)].isExpanded = isExpanded;
    emit dataChanged(index(row), index(row), {isExpandedRole, spokenStateRole});
}

bool MapTree::expand(int row) {
    const auto* opened = node(row);
    if (opened == nullptr || !opened->children || rows_[static_cast<std::size_t>(row)].isExpanded)
        return false;
    expanded_.insert(opened->path);
    setExpanded(row, true);
    const auto below = rowsOf(*opened->children, rows_[static_cast<std::size_t>(row)].depth + 1);
    if (!below.empty()) {
        beginInsertRows({}, row + 1, row + static_cast<int>(below.size()));
        rows_.insert(rows_.begin() + row + 1, below.begin(), below.end());
        endInsertRows();
    }
    return true;
}

bool MapTree::collapse(int row) {
    const auto* closed = node(row);
    if (closed == nullptr || !rows_[static_cast<std::size_t>(row)].isExpanded)
        return false;
    expanded_.erase(closed->path);
    setExpanded(row, false);
    if (const int end = endOf(row); end > row + 1) {
        beginRemoveRows({}, row + 1, end - 1);
        rows_.erase(rows_.begin() + row + 1, rows_.begin() + end);
        endRemoveRows();
    }
    return true;
}

} // namespace korvanti
