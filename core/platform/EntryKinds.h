#pragma once

#include "platform/Platform.h"

#include <sys/stat.h>

namespace korvanti::Platform {

/// The kind of entry that a mode of `stat` tells.
inline EntryKind kindOfMode(mode_t mode) {
    if (S_ISREG(mode))
        return EntryKind::file;
    if (S_ISDIR(mode))
        return EntryKind::folder;
    return S_ISLNK(mode) ? EntryKind::link : EntryKind::other;
}

} // namespace korvanti::Platform
