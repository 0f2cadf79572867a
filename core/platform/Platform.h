#pragma once

#include "base/FileDescriptor.h"
#include "base/FileError.h"
#include "base/Instant.h"

#include <cstdint>
#include <expected>
#include <memory>
#include <optional>
#include <spawn.h>
#include <string>
#include <string_view>
#include <vector>

/// What differs between the systems, and nothing else. One implementation a folder (linux/, macos/), chosen
/// when the program is linked. Every function is safe from any thread, and none throws.
namespace korvanti::Platform {

/// The home folder of the user: absolute, without a trailing slash. Never empty ("/" when nothing is known).
[[nodiscard]] std::string homeFolder();

/// Where the running program lies: absolute, links resolved. Empty when the system does not tell.
[[nodiscard]] std::string executablePath();

/// The mount points of the whole system, decoded, in the system's order. Does not wait for slow file systems.
/// Empty when the table can't be read.
[[nodiscard]] std::vector<std::string> mountPoints();

/// Capacity of the volume that holds a path, in bytes. All zero when the volume can't be asked.
struct VolumeCapacity {
    std::int64_t total = 0;
    std::int64_t available = 0; ///< free for an ordinary user, by the plain measure
    std::optional<std::int64_t>
        availableImportant; ///< counts purgeable space as free, where the system tells
    bool operator==(const VolumeCapacity&) const = default;
};
[[nodiscard]] VolumeCapacity volumeCapacity(const std::string& path);

/// One mounted volume as the platform tells of it; what it does not tell is absent. Sizes are bytes.
struct MountedVolume {
    std::string mountPath;
    std::string fsType; ///< the file system's name as the kernel has it; empty when it can't be asked
    std::optional<std::string> name;
    std::optional<std::string> uuid;
    std::optional<std::string> formatDescription; ///< for people, in their language
    std::optional<bool> isInternal;
    std::optional<bool> isEjectable;
    std::optional<bool> isRemovable;
    std::optional<bool> isLocal;
    std::optional<bool> isRootFileSystem;
    std::optional<std::int64_t> total;
    std::optional<std::int64_t> available;
    bool operator==(const MountedVolume&) const = default;
};
/// The mounted volumes that people see, in the system's order, one for each mount point. Empty when the
/// system gives no answer.
[[nodiscard]] std::vector<MountedVolume> mountedVolumes();

/// What is read from and written to the open file from now on passes the system's cache by, as far as the
/// file system lets it. Memory, place in the file and length must then be multiples of 4096 bytes.
void bypassCache(int file);

/// Opens a new file without a name to be read and written by this user alone, which is gone when it is
/// closed, however the process ends. -1 with errno on failure, also where the system has no such files. The
/// descriptor is the caller's to close.
[[nodiscard]] int openNamelessFile(const std::string& folder);

/// Waits until an open file, or an open folder's list of names, is on its device. 0, or the system's error
/// number.
[[nodiscard]] int flushFile(int file);

/// The same for all that was written to the volume on which an open file or folder lies.
[[nodiscard]] int flushVolume(int file);

/// Gives one open folder the mode, the times, the extended attributes and the access list of another. 0, or
/// the system's error number.
[[nodiscard]] int copyFolderFacts(int from, int to);

/// Bytes of swap in use, 0 when not told.
[[nodiscard]] std::int64_t swapUsed();

/// Bytes of memory installed.
[[nodiscard]] std::int64_t physicalMemory();

/// What the system's index remembers of the use of an application.
struct SpotlightUsage {
    std::optional<Instant> lastUsed;
    std::optional<std::int64_t> useCount;
    bool operator==(const SpotlightUsage&) const = default;
};
/// Empty for what is not indexed, was never used, or where there is no such index.
[[nodiscard]] SpotlightUsage applicationUsage(const std::string& bundle);

enum class EntryKind : std::uint8_t { file, folder, link, other };

/// One entry of a folder, links not followed. The sizes are those of anything but a folder, and 0 for a
/// folder.
struct FolderEntry {
    std::string_view name; ///< valid until the next call of `next`
    EntryKind kind = EntryKind::other;
    bool mountPoint = false;         ///< the listing itself tells that a volume is mounted on this folder
    bool hidden = false;             ///< from people, by more than a dot in front of the name
    bool package = false;            ///< the listing itself tells that this folder is a package
    std::int64_t allocatedBytes = 0; ///< blocks on disk
    std::int64_t logicalBytes = 0;   ///< length
    std::optional<std::int64_t> modifiedSeconds; ///< whole seconds since 1970, where the file system tells
    std::int64_t modifiedNanoseconds = 0;        ///< and what is above them
};

/// How much a `FolderReader` finds out about each entry. What is hidden and what a package comes with
/// `everything` only.
enum class EntryFacts { names, sizes, everything };

/// Memory for one folder's listing at a time. Keep one a thread and use it again: it is too large for the
/// stack.
struct FolderBuffer {
    static constexpr std::size_t capacity = 128 * 1024;
    alignas(8) char bytes[capacity];
};

/// Reads the entries of one open folder in the system's order, without "." and "..". Unless only names are
/// wanted, an entry that can't be asked (gone since) is left out.
class FolderReader {
public:
    /// Descriptor and buffer stay the caller's and must outlive the reader.
    FolderReader(int folder, FolderBuffer& buffer, EntryFacts facts);

