#include "fs/SizeCalculator.h"

#include "base/CheckedMath.h"
#include "base/FileDescriptor.h"
#include "fs/MountTable.h"
#include "fs/PathTools.h"
#include "fs/SlidingWindow.h"
#include "fs/WalkPool.h"
#include "platform/Platform.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <limits>
#include <memory>
#include <mutex>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unordered_set>
#include <utility>

namespace korvanti::SizeCalculator {
namespace {

struct Folder;

/// Shared ownership of a folder by the task that goes through it and by its children. Lets a chain of parents
/// go one by one, since a tree may be deeper than the stack.
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
    friend struct Folder;
    Folder* folder_ = nullptr;
};

/// A folder on the walk. It stays open while children of it are still to be opened, so that these are reached
/// by descriptor and never by a path that somebody may have changed.
struct Folder {
    FolderPointer parent; ///< null for the root
    std::string name;     ///< the root's is its full path
    Platform::FolderIdentity identity;
    FileDescriptor descriptor;
    std::string subfolders; ///< names still to be gone through, each ended by a zero
    std::size_t next = 0;   ///< where in `subfolders` the first of them starts
    std::atomic<int> owners = 1;

    Folder(FolderPointer parentFolder, std::string ownName)
        : parent(std::move(parentFolder)), name(std::move(ownName)) {}

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

FolderPointer::FolderPointer(const FolderPointer& other) : folder_(other.folder_) {
    if (folder_)
        folder_->owners.fetch_add(1, std::memory_order_relaxed);
}

FolderPointer::~FolderPointer() {
    while (folder_ && folder_->owners.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        Folder* const parent = std::exchange(folder_->parent.folder_, nullptr);
        delete folder_;
        folder_ = parent;
    }
}

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
    Walk(const std::string& root, Options options) : options_(options) {
        for (auto& point : MountTable::mountPoints(root)) {
            mountNames_.emplace(PathTools::lastComponent(point));
            mountPoints_.insert(std::move(point));
        }
    }

    SizeResult run(const std::string& root) {
        FolderPointer folder(new Folder({}, root));
        folder->descriptor = FileDescriptor(Platform::openFolder(root));
        const auto identity = identityOf(*folder);
        if (!identity)
            return {.unreadable = 1};
        folder->identity = *identity;
        WalkPool::run([&] {
            list(*folder);
            goDown(std::move(folder));
            tasks_.wait();
        });
        std::ranges::sort(result_.mountPoints);
        return std::move(result_);
    }

private:
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
        FolderPointer child(new Folder(parent, name));
        if (mountNames_.contains(child->name) && mountPoints_.contains(child->path())) {
            addMountPoint(child->path());
            return {};
        }
        child->descriptor = FileDescriptor(Platform::openFolderAt(parent->descriptor.get(), name));
        if (!child->descriptor && isGone(errno))
            return {};
        const auto identity = identityOf(*child);
        if (!identity) {
            addUnreadable();
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
    FileDescriptor reopened(const Folder& folder) {
        FileDescriptor current;
        for (const Folder* step : folder.chain()) {
            const int opened = step->parent ? Platform::openFolderAt(current.get(), step->name.c_str())
                                            : Platform::openFolder(step->name);
            if (opened < 0 && !isGone(errno))
                addUnreadable();
            current = FileDescriptor(opened);
            const auto identity = Platform::folderIdentity(opened);
            if (!identity || identity->device != step->identity.device ||
                identity->inode != step->identity.inode)
                return {};
        }
        return current;
    }

    void list(Folder& folder) {
        static thread_local const auto buffer = std::make_unique<Platform::FolderBuffer>();
        SizeResult own;
        auto newest = std::numeric_limits<std::int64_t>::min();
        Platform::FolderReader reader(folder.descriptor.get(), *buffer, Platform::EntryFacts::sizes);
        while (const auto* entry = reader.next()) {
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
            own.bytes = addChecked(own.bytes, entry->allocatedBytes);
            own.logicalBytes = addChecked(own.logicalBytes, entry->logicalBytes);
            own.files += 1;
            newest = std::max(newest, entry->modifiedSeconds);
        }
        if (options_.trackNewest && own.files > 0)
            own.newest = instantFromSeconds(newest);
        own.unreadable = reader.failed() ? 1 : 0;
        add(own);
    }

    void add(const SizeResult& own) {
        const std::scoped_lock lock(mutex_);
        result_.bytes = addChecked(result_.bytes, own.bytes);
        result_.logicalBytes = addChecked(result_.logicalBytes, own.logicalBytes);
        result_.files += own.files;
        result_.unreadable += own.unreadable;
        result_.newest = std::max(result_.newest, own.newest);
    }

    void addUnreadable() { add({.unreadable = 1}); }

    void addMountPoint(std::string path) {
        const std::scoped_lock lock(mutex_);
        result_.mountPoints.push_back(std::move(path));
    }

    Options options_;
    int mostDescriptors_ = mostDescriptors();
    std::unordered_set<std::string> mountPoints_;
    std::unordered_set<std::string>
        mountNames_; ///< last components, to build a path only where it may be one
    WalkPool::Tasks tasks_;
    std::mutex mutex_;
    SizeResult result_; ///< under `mutex_` while tasks run
};

} // namespace

SizeResult measure(const std::string& path, Options options) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0)
        return {.unreadable = 1};
    if (S_ISLNK(status.st_mode))
        return {};
    if (S_ISDIR(status.st_mode))
        return Walk(path, options).run(path);
    return {.bytes = multiplyChecked<std::int64_t>(status.st_blocks, 512),
            .logicalBytes = status.st_size,
            .files = 1,
            .newest = instantFromSeconds(status.st_mtime)};
}

std::unordered_map<std::string, SizeResult> measureAll(const std::vector<std::string>& paths,
                                                       BatchOptions options) {
    std::unordered_map<std::string, SizeResult> results;
    std::mutex mutex;
    runInSlidingWindow(paths.size(), options.concurrency, [&](std::size_t index) {
        auto result = measure(paths[index], {.trackNewest = options.trackNewest});
        const std::scoped_lock lock(mutex);
        results.insert_or_assign(paths[index], std::move(result));
    });
    return results;
}

} // namespace korvanti::SizeCalculator
