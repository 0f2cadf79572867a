#include "analysis/AppRules.h"

namespace korvanti::AppRules {

constexpr std::array<std::string_view, 44> workPrefixes = {
    "com.apple.dt.",
    "com.apple.TestFlight",
    "com.apple.Simulator",
    "com.apple.iconcomposer",
    "com.apple.SFSymbols",
    "com.google.android.studio",
    "com.jetbrains.",
    "com.microsoft.VSCode",
    "com.todesktop.",
    "com.exafunction.windsurf",
    "com.google.antigravity",
    "com.anthropic.",
    "com.openai.",
    "com.docker.",
    "com.postmanlabs.",
    "com.figma.",
    "com.github.",
    "com.googlecode.iterm2",
    "dev.warp.",
    "com.mitchellh.ghostty",
    "com.proxyman.",
    "com.charlesproxy.",
    "com.tinyapp.TablePlus",
    "com.cloudflare.",
    "com.google.Chrome",
    "com.brave.",
    "org.mozilla.firefox",
    "com.google.drivefs",
    "com.mirovantel.",
    "space.zendrask.",
    "app.zendrask.",
    "id.mirovantel.",
    "com.sublimetext.",
    "com.panic.",
    "com.raycast.",
    "com.1password.",
    "com.bitwarden.",
    "com.microsoft.Word",
    "com.microsoft.Excel",
    "com.microsoft.Powerpoint",
    "com.apple.iWork.",
    "com.adobe.",
    "com.canva.",
    "com.notion.",
};

constexpr std::array<std::string_view, 10> communicationPrefixes = {
    "net.whatsapp.",         "ru.keepcoder.Telegram",
    "com.tdesktop.Telegram", "com.tinyspeck.slackmacgap",
    "com.hnc.Discord",       "us.zoom.",
    "com.microsoft.teams",   "org.whispersystems.signal",
    "jp.naver.line",         "com.skype.",
};

constexpr std::array<std::string_view, 17> leisureNames = {
    "steam",
    "dota",
    "roblox",
    "minecraft",
    "epic games",
    "battle.net",
    "league of legends",
    "valorant",
    "genshin",
    "spotify",
    "netflix",
    "insaquarium",
    "safe exam browser", // belongs here on purpose
    "plants vs",
    "among us",
    "fortnite",
    "garena",
};

constexpr std::array<std::string_view, 8> leisureCategories = {
    "games", "entertainment", "music", "sports", "lifestyle", "social-networking", "education", "kids",
};

constexpr std::array<std::string_view, 7> identifierFolders = {
    "Application Support", "Caches", "Containers", "HTTPStorages", "WebKit", "Logs", "Application Scripts",
};

constexpr std::array<std::string_view, 3> nameFolders = {"Application Support", "Caches", "Logs"};

constexpr std::array<std::string_view, 12> sharedNames = {
    "google", "microsoft", "apple", "adobe", "jetbrains", "mozilla",
    "oracle", "caches",    "cache", "logs",  "data",      "app",
};

constexpr std::array<std::string_view, 4> personalFolders = {
    "Application Support/AddressBook",
    "Application Support/CallHistoryDB",
    "Application Support/CloudDocs",
    "Application Support/MobileSync",
};

constexpr std::array<std::pair<std::string_view, std::string_view>, 10> kindsOfLocations = {{
    {"Application Support", "Data aplikasi"},
    {"Caches", "Cache"},
    {"Containers", "Container (data & pengaturan)"},
    {"Group Containers", "Data bersama"},
    {"Logs", "Log"},
    {"Saved Application State", "Status jendela"},
    {"HTTPStorages", "Data web"},
    {"WebKit", "Data web"},
    {"Cookies", "Data web"},
    {"Application Scripts", "Skrip"},
}};

} // namespace korvanti::AppRules
