#include "fs/PathTools.h"

#include "base/FileDescriptor.h"
#include "base/SystemCall.h"
#include "base/Text.h"
#include "platform/Platform.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <filesystem>
#include <memory>
#include <sys/stat.h>
#include <system_error>

namespace korvanti::PathTools {
namespace {

std::optional<struct stat> linkStatus(const std::string& path) {
    struct stat status {};
    // Of a path with a zero inside, the system would see the part before it.
    if (path.contains('\0') || uninterrupted([&] { return ::lstat(path.c_str(), &status); }) != 0)
        return std::nullopt;
    return status;
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

/// The path without "." and "..", none of which leads above the root.
std::string withoutDots(std::string_view path) {
    std::vector<std::string_view> names;
    for (const auto name : Text::pieces(path, '/')) {
        if (name == "..") {
            if (!names.empty())
                names.pop_back();
        } else if (name != ".") {
            names.push_back(name);
        }
    }
    std::string whole = "/";
    for (const auto name : names)
        whole = joined(whole, name);
    return whole;
}

/// The path by the shorter way that a Mac's links at the root give to some of its folders, where there is
/// one.
std::string withoutPrivate(std::string path) {
    static constexpr std::array<std::string_view, 3> prefixes = {"/private/var/automount", "/var/automount",
                                                                 "/private"};
    static constexpr std::array<std::string_view, 12> kept = {"Applications", "Library", "System", "Users",
                                                              "Volumes",      "bin",     "cores",  "dev",
                                                              "opt",          "private", "sbin",   "usr"};
    const auto prefix = std::ranges::find_if(
        prefixes, [&](std::string_view folder) { return path.starts_with(joined(folder, "")); });
    if (prefix == prefixes.end())
        return path;
    auto shorter = path.substr(prefix->size());
    const auto first = std::string_view(shorter).substr(1, shorter.find('/', 1) - 1);
    const bool stays = std::ranges::find(kept, first) != kept.end() || !exists(shorter);
    return stays ? path : shorter;
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

std::vector<Entry> entries(const std::string& folder) {
    const FileDescriptor descriptor(Platform::openFolder(folder, Platform::Links::follow));
    if (!descriptor)
        return {};
    return entries(descriptor.get()).value_or(std::vector<Entry>());
}

std::expected<std::vector<Entry>, std::error_code> entries(int folder) {
    std::vector<Entry> entries;
    const auto buffer = std::make_unique_for_overwrite<Platform::FolderBuffer>();
    Platform::FolderReader reader(folder, *buffer, Platform::EntryFacts::names);
    while (const auto* entry = reader.next())
        entries.push_back({std::string(entry->name), entry->kind});
    if (reader.failed())
        return std::unexpected(std::error_code(reader.error(), std::generic_category()));
    return entries;
}

std::vector<std::string> children(const std::string& folder) {
    std::vector<std::string> paths;
    for (const auto& entry : entries(folder))
        paths.push_back(joined(folder, entry.name));
    return paths;
}

std::vector<std::string> subfolders(const std::string& folder) {
    std::vector<std::string> paths;
    for (const auto& entry : entries(folder)) {
        if (entry.kind == Platform::EntryKind::folder)
            paths.push_back(joined(folder, entry.name));
    }
    return paths;
}

std::string resolved(const std::string& path) {
    return realPath(path).value_or(path);
}

std::expected<std::string, std::error_code> realPath(const std::string& path) {
    if (path.empty()) // for which some libraries give the working folder
        return std::unexpected(std::make_error_code(std::errc::no_such_file_or_directory));
    std::error_code error;
    const auto real = std::filesystem::canonical(path, error);
    if (error)
        return std::unexpected(error);
    return real.string();
}

std::string standardized(const std::string& path) {
    if (!path.starts_with('/'))
        return path;
    const auto names = Text::pieces(path, '/');
    const bool leadsUp = std::ranges::find(names, "..") != names.end();
    return withoutPrivate(withoutDots(leadsUp && exists(path) ? resolved(path) : path));
}

std::expected<std::string, std::error_code> linkTarget(const std::string& path) {
    std::error_code error;
    const auto target = std::filesystem::read_symlink(path, error);
    if (error)
        return std::unexpected(error);
    return target.string();
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

bool isEntryName(std::string_view text) {
    return !text.empty() && text != "." && text != ".." && !text.contains('/') && !text.contains('\0');
}

bool leadsDown(std::string_view text) {
    for (auto slash = text.find('/'); slash != std::string_view::npos; slash = text.find('/')) {
        if (!isEntryName(text.substr(0, slash)))
            return false;
        text.remove_prefix(slash + 1);
    }
    return isEntryName(text);
}

std::string joined(std::string_view folder, std::string_view relative) {
    std::string path(folder);
    if (!path.ends_with('/'))
        path += '/';
    path += relative;
    return path;
}

std::string_view withoutTrailingSlashes(std::string_view path) {
    while (path.size() > 1 && path.ends_with('/'))
        path.remove_suffix(1);
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

std::string_view stem(std::string_view path) {
    const auto name = lastComponent(path);
    const auto extension = pathExtension(path);
    return extension.empty() ? name : name.substr(0, name.size() - extension.size() - 1);
}

} // namespace korvanti::PathTools
