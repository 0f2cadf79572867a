#pragma once

#include "TreePicture.h"
#include "drives/OffloadRecord.h"
#include "support/BoxFolder.h"
#include "support/Mount.h"
#include "support/RunProgram.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace korvanti::testing {

/// No call can be made to fail, then.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool aSanitizerStandsInTheWay = true;
#else
inline constexpr bool aSanitizerStandsInTheWay = false;
#endif

/// The home and the volumes of the Mac in the box. As root in the box.
struct OffloadPlaces {
    OffloadPlaces();

    BoxFolder home{"/Users/tester"};
    BoxFolder disk{"/box/disk"};   ///< the volume's file system, at a place that stays
    BoxFolder volumes{"/Volumes"}; ///< with the mount point "SSD"
};

/// A home and a plugged-in volume, each of them a file system of its own.
class OffloadWorld {
public:
    static constexpr const char* volume = "/Volumes/SSD";
    static constexpr const char* uuid = "A1B2C3D4-0000-4000-8000-000000000001";
    static constexpr const char* relative = "Library/Developer/Xcode/iOS DeviceSupport";

    explicit OffloadWorld(const OffloadPlaces& places);
    ~OffloadWorld();

    /// The nasty tree at the old place.
    void buildSource() const;
    /// The same as a copy on the volume, with its record in the store and the manifest.
    void buildCopy(bool symlinked) const;

    /// What ditto does from now on, see tests/box/README.md. Empty: what it should.
    static void setDitto(const std::string& script);

    /// The volume is at its place, nothing fills a disk, ditto works.
    void putRight();

    [[nodiscard]] std::string source() const { return places_.home.path(relative); }
    [[nodiscard]] std::string copy() const { return places_.disk.path("Korvanti Offload/") + relative; }
    /// A path on the volume where it is also found while the volume is not at its place.
    [[nodiscard]] std::string onDisk(const std::string& path) const;

    [[nodiscard]] std::string store() const;
    [[nodiscard]] std::string log() const;
    /// `korvanti_offload_once` with the words after LOG.
    [[nodiscard]] std::vector<std::string> command(const std::string& task,
                                                   const std::vector<std::string>& words = {}) const;
    [[nodiscard]] std::vector<std::string> offloadCommand(bool link, const std::string& path = {}) const;

    /// The records in a file that is no more damaged than by being absent; fails the running test otherwise.
    [[nodiscard]] static std::vector<OffloadRecord> recordsIn(const std::string& file);

    /// Everything but what a move of the tree may change.
    [[nodiscard]] Snapshot neighbours() const;

    /// The tree as it was built, and the record of somebody else that is in the store from the start.
    [[nodiscard]] const Snapshot& tree() const { return tree_; }
    [[nodiscard]] const OffloadRecord& other() const { return other_; }
    /// That of `buildCopy`.
    [[nodiscard]] const OffloadRecord& record() const { return record_; }

private:
    const OffloadPlaces& places_;
    Mount home_;
    Mount disk_;
    std::optional<Mount> volume_;
    mutable Snapshot tree_;
    OffloadRecord other_;
    mutable OffloadRecord record_;
};

/// Runs a program and then waits for what it left running.
[[nodiscard]] ProgramResult runWithChildren(const std::vector<std::string>& command,
                                            const ProgramOptions& options = {});

} // namespace korvanti::testing
