#include "cleaning/TreeRemover.h"

#include "base/FileDescriptor.h"
#include "base/SystemCall.h"
#include "fs/PathTools.h"
#include "fs/WalkPool.h"
#include "platform/Platform.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <fcntl.h>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

namespace korvanti::TreeRemover {
namespace {

using Platform::EntryKind;

/// 0, or the system's error number.
int removeName(int folder, const std::string& name, int flags) {
    return uninterrupted([&] { return ::unlinkat(folder, name.c_str(), flags); }) == 0 ? 0 : errno;
}

/// A folder held open and listed whole.
struct Folder {
    std::string name; ///< in its parent
    FileDescriptor descriptor;
    Platform::FolderIdentity identity;
    std::vector<PathTools::Entry> left; ///< what is still to go
};

/// The system's error number where it can't be entered or its listing is not whole; EXDEV where another
/// volume begins, that is where the device is not `device`.
std::expected<Folder, int> enter(int parent, std::string name, std::uint64_t device) {
    FileDescriptor descriptor(Platform::openFolderAt(parent, name.c_str()));
    const auto identity = descriptor ? Platform::folderIdentity(descriptor.get()) : std::nullopt;
    if (!identity)
        return std::unexpected(errno);
    if (identity->mountRoot || identity->device != device)
        return std::unexpected(EXDEV);
    auto entries = PathTools::entries(descriptor.get());
    if (!entries)
        return std::unexpected(entries.error().value());
    return Folder{std::move(name), std::move(descriptor), *identity, std::move(*entries)};
}

/// The first error of one removal. Safe from any thread.
class FirstError {
public:
    /// What is gone already is no error. `path` (-> std::string) is asked for only where it is needed.
    template <class Path> void note(int error, const Path& path) {
        if (error == 0 || error == ENOENT)
            return;
        const std::scoped_lock lock(mutex_);
        if (!error_)
            error_ = fileErrorOf(error, path());
    }

    [[nodiscard]] std::optional<FileError> get() const {
        const std::scoped_lock lock(mutex_);
        return error_;
    }

private:
    mutable std::mutex mutex_;
    std::optional<FileError> error_;
};

/// Removes one folder with all that is in it, on one thread. Goes down and up again in a loop.
class Descent {
public:
    Descent(int parent, std::string path, std::uint64_t device, FirstError& errors)
        : parent_(parent), path_(std::move(path)), device_(device), errors_(errors) {}

    void run(const std::string& name) {
        goDown(parent_, name);
        while (!chain_.empty()) {
            Folder& folder = chain_.back();
            if (folder.left.empty()) {
                goUp();
                continue;
            }
            const auto entry = std::move(folder.left.back());
            folder.left.pop_back();
            if (entry.kind == EntryKind::folder)
                goDown(folder.descriptor.get(), entry.name);
            else
                note(removeName(folder.descriptor.get(), entry.name, 0), entry.name);
        }
    }

private:
    void goDown(int parent, const std::string& name) {
        auto folder = enter(parent, name, device_);
        if (!folder)
            return note(folder.error(), name);
        chain_.push_back(std::move(*folder));
        if (chain_.size() > mostOpen)
            chain_[chain_.size() - mostOpen - 1].descriptor.reset();
    }

    /// A parent that was closed is reached through its child, since its path may be too long to be opened.
    void goUp() {
        const Folder emptied = std::move(chain_.back());
        chain_.pop_back();
        int parent = parent_;
        if (!chain_.empty()) {
            Folder& holder = chain_.back();
            if (!holder.descriptor) {
                holder.descriptor = FileDescriptor(Platform::openFolderAt(emptied.descriptor.get(), ".."));
                const auto identity =
                    holder.descriptor ? Platform::folderIdentity(holder.descriptor.get()) : std::nullopt;
                if (identity != holder.identity) { // moved away: there is no way back
                    note(identity ? ESTALE : errno, emptied.name);
                    return chain_.clear();
                }
            }
            parent = holder.descriptor.get();
        }
        note(removeName(parent, emptied.name, AT_REMOVEDIR), emptied.name);
    }

    /// `name` is one in the innermost folder.
    void note(int error, const std::string& name) {
        errors_.note(error, [&] {
            std::string path = path_;
            for (const auto& folder : chain_)
                path.append("/").append(folder.name);
            return path.append("/").append(name);
        });
    }

