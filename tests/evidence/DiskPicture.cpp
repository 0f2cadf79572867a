#include "DiskPicture.h"

#include <algorithm>
#include <array>
#include <deque>
#include <dirent.h>
#include <fcntl.h>
#include <ranges>
#include <sys/stat.h>
#include <unistd.h>

namespace korvanti::testing {
namespace {

constexpr std::size_t longestPath = 4095;
constexpr std::size_t longestName = 255;
constexpr int mostLinks = 40;

bool isBelow(const std::string& path, const std::string& folder) {
    return path.starts_with(folder + "/");
}

std::string textOfFile(const std::string& path) {
    std::string text;
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    std::array<char, 4096> buffer;
    for (ssize_t count = 0; file >= 0 && (count = ::read(file, buffer.data(), buffer.size())) > 0;)
        text.append(buffer.data(), static_cast<std::size_t>(count));
    if (file >= 0)
        ::close(file);
    return text;
}

std::string textOfLink(const std::string& path) {
    std::array<char, 4096> buffer;
    const auto size = ::readlink(path.c_str(), buffer.data(), buffer.size());
    return {buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0))};
}

DiskObject described(const struct stat& status) {
    DiskObject object;
    object.kind = S_ISDIR(status.st_mode)   ? DiskObject::Kind::folder
                  : S_ISLNK(status.st_mode) ? DiskObject::Kind::link
                                            : DiskObject::Kind::file;
    object.mode = status.st_mode;
    object.owner = status.st_uid;
    object.device = status.st_dev;
    object.number = status.st_ino;
    object.modified = status.st_mtim.tv_sec * 1'000'000'000 + status.st_mtim.tv_nsec;
    object.names = static_cast<std::int64_t>(status.st_nlink);
    return object;
}

} // namespace

std::string shown(const std::string& text) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string result;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte >= 0x20 && byte < 0x7f && byte != '\\')
            result += character;
        else
            (result += "\\x") += {digits[byte / 16], digits[byte % 16]};
    }
    return result.size() > 300 ? result.substr(0, 300) + "…" : result;
}

std::vector<std::pair<std::string, std::uint64_t>> listed(const std::string& folder) {
    std::vector<std::pair<std::string, std::uint64_t>> entries;
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    DIR* stream = descriptor < 0 ? nullptr : ::fdopendir(descriptor);
    if (stream == nullptr)
        return entries;
    while (const dirent* entry = ::readdir(stream)) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..")
            entries.emplace_back(name, entry->d_ino);
    }
    ::closedir(stream);
    return entries;
}

DiskPicture::DiskPicture(const std::vector<std::string>& tops, std::string workingFolder,
                         const std::vector<MountMade>& mounts)
    : tops_(tops), workingFolder_(std::move(workingFolder)) {
    for (const auto& mount : mounts)
        mounts_.push_back({.path = mount.path, .covered = {}, .root = {}, .folder = {}});
    for (std::size_t index = 0; index < mounts.size(); ++index) {
        const auto held = "/proc/self/fd/" + std::to_string(mounts[index].covered);
        mounts_[index].covered = taken(mounts[index].path + "/held", held, Held::yes);
    }
    for (auto& mount : mounts_)
        mount.root = taken(mount.path, mount.path);
    for (const auto& top : tops_)
        root_->entries[top] = taken("/" + top, "/" + top);
    for (auto& mount : mounts_)
        mount.folder = find(mount.path)->folder;
}

/// The object that the system finds at `place`; `path` is where it lies.
DiskObjectPtr DiskPicture::taken(const std::string& path, const std::string& place, Held held) {
    const bool isHeld = held == Held::yes; // then the place is a link of the system's to the object
    struct stat status {};
    const bool isThere = isHeld ? ::stat(place.c_str(), &status) == 0 : ::lstat(place.c_str(), &status) == 0;
    if (!isThere)
        return std::make_shared<DiskObject>();
    auto& object = objects_[{status.st_dev, status.st_ino}];
    if (object)
        return object;
    object = std::make_shared<DiskObject>(described(status));
    const auto result = object;
    switch (result->kind) {
    case DiskObject::Kind::file:
        result->contents = textOfFile(place);
        break;
    case DiskObject::Kind::link:
        result->contents = textOfLink(place);
        break;
    case DiskObject::Kind::folder:
        for (const auto& [name, number] : listed(isHeld ? place + "/." : place)) {
            const auto inside = path + "/" + name;
            const auto* mount = mountAt(inside);
            result->entries[name] = mount ? mount->covered : taken(inside, place + "/" + name);
        }
        break;
    }
    return result;
}

const MountedPlace* DiskPicture::mountAt(const std::string& path) const {
    const auto found = std::ranges::find(mounts_, path, &MountedPlace::path);
    return found == mounts_.end() ? nullptr : &*found;
}

