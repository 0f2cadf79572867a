#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace korvanti::testing {

/// One object on the disk, whatever names lead to it.
struct DiskObject {
    enum class Kind { folder, file, link };
    Kind kind = Kind::folder;
    unsigned mode = 0;
    unsigned owner = 0;
    std::uint64_t device = 0;
    std::uint64_t number = 0;    ///< 0 for what the run may have made: only its kind is known
    std::int64_t modified = 0;   ///< nanoseconds
    std::int64_t names = 0;      ///< of a file or a link
    std::string contents = {};   ///< of a file; what a link says
    bool entriesChanged = false; ///< of a folder: one came or went
    std::map<std::string, std::shared_ptr<DiskObject>> entries = {};
};
using DiskObjectPtr = std::shared_ptr<DiskObject>;

/// A mount on a folder or a file.
struct MountedPlace {
    std::string path;      ///< without links
    DiskObjectPtr covered; ///< what lies under it
    DiskObjectPtr root;    ///< what is seen there
    DiskObjectPtr folder;  ///< where its name is
};

/// A mount as it was made: the thing that it covers, held open from before.
struct MountMade {
    std::string path;
    int covered = -1;
};

/// What lies on the disk in a few folders at the top: first as it was found, then as somebody thinks that it
/// should have become. It finds paths by itself, so nothing asks the disk in between.
class DiskPicture {
public:
    /// `tops` are names in "/". Relative paths start from `workingFolder`.
    DiskPicture(const std::vector<std::string>& tops, std::string workingFolder,
                const std::vector<MountMade>& mounts);

    struct Found {
        DiskObjectPtr object;
        DiskObjectPtr folder; ///< the one that the last component was looked up in
        std::string path;     ///< without links, "." and ".."
        std::string name;     ///< its last component
    };
    /// As `lstat` finds a path, or `stat` where the last link is followed too. None where that fails.
    [[nodiscard]] std::optional<Found> find(const std::string& path, bool followLast = false) const;
    /// The object alone, or none.
    [[nodiscard]] DiskObjectPtr at(const std::string& path) const;

    [[nodiscard]] const std::vector<MountedPlace>& mounts() const { return mounts_; }
    /// A mount begins at this path without links.
    [[nodiscard]] bool isMountPoint(const std::string& path) const { return mountAt(path) != nullptr; }
    /// Something is mounted on this entry, be it seen at another path. Not so for other names of a file.
    [[nodiscard]] bool isCovered(const DiskObject& folder, const std::string& name) const;
    /// The mount that a path without links lies in; empty for none of them.
    [[nodiscard]] std::string mountOf(const std::string& path) const;

    /// Takes a name away, and everything below it but for what is a mount point. False when something stayed.
    bool remove(const Found& found);
    /// Gives an object another name; mounts inside go along.
    void move(const Found& found, const DiskObjectPtr& folder, const std::string& newPath);
    static void add(const DiskObjectPtr& folder, const std::string& name, DiskObjectPtr object);
    /// What the disk looks like once nothing is mounted any more.
    void forgetMounts() { mounts_.clear(); }

    /// Where the disk is not as in the picture, a line for each place.
    [[nodiscard]] std::vector<std::string> differencesFromDisk() const;
    /// Number of objects.
    [[nodiscard]] std::size_t size() const { return objects_.size(); }

private:
    enum class Held { no, yes };
    DiskObjectPtr taken(const std::string& path, const std::string& place, Held held = Held::no);
    bool removeEntry(DiskObject& folder, const std::string& name);
    [[nodiscard]] const MountedPlace* mountAt(const std::string& path) const;
    void compare(const std::string& path, const DiskObject& expected, std::vector<std::string>& lines) const;

    std::vector<std::string> tops_;
    std::string workingFolder_;
    std::map<std::pair<std::uint64_t, std::uint64_t>, DiskObjectPtr> objects_;
    std::vector<MountedPlace> mounts_;
    DiskObjectPtr root_ = std::make_shared<DiskObject>();
};

/// A path or another text with each byte that does not print as "\x..".
[[nodiscard]] std::string shown(const std::string& text);

/// The names in a folder with their objects' numbers; empty for what is no folder. A link is not followed.
[[nodiscard]] std::vector<std::pair<std::string, std::uint64_t>> listed(const std::string& folder);

} // namespace korvanti::testing
