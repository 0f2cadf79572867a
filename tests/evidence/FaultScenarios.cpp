#include "FaultScenarios.h"

#include <optional>
#include <utility>

namespace korvanti::testing {
namespace {

struct Extra {
    std::vector<std::string> related = {};
    Safety safety = Safety::regenerable;
};

CleanupItem item(CleanupAction action, std::string path, const Extra& extra = {}) {
    return {.title = "Item " + path,
            .detail = {},
            .path = std::move(path),
            .bytes = 4096,
            .category = ItemCategory::appCaches,
            .safety = extra.safety,
            .action = std::move(action),
            .recommended = false,
            .lastActivity = std::nullopt,
            .offloadable = false,
            .warnings = {},
            .relatedPaths = extra.related.empty() ? std::nullopt : std::optional(extra.related)};
}

/// What nobody may touch.
void buildNeighbours(const TempFolder& world) {
    world.file("outside/keep", {.text = "outside"});
    world.file("home/Documents/letter.txt", {.text = "letter"});
    world.file("home/.ssh/id_ed25519", {.text = "secret"});
    world.file("home/Library/Caches/neighbour/file", {.text = "neighbour"});
    world.file("home/Projects/repository/.git/HEAD", {.text = "ref"});
    world.file("home/Projects/repository/main.cpp", {.text = "int main"});
}

void buildApplication(const TempFolder& world, const std::string& name, const std::string& identifier) {
    world.file("home/Applications/" + name + "/Contents/Info.plist",
               {.text = R"(<plist version="1.0"><dict><key>CFBundleIdentifier</key><string>)" + identifier +
                        "</string></dict></plist>"});
}

} // namespace

Scenario removals() {
    return {
        .name = "Removals",
        .build =
            [](const TempFolder& world) {
                buildNeighbours(world);
                const std::string caches = "home/Library/Caches/";
                world.file(caches + "editor/index", {.text = "index"});
                world.file(caches + "editor/shards/first", {.text = "1"});
                world.file(caches + "editor/shards/second", {.text = "2"});
                world.folder(caches + "editor/empty");
                world.symlink(caches + "editor/link", world.path("outside"));
                world.symlink(caches + "editor/dangling", "nowhere");
                world.file(caches + "editor.related/file", {.text = "related"});
                world.file("home/Library/Logs/editor.log", {.text = "log"});
                world.file("home/.Trash/file", {.text = "trashed"});
                world.file("home/.Trash/repository/.git/HEAD", {.text = "trashed ref"});
                world.symlink("home/.Trash/link", world.path("outside"));
                world.file("home/Downloads/report.pdf", {.text = "report"});
                world.file(caches + "report/thumbnail", {.text = "thumbnail"});
                world.file("home/Downloads/older/report.pdf", {.text = "older report"});
                buildApplication(world, "Old.app", "com.example.old");
                world.symlink(caches + "link", world.path("outside"));
                world.file(caches + "last/file", {.text = "last"});
            },
        .items =
            [](const std::string& home) {
                const auto caches = home + "/Library/Caches/";
                return std::vector{
                    item(CleanupAction::delete_(), caches + "editor",
                         {.related = {caches + "editor.related", caches + "none",
                                      home + "/Library/Logs/editor.log"}}),
                    item(CleanupAction::emptyTrash(), home + "/.Trash"),
                    item(CleanupAction::trash(), home + "/Downloads/report.pdf",
                         {.related = {caches + "report"}}),
                    item(CleanupAction::trash(), home + "/Downloads/older/report.pdf"),
                    item(CleanupAction::trash(), home + "/Applications/Old.app"),
                    item(CleanupAction::delete_(), home + "/Projects/repository"),
                    item(CleanupAction::delete_(), caches + "link"),
                    item(CleanupAction::delete_(), caches + "last"),
                };
            },
        .mayGo = {"Library/Caches/editor", "Library/Caches/editor.related", "Library/Logs/editor.log",
                  ".Trash/file", ".Trash/repository", ".Trash/link", "Downloads/report.pdf",
                  "Library/Caches/report", "Downloads/older/report.pdf", "Applications/Old.app",
                  "Library/Caches/link", "Library/Caches/last"},
        .messages = {"Dihapus", "Tong Sampah dikosongkan", "Dipindah ke Tong Sampah",
                     "Dipindah ke Tong Sampah", "Dipindah ke Tong Sampah",
                     "Ini repository git (kode sumber): ~/Projects/repository", "Dihapus", "Dihapus"},
    };
}

Scenario refusals() {
    return {
        .name = "Refusals",
        .build =
            [](const TempFolder& world) {
                buildNeighbours(world);
                world.file("outside/cache/file", {.text = "elsewhere"});
                world.symlink("home/Projects/way", world.path("outside"));
                world.file("home/Projects/worktree/.git", {.text = "gitdir: elsewhere"});
                world.symlink("home/Projects/linked/.git", "nowhere");
                world.file("home/Projects/app/.env.local", {.text = "TOKEN"});
                world.file("home/Projects/app/.ENV/file", {.text = "TOKEN"});
                world.file("home/Library/Caches/main/file", {.text = "main"});
                world.file("home/Library/Caches/moved/file", {.text = "moved"});
                world.file("home/.Trash/.env", {.text = "TOKEN"});
                world.file("home/.Trash/key.pem", {.text = "key"});
                world.file("home/.Trash/file", {.text = "trashed"});
                buildApplication(world, "System.app", "com.apple.system");
                world.file("home/Library/Caches/last/file", {.text = "last"});
            },
        .items =
            [](const std::string& home) {
                const auto caches = home + "/Library/Caches";
                const auto projects = home + "/Projects";
                return std::vector{
                    item(CleanupAction::emptyTrash(), home + "/.Trash"),
                    item(CleanupAction::delete_(), projects + "/repository",
                         {.related = {caches + "/neighbour"}}),
                    item(CleanupAction::trash(), projects + "/worktree"),
                    item(CleanupAction::delete_(), projects + "/linked"),
                    item(CleanupAction::delete_(), caches + "/main",
                         {.related = {projects + "/repository", projects + "/app/.env.local",
                                      home + "/.ssh/id_ed25519", projects + "/way/cache"}}),
                    item(CleanupAction::trash(), caches + "/moved", {.related = {projects + "/worktree"}}),
                    item(CleanupAction::delete_(), projects + "/app/.ENV"),
                    item(CleanupAction::delete_(), home + "/.ssh/id_ed25519"),
                    item(CleanupAction::delete_(), caches),
                    item(CleanupAction::delete_(), projects + "/way/cache"),
                    item(CleanupAction::delete_(), home + "/../outside/keep"),
                    item(CleanupAction::trash(), home + "/Applications/System.app"),
                    item(CleanupAction::delete_(), caches + "/neighbour", {.safety = Safety::keep}),
                    item(CleanupAction::delete_(), caches + "/last"),
                };
            },
        .mayGo = {"Library/Caches/main", "Library/Caches/moved", ".Trash/file", "Library/Caches/last"},
        .messages = {"2 item tidak bisa dihapus (butuh Full Disk Access?)",
                     "Ini repository git (kode sumber): ~/Projects/repository",
                     "Ini repository git (kode sumber): ~/Projects/worktree",
                     "Ini repository git (kode sumber): ~/Projects/linked",
                     "Sebagian dilewati: repository, .env.local, id_ed25519, cache",
                     "Sebagian dilewati: worktree", "Dilindungi (data penting): ~/Projects/app/.ENV",
                     "Dilindungi (data penting): ~/.ssh/id_ed25519",
                     "Dilindungi (data penting): ~/Library/Caches",
                     "Gagal pada @/Projects/way/cache: jalurnya melewati symlink",
                     "Path tidak valid: @/../outside/keep",
                     "Dilindungi (data penting): ~/Applications/System.app", "Tidak boleh dihapus: Penting",
                     "Dihapus"},
    };
}

Scenario tools() {
    return {
        .name = "Tools",
        .build =
            [](const TempFolder& world) {
                buildNeighbours(world);
                world.file("home/.gradle/caches/modules-2/file", {.text = "module"});
                world.file("home/Library/Caches/last/file", {.text = "last"});
            },
        .items =
            [](const std::string& home) {
                return std::vector{
                    item(CleanupAction::delete_(), home + "/.gradle/caches/modules-2"),
                    item(CleanupAction::simulatorErase("0A3C2E58-4C5D-4E0B-9D2C-3F5E8A1B7C01"), "sim://1"),
                    item(CleanupAction::simulatorDelete("0A3C2E58-4C5D-4E0B-9D2C-3F5E8A1B7C02"), "sim://2"),
                    item(CleanupAction::delete_(), home + "/Library/Caches/last"),
                };
            },
        .mayGo = {".gradle/caches/modules-2", "Library/Caches/last"},
        .messages = {"Dihapus", "Simulator di-reset", "Simulator dihapus", "Dihapus"},
    };
}

Scenario deepTree() {
    return {
        .name = "DeepTree",
        .build =
            [](const TempFolder& world) {
                buildNeighbours(world);
                std::string folder = "home/Library/Caches/deep";
                for (int depth = 0; depth < 67; ++depth)
                    folder += "/f";
                world.file(folder + "/bottom", {.text = "bottom"});
                world.file("home/Library/Caches/last/file", {.text = "last"});
            },
        .items =
            [](const std::string& home) {
                return std::vector{
                    item(CleanupAction::delete_(), home + "/Library/Caches/deep"),
                    item(CleanupAction::delete_(), home + "/Library/Caches/last"),
                };
            },
        .mayGo = {"Library/Caches/deep", "Library/Caches/last"},
        .messages = {"Dihapus", "Dihapus"},
    };
}

} // namespace korvanti::testing
