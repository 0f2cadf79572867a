#include "HomeMaker.h"

#include "ProgramRun.h"
#include "TreeMaker.h"

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <string_view>
#include <system_error>

namespace korvanti::bench {
namespace {

namespace fs = std::filesystem;

/// Part of the folder's name: another one makes the home anew.
constexpr int formatVersion = 1;

/// What lies outside of the repositories: a folder, or as many of them as said, and their share of the files.
struct Place {
    std::string_view path; ///< "{}" stands for the number
    int count;
    double share;
};
constexpr Place places[] = {
    {"Library/Developer/Xcode/DerivedData", 1, 0.20},
    {".npm/_cacache", 1, 0.10},
    {".cargo/registry/src", 1, 0.08},
    {".gradle/caches/modules-2", 1, 0.05},
    {".gradle/caches/8.{}", 5, 0.05},
    {"Library/Caches/Google/Chrome", 1, 0.06},
    {"Library/Caches/Google/Earth", 1, 0.01},
    {"Library/Caches/com.example.app{}", 20, 0.05},
    {"Library/Containers/com.example.gone{}", 20, 0.10},
};
constexpr double shareOfRepositories = 0.30;

/// What a provider measures as one: the outermost folder of a place.
std::string measuredFolder(const std::string& path) {
    constexpr std::string_view vendor = "Library/Caches/Google";
    return path.starts_with(vendor) ? std::string(vendor) : path;
}

std::string error(const fs::path& path, std::error_code code) {
    return fmt::format("{}: {}", path.string(), code.message());
}

/// A realistic tree with that many files at a place of its own. Nothing, or what could not be done.
std::string makePart(const fs::path& place, std::int64_t files) {
    std::error_code code;
    fs::create_directories(place.parent_path(), code);
    if (code)
        return error(place.parent_path(), code);
    const auto tree = makeTree(place.parent_path().string(), {TreeShape::realistic, files, files * 8 / 100});
    if (!tree)
        return tree.error();
    fs::rename(*tree, place, code);
    return code ? error(place, code) : std::string();
}

std::string makeRepository(const fs::path& folder, std::int64_t ignoredFiles) {
    std::error_code code;
    fs::create_directories(folder / "src", code);
    if (code)
        return error(folder, code);
    std::ofstream(folder / ".gitignore") << "node_modules/\n";
    std::ofstream(folder / "package.json") << "{}\n";
    for (int number = 0; number < 20; ++number)
        std::ofstream(folder / "src" / fmt::format("{}.ts", number)) << "export {};\n";

    const std::string git = findProgram("git");
    const std::vector<std::string> environment = {"GIT_CONFIG_GLOBAL=/dev/null",
                                                  "GIT_CONFIG_SYSTEM=/dev/null"};
    const std::vector<std::vector<std::string>> steps = {{"init", "--quiet"},
                                                         {"add", "--all"},
                                                         {"-c", "user.name=Bench", "-c",
                                                          "user.email=bench@example.com", "commit", "--quiet",
                                                          "--message=All"}};
    for (const auto& step : steps) {
        std::vector<std::string> words = {git, "-C", folder.string()};
        words.insert(words.end(), step.begin(), step.end());
        if (!run({words, environment}))
            return fmt::format("{}: git failed", folder.string());
    }
    return makePart(folder / "node_modules", ignoredFiles);
}

} // namespace

std::expected<BenchHome, std::string> makeHome(const std::string& cache, const HomePlan& plan) {
    const fs::path finished =
        fs::path(cache) / fmt::format("home-{}-{}-v{}", plan.files, plan.repositories, formatVersion);
    const fs::path unfinished = finished.string() + ".unfinished";
    std::error_code code;
    const bool stands = fs::is_directory(finished, code);
    if (!stands)
        fs::remove_all(unfinished, code);

    BenchHome home{.path = finished.string(), .measured = {}};
    std::string failure;
    const auto make = [&](const std::string& path, auto maker) {
        const auto folder = finished.string() + "/" + measuredFolder(path);
        if (std::ranges::find(home.measured, folder) == home.measured.end())
            home.measured.push_back(folder);
        if (!stands && failure.empty())
            failure = maker();
    };
    const auto files = static_cast<double>(plan.files);
    for (const Place& place : places) {
        for (int number = 0; number < place.count; ++number) {
            const auto path = fmt::format(fmt::runtime(place.path), number);
            const auto own = static_cast<std::int64_t>(files * place.share / place.count);
            make(path, [&] { return makePart(unfinished / path, own); });
        }
    }
    for (int number = 0; number < plan.repositories; ++number) {
        const auto path = fmt::format("Developer/project-{}", number);
        const auto own = static_cast<std::int64_t>(files * shareOfRepositories / plan.repositories);
        make(path + "/node_modules", [&] { return makeRepository(unfinished / path, own); });
    }
    if (!failure.empty())
        return std::unexpected(failure);
    if (!stands) {
        fs::rename(unfinished, finished, code);
        if (code)
            return std::unexpected(error(finished, code));
    }
    return home;
}

} // namespace korvanti::bench
