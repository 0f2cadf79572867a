#include "drives/OffloadService.h"

#include "analysis/DiskInspector.h"
#include "base/ByteText.h"
#include "base/FileDescriptor.h"
#include "base/Text.h"
#include "cleaning/TreeRemover.h"
#include "drives/CopyPlace.h"
#include "drives/ProgressWatcher.h"
#include "fs/FolderChain.h"
#include "fs/PathTools.h"
#include "fs/PinnedEntry.h"
#include "fs/SizeCalculator.h"
#include "platform/Platform.h"
#include "process/Shell.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <fmt/format.h>
#include <optional>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace korvanti {
namespace {

using Kind = OffloadError::Kind;
using Verdict = std::expected<void, DriveFailure>;

std::unexpected<DriveFailure> failure(Kind kind, std::string payload = {}) {
    return std::unexpected<DriveFailure>(OffloadError{.kind = kind, .payload = std::move(payload)});
}

std::unexpected<DriveFailure> failure(FileError error) {
    return std::unexpected<DriveFailure>(std::move(error));
}

std::unexpected<DriveFailure> failure(GuardError::Kind kind, const std::string& path) {
    return std::unexpected<DriveFailure>(GuardError{.kind = kind, .payload = path});
}

DriveFailure asFailure(const SafetyGuard::Refusal& refusal) {
    return std::visit([](const auto& reason) -> DriveFailure { return reason; }, refusal);
}

/// Copies a file or a folder with all that belongs to it.
ShellResult copy(std::vector<std::string> options, const std::string& from, const std::string& to) {
    using namespace std::chrono_literals;
    options.insert(options.end(), {from, to});
    return Shell::run("/usr/bin/ditto", options, {.timeout = 6h});
}

/// What the copy needs on the volume, in bytes, with room to spare.
std::int64_t bytesNeeded(std::int64_t logicalBytes) {
    constexpr std::int64_t spare = 50'000'000;
    constexpr std::int64_t absurd = 8'000'000'000'000'000'000;
    if (logicalBytes > absurd)
        return INT64_MAX;
    return static_cast<std::int64_t>(static_cast<double>(logicalBytes) * 1.05) + spare;
}

/// Where something goes in the offload folder: what lies in the home folder keeps its place in there.
std::string placeOnVolume(const std::string& source, const std::string& home) {
    if (PathTools::isSameOrAncestor(home, source))
        return source.substr(home.size() + 1);
    return std::string(PathTools::lastComponent(source));
}

CopyPlace::Kind kindOf(const AdmittedEntry& original) {
    return original.entry().isFolder() ? CopyPlace::Kind::folder : CopyPlace::Kind::file;
}

bool isTaken(const FileError& error) {
    return error.code == std::errc::file_exists;
}

/// The first place that is free: the one given, then "… (2)", "… (3)".
std::expected<CopyPlace, FileError> takeFreePlace(const FileDescriptor& parent, const std::string& path,
                                                  CopyPlace::Kind kind) {
    auto place = CopyPlace::take(parent, path, kind);
    for (int number = 2; !place && isTaken(place.error()); ++number)
        place = CopyPlace::take(parent, fmt::format("{} ({})", path, number), kind);
    return place;
}

/// A folder that stood before its contents came has nothing else of its original yet.
std::expected<void, FileError> copyFolderFacts(const AdmittedEntry& original, const PinnedEntry& copied) {
    const FileDescriptor from(
        Platform::openFolderAt(original.entry().parent(), original.entry().name().c_str()));
    if (!from)
        return std::unexpected(lastFileError(original.entry().path()));
    const FileDescriptor to(Platform::openFolderAt(copied.parent(), copied.name().c_str()));
    if (!to)
        return std::unexpected(lastFileError(copied.path()));
    if (const int error = Platform::copyFolderFacts(from.get(), to.get()))
        return std::unexpected(fileErrorOf(error, copied.path()));
    return {};
}

bool isWhole(const SizeResult& size) {
    return size.unreadable == 0 && size.mountPoints.empty();
}

bool isSameSize(const SizeResult& a, const SizeResult& b) {
    return a.files == b.files && a.logicalBytes == b.logicalBytes;
}

std::string inWords(const SizeResult& size) {
    return fmt::format("{} file/{}", size.files, bytesText(size.logicalBytes));
}

/// The copy is as large as its original, and the original is what it was when the copy began.
Verdict verify(const SizeResult& before, const SizeResult& now, const SizeResult& copied,
               const std::string& destination) {
    const auto refused = [&](const std::string& reason) {
        return failure(Kind::verifyFailed, reason + ". Salinan disimpan di " + destination + ".");
    };
    if (!isSameSize(now, copied))
        return refused(fmt::format("asal {}, salinan {}", inWords(now), inWords(copied)));
    if (!isWhole(now) || !isWhole(copied))
        return refused("sebagian data tidak bisa dibaca ulang");
    if (before.stamp != now.stamp)
        return refused("data asal berubah selama disalin");
    return {};
}

/// The root folder of the volume that a path is on, by its text.
std::string volumeRootOf(const std::string& path) {
    const auto pieces = Text::pieces(path, '/');
    return pieces.size() >= 2 && pieces[0] == "Volumes" ? "/Volumes/" + std::string(pieces[1]) : "/";
}

/// Another one than the record's is mounted there now, as far as both are known.
bool isAnotherVolume(const std::string& mountPath, const std::optional<std::string>& uuid) {
    return uuid &&
           std::ranges::any_of(Platform::mountedVolumes(), [&](const Platform::MountedVolume& volume) {
               return volume.mountPath == mountPath && volume.uuid && volume.uuid != uuid;
           });
}

std::string manifestOn(const std::string& mountPath) {
    return PathTools::joined(PathTools::joined(mountPath, OffloadService::folderName), "manifest.json");
}

/// What is on one volume, for other computers to read.
void writeManifest(const std::string& mountPath, std::vector<OffloadRecord> records,
                   const std::optional<std::string>& volumeUUID) {
    std::erase_if(records, [&](const OffloadRecord& record) { return record.volumeUUID != volumeUUID; });
    OffloadRecords::write(manifestOn(mountPath), records);
}

std::vector<OffloadRecord> withoutRecord(const std::string& store, const Uuid& id) {
    return OffloadRecords::update(store, [&](std::vector<OffloadRecord>& records) {
        std::erase_if(records, [&](const OffloadRecord& record) { return record.id == id; });
    });
}

/// Removes what was held since before the copy, if it is that still.
Verdict removeOriginal(std::expected<AdmittedEntry, SafetyGuard::Refusal> admitted,
                       const AdmittedEntry& original) {
    if (!admitted)
        return std::unexpected(asFailure(admitted.error()));
    if (admitted->entry().identity() != original.entry().identity())
        return failure(fileErrorOf(ESTALE, original.entry().path()));
    if (auto removed = TreeRemover::remove(*admitted); !removed)
        return failure(removed.error());
    return {};
}

/// The folder that all ways to an old place start from: none leads through a link from there on.
std::string baseOf(const std::string& place, const std::string& home) {
    return place.starts_with(home + "/") ? home : "/";
}

/// The link that an earlier move has left. Anything else stays.
Verdict removeLink(const std::string& place, const SafetyGuard& guardrail) {
    const auto link = guardrail.admit(place, {});
    if (!link)
        return std::unexpected(asFailure(link.error()));
    if (link->entry().kind() != Platform::EntryKind::link)
        return failure(Kind::originalOccupied, place);
    if (auto removed = TreeRemover::remove(*link); !removed)
        return failure(removed.error());
    return {};
}

/// The old place of what is to come back, its parents made.
std::expected<CopyPlace, DriveFailure> takeOldPlace(const std::string& path, CopyPlace::Kind kind,
                                                    const std::string& base) {
    const FileDescriptor folder(Platform::openPassage(base));
    if (!folder)
        return failure(lastFileError(base));
    const auto parent = FolderChain::create(folder.get(), base, PathTools::parent(path).substr(base.size()));
    if (!parent)
        return failure(parent.error());
    auto place = CopyPlace::take(*parent, path, kind);
    if (!place && isTaken(place.error()))
        return failure(Kind::originalOccupied, path);
    if (!place)
        return failure(place.error());
    return std::move(*place);
}

/// Waits until what was written to the volume of a folder is on its device.
std::expected<void, FileError> flushVolumeOf(const std::string& folder) {
    const FileDescriptor open(Platform::openFolder(folder));
    if (!open)
        return std::unexpected(lastFileError(folder));
    if (const int error = Platform::flushVolume(open.get()))
        return std::unexpected(fileErrorOf(error, folder));
    return {};
}

/// Files keep whole seconds.
Instant thisSecond() {
    return instantFromSeconds(wholeSeconds(currentInstant()));
}

} // namespace

