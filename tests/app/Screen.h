#pragma once

#include "support/TempFolder.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace korvanti::testing {

/// A program that runs beside the test and is killed with it.
class BackgroundProgram {
public:
    BackgroundProgram(const std::vector<std::string>& command,
                      const std::map<std::string, std::string>& environment);
    ~BackgroundProgram();
    BackgroundProgram(const BackgroundProgram&) = delete;
    BackgroundProgram& operator=(const BackgroundProgram&) = delete;

    /// The exit status, once it has ended; that of a signal is negative.
    [[nodiscard]] std::optional<int> ended();
    /// Sends it a signal, if it has not ended.
    void signal(int number);

private:
    pid_t process_ = -1;
    std::optional<int> status_;
};

struct Point {
    int x = 0;
    int y = 0;
};

/// What a screen showed at one moment: one 0xRRGGBB a pixel.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;

    [[nodiscard]] std::uint32_t at(int x, int y) const;
    bool operator==(const Picture&) const = default;
    /// The middle of the first row of `minimum` or more pixels of this colour that `beside` borders on
    /// at an end, sought from the top.
    [[nodiscard]] std::optional<Point> findRow(std::uint32_t colour, int minimum,
                                               std::optional<std::uint32_t> beside = std::nullopt) const;

private:
    [[nodiscard]] bool hasNear(int x, int y, std::uint32_t colour) const;
};

/// A screen of its own (Xvfb) with real input events (xdotool).
class Screen {
public:
    /// `options` are the server's own.
    Screen(int width, int height, const std::vector<std::string>& options = {});

    [[nodiscard]] std::map<std::string, std::string> environment() const; ///< for the programs shown on it
    [[nodiscard]] Picture picture() const;
    void click(Point point) const;
    void press(const std::string& key) const; ///< as xdotool names it
    /// Takes the screen away from the program whose window has this title, as the end of a session does.
    void disconnect(const std::string& title) const;

    /// Where `findRow` finds something as soon as the screen shows it, for a minute at the most.
    [[nodiscard]] std::optional<Point> waitForRow(std::uint32_t colour, int minimum,
                                                  std::optional<std::uint32_t> beside = std::nullopt) const;
    /// What the screen shows once it has stood still for half a second.
    [[nodiscard]] Picture stillPicture() const;
    /// Asks again and again for a minute at the most.
    [[nodiscard]] static bool waitUntil(const std::function<bool()>& isTrue);

private:
    void input(const std::vector<std::string>& words) const;

    TempFolder folder_;
    std::string display_;
    BackgroundProgram server_;
};

} // namespace korvanti::testing
