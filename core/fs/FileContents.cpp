#include "fs/FileContents.h"

#include "base/FileDescriptor.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace korvanti::FileContents {
namespace {

std::error_code lastError() {
    return {errno, std::generic_category()};
}

/// Repeats a call that a signal interrupted.
template <class Call> auto uninterrupted(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
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

/// To the disk itself, where the system can.
bool flush(int file) {
#ifdef F_FULLFSYNC
    if (::fcntl(file, F_FULLFSYNC) == 0)
        return true;
#endif
    return uninterrupted([&] { return ::fsync(file); }) == 0;
}

} // namespace

std::optional<std::string> read(const std::string& path, std::int64_t limit) {
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status {};
    if (!file || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_size > limit)
        return std::nullopt;
    std::string bytes;
    char buffer[64 * 1024];
    while (true) {
        const auto count = uninterrupted([&] { return ::read(file.get(), buffer, sizeof buffer); });
        if (count == 0)
            return bytes;
        if (count < 0 || static_cast<std::int64_t>(bytes.size()) + count > limit)
            return std::nullopt;
        bytes.append(buffer, static_cast<std::size_t>(count));
    }
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
