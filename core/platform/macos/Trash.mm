#include "platform/EntryKinds.h"
#include "platform/Platform.h"

#import <Foundation/Foundation.h>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

#if !__has_feature(objc_arc)
#error "Compile with -fobjc-arc"
#endif

namespace korvanti::Platform {
namespace {

/// The system's number where Cocoa's code stands for one.
FileError errorOf(NSError* error, const std::string& path) {
    int number = EIO;
    if ([error.domain isEqualToString:NSCocoaErrorDomain]) {
        switch (error.code) {
        case 257: // NSFileReadNoPermissionError
        case 513: // NSFileWriteNoPermissionError
            number = EACCES;
            break;
        case 4:   // NSFileNoSuchFileError
        case 260: // NSFileReadNoSuchFileError
            number = ENOENT;
            break;
        default:
            break;
        }
    }
    FileError converted = fileErrorOf(number, path);
    if (const char* text = error.localizedDescription.UTF8String)
        converted.systemText = text;
    return converted;
}

/// 0 when the path leads to the very entry that was held, otherwise the system's error number.
int lookAgain(const TrashRequest& request) {
    struct stat held {};
    struct stat found {};
    if (::fstatat(request.folder, request.name.c_str(), &held, AT_SYMLINK_NOFOLLOW) != 0 ||
        ::lstat(request.path.c_str(), &found) != 0)
        return errno;
    return identityOf(held) == request.identity && identityOf(found) == request.identity ? 0 : ESTALE;
}

} // namespace

// The system's call takes a path, so the last look before it is as close as it gets.
std::expected<void, FileError> moveToTrash(const TrashRequest& request) {
    @autoreleasepool {
        if (const int error = lookAgain(request))
            return std::unexpected(fileErrorOf(error, request.path));
        NSURL* url = [NSURL fileURLWithFileSystemRepresentation:request.path.c_str()
                                                    isDirectory:NO
                                                  relativeToURL:nil];
        if (!url)
            return std::unexpected(fileErrorOf(EILSEQ, request.path));
        NSURL* arrived = nil;
        NSError* error = nil;
        if (![NSFileManager.defaultManager trashItemAtURL:url resultingItemURL:&arrived error:&error])
            return std::unexpected(errorOf(error, request.path));
        // The Trash itself may be hidden from this program: then there is nothing to see.
        struct stat moved {};
        const char* const place = arrived.fileSystemRepresentation;
        if (place && ::lstat(place, &moved) == 0 && identityOf(moved) != request.identity)
            return std::unexpected(fileErrorOf(ESTALE, request.path));
        return {};
    }
}

} // namespace korvanti::Platform