    /// The next entry; null at the end of the folder, or when it can't be read any further.
    const FolderEntry* next();

    /// Reading broke off before the end; what came so far stands.
    [[nodiscard]] bool failed() const { return error_ != 0; }
    /// The system's error number then, otherwise 0.
    [[nodiscard]] int error() const { return error_; }

private:
    bool fill();

    int folder_;
    FolderBuffer& buffer_;
    EntryFacts facts_;
    std::size_t position_ = 0; ///< of the next record in the buffer
    std::size_t filled_ = 0;   ///< bytes of records in the buffer (records, where the system counts those)
    int error_ = 0;
    std::shared_ptr<void> listing_; ///< a plain one, where the folder can't be read in bulk
    FolderEntry entry_;
};

/// What tells one open folder from another.
struct FolderIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    bool mountRoot = false; ///< the root of a mounted volume, where the system tells
    bool operator==(const FolderIdentity&) const = default;
};
/// Absent when the descriptor can't be asked.
[[nodiscard]] std::optional<FolderIdentity> folderIdentity(int folder);

enum class Links { refuse, follow };

/// Opens a folder to be listed: follows a link in the last component only if told so, never waits, never
/// fetches what lies in a cloud only. -1 with errno on failure. The descriptor is the caller's to close.
[[nodiscard]] int openFolder(const std::string& path, Links links = Links::refuse);
/// The same for the child of an open folder (or "..", its parent), which never is a link.
[[nodiscard]] int openFolderAt(int parent, const char* name);

/// Opens a folder only to reach what is in it, which takes no right to list it; otherwise like the two above.
[[nodiscard]] int openPassage(const std::string& path);
[[nodiscard]] int openPassageAt(int parent, const char* name);

/// Holds an entry that is no folder (a link as itself) without the right to read it, so that its number is
/// given to no other as long as it is held: none where numbers are never given twice. Or the system's error
/// number.
[[nodiscard]] std::expected<FileDescriptor, int> holdEntryAt(int parent, const char* name);

/// What tells one entry of any kind from another.
struct EntryIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    bool operator==(const EntryIdentity&) const = default;
};

/// What is to go to the Trash, and where that is.
struct TrashRequest {
    int folder = -1;        ///< holds the entry
    std::string name;       ///< its name in there
    std::string path;       ///< the whole path
    EntryIdentity identity; ///< anything else under that name stays
    std::string home;       ///< whose Trash
};
/// Moves one entry as a whole to the user's Trash, under a name that is free there. On failure it stands
/// where it stood.
[[nodiscard]] std::expected<void, FileError> moveToTrash(const TrashRequest& request);

/// A folder with a name that has an extension is shown to people as one document.
[[nodiscard]] bool isPackage(const std::string& path);

/// From now on the calling thread works behind whatever else wants the processor: other programs, and the
/// tools that this one started.
void giveWay();

/// Makes a program that is about to be started inherit no descriptor but its first three. 0, or the system's
/// error number.
[[nodiscard]] int inheritOnlyStreams(posix_spawnattr_t& attributes, posix_spawn_file_actions_t& actions);

/// Lifts the limit of open files of this process as far as the system lets an ordinary program go.
void raiseOpenFileLimit();

} // namespace korvanti::Platform
