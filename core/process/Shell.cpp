#include "process/Shell.h"

#include "base/FileDescriptor.h"
#include "base/Text.h"
#include "platform/Platform.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <expected>
#include <fcntl.h>
#include <limits>
#include <optional>
#include <poll.h>
#include <spawn.h>
#include <string_view>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>

extern char** environ; // NOLINT(readability-redundant-declaration): not every system declares it

namespace korvanti::Shell {
namespace {

using Clock = std::chrono::steady_clock;

/// This process's own environment with the given entries set over it, as the system takes it.
std::vector<std::string> environmentOf(const Environment& given) {
    std::vector<std::string> entries;
    for (char** entry = environ; entry && *entry; ++entry) {
        const std::string_view text = *entry;
        if (!given.contains(std::string(text.substr(0, text.find('=')))))
            entries.emplace_back(text);
    }
    for (const auto& [name, value] : given)
        entries.emplace_back(name).append("=").append(value);
    return entries;
}

/// Pointers into `texts`, ended by a null, as exec takes them.
std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (auto& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

struct Pipe {
    FileDescriptor reading;
    FileDescriptor writing;
};

/// Both ends above the three streams, or the error number. Every program that this one starts closes them.
std::expected<Pipe, int> openPipe() {
    int ends[2];
    if (::pipe(ends) != 0)
        return std::unexpected(errno);
    const FileDescriptor low[] = {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
    Pipe pipe{FileDescriptor(::fcntl(ends[0], F_DUPFD_CLOEXEC, 3)),
              FileDescriptor(::fcntl(ends[1], F_DUPFD_CLOEXEC, 3))};
    if (!pipe.reading || !pipe.writing)
        return std::unexpected(errno);
    return pipe;
}

/// Starts the tool, its output going to the two descriptors. Nothing of this process's signal handling is
/// left to it: a blocked SIGTERM would make it deaf to the time limit.
std::expected<pid_t, int> start(const std::string& tool, const std::vector<std::string>& arguments,
                                const Environment& environment, int out, int err) {
    std::vector<std::string> words = {tool};
    words.insert(words.end(), arguments.begin(), arguments.end());
    auto entries = environmentOf(environment);

    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    if (const int error = ::posix_spawn_file_actions_init(&actions); error != 0)
        return std::unexpected(error);
    if (const int error = ::posix_spawnattr_init(&attributes); error != 0) {
        ::posix_spawn_file_actions_destroy(&actions);
        return std::unexpected(error);
    }
    sigset_t none;
    sigset_t all;
    sigemptyset(&none); // a macro on the Mac
    sigfillset(&all);
    sigdelset(&all, SIGKILL); // these have no other way to be handled
    sigdelset(&all, SIGSTOP);
    pid_t process = -1;
    int error = 0;
    const auto step = [&](int result) { error = error == 0 ? result : error; };
    step(::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0));
    step(::posix_spawn_file_actions_adddup2(&actions, out, STDOUT_FILENO));
    step(::posix_spawn_file_actions_adddup2(&actions, err, STDERR_FILENO));
    step(::posix_spawnattr_setsigmask(&attributes, &none));
    step(::posix_spawnattr_setsigdefault(&attributes, &all));
    step(::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF));
    step(Platform::inheritOnlyStreams(attributes, actions));
    if (error == 0)
        step(::posix_spawn(&process, tool.c_str(), &actions, &attributes, pointersTo(words).data(),
                           pointersTo(entries).data()));
    ::posix_spawnattr_destroy(&attributes);
    ::posix_spawn_file_actions_destroy(&actions);
    if (error != 0)
        return std::unexpected(error);
    return process;
}

/// A started tool: ended by SIGTERM at its time limit, and waited for.
class Running {
public:
    Running(pid_t process, Seconds timeout) : process_(process), limit_(timeout), started_(Clock::now()) {
        if (std::isnan(limit_.count()))
            limit_ = Seconds(std::numeric_limits<double>::infinity());
    }

