#include "base/FileDescriptor.h"
#include "platform/Platform.h"
#include "platform/linux/FileSystemKinds.h"
#include "platform/linux/KernelFile.h"
#include "platform/linux/MountInfo.h"
#include "platform/linux/UdevRecord.h"

#include <climits>
#include <fcntl.h>
#include <fmt/format.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace korvanti::Platform {
namespace {

/// The number of the block device behind a mount. Some file systems show one of their own in its place, and
/// only name the device.
dev_t deviceOf(const MountRecord& mount) {
    struct stat source {};
    if (mount.source.starts_with("/dev/") && ::stat(mount.source.c_str(), &source) == 0 &&
        S_ISBLK(source.st_mode))
        return source.st_rdev;
    return makedev(mount.major, mount.minor);
}

std::string numberText(dev_t device) {
    return fmt::format("{}:{}", major(device), minor(device));
}

/// The name of the link in a folder of /dev/disk that leads to the device.
std::optional<std::string> linkTo(dev_t device, const std::string& folder) {
    const FileDescriptor links(openFolder(folder));
    if (!links)
        return std::nullopt;
    const auto buffer = std::make_unique<FolderBuffer>();
    FolderReader reader(links.get(), *buffer, EntryFacts::names);
    while (const auto* entry = reader.next()) {
        const std::string name(entry->name);
        struct stat target {};
        if (::fstatat(links.get(), name.c_str(), &target, 0) == 0 && S_ISBLK(target.st_mode) &&
            target.st_rdev == device)
            return decodedUdevName(name);
    }
    return std::nullopt;
}

/// What its device is called and what it hangs on.
void addDeviceFacts(MountedVolume& volume, dev_t device) {
    const auto record = udevRecordFromText(kernelFile("/run/udev/data/b" + numberText(device)));
    volume.name = record.label ? record.label : linkTo(device, "/dev/disk/by-label");
    volume.uuid = record.uuid ? record.uuid : linkTo(device, "/dev/disk/by-uuid");

    const std::string hardware = "/sys/dev/block/" + numberText(device);
    char target[PATH_MAX];
    const auto length = ::readlink(hardware.c_str(), target, sizeof target);
    const std::string_view way(target, length > 0 ? static_cast<std::size_t>(length) : 0);
    if (way.contains("/virtual/")) // made of files, of memory or of other devices
        return;
    if (way.contains("/usb")) {
        volume.isInternal = false;
        volume.isEjectable = true;
    }
    auto removable = kernelFile(hardware + "/removable");
    if (removable.empty()) // a partition: its disk is the one that tells
        removable = kernelFile(hardware + "/../removable");
    if (!removable.empty())
        volume.isRemovable = removable.starts_with('1');
}

} // namespace

std::vector<MountedVolume> mountedVolumes() {
    std::vector<MountedVolume> volumes;
    for (const auto& mount : visibleMounts(mountRecordsFromMountInfo(kernelFile("/proc/self/mountinfo")))) {
        if (isPseudoFileSystem(mount.fsType))
            continue;
        MountedVolume volume{.mountPath = mount.mountPoint, .fsType = mount.fsType};
        volume.isLocal = !isNetworkFileSystem(mount.fsType);
        volume.isRootFileSystem = mount.mountPoint == "/";
        if (*volume.isLocal) { // whoever asks another computer may wait for ever
            const auto capacity = volumeCapacity(mount.mountPoint);
            volume.total = capacity.total;
            volume.available = capacity.available;
            addDeviceFacts(volume, deviceOf(mount));
        }
        volumes.push_back(std::move(volume));
    }
    return volumes;
}

} // namespace korvanti::Platform
