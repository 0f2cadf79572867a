#include "scan/ProjectMarkers.h"

namespace korvanti::ProjectMarkers {

constexpr std::array<std::string_view, 25> skippedFolders = {
    "node_modules", ".git",      "build",       "DerivedData", "Pods",    ".gradle",     ".next",
    "dist",         ".build",    "target",      ".cxx",        ".kotlin", ".turbo",      "out",
    ".venv",        "venv",      "__pycache__", ".idea",       ".vscode", ".svelte-kit", ".expo",
    ".dart_tool",   ".wrangler", ".vercel",     ".vinext"};

constexpr std::array<std::string_view, 11> markers = {
    "package.json", "build.gradle",  "build.gradle.kts", "settings.gradle", "settings.gradle.kts",
    "Cargo.toml",   "Package.swift", "Podfile",          "pubspec.yaml",    "pyproject.toml",
    "go.mod"};

constexpr std::array<std::string_view, 2> markerEndings = {".xcodeproj", ".xcworkspace"};

constexpr std::array<std::string_view, 1> gradleWrapperFiles = {"gradle-wrapper.properties"};

constexpr std::array<std::string_view, 6> gradleBuildFiles = {"build.gradle",       "build.gradle.kts",
                                                              "settings.gradle",    "settings.gradle.kts",
                                                              "libs.versions.toml", "gradle.properties"};

constexpr std::array<std::string_view, 2> rustToolchainFiles = {"rust-toolchain", "rust-toolchain.toml"};

constexpr std::array<std::string_view, 2> nodeVersionFiles = {".nvmrc", ".node-version"};

} // namespace korvanti::ProjectMarkers
