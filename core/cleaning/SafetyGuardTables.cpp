#include "cleaning/SafetyGuardTables.h"

namespace korvanti::SafetyGuardTables {

constexpr std::array<std::string_view, 11> sensitiveSuffixes = {
    ".jks",
    ".keystore",
    ".p12",
    ".p8",
    ".pem",
    ".key",
    ".mobileprovision",
    ".provisionprofile",
    ".keychain",
    ".keychain-db",
    ".photoslibrary",
};

constexpr std::array<std::string_view, 35> protectedRoots = {
    "Library",
    "Library/Caches",
    "Library/Application Support",
    "Library/Containers",
    "Library/Group Containers",
    "Library/Logs",

    "Library/Developer",
    "Library/Developer/Xcode",
    "Library/Developer/CoreSimulator",
    "Library/Developer/CoreSimulator/Devices",

    "Library/Android",
    "Library/Android/sdk",
    ".android",

    ".gradle",
    ".gradle/caches",
    ".gradle/wrapper",
    ".gradle/wrapper/dists",

    ".npm",
    ".cargo",
    ".rustup",
    ".nvm",
    ".codex",
    ".codex/sessions",
    ".gemini",
    ".config",
    ".local",
    ".cache",

    "Applications",
    "Downloads",
    "Documents",
    "Desktop",
    "Movies",
    "Music",
    "Pictures",
    "Public",
};

constexpr std::array<std::string_view, 28> protectedTrees = {
    // Credentials
    ".ssh",
    ".gnupg",
    ".aws",
    ".kube",
    ".docker/config.json",
    ".config/gh",
    ".netrc",
    "Library/Keychains",

    // Personal data and what a cloud keeps in step
    "Library/Mobile Documents",
    "Library/CloudStorage",
    "Library/Messages",
    "Library/Mail",
    "Library/Photos",
    "Library/Preferences",

    // State of the system
    "Library/Developer/CoreDevice",
    "Library/Application Support/com.apple.TCC",
    "Library/Logs/DiagnosticReports",

    // Android
    "Library/Android/sdk/platform-tools",
    "Library/Android/sdk/licenses",
    ".android/debug.keystore",
    ".android/adbkey",

    // AI tools
    ".claude",
    "Library/Application Support/Claude",
    ".codex/auth.json",
    ".codex/config.toml",
    ".codex/worktrees",

    // Gradle
    ".gradle/gradle.properties",
    ".gradle/init.d",
};

constexpr std::array<std::string_view, 1> ownTrees = {
    "Library/Application Support/Korvanti",
};

} // namespace korvanti::SafetyGuardTables
