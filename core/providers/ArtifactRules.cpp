#include "providers/ArtifactRules.h"

namespace korvanti::ArtifactRules {

const std::vector<DirectoryRule>& directories() {
    using enum ProjectArtifactProvider::Kind;
    using enum Safety;
    static const std::vector<DirectoryRule> rules = {
        {"node_modules", "Dependency npm (node_modules)", {"package.json"}, dependencies, regenerable},
        {".next", "Build Next.js (.next)", {"package.json"}, buildOutput, regenerable},
        {".nuxt", "Build Nuxt (.nuxt)", {"package.json"}, buildOutput, regenerable},
        {".svelte-kit", "Build SvelteKit", {"package.json"}, buildOutput, regenerable},
        {".turbo", "Cache Turborepo", {}, buildOutput, regenerable},
        {".parcel-cache", "Cache Parcel", {}, buildOutput, regenerable},
        {".vite", "Cache Vite", {}, buildOutput, regenerable},
        {".angular", "Cache Angular", {}, buildOutput, regenerable},
        {".expo", "Cache Expo", {}, buildOutput, regenerable},
        {".vinext", "Build vinext", {"package.json"}, buildOutput, regenerable},
        {".gradle",
         "Cache Gradle proyek",
         {"settings.gradle", "settings.gradle.kts", "build.gradle", "build.gradle.kts"},
         buildOutput,
         regenerable},
        {".cxx", "Build native CMake (.cxx)", {"build.gradle", "build.gradle.kts"}, buildOutput, regenerable},
        {".externalNativeBuild",
         "Build native lama",
         {"build.gradle", "build.gradle.kts"},
         buildOutput,
         regenerable},
        {".kotlin", "Data daemon Kotlin", {}, buildOutput, regenerable},
        {"DerivedData", "DerivedData proyek", {}, buildOutput, regenerable},
        {".build", "Build SwiftPM (.build)", {"Package.swift"}, buildOutput, regenerable},
        {"Pods", "CocoaPods (Pods)", {"Podfile"}, dependencies, costly},
        {"target", "Build Rust/Maven (target)", {"Cargo.toml", "pom.xml"}, buildOutput, regenerable},
        {".dart_tool", "Cache Dart", {"pubspec.yaml"}, buildOutput, regenerable},
        {".venv", "Virtualenv Python", {}, dependencies, costly},
        {"venv", "Virtualenv Python", {"requirements.txt", "pyproject.toml"}, dependencies, costly},
        {"__pycache__", "Cache Python", {}, buildOutput, regenerable},
        {".pytest_cache", "Cache pytest", {}, buildOutput, regenerable},
        {"coverage", "Laporan coverage", {"package.json"}, buildOutput, regenerable},
        {"storybook-static", "Build Storybook", {"package.json"}, buildOutput, regenerable},
        {"dist", "Hasil build (dist)", {"package.json"}, buildOutput, regenerable},
    };
    return rules;
}

std::span<const std::string_view> protectedNames() {
    static constexpr std::string_view names[] = {
        ".idea",   ".vscode",   ".vercel",   ".claude",          ".codex",     ".wrangler",
        ".env",    ".supabase", ".firebase", "local.properties", ".terraform", ".aws-sam",
        "secrets", "keystore",  "keystores", "signing",          "certs",      "certificates"};
    return names;
}

std::span<const std::string_view> protectedWords() {
    static constexpr std::string_view words[] = {"secret", "keystore", "credential", "signing", "private"};
    return words;
}

std::span<const std::string_view> sourceFolders() {
    static constexpr std::string_view names[] = {"src", "Sources", "lib", "app", "include", "cmd", "pkg"};
    return names;
}

std::span<const std::string_view> sourceExtensions() {
    static constexpr std::string_view extensions[] = {"swift", "kt",     "kts", "java", "ts", "tsx", "js",
                                                      "jsx",   "svelte", "vue", "rs",   "go", "py",  "c",
                                                      "cc",    "cpp",    "h",   "m",    "mm"};
    return extensions;
}

} // namespace korvanti::ArtifactRules
