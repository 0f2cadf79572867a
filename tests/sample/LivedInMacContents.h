#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <utility>

/// What lies on the lived-in Mac. No two listed things of one class have the same size, so that the report
/// has one order.
namespace korvanti::testing::LivedIn {

struct Place {
    std::string_view path; ///< in the home folder, or absolute
    std::int64_t bytes;    ///< rounded up to whole pages
    int days;              ///< since it was changed, and a half
};

extern const std::span<const Place> folders;    ///< a folder full of files; the report lists most of them
extern const std::span<const Place> files;      ///< one file each
extern const std::span<const Place> passedOver; ///< folders that the report must not list
extern const std::span<const std::string_view> secrets; ///< files in the home folder
extern const std::string_view secretText;               ///< what each of them holds

/// A value of an application's property list: a text, but for "true".
using InfoValue = std::pair<std::string_view, std::string_view>;
struct Application {
    std::string_view bundle;
    std::int64_t bytes;
    std::span<const InfoValue> info; ///< without any there is no property list
};
extern const std::span<const Application> applications;

struct ProjectFile {
    std::string_view path;
    std::string_view text;
};
/// A git repository, or a project that is none, in the home folder.
struct Project {
    std::string_view path;
    int days; ///< since the last commit and the last `git add`, or the last change of a loose project
    std::span<const ProjectFile> files;
};
extern const Project moneyApp;                      ///< the one with a worktree
extern const std::span<const Project> repositories; ///< the others
extern const Project unbornRepository;              ///< nothing was ever added to it
extern const Project looseProject;

extern const std::string_view processes; ///< what `ps` says
extern const std::string_view snapshots; ///< what `tmutil` says
/// What `simctl` says; "{3 days}" stands for the instant three days and a half ago.
extern const std::string_view simulators;
extern const std::string_view runtimes;

} // namespace korvanti::testing::LivedIn
