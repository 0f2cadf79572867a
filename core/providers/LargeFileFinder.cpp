#include "providers/LargeFileFinder.h"

#include "base/FileDescriptor.h"
#include "base/Formatters.h"
#include "base/Text.h"
#include "fs/PathTools.h"
#include "platform/Platform.h"
#include "providers/FileKinds.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <string_view>
#include <utility>

namespace korvanti::LargeFileFinder {
namespace {

using Platform::EntryKind;

/// Folders of the home folder that other providers look after, or that are not the user's alone.
constexpr std::string_view foldersOfOthers[] = {"Library", "Applications", "Downloads", "Public"};

/// So many folders are held open on the way down, beside the home folder.
constexpr std::size_t mostOpen = 32;

/// A folder between the home folder and where the walk stands.
struct Folder {
    std::size_t pathLength; ///< its path is the start of the walk's
    Platform::FolderIdentity identity;
    FileDescriptor descriptor;           ///< none while more than `mostOpen` folders below it are open
    std::vector<std::string> subfolders; ///< names still to be walked, the next one last
};

class Walk {
public:
    Walk(const ScanContext& context, std::int64_t leastBytes)
        : now_(context.now), leastBytes_(leastBytes), path_(context.home) {
        std::ranges::transform(context.devRoots, std::back_inserter(excludedRoots_), PathTools::resolved);
    }

    std::vector<CleanupItem> run() {
        FileDescriptor home(Platform::openFolder(path_, Platform::Links::follow));
        if (const auto identity = Platform::folderIdentity(home.get()))
            enter(std::move(home), *identity);
        while (!chain_.empty()) {
            if (chain_.back().subfolders.empty())
                goUp();
            else
                goDown();
        }
        return std::move(items_);
    }

private:
    void goDown() {
        Folder& parent = chain_.back();
        const std::string name = std::move(parent.subfolders.back());
        parent.subfolders.pop_back();
        FileDescriptor descriptor(Platform::openFolderAt(parent.descriptor.get(), name.c_str()));
        const auto identity = Platform::folderIdentity(descriptor.get());
        if (!identity || identity->mountRoot || identity->device != parent.identity.device)
            return;
        path_ = PathTools::joined(path_, name);
        enter(std::move(descriptor), *identity);
        if (chain_.size() > mostOpen + 1)
            chain_[chain_.size() - mostOpen - 1].descriptor.reset();
    }

    /// A parent that was closed is reached through its child, since its path may be too long to be opened.
    void goUp() {
        const FileDescriptor left = std::move(chain_.back().descriptor);
        chain_.pop_back();
        if (chain_.empty())
            return;
        Folder& parent = chain_.back();
        if (!parent.descriptor) {
            parent.descriptor = FileDescriptor(Platform::openFolderAt(left.get(), ".."));
            if (Platform::folderIdentity(parent.descriptor.get()) != parent.identity)
                chain_.erase(chain_.begin() + 1, chain_.end()); // moved away: on with the rest of the home
        }
        path_.resize(chain_.back().pathLength);
    }

    void enter(FileDescriptor descriptor, const Platform::FolderIdentity& identity) {
        chain_.push_back({path_.size(), identity, std::move(descriptor), {}});
        list(chain_.back());
    }

    void list(Folder& folder) {
        const bool isHome = chain_.size() == 1;
        Platform::FolderReader reader(folder.descriptor.get(), *buffer_, Platform::EntryFacts::everything);
        while (const auto* entry = reader.next()) {
            if (entry->hidden || entry->name.starts_with('.'))
                continue;
            if (entry->kind == EntryKind::folder && isEntered(*entry) && (!isHome || isChosen(entry->name)))
                folder.subfolders.emplace_back(entry->name);
            if (entry->kind == EntryKind::file && !isHome && entry->allocatedBytes >= leastBytes_)
                items_.push_back(item(PathTools::joined(path_, entry->name), entry->allocatedBytes,
                                      entry->modifiedSeconds.transform(instantFromSeconds), now_));
        }
        std::ranges::reverse(folder.subfolders);
    }

    [[nodiscard]] bool isEntered(const Platform::FolderEntry& folder) const {
        if (folder.mountPoint || folder.package)
            return false;
        return PathTools::pathExtension(folder.name).empty() ||
               !Platform::isPackage(PathTools::joined(path_, folder.name));
    }

    /// A folder in the home folder that neither is, holds nor lies in a project root. So no project root
    /// comes up further down.
    [[nodiscard]] bool isChosen(std::string_view name) const {
        if (std::ranges::find(foldersOfOthers, name) != std::end(foldersOfOthers))
            return false;
        const auto folder = PathTools::resolved(PathTools::joined(path_, name));
        return std::ranges::none_of(excludedRoots_, [&folder](const std::string& root) {
            return PathTools::isSameOrAncestor(root, folder) || PathTools::isSameOrAncestor(folder, root);
        });
    }

    Instant now_;
    std::int64_t leastBytes_;
    std::vector<std::string> excludedRoots_; ///< resolved
    std::string path_;                       ///< of the folder in which the walk stands
    std::vector<Folder> chain_;              ///< from the home folder down to that one
    std::unique_ptr<Platform::FolderBuffer> buffer_ = std::make_unique<Platform::FolderBuffer>();
    std::vector<CleanupItem> items_;
};

std::string_view kindLabel(std::string_view path) {
    const auto extension = Text::lowercased(PathTools::pathExtension(path));
    const auto& kinds = FileKinds::largeFiles();
    const auto kind = std::ranges::find_if(kinds, [&extension](const FileKinds::Kind& candidate) {
        return candidate.extensions.contains(extension);
    });
    return kind == kinds.end() ? FileKinds::otherLabel : kind->label;
}

} // namespace

std::vector<CleanupItem> find(const ScanContext& context, std::int64_t leastBytes) {
    return Walk(context, leastBytes).run();
}

CleanupItem item(const std::string& path, std::int64_t bytes, std::optional<Instant> modified, Instant now) {
    const std::string folder(PathTools::parent(path));
    const auto age = modified ? "diubah " + Formatters::relative(*modified, now) : std::string();
    return CleanupItem::make({.title = std::string(PathTools::lastComponent(path)),
                              .detail = std::string(kindLabel(path)) + " berukuran besar di " +
                                        PathTools::abbreviatingHome(folder) + ", " + age +
                                        ". Hapus bila sudah tidak dibutuhkan, atau pindahkan ke SSD.",
                              .path = path,
                              .bytes = bytes,
                              .category = ItemCategory::personal,
                              .safety = Safety::review,
                              .action = CleanupAction::trash(),
                              .lastActivity = modified,
                              .offloadable = true});
}

} // namespace korvanti::LargeFileFinder