    static constexpr std::size_t mostOpen = 4; // a thread; there are many

    int parent_;
    std::string path_; ///< of the parent
    std::uint64_t device_;
    FirstError& errors_;
    std::vector<Folder> chain_; ///< from the outermost folder to the one being emptied
};

/// Empties the root of one removal. Near the top, where a folder holds many others, these go side by side.
class Emptying {
public:
    explicit Emptying(const PinnedEntry& root) : root_(root) {}

    std::optional<FileError> run() {
        WalkPool::run([&] {
            const auto parent = Platform::folderIdentity(root_.parent());
            if (!parent)
                return errors_.note(errno, [&] { return root_.path(); });
            device_ = parent->device;
            auto folder = enter(root_.folder(), ".", device_);
            if (!folder)
                return errors_.note(folder.error(), [&] { return root_.path(); });
            empty(std::make_shared<Shared>(errors_, nullptr, "", root_.path(), std::move(folder->descriptor)),
                  folder->left, 1);
            tasks_.wait();
        });
        return errors_.get();
    }

private:
    /// A folder near the top, owned by those who empty it; the last of them to go removes it. The outermost
    /// is left to who began.
    struct Shared {
        FirstError& errors;
        std::shared_ptr<Shared> parent;
        std::string name;
        std::string path;
        FileDescriptor descriptor;

        Shared(FirstError& allErrors, std::shared_ptr<Shared> holder, std::string ownName,
               std::string ownPath, FileDescriptor ownDescriptor)
            : errors(allErrors), parent(std::move(holder)), name(std::move(ownName)),
              path(std::move(ownPath)), descriptor(std::move(ownDescriptor)) {}
        Shared(const Shared&) = delete;
        Shared& operator=(const Shared&) = delete;
        ~Shared() {
            if (parent)
                errors.note(removeName(parent->descriptor.get(), name, AT_REMOVEDIR), [&] { return path; });
        }
    };
    using SharedPointer = std::shared_ptr<Shared>;

    /// What is in a folder of the given depth below the root.
    void empty(const SharedPointer& folder, const std::vector<PathTools::Entry>& entries, int depth) {
        std::vector<std::string> subfolders;
        for (const auto& entry : entries) {
            if (entry.kind == EntryKind::folder)
                subfolders.push_back(entry.name);
            else
                errors_.note(removeName(folder->descriptor.get(), entry.name, 0),
                             [&] { return PathTools::joined(folder->path, entry.name); });
        }
        constexpr std::size_t many = 8; // below that, threads cost more than they bring
        for (const auto& name : subfolders) {
            if (subfolders.size() >= many)
                tasks_.start([this, folder, name, depth] { remove(folder, name, depth); });
            else
                remove(folder, name, depth);
        }
    }

    void remove(const SharedPointer& parent, const std::string& name, int depth) {
        constexpr int deepestShared = 4;
        if (depth > deepestShared)
            return Descent(parent->descriptor.get(), parent->path, device_, errors_).run(name);
        auto path = PathTools::joined(parent->path, name);
        auto folder = enter(parent->descriptor.get(), name, device_);
        if (!folder)
            return errors_.note(folder.error(), [&] { return path; });
        empty(std::make_shared<Shared>(errors_, parent, name, std::move(path), std::move(folder->descriptor)),
              folder->left, depth + 1);
    }

    const PinnedEntry& root_;
    std::uint64_t device_ = 0;
    FirstError errors_;
    WalkPool::Tasks tasks_;
};

/// If it is still the one that is held.
std::expected<void, FileError> removeEntry(const PinnedEntry& entry, int flags) {
    if (auto there = entry.stillThere(); !there)
        return there;
    if (const int error = removeName(entry.parent(), entry.name(), flags))
        return std::unexpected(fileErrorOf(error, entry.path()));
    return {};
}

} // namespace

std::expected<void, FileError> remove(const AdmittedEntry& admitted) {
    const PinnedEntry& entry = admitted.entry();
    if (entry.isFolder()) {
        if (auto error = Emptying(entry).run())
            return std::unexpected(std::move(*error));
        return removeIfEmpty(admitted);
    }
    return removeEntry(entry, 0);
}

std::expected<void, FileError> removeIfEmpty(const AdmittedEntry& admitted) {
    return removeEntry(admitted.entry(), AT_REMOVEDIR);
}

} // namespace korvanti::TreeRemover
