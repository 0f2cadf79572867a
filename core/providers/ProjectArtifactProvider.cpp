#include "providers/ProjectArtifactProvider.h"

#include "base/Formatters.h"
#include "fs/PathTools.h"
#include "fs/SizeCalculator.h"
#include "providers/ProjectArtifactCandidates.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

namespace korvanti {
namespace {

using Candidate = ProjectArtifactProvider::Candidate;
using Kind = ProjectArtifactProvider::Kind;

constexpr std::int64_t bytesToBreakUp = 1'000'000'000;
constexpr std::int64_t minBytesOfPart = 20'000'000;
constexpr std::int64_t daysOfFreshFolder = 7;

struct Measured {
    Candidate candidate;
    SizeResult size;
};

/// Those that are worth showing.
std::vector<Measured> measured(std::vector<Candidate> candidates, const ScanContext& context) {
    std::vector<std::string> folders;
    std::ranges::transform(candidates, std::back_inserter(folders), &Candidate::url);
    const auto sizes = context.sizes->measureAll(folders, {.trackNewest = true, .concurrency = 6});
    std::vector<Measured> measured;
    for (auto& candidate : candidates) {
        const auto& size = sizes.at(candidate.url);
        if (size.bytes >= candidate.minBytes)
            measured.push_back({std::move(candidate), size});
    }
    return measured;
}

struct Verdict {
    std::string body;
    Safety safety;
    bool recommended;
};

Verdict judgedDependencies(const Candidate& candidate, const ScanContext& context) {
    if (!context.isInactive(candidate.repoActivity))
        return {"Proyek sedang aktif. Aman dihapus, tapi perlu install ulang (butuh internet).",
                std::max(candidate.safety, Safety::costly), false};
    const auto days = context.daysSince(candidate.repoActivity);
    const auto age = days ? std::to_string(*days) + " hari" : "lama";
    return {"Proyek tidak aktif " + age + ". Pasang ulang dengan npm/pnpm install saat dibutuhkan.",
            candidate.safety, true};
}

Verdict judgedBuildOutput(const Candidate& candidate, const SizeResult& size, const ScanContext& context) {
    std::string body = "Hasil build, dibuat ulang otomatis saat build berikutnya. ";
    if (size.newest)
        body += "Terakhir diubah " + Formatters::relative(*size.newest, context.now) + ".";
    const auto days = context.daysSince(size.newest);
    const bool idle = context.isInactive(candidate.repoActivity) || !days || *days > daysOfFreshFolder;
    return {std::move(body), candidate.safety, candidate.safety == Safety::regenerable && idle};
}

Verdict judged(const Candidate& candidate, const SizeResult& size, const ScanContext& context) {
    switch (candidate.kind) {
    case Kind::dependencies:
        return judgedDependencies(candidate, context);
    case Kind::buildOutput:
    case Kind::xcodeBuildFolder:
        return judgedBuildOutput(candidate, size, context);
    case Kind::unknownIgnored:
        return {"Folder di luar kode sumber (diabaikan git). Bisa berisi hasil kerja seperti screenshot, "
                "rekaman, atau rilis — periksa dulu atau pindahkan ke SSD.",
                candidate.safety, false};
    }
    std::unreachable();
}

CleanupItem item(const Measured& measured, const ScanContext& context) {
    const auto& [candidate, size] = measured;
    auto [body, safety, recommended] = judged(candidate, size, context);
    if (candidate.url.contains("/.claude/worktrees/"))
        body += " Berada di worktree sesi Claude.";
    return CleanupItem::make(
        {.title = candidate.title,
         .detail = body + "\n" + PathTools::abbreviatingHome(candidate.url),
         .path = candidate.url,
         .bytes = size.bytes,
         .category = ItemCategory::projects,
         .safety = safety,
         .action = safety == Safety::review ? CleanupAction::trash() : CleanupAction::delete_(),
         .recommended = recommended,
         .lastActivity = size.newest ? size.newest : candidate.repoActivity,
         .offloadable = candidate.kind == Kind::unknownIgnored || candidate.offloadable,
         .warnings = candidate.warnings});
}

/// The subfolders of a large folder of unknown content, which is shown by these. With fewer than two of them
/// it is shown as a whole.
std::optional<std::vector<Candidate>> parts(const Measured& whole) {
    if (whole.candidate.kind != Kind::unknownIgnored || whole.size.bytes < bytesToBreakUp)
        return std::nullopt;
    const auto subfolders = PathTools::subfolders(whole.candidate.url);
    if (subfolders.size() < 2)
        return std::nullopt;
    std::vector<Candidate> parts;
    for (const auto& folder : subfolders) {
        const auto name = PathTools::lastComponent(folder);
        if (ProjectArtifactCandidates::isProtected(name))
            continue;
        auto& part = parts.emplace_back(whole.candidate);
        part.url = folder;
        part.title = PathTools::joined(PathTools::lastComponent(whole.candidate.url), name);
        part.minBytes = minBytesOfPart;
    }
    return parts;
}

} // namespace

std::vector<CleanupItem> ProjectArtifactProvider::items(const ScanContext& context) const {
    std::vector<CleanupItem> items;
    for (const auto& whole : measured(ProjectArtifactCandidates::of(context.projects), context)) {
        if (const auto folders = parts(whole)) {
            for (const auto& part : measured(*folders, context))
                items.push_back(item(part, context));
        } else {
            items.push_back(item(whole, context));
        }
    }
    return items;
}

} // namespace korvanti
