#include "ProgramRun.h"

#include "base/FileDescriptor.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <spawn.h>
#include <sstream>
#include <string_view>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace korvanti::bench {
namespace {

double now() {
    timespec time{};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

double milliseconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
}

std::vector<std::string> environmentWith(const std::vector<std::string>& own) {
    std::vector<std::string> all = own;
    for (char** variable = environ; *variable; ++variable) {
        const std::string_view text = *variable;
        const auto name = text.substr(0, text.find('=') + 1);
        if (std::ranges::none_of(own, [&](const std::string& set) { return set.starts_with(name); }))
            all.emplace_back(text);
    }
    return all;
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> all;
    for (std::string& text : texts)
        all.push_back(text.data());
    all.push_back(nullptr);
    return all;
}

std::string readToEnd(int descriptor) {
    std::string text;
    char buffer[64 * 1024];
    for (ssize_t count = 0; (count = ::read(descriptor, buffer, sizeof buffer)) > 0;)
        text.append(buffer, static_cast<std::size_t>(count));
    return text;
}

std::nullopt_t failed(const Command& command, std::string_view why) {
    fmt::print(stderr, "{}: {}\n", fmt::join(command.arguments, " "), why);
    return std::nullopt;
}

} // namespace

std::optional<ProgramRun> run(const Command& command) {
    auto arguments = command.arguments;
    auto environment = environmentWith(command.environment);
    const auto argumentPointers = pointers(arguments);
    const auto environmentPointers = pointers(environment);

    int ends[2];
    if (::pipe(ends) != 0)
        return failed(command, std::strerror(errno));
    FileDescriptor readEnd(ends[0]), writeEnd(ends[1]);
    ::fcntl(readEnd.get(), F_SETFD, FD_CLOEXEC);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, writeEnd.get(), STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addclose(&actions, writeEnd.get());

    ProgramRun result;
    pid_t process = 0;
    const double start = now();
    const int error = ::posix_spawnp(&process, arguments.front().c_str(), &actions, nullptr,
                                     argumentPointers.data(), environmentPointers.data());
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0)
        return failed(command, std::strerror(error));
    writeEnd.reset();
    result.output = readToEnd(readEnd.get());
    int status = 0;
    rusage usage{};
    while (::wait4(process, &status, 0, &usage) < 0 && errno == EINTR) {
    }
    result.milliseconds = now() - start;
    result.cpuMilliseconds = milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
#ifdef __APPLE__
    result.peakMemory = usage.ru_maxrss;
#else
    result.peakMemory = usage.ru_maxrss * 1024;
#endif
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        return failed(command, fmt::format("ended with status {:#x}", status));
    return result;
}

std::string findProgram(const std::string& name) {
    const char* path = std::getenv("PATH");
    std::istringstream folders(path ? path : "");
    for (std::string folder; std::getline(folders, folder, ':');) {
        std::string candidate = folder + "/" + name;
        if (::access(candidate.c_str(), X_OK) == 0)
            return candidate;
    }
    return {};
}

std::map<std::string, std::int64_t> numbersByName(const std::string& output) {
    std::map<std::string, std::int64_t> numbers;
    std::istringstream lines(output);
    std::string name;
    std::int64_t number = 0;
    while (lines >> name >> number)
        numbers[name] = number;
    return numbers;
}

} // namespace korvanti::bench
