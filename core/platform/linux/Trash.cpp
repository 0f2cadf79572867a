#include "base/FileDescriptor.h"
#include "base/SystemCall.h"
#include "platform/EntryKinds.h"
#include "platform/Platform.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <optional>
#include <string_view>
#include <sys/stat.h>

namespace korvanti::Platform {
namespace {

std::optional<EntryIdentity> identityAt(int folder, const std::string& name) {
    struct stat status {};
    if (uninterrupted([&] { return ::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW); }) != 0)
        return std::nullopt;
    return identityOf(status);
}

/// -1 with `errno`. A link in the place of the Trash is not followed.
int openTrash(const std::string& home) {
    const FileDescriptor folder(openPassage(home));
    if (!folder)
        return -1;
    if (uninterrupted([&] { return ::mkdirat(folder.get(), ".Trash", 0700); }) != 0 && errno != EEXIST)
        return -1;
    return openPassageAt(folder.get(), ".Trash");
}

/// "report.pdf", "report 2.pdf", "report 3.pdf" …
std::string numbered(const std::string& name, int number) {
    if (number == 1)
        return name;
    const auto dot = name.rfind('.');
    const auto stemEnd = dot == std::string::npos || dot == 0 ? name.size() : dot;
    return name.substr(0, stemEnd) + " " + std::to_string(number) + name.substr(stemEnd);
}

/// Never over something that is there. 0, or the system's error number.
int moveAs(int from, const std::string& name, int to, const std::string& newName) {
    return uninterrupted(
               [&] { return ::renameat2(from, name.c_str(), to, newName.c_str(), RENAME_NOREPLACE); }) == 0
               ? 0
               : errno;
}

} // namespace

std::expected<void, FileError> moveToTrash(const TrashRequest& request) {
    const auto failed = [&](int error) { return std::unexpected(fileErrorOf(error, request.path)); };
    const FileDescriptor trash(openTrash(request.home));
    if (!trash)
        return failed(errno);
    const auto now = identityAt(request.folder, request.name);
    if (!now)
        return failed(errno);
    if (now != request.identity)
        return failed(ESTALE);

    for (int number = 1;; ++number) {
        const auto newName = numbered(request.name, number);
        const int error = moveAs(request.folder, request.name, trash.get(), newName);
        if (error == EEXIST)
            continue;
        if (error != 0)
            return failed(error);
        const auto arrived = identityAt(trash.get(), newName);
        if (arrived == request.identity)
            return {};
        const int reason = arrived ? ESTALE : errno;
        moveAs(trash.get(), newName, request.folder, request.name); // exchanged at the last moment
        return failed(reason);
    }
}

} // namespace korvanti::Platform
