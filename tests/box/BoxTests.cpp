#include "support/Environment.h"
#include "support/RunProgram.h"
#include "support/TempFolder.h"

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <ostream>
#include <string>
#include <unistd.h>
#include <vector>

namespace korvanti::testing {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

const std::string enter = KORVANTI_BOX;

/// Who starts the box: root may mount at once, anyone else goes through a user namespace.
enum class Starter { root, ordinaryUser };

std::string nameOf(Starter starter) {
    return starter == Starter::root ? "root" : "ordinaryUser";
}

/// For the names of the tests.
void PrintTo(Starter starter, std::ostream* stream) {
    *stream << nameOf(starter);
}

std::string mountTable() {
    std::ifstream stream("/proc/self/mountinfo");
    return {std::istreambuf_iterator<char>(stream), {}};
}

class BoxTests : public ::testing::TestWithParam<Starter> {
protected:
    void SetUp() override {
        if (GetParam() == Starter::root && ::geteuid() != 0)
            GTEST_SKIP() << "not root";
        if (GetParam() == Starter::ordinaryUser && ::geteuid() == 0) {
            starter_ = {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"};
            if (run({"test", "-x", enter}).status != 0)
                GTEST_SKIP() << "another user cannot read the source tree";
        }
        if (const auto probe = box({"true"}); probe.status == 77)
            GTEST_SKIP() << probe.err;
    }

    [[nodiscard]] ProgramResult run(std::vector<std::string> command,
                                    const ProgramOptions& options = {}) const {
        command.insert(command.begin(), starter_.begin(), starter_.end());
        return runProgram(command, options);
    }
    [[nodiscard]] ProgramResult box(std::vector<std::string> arguments,
                                    const ProgramOptions& options = {}) const {
        arguments.insert(arguments.begin(), enter);
        return run(std::move(arguments), options);
    }
    /// What a shell script prints inside; expects that it succeeds.
    [[nodiscard]] std::string outputOf(std::vector<std::string> arguments, const std::string& script,
                                       const ProgramOptions& options = {}) const {
        arguments.insert(arguments.end(), {"sh", "-euc", script});
        const auto result = box(std::move(arguments), options);
        EXPECT_EQ(result.status, 0) << script << "\n" << result.err;
        return result.out;
    }

    /// The same where another script, as root in a namespace of its own, has mounted something first.
    [[nodiscard]] std::string outputBesideMounts(const std::string& mounts, const std::string& script,
                                                 const std::string& folder) const {
        std::vector<std::string> command = {"unshare", "--mount", "sh", "-euc", mounts + "; exec \"$@\"",
                                            "sh"};
        command.insert(command.end(), starter_.begin(), starter_.end());
        command.insert(command.end(), {enter, "sh", "-euc", script});
        const auto result = runProgram(command, {.folder = folder});
        EXPECT_EQ(result.status, 0) << result.err;
        return result.out;
    }

private:
    std::vector<std::string> starter_;
};

INSTANTIATE_TEST_SUITE_P(StartedBy, BoxTests, ::testing::Values(Starter::root, Starter::ordinaryUser),
                         [](const auto& starter) { return nameOf(starter.param); });

TEST_P(BoxTests, passesTheExitStatusOn) {
    EXPECT_EQ(box({"sh", "-c", "exit 0"}).status, 0);
    EXPECT_EQ(box({"sh", "-c", "exit 41"}).status, 41);
}

TEST_P(BoxTests, passesTheEndByASignalOn) {
    EXPECT_EQ(box({"sh", "-c", "kill -TERM $$"}).status, -15);
}

TEST_P(BoxTests, keepsOutputAndErrorsApart) {
    const auto result = box({"sh", "-c", "echo out; echo err >&2"});

    EXPECT_EQ(result.out, "out\n");
    EXPECT_EQ(result.err, "err\n");
}

TEST_P(BoxTests, handsTheArgumentsOnAsTheyAre) {
    EXPECT_EQ(box({"printf", "%s|", "a b", "", "*", "line\nfeed", "--root"}).out,
              "a b||*|line\nfeed|--root|");
}

TEST_P(BoxTests, runsAsAnOrdinaryUser) {
    EXPECT_EQ(outputOf({}, "id -u; id -g; id -un"), "1000\n1000\ntester\n");
}

TEST_P(BoxTests, givesAnOrdinaryUserNoCapabilities) {
    EXPECT_EQ(outputOf({}, "grep CapEff /proc/self/status"), "CapEff:\t0000000000000000\n");
}

TEST_P(BoxTests, runsAsTheUserThatIsAskedFor) {
    EXPECT_EQ(outputOf({"--as", "501"}, "id -u"), "501\n");
    EXPECT_EQ(outputOf({"--as", "nobody"}, "id -un"), "nobody\n");
    EXPECT_EQ(outputOf({"--root"}, "id -u"), "0\n");
}

TEST_P(BoxTests, refusesAnUnknownUser) {
    const auto result = box({"--as", "no-such-user", "true"});

    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "box: no such user: no-such-user\n");
}

TEST_P(BoxTests, hasTheEnvironmentOfAMacUser) {
    const ProgramOptions options = {
        .environment = {{"TMPDIR", "/nowhere"}, {"XDG_DATA_HOME", "/nowhere"}, {"OTHER", "kept"}}};

    EXPECT_EQ(outputOf({}, R"(echo "$HOME $USER $LOGNAME ${TMPDIR-} ${XDG_DATA_HOME-} $OTHER")", options),
              "/Users/tester tester tester   kept\n");
}

TEST_P(BoxTests, namesTheHomeInTheAccountDatabaseToo) {
    EXPECT_EQ(outputOf({}, "getent passwd 1000 | cut -d: -f1,6"), "tester:/Users/tester\n");
}

TEST_P(BoxTests, hasTheFoldersOfAMac) {
    const auto missing = outputOf({}, R"(
        for folder in /Applications /Applications/Utilities /System/Applications /System/Library/AssetsV2 \
            /Library/Developer "/Library/Application Support" /Users/Shared /Users/tester/Library /Volumes; do
            test -d "$folder" || echo "$folder"
        done)");

    EXPECT_EQ(missing, "");
}

TEST_P(BoxTests, letsTheUserWriteInTheMacsFolders) {
    EXPECT_EQ(outputOf({}, R"(
        for folder in "$HOME" /Applications "/Library/Application Support/com.apple.TCC" /Volumes /tmp /dev/shm; do
            echo written > "$folder/file"
            cat "$folder/file"
        done)"),
              "written\nwritten\nwritten\nwritten\nwritten\nwritten\n");
}

TEST_P(BoxTests, deniesTheUserAFolderWithoutRights) {
    EXPECT_EQ(box({"sh", "-c", "mkdir -m 0 ~/locked; ls ~/locked"}).status, 2);
}

TEST_P(BoxTests, deniesRootNothing) {
    EXPECT_EQ(outputOf({"--root"}, "mkdir ~/locked; touch ~/locked/inside; chmod 0 ~/locked; ls ~/locked"),
              "inside\n");
}

TEST_P(BoxTests, letsOnlyRootMount) {
    EXPECT_NE(box({"mount", "-t", "tmpfs", "stick", "/Volumes"}).status, 0);
    EXPECT_EQ(box({"--root", "mount", "-t", "tmpfs", "stick", "/Volumes"}).status, 0);
}

TEST_P(BoxTests, keepsItsMountsToItself) {
    const auto before = mountTable();

    EXPECT_THAT(outputOf({"--root"}, R"(
        mkdir /Volumes/Stick
        mount -t tmpfs stick /Volumes/Stick
        mount -t tmpfs usr-local /usr/local
        cat /proc/self/mountinfo)"),
                ::testing::AllOf(HasSubstr(" /Volumes/Stick "), HasSubstr(" /usr/local ")));

    EXPECT_EQ(mountTable(), before);
}

TEST_P(BoxTests, keepsWhatRootWritesToItself) {
    std::vector<std::string> folders = {"", "/tmp", "/dev/shm", "/Volumes", "/Library"};
    if (GetParam() == Starter::root) // in a user namespace the system's own folders belong to somebody else
        folders.insert(folders.end(), {"/etc", "/usr/bin", "/var/tmp", KORVANTI_SOURCE});
    const std::string name = "/korvanti-box-test";
    std::string script;
    std::string expected;
    for (const auto& folder : folders) {
        script += "echo x > '" + folder + name + "'; cat '" + folder + name + "'\n";
        expected += "x\n";
    }

    EXPECT_EQ(outputOf({"--root"}, script), expected);

    for (const auto& folder : folders)
        EXPECT_FALSE(std::filesystem::exists(folder + name)) << folder;
}

TEST_P(BoxTests, startsEmptyEachTime) {
    EXPECT_EQ(outputOf({}, "touch ~/one /Applications/one; ls ~/one"), "/Users/tester/one\n");
    EXPECT_EQ(outputOf({}, "find / -xdev -name one -user tester"), "");
}

TEST_P(BoxTests, hidesTheTemporaryFilesOfTheHost) {
    const TempFolder temp;

    EXPECT_EQ(outputOf({}, "ls /tmp", {.folder = "/"}).find(temp.path().substr(5)), std::string::npos);
}

TEST_P(BoxTests, showsTheSourceTreeAtItsOwnPath) {
    EXPECT_EQ(outputOf({}, "test -x " + enter + " && echo there", {.folder = "/"}), "there\n");
}

TEST_P(BoxTests, staysInTheFolderThatItIsStartedIn) {
    EXPECT_EQ(outputOf({}, "pwd", {.folder = "/usr/share"}), "/usr/share\n");
}

TEST_P(BoxTests, showsTheFolderThatItIsStartedInUnderTmp) {
    const TempFolder temp;
    temp.file("build, a:b\\/one", {.text = "text"});
    temp.setMode("", 0755);

    EXPECT_EQ(outputOf({}, "cat one; pwd", {.folder = temp.path("build, a:b\\")}),
              "text" + temp.path("build, a:b\\") + "\n");
}

TEST_P(BoxTests, leavesTheFolderThatItIsStartedInUnderTmpUnchanged) {
    const TempFolder temp;
    temp.file("old", {.text = "old\n"});
    temp.setMode("", 0777);

    EXPECT_EQ(outputOf({"--root"}, "echo x > new; cat new; rm old; test ! -e old", {.folder = temp.path()}),
              "x\n");

    EXPECT_FALSE(std::filesystem::exists(temp.path("new")));
    EXPECT_EQ(textOf(temp.path("old")), "old\n");
}

TEST_P(BoxTests, showsTheVolumeThatItIsStartedIn) {
    const TempFolder temp;
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can mount one";
    temp.folder("volume");
    temp.setMode("", 0755);

    EXPECT_EQ(
        outputBesideMounts("mount -t tmpfs -o mode=755 volume volume; echo text > volume/one; cd volume",
                           "cat one", temp.path()),
        "text\n");
}

TEST_P(BoxTests, showsTheMountsInsideTheFolderThatItIsStartedInToAnOrdinaryStarter) {
    if (GetParam() == Starter::root || ::geteuid() != 0)
        GTEST_SKIP() << "root sees an overlay over all of it; only root can mount one";
    const TempFolder temp;
    temp.folder("a folder");
    temp.setMode("", 0755);

    EXPECT_EQ(
        outputBesideMounts("mount -t tmpfs -o mode=777,nosuid volume 'a folder'; echo text > 'a folder/one'",
                           "cat 'a folder/one'; touch 'a folder/two' || echo read-only", temp.path()),
        "text\nread-only\n");
}

TEST_P(BoxTests, laysToolsOverTheRootAtTheirOwnPaths) {
    const TempFolder temp;
    temp.file("usr/sbin/diskutil", {.text = "#!/bin/sh\necho \"$0 $*\" >> \"$KORVANTI_BOX_CALLS\"\n"
                                            "echo answer\n"});
    temp.setMode("usr/sbin/diskutil", 0755);
    temp.file("Library/Developer/Tool/file", {.text = "data\n"});
    temp.setMode("", 0755);

    EXPECT_EQ(outputOf({"--tools", temp.path()}, R"(
        /usr/sbin/diskutil info -plist /
        diskutil apfs list
        cat /Library/Developer/Tool/file "$KORVANTI_BOX_CALLS"
        test -x /usr/bin/env && test -d /Library/Caches && echo "the rest is still there")"),
              "answer\nanswer\ndata\n/usr/sbin/diskutil info -plist /\n/usr/sbin/diskutil apfs list\n"
              "the rest is still there\n");
    EXPECT_FALSE(std::filesystem::exists("/usr/sbin/diskutil"));
}

TEST_P(BoxTests, hasAnEmptyFolderForWhatRuns) {
    EXPECT_EQ(outputOf({"--root"}, "ls -A /run; echo x > /run/new; cat /run/new"), "x\n");
    EXPECT_FALSE(std::filesystem::exists("/run/new"));
}

TEST_P(BoxTests, showsAsItIsWhatIsAskedFor) {
    const TempFolder temp;
    const auto file = temp.file("a folder/file", {.text = "text\n"});
    temp.setMode("", 0755);
    temp.setMode("a folder", 0777);
    temp.setMode("a folder/file", 0666);

    EXPECT_EQ(outputOf({"--show", file},
                       "cat '" + file + "'; echo new > '" + file + "'; ls '" + temp.path("a folder") + "'",
                       {.folder = "/"}),
              "text\nfile\n");
    EXPECT_EQ(textOf(file), "new\n");
    EXPECT_EQ(outputOf({"--show", temp.path("a folder")}, "cat '" + file + "'", {.folder = "/"}), "new\n");
}

TEST_P(BoxTests, refusesToShowWhatIsNotThere) {
    EXPECT_EQ(box({"--show", "/nowhere", "true"}).status, 2);
    EXPECT_EQ(box({"--show", "relative", "true"}).status, 2);
}

/// With a program beside the command, in a folder that the box shows.
class BesideTests : public BoxTests {
protected:
    void SetUp() override {
        BoxTests::SetUp();
        temp.setMode("", 0755);
        temp.file("log");
        temp.setMode("log", 0666);
    }
    [[nodiscard]] std::vector<std::string> beside(const std::string& script) const {
        const auto program = temp.file("program", {.text = "#!/bin/sh\nset -eu\n" + script});
        temp.setMode("program", 0755);
        return {"--show", temp.path("log"), "--beside", program};
    }
    [[nodiscard]] ProgramOptions here() const { return {.folder = temp.path()}; }
    [[nodiscard]] bool isLogged(const std::string& text) const {
        for (int attempt = 0; attempt < 500; ++attempt) {
            if (textOf(temp.path("log")).contains(text))
                return true;
            ::usleep(10'000);
        }
        return false;
    }
    const TempFolder temp;
};

INSTANTIATE_TEST_SUITE_P(StartedBy, BesideTests, ::testing::Values(Starter::root, Starter::ordinaryUser),
                         [](const auto& starter) { return nameOf(starter.param); });

TEST_P(BesideTests, whatItMountsStandsBeforeTheCommandStarts) {
    EXPECT_EQ(
        outputOf(beside("mkdir /Volumes/Stick; sleep 0.3; mount -t tmpfs -o mode=777 stick /Volumes/Stick\n"
                        "echo text > /Volumes/Stick/file; echo ready; exec cat"),
                 "cat /Volumes/Stick/file; umount /Volumes/Stick 2>/dev/null || id -u", here()),
        "text\n1000\n");
}

TEST_P(BesideTests, itEndsWithTheCommand) {
    const auto arguments =
        beside("echo ready; exec >/dev/null; cat; echo ended >> '" + temp.path("log") + "'");

    EXPECT_EQ(outputOf(arguments, "cat '" + temp.path("log") + "'", here()), "");
    EXPECT_TRUE(isLogged("ended"));
}

TEST_P(BesideTests, itEndsWithACommandThatIsKilled) {
    auto arguments = beside("echo ready; exec >/dev/null; cat; echo ended >> '" + temp.path("log") + "'");
    arguments.insert(arguments.end(), {"sh", "-c", "kill -KILL $$"});

    EXPECT_EQ(box(arguments, here()).status, -9);
    EXPECT_TRUE(isLogged("ended"));
}

TEST_P(BesideTests, theCommandDoesNotStartWhereItFails) {
    auto arguments = beside("exit 1");
    arguments.insert(arguments.end(), {"echo", "started"});

    const auto result = box(arguments, here());
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(box({"--beside", temp.path("log"), "true"}).status, 2) << "it is no program";
}

TEST_P(BoxTests, listsTestsWithoutABox) {
    const auto result =
        box({"sh", "-c", "echo $HOME", "sh", "--gtest_list_tests"}, {.environment = {{"HOME", "/outside"}}});

    EXPECT_EQ(result.out, "/outside\n");
}

/// The same program where the kernel refuses namespaces.
class NoBoxTests : public ::testing::Test {
protected:
    [[nodiscard]] ProgramResult enterWithoutNamespaces(std::optional<std::string> ci) const {
        temp.file("unshare",
                  {.text = "#!/bin/sh\necho 'unshare failed: Operation not permitted' >&2\nexit 1\n"});
        temp.setMode("unshare", 0755);
        return runProgram({enter, "sh", "-c", "echo ran"},
                          {.environment = {{"PATH", temp.path() + ":/usr/sbin:/usr/bin:/sbin:/bin"},
                                           {"CI", std::move(ci)}}});
    }
    const TempFolder temp;
};

TEST_F(NoBoxTests, skipsWithOneClearLine) {
    const auto result = enterWithoutNamespaces(std::nullopt);

    EXPECT_EQ(result.status, 77);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err,
              "box: private mounts are not possible here: unshare failed: Operation not permitted\n");
}

TEST_F(NoBoxTests, countsAnEmptyCiVariableAsNone) {
    EXPECT_EQ(enterWithoutNamespaces("").status, 77);
}

TEST_F(NoBoxTests, failsWhereCiMustHaveABox) {
    const auto result = enterWithoutNamespaces("true");

    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
}

} // namespace
} // namespace korvanti::testing
