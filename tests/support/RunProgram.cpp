#include "support/RunProgram.h"

#include "base/FileDescriptor.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

extern char** environ; // NOLINT(readability-redundant-declaration): macOS declares it nowhere

namespace korvanti::testing {
namespace {

using Clock = std::chrono::steady_clock;
using Reading = ProgramOptions::Reading;

struct Pipe {
    Pipe() {
        int ends[2] = {-1, -1};
        if (::pipe(ends) != 0)
            ADD_FAILURE() << "pipe: " << std::strerror(errno);
        for (const int end : ends)
            ::fcntl(end, F_SETFD, FD_CLOEXEC);
        reading = FileDescriptor(ends[0]);
        writing = FileDescriptor(ends[1]);
    }

    /// As little as the system allows, so that the writer stands waiting when its reader goes.
    void makeSmall() const {
#ifdef F_SETPIPE_SZ
        ::fcntl(writing.get(), F_SETPIPE_SZ, 1);
#endif
    }

    FileDescriptor reading;
    FileDescriptor writing;
};

/// "NAME=value" texts: our own environment with the changes over it.
std::vector<std::string> environmentWith(const std::map<std::string, std::optional<std::string>>& changes) {
    std::vector<std::string> all;
    for (char** entry = environ; *entry; ++entry) {
        const std::string text = *entry;
        if (!changes.contains(text.substr(0, text.find('='))))
            all.push_back(text);
    }
    for (const auto& [name, value] : changes) {
        if (value)
            all.push_back(name + "=" + *value);
    }
    return all;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (auto& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

std::optional<pid_t> start(std::vector<std::string> command, const ProgramOptions& options, const Pipe& out,
                           const Pipe& err) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, out.writing.get(), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, err.writing.get(), STDERR_FILENO);
    if (!options.folder.empty())
        posix_spawn_file_actions_addchdir_np(&actions, options.folder.c_str());

    // A group of its own, to end it with its children; signals as a fresh shell would leave them.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t signals;
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes, &signals);
    sigaddset(&signals, SIGPIPE);
    posix_spawnattr_setsigdefault(&attributes, &signals);
    posix_spawnattr_setpgroup(&attributes, 0);
    posix_spawnattr_setflags(&attributes,
                             POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);

    auto environment = environmentWith(options.environment);
    pid_t process = -1;
    const int error = ::posix_spawnp(&process, command.at(0).c_str(), &actions, &attributes,
                                     pointersTo(command).data(), pointersTo(environment).data());
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    if (error == 0)
        return process;
    ADD_FAILURE() << command.at(0) << ": " << std::strerror(error);
    return std::nullopt;
}

/// Takes what is there; closes the descriptor at its end.
void take(FileDescriptor& from, std::string& into) {
    std::array<char, 64 * 1024> buffer{};
    const auto count = ::read(from.get(), buffer.data(), buffer.size());
    if (count > 0)
        into.append(buffer.data(), static_cast<std::size_t>(count));
    else if (count == 0 || errno != EINTR)
        from.reset();
}

/// Reads both streams to their ends. False when the time is over first.
bool readToTheEnd(Pipe& out, Pipe& err, Reading reading, ProgramResult& result, Clock::time_point deadline) {
    while (out.reading || err.reading) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        if (left.count() <= 0)
            return false;
        // A negative descriptor is passed by.
        std::array<pollfd, 2> waiting = {pollfd{.fd = out.reading.get(), .events = POLLIN, .revents = 0},
                                         pollfd{.fd = err.reading.get(), .events = POLLIN, .revents = 0}};
        if (::poll(waiting.data(), waiting.size(), static_cast<int>(left.count())) <= 0)
            continue;
        if (waiting[0].revents != 0)
            take(out.reading, result.out);
        if (waiting[1].revents != 0)
            take(err.reading, result.err);
        if (const auto end = result.out.find('\n');
            reading == Reading::firstLine && end != std::string::npos) {
            out.reading.reset();
            result.out.resize(end + 1);
        }
    }
    return true;
}

/// The wait status once the process has ended. Absent when the time is over first.
std::optional<int> waitFor(pid_t process, Clock::time_point deadline) {
    for (int status = 0;;) {
        const auto ended = ::waitpid(process, &status, WNOHANG);
        if (ended == process)
            return status;
        if ((ended < 0 && errno != EINTR) || Clock::now() >= deadline)
            return std::nullopt;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

} // namespace

ProgramResult runProgram(const std::vector<std::string>& command, const ProgramOptions& options) {
    Pipe out;
    Pipe err;
    if (options.reading != Reading::all)
        out.makeSmall();
    if (options.reading == Reading::nothing)
        out.reading.reset();
    const auto process = start(command, options, out, err);
    out.writing.reset();
    err.writing.reset();
    if (!process)
        return {.status = 127, .out = {}, .err = {}};

    ProgramResult result;
    const auto deadline = Clock::now() + options.timeLimit;
    std::optional<int> status;
    if (readToTheEnd(out, err, options.reading, result, deadline))
        status = waitFor(*process, deadline);
    if (!status) {
        ADD_FAILURE() << command.at(0) << " was still running after " << options.timeLimit.count() << " ms";
        ::kill(-*process, SIGKILL);
        int killed = 0;
        ::waitpid(*process, &killed, 0);
        status = killed;
    }
    result.status = WIFEXITED(*status) ? WEXITSTATUS(*status) : -WTERMSIG(*status);
    return result;
}

} // namespace korvanti::testing