OffloadService::OffloadService(const std::string& home, std::string storeURL, ActivityLog log)
    : guardrail_(home), storeURL_(std::move(storeURL)), log_(std::move(log)) {}

std::vector<OffloadRecord> OffloadService::records() const {
    return OffloadRecords::read(storeURL_);
}

OffloadStatus OffloadService::status(const OffloadRecord& record) {
    if (!PathTools::isDirectory(volumeRootOf(record.destinationPath)))
        return OffloadStatus::volumeMissing;
    return PathTools::exists(record.destinationPath) ? OffloadStatus::available
                                                     : OffloadStatus::destinationMissing;
}

std::expected<OffloadRecord, DriveFailure> OffloadService::offload(const CleanupItem& item,
                                                                   const VolumeInfo& volume,
                                                                   OffloadOptions options,
                                                                   const Progress& progress) const {
    const std::string given(PathTools::withoutTrailingSlashes(item.path));
    if (!PathTools::exists(given) || PathTools::isSymlink(given))
        return failure(Kind::sourceMissing);
    for (const auto& path : {given, volume.mountPath}) {
        if (Text::repaired(path) != path) // a record could not tell it
            return failure(GuardError::Kind::invalidPath, path);
    }
    const auto original = guardrail_.admit(given, {});
    if (!original)
        return std::unexpected(asFailure(original.error()));
    if (original->entry().kind() == Platform::EntryKind::link)
        return failure(Kind::sourceMissing);
    const auto& source = original->entry().path();

    if (!PathTools::isDirectory(volume.mountPath))
        return failure(Kind::volumeMissing);
    const auto root = VolumeFolder::open(volume.mountPath);
    if (!root)
        return failure(root.error());
    if (!root->isMounted() || volumeRootOf(root->mountPath() + "/") != root->mountPath())
        return failure(Kind::volumeMissing);
    if (!volume.supportsDevWork() && item.category != ItemCategory::personal)
        return failure(Kind::unsupportedFormat, volume.formatName);
    const auto before = SizeCalculator::measure(source, {.takeStamp = true});
    const auto needed = bytesNeeded(before.logicalBytes);
    const auto room = std::max(DiskInspector::freeSpace(volume.mountPath).available, volume.free);
    if (room < needed)
        return std::unexpected<DriveFailure>(
            OffloadError{.kind = Kind::notEnoughSpace, .needed = needed, .available = room});

    const auto lock = root->lock();
    if (!lock)
        return failure(lock.error());
    if (!original->entry().stillThere()) // another program was quicker
        return failure(Kind::sourceMissing);
    const auto place = PathTools::joined(folderName, placeOnVolume(source, guardrail_.home()));
    const auto parent = root->createFolders(PathTools::parent(place));
    if (!parent)
        return failure(parent.error());
    const auto taken = takeFreePlace(*parent, PathTools::joined(root->mountPath(), place), kindOf(*original));
    if (!taken)
        return failure(taken.error());
    const auto& destination = taken->path();
    // What stands at the destination, if it is on the volume and the place that was taken.
    const auto arrived = [&]() -> std::expected<AdmittedEntry, DriveFailure> {
        auto entry = root->admit(destination);
        if (!entry)
            return std::unexpected(asFailure(entry.error()));
        if (!taken->holds(entry->entry()))
            return failure(fileErrorOf(ESTALE, destination));
        return std::move(*entry);
    };

    if (!root->isStillThere()) // what is written to that path does not arrive on the volume
        return failure(Kind::volumeMissing);
    const auto copied = [&] {
        const ProgressWatcher watcher([&] {
            if (progress)
                progress(SizeCalculator::measure(destination).logicalBytes);
        });
        if (volume.supportsDevWork())
            return copy({}, source, destination);
        return copy({"--norsrc", "--noextattr", "--noacl"}, source, destination);
    }();
    if (!copied.ok()) {
        if (const auto half = arrived())
            static_cast<void>(TreeRemover::remove(*half));
        return failure(Kind::copyFailed, std::string(Text::trimmed(copied.err)));
    }
    if (!root->isStillThere())
        return failure(Kind::volumeMissing);
    const auto copyEntry = arrived();
    if (!copyEntry)
        return std::unexpected(copyEntry.error());
    if (volume.supportsDevWork() && original->entry().isFolder()) {
        if (auto done = copyFolderFacts(*original, copyEntry->entry()); !done)
            return failure(done.error());
    }
    if (const auto flushed = root->flush(); !flushed)
        return failure(FileError{.path = destination, .code = flushed.error().code, .systemText = {}});

    // The copy takes long to be measured, so the original comes last: what is written to it after that is
    // lost.
    const auto there = SizeCalculator::measure(destination, {.ignoreAppleDouble = !volume.supportsDevWork()});
    if (const auto stillOnVolume = arrived(); !stillOnVolume)
        return std::unexpected(stillOnVolume.error());
    const auto now = SizeCalculator::measure(source, {.takeStamp = true});
    if (auto verified = verify(before, now, there, destination); !verified)
        return std::unexpected(verified.error());
    if (auto removed = removeOriginal(guardrail_.admit(source, {}), *original); !removed)
        return std::unexpected(removed.error());
    if (options.symlinkBack &&
        ::symlinkat(destination.c_str(), original->entry().parent(), original->entry().name().c_str()) != 0)
        return failure(lastFileError(source));

    const OffloadRecord record{.title = item.title,
                               .originalPath = source,
                               .destinationPath = destination,
                               .volumeUUID = volume.uuid,
                               .volumeName = volume.name,
                               .bytes = now.bytes,
                               .date = thisSecond(),
                               .symlinked = options.symlinkBack};
    const auto all = OffloadRecords::update(
        storeURL_, [&](std::vector<OffloadRecord>& records) { records.push_back(record); });
    writeManifest(root->mountPath(), all, volume.uuid);
    log_.append({.date = record.date,
                 .kind = "Pindah ke SSD",
                 .title = item.title,
                 .path = source,
                 .bytes = record.bytes,
                 .success = true,
                 .message = "→ " + destination});
    return record;
}