    /// Milliseconds until something is to be done about the time limit, for `poll`; -1 when nothing is any
    /// more.
    int patience() const {
        if (terminated_)
            return -1;
        const double left =
            std::chrono::duration<double, std::milli>(limit_ - (Clock::now() - started_)).count();
        return static_cast<int>(
            std::clamp(left + 1, 0.0, 60'000.0)); // rounded up; a longer wait is taken in parts
    }

    /// The tool is not waited for yet, so its number is still its own, even when it has ended.
    void terminateIfOverdue() {
        if (terminated_ || Clock::now() - started_ < limit_)
            return;
        ::kill(process_, SIGTERM);
        terminated_ = true;
    }

    /// The exit status, or the number of the signal that ended it.
    std::int32_t wait() {
        using namespace std::chrono_literals;
        // Nearly always the tool ended when its streams did. One that closed them early is looked after now
        // and then.
        for (auto pause = 1ms; !terminated_; pause = std::min(2 * pause, 50ms)) {
            if (const auto status = ended(WNOHANG))
                return *status;
            std::this_thread::sleep_for(pause);
            terminateIfOverdue();
        }
        return ended(0).value_or(-1);
    }

private:
    std::optional<std::int32_t> ended(int flags) const {
        int status = 0;
        pid_t found = 0;
        do
            found = ::waitpid(process_, &status, flags);
        while (found < 0 && errno == EINTR);
        if (found == 0)
            return std::nullopt;
        if (found < 0)
            return -1; // somebody else has waited for it
        return WIFEXITED(status) ? WEXITSTATUS(status) : WTERMSIG(status);
    }

    pid_t process_;
    Seconds limit_;
    Clock::time_point started_;
    bool terminated_ = false;
};

struct Stream {
    FileDescriptor pipe;
    std::string bytes;

    /// Takes what is there; closes the pipe at its end.
    void readSome() {
        char buffer[64 * 1024];
        const auto count = ::read(pipe.get(), buffer, sizeof buffer);
        if (count > 0)
            bytes.append(buffer, static_cast<std::size_t>(count));
        else if (count == 0 || errno != EINTR)
            pipe.reset();
    }
};

/// Reads both streams to their ends, whichever has something, so that a tool never stands at a full pipe.
void readToEnd(std::array<Stream, 2>& streams, Running& running) {
    while (streams[0].pipe || streams[1].pipe) {
        // A closed one is -1, which poll passes over.
        pollfd waiting[] = {{streams[0].pipe.get(), POLLIN, 0}, {streams[1].pipe.get(), POLLIN, 0}};
        const int ready = ::poll(waiting, std::size(waiting), running.patience());
        for (std::size_t index = 0; ready > 0 && index < streams.size(); ++index) {
            if (waiting[index].revents != 0)
                streams[index].readSome();
        }
        running.terminateIfOverdue();
    }
}

ShellResult failed(int error) {
    return {.status = -1, .err = std::generic_category().message(error)};
}

} // namespace

ShellResult run(const std::string& tool, const std::vector<std::string>& arguments, const Options& options) {
    auto out = openPipe();
    auto err = openPipe();
    if (!out || !err)
        return failed(out ? err.error() : out.error());
    const auto process = start(tool, arguments, options.environment, out->writing.get(), err->writing.get());
    if (!process)
        return failed(process.error());
    out->writing.reset();
    err->writing.reset();

    Running running(*process, options.timeout);
    std::array<Stream, 2> streams = {Stream{std::move(out->reading), {}},
                                     Stream{std::move(err->reading), {}}};
    readToEnd(streams, running);
    const auto status = running.wait();
    auto& [output, error] = streams;
    return {.status = status,
            .out = options.rawOutput ? std::move(output.bytes) : Text::repaired(output.bytes),
            .err = Text::repaired(error.bytes)};
}

} // namespace korvanti::Shell
