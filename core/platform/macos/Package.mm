#include "platform/Platform.h"

#import <Foundation/Foundation.h>

#if !__has_feature(objc_arc)
#error "Compile with -fobjc-arc"
#endif

namespace korvanti::Platform {

bool isPackage(const std::string& path) {
    if (path.empty())
        return false;
    @autoreleasepool {
        NSURL* url = [NSURL fileURLWithFileSystemRepresentation:path.c_str()
                                                    isDirectory:YES
                                                  relativeToURL:nil];
        NSNumber* package = [url resourceValuesForKeys:@[ NSURLIsPackageKey ] error:nil][NSURLIsPackageKey];
        return package.boolValue;
    }
}

} // namespace korvanti::Platform
