// Starts the window on a screen of its own with a saved report, and prints when it was painted and what it
// costs while nothing happens: "millisecondsToPicture", "idleMicroseconds" (of processor time in five
// seconds), "peakMemory".

#include "SavedReport.h"

#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

extern char** environ; // NOLINT(readability-redundant-declaration): macOS declares it nowhere

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr std::uint32_t heroFill = 0x08375F; // nothing else on the screen has this colour
constexpr int display = 97;

/// A program that ends with this object.
struct Program {
    explicit Program(std::vector<std::string> words) {
        std::vector<char*> arguments;
        for (auto& word : words)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        if (::posix_spawnp(&process, arguments.front(), nullptr, nullptr, arguments.data(), environ) != 0)
            process = -1;
    }
    ~Program() {
        if (process > 0) {
            ::kill(process, SIGTERM);
            ::waitpid(process, nullptr, 0);
        }
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    pid_t process = -1;
};

bool showsTheWindow(const std::string& screenFile) {
    std::ifstream file(screenFile, std::ios::binary);
    const std::string dump((std::istreambuf_iterator<char>(file)), {});
    int found = 0;
    for (std::size_t at = 0; at + 4 <= dump.size(); at += 4) {
        std::uint32_t pixel = 0;
        std::memcpy(&pixel, dump.data() + at, sizeof pixel);
        found += (pixel & 0xFFFFFFU) == heroFill ? 1 : 0;
    }
    return found > 1000;
}

bool waitUntil(const auto& isTrue) {
    const auto end = Clock::now() + 30s;
    while (!isTrue()) {
        if (Clock::now() > end)
            return false;
        std::this_thread::sleep_for(1ms);
    }
    return true;
}

/// Of a process with all its threads.
std::optional<std::chrono::microseconds> processorTime(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    std::string text((std::istreambuf_iterator<char>(file)), {});
    long user = 0;
    long system = 0;
    if (std::sscanf(text.c_str() + text.rfind(')') + 1,
                    " %*c %*d %*d %*d %*d %*d %*u %*u %*u %*u %*u %ld %ld", &user, &system) != 2)
        return std::nullopt;
    return std::chrono::microseconds(1'000'000 / ::sysconf(_SC_CLK_TCK) * (user + system));
}

long peakKilobytes(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/status");
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("VmHWM:"))
            return std::atol(line.c_str() + 6);
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("usage: korvanti_window_start KORVANTI FOLDER\n", stderr);
        return 2;
    }
    const std::string folder = argv[2];
    std::filesystem::create_directories(folder + "/screen");
    ::setenv("HOME", folder.c_str(), 1);
    ::setenv("DISPLAY", (":" + std::to_string(display)).c_str(), 1);
    ::setenv("QT_QPA_PLATFORM", "xcb", 1);
    ::setenv("QT_QUICK_BACKEND", "software", 1);
    constexpr std::size_t items = 1000;
    if (!korvanti::bench::saveReport(items)) {
        std::fprintf(stderr, "%s: no report can be saved there\n", folder.c_str());
        return 1;
    }

    const Program screen({"Xvfb", ":" + std::to_string(display), "-screen", "0", "1280x900x24", "-fbdir",
                          folder + "/screen", "-noreset"});
    if (!waitUntil([] { return std::filesystem::exists("/tmp/.X11-unix/X" + std::to_string(display)); })) {
        std::fputs("Xvfb does not start\n", stderr);
        return 1;
    }
    const auto file = folder + "/screen/Xvfb_screen0";
    const auto start = Clock::now();
    const Program program({argv[1]});
    if (!waitUntil([&] { return showsTheWindow(file); })) {
        std::fputs("the window does not show\n", stderr);
        return 1;
    }
    std::printf("millisecondsToPicture %lld\n",
                static_cast<long long>(
                    std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count()));
    std::this_thread::sleep_for(3s); // what moves at the start comes to its end
    const auto before = processorTime(program.process);
    std::this_thread::sleep_for(5s);
    const auto after = processorTime(program.process);
    if (!before || !after)
        return 1;
    std::printf("idleMicroseconds %lld\npeakMemory %lld\n",
                static_cast<long long>((*after - *before).count()), 1024LL * peakKilobytes(program.process));
    return 0;
}
