#include "drives/CopyPlace.h"

#include "base/SystemCall.h"
#include "fs/PathTools.h"
#include "platform/EntryKinds.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

namespace korvanti {

std::expected<CopyPlace, FileError> CopyPlace::take(const FileDescriptor& parent, const std::string& path,
                                                    Kind kind) {
    CopyPlace place;
    place.path_ = path;
    const std::string name(PathTools::lastComponent(path));
    if (kind == Kind::folder &&
        uninterrupted([&] { return ::mkdirat(parent.get(), name.c_str(), 0700); }) != 0)
        return std::unexpected(lastFileError(path));
    struct stat status {};
    if (uninterrupted([&] { return ::fstatat(parent.get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW); }) ==
        0) {
        if (kind == Kind::file)
            return std::unexpected(fileErrorOf(EEXIST, path));
        place.folder_ = Platform::identityOf(status);
    } else if (kind == Kind::folder || errno != ENOENT) {
        return std::unexpected(lastFileError(path));
    }
    return place;
}

bool CopyPlace::holds(const PinnedEntry& entry) const {
    return folder_ ? entry.identity() == *folder_ : !entry.isFolder();
}

} // namespace korvanti
