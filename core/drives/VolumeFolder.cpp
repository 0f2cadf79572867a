#include "drives/VolumeFolder.h"

#include "base/SystemCall.h"
#include "fs/FolderChain.h"
#include "fs/MountTable.h"
#include "fs/PathTools.h"

#include <cerrno>
#include <sys/file.h>
#include <utility>

namespace korvanti {

std::expected<VolumeFolder, FileError> VolumeFolder::open(const std::string& mountPath) {
    if (mountPath.contains('\0'))
        return std::unexpected(fileErrorOf(EINVAL, mountPath));
    VolumeFolder volume;
    volume.mountPath_ = PathTools::withoutTrailingSlashes(mountPath);
    volume.root_ = FileDescriptor(Platform::openFolder(volume.mountPath_));
    const auto identity = volume.root_ ? Platform::folderIdentity(volume.root_.get())
                                       : std::nullopt; // `errno` is the first one's
    if (!identity)
        return std::unexpected(lastFileError(volume.mountPath_));
    volume.identity_ = *identity;
    return volume;
}

// What is held is asked as well: numbers of devices are given again once a drive has dropped out.
bool VolumeFolder::isStillThere() const {
    const FileDescriptor now(Platform::openFolder(mountPath_));
    return now && Platform::folderIdentity(now.get()) == identity_ &&
           Platform::folderIdentity(root_.get()) == identity_;
}

bool VolumeFolder::isMounted() const {
    const FileDescriptor above(Platform::openPassageAt(root_.get(), ".."));
    const auto identity = above ? Platform::folderIdentity(above.get()) : std::nullopt;
    return identity_.mountRoot || (identity && identity->device != identity_.device);
}

std::expected<VolumeFolder::Lock, FileError> VolumeFolder::lock() const {
    if (uninterrupted([&] { return ::flock(root_.get(), LOCK_EX | LOCK_NB); }) != 0 && errno == EWOULDBLOCK)
        return std::unexpected(fileErrorOf(EBUSY, mountPath_));
    return Lock(root_.get());
}

VolumeFolder::Lock::~Lock() {
    if (folder_ >= 0)
        uninterrupted([&] { return ::flock(folder_, LOCK_UN); });
}

std::expected<FileDescriptor, FileError> VolumeFolder::createFolders(std::string_view relative) const {
    const auto path = PathTools::joined(mountPath_, relative);
    auto folder = FolderChain::create(root_.get(), mountPath_, relative);
    if (!folder)
        return folder;
    const auto identity = Platform::folderIdentity(folder->get());
    if (!identity)
        return std::unexpected(lastFileError(path));
    if (identity->device != identity_.device)
        return std::unexpected(fileErrorOf(EXDEV, path));
    return folder;
}

std::expected<void, FileError> VolumeFolder::flush() const {
    if (const int error = Platform::flushVolume(root_.get()))
        return std::unexpected(fileErrorOf(error, mountPath_));
    return {};
}

std::expected<AdmittedEntry, SafetyGuard::Refusal> VolumeFolder::admit(const std::string& path) const {
    const auto ours = PathTools::joined(mountPath_, offloadFolder) + "/";
    if (!path.starts_with(ours) || !PathTools::leadsDown(std::string_view(path).substr(ours.size())))
        return std::unexpected(GuardError{GuardError::Kind::outsideAllowedRoots, path});
    auto entry = PinnedEntry::open(mountPath_, path);
    if (!entry)
        return std::unexpected(entry.error());
    if (!isStillThere() || entry->identity().device != identity_.device)
        return std::unexpected(fileErrorOf(EXDEV, path));
    const auto table = MountTable::all();
    if (table.empty()) // no answer is a refusal
        return std::unexpected(fileErrorOf(EIO, path));
    for (const auto& point : table) {
        if (PathTools::isSameOrAncestor(path, point))
            return std::unexpected(GuardError{GuardError::Kind::containsMountPoint, point});
    }
    return AdmittedEntry(std::move(*entry));
}

} // namespace korvanti
