#include "drives/RelocationService.h"

#include "base/Text.h"
#include "drives/GradleConfiguration.h"
#include "drives/ManagedBlock.h"
#include "drives/VolumeFolder.h"
#include "fs/FileContents.h"
#include "fs/PathTools.h"
#include "process/Shell.h"

#include <cerrno>
#include <chrono>
#include <system_error>
#include <utility>

namespace korvanti {
namespace {

using namespace std::chrono_literals;

ShellResult defaults(const std::string& verb, const std::string& domain,
                     const std::vector<std::string>& value = {}) {
    std::vector<std::string> words = {verb, domain, "IDECustomDerivedDataLocation"};
    words.insert(words.end(), value.begin(), value.end());
    return Shell::run("/usr/bin/defaults", words, {.timeout = 10s});
}

void excludeFromBackups(const std::string& folder) {
    static_cast<void>(Shell::run("/usr/bin/tmutil", {"addexclusion", folder}, {.timeout = 20s}));
}

/// A missing profile is an empty one. Any other that can't be read is an error: to write one anew would be to
/// lose what is in it.
std::expected<std::string, FileError> readProfile(const std::string& path) {
    auto text = FileContents::readOrError(path);
    if (!text && text.error() == std::errc::no_such_file_or_directory)
        return "";
    if (!text)
        return std::unexpected(FileError{.path = path, .code = text.error(), .systemText = {}});
    return std::move(*text);
}

/// The path with its links followed, be it to a file that is still to be made.
std::expected<std::string, std::error_code> fileBehindLinks(std::string path) {
    constexpr int mostLinks = 32;
    for (int links = 0; links <= mostLinks; ++links) {
        auto real = PathTools::realPath(path);
        if (real || real.error() != std::errc::no_such_file_or_directory)
            return real;
        const auto target = PathTools::linkTarget(path);
        if (!target)
            return path;
        path = target->starts_with('/') ? *target : PathTools::joined(PathTools::parent(path), *target);
    }
    return std::unexpected(std::make_error_code(std::errc::too_many_symbolic_link_levels));
}

std::expected<void, std::error_code> replace(const std::string& path, std::string_view text) {
    if (std::cmp_greater(text.size(), FileContents::defaultLimit)) // it could not be read again
        return std::unexpected(std::make_error_code(std::errc::file_too_large));
    const auto file = fileBehindLinks(path);
    return file ? FileContents::writeAtomically(*file, text) : std::unexpected(file.error());
}

/// Reads the profile once more, since the user may have saved it while tools were running.
std::expected<void, DriveFailure> writeBlock(const std::string& path, const ManagedBlock::Targets& targets) {
    const auto old = readProfile(path);
    if (!old)
        return std::unexpected(old.error());
    const auto text = ManagedBlock::rewritten(*old, targets);
    if (text == *old) // so that no empty file comes into being either
        return {};
    if (const auto written = replace(path, text); !written)
        return std::unexpected(FileError{.path = path, .code = written.error(), .systemText = {}});
    return {};
}

} // namespace

RelocationService::RelocationService(const std::string& home, std::string defaultsDomain)
    : home_(home), zshenv_(PathTools::joined(home, ".zshenv")), defaultsDomain_(std::move(defaultsDomain)) {}

std::map<DevCache, std::string> RelocationService::currentTargets() const {
    const auto profile = readProfile(zshenv_);
    auto targets = profile ? ManagedBlock::targets(*profile) : ManagedBlock::Targets();
    const auto location = defaults("read", defaultsDomain_);
    if (const auto path = Text::trimmed(location.out); location.ok() && !path.empty())
        targets.emplace(DevCache::xcodeDerivedData, path);
    return targets;
}

std::expected<void, DriveFailure> RelocationService::apply(const std::set<DevCache>& caches,
                                                           const VolumeInfo& volume) const {
    if (!volume.supportsDevWork())
        return std::unexpected(OffloadError{OffloadError::Kind::unsupportedFormat, volume.formatName});
    if (!ManagedBlock::canHold(volume.mountPath))
        return std::unexpected(fileErrorOf(EINVAL, volume.mountPath));
    const auto profile = readProfile(zshenv_);
    if (!profile)
        return std::unexpected(profile.error());
    const auto root = VolumeFolder::open(volume.mountPath);
    if (!root)
        return std::unexpected(root.error());

    auto targets = ManagedBlock::targets(*profile);
    for (const auto cache : caches) {
        const auto relative = PathTools::joined(devFolder, folderName(cache));
        const auto folder = PathTools::joined(volume.mountPath, relative);
        if (const auto made = root->createFolders(relative); !made)
            return std::unexpected(made.error());
        excludeFromBackups(folder);
        switch (cache) {
        case DevCache::xcodeDerivedData:
            if (const auto set = defaults("write", defaultsDomain_, {folder}); !set.ok())
                return std::unexpected(OffloadError{OffloadError::Kind::copyFailed, set.err});
            break;
        case DevCache::gradleHome:
            GradleConfiguration::carryOver(PathTools::joined(home_, ".gradle"), folder);
            targets[cache] = folder;
            break;
        case DevCache::npmCache:
            targets[cache] = folder;
            break;
        }
    }
    return writeBlock(zshenv_, targets);
}

std::expected<void, DriveFailure> RelocationService::revert(const std::set<DevCache>& caches) const {
    const auto profile = readProfile(zshenv_);
    if (!profile)
        return std::unexpected(profile.error());
    auto targets = ManagedBlock::targets(*profile);
    for (const auto cache : caches) {
        if (cache == DevCache::xcodeDerivedData)
            static_cast<void>(defaults("delete", defaultsDomain_)); // fails when it is not set
        else
            targets.erase(cache);
    }
    return writeBlock(zshenv_, targets);
}

} // namespace korvanti
