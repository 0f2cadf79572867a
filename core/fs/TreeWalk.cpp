#include "fs/TreeWalk.h"

#include "base/CheckedMath.h"
#include "base/FileDescriptor.h"
#include "base/Text.h"
#include "fs/MountTable.h"
#include "fs/PathTools.h"
#include "fs/WalkPool.h"
#include "platform/EntryKinds.h"
#include "platform/Platform.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <functional>
#include <limits>
#include <mutex>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unordered_set>
#include <utility>
#include <vector>

namespace korvanti::TreeWalk {
namespace {

struct Folder;

/// Shared ownership of a folder by the task that goes through it and by its children. The last owner gone,
/// the folder is done with all that is in it. Lets a chain of parents go one by one, since a tree may be
/// deeper than the stack.
class FolderPointer {
public:
    FolderPointer() = default;
    explicit FolderPointer(Folder* created) : folder_(created) {}
    FolderPointer(const FolderPointer& other);
    FolderPointer(FolderPointer&& other) noexcept : folder_(std::exchange(other.folder_, nullptr)) {}
    FolderPointer& operator=(FolderPointer other) noexcept {
        std::swap(folder_, other.folder_);
        return *this;
    }
    ~FolderPointer();

    Folder* get() const { return folder_; }
    Folder* operator->() const { return folder_; }
    Folder& operator*() const { return *folder_; }
    explicit operator bool() const { return folder_ != nullptr; }

private:
    Folder* folder_ = nullptr;
};

/// What was counted so far.
struct Totals {
    static constexpr auto never = std::numeric_limits<std::int64_t>::min();

    std::int64_t bytes = 0;
    std::int64_t logicalBytes = 0;
    std::int64_t files = 0;
    std::int64_t unreadable = 0;
    std::int64_t newest = never; ///< seconds since 1970
    std::uint64_t stamp = 0;     ///< a sum, so that the order of the walk does not count

    void add(const Totals& other) {
        bytes = addChecked(bytes, other.bytes);
        logicalBytes = addChecked(logicalBytes, other.logicalBytes);
        files += other.files;
        unreadable += other.unreadable;
        newest = std::max(newest, other.newest);
        stamp += other.stamp;
    }

    [[nodiscard]] SizeResult result() const {
        SizeResult result{.bytes = bytes,
                          .logicalBytes = logicalBytes,
                          .files = files,
                          .unreadable = unreadable,
                          .stamp = stamp};
        if (newest != never)
            result.newest = instantFromSeconds(newest);
        return result;
    }

    static Totals of(const SizeResult& size) {
        return {size.bytes,
                size.logicalBytes,
                size.files,
                size.unreadable,
                size.newest ? wholeSeconds(*size.newest) : never,
                size.stamp};
    }
};

/// One number for all of them, well spread: many are added up.
template <class... Values> std::uint64_t mixed(const Values&... values) {
    std::uint64_t hash = 0;
    const auto mixIn = [&hash](std::uint64_t value) { // the finaliser of SplitMix64
        hash += value + 0x9e37'79b9'7f4a'7c15;
        hash = (hash ^ (hash >> 30)) * 0xbf58'476d'1ce4'e5b9;
        hash = (hash ^ (hash >> 27)) * 0x94d0'49bb'1331'11eb;
        hash ^= hash >> 31;
    };
    (mixIn(std::hash<Values>()(values)), ...);
    return hash;
}

/// By where the entry lies and what the listing tells; not by numbers of inodes, which some file systems make
/// up anew each time. A folder has its place only.
std::uint64_t stampOf(std::uint64_t folder, const Platform::FolderEntry& entry) {
    if (entry.kind == Platform::EntryKind::folder)
        return mixed(folder, entry.name);
    return mixed(folder, entry.name, static_cast<int>(entry.kind), entry.logicalBytes,
                 entry.modifiedSeconds.value_or(0), entry.modifiedNanoseconds);
}

class Walk;

/// A folder on the walk. It stays open while children of it are still to be opened, so that these are reached
/// by descriptor and never by a path that somebody may have changed.
struct Folder {
    Walk& walk;
    FolderPointer parent; ///< null for the root
    std::string name;     ///< the root's is its full path
    const KnownFolder* known = nullptr;
    std::uint64_t stamp = 0; ///< of its place, where stamps are taken
    int depth = 0;
    bool entered = false;
    Platform::FolderIdentity identity;
    FileDescriptor descriptor;
    std::string subfolders; ///< names still to be gone through, each ended by a zero
    std::size_t next = 0;   ///< where in `subfolders` the first of them starts
    Totals totals;          ///< of the folder and all below that is done; under the walk's mutex
    std::atomic<int> owners = 1;

