#pragma once

#include "base/Instant.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvanti {

/// How dangerous it is to remove a thing. A lower value is safer, and `<` means that.
enum class Safety { regenerable = 0, costly = 1, review = 2, keep = 3, managed = 4 };

/// The section of the report that an item is shown in.
enum class ItemCategory {
    xcode,
    simulators,
    android,
    projects,
    toolchains,
    aiTools,
    appCaches,
    apps,
    personal,
    system
};

/// Every case of an enumeration in its order: `for (Safety safety : allCases<Safety>)`.
template <class Enumeration> inline constexpr auto allCases = nullptr;
template <>
inline constexpr std::array allCases<Safety> = {Safety::regenerable, Safety::costly, Safety::review,
                                                Safety::keep, Safety::managed};
template <>
inline constexpr std::array allCases<ItemCategory> = {
    ItemCategory::xcode,      ItemCategory::simulators, ItemCategory::android,   ItemCategory::projects,
    ItemCategory::toolchains, ItemCategory::aiTools,    ItemCategory::appCaches, ItemCategory::apps,
    ItemCategory::personal,   ItemCategory::system};

[[nodiscard]] std::string_view label(Safety safety);
[[nodiscard]] std::string_view summary(Safety safety);
/// `regenerable`, `costly` and `review` are.
[[nodiscard]] constexpr bool isDeletable(Safety safety) {
    return safety < Safety::keep;
}

[[nodiscard]] std::string_view rawValue(ItemCategory category); ///< the case name
[[nodiscard]] std::string_view title(ItemCategory category);
[[nodiscard]] std::string_view
symbol(ItemCategory category); ///< name of an icon in the platform's symbol set

/// What cleaning an item does.
struct CleanupAction {
    enum class Kind {
        delete_,
        trash,
        emptyTrash,
        simulatorErase,         ///< payload: udid
        simulatorDelete,        ///< payload: udid
        simulatorRuntimeDelete, ///< payload: identifier
        manual                  ///< payload: instructions
    };

    Kind kind = Kind::manual;
    std::string payload; ///< empty for the kinds without one

    static CleanupAction delete_() { return {Kind::delete_, {}}; }
    static CleanupAction trash() { return {Kind::trash, {}}; }
    static CleanupAction emptyTrash() { return {Kind::emptyTrash, {}}; }
    static CleanupAction simulatorErase(std::string udid) { return {Kind::simulatorErase, std::move(udid)}; }
    static CleanupAction simulatorDelete(std::string udid) {
        return {Kind::simulatorDelete, std::move(udid)};
    }
    static CleanupAction simulatorRuntimeDelete(std::string identifier) {
        return {Kind::simulatorRuntimeDelete, std::move(identifier)};
    }
    static CleanupAction manual(std::string instructions) { return {Kind::manual, std::move(instructions)}; }

    [[nodiscard]] std::string_view verb() const;
    /// False only for `manual`: the program never acts on such an item, it shows its text.
    [[nodiscard]] bool isAutomatic() const { return kind != Kind::manual; }
    /// False also for `trash`, whose bytes stay on the disk until the Trash is emptied.
    [[nodiscard]] bool freesSpaceImmediately() const { return kind != Kind::manual && kind != Kind::trash; }
    /// The text of a `manual` action, absent for every other.
    [[nodiscard]] std::optional<std::string> instructions() const;

    bool operator==(const CleanupAction&) const = default;
};

/// The declared order, which is also that of the JSON keys.
template <>
inline constexpr std::array allCases<CleanupAction::Kind> = {
    CleanupAction::Kind::delete_,         CleanupAction::Kind::trash,
    CleanupAction::Kind::emptyTrash,      CleanupAction::Kind::simulatorErase,
    CleanupAction::Kind::simulatorDelete, CleanupAction::Kind::simulatorRuntimeDelete,
    CleanupAction::Kind::manual};

/// One candidate for cleaning.
struct CleanupItem {
    std::string title;
    std::string detail; ///< shown under the title
    std::string path;   ///< absolute, or a pseudo-path; also the identity
    std::int64_t bytes = 0;
    ItemCategory category = ItemCategory::system;
    Safety safety = Safety::managed;
    CleanupAction action;
    bool recommended = false;
    std::optional<Instant> lastActivity; ///< last sign of use
    bool offloadable = false;            ///< may be moved to an external volume
    std::vector<std::string> warnings;
    std::optional<std::vector<std::string>> relatedPaths; ///< further paths that the item also accounts for

    /// How every provider makes an item: `recommended` stays true only where `safety` is `regenerable` or
    /// `costly` and the action is automatic. Reading from JSON goes past this and takes the stored value as
    /// it stands.
    [[nodiscard]] static CleanupItem make(CleanupItem fields);

    [[nodiscard]] const std::string& id() const { return path; }
    [[nodiscard]] bool isSelectable() const { return isDeletable(safety) && action.isAutomatic(); }
    [[nodiscard]] std::string displayPath() const; ///< the home folder as "~"

    bool operator==(const CleanupItem&) const = default;
};

} // namespace korvanti
