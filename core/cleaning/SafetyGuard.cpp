#include "cleaning/SafetyGuard.h"

#include "base/Text.h"
#include "cleaning/SafetyGuardTables.h"
#include "fs/FileContents.h"
#include "fs/MountTable.h"
#include "fs/PathTools.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace korvanti {
namespace {

using Kind = GuardError::Kind;
using Verdict = std::expected<void, GuardError>;

Verdict refusal(Kind kind, std::string payload) {
    return std::unexpected(GuardError{kind, std::move(payload)});
}

bool isWellFormed(const std::string& path) {
    return path.starts_with('/') && !path.contains("/../") && !path.ends_with("/..") && !path.contains('\0');
}

/// Without "." components, repeated slashes and a trailing slash. Touches no disk.
std::string normalised(std::string_view path) {
    std::string clean;
    for (const auto component : Text::pieces(path, '/')) {
        if (component != ".")
            clean.append("/").append(component);
    }
    return clean.empty() ? "/" : clean;
}

bool holdsSecrets(std::string_view name) {
    const auto lower = Text::lowercased(name);
    return lower.starts_with(".env") ||
           std::ranges::any_of(SafetyGuardTables::sensitiveSuffixes,
                               [&](std::string_view suffix) { return lower.ends_with(suffix); });
}

/// By a path relative to the home folder. What lies directly in there must stay, whatever its name.
bool isProtected(std::string_view relative) {
    return !relative.contains('/') ||
           std::ranges::any_of(SafetyGuardTables::protectedRoots,
                               [&](std::string_view root) { return relative == root; }) ||
           std::ranges::any_of(SafetyGuardTables::protectedTrees, [&](std::string_view tree) {
               return PathTools::isSameOrAncestor(tree, relative);
           });
}

bool isApplicationBundle(std::string_view path, const std::string& home) {
    const auto folder = PathTools::parent(path);
    return path.ends_with(".app") && (folder == "/Applications" || folder == home + "/Applications");
}

/// An application with no readable property list is not taken for one of the system's.
Verdict applicationVerdict(const std::string& path) {
    const auto info = FileContents::readPropertyList(path + "/Contents/Info.plist");
    const auto identifier = info ? info->text("CFBundleIdentifier") : std::nullopt;
    if (identifier && identifier->starts_with("com.apple."))
        return refusal(Kind::protectedPath, path);
    if (!PathTools::exists(path))
        return refusal(Kind::missing, path);
    return {};
}

/// Each question looks at the disk anew.
Verdict diskVerdict(const std::string& path, bool allowRepository) {
    if (!PathTools::exists(path))
        return refusal(Kind::missing, path);
    if (!PathTools::isDirectory(path)) // a link to one is none
        return {};
    if (!allowRepository && PathTools::exists(path + "/.git"))
        return refusal(Kind::isRepository, path);
    if (const auto mounts = MountTable::mountPoints(path); !mounts.empty())
        return refusal(Kind::containsMountPoint, mounts.front());
    return {};
}

} // namespace

std::string GuardError::description() const {
    switch (kind) {
    case Kind::notDeletable:
        return "Tidak boleh dihapus: " + payload;
    case Kind::invalidPath:
        return "Path tidak valid: " + payload;
    case Kind::outsideAllowedRoots:
        return "Di luar area yang boleh dibersihkan: " + PathTools::abbreviatingHome(payload);
    case Kind::protectedPath:
        return "Dilindungi (data penting): " + PathTools::abbreviatingHome(payload);
    case Kind::containsMountPoint:
        return "Berisi volume lain yang ter-mount (" + PathTools::abbreviatingHome(payload) +
               ") — dilewati agar isi perangkat tidak ikut terhapus";
    case Kind::isRepository:
        return "Ini repository git (kode sumber): " + PathTools::abbreviatingHome(payload);
    case Kind::missing:
        return "Sudah tidak ada: " + PathTools::abbreviatingHome(payload);
    case Kind::invalidIdentifier:
        return "ID tidak valid: " + payload;
    }
    std::unreachable();
}

// With a home that is no absolute path or the root itself, nothing lies inside it and all is refused.
SafetyGuard::SafetyGuard(const std::string& home) : home_(home.starts_with('/') ? normalised(home) : "/") {}

Verdict SafetyGuard::validate(const std::string& path, PathOptions options) const {
    if (!isWellFormed(path))
        return refusal(Kind::invalidPath, path);
    const auto place = normalised(path);
    if (holdsSecrets(PathTools::lastComponent(place)))
        return refusal(Kind::protectedPath, place);
    if (options.allowApplicationBundle && isApplicationBundle(place, home_))
        return applicationVerdict(place);
    if (!place.starts_with(home_ + "/"))
        return refusal(Kind::outsideAllowedRoots, place);
    if (isProtected(std::string_view(place).substr(home_.size() + 1)))
        return refusal(Kind::protectedPath, place);
    return diskVerdict(place, options.allowRepository);
}

} // namespace korvanti