std::expected<void, DriveFailure> OffloadService::restore(const OffloadRecord& record) const {
    if (status(record) != OffloadStatus::available)
        return failure(Kind::volumeMissing);
    const auto& path = record.originalPath;
    const auto& stored = record.destinationPath;
    if (!path.starts_with('/') || !PathTools::leadsDown(std::string_view(path).substr(1)) ||
        PathTools::isSameOrAncestor(path, stored) || PathTools::isSameOrAncestor(stored, path))
        return failure(GuardError::Kind::invalidPath, path);
    const auto root = VolumeFolder::open(volumeRootOf(stored));
    if (!root)
        return failure(root.error());
    // A plain folder is what a drive that dropped out, or somebody, left at its path.
    if (!root->isMounted() || isAnotherVolume(root->mountPath(), record.volumeUUID))
        return failure(Kind::volumeMissing);
    const auto lock = root->lock();
    if (!lock)
        return failure(lock.error());
    const auto original = root->admit(stored);
    if (!original)
        return std::unexpected(asFailure(original.error()));
    const auto before = SizeCalculator::measure(stored, {.ignoreAppleDouble = true, .takeStamp = true});

    if (PathTools::isSymlink(path)) {
        if (auto cleared = removeLink(path, guardrail_); !cleared)
            return cleared;
    }
    const auto base = baseOf(path, guardrail_.home());
    const auto taken = takeOldPlace(path, kindOf(*original), base);
    if (!taken)
        return std::unexpected(taken.error());
    if (const auto copied = copy({}, stored, path); !copied.ok()) {
        // A folder in which nothing has arrived would stand in the way of the next attempt.
        if (const auto half = guardrail_.admit(path, {});
            half && half->entry().isFolder() && taken->holds(half->entry()))
            static_cast<void>(TreeRemover::removeIfEmpty(*half));
        return failure(Kind::copyFailed, copied.err);
    }
    const auto arrived = PinnedEntry::open(base, path);
    if (!arrived)
        return failure(arrived.error());
    if (!taken->holds(*arrived) || arrived->identity() == original->entry().identity())
        return failure(fileErrorOf(ESTALE, path));
    if (arrived->isFolder()) {
        if (auto done = copyFolderFacts(*original, *arrived); !done)
            return failure(done.error());
    }
    if (auto flushed = flushVolumeOf(std::string(PathTools::parent(path))); !flushed)
        return failure(flushed.error());
    const auto there = SizeCalculator::measure(path);
    const auto now = SizeCalculator::measure(stored, {.ignoreAppleDouble = true, .takeStamp = true});
    if (!isSameSize(there, now) || !isWhole(there) || !isWhole(now) || before.stamp != now.stamp)
        return failure(Kind::verifyFailed,
                       "salinan di Mac tidak sama dengan di SSD; data di SSD tidak dihapus.");
    if (auto removed = removeOriginal(root->admit(stored), *original); !removed)
        return removed;

    writeManifest(root->mountPath(), withoutRecord(storeURL_, record.id), record.volumeUUID);
    log_.append({.date = thisSecond(),
                 .kind = "Kembalikan dari SSD",
                 .title = record.title,
                 .path = path,
                 .bytes = record.bytes,
                 .success = true,
                 .message = "← " + stored});
    return {};
}

void OffloadService::forget(const OffloadRecord& record) const {
    withoutRecord(storeURL_, record.id);
}

} // namespace korvanti
