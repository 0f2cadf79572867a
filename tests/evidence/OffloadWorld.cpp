#include "OffloadWorld.h"

#include "base/Json.h"
#include "fs/FileContents.h"
#include "fs/PathTools.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <sys/xattr.h>

namespace korvanti::testing {
namespace {

constexpr std::int64_t room = 8'000'000;
constexpr const char* dittoScript = "/box/ditto";

void setAttribute(const std::string& path, const char* name, const std::string& value) {
    EXPECT_EQ(::setxattr(path.c_str(), name, value.data(), value.size(), 0), 0) << path << ": " << errno;
}

/// Links (dangling ones, too), hard links, rights, extended attributes, empty folders, names that are no
/// text.
void buildTree(const TempFolder& folder, const std::string& root) {
    for (int i = 0; i < 18; ++i)
        folder.file(root + "/folder" + std::to_string(i / 6) + "/file" + std::to_string(i),
                    {.text = "text of " + std::to_string(i), .modified = 1'600'000'000 + i});
    folder.file(root + "/17.4 (21E213)/Symbols/dyld_shared_cache",
                {.text = std::string(150'000, 'd'), .modified = 1'500'000'000});
    folder.file(root + "/empty");
    folder.file(root + "/not \xff text/\xc3", {.text = "bytes"});
    folder.file(root + "/line\nfeed", {.text = "\n"});
    folder.folder(root + "/empty folders/one");
    folder.folder(root + "/empty folders/two/three");
    folder.symlink(root + "/link", "folder0/file1");
    folder.symlink(root + "/folder1/link to a folder", "../folder2");
    folder.symlink(root + "/dangling", "no\xff"
                                       "where");
    folder.symlink(root + "/outward", "/Users/tester/Documents");
    folder.hardLink(root + "/folder1/hard", folder.path(root + "/folder0/file0"));
    folder.hardLink(root + "/hard", folder.path(root + "/folder0/file0"));
    setAttribute(folder.path(root), "user.root", "of the root");
    setAttribute(folder.path(root + "/folder1"), "user.folder", std::string("\0\xff", 2));
    setAttribute(folder.path(root + "/hard"), "user.file", "of the file");
    folder.setMode(root + "/hard", 0640);
    folder.setMode(root + "/folder2/file12", 0400);
    folder.setMode(root + "/folder2/file13", 0755);
    folder.setMode(root + "/folder2", 0700);
    folder.setMode(root, 0750);
}

} // namespace

OffloadPlaces::OffloadPlaces() {
    volumes.folder("SSD");
    ::prctl(PR_SET_CHILD_SUBREAPER, 1); // a tool whose program was killed becomes this process's
}

OffloadWorld::OffloadWorld(const OffloadPlaces& places)
    : places_(places), home_("/Users/tester", room), disk_("/box/disk", room) {
    volume_.emplace("/box/disk", volume);
    places_.home.file("Documents/letter.txt", {.text = "letter"});
    places_.home.file("Library/Developer/Xcode/DerivedData/index", {.text = "index"});
    places_.disk.file("photos/holiday.jpg", {.text = "holiday"});
    places_.disk.file("Korvanti Offload/Library/Caches/other/file", {.text = "other"});
    other_ = {.title = "Other",
              .originalPath = places_.home.path("Library/Caches/other"),
              .destinationPath = std::string(volume) + "/Korvanti Offload/Library/Caches/other",
              .volumeUUID = uuid,
              .volumeName = "SSD",
              .bytes = 4096,
              .date = instantFromSeconds(1'700'000'000)};
    places_.home.folder("Library/Application Support/Korvanti");
    OffloadRecords::write(store(), {other_});
}

OffloadWorld::~OffloadWorld() {
    setDitto({});
    volume_.reset();
    std::filesystem::remove_all(volume); // what was written there while no volume was
    std::filesystem::create_directory(volume);
}

void OffloadWorld::buildSource() const {
    buildTree(places_.home, relative);
    tree_ = pictureOf(source());
}

void OffloadWorld::buildCopy(bool symlinked) const {
    buildTree(places_.disk, std::string("Korvanti Offload/") + relative);
    tree_ = pictureOf(copy());
    record_ = {.title = "Folder",
               .originalPath = source(),
               .destinationPath = std::string(volume) + "/Korvanti Offload/" + relative,
               .volumeUUID = uuid,
               .volumeName = "SSD",
               .bytes = 400'000,
               .date = instantFromSeconds(1'700'000'000),
               .symlinked = symlinked};
    places_.home.folder("Library/Developer/Xcode");
    if (symlinked)
        places_.home.symlink(relative, record_.destinationPath);
    OffloadRecords::write(store(), {other_, record_});
    OffloadRecords::write(places_.disk.path("Korvanti Offload/manifest.json"), {other_, record_});
}

void OffloadWorld::setDitto(const std::string& script) {
    if (script.empty())
        std::filesystem::remove(dittoScript);
    else
        std::ofstream(dittoScript) << script << "\n";
}

void OffloadWorld::putRight() {
    setDitto({});
    std::filesystem::remove(places_.home.path("filler"));
    std::filesystem::remove(places_.disk.path("filler"));
    volume_.reset();
    std::filesystem::remove_all(volume);
    std::filesystem::create_directory(volume);
    volume_.emplace("/box/disk", volume);
}

std::string OffloadWorld::onDisk(const std::string& path) const {
    EXPECT_TRUE(PathTools::isSameOrAncestor(volume, path)) << path;
    return places_.disk.path() + path.substr(std::string(volume).size());
}

std::string OffloadWorld::store() const {
    return places_.home.path("Library/Application Support/Korvanti/offloads.json");
}

std::string OffloadWorld::log() const {
    return places_.home.path("Library/Application Support/Korvanti/activity.jsonl");
}

std::vector<std::string> OffloadWorld::command(const std::string& task,
                                               const std::vector<std::string>& words) const {
    std::vector<std::string> command = {KORVANTI_OFFLOAD_ONCE, task, places_.home.path(), store(), log()};
    command.insert(command.end(), words.begin(), words.end());
    return command;
}

std::vector<std::string> OffloadWorld::offloadCommand(bool link, const std::string& path) const {
    std::vector<std::string> words = {path.empty() ? source() : path, volume, uuid};
    if (link)
        words.emplace_back("link");
    return command("offload", words);
}

std::vector<OffloadRecord> OffloadWorld::recordsIn(const std::string& file) {
    if (!PathTools::exists(file))
        return {};
    const auto text = FileContents::read(file);
    const auto json = parseJson(text.value_or(""));
    EXPECT_TRUE(json && json->is_array()) << file << ": " << text.value_or("unreadable");
    std::vector<OffloadRecord> records;
    for (const auto& element : json ? *json : Json::array()) {
        const auto record = offloadRecordFromJson(element);
        EXPECT_TRUE(record) << element.dump();
        records.push_back(record.value_or(OffloadRecord{}));
    }
    return records;
}

Snapshot OffloadWorld::neighbours() const {
    Snapshot all;
    const auto take = [&](const std::string& root, const std::vector<std::string>& changing) {
        for (const auto& [path, facts] : pictureOf(root)) {
            const bool may = std::ranges::any_of(
                changing, [&](const std::string& one) { return PathTools::isSameOrAncestor(one, path); });
            if (!may)
                all[root + "/" + path] = facts;
        }
    };
    take(places_.home.path(), {relative, "Library/Application Support/Korvanti", "filler"});
    take(places_.disk.path(),
         {"Korvanti Offload/Library/Developer", "Korvanti Offload/manifest.json", "filler"});
    // A file half written when the program ended.
    std::erase_if(all, [&](const auto& entry) {
        return entry.first.starts_with(places_.disk.path("Korvanti Offload/manifest.json"));
    });
    return all;
}

ProgramResult runWithChildren(const std::vector<std::string>& command, const ProgramOptions& options) {
    auto result = runProgram(command, options);
    for (int status = 0; ::waitpid(-1, &status, 0) > 0 || errno == EINTR;) {
    }
    return result;
}

} // namespace korvanti::testing
