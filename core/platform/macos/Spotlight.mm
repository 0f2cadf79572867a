#include "platform/Platform.h"

#import <CoreServices/CoreServices.h>
#import <Foundation/Foundation.h>

#if !__has_feature(objc_arc)
#error "Compile with -fobjc-arc"
#endif

namespace korvanti::Platform {

SpotlightUsage applicationUsage(const std::string& bundle) {
    if (bundle.empty())
        return {};
    @autoreleasepool {
        NSURL* url = [NSURL fileURLWithFileSystemRepresentation:bundle.c_str()
                                                    isDirectory:YES
                                                  relativeToURL:nil];
        if (!url)
            return {};
        id item = CFBridgingRelease(MDItemCreateWithURL(kCFAllocatorDefault, (__bridge CFURLRef)url));
        if (!item)
            return {};
        id date = CFBridgingRelease(MDItemCopyAttribute((__bridge MDItemRef)item, kMDItemLastUsedDate));
        // An attribute that the headers do not name.
        id count = CFBridgingRelease(
            MDItemCopyAttribute((__bridge MDItemRef)item, (__bridge CFStringRef) @"kMDItemUseCount"));

        SpotlightUsage usage;
        if ([date isKindOfClass:[NSDate class]])
            usage.lastUsed = instantFromReference([date timeIntervalSinceReferenceDate]);
        if ([count isKindOfClass:[NSNumber class]])
            usage.useCount = [count longLongValue];
        return usage;
    }
}

} // namespace korvanti::Platform
