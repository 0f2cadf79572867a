#pragma once

#include "base/FileDescriptor.h"
#include "base/FileError.h"
#include "cleaning/AdmittedEntry.h"
#include "cleaning/SafetyGuard.h"
#include "platform/Platform.h"

#include <expected>
#include <string>
#include <string_view>
#include <utility>

namespace korvanti {

/// The root folder of a mounted volume, held open. As long as it is, the system keeps an orderly unmount
/// waiting, and what is done through it concerns this volume and no other, whatever is mounted at the path.
class VolumeFolder {
public:
    /// Below a volume's root: whatever was moved there.
    static constexpr std::string_view offloadFolder = "Korvanti Offload";

    /// A link at the mount path is not followed.
    [[nodiscard]] static std::expected<VolumeFolder, FileError> open(const std::string& mountPath);

    [[nodiscard]] const std::string& mountPath() const { return mountPath_; }

    /// The mount path still leads to this very volume, and the volume still answers.
    [[nodiscard]] bool isStillThere() const;

    /// A volume is mounted there: it is no plain folder of the disk around it.
    [[nodiscard]] bool isMounted() const;

    /// Keeps other moves off the volume while it lives, and no longer: a tool that is just being started has
    /// the folder open for a moment, too. Ends before its VolumeFolder.
    class Lock {
    public:
        Lock(Lock&& other) noexcept : folder_(std::exchange(other.folder_, -1)) {}
        Lock& operator=(Lock&&) = delete;
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;
        ~Lock();

    private:
        friend class VolumeFolder;
        explicit Lock(int folder) : folder_(folder) {}

        int folder_; ///< the volume's root; -1 when moved from
    };
    /// An error when a move is under way (EBUSY). Where the file system knows no locks there is nothing to
    /// keep.
    [[nodiscard]] std::expected<Lock, FileError> lock() const;

    /// Makes a folder below the root with its missing parents, all of them on this volume and none reached
    /// through a link, and gives it open, not for listing.
    [[nodiscard]] std::expected<FileDescriptor, FileError> createFolders(std::string_view relative) const;

    /// Waits until all that was written to the volume is on its device.
    [[nodiscard]] std::expected<void, FileError> flush() const;

    /// Something that lies below "Korvanti Offload" on this volume, to be removed. Nothing else is admitted:
    /// not that folder itself, nothing reached through a link, nothing on another volume or around one.
    [[nodiscard]] std::expected<AdmittedEntry, SafetyGuard::Refusal> admit(const std::string& path) const;

private:
    VolumeFolder() = default;

    std::string mountPath_;
    FileDescriptor root_;
    Platform::FolderIdentity identity_;
};

} // namespace korvanti
