#include "fs/FileContents.h"

#include "base/FileDescriptor.h"
#include "base/SystemCall.h"
#include "platform/Platform.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace korvanti::FileContents {
namespace {

std::error_code lastError() {
    return {errno, std::generic_category()};
}

bool writeAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto count = uninterrupted([&] { return ::write(file, bytes.data(), bytes.size()); });
        if (count < 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

/// To the disk itself. Sets `errno` when it fails.
bool flush(int file) {
    errno = Platform::flushFile(file);
    return errno == 0;
}

/// So that a new name lasts, too. Some file systems can't: then it lasts when they see fit.
void flushFolderOf(const std::string& path) {
    const auto slash = path.rfind('/');
    const FileDescriptor folder(Platform::openFolder(
        slash == std::string::npos ? "." : path.substr(0, slash + 1), Platform::Links::follow));
    if (folder)
        static_cast<void>(Platform::flushFile(folder.get()));
}

/// Open, with its length; no descriptor and the reason where it can't be read or is no regular file.
struct RegularFile {
    /// A relative path starts from the open folder `at`.
    explicit RegularFile(const std::string& path, int at = AT_FDCWD)
        : descriptor(uninterrupted(
              [&] { return ::openat(at, path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC); })) {
        struct stat status {};
        if (!descriptor || uninterrupted([&] { return ::fstat(descriptor.get(), &status); }) != 0)
            error = lastError();
        else if (!S_ISREG(status.st_mode))
            error = {S_ISDIR(status.st_mode) ? EISDIR : EINVAL, std::generic_category()};
        if (error)
            descriptor.reset();
        length = status.st_size;
    }

    FileDescriptor descriptor;
    std::error_code error;
    std::int64_t length = 0;
};

/// At most `limit` bytes from where the file stands, or the system's error.
std::expected<std::string, std::error_code> readUpTo(std::int64_t limit, int file) {
    std::string bytes;
    char buffer[64 * 1024];
    while (true) {
        const auto room =
            std::min<std::int64_t>(limit - static_cast<std::int64_t>(bytes.size()), sizeof buffer);
        const auto count =
            uninterrupted([&] { return ::read(file, buffer, static_cast<std::size_t>(room)); });
        if (count < 0)
            return std::unexpected(lastError());
        if (count == 0)
            return bytes;
        bytes.append(buffer, static_cast<std::size_t>(count));
    }
}

/// The whole of it.
std::expected<std::string, std::error_code> read(const RegularFile& file, std::int64_t limit) {
    const auto tooLarge = std::unexpected(std::make_error_code(std::errc::file_too_large));
    if (!file.descriptor)
        return std::unexpected(file.error);
    if (file.length > limit)
        return tooLarge;
    auto bytes = readUpTo(limit + 1, file.descriptor.get()); // it may grow meanwhile
    if (bytes && std::cmp_greater(bytes->size(), limit))
        return tooLarge;
    return bytes;
}

std::optional<std::string> orNothing(std::expected<std::string, std::error_code> bytes) {
    return bytes ? std::optional(std::move(*bytes)) : std::nullopt;
}

std::optional<PropertyList> propertyListIn(const RegularFile& file) {
    const auto bytes = read(file, defaultLimit);
    return bytes ? PropertyList::parse(*bytes) : std::nullopt;
}

} // namespace

std::optional<std::string> read(const std::string& path, std::int64_t limit) {
    return orNothing(readOrError(path, limit));
}

std::expected<std::string, std::error_code> readOrError(const std::string& path, std::int64_t limit) {
    return read(RegularFile(path), limit);
}

std::optional<PropertyList> readPropertyList(const std::string& path) {
    return propertyListIn(RegularFile(path));
}

std::optional<PropertyList> readPropertyList(int folder, const std::string& relative) {
    return propertyListIn(RegularFile(relative, folder));
}

std::optional<std::string> readStart(const std::string& path, std::int64_t limit) {
    const RegularFile file(path);
    return file.descriptor ? orNothing(readUpTo(limit, file.descriptor.get())) : std::nullopt;
}

std::expected<void, std::error_code> writeAtomically(const std::string& path, std::string_view bytes) {
    std::string temporary = path + ".XXXXXX";
    FileDescriptor file(::mkostemp(temporary.data(), O_CLOEXEC));
    if (!file)
        return std::unexpected(lastError());
    struct stat old {};
    const bool replaces = ::stat(path.c_str(), &old) == 0; // a new file is for its user alone
    if (!writeAll(file.get(), bytes) || (replaces && ::fchmod(file.get(), old.st_mode & 0777) != 0) ||
        !flush(file.get()) || ::rename(temporary.c_str(), path.c_str()) != 0) {
        const auto error = lastError();
        ::unlink(temporary.c_str());
        return std::unexpected(error);
    }
    flushFolderOf(path);
    return {};
}

std::expected<void, std::error_code> createFolders(const std::string& path) {
    std::error_code error;
    std::filesystem::create_directories(path, error);
    if (error)
        return std::unexpected(error);
    return {};
}

} // namespace korvanti::FileContents
