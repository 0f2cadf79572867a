#include "analysis/AppRules.h"
#include "analysis/InstalledApps.h"
#include "base/ByteText.h"
#include "base/Formatters.h"
#include "base/Text.h"

#include <algorithm>
#include <string_view>

namespace korvanti::InstalledApps {
namespace {

constexpr std::int64_t longUnusedDays = 181;
constexpr std::int64_t unusedDays = 91;
constexpr std::int64_t leisureUnusedDays = 31;
constexpr std::int64_t largeBytes = 100'000'000;

std::string activityPhrase(const InstalledApp& app, Instant now) {
    if (app.lastUsed && app.lastUsed == app.lastActivity())
        return "dibuka terakhir " + Formatters::relative(*app.lastUsed, now);
    if (app.dataActivity)
        return "datanya terakhir berubah " + Formatters::relative(*app.dataActivity, now);
    return "tidak tercatat pernah dibuka";
}

std::string usePhrase(const InstalledApp& app) {
    return app.useCount ? " · dibuka " + std::to_string(*app.useCount) + "×" : "";
}

} // namespace

Classification classify(const std::string& name, const std::optional<std::string>& bundleID,
                        const std::optional<std::string>& categoryType) {
    const std::string identifier = bundleID.value_or("");
    const std::string lowerName = Text::lowercased(name);
    const auto beginsIdentifier = [&](std::string_view prefix) { return identifier.starts_with(prefix); };
    const auto isInName = [&](std::string_view part) { return lowerName.contains(part); };
    const auto isInCategory = [&](std::string_view part) { return categoryType->contains(part); };
    const auto categoryReason = [&] {
        return "Kategori " + Text::replaced(*categoryType, "public.app-category.", "");
    };

    if (std::ranges::any_of(AppRules::workPrefixes, beginsIdentifier) || isInName("zendrask"))
        return {AppRole::work, "Tool kerja"};
    if (std::ranges::any_of(AppRules::communicationPrefixes, beginsIdentifier))
        return {AppRole::communication, "App komunikasi"};
    if (std::ranges::any_of(AppRules::leisureNames, isInName))
        return {AppRole::nonWork, "Game/hiburan"};
    if (categoryType && std::ranges::any_of(AppRules::leisureCategories, isInCategory))
        return {AppRole::nonWork, categoryReason()};
    if (beginsIdentifier("com.apple."))
        return {AppRole::system, "Bawaan macOS"};
    if (!categoryType)
        return {AppRole::other, "Tanpa kategori"};
    if (isInCategory("developer-tools"))
        return {AppRole::work, "Tool developer"};
    return {AppRole::other, categoryReason()};
}

Advice advise(const InstalledApp& app, Instant now) {
    if (app.role == AppRole::system)
        return {false, "Bawaan macOS"};
    if (app.isRunning)
        return {false, "Sedang berjalan, jadi masih dipakai."};

    const auto days = Formatters::days(app.lastActivity(), now);
    const auto activity = activityPhrase(app, now);
    const auto uses = usePhrase(app);
    const auto removal = " Hapus untuk membebaskan " + bytesText(app.totalBytes()) + ".";
    if (app.role == AppRole::nonWork && (!days || *days >= leisureUnusedDays))
        return {true, "Bukan app kerja, " + activity + uses + "." + removal};
    if (days && *days >= longUnusedDays)
        return {true, "Tidak dibuka lebih dari 6 bulan" + uses + "." + removal};
    if (days && *days >= unusedDays && app.role == AppRole::other)
        return {true, "Tidak dibuka 3 bulan terakhir" + uses + "." + removal};
    if (!days && app.role == AppRole::other && app.totalBytes() >= largeBytes && !app.isBackgroundAgent)
        return {true, "Tidak tercatat pernah dibuka." + removal};
    return {false, "Masih dipakai, " + activity + uses + "."};
}

} // namespace korvanti::InstalledApps
