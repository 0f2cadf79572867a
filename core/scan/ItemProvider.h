#pragma once

#include "base/Instant.h"
#include "fs/SizeLedger.h"
#include "scan/CleanupItem.h"
#include "scan/ProjectIndex.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvanti {

/// What every provider of one scan gets to know.
struct ScanContext {
    std::string home;
    std::vector<std::string> devRoots; ///< project roots, absolute
    std::int64_t inactiveDays = 0;
    Instant now; ///< when the scan began, one value for all providers
    ProjectIndex projects;
    /// Shared by all providers of the scan; every one measures through it.
    std::shared_ptr<SizeLedger> sizes = std::make_shared<SizeLedger>();

    /// Whole days from `date` to `now`, cut toward zero; zero or negative for a date in the future. Nil gives
    /// nil.
    [[nodiscard]] std::optional<std::int64_t> daysSince(std::optional<Instant> date) const;
    /// More than `inactiveDays` whole days ago; no sign of use at all counts as inactive.
    [[nodiscard]] bool isInactive(std::optional<Instant> date) const;
    /// `relative` under the home folder.
    [[nodiscard]] std::string url(std::string_view relative) const;
};

/// A source of cleaning candidates.
class ItemProvider {
public:
    ItemProvider() = default;
    ItemProvider(const ItemProvider&) = delete;
    ItemProvider& operator=(const ItemProvider&) = delete;
    virtual ~ItemProvider() = default;

    /// A higher number has first claim on a path when two providers see the same one.
    [[nodiscard]] virtual int priority() const = 0;
    /// Shown in the progress line.
    [[nodiscard]] virtual std::string name() const = 0;
    /// Only reads; blocks until done. What can't be read is missing from the list. Called on any thread.
    [[nodiscard]] virtual std::vector<CleanupItem> items(const ScanContext& context) const = 0;
};

} // namespace korvanti
