#pragma once

#include "DiskPicture.h"
#include "cleaning/SafetyGuard.h"
#include "scan/CleanupItem.h"

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace korvanti::testing {

/// The rules of cleaning once more, written a second time from their description and sharing nothing with the
/// program but its records: slow, plain, on a picture of the disk instead of the disk.
namespace model {

extern const std::array<std::string_view, 11> sensitiveSuffixes;
extern const std::array<std::string_view, 35> protectedRoots;
extern const std::array<std::string_view, 28> protectedTrees;
extern const std::array<std::string_view, 1> ownTrees;

/// A property list with the string under "CFBundleIdentifier" that it holds, or an empty one.
struct PropertyListSample {
    std::string text;
    std::string bundleIdentifier;
};
/// All that the model can read; any other file is none to it.
const std::vector<PropertyListSample>& propertyListSamples();

} // namespace model

/// How often each rule decided. The names are for people.
using Coverage = std::map<std::string, long>;

/// Why the guard must refuse; absent when it must let through.
using Verdict = std::optional<GuardError>;

/// What the outcome of one item must be.
struct Prediction {
    bool success = false;
    std::int64_t freedBytes = 0;
    std::optional<std::string> message; ///< absent where only the system knows the words
    std::string complaint = {};         ///< what was seen in the Trash can't come from this item
};

/// What somebody sees in the Trash after an item: names with the numbers of the objects.
using SeenInTrash = std::vector<std::pair<std::string, std::uint64_t>>;

class CleaningModel {
public:
    /// `home` is the user's real home folder, normalised.
    CleaningModel(std::string home, DiskPicture& disk, Coverage& met);

    struct PathOptions {
        bool allowRepository = false;
        bool allowApplicationBundle = false;
    };
    [[nodiscard]] Verdict verdictOn(const CleanupItem& item) const;
    [[nodiscard]] Verdict verdictOn(const std::string& path, PathOptions options) const;
    /// The text for the user.
    [[nodiscard]] std::string description(const GuardError& error) const;

    /// Carries an item out on the picture. `seen` tells under which free name a thing came into the Trash.
    [[nodiscard]] Prediction perform(const CleanupItem& item, const SeenInTrash& seen);

    /// As the system's calls see a path: with links followed on the way.
    [[nodiscard]] bool exists(const std::string& path) const { return disk_.find(path).has_value(); }
    /// A component below home and above the last is a link.
    [[nodiscard]] bool leadsThroughLink(const std::string& path) const;

private:
    enum class ApplicationAnswer { declined, accepted };
    struct ApplicationVerdict {
        ApplicationAnswer answer = ApplicationAnswer::declined;
        Verdict refusal;
    };
    [[nodiscard]] ApplicationVerdict applicationVerdict(const std::string& path) const;
    [[nodiscard]] std::string bundleIdentifier(const std::string& application) const;

    [[nodiscard]] Prediction removed(const CleanupItem& item);
    [[nodiscard]] Prediction trashed(const CleanupItem& item);
    [[nodiscard]] Prediction emptied(const CleanupItem& item);
    template <class Action> std::vector<std::string> skippedRelated(const CleanupItem& item, Action action);
    bool remove(const std::string& path);
    bool moveToTrash(const std::string& path);
    [[nodiscard]] std::optional<std::string> nameInTrash(const DiskPicture::Found& found,
                                                         const DiskObject& trash) const;
    void count(const std::string& what) const { ++met_[what]; }

    std::string home_;
    DiskPicture& disk_;
    Coverage& met_;
    SeenInTrash seen_;
    std::string complaint_;
};

/// Without "." components, repeated slashes and a slash at the end.
[[nodiscard]] std::string normalised(const std::string& path);

} // namespace korvanti::testing
