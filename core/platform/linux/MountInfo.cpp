#include "platform/linux/MountInfo.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <map>
#include <set>
#include <system_error>
#include <utility>

namespace korvanti::Platform {
namespace {

bool isOctal(char c) {
    return c >= '0' && c <= '7';
}

/// The kernel writes space, tab, line feed and backslash as three octal digits.
std::string decodedEscapes(std::string_view field) {
    std::string decoded;
    for (std::size_t i = 0; i < field.size(); ++i) {
        if (field[i] == '\\' && i + 3 < field.size() && field[i + 1] <= '3' && isOctal(field[i + 1]) &&
            isOctal(field[i + 2]) && isOctal(field[i + 3])) {
            decoded += static_cast<char>((field[i + 1] - '0') * 64 + (field[i + 2] - '0') * 8 +
                                         (field[i + 3] - '0'));
            i += 3;
        } else {
            decoded += field[i];
        }
    }
    return decoded;
}

/// Cuts the next piece up to `separator` off the front.
std::string_view takePiece(std::string_view& rest, char separator) {
    const auto end = rest.find(separator);
    const auto piece = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    return piece;
}

/// 0 for what is no number.
template <class Number> Number number(std::string_view text) {
    Number value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() ? value : 0;
}

/// Calls `use` for each line that has a mount point, with what stands before that point, with the point,
/// still encoded, and with what stands behind it.
template <class Use> void forEachMount(std::string_view text, Use use) {
    while (!text.empty()) {
        auto rest = takePiece(text, '\n');
        const auto line = rest;
        // id, parent, device and root come first.
        for (int field = 0; field < 4; ++field)
            takePiece(rest, ' ');
        const auto before = line.substr(0, line.size() - rest.size());
        const auto point = takePiece(rest, ' ');
        if (point.starts_with('/'))
            use(before, point, rest);
    }
}

/// How the mounts of a table lie on each other.
class MountTree {
public:
    explicit MountTree(const std::vector<MountRecord>& mounts) {
        for (const auto& mount : mounts) {
            byId_[mount.id] = &mount;
            if (mount.parent != mount.id)
                points_.emplace(mount.parent, mount.mountPoint);
        }
    }

    [[nodiscard]] bool isVisible(const MountRecord& mount) const {
        if (points_.contains({mount.id, mount.mountPoint})) // another one lies on its root
            return false;
        const auto* at = &mount;
        for (std::size_t step = 0; step < byId_.size(); ++step) { // a damaged table may lead in a circle
            if (isCutOff(*at))
                return false;
            const auto parent = byId_.find(at->parent);
            if (parent == byId_.end())
                break;
            at = parent->second;
        }
        return true;
    }

private:
    /// On the way to it from the root of the mount on which it lies another one begins.
    [[nodiscard]] bool isCutOff(const MountRecord& mount) const {
        for (std::string_view path = mount.mountPoint; path != "/";) {
            path = path.substr(0, std::max<std::size_t>(path.rfind('/'), 1));
            if (points_.contains({mount.parent, path}))
                return true;
        }
        return false;
    }

    std::map<std::uint64_t, const MountRecord*> byId_;
    std::set<std::pair<std::uint64_t, std::string_view>> points_; ///< each with the mount on which it lies
};

} // namespace

std::vector<MountRecord> mountRecordsFromMountInfo(std::string_view text) {
    std::vector<MountRecord> records;
    forEachMount(text, [&](std::string_view before, std::string_view point, std::string_view behind) {
        MountRecord record{.mountPoint = decodedEscapes(point)};
        record.id = number<std::uint64_t>(takePiece(before, ' '));
        record.parent = number<std::uint64_t>(takePiece(before, ' '));
        record.major = number<std::uint32_t>(takePiece(before, ':'));
        record.minor = number<std::uint32_t>(takePiece(before, ' '));
        // Options and any number of further fields come before a hyphen.
        while (!behind.empty() && takePiece(behind, ' ') != "-") {
        }
        record.fsType = decodedEscapes(takePiece(behind, ' '));
        record.source = decodedEscapes(takePiece(behind, ' '));
        records.push_back(std::move(record));
    });
    return records;
}

std::vector<MountRecord> visibleMounts(const std::vector<MountRecord>& mounts) {
    const MountTree tree(mounts);
    std::vector<MountRecord> visible;
    std::ranges::copy_if(mounts, std::back_inserter(visible),
                         [&](const MountRecord& mount) { return tree.isVisible(mount); });
    return visible;
}

std::vector<std::string> mountPointsFromMountInfo(std::string_view text) {
    std::vector<std::string> points;
    forEachMount(text, [&](std::string_view, std::string_view point, std::string_view) {
        points.push_back(decodedEscapes(point));
    });
    return points;
}

} // namespace korvanti::Platform
