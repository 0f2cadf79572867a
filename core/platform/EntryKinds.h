#pragma once

#include "platform/Platform.h"

#include <sys/stat.h>
#include <type_traits>

namespace korvanti::Platform {

/// The kind of entry that a mode of `stat` tells.
inline EntryKind kindOfMode(mode_t mode) {
    if (S_ISREG(mode))
        return EntryKind::file;
    if (S_ISDIR(mode))
        return EntryKind::folder;
    return S_ISLNK(mode) ? EntryKind::link : EntryKind::other;
}

/// The time of the last modification, which the systems spell differently.
inline timespec modificationOf(const struct stat& status) {
#ifdef __APPLE__
    return status.st_mtimespec;
#else
    return status.st_mtim;
#endif
}

/// Device numbers are signed on a Mac.
inline EntryIdentity identityOf(const struct stat& status) {
    return {.device = static_cast<std::make_unsigned_t<dev_t>>(status.st_dev), .inode = status.st_ino};
}

} // namespace korvanti::Platform
