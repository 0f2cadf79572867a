#include "cleaning/TreeRemover.h"

#include "RemovalSupport.h"
#include "base/FileDescriptor.h"
#include "support/TempFolder.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <pthread.h>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

namespace korvanti {
namespace {

using namespace korvanti::testing;
using Kind = GuardError::Kind;

class TreeRemoverTests : public RemovalTests {};

// What goes

TEST_F(TreeRemoverTests, aFileGoes) {
    temp.file("home/arena/file");
    temp.file("home/arena/beside");
    EXPECT_EQ(remove("file"), done);
    EXPECT_EQ(left(), Names{"beside"});
}

TEST_F(TreeRemoverTests, anEmptyFolderGoes) {
    temp.folder("home/arena/folder");
    temp.folder("home/arena/beside");
    EXPECT_EQ(remove("folder"), done);
    EXPECT_EQ(left(), Names{"beside"});
}

TEST_F(TreeRemoverTests, aFolderThatMustBeEmptyGoesOnlyIfItIs) {
    temp.folder("home/arena/empty");
    temp.file("home/arena/full/file");
    EXPECT_EQ(TreeRemover::removeIfEmpty(admitted(home(), arena("empty"), {})), done);
    EXPECT_EQ(TreeRemover::removeIfEmpty(admitted(home(), arena("full"), {})),
              failure(std::errc::directory_not_empty, arena("full")));
    EXPECT_EQ(left(), (Names{"full", "full/file"}));
}

TEST_F(TreeRemoverTests, aFileIsNoEmptyFolder) {
    temp.file("home/arena/file");
    EXPECT_EQ(TreeRemover::removeIfEmpty(admitted(home(), arena("file"), {})),
              failure(std::errc::not_a_directory, arena("file")));
    EXPECT_EQ(left(), Names{"file"});
}

TEST_F(TreeRemoverTests, aFolderGoesWithAllThatIsInIt) {
    for (const auto* file : {"x/a", "x/.hidden", "x/b/c/d/file", "x/b/c/other", "x/b/file", "x/.d/.e/.f"})
        temp.file(std::string("home/arena/") + file, {.text = "text"});
    temp.folder("home/arena/x/b/empty");
    temp.file("home/arena/x 2/file");
    EXPECT_EQ(remove("x"), done);
    EXPECT_EQ(left(), (Names{"x 2", "x 2/file"}));
}

TEST_F(TreeRemoverTests, aLinkIsRemovedAsALink) {
    for (const auto& target : {precious(), precious("file"), precious() + "/", std::string("nowhere"),
                               std::string("link"), std::string("."), std::string("..")}) {
        temp.symlink("home/arena/link", target);
        temp.file("home/arena/beside");
        EXPECT_EQ(remove("link"), done) << target;
        EXPECT_EQ(left(), Names{"beside"}) << target;
    }
}

TEST_F(TreeRemoverTests, aLinkAtAnyDepthIsRemovedAsALink) {
    for (const std::string folder : {"home/arena/x", "home/arena/x/a", "home/arena/x/a/b/c/d/e/f"}) {
        temp.symlink(folder + "/folder", precious());
        temp.symlink(folder + "/file", precious("file"));
        temp.symlink(folder + "/around", "..");
        temp.symlink(folder + "/itself", "itself");
        temp.symlink(folder + "/nowhere", "nowhere");
    }
    EXPECT_EQ(remove("x"), done);
    EXPECT_EQ(left(), Names{});
}

TEST_F(TreeRemoverTests, pipesAndSocketsGoWithoutWaitingForAnybody) {
    temp.folder("home/arena/x");
    makePipe("home/arena/pipe");
    makePipe("home/arena/x/pipe");
    makeSocket("home/arena/socket");
    makeSocket("home/arena/x/socket");
    for (const auto* name : {"pipe", "socket", "x"})
        EXPECT_EQ(remove(name), done) << name;
    EXPECT_EQ(left(), Names{});
}

TEST_F(TreeRemoverTests, theOtherNamesOfAHardLinkStay) {
    const auto kept = temp.file("home/arena/kept", {.text = "text"});
    temp.hardLink("home/arena/name", kept);
    temp.hardLink("home/arena/x/one", kept);
    temp.hardLink("home/arena/x/deep/two", kept);
    EXPECT_EQ(remove("name"), done);
    EXPECT_EQ(remove("x"), done);
    EXPECT_EQ(left(), Names{"kept"});
    EXPECT_EQ(textOf(kept), "text");
    EXPECT_EQ(std::filesystem::hard_link_count(kept), 1U);
}

TEST_F(TreeRemoverTests, aSparseFileOfATerabyteGoesLikeAnyOther) {
    temp.file("home/arena/x/sparse", {.sparseBytes = 1'000'000'000'000});
    EXPECT_EQ(remove("x"), done);
    EXPECT_EQ(left(), Names{});
}

TEST_F(TreeRemoverTests, aFileThatSomebodyHasOpenGoes) {
    const auto path = temp.file("home/arena/x/file", {.text = "text"});
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    EXPECT_EQ(remove("x"), done);
    EXPECT_EQ(left(), Names{});
    char text[4];
    EXPECT_EQ(::read(file.get(), text, sizeof text), 4);
}

TEST_F(TreeRemoverTests, namesMayBeAnything) {
    std::vector<std::string> names = {
        "two\nlines",         "a b", "-rf", "*", "\\", "...", ". ", "~", "%s", "$HOME", "Ünï → ☃", "\x7f\t",
        std::string(255, 'n')};
#ifndef __APPLE__ // whose file systems take no such names
    names.insert(names.end(), {"\xff\xfe", "\xc3", std::string(255, '\xff')});
#endif
    for (const auto& name : names) {
        temp.file("home/arena/x/" + name + "/file");
        temp.file("home/arena/x/folder/" + name);
        temp.symlink("home/arena/x/links/" + name, precious());
        temp.file("home/arena/" + name);
        EXPECT_EQ(remove(name), done) << name;
    }
    EXPECT_EQ(remove("x"), done);
    EXPECT_EQ(left(), Names{});
}

// Large trees

TEST_F(TreeRemoverTests, aHundredThousandEntriesInOneFolderGo) {
    const FileDescriptor folder(::open(temp.folder("home/arena/x").c_str(), O_RDONLY | O_CLOEXEC));
    for (int i = 0; i < 100'000; ++i) {
        const auto name = "entry with a name of some length " + std::to_string(i);
        if (i % 10 == 0)
            ASSERT_EQ(::mkdirat(folder.get(), name.c_str(), 0700), 0);
        else if (i % 10 == 1)
            ASSERT_EQ(::symlinkat("..", folder.get(), name.c_str()), 0);
        else
            ASSERT_TRUE(
                FileDescriptor(::openat(folder.get(), name.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600)));
    }
    EXPECT_EQ(remove("x"), done);
    EXPECT_EQ(left(), Names{});
}

/// A chain of folders with a file and a link to what is precious in each of them.
void makeChain(const std::string& start, int levels, const std::string& name, const std::string& target) {
    FileDescriptor folder(::open(start.c_str(), O_RDONLY | O_CLOEXEC));
    for (int level = 0; level < levels; ++level) {
        ASSERT_EQ(::mkdirat(folder.get(), name.c_str(), 0700), 0);
        folder = FileDescriptor(::openat(folder.get(), name.c_str(), O_RDONLY | O_CLOEXEC));
        const FileDescriptor file(
            ::openat(folder.get(), "file", O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
        ASSERT_TRUE(file);
        ASSERT_EQ(::symlinkat(target.c_str(), folder.get(), "link"), 0);
    }
}

void* call(void* function) {
    (*static_cast<std::function<void()>*>(function))();
    return nullptr;
}

/// On a thread with 128 KiB of stack.
void onASmallStack(std::function<void()> function) {
    pthread_attr_t attributes;
    ASSERT_EQ(::pthread_attr_init(&attributes), 0);
    ASSERT_EQ(::pthread_attr_setstacksize(&attributes, 128UL * 1024), 0);
    pthread_t thread{};
    ASSERT_EQ(::pthread_create(&thread, &attributes, call, &function), 0);
    ASSERT_EQ(::pthread_join(thread, nullptr), 0);
    ::pthread_attr_destroy(&attributes);
}

/// As long as it lives, this process may have no more files open than that.
class OpenFileLimit {
public:
    explicit OpenFileLimit(rlim_t most) {
        ::getrlimit(RLIMIT_NOFILE, &old_);
        const rlimit limit{.rlim_cur = most, .rlim_max = old_.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
    }
    ~OpenFileLimit() { ::setrlimit(RLIMIT_NOFILE, &old_); }
    OpenFileLimit(const OpenFileLimit&) = delete;
    OpenFileLimit& operator=(const OpenFileLimit&) = delete;

private:
    rlimit old_{};
};

TEST_F(TreeRemoverTests, tenThousandLevelsGoWithASmallStackAndFewDescriptors) {
    makeChain(temp.folder("home/arena/x"), 10'000, "folder", precious());
    const auto entry = admitted(home(), arena("x"));
    const OpenFileLimit limit(100);
    Removal removal = failure(std::errc::operation_in_progress, {});
    onASmallStack([&] { removal = TreeRemover::remove(entry); });
    EXPECT_EQ(removal, done);
    EXPECT_EQ(left(), Names{});
}

TEST_F(TreeRemoverTests, longNamesMakeNoPathThatIsTooLong) {
    makeChain(temp.folder("home/arena/x"), 300, std::string(255, 'n'), precious());
    EXPECT_EQ(remove("x"), done);
    EXPECT_EQ(left(), Names{});
}

TEST_F(TreeRemoverTests, aWideTreeOfDeepFoldersGoesWithFewDescriptors) {
    for (int i = 0; i < 50; ++i)
        makeChain(temp.folder("home/arena/x/branch " + std::to_string(i)), 200, "folder", precious());
    const OpenFileLimit limit(100);
    EXPECT_EQ(remove("x"), done);
    EXPECT_EQ(left(), Names{});
}

TEST_F(TreeRemoverTests, foldersOfEveryLevelBranchAgainOnTheWayUp) {
    std::string path = "home/arena/x";
    for (int level = 0; level < 200; ++level) {
        path += "/n";
        temp.file(path + "/before/deep/file");
        temp.file(path + "/z after/deep/file");
    }
    EXPECT_EQ(remove("x"), done);
    EXPECT_EQ(left(), Names{});
}

TEST_F(TreeRemoverTests, noDescriptorIsLeftOpen) {
    const auto firstFree = [] { return FileDescriptor(::dup(0)).get(); };
    makeChain(temp.folder("home/arena/first"), 3, "folder", precious());
    EXPECT_EQ(remove("first"), done); // what stays open for good is open now
    const int before = firstFree();
    makeChain(temp.folder("home/arena/x"), 150, "folder", precious());
    EXPECT_EQ(remove("x"), done);
    EXPECT_EQ(firstFree(), before);
}

// What happens between the verdict and the removal

TEST_F(TreeRemoverTests, whatIsGoneAlreadyIsToldAsSuch) {
    temp.file("home/arena/file");
    temp.file("home/arena/x/file");
    for (const std::string name : {"file", "x"}) {
        const auto entry = admitted(home(), arena(name));
        std::filesystem::remove_all(arena(name));
        EXPECT_EQ(TreeRemover::remove(entry), failure(std::errc::no_such_file_or_directory, arena(name)));
    }
}

TEST_F(TreeRemoverTests, whatWasRenamedIsGoneFromItsPlace) {
    temp.file("home/arena/file");
    const auto entry = admitted(home(), arena("file"));
    rename("file", "renamed");
    EXPECT_EQ(TreeRemover::remove(entry), failure(std::errc::no_such_file_or_directory, arena("file")));
    EXPECT_EQ(left(), Names{"renamed"});
}

TEST_F(TreeRemoverTests, whatAnotherProgramEmptiedMeanwhileGoesAsIfNothingHadHappened) {
    temp.file("home/arena/x/a/file");
    const auto entry = admitted(home(), arena("x"));
    std::filesystem::remove_all(arena("x/a"));
    EXPECT_EQ(TreeRemover::remove(entry), done);
    EXPECT_EQ(left(), Names{});
}

TEST_F(TreeRemoverTests, aFileThatWasExchangedStays) {
    const auto exchanged = [&](const std::function<void()>& put) {
        std::filesystem::remove_all(arena());
        temp.file("home/arena/x");
        const auto entry = admitted(home(), arena("x"));
        rename("x", "old");
        put();
        EXPECT_EQ(TreeRemover::remove(entry), failure(stale, arena("x")));
    };
    exchanged([&] { temp.file("home/arena/x", {.text = "new"}); });
    EXPECT_EQ(textOf(arena("x")), "new");
    exchanged([&] { temp.symlink("home/arena/x", precious("file")); });
    EXPECT_TRUE(std::filesystem::is_symlink(arena("x")));
    exchanged([&] { temp.symlink("home/arena/x", "old"); });
    EXPECT_TRUE(std::filesystem::is_symlink(arena("x")));
    exchanged([&] { temp.file("home/arena/x/file"); });
    EXPECT_EQ(left(), (Names{"old", "x", "x/file"}));
    exchanged([&] { temp.folder("home/arena/x"); });
    EXPECT_EQ(left(), (Names{"old", "x"}));
    exchanged([&] { makePipe("home/arena/x"); });
    EXPECT_EQ(left(), (Names{"old", "x"}));
}

TEST_F(TreeRemoverTests, aLinkThatWasExchangedStays) {
    temp.symlink("home/arena/link", "nowhere");
    const auto entry = admitted(home(), arena("link"));
    rename("link", "old");
    temp.symlink("home/arena/link", precious());
    EXPECT_EQ(TreeRemover::remove(entry), failure(stale, arena("link")));
    EXPECT_EQ(left(), (Names{"link", "old"}));
}

TEST_F(TreeRemoverTests, aFolderThatWasExchangedForAnotherStaysWithAllThatIsInIt) {
    temp.file("home/arena/x/file");
    const auto entry = admitted(home(), arena("x"));
    rename("x", "old");
    temp.file("home/arena/x/new/file");
    EXPECT_EQ(TreeRemover::remove(entry), failure(stale, arena("x")));
    EXPECT_EQ(namesBelow(arena("x")), (Names{"new", "new/file"}));
}

TEST_F(TreeRemoverTests, aFolderThatWasExchangedForAnEmptyOneOrAFileStays) {
    for (const bool folder : {true, false}) {
        std::filesystem::remove_all(arena());
        temp.file("home/arena/x/file");
        const auto entry = admitted(home(), arena("x"));
        rename("x", "old");
        folder ? temp.folder("home/arena/x") : temp.file("home/arena/x");
        EXPECT_EQ(TreeRemover::remove(entry), failure(stale, arena("x"))) << folder;
        EXPECT_TRUE(std::filesystem::exists(arena("x"))) << folder;
    }
}

TEST_F(TreeRemoverTests, aFolderThatWasExchangedForALinkIsNotLookedForBehindIt) {
    for (const auto& target : {precious(), precious("folder"), arena("old")}) {
        std::filesystem::remove_all(arena());
        temp.file("home/arena/x/folder/deep/file");
        const auto entry = admitted(home(), arena("x"));
        rename("x", "old");
        temp.symlink("home/arena/x", target);
        EXPECT_EQ(TreeRemover::remove(entry), failure(stale, arena("x"))) << target;
        EXPECT_TRUE(std::filesystem::is_symlink(arena("x"))) << target;
    }
}

TEST_F(TreeRemoverTests, aFolderThatTurnedIntoARepositoryElsewhereStays) {
    temp.file("home/arena/x/file");
    const auto entry = admitted(home(), arena("x"));
    rename("x", "old");
    temp.file("home/arena/x/.git/HEAD");
    EXPECT_EQ(TreeRemover::remove(entry), failure(stale, arena("x")));
    EXPECT_EQ(namesBelow(arena("x")), (Names{".git", ".git/HEAD"}));
}

TEST_F(TreeRemoverTests, theEntryGoesFromTheFolderThatHeldItWhereverThatIsNow) {
    temp.file("home/arena/parent/x/file");
    const auto entry = admitted(home(), arena("parent/x"));
    rename("parent", "moved");
    temp.file("home/arena/parent/x/file");
    EXPECT_EQ(TreeRemover::remove(entry), done);
    EXPECT_EQ(left(), (Names{"moved", "parent", "parent/x", "parent/x/file"}));
}

TEST_F(TreeRemoverTests, aParentThatWasExchangedForALinkIsNotGoneThrough) {
    temp.file("home/arena/parent/folder/deep/file");
    temp.file("home/arena/parent/file");
    const auto folder = admitted(home(), arena("parent/folder"));
    const auto file = admitted(home(), arena("parent/file"));
    rename("parent", "moved");
    temp.symlink("home/arena/parent", precious());
    EXPECT_EQ(TreeRemover::remove(folder), done);
    EXPECT_EQ(TreeRemover::remove(file), done);
    EXPECT_EQ(left(), (Names{"moved", "parent"}));
}

// What the guard holds for them. Its rules on texts of paths have tests of their own.

class AdmissionTests : public RemovalTests {
protected:
    using Options = SafetyGuard::PathOptions;
    [[nodiscard]] std::optional<Refusal> refusal(const std::string& path, Options options = {}) const {
        return testing::refusal(home(), path, options);
    }
    void installApplication(const std::string& relative, const std::string& identifier) const {
        temp.file(relative + "/Contents/Info.plist",
                  {.text = "<plist version=\"1.0\"><dict><key>CFBundleIdentifier</key><string>" + identifier +
                           "</string></dict></plist>"});
    }
};

constexpr SafetyGuard::PathOptions withRepository{.allowRepository = true};
constexpr SafetyGuard::PathOptions withApplication{.allowApplicationBundle = true};

TEST_F(AdmissionTests, whatPassesIsHeldUnderItsNormalisedPath) {
    const auto folder = temp.folder("home/arena/a/x");
    const auto entry = admitted(home(), home() + "/./arena//a/x/");
    EXPECT_EQ(entry.entry().path(), folder);
    EXPECT_EQ(entry.entry().name(), "x");
    EXPECT_TRUE(entry.entry().isFolder());
    EXPECT_TRUE(entry.entry().stillThere().has_value());
}

TEST_F(AdmissionTests, aPathThroughALinkBelowTheHomeIsRefusedAtEveryDepth) {
    temp.symlink("home/first", "arena");
    temp.file("home/arena/a/b/file");
    temp.symlink("home/arena/outside", precious());
    temp.symlink("home/arena/a/inside", "b");
    for (const auto* relative :
         {"first/a", "first/a/b/file", "arena/outside/file", "arena/outside/folder/deep",
          "arena/a/inside/file", "arena/outside/missing"}) {
        const auto path = home(relative);
        EXPECT_EQ(refusal(path), refused(std::errc::too_many_symbolic_link_levels, path)) << relative;
    }
}

TEST_F(AdmissionTests, theHomeItselfMayBeALinkAndLieBehindOne) {
    temp.file("home/arena/file");
    temp.symlink("way", ".");
    const auto link = temp.symlink("link", "way/home");
    for (const auto& otherHome : {link, temp.path("way/home")}) {
        EXPECT_EQ(testing::refusal(otherHome, otherHome + "/arena/file"), std::nullopt) << otherHome;
        EXPECT_EQ(TreeRemover::remove(admitted(otherHome, otherHome + "/arena/file")), done) << otherHome;
        EXPECT_EQ(left(), Names{}) << otherHome;
        temp.file("home/arena/file");
    }
}

TEST_F(AdmissionTests, aLinkItselfPasses) {
    EXPECT_EQ(refusal(temp.symlink("home/arena/link", precious())), std::nullopt);
    EXPECT_EQ(refusal(temp.symlink("home/arena/dangling", "nowhere")), std::nullopt);
}

TEST_F(AdmissionTests, whatIsGoneIsMissing) {
    const auto missing = [](const std::string& path) { return refused(Kind::missing, path); };
    EXPECT_EQ(refusal(arena("x")), missing(arena("x")));
    EXPECT_EQ(refusal(arena("no/such/x")), missing(arena("no/such/x")));
    EXPECT_EQ(testing::refusal("/no/such/home", "/no/such/home/arena/x"), missing("/no/such/home/arena/x"));
}

TEST_F(AdmissionTests, aFileOnTheWayIsTheSystemsError) {
    temp.file("home/arena/file");
    EXPECT_EQ(refusal(arena("file/x")), refused(std::errc::not_a_directory, arena("file/x")));
}

TEST_F(AdmissionTests, aGitFolderFileOrLinkMakesARepository) {
    temp.folder("home/arena/folder/.git");
    temp.file("home/arena/file/.git", {.text = "gitdir: elsewhere\n"});
    temp.symlink("home/arena/link/.git", precious());
    temp.symlink("home/arena/dangling/.git", "nowhere");
    for (const auto* name : {"folder", "file", "link", "dangling"}) {
        EXPECT_EQ(refusal(arena(name)), refused(Kind::isRepository, arena(name))) << name;
        EXPECT_EQ(refusal(arena(name), withRepository), std::nullopt) << name;
    }
}

TEST_F(AdmissionTests, aLinkToARepositoryAndAGitDeeperInsideMakeNone) {
    temp.folder("home/arena/x/deep/.git");
    temp.folder("home/arena/repository/.git");
    EXPECT_EQ(refusal(arena("x")), std::nullopt);
    EXPECT_EQ(refusal(temp.symlink("home/arena/link", "repository")), std::nullopt);
}

TEST_F(AdmissionTests, anApplicationPassesOnlyWhereBundlesAreAllowed) {
    installApplication("home/Applications/Catatan.app", "com.contoh.catatan");
    temp.folder("home/Applications/Bare.app");
    temp.file("home/Applications/Damaged.app/Contents/Info.plist", {.text = "bplist00nonsense"});
    temp.file("home/Applications/File.app");
    for (const std::string name : {"Catatan.app", "Bare.app", "Damaged.app", "File.app"})
        EXPECT_EQ(refusal(home("Applications/" + name), withApplication), std::nullopt) << name;
}

TEST_F(AdmissionTests, anApplicationOfTheSystemIsProtected) {
    installApplication("home/Applications/Safari.app", "com.apple.Safari");
    const auto path = home("Applications/Safari.app");
    EXPECT_EQ(refusal(path, withApplication), refused(Kind::protectedPath, path));
}

TEST_F(AdmissionTests, aBundleThatIsALinkIsAskedThroughIt) {
    installApplication("elsewhere/Safari.app", "com.apple.Safari");
    installApplication("elsewhere/Catatan.app", "com.contoh.catatan");
    const auto system = temp.symlink("home/Applications/A.app", temp.path("elsewhere/Safari.app"));
    const auto other = temp.symlink("home/Applications/B.app", temp.path("elsewhere/Catatan.app"));
    const auto dangling = temp.symlink("home/Applications/C.app", "nowhere");
    EXPECT_EQ(refusal(system, withApplication), refused(Kind::protectedPath, system));
    EXPECT_EQ(refusal(other, withApplication), std::nullopt);
    EXPECT_EQ(refusal(dangling, withApplication), std::nullopt);
}

TEST_F(AdmissionTests, anApplicationThatIsGoneIsMissing) {
    const auto path = home("Applications/Gone.app");
    temp.folder("home/Applications");
    EXPECT_EQ(refusal(path, withApplication), refused(Kind::missing, path));
}

TEST_F(AdmissionTests, anApplicationFolderThatIsALinkIsNotGoneThrough) {
    installApplication("elsewhere/Catatan.app", "com.contoh.catatan");
    temp.symlink("home/Applications", temp.path("elsewhere"));
    const auto path = home("Applications/Catatan.app");
    EXPECT_EQ(refusal(path, withApplication), refused(std::errc::too_many_symbolic_link_levels, path));
}

} // namespace
} // namespace korvanti
