#include "fs/PathTools.h"

#include "base/FileDescriptor.h"
#include "platform/Platform.h"

#include <algorithm>
#include <charconv>
#include <memory>
#include <sys/stat.h>

namespace korvanti::PathTools {
namespace {

std::optional<struct stat> linkStatus(const std::string& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0)
        return std::nullopt;
    return status;
}

std::string_view withoutTrailingSlashes(std::string_view path) {
    while (path.size() > 1 && path.ends_with('/'))
        path.remove_suffix(1);
    return path;
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// The runs of digits as numbers; a run too long for 64 bits is dropped.
std::vector<std::int64_t> versionNumbers(std::string_view text) {
    std::vector<std::int64_t> numbers;
    const char* const end = text.data() + text.size();
    for (const char* at = std::find_if(text.data(), end, isDigit); at != end;
         at = std::find_if(at, end, isDigit)) {
        std::int64_t number = 0;
        const auto [behind, error] = std::from_chars(at, end, number);
        if (error == std::errc())
            numbers.push_back(number);
        at = behind;
    }
    return numbers;
}

} // namespace

bool exists(const std::string& path) {
    return linkStatus(path).has_value();
}

bool isSymlink(const std::string& path) {
    const auto status = linkStatus(path);
    return status && S_ISLNK(status->st_mode);
}

bool isDirectory(const std::string& path) {
    const auto status = linkStatus(path);
    return status && S_ISDIR(status->st_mode);
}

std::optional<Instant> modificationDate(const std::string& path) {
    const auto status = linkStatus(path);
    if (!status)
        return std::nullopt;
    return instantFromSeconds(status->st_mtime);
}

std::vector<std::string> children(const std::string& folder) {
    const FileDescriptor descriptor(Platform::openFolder(folder, Platform::Links::follow));
    if (!descriptor)
        return {};
    std::vector<std::string> paths;
    const auto buffer = std::make_unique<Platform::FolderBuffer>();
    Platform::FolderReader reader(descriptor.get(), *buffer, Platform::EntryFacts::names);
    while (const auto* entry = reader.next())
        paths.push_back(joined(folder, entry->name));
    if (reader.failed())
        return {};
    return paths;
}

std::strong_ordering compareVersions(std::string_view a, std::string_view b) {
    auto left = versionNumbers(a);
    auto right = versionNumbers(b);
    const auto length = std::max(left.size(), right.size());
    left.resize(length);
    right.resize(length);
    const auto [l, r] = std::ranges::mismatch(left, right);
    return l == left.end() ? std::strong_ordering::equal : *l <=> *r;
}

bool isSameOrAncestor(std::string_view ancestor, std::string_view path) {
    if (!path.starts_with(ancestor))
        return false;
    return path.size() == ancestor.size() || ancestor.ends_with('/') || path[ancestor.size()] == '/';
}

std::string abbreviatingHome(const std::string& path) {
    return abbreviatingHome(path, Platform::homeFolder());
}

std::string abbreviatingHome(const std::string& path, std::string_view home) {
    if (path == home)
        return "~";
    if (!path.starts_with(home) || path[home.size()] != '/')
        return path;
    return "~" + path.substr(home.size());
}

std::string joined(std::string_view folder, std::string_view relative) {
    std::string path(folder);
    if (!path.ends_with('/'))
        path += '/';
    path += relative;
    return path;
}

std::string_view lastComponent(std::string_view path) {
    path = withoutTrailingSlashes(path);
    return path == "/" ? path : path.substr(path.rfind('/') + 1);
}

std::string_view parent(std::string_view path) {
    path = withoutTrailingSlashes(path);
    const auto slash = path.rfind('/');
    if (slash == std::string_view::npos)
        return {};
    return withoutTrailingSlashes(path.substr(0, std::max<std::size_t>(slash, 1)));
}

std::string_view pathExtension(std::string_view path) {
    const auto name = lastComponent(path);
    const auto dot = name.rfind('.');
    if (dot == std::string_view::npos || dot + 1 == name.size())
        return {};
    const auto stem = name.substr(0, dot);
    const auto extension = name.substr(dot + 1);
    if (stem.empty() || stem == "." || stem == ".." || extension.contains(' '))
        return {};
    return extension;
}

} // namespace korvanti::PathTools
