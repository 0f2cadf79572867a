#include "platform/Platform.h"

#import <Foundation/Foundation.h>

#if !__has_feature(objc_arc)
#error "Compile with -fobjc-arc"
#endif

namespace korvanti::Platform {

// A fresh URL for each question: a URL remembers the values that it once gave.
VolumeCapacity volumeCapacity(const std::string& path) {
    if (path.empty())
        return {};
    @autoreleasepool {
        NSURL* url = [NSURL fileURLWithFileSystemRepresentation:path.c_str()
                                                    isDirectory:YES
                                                  relativeToURL:nil];
        NSDictionary<NSURLResourceKey, id>* values = [url resourceValuesForKeys:@[
            NSURLVolumeTotalCapacityKey, NSURLVolumeAvailableCapacityKey,
            NSURLVolumeAvailableCapacityForImportantUsageKey
        ]
                                                                          error:nil];
        NSNumber* total = values[NSURLVolumeTotalCapacityKey];
        NSNumber* available = values[NSURLVolumeAvailableCapacityKey];
        NSNumber* important = values[NSURLVolumeAvailableCapacityForImportantUsageKey];

        VolumeCapacity capacity{.total = total.longLongValue, .available = available.longLongValue};
        // 0 stands for "not told": exFAT, NTFS, network volumes and some external ones always answer it.
        if (important.longLongValue > 0)
            capacity.availableImportant = important.longLongValue;
        return capacity;
    }
}

} // namespace korvanti::Platform
