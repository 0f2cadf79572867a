#include "drives/VolumeService.h"

#include "analysis/DiskInspector.h"
#include "base/Text.h"
#include "fs/PathTools.h"

#include <algorithm>
#include <chrono>

namespace korvanti::VolumeService {
namespace {

const PropertyList* find(const PropertyList::Dictionary& info, const std::string& key) {
    const auto entry = info.find(key);
    return entry == info.end() ? nullptr : &entry->second;
}

std::optional<std::string> text(const PropertyList::Dictionary& info, const std::string& key) {
    const auto* value = find(info, key);
    return value ? value->text() : std::nullopt;
}

std::optional<bool> boolean(const PropertyList::Dictionary& info, const std::string& key) {
    const auto* value = find(info, key);
    return value ? value->boolean() : std::nullopt;
}

} // namespace

std::vector<VolumeInfo> externalVolumes() {
    std::vector<VolumeInfo> volumes;
    for (const auto& mounted : Platform::mountedVolumes()) {
        if (isExternal(mounted))
            volumes.push_back(volumeInfo(
                mounted,
                DiskInspector::diskutilInfo(mounted.mountPath).value_or(PropertyList::Dictionary())));
    }
    return volumes;
}

bool isExternal(const Platform::MountedVolume& mounted) {
    return mounted.isLocal.value_or(false) && !mounted.isRootFileSystem.value_or(false) &&
           mounted.mountPath.starts_with("/Volumes/");
}

VolumeInfo volumeInfo(const Platform::MountedVolume& mounted, const PropertyList::Dictionary& info) {
    const auto toldType = Text::lowercased(text(info, "FilesystemType").value_or(""));
    const auto encryption = boolean(info, "Encryption");

    VolumeInfo volume;
    volume.name = mounted.name.value_or(std::string(PathTools::lastComponent(mounted.mountPath)));
    volume.mountPath = mounted.mountPath;
    volume.uuid = mounted.uuid;
    volume.fsType = toldType.empty() ? mounted.fsType : toldType;
    volume.formatName =
        text(info, "FilesystemUserVisibleName").value_or(mounted.formatDescription.value_or(volume.fsType));
    volume.isInternal = mounted.isInternal.value_or(false);
    volume.isEjectable = mounted.isEjectable.value_or(mounted.isRemovable.value_or(true));
    volume.total = mounted.total.value_or(0);
    volume.free = mounted.available.value_or(0);
    volume.busProtocol = text(info, "BusProtocol");
    volume.solidState = boolean(info, "SolidState");
    volume.ownersEnabled = boolean(info, "GlobalPermissionsEnabled");
    volume.encrypted = encryption ? encryption : boolean(info, "FileVault");
    volume.smart = DiskInspector::smart(info);
    volume.deviceIdentifier = text(info, "DeviceIdentifier");
    return volume;
}

std::optional<VolumeInfo> volume(const std::optional<std::string>& uuid) {
    if (!uuid)
        return std::nullopt;
    auto volumes = externalVolumes();
    const auto found = std::ranges::find(volumes, uuid, &VolumeInfo::uuid);
    return found == volumes.end() ? std::nullopt : std::optional(std::move(*found));
}

ShellResult eject(const VolumeInfo& volume) {
    return Shell::run("/usr/sbin/diskutil", {"eject", volume.mountPath},
                      {.timeout = std::chrono::seconds(60)});
}

} // namespace korvanti::VolumeService
