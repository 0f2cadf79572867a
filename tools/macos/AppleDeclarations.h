// What our Objective-C++ uses of Apple's frameworks and GNUstep's headers lack, with the signatures that
// Apple documents. Read by tools/check-macos right behind GNUstep's <Foundation/Foundation.h>, never by a
// real build. Keep it to what is used, and copy each signature from Apple's documentation.
#pragma once

typedef NSString* NSURLResourceKey;

extern "C" NSURLResourceKey const NSURLVolumeAvailableCapacityForImportantUsageKey;
extern "C" NSURLResourceKey const NSURLVolumeIsRootFileSystemKey;

@interface NSURL (AppleDeclarations)
@property(readonly) const char* fileSystemRepresentation;
+ (NSURL*)fileURLWithFileSystemRepresentation:(const char*)path
                                  isDirectory:(BOOL)isDir
                                relativeToURL:(NSURL*)baseURL;
- (NSDictionary<NSURLResourceKey, id>*)resourceValuesForKeys:(NSArray<NSURLResourceKey>*)keys
                                                       error:(NSError**)error;
@end

typedef NS_OPTIONS(NSUInteger, NSVolumeEnumerationOptions) {
    NSVolumeEnumerationSkipHiddenVolumes = 1UL << 1,
    NSVolumeEnumerationProduceFileReferenceURLs = 1UL << 2,
};

@interface NSFileManager (AppleDeclarations)
- (NSArray<NSURL*>*)mountedVolumeURLsIncludingResourceValuesForKeys:(NSArray<NSURLResourceKey>*)propertyKeys
                                                            options:(NSVolumeEnumerationOptions)options;
- (BOOL)trashItemAtURL:(NSURL*)url resultingItemURL:(NSURL**)outResultingURL error:(NSError**)error;
@end

// Core Foundation, which Apple's Foundation brings along.
typedef const void* CFTypeRef;
typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __CFString* CFStringRef;
typedef const struct __CFURL* CFURLRef;
extern "C" const CFAllocatorRef kCFAllocatorDefault;
inline id CFBridgingRelease(CFTypeRef __attribute__((cf_consumed)) X) {
    return (__bridge_transfer id)X;
}

// CoreServices, Metadata.
typedef struct __MDItem* MDItemRef;
extern "C" MDItemRef MDItemCreateWithURL(CFAllocatorRef allocator, CFURLRef url);
extern "C" CFTypeRef MDItemCopyAttribute(MDItemRef item, CFStringRef name);
extern "C" const CFStringRef kMDItemLastUsedDate;

// ServiceManagement.
typedef NS_ENUM(NSInteger, SMAppServiceStatus) {
    SMAppServiceStatusNotRegistered,
    SMAppServiceStatusEnabled,
    SMAppServiceStatusRequiresApproval,
    SMAppServiceStatusNotFound,
};

@interface SMAppService : NSObject
@property(class, readonly) SMAppService* mainAppService;
@property(readonly) SMAppServiceStatus status;
- (BOOL)registerAndReturnError:(NSError**)error;
- (BOOL)unregisterAndReturnError:(NSError**)error;
@end
