#include "platform/Platform.h"

#import <Foundation/Foundation.h>

#include <sys/mount.h>
#include <sys/param.h>

#if !__has_feature(objc_arc)
#error "Compile with -fobjc-arc"
#endif

namespace korvanti::Platform {
namespace {

std::optional<std::string> text(id value) {
    const char* const bytes = [value isKindOfClass:[NSString class]] ? [value UTF8String] : nullptr;
    return bytes ? std::optional<std::string>(bytes) : std::nullopt;
}

std::optional<bool> boolean(id value) {
    return [value isKindOfClass:[NSNumber class]] ? std::optional<bool>([value boolValue]) : std::nullopt;
}

std::optional<std::int64_t> number(id value) {
    return [value isKindOfClass:[NSNumber class]] ? std::optional<std::int64_t>([value longLongValue])
                                                  : std::nullopt;
}

std::string fileSystemType(const std::string& path) {
    struct statfs volume {};
    return ::statfs(path.c_str(), &volume) == 0 ? volume.f_fstypename : "";
}

} // namespace

std::vector<MountedVolume> mountedVolumes() {
    @autoreleasepool {
        NSArray<NSURLResourceKey>* keys = @[
            NSURLVolumeNameKey, NSURLVolumeIsInternalKey, NSURLVolumeIsEjectableKey,
            NSURLVolumeIsRemovableKey, NSURLVolumeTotalCapacityKey, NSURLVolumeAvailableCapacityKey,
            NSURLVolumeUUIDStringKey, NSURLVolumeLocalizedFormatDescriptionKey, NSURLVolumeIsLocalKey,
            NSURLVolumeIsRootFileSystemKey
        ];
        NSArray<NSURL*>* urls = [NSFileManager.defaultManager
            mountedVolumeURLsIncludingResourceValuesForKeys:keys
                                                    options:NSVolumeEnumerationSkipHiddenVolumes];
        std::vector<MountedVolume> volumes;
        for (NSURL* url in urls) {
            NSDictionary<NSURLResourceKey, id>* values = [url resourceValuesForKeys:keys error:nil];
            const char* const path = url.fileSystemRepresentation;
            if (!values || !path)
                continue;
            MountedVolume volume{.mountPath = path};
            volume.name = text(values[NSURLVolumeNameKey]);
            volume.uuid = text(values[NSURLVolumeUUIDStringKey]);
            volume.formatDescription = text(values[NSURLVolumeLocalizedFormatDescriptionKey]);
            volume.isInternal = boolean(values[NSURLVolumeIsInternalKey]);
            volume.isEjectable = boolean(values[NSURLVolumeIsEjectableKey]);
            volume.isRemovable = boolean(values[NSURLVolumeIsRemovableKey]);
            volume.isLocal = boolean(values[NSURLVolumeIsLocalKey]);
            volume.isRootFileSystem = boolean(values[NSURLVolumeIsRootFileSystemKey]);
            volume.total = number(values[NSURLVolumeTotalCapacityKey]);
            volume.available = number(values[NSURLVolumeAvailableCapacityKey]);
            if (volume.isLocal == true) // a server may not answer any more
                volume.fsType = fileSystemType(volume.mountPath);
            volumes.push_back(std::move(volume));
        }
        return volumes;
    }
}

} // namespace korvanti::Platform
