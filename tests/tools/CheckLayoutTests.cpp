#include "support/Git.h"
#include "support/RunProgram.h"
#include "support/TempFolder.h"

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace korvanti::testing {
namespace {

using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::Not;

/// A repository with the sources as they stand, to be spoilt.
class CheckLayoutTests : public ::testing::Test {
protected:
    CheckLayoutTests() {
        temp.folder("tools");
        for (const char* part : {"core", "app", "tools/check-layout", "tools/setup.sh", ".gitignore"})
            std::filesystem::copy(std::string(KORVANTI_SOURCE) + "/" + part, temp.path(part),
                                  std::filesystem::copy_options::recursive);
        git(temp.path(), {"init", "--quiet"});
        git(temp.path(), {"add", "--all"});
    }

    void append(const std::string& file, const std::string& line) const {
        std::ofstream(temp.path(file), std::ios::app) << line << '\n';
    }

    [[nodiscard]] ProgramResult check() const {
        return runProgram({temp.path("tools/check-layout")}, {.folder = temp.path()});
    }

    /// Each line is reported with its place when all of them stand in a file that no rule names.
    void expectEachFound(const std::vector<std::string>& lines) const {
        const std::string file = "core/scan/Spoilt.h";
        for (const auto& line : lines)
            append(file, line);
        const auto result = check();
        EXPECT_EQ(result.status, 1);
        for (std::size_t i = 0; i < lines.size(); ++i)
            EXPECT_THAT(result.out, HasSubstr(file + ":" + std::to_string(i + 1) + ":" + lines[i] + "\n"));
    }

    TempFolder temp;
};

TEST_F(CheckLayoutTests, theSourcesAsTheyStandPass) {
    const auto result = check();
    EXPECT_EQ(result.status, 0) << result.out << result.err;
}

TEST_F(CheckLayoutTests, oneCallOutOfItsPlaceFails) {
    append("core/scan/Spoilt.h", "inline int gone(const char* p) { return ::unlink(p); }");
    const auto result = check();
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.out, Not(HasSubstr("as it should be")));
}

TEST_F(CheckLayoutTests, aFileThatGitDoesNotKnowYetIsReadToo) {
    append("app/terminal/New.h", "inline int gone(const char* p) { return ::rmdir(p); }");
    EXPECT_EQ(check().status, 1);
}

TEST_F(CheckLayoutTests, qtStaysOutOfTheCoreAndOfTheMacsOwnSources) {
    for (const std::string file : {"core/scan/Spoilt.h", "app/shell/macos/MacDesktop.mm"}) {
        append(file, "#include <QObject>");
        const auto result = check();
        EXPECT_EQ(result.status, 1);
        EXPECT_THAT(result.out, ContainsRegex(file + ":[0-9]+:#include <QObject>\n"));
    }
}

TEST_F(CheckLayoutTests, aCallOfTheSystemIsFound) {
    expectEachFound({
        "::unlink(p);",
        "unlink (p);",
        "const auto call = &::unlink;",
        "::unlinkat(at, p, 0);",
        "::rmdir(p);",
        "::remove(p);",
        "std::remove(p);",
        "remove(p);",
        "apply(names, ::remove);",
        "::rename(p, q);",
        "std::rename(p, q);",
        "::renameat(at, p, at, q);",
        "::renameat2(at, p, at, q, 0);",
        "::renamex_np(p, q, 0);",
        "::renameatx_np(at, p, at, q, RENAME_SWAP);",
        "::exchangedata(p, q, 0);",
        "::removefile(p, nullptr, REMOVEFILE_RECURSIVE);",
        "::removefileat(at, p, nullptr, 0);",
        "::copyfile(p, q, nullptr, COPYFILE_MOVE);",
        "::fcopyfile(one, other, nullptr, 0);",
        "::truncate(p, 0);",
        "::truncate64(p, 0);",
        "::ftruncate(file, 0);",
        "::open(p, O_RDONLY | O_TRUNC);",
        "::open(p, O_WRONLY);",
        "::open(p, O_RDWR | O_CLOEXEC);",
        "::open(p, O_CREAT, 0600);",
        "::creat(p, 0600);",
        "std::fopen(p, \"w\");",
        "std::fopen(p, \"r+\");",
        "::fopen64(p, \"w\");",
        "std::freopen(p, \"w\", stdout);",
        "::mkstemp(p);",
        "::mkstemps(p, 4);",
        "::mkostemp(p, 0);",
        "::mkostemps(p, 4, 0);",
        "::mkdtemp(p);",
        "::mktemp(p);",
        "std::tmpfile();",
        "::syscall(number, p);",
        "::syscall(SYS_unlink, p);",
        "const long call = SYS_unlink;",
        "const long call = SYS_unlinkat;",
        "const long call = SYS_rmdir;",
        "const long call = SYS_rename;",
        "const long call = SYS_renameat;",
        "const long call = SYS_renameat2;",
        "const long call = SYS_truncate;",
        "const long call = SYS_ftruncate;",
        "const long call = SYS_creat;",
        "const long call = __NR_unlinkat;",
    });
}

TEST_F(CheckLayoutTests, aCallOfTheStandardLibraryIsFound) {
    expectEachFound({
        "#include <filesystem>",
        "#include <fstream>",
        "std::ofstream(p) << text;",
        "std::fstream file(p);",
        "std::basic_ofstream<char> file(p);",
        "std::basic_filebuf<char> file;",
        "std::filesystem::remove(p);",
        "std::filesystem::remove_all(p);",
        "std::filesystem::rename(p, q);",
        "std::filesystem::resize_file(p, 0);",
        "std::filesystem::copy_file(p, q, overwrite);",
        "std::filesystem::copy(p, q, overwrite);",
        "namespace fs = std::filesystem;",
        "fs::remove(p);",
        "std::for_each(all.begin(), all.end(), fs::remove);",
        "fs::remove_all(p);",
        "using std::remove;",
    });
}

TEST_F(CheckLayoutTests, aCallOfTheMacIsFound) {
    expectEachFound({
        "[NSFileManager.defaultManager removeItemAtPath:path error:nil];",
        "[manager removeItemAtPath:path error:nil];",
        "[manager removeItemAtURL:url error:nil];",
        "[manager moveItemAtPath:path toPath:other error:nil];",
        "[manager moveItemAtURL:url toURL:other error:nil];",
        "[manager trashItemAtURL:url resultingItemURL:nil error:nil];",
        "[manager replaceItemAtURL:url withItemAtURL:other backupItemName:nil options:0];",
        "[manager copyItemAtURL:url toURL:other error:nil];",
        "[manager createFileAtPath:path contents:nil attributes:nil];",
        "[data writeToFile:path atomically:YES];",
        "[data writeToURL:url atomically:YES];",
        "[NSWorkspace.sharedWorkspace recycleURLs:urls completionHandler:nil];",
        "[workspace recycleURLs:urls completionHandler:nil];",
        "[[NSTask alloc] init];",
        "[[NSAppleScript alloc] initWithSource:text];",
    });
}

TEST_F(CheckLayoutTests, aStartOfAnotherProgramIsFound) {
    expectEachFound({
        "std::system(\"rm -rf x\");",
        "::system(text);",
        "system(text);",
        "run(std::system);",
        "::popen(text, \"r\");",
        "::execl(tool, tool, nullptr);",
        "::execle(tool, tool, nullptr, environ);",
        "::execlp(tool, tool, nullptr);",
        "::execv(tool, words);",
        "::execve(tool, words, environ);",
        "::execvp(tool, words);",
        "::execvpe(tool, words, environ);",
        "::execvP(tool, path, words);",
        "::execveat(at, tool, words, environ, 0);",
        "::fexecve(file, words, environ);",
        "::posix_spawn(&process, tool, nullptr, nullptr, words, environ);",
        "::posix_spawnp(&process, tool, nullptr, nullptr, words, environ);",
        "::fork();",
        "::vfork();",
        "::dlopen(nullptr, RTLD_NOW);",
        "::dlsym(library, name);",
        "asm(\"syscall\");",
        "Shell::run(\"/bin/rm\", {\"-rf\", path});",
        "const auto run = &Shell::run;",
        "QProcess::execute(tool);",
        "QDesktopServices::openUrl(url);",
    });
}

TEST_F(CheckLayoutTests, aMoveToTheTrashPastTheGuardIsFound) {
    expectEachFound({
        "Platform::moveToTrash(request);",
        "QFile::remove(path);",
        "QFile(path).rename(other);",
        "QSaveFile file(path);",
        "QDir(path).removeRecursively();",
    });
}

TEST_F(CheckLayoutTests, whatOnlySoundsLikeACallPasses) {
    for (const char* line : {"std::erase(names, name);", "TreeRemover::remove(entry);",
                             "remover.removed(entry);", "AppRole role = AppRole::system;",
                             "// What to remove, says the file system (its own), and not who.",
                             "::open(p, O_RDONLY);", "formerlyUnlinked(p);"})
        append("core/scan/Sound.h", line);
    EXPECT_EQ(check().out, "Layout: as it should be.\n");
}

TEST_F(CheckLayoutTests, aNamedFileMayMakeItsOwnCallAgain) {
    append("app/shell/linux/LinuxDesktop.cpp", "void show(QUrl url) { QDesktopServices::openUrl(url); }");
    append("app/shell/macos/MacDesktop.mm", "NSWorkspace* workspace = NSWorkspace.sharedWorkspace;");
    append("core/cleaning/TreeRemover.cpp", "int gone(const char* p) { return ::unlinkat(0, p, 0); }");
    append("core/drives/SpeedTest.cpp", "int gone(const char* p) { return ::unlink(p); }");
    append("core/drives/SpeedTest.cpp", "int made(const char* p) { return ::open(p, O_RDWR | O_CREAT); }");
    append("core/drives/VolumeService.cpp", "auto eject(const char* p) { return Shell::run(p, {}); }");
    append("core/fs/FileContents.cpp", "int gone(const char* p) { return ::unlink(p); }");
    append("core/platform/linux/NamelessFile.cpp", "int made(const char* p) { return ::open(p, O_RDWR); }");
    append("core/platform/linux/Trash.cpp", "int to(const char* p) { return ::renameat2(0, p, 0, p, 0); }");
    append("core/platform/macos/Trash.mm", "NSFileManager* manager = NSFileManager.defaultManager;");
    append("core/platform/macos/Volumes.mm", "NSFileManager* manager = NSFileManager.defaultManager;");
    append("core/process/Shell.cpp", "int go() { return ::posix_spawn(0, 0, 0, 0, 0, 0); }");
    EXPECT_EQ(check().out, "Layout: as it should be.\n");
}

TEST_F(CheckLayoutTests, aNamedFileMayNotMakeTheCallOfAnother) {
    const std::vector<std::pair<std::string, std::string>> spoilt = {
        {"app/shell/linux/LinuxDesktop.cpp", "void gone(const char* p) { QFile(p).remove(); }"},
        {"app/shell/macos/MacDesktop.mm", "void gone(id m, id u) { [m trashItemAtURL:u]; }"},
        {"core/cleaning/TreeRemover.cpp", "int gone(const char* p) { return ::unlink(p); }"},
        {"core/cleaning/Cleaner.cpp", "int gone(const char* p) { return ::unlinkat(0, p, 0); }"},
        {"core/drives/SpeedTest.cpp", "int empty(const char* p) { return ::open(p, O_WRONLY | O_TRUNC); }"},
        {"core/drives/SpeedTest.cpp", "int to(const char* p) { return ::rename(p, p); }"},
        {"core/drives/VolumeService.cpp", "int gone(const char* p) { return ::unlink(p); }"},
        {"core/platform/linux/Volumes.cpp", "int made(const char* p) { return ::open(p, O_WRONLY); }"},
        {"core/platform/macos/Volumes.mm", "void gone(id m, id u) { [m trashItemAtURL:u]; }"},
        {"core/fs/FileContents.cpp", "void gone(const char* p) { std::filesystem::remove_all(p); }"},
        {"core/fs/PathTools.cpp", "void gone(const char* p) { std::filesystem::remove(p); }"},
        {"core/cleaning/ActivityLog.cpp",
         "int empty(const char* p) { return ::open(p, O_WRONLY | O_TRUNC); }"},
        {"core/platform/linux/Trash.cpp", "int to(const char* p) { return ::rename(p, p); }"},
        {"core/platform/linux/FolderReader.cpp",
         "long gone(const char* p) { return ::syscall(SYS_unlink, p); }"},
        {"core/platform/macos/Trash.mm", "void gone(id m, id p) { [m removeItemAtPath:p error:nil]; }"},
        {"core/process/Shell.cpp", "int go(const char* text) { return std::system(text); }"},
    };
    for (const auto& [file, line] : spoilt)
        append(file, line);
    const auto result = check();
    EXPECT_EQ(result.status, 1);
    for (const auto& [file, line] : spoilt)
        EXPECT_THAT(result.out, ContainsRegex(file + ":[0-9]+:" + line.substr(0, line.find('('))));
}

TEST_F(CheckLayoutTests, aNamedFileWithoutItsCallIsNoLongerNeeded) {
    std::ofstream(temp.path("core/cleaning/TreeRemover.cpp")) << "namespace korvanti {}\n";
    const auto result = check();
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.out,
                HasSubstr("No longer needed in tools/check-layout: core/cleaning/TreeRemover.cpp for"));
}

} // namespace
} // namespace korvanti::testing