std::optional<DiskPicture::Found> DiskPicture::find(const std::string& path, bool followLast) const {
    if (path.empty() || path.size() > longestPath || path.contains('\0'))
        return {};
    std::deque<std::string> ahead;
    const auto takeUp = [&ahead](const std::string& text) {
        std::vector<std::string> names;
        for (const auto piece : std::views::split(text, '/')) {
            if (const std::string name(piece.begin(), piece.end()); !name.empty())
                names.push_back(name);
        }
        if (text.ends_with('/'))
            names.emplace_back("."); // only a folder has that
        ahead.insert(ahead.begin(), names.begin(), names.end());
    };
    takeUp(path);
    if (!path.starts_with('/'))
        takeUp(workingFolder_);

    std::vector<std::pair<std::string, DiskObjectPtr>> way = {{"", root_}}; // path and object
    int links = 0;
    while (!ahead.empty()) {
        const auto name = ahead.front();
        ahead.pop_front();
        const auto& [folderPath, folder] = way.back();
        if (folder->kind != DiskObject::Kind::folder || name.size() > longestName)
            return {};
        if (name == ".")
            continue;
        if (name == "..") {
            if (way.size() > 1)
                way.pop_back();
            continue;
        }
        const auto entry = folder->entries.find(name);
        if (entry == folder->entries.end())
            return {};
        const auto inside = folderPath + "/" + name;
        const auto* mount = mountAt(inside);
        const auto& object = mount ? mount->root : entry->second;
        if (object->kind != DiskObject::Kind::link || (ahead.empty() && !followLast)) {
            way.emplace_back(inside, object);
            continue;
        }
        if (++links > mostLinks || object->contents.empty())
            return {};
        if (object->contents.starts_with('/'))
            way.resize(1);
        takeUp(object->contents);
    }
    const auto& [foundPath, object] = way.back();
    if (way.size() == 1)
        return Found{object, nullptr, "/", ""};
    return Found{object, way[way.size() - 2].second, foundPath, foundPath.substr(foundPath.rfind('/') + 1)};
}

DiskObjectPtr DiskPicture::at(const std::string& path) const {
    const auto found = find(path);
    return found ? found->object : nullptr;
}

bool DiskPicture::isCovered(const DiskObject& folder, const std::string& name) const {
    return std::ranges::any_of(mounts_, [&](const auto& mount) {
        return mount.folder.get() == &folder && mount.path.ends_with("/" + name);
    });
}

std::string DiskPicture::mountOf(const std::string& path) const {
    std::string nearest;
    for (const auto& mount : mounts_) {
        if ((path == mount.path || isBelow(path, mount.path)) && mount.path.size() > nearest.size())
            nearest = mount.path;
    }
    return nearest;
}

bool DiskPicture::remove(const Found& found) {
    return removeEntry(*found.folder, found.name);
}

bool DiskPicture::removeEntry(DiskObject& folder, const std::string& name) {
    const auto object = folder.entries.at(name);
    bool isGone = !isCovered(folder, name);
    std::vector<std::string> names;
    for (const auto& [inside, entry] : object->entries)
        names.push_back(inside);
    for (const auto& inside : names)
        isGone = removeEntry(*object, inside) && isGone;
    if (!isGone)
        return false;
    --object->names;
    folder.entries.erase(name);
    folder.entriesChanged = true;
    return true;
}

void DiskPicture::move(const Found& found, const DiskObjectPtr& folder, const std::string& newPath) {
    const auto object = found.object;
    found.folder->entries.erase(found.name);
    found.folder->entriesChanged = true;
    add(folder, newPath.substr(newPath.rfind('/') + 1), object);
    for (auto& mount : mounts_) {
        if (isBelow(mount.path, found.path))
            mount.path = newPath + mount.path.substr(found.path.size());
    }
}

void DiskPicture::add(const DiskObjectPtr& folder, const std::string& name, DiskObjectPtr object) {
    folder->entries[name] = std::move(object);
    folder->entriesChanged = true;
}

std::vector<std::string> DiskPicture::differencesFromDisk() const {
    std::vector<std::string> lines;
    for (const auto& top : tops_)
        compare("/" + top, *root_->entries.at(top), lines);
    return lines;
}

void DiskPicture::compare(const std::string& path, const DiskObject& expected,
                          std::vector<std::string>& lines) const {
    const auto differs = [&](const std::string& what) { lines.push_back(shown(path) + ": " + what); };
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0)
        return differs("is gone");
    const auto seen = described(status);
    if (seen.kind != expected.kind)
        return differs("is of another kind");
    if (expected.number != 0) {
        if (seen.device != expected.device || seen.number != expected.number)
            return differs("is another object");
        if (seen.mode != expected.mode || seen.owner != expected.owner)
            differs("has another mode or owner");
        const bool isFolder = expected.kind == DiskObject::Kind::folder;
        if (!isFolder && seen.names != expected.names)
            differs("has " + std::to_string(seen.names) + " names, not " + std::to_string(expected.names));
        if (seen.modified != expected.modified && !expected.entriesChanged)
            differs("has another time of modification");
    }
    switch (expected.kind) {
    case DiskObject::Kind::file:
        if (textOfFile(path) != expected.contents)
            differs("has other contents");
        return;
    case DiskObject::Kind::link:
        if (textOfLink(path) != expected.contents)
            differs("leads elsewhere");
        return;
    case DiskObject::Kind::folder:
        break;
    }
    for (const auto& [name, number] : listed(path)) {
        if (!expected.entries.contains(name))
            lines.push_back(shown(path + "/" + name) + ": should not be there");
    }
    for (const auto& [name, entry] : expected.entries) {
        const auto* mount = mountAt(path + "/" + name);
        compare(path + "/" + name, mount ? *mount->root : *entry, lines);
    }
}

} // namespace korvanti::testing
