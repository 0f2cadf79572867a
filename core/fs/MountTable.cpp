#include "fs/MountTable.h"

#include "fs/PathTools.h"
#include "platform/Platform.h"

namespace korvanti::MountTable {

std::vector<std::string> all() {
    return Platform::mountPoints();
}

std::vector<std::string> mountPoints(std::string_view inside) {
    if (inside.ends_with('/'))
        inside.remove_suffix(1);
    auto points = all();
    // The root is the empty text here, which is an ancestor of every mount.
    std::erase_if(points,
                  [&](const std::string& point) { return !PathTools::isSameOrAncestor(inside, point); });
    return points;
}

} // namespace korvanti::MountTable
