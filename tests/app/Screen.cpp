#include "Screen.h"

#include "support/RunProgram.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

extern char** environ; // NOLINT(readability-redundant-declaration): macOS declares it nowhere

namespace korvanti::testing {
namespace {

using namespace std::chrono_literals;

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (auto& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

/// The same to the eye: an animation may end a shade before its end.
bool isLike(std::uint32_t one, std::uint32_t other) {
    for (const unsigned shift : {0U, 8U, 16U}) {
        const auto difference =
            static_cast<int>(one >> shift & 0xFFU) - static_cast<int>(other >> shift & 0xFFU);
        if (std::abs(difference) > 2)
            return false;
    }
    return true;
}

/// A number of the header of an X window dump, which is big-endian.
std::uint32_t headerNumber(const std::string& dump, std::size_t index) {
    std::uint32_t number = 0;
    for (std::size_t byte = 0; byte < 4; ++byte)
        number = number << 8U | static_cast<unsigned char>(dump[index * 4 + byte]);
    return number;
}

/// A number of this process alone. Servers in all boxes are seen by their sockets, but by different kinds of
/// them, so that a server can't tell by itself which number is free.
std::string ownDisplay() {
    return ":" + std::to_string(1'000 + ::getpid() % 50'000);
}

std::vector<std::string> serverCommand(const std::string& display, const std::string& folder,
                                       const std::string& size, const std::vector<std::string>& options) {
    std::vector<std::string> command = {"Xvfb",   display, "-screen",   "0",   size,
                                        "-fbdir", folder,  "-nolisten", "tcp", "-noreset"};
    command.insert(command.end(), options.begin(), options.end());
    return command;
}

} // namespace

BackgroundProgram::BackgroundProgram(const std::vector<std::string>& command,
                                     const std::map<std::string, std::string>& environment) {
    std::vector<std::string> variables;
    for (char** entry = environ; *entry; ++entry) {
        const std::string text = *entry;
        if (!environment.contains(text.substr(0, text.find('='))))
            variables.push_back(text);
    }
    for (const auto& [name, value] : environment)
        variables.push_back(name + "=" + value);
    auto arguments = command;
    if (const int error = ::posix_spawnp(&process_, arguments.front().c_str(), nullptr, nullptr,
                                         pointersTo(arguments).data(), pointersTo(variables).data());
        error != 0) {
        ADD_FAILURE() << command.front() << ": " << std::strerror(error);
        process_ = -1;
    }
}

BackgroundProgram::~BackgroundProgram() {
    if (process_ < 0 || ended())
        return;
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
}

std::optional<int> BackgroundProgram::ended() {
    int status = 0;
    if (!status_ && process_ >= 0 && ::waitpid(process_, &status, WNOHANG) == process_)
        status_ = WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
    return status_;
}

void BackgroundProgram::signal(int number) {
    if (process_ >= 0 && !ended())
        ::kill(process_, number);
}

std::uint32_t Picture::at(int x, int y) const {
    return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                  static_cast<std::size_t>(x)];
}

bool Picture::hasNear(int x, int y, std::uint32_t colour) const {
    constexpr int softEdge = 3; // pixels in which one colour runs into the other
    for (int other = std::max(x - softEdge, 0); other < std::min(x + softEdge, width); ++other) {
        if (isLike(at(other, y), colour))
            return true;
    }
    return false;
}

std::optional<Point> Picture::findRow(std::uint32_t colour, int minimum,
                                      std::optional<std::uint32_t> beside) const {
    for (int y = 0; y < height; ++y) {
        int start = 0;
        for (int x = 0; x <= width; ++x) {
            if (x < width && isLike(at(x, y), colour))
                continue;
            if (x - start >= minimum && (!beside || hasNear(start, y, *beside) || hasNear(x, y, *beside)))
                return Point{.x = (start + x) / 2, .y = y};
            start = x + 1;
        }
    }
    return std::nullopt;
}

Screen::Screen(int width, int height, const std::vector<std::string>& options)
    : display_(ownDisplay()),
      server_(serverCommand(display_, folder_.path(),
                            std::to_string(width) + "x" + std::to_string(height) + "x24", options),
              {}) {
    EXPECT_TRUE(waitUntil([&] { return picture().width == width; })) << "the screen did not start";
}

std::map<std::string, std::string> Screen::environment() const {
    return {{"DISPLAY", display_}, {"QT_QPA_PLATFORM", "xcb"}, {"QT_QUICK_BACKEND", "software"}};
}

Picture Screen::picture() const {
    const auto file = folder_.path("Xvfb_screen0");
    if (!std::filesystem::exists(file))
        return {};
    const auto dump = textOf(file);
    constexpr std::size_t numbersUsed = 20;
    if (dump.size() < numbersUsed * 4)
        return {};
    const auto lineBytes = headerNumber(dump, 12);
    const auto first = std::size_t{headerNumber(dump, 0)} + std::size_t{headerNumber(dump, 19)} * 12;
    Picture picture = {.width = static_cast<int>(headerNumber(dump, 4)),
                       .height = static_cast<int>(headerNumber(dump, 5)),
                       .pixels = {}};
    if (headerNumber(dump, 11) != 32 || dump.size() < first + std::size_t{lineBytes} * headerNumber(dump, 5))
        return {};
    picture.pixels.reserve(static_cast<std::size_t>(picture.width) *
                           static_cast<std::size_t>(picture.height));
    for (std::size_t y = 0; y < headerNumber(dump, 5); ++y) {
        for (std::size_t x = 0; x < headerNumber(dump, 4); ++x) {
            std::uint32_t pixel = 0;
            std::memcpy(&pixel, dump.data() + first + y * lineBytes + x * 4, sizeof pixel);
            picture.pixels.push_back(pixel & 0xFFFFFFU);
        }
    }
    return picture;
}

Picture Screen::stillPicture() const {
    auto last = picture();
    EXPECT_TRUE(waitUntil([&] {
        std::this_thread::sleep_for(500ms);
        return std::exchange(last, picture()) == last;
    })) << "the screen never stands still";
    return last;
}

std::optional<Point> Screen::waitForRow(std::uint32_t colour, int minimum,
                                        std::optional<std::uint32_t> beside) const {
    std::optional<Point> found;
    static_cast<void>(waitUntil([&] {
        found = picture().findRow(colour, minimum, beside);
        return found.has_value();
    }));
    return found;
}

void Screen::click(Point point) const {
    input({"mousemove", std::to_string(point.x), std::to_string(point.y), "click", "1"});
}

void Screen::press(const std::string& key) const {
    input({"key", key});
}

void Screen::disconnect(const std::string& title) const {
    input({"search", "--onlyvisible", "--name", title, "windowkill"});
}

void Screen::input(const std::vector<std::string>& words) const {
    std::vector<std::string> command = {"xdotool"};
    command.insert(command.end(), words.begin(), words.end());
    EXPECT_EQ(runProgram(command, {.environment = {{"DISPLAY", display_}}}).status, 0);
}

bool Screen::waitUntil(const std::function<bool()>& isTrue) {
    const auto end = std::chrono::steady_clock::now() + 60s;
    while (!isTrue()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(20ms);
    }
    return true;
}

} // namespace korvanti::testing
