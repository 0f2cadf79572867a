#include "process/Shell.h"

#include "base/FileDescriptor.h"
#include "support/Environment.h"
#include "support/TempFolder.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <limits>
#include <pthread.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <vector>

namespace korvanti {
namespace {

using namespace std::chrono_literals;
using ::testing::EndsWith;
using ::testing::IsEmpty;
using ::testing::Not;
using testing::ScopedVariable;
using testing::TempFolder;

using Seconds = Shell::Seconds;

/// Runs a shell script, within a limit that no test comes near unless it gives its own.
ShellResult script(const std::string& text, Seconds timeout = 100s) {
    return Shell::run("/bin/sh", {"-c", text}, {.timeout = timeout});
}

ShellResult print(const std::vector<std::string>& words) {
    std::vector<std::string> arguments = {"[%s]"};
    arguments.insert(arguments.end(), words.begin(), words.end());
    return Shell::run("/usr/bin/printf", arguments);
}

void expectNotStarted(const ShellResult& result) {
    EXPECT_EQ(result.status, -1);
    EXPECT_FALSE(result.ok());
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.err, "");
}

// How a tool ends

TEST(ShellTests, tellsTheExitStatusOfATool) {
    for (const int status : {0, 1, 3, 127, 255}) {
        const auto result = script("exit " + std::to_string(status));
        EXPECT_EQ(result.status, status);
        EXPECT_EQ(result.ok(), status == 0);
    }
}

TEST(ShellTests, tellsTheSignalThatEndedATool) {
    EXPECT_EQ(script("kill -KILL $$").status, SIGKILL);
    EXPECT_EQ(script("kill -TERM $$").status, SIGTERM);
}

TEST(ShellTests, aToolThatDoesNotExistHasItsReason) {
    const auto result = Shell::run("/no/such/tool", {"x"});

    expectNotStarted(result);
    EXPECT_EQ(result.err, std::generic_category().message(ENOENT));
}

TEST(ShellTests, whatIsNoProgramIsNotStarted) {
    const TempFolder temp;
    temp.file("text", {.text = "echo started\n"});
    temp.setMode("text", 0755);
    temp.file("empty");
    temp.setMode("empty", 0755);
    temp.file("locked", {.text = "#!/bin/sh\necho started\n"});
    temp.setMode("locked", 0644);
    temp.file("orphan", {.text = "#!/no/such/interpreter\n"});
    temp.setMode("orphan", 0755);
    temp.symlink("dangling", "nowhere");
    for (const auto* name : {"", "text", "empty", "locked", "orphan", "dangling", "text/below"}) {
        SCOPED_TRACE(name);
        expectNotStarted(Shell::run(temp.path(name), {}));
    }
    expectNotStarted(Shell::run("", {}));
}

TEST(ShellTests, aToolIsNotLookedForAlongThePath) {
    expectNotStarted(Shell::run("true", {}));
}

TEST(ShellTests, aScriptIsATool) {
    const TempFolder temp;
    const auto tool = temp.file("a tool", {.text = "#!/bin/sh\necho \"$0 $1\"\n"});
    temp.setMode("a tool", 0755);

    EXPECT_EQ(Shell::run(tool, {"x"}).out, tool + " x\n");
    EXPECT_EQ(Shell::run(temp.symlink("link", tool), {"x"}).out, temp.path("link") + " x\n");
}

// What it is given

TEST(ShellTests, argumentsArriveAsTheyAre) {
    EXPECT_EQ(print({"", "two words", "$HOME", "*", "'\"\\", "line\nfeed", "--", "\xff\xfe"}).out,
              "[][two words][$HOME][*]['\"\\][line\nfeed][--][\uFFFD\uFFFD]");
}

TEST(ShellTests, aLongArgumentArrivesWhole) {
    const std::string argument(100'000, 'x');

    EXPECT_EQ(print({argument}).out, "[" + argument + "]");
}

TEST(ShellTests, argumentsBeyondTheSystemsLimitAreAReason) {
    const std::vector<std::string> arguments(4000, std::string(10'000, 'x'));

    const auto result = print(arguments);

    expectNotStarted(result);
    EXPECT_EQ(result.err, std::generic_category().message(E2BIG));
}

TEST(ShellTests, aToolHasNothingToRead) {
    EXPECT_EQ(script("cat; echo end").out, "end\n");
    EXPECT_EQ(Shell::run("/bin/cat", {}), ShellResult{});
}

TEST(ShellTests, theEnvironmentIsThisProcesssOwnWithTheGivenSetOverIt) {
    const ScopedVariable kept("KORVANTI_KEPT", "kept");
    const ScopedVariable replaced("DEVELOPER_DIR", "/inherited");

    const auto result =
        Shell::run("/usr/bin/env", {},
                   {.environment = {
                        {"DEVELOPER_DIR", "/given"}, {"KORVANTI_EMPTY", ""}, {"KORVANTI_NEW", "a=b c\xff"}}});

    const auto lines = "\n" + result.out;
    for (const auto* line : {"\nKORVANTI_KEPT=kept\n", "\nDEVELOPER_DIR=/given\n", "\nKORVANTI_EMPTY=\n",
                             "\nKORVANTI_NEW=a=b c\uFFFD\n"})
        EXPECT_TRUE(lines.contains(line)) << line << lines;
    EXPECT_FALSE(lines.contains("/inherited"));
    EXPECT_STREQ(std::getenv("DEVELOPER_DIR"), "/inherited");
    EXPECT_EQ(std::getenv("KORVANTI_NEW"), nullptr);
}

TEST(ShellTests, aNameThatStartsLikeAGivenOneIsLeftAlone) {
    const ScopedVariable longer("KORVANTI_NAME_2", "2");
    const ScopedVariable shorter("KORVANTI_NAM", "0");

    const auto result = Shell::run("/usr/bin/env", {}, {.environment = {{"KORVANTI_NAME", "1"}}});

    for (const auto* line : {"KORVANTI_NAME_2=2\n", "KORVANTI_NAM=0\n", "KORVANTI_NAME=1\n"})
        EXPECT_TRUE(result.out.contains(line)) << line;
}

#ifdef __linux__
TEST(ShellTests, aToolInheritsNoDescriptorButItsStreams) {
    std::vector<FileDescriptor> open;
    for (int i = 0; i < 200; ++i)
        open.emplace_back(::open("/dev/null", i % 2 == 0 ? O_RDONLY : O_RDWR | O_CLOEXEC));
    const FileDescriptor high(::fcntl(open.front().get(), F_DUPFD, 900));
    ASSERT_GE(high.get(), 900);

    // The fourth is the listing itself.
    EXPECT_EQ(Shell::run("/bin/ls", {"/proc/self/fd"}).out, "0\n1\n2\n3\n");
    EXPECT_EQ(script("readlink /proc/$$/fd/0").out, "/dev/null\n");
}

TEST(ShellTests, nothingIsLeftOpenAndNobodyUnwaitedFor) {
    const auto openCount = [] {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    };
    const auto before = openCount();
    for (int i = 0; i < 10; ++i) {
        static_cast<void>(script("echo out; echo err >&2"));
        static_cast<void>(Shell::run("/no/such/tool", {}));
        static_cast<void>(script("exec sleep 600", 0s));
    }

    EXPECT_EQ(openCount(), before);
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}
#endif

TEST(ShellTests, withoutFreeDescriptorsNothingIsStarted) {
    rlimit before{};
    ::getrlimit(RLIMIT_NOFILE, &before);
    const int next = FileDescriptor(::open("/dev/null", O_RDONLY)).get();
    for (const int free : {0, 1, 2, 3, 4}) {
        const rlimit few = {.rlim_cur = static_cast<rlim_t>(next + free), .rlim_max = before.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &few);
        const auto result = script("echo started");
        ::setrlimit(RLIMIT_NOFILE, &before);
        SCOPED_TRACE(free);
        expectNotStarted(result);
    }
    EXPECT_EQ(script("echo started").out, "started\n");
}

TEST(ShellTests, worksWhereTheStandardStreamsAreClosed) {
    const auto runClosed = [] {
        for (const int stream : {0, 1, 2})
            ::close(stream);
        const auto result = script("cat; echo out; echo err >&2; exit 5");
        std::_Exit(result == ShellResult{.status = 5, .out = "out\n", .err = "err\n"} ? 0 : 1);
    };
    EXPECT_EXIT(runClosed(), ::testing::ExitedWithCode(0), "");
}

// What it says

TEST(ShellTests, bothStreamsAreCaughtApart) {
    EXPECT_EQ(script("echo one; echo two >&2; echo three"),
              (ShellResult{.status = 0, .out = "one\nthree\n", .err = "two\n"}));
}

TEST(ShellTests, aToolThatFloodsOneStreamAndThenTheOtherDoesNotHang) {
    const std::string flood = "head -c 5000000 /dev/zero | tr '\\0' ";

    const auto errFirst = script(flood + "e >&2; " + flood + "o");
    EXPECT_EQ(errFirst.err, std::string(5'000'000, 'e'));
    EXPECT_EQ(errFirst.out, std::string(5'000'000, 'o'));

    const auto outFirst = script(flood + "o; " + flood + "e >&2");
    EXPECT_EQ(outFirst.err, std::string(5'000'000, 'e'));
    EXPECT_EQ(outFirst.out, std::string(5'000'000, 'o'));
}

TEST(ShellTests, aToolThatFloodsBothStreamsAtOnceDoesNotHang) {
    const std::string flood = "head -c 5000000 /dev/zero | tr '\\0' ";

    const auto result = script(flood + "e >&2 & " + flood + "o; wait");

    EXPECT_EQ(result.err.size(), 5'000'000U);
    EXPECT_EQ(result.out.size(), 5'000'000U);
}

TEST(ShellTests, bytesThatAreNoTextAreRepaired) {
    EXPECT_EQ(script("printf 'a\\377b\\303'; printf '\\342\\202' >&2"),
              (ShellResult{.status = 0, .out = "a\uFFFDb\uFFFD", .err = "\uFFFD"}));
    EXPECT_EQ(script("printf 'a\\000b'").out, std::string("a\0b", 3));
}

TEST(ShellTests, aCharacterThatComesInTwoPartsIsWhole) {
    EXPECT_EQ(script("printf '\\303'; sleep 0.2; printf '\\251'").out, "é");
}

TEST(ShellTests, aToolThatClosesItsStreamsEarlyIsWaitedFor) {
    EXPECT_EQ(script("echo out; exec >&- 2>&-; sleep 0.3; exit 4"),
              (ShellResult{.status = 4, .out = "out\n", .err = ""}));
    EXPECT_EQ(script("exec >&-; sleep 0.3; echo err >&2; exit 5"),
              (ShellResult{.status = 5, .out = "", .err = "err\n"}));
}

TEST(ShellTests, aChildOfTheToolThatKeepsAStreamOpenIsReadToItsEnd) {
    EXPECT_EQ(script("(sleep 0.5; echo late) & echo early; exit 6"),
              (ShellResult{.status = 6, .out = "early\nlate\n", .err = ""}));
    EXPECT_EQ(script("(sleep 0.5; echo late >&2) >&- & exit 7"),
              (ShellResult{.status = 7, .out = "", .err = "late\n"}));
}

// The time limit

TEST(ShellTests, aToolThatHangsIsTerminated) {
    EXPECT_EQ(script("echo so far; echo too >&2; exec sleep 600", 1s),
              (ShellResult{.status = SIGTERM, .out = "so far\n", .err = "too\n"}));
}

TEST(ShellTests, aToolThatHangsWithClosedStreamsIsTerminated) {
    EXPECT_EQ(script("exec >&- 2>&-; exec sleep 600", 1s).status, SIGTERM);
}

TEST(ShellTests, aToolThatWritesWithoutEndIsTerminated) {
    const auto result = script("while :; do echo on; done", 0.2s);

    EXPECT_EQ(result.status, SIGTERM);
    EXPECT_THAT(result.out, Not(IsEmpty()));
}

TEST(ShellTests, aToolThatIgnoresTheSignalIsWaitedFor) {
    EXPECT_EQ(script("trap '' TERM; echo on; sleep 3; echo end; exit 3", 1s),
              (ShellResult{.status = 3, .out = "on\nend\n", .err = ""}));
}

TEST(ShellTests, theSignalComesOnce) {
    const auto result = script("n=0; trap 'n=$((n+1))' TERM\n"
                               "i=0; while [ $i -lt 30 ]; do sleep 0.1; i=$((i+1)); echo on; done; echo $n",
                               1s);
    EXPECT_THAT(result.out, EndsWith("on\n1\n"));
}

TEST(ShellTests, aToolMayAnswerTheSignal) {
    EXPECT_EQ(script("trap 'echo caught; exit 7' TERM; while :; do sleep 0.1; done", 1s),
              (ShellResult{.status = 7, .out = "caught\n", .err = ""}));
}

TEST(ShellTests, aChildThatKeepsAStreamOpenIsReadBeyondTheTimeLimit) {
    EXPECT_EQ(script("(trap '' TERM; sleep 3; echo late) & exec sleep 600", 1s),
              (ShellResult{.status = SIGTERM, .out = "late\n", .err = ""}));
}

TEST(ShellTests, aToolThatEndedBeforeTheTimeLimitKeepsItsStatus) {
    EXPECT_EQ(script("(sleep 4; echo late) & exit 8", 2s),
              (ShellResult{.status = 8, .out = "late\n", .err = ""}));
}

TEST(ShellTests, withoutTimeAToolIsTerminatedAtOnce) {
    for (const double seconds : {0.0, -0.0, -1.0, -1e300, -std::numeric_limits<double>::infinity()})
        EXPECT_EQ(script("exec sleep 600", Seconds(seconds)).status, SIGTERM) << seconds;
}

TEST(ShellTests, aTimeLimitThatNeverComesIsNone) {
    for (const double seconds :
         {1e10, 1e300, std::numeric_limits<double>::max(), std::numeric_limits<double>::infinity(),
          std::numeric_limits<double>::quiet_NaN(), -std::numeric_limits<double>::quiet_NaN()}) {
        const auto result = script("sleep 0.2; echo out; exec >&- 2>&-; sleep 0.2; exit 9", Seconds(seconds));
        EXPECT_EQ(result, (ShellResult{.status = 9, .out = "out\n", .err = ""})) << seconds;
    }
}

// Signals of this process

TEST(ShellTests, aBlockedOrIgnoredSignalOfTheCallerDoesNotDeafenATool) {
    sigset_t signals;
    sigset_t before;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    ::pthread_sigmask(SIG_BLOCK, &signals, &before);
    EXPECT_EQ(script("exec sleep 600", 0.2s).status, SIGTERM);
    sigset_t after;
    ::pthread_sigmask(SIG_SETMASK, &before, &after);
    EXPECT_EQ(sigismember(&after, SIGTERM), 1) << "the caller's own mask stays";

    auto* const handler = std::signal(SIGTERM, SIG_IGN);
    EXPECT_EQ(script("exec sleep 600", 0.2s).status, SIGTERM);
    std::signal(SIGTERM, handler);
}

TEST(ShellTests, aToolEndsOnABrokenPipeAlsoWhereThisProcessDoesNot) {
    auto* const handler = std::signal(SIGPIPE, SIG_IGN);
    EXPECT_EQ(script("kill -PIPE $$; echo on").status, SIGPIPE);
    std::signal(SIGPIPE, handler);
}

TEST(ShellTests, signalsToTheCallerDisturbNothing) {
    struct sigaction action {};
    struct sigaction before {};
    action.sa_handler = [](int) {};
    ASSERT_EQ(::sigaction(SIGUSR1, &action, &before), 0);
    const auto caller = ::pthread_self();
    std::atomic<bool> stop = false;
    std::thread other([&] {
        while (!stop) {
            ::pthread_kill(caller, SIGUSR1);
            std::this_thread::sleep_for(1ms);
        }
    });
    const auto result = script("for i in 1 2 3 4 5; do echo $i; sleep 0.05; done\n"
                               "exec >&- 2>&-; sleep 0.2; exit 4");
    const auto overdue = script("trap '' TERM; exec >&- 2>&-; sleep 2; exit 5", 1s);
    stop = true;
    other.join();
    ::sigaction(SIGUSR1, &before, nullptr);

    EXPECT_EQ(result, (ShellResult{.status = 4, .out = "1\n2\n3\n4\n5\n", .err = ""}));
    EXPECT_EQ(overdue, ShellResult{.status = 5});
}

// Many at once

TEST(ShellTests, manyThreadsRunToolsAtOnce) {
    constexpr int calls = 50;
    std::vector<ShellResult> results(calls);
    std::atomic<int> next = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 16; ++i)
        threads.emplace_back([&] {
            for (int call = next++; call < calls; call = next++) {
                const auto number = std::to_string(call);
                results[static_cast<std::size_t>(call)] = Shell::run(
                    "/bin/sh",
                    {"-c",
                     "cat; echo $NUMBER; echo $NUMBER >&2; head -c 200000 /dev/zero | tr '\\0' o; exit $1",
                     "sh", std::to_string(call % 7)},
                    {.environment = {{"NUMBER", number}}, .timeout = 100s});
            }
        });
    for (auto& thread : threads)
        thread.join();
    for (int call = 0; call < calls; ++call) {
        const auto line = std::to_string(call) + "\n";
        EXPECT_EQ(results[static_cast<std::size_t>(call)],
                  (ShellResult{.status = call % 7, .out = line + std::string(200'000, 'o'), .err = line}))
            << call;
    }
}

TEST(ShellTests, aToolThatHangsKeepsNoOtherCallWaiting) {
    // Did the quick tools' streams leak into the slow one, they would not end before it.
    const TempFolder temp;
    std::thread slow(
        [&] { EXPECT_EQ(script("until [ -e '" + temp.path("end") + "' ]; do sleep 0.05; done").status, 0); });
    for (int i = 0; i < 50; ++i)
        EXPECT_EQ(script("echo quick").out, "quick\n");
    temp.file("end");
    slow.join();
}

} // namespace
} // namespace korvanti
