// That no system call of the cleaner is left out where each of them is made to fail.
#include "FaultRun.h"
#include "FaultScenarios.h"
#include "support/RunProgram.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <set>
#include <sstream>
#include <string>

namespace korvanti::testing {
namespace {

using ::testing::IsEmpty;
using Names = std::set<std::string>;

/// In the same libraries, but not for the cleaner: a call of one ends the program.
const Names unexpected = {"fchmod",        "fgetxattr",  "flistxattr", "fsetxattr",   "fsync",
                          "futimens",      "getpwuid_r", "getrlimit",  "mkdir",       "mkostemp",
                          "posix_fadvise", "readlink",   "rename",     "setpriority", "setrlimit",
                          "stat",          "statvfs",    "syncfs",     "sysinfo",     "unlink"};

/// They reach no further than this process's own memory, or can't fail.
const Names harmless = {
    // the compiler's and the language's own
    "_Unwind_Resume", "__assert_fail", "__dynamic_cast", "__errno_location", "__gmon_start__",
    "__gxx_personality_v0", "__libc_start_main", "__stack_chk_fail", "abort", "free", "malloc",
    // memory, texts, numbers, the environment
    "floor", "getenv", "gnu_dev_makedev", "ldexp", "llround", "localeconv", "memchr", "memcmp", "memcpy",
    "memmove", "memset", "newlocale", "setenv", "snprintf", "strcmp", "strlen", "strtod", "strtod_l",
    "strtoll", "strtoull", "trunc", "unsetenv",
    // what the start of a tool is put together with
    "posix_spawn_file_actions_addclosefrom_np", "posix_spawn_file_actions_adddup2",
    "posix_spawn_file_actions_addopen", "posix_spawn_file_actions_destroy", "posix_spawn_file_actions_init",
    "posix_spawnattr_destroy", "posix_spawnattr_init", "posix_spawnattr_setflags",
    "posix_spawnattr_setsigdefault", "posix_spawnattr_setsigmask", "sigaddset", "sigdelset", "sigemptyset",
    "sigfillset",
    // threads
    "pthread_mutex_lock", "pthread_mutex_unlock", "sched_yield", "std::thread::hardware_concurrency()",
    // never fails
    "getuid",
    // asks the system by `getrandom`
    "uuid_generate_random", "uuid_parse", "uuid_unparse_upper",
    // for korvanti_clean_once itself
    "dlsym", "fflush", "printf", "putchar", "puts", "stdout"};

/// The names in the table of symbols of a built file.
Names symbols(const std::string& option, const std::string& file) {
    const auto printed = runProgram({"nm", "--dynamic", "--demangle", option, "--format=just-symbols", file});
    EXPECT_EQ(printed.status, 0) << printed.err;
    Names names;
    std::istringstream lines(printed.out);
    for (std::string line; std::getline(lines, line);)
        names.insert(line.substr(0, line.find('@')));
    return names;
}

/// A function of the text library: works in memory, with the tables that it brings.
bool isOfIcu(const std::string& name) {
    const auto underscore = name.rfind('_');
    return name.starts_with('u') && underscore != std::string::npos && underscore + 1 < name.size() &&
           name.find_first_not_of("0123456789", underscore + 1) == std::string::npos;
}

/// A part of the language's library. Of those that ask the system by themselves only these three are known:
/// `canonical` does by `realpath`, `create_directories` by `mkdir`, `read_symlink` by `readlink`.
bool isOfTheLanguage(const std::string& name) {
    if (name.starts_with("__cxa_") || name.starts_with("_ITM_"))
        return true;
    if (!name.contains("::") && !name.starts_with("operator "))
        return false;
    for (const auto* part : {"filebuf", "fstream", "random_device", "std::thread", "this_thread"}) {
        if (name.contains(part))
            return false;
    }
    return !name.contains("filesystem::") || name.contains("::path::") || name.contains("canonical(") ||
           name.contains("create_directories(") || name.contains("read_symlink(");
}

/// Those that are made to fail, by the name that the system knows them by.
Names interposed() {
    auto names = symbols("--defined-only", KORVANTI_FAULT_PRELOAD);
    std::erase_if(names, [](const std::string& name) { return isOfTheLanguage(name); });
    return names;
}

class FaultCoverageTests : public ::testing::Test {
protected:
    void SetUp() override {
        if (aSanitizerIsInTheWay)
            GTEST_SKIP() << "a sanitizer stands in front of the same functions";
    }
};

TEST_F(FaultCoverageTests, everyFunctionThatTheCleanerNeedsIsInterposedOrHarmless) {
    const auto ours = interposed();
    auto needed = symbols("--undefined-only", KORVANTI_CLEAN_ONCE);
    EXPECT_TRUE(needed.contains("unlinkat"));
    std::erase_if(needed, [&](const std::string& name) {
        return ours.contains(name) || harmless.contains(name) || isOfIcu(name) || isOfTheLanguage(name);
    });

    EXPECT_THAT(needed, IsEmpty());
}

TEST_F(FaultCoverageTests, everyFunctionThatCanFailIsCalledInSomeScenario) {
    Names called;
    for (const auto& scenario : {removals(), refusals(), tools(), deepTree()}) {
        for (const auto& call : Stage(scenario).play(std::nullopt).calls)
            called.insert(call.function == "getdents64" ? "syscall" : call.function);
    }
    Names never = interposed();
    std::erase_if(never, [&](const std::string& name) { return called.contains(name); });
    for (const auto& name : unexpected)
        EXPECT_EQ(never.erase(name), 1U) << name;
    never.erase("korvantiEnterStage"); // the library's own
    never.erase("kill");               // of a tool past its time limit
    never.erase("nanosleep");          // before a tool that is still about to end

    EXPECT_THAT(never, IsEmpty());
}

} // namespace
} // namespace korvanti::testing