    Folder(Walk& ownWalk, FolderPointer parentFolder, std::string ownName)
        : walk(ownWalk), parent(std::move(parentFolder)), name(std::move(ownName)),
          depth(parent ? parent->depth + 1 : 0) {
        if (parent && parent->known) {
            const auto found = parent->known->children.find(name);
            known = found == parent->known->children.end() ? nullptr : found->second.get();
        }
    }

    [[nodiscard]] bool hasMore() const { return next < subfolders.size(); }

    const char* takeNext() {
        const char* taken = subfolders.data() + next;
        next += std::char_traits<char>::length(taken) + 1;
        return taken;
    }

    /// From the root down to this one.
    [[nodiscard]] std::vector<const Folder*> chain() const {
        std::vector<const Folder*> folders;
        for (const Folder* folder = this; folder; folder = folder->parent.get())
            folders.push_back(folder);
        std::ranges::reverse(folders);
        return folders;
    }

    [[nodiscard]] std::string path() const {
        std::string whole;
        for (const Folder* folder : chain())
            whole = folder->parent ? PathTools::joined(whole, folder->name) : folder->name;
        return whole;
    }
};

/// A folder with children left is closed between two of them when its descriptor is not below this: then so
/// many are open already that tools, files and other walks need the rest.
int mostDescriptors() {
    constexpr rlim_t least = 64;
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return static_cast<int>(least);
    return static_cast<int>(std::clamp<rlim_t>(limit.rlim_cur / 2, least, 32'768));
}

/// One walk over one tree. A task holds a folder with names left in it: it takes the next name, hands the
/// rest of the folder on to whoever is free, and goes down into what it took. So at any time one task a
/// folder at the most is waiting, however wide the tree is, and a chain of folders needs no second task at
/// all.
class Walk {
public:
    Walk(const std::string& root, const Options& options) : options_(options) {
        for (auto& point : MountTable::mountPoints(root)) {
            mountNames_.emplace(PathTools::lastComponent(point));
            mountPoints_.insert(std::move(point));
        }
    }

    std::optional<SizeResult> run(const std::string& path) {
        const FolderPointer root(new Folder(*this, {}, path));
        root->known = options_.known ? options_.known->find(path) : nullptr;
        root->descriptor = FileDescriptor(Platform::openFolder(path));
        const auto identity = identityOf(*root);
        if (!identity)
            return std::nullopt;
        root->identity = *identity;
        WalkPool::run([&] {
            list(*root);
            goDown(root);
            tasks_.wait();
        });
        const std::scoped_lock lock(mutex_);
        return resultOf(*root, path);
    }

    /// The last owner of a folder is gone.
    void complete(const Folder& folder) {
        const std::scoped_lock lock(mutex_);
        if (!folder.parent)
            return;
        folder.parent->totals.add(folder.totals);
        if (options_.told && folder.entered && isToBeTold(folder)) {
            const auto path = folder.path();
            options_.told(path, resultOf(folder, path));
        }
        if (options_.toldPart && folder.depth <= 2)
            tellPart(folder);
    }

private:
    /// Beside those that are wanted: what somebody may ask for later, and is not quickly walked again.
    static bool isToBeTold(const Folder& folder) {
        constexpr int deepest = 4;
        constexpr std::int64_t large = 500; // files
        return (folder.known && folder.known->wanted) ||
               (folder.depth <= deepest && folder.totals.files >= large);
    }

    void tellPart(const Folder& folder) const {
        const auto& totals = folder.totals;
        if (totals.files > 0 || totals.unreadable > 0)
            options_.toldPart({.folder = folder.depth == 1 ? std::string_view() : folder.parent->name,
                               .name = folder.name,
                               .bytes = totals.bytes,
                               .unreadable = totals.unreadable});
    }

    /// What an earlier walk has counted of the folder, if one has.
    static const SizeResult* sizeOf(const Folder& folder) {
        return folder.known && folder.known->size ? &*folder.known->size : nullptr;
    }

    static std::optional<Platform::FolderIdentity> identityOf(const Folder& folder) {
        return folder.descriptor ? Platform::folderIdentity(folder.descriptor.get()) : std::nullopt;
    }

    /// Removed, or no folder any more, since it was listed: then there is nothing to read.
    static bool isGone(int error) { return error == ENOENT || error == ENOTDIR || error == ELOOP; }

    /// Walks what is left of `folder`.
    void goDown(FolderPointer folder) {
        while (folder && folder->hasMore()) {
            if (!folder->descriptor)
                folder->descriptor = reopened(*folder);
            if (!folder->descriptor)
                return;
            auto child = open(folder, folder->takeNext());
            if (!folder->hasMore() || folder->descriptor.get() >= mostDescriptors_)
                folder->descriptor.reset();
            if (folder->hasMore())
                tasks_.start([this, rest = std::move(folder)] { goDown(rest); });
            if (child)
                list(*child);
            folder = std::move(child);
        }
    }

    /// The child folder, open; null when it is not to be entered or can't be.
    FolderPointer open(const FolderPointer& parent, const char* name) {
        FolderPointer child(new Folder(*this, parent, name));
        if (options_.takeStamp)
            child->stamp = mixed(parent->stamp, child->name);
        if (mountNames_.contains(child->name) && mountPoints_.contains(child->path())) {
            addMountPoint(child->path());
            return {};
        }
        if (const auto* known = sizeOf(*child)) {
            addKnown(*child, *known);
            return {};
        }
        child->descriptor = FileDescriptor(Platform::openFolderAt(parent->descriptor.get(), name));
        if (!child->descriptor && isGone(errno))
            return {};
        const auto identity = identityOf(*child);
        if (!identity) {
            add(*child, {.unreadable = 1});
            return {};
        }
        if (identity->mountRoot || identity->device != parent->identity.device) {
            addMountPoint(child->path());
            return {};
        }
        child->identity = *identity;
        return child;
    }

    /// Opens a folder again that was closed for want of descriptors: step by step from the root, and only if
    /// each is still the same folder. No descriptor otherwise, and counted where it is there but can't be
    /// opened.
    FileDescriptor reopened(Folder& folder) {
        FileDescriptor current;
        for (const Folder* step : folder.chain()) {
            const int opened = step->parent ? Platform::openFolderAt(current.get(), step->name.c_str())
                                            : Platform::openFolder(step->name);
            if (opened < 0 && !isGone(errno))
                add(folder, {.unreadable = 1});
            current = FileDescriptor(opened);
            if (Platform::folderIdentity(opened) != step->identity)
                return {};
        }
        return current;
    }

    void list(Folder& folder) {
        static thread_local const auto buffer = std::make_unique<Platform::FolderBuffer>();
        folder.entered = true;
        const bool tells = options_.toldPart && !folder.parent;
        Totals own;
        Platform::FolderReader reader(folder.descriptor.get(), *buffer, Platform::EntryFacts::sizes);
        while (const auto* entry = reader.next()) {
            if (options_.takeStamp)
                own.stamp += stampOf(folder.stamp, *entry);
            if (entry->kind == Platform::EntryKind::folder) {
                if (entry->mountPoint) {
                    addMountPoint(PathTools::joined(folder.path(), entry->name));
                } else {
                    folder.subfolders += entry->name;
                    folder.subfolders += '\0';
                }
                continue;
            }
            if (options_.ignoreAppleDouble && entry->name.starts_with("._"))
                continue;
            own.add({.bytes = entry->allocatedBytes,
                     .logicalBytes = entry->logicalBytes,
                     .files = 1,
                     .newest = options_.trackNewest ? entry->modifiedSeconds.value_or(Totals::never)
                                                    : Totals::never});
            if (tells) // nobody else does yet
                options_.toldPart({.folder = {}, .name = entry->name, .bytes = entry->allocatedBytes});
        }
        own.unreadable = reader.failed() ? 1 : 0;
        add(folder, own);
    }

    void add(Folder& folder, const Totals& more) {
        const std::scoped_lock lock(mutex_);
        folder.totals.add(more);
    }

    void addKnown(Folder& folder, const SizeResult& size) {
        const std::scoped_lock lock(mutex_);
        folder.totals.add(Totals::of(size));
        std::ranges::copy(size.mountPoints, std::back_inserter(foundMountPoints_));
    }

    void addMountPoint(std::string path) {
        const std::scoped_lock lock(mutex_);
        foundMountPoints_.push_back(std::move(path));
    }

    /// Under `mutex_`.
    SizeResult resultOf(const Folder& folder, const std::string& path) const {
        auto result = folder.totals.result();
        std::ranges::copy_if(
            foundMountPoints_, std::back_inserter(result.mountPoints),
            [&](const std::string& point) { return PathTools::isSameOrAncestor(path, point); });
        std::ranges::sort(result.mountPoints);
        return result;
    }

    const Options& options_;
    int mostDescriptors_ = mostDescriptors();
    std::unordered_set<std::string> mountPoints_;
    std::unordered_set<std::string>
        mountNames_; ///< last components, to build a path only where it may be one
    WalkPool::Tasks tasks_;
    std::mutex mutex_;
    std::vector<std::string> foundMountPoints_; ///< under `mutex_`
};

FolderPointer::FolderPointer(const FolderPointer& other) : folder_(other.folder_) {
    if (folder_)
        folder_->owners.fetch_add(1, std::memory_order_relaxed);
}

FolderPointer::~FolderPointer() {
    while (folder_ && folder_->owners.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        folder_->walk.complete(*folder_);
        Folder* const parent = std::exchange(folder_->parent.folder_, nullptr);
        delete folder_;
        folder_ = parent;
    }
}

} // namespace

const KnownFolder* KnownFolder::find(std::string_view path) const {
    const KnownFolder* found = this;
    for (const auto name : Text::pieces(path, '/')) {
        const auto child = found->children.find(name);
        if (child == found->children.end())
            return nullptr;
        found = child->second.get();
    }
    return found;
}

KnownFolder& KnownFolder::at(std::string_view path) {
    KnownFolder* found = this;
    for (const auto name : Text::pieces(path, '/')) {
        auto child = found->children.find(name);
        if (child == found->children.end())
            child = found->children.emplace(name, std::make_unique<KnownFolder>()).first;
        found = child->second.get();
    }
    return *found;
}

SizeResult measure(const std::string& path, const Options& options) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0)
        return {.unreadable = 1};
    if (S_ISLNK(status.st_mode))
        return {};
    if (S_ISDIR(status.st_mode))
        return measureFolder(path, options).value_or(SizeResult{.unreadable = 1});
    const auto modified = Platform::modificationOf(status);
    return {.bytes = multiplyChecked<std::int64_t>(status.st_blocks, 512),
            .logicalBytes = status.st_size,
            .files = 1,
            .newest = instantFromSeconds(status.st_mtime),
            .stamp = options.takeStamp ? mixed(status.st_size, modified.tv_sec, modified.tv_nsec) : 0};
}

std::optional<SizeResult> measureFolder(const std::string& path, const Options& options) {
    return Walk(path, options).run(path);
}

} // namespace korvanti::TreeWalk
