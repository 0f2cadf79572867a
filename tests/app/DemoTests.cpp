#include "Screen.h"
#include "support/RunProgram.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>
#include <regex>
#include <set>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

namespace korvanti::testing {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

const std::string demoScript = KORVANTI_SOURCE "/demo";
constexpr std::uint32_t heroFill = 0x08375F; // only on an overview with a report, see Brand.qml
constexpr int heroWidth = 200;               // pixels in a row, at the least

std::string fileText(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// The script ./demo with what this build has made.
class DemoTests : public ::testing::Test {
protected:
    void SetUp() override {
        if (const auto probe = runProgram({KORVANTI_SOURCE "/tests/box/enter", "true"}); probe.status == 77)
            GTEST_SKIP() << probe.err;
    }

    [[nodiscard]] std::map<std::string, std::optional<std::string>> environment() const {
        return {{"KORVANTI_DEMO_BUILD", KORVANTI_BUILD},
                {"DEMO_TEST", mark},
                {"TMPDIR", temp.path()},
                {"LC_ALL", "C"},
                {"DISPLAY", std::nullopt},
                {"WAYLAND_DISPLAY", std::nullopt},
                {"XAUTHORITY", std::nullopt},
                {"TZ", "UTC"}};
    }
    [[nodiscard]] ProgramResult demo(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), demoScript);
        return runProgram(arguments, {.environment = environment(), .timeLimit = std::chrono::seconds(110)});
    }
    /// What a script prints on the sample Mac.
    [[nodiscard]] std::string outputOf(const std::string& script) const {
        const auto result = demo({"--shell", "-euc", script});
        EXPECT_EQ(result.status, 0) << result.err;
        return result.out;
    }
    [[nodiscard]] BackgroundProgram start(std::vector<std::string> arguments,
                                          std::map<std::string, std::string> more = {}) const {
        for (const auto& [name, value] : environment()) {
            if (value)
                more.insert({name, *value});
        }
        arguments.insert(arguments.begin(), demoScript);
        return {arguments, more};
    }
    /// The processes that come of this test's calls of the script.
    [[nodiscard]] int processes() const {
        int count = 0;
        for (const auto& process : std::filesystem::directory_iterator("/proc"))
            count += fileText(process.path() / "environ").contains("DEMO_TEST=" + mark) ? 1 : 0;
        return count;
    }
    /// One of them has this place of the host mounted.
    [[nodiscard]] bool isSeenInside(const std::string& place) const {
        return std::ranges::any_of(std::filesystem::directory_iterator("/proc"), [&](const auto& process) {
            return fileText(process.path() / "environ").contains("DEMO_TEST=" + mark) &&
                   fileText(process.path() / "mountinfo").contains(" " + place + " ");
        });
    }
    /// They end at once, all of them, and with them the memory that the Mac lies in.
    void expectNothingLeft() const {
        for (int attempt = 0; attempt < 250 && processes() > 0; ++attempt)
            ::usleep(20'000);
        EXPECT_EQ(processes(), 0);
        EXPECT_TRUE(std::filesystem::is_empty(temp.path()));
    }

    const TempFolder temp;
    const std::string mark = temp.path(); // nobody else's
};

/// Without what differs from one scan to the next.
std::string settled(const std::string& report) {
    return std::regex_replace(report, std::regex("KORVANTI · [^\n]*|swap [^\n]*"), "");
}

// In the terminal

TEST_F(DemoTests, theReportIsThatOfTheProgram) {
    const auto result = demo({"--report", "--all"});

    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("DerivedData Xcode"));
    EXPECT_EQ(settled(result.out), settled(outputOf("korvanti --report --all")));
    EXPECT_THAT(result.err, HasSubstr("/Users/tester")) << "it says where it lives";
    expectNothingLeft();
}

TEST_F(DemoTests, itsDiskIsNearlyFull) {
    const auto disk = json::parse(demo({"--json"}).out).at("disk");

    EXPECT_EQ(disk.at("total"), 245'107'195'904);
    EXPECT_GT(disk.at("available"), 10e9);
    EXPECT_LT(disk.at("available"), 20e9);
}

TEST_F(DemoTests, bothExternalDisksAreThere) {
    const auto volumes = demo({"--volumes"}).out;

    EXPECT_THAT(volumes, HasSubstr("■ SSD Kerja  /Volumes/SSD Kerja\n  APFS · USB · "));
    EXPECT_THAT(volumes, HasSubstr("■ FLASHDISK  /Volumes/FLASHDISK\n  ExFAT · USB · "));
}

TEST_F(DemoTests, theMapHasTheSizesOfALife) {
    const auto map = demo({"--map"}).out;
    std::smatch home;

    ASSERT_TRUE(std::regex_search(map, home, std::regex("■ Home \\(~\\) — ([0-9.]+) GB")));
    EXPECT_GT(std::stod(home[1]), 100);
}

// Its tools do what they are asked

TEST_F(DemoTests, whatIsRemovedIsFree) {
    const auto said =
        outputOf("korvanti --json; rm -r ~/Library/Developer/Xcode/DerivedData; korvanti --json");
    const auto middle = said.find("\n}\n") + 3;
    const auto available = [](const std::string& report) {
        return json::parse(report).at("disk").at("available").get<double>();
    };

    EXPECT_NEAR(available(said.substr(middle)) - available(said.substr(0, middle)), 21.64e9, 0.01e9);
}

TEST_F(DemoTests, aSimulatorThatIsDeletedIsGone) {
    const std::string udid = "5B4C2A10-1D2E-4F60-8A7B-9C0D1E2F3A40";
    const auto said =
        outputOf("xcrun simctl delete " + udid +
                 "\nls ~/Library/Developer/CoreSimulator/Devices; xcrun simctl list devices -j\n"
                 "xcrun simctl delete " +
                 udid + " 2>&1 || echo failed");

    EXPECT_THAT(said, HasSubstr("6C5D3B21"));
    EXPECT_THAT(said, HasSubstr("Invalid device: " + udid + "\nfailed\n"));
    EXPECT_THAT(said.substr(0, said.find("Invalid")), Not(HasSubstr(udid)));
    EXPECT_TRUE(json::accept(said.substr(said.find('{'), said.find("\nInvalid") - said.find('{'))));
}

TEST_F(DemoTests, aSimulatorThatIsResetIsEmpty) {
    EXPECT_EQ(outputOf("xcrun simctl shutdown 6C5D3B21-2E3F-4071-9B8C-AD1E2F304B51\n"
                       "xcrun simctl erase 6C5D3B21-2E3F-4071-9B8C-AD1E2F304B51\n"
                       "ls -A ~/Library/Developer/CoreSimulator/Devices/6C5D3B21*/data"),
              "");
}

TEST_F(DemoTests, aRuntimeThatIsDeletedIsGoneWithItsFiles) {
    const auto said = outputOf("xcrun simctl runtime delete 5A0D8C6E-1111-4F6B-9E3C-0A4B5C6D7E8F\n"
                               "ls /System/Library/AssetsV2/com_apple_MobileAsset_iOSSimulatorRuntime\n"
                               "xcrun simctl runtime list -j");

    EXPECT_THAT(said, HasSubstr("7C2FAE80"));
    EXPECT_THAT(said, Not(HasSubstr("3f9b1c")));
    EXPECT_TRUE(json::accept(said));
}

TEST_F(DemoTests, aDiskThatIsEjectedGoesAndComesBack) {
    EXPECT_EQ(outputOf("diskutil eject /Volumes/FLASHDISK; ls /Volumes; korvanti --volumes | grep -c ■\n"
                       "sleep 22; ls /Volumes; ls /Volumes/FLASHDISK"),
              "Disk FLASHDISK ejected\nSSD Kerja\n1\nFLASHDISK\nSSD Kerja\nDCIM\n");
}

TEST_F(DemoTests, aDiskInUseIsNotEjected) {
    const auto said = outputOf(
        "cd '/Volumes/SSD Kerja'; diskutil eject '/Volumes/SSD Kerja' 2>&1 || ls '/Volumes/SSD Kerja'");

    EXPECT_THAT(said, HasSubstr("failed to eject"));
    EXPECT_THAT(said, HasSubstr("Video Klien"));
}

// What it leaves

TEST_F(DemoTests, nothingIsLeftOfWhatWasDoneInside) {
    EXPECT_EQ(outputOf("touch ~/one /tmp/korvanti-demo-one /Volumes/two; echo $HOME"), "/Users/tester\n");

    EXPECT_FALSE(std::filesystem::exists("/tmp/korvanti-demo-one"));
    EXPECT_FALSE(std::filesystem::exists("/Users/tester/one"));
    EXPECT_FALSE(std::filesystem::exists("/Volumes/two"));
    expectNothingLeft();
}

TEST_F(DemoTests, theStatusIsThatOfTheProgram) {
    EXPECT_EQ(demo({"--shell", "-c", "exit 7"}).status, 7);
    EXPECT_EQ(demo({"--shell", "-c", "kill -TERM $$"}).status, -SIGTERM);
}

TEST_F(DemoTests, nothingIsLeftHoweverItIsEnded) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGKILL}) {
        auto program = start({"--shell", "-c", "trap - INT; exec sleep 1000"});
        EXPECT_TRUE(Screen::waitUntil([&] { return processes() > 1; }));
        ::usleep(1'500'000);
        EXPECT_GT(processes(), 1) << "it has ended too early";
        program.signal(signal);
        EXPECT_TRUE(Screen::waitUntil([&] { return program.ended().has_value(); }));
        EXPECT_EQ(program.ended(), -signal);
        expectNothingLeft();
    }
}

// The window

struct Sockets {
    const char* name;
    std::vector<std::string> options;
};
void PrintTo(const Sockets& sockets, std::ostream* out) {
    *out << sockets.name;
}
class DemoWindowTests : public DemoTests, public ::testing::WithParamInterface<Sockets> {};

TEST_P(DemoWindowTests, itScansAndNothingIsLeftOfItWithoutItsScreen) {
    const Screen screen(1280, 900, GetParam().options);
    auto program = start({}, screen.environment());
    ASSERT_TRUE(screen.waitForRow(heroFill, heroWidth)) << "no overview with a recommendation";
    EXPECT_EQ(program.ended(), std::nullopt);

    screen.disconnect("Korvanti");

    EXPECT_TRUE(Screen::waitUntil([&] { return program.ended().has_value(); }));
    expectNothingLeft();
}

INSTANTIATE_TEST_SUITE_P(OverEachSocket, DemoWindowTests,
                         ::testing::Values(Sockets{"all", {}}, Sockets{"aFile", {"-nolisten", "local"}},
                                           Sockets{"noFile", {"-nolisten", "unix"}}),
                         [](const auto& sockets) { return std::string(sockets.param.name); });

TEST_F(DemoTests, aScreenReadersBusIsSeenInside) {
    const TempFolder outside;
    const auto bus = outside.file("reader/bus_0");
    outside.file("gdbus", {.text = "#!/bin/sh\necho \"('unix:path=" + bus + ",guid=7c',)\"\n"});
    outside.setMode("gdbus", 0755);
    const Screen screen(1280, 900);
    auto variables = screen.environment();
    variables.insert({"PATH", outside.path() + ":/usr/sbin:/usr/bin:/sbin:/bin"});

    const auto program = start({}, variables);

    EXPECT_TRUE(Screen::waitUntil([&] { return isSeenInside(bus); }));
}

TEST_F(DemoTests, picturesOfAllPanesNeedNoScreen) {
    const TempFolder folder;
    const auto result = demo({"--pictures", folder.path("pictures")});

    EXPECT_EQ(result.status, 0) << result.err;
    std::set<std::string> different;
    for (const auto* pane : {"overview", "cleanup", "map", "apps", "ssd", "history"}) {
        for (const auto* look : {"light", "dark"}) {
            const auto file = folder.path(std::string("pictures/") + pane + "-" + look + ".png");
            EXPECT_THAT(fileText(file), HasSubstr("PNG")) << file;
            different.insert(fileText(file));
            EXPECT_THAT(result.out, HasSubstr(file + "\n"));
        }
    }
    EXPECT_THAT(different, SizeIs(12));
    expectNothingLeft();
}

// What it says instead

TEST_F(DemoTests, withoutAScreenItSaysSoAndNamesAWay) {
    const auto result = demo({});

    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, HasSubstr("no display"));
    EXPECT_THAT(result.err, HasSubstr("--pictures FOLDER"));
}

TEST_F(DemoTests, theHelpNamesEveryOption) {
    const auto result = demo({"--help"});

    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    for (const auto* option :
         {"--report", "--all", "--json", "--volumes", "--map", "--pictures", "--shell", "--help"})
        EXPECT_THAT(result.out, HasSubstr(option));
}

TEST_F(DemoTests, otherOptionsAreRefused) {
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{"--bogus"},
                                                      {"--report", "--bogus"},
                                                      {"report"},
                                                      {"--pictures"},
                                                      {"--pictures", ""},
                                                      {"--pictures", "a", "b"},
                                                      {"--help", "--report"}}) {
        const auto result = demo(arguments);
        EXPECT_EQ(result.status, 2) << arguments.back();
        EXPECT_EQ(result.out, "");
        EXPECT_THAT(result.err, HasSubstr("./demo --help"));
    }
}

/// In front of the real programs on the way to find one.
class DemoElsewhereTests : public DemoTests {
protected:
    [[nodiscard]] ProgramResult demoWith(const std::string& program, const std::string& script) const {
        const TempFolder programs;
        programs.file(program, {.text = "#!/bin/sh\n" + script});
        programs.setMode(program, 0755);
        auto variables = environment();
        variables["PATH"] = programs.path() + ":/usr/sbin:/usr/bin:/sbin:/bin";
        return runProgram({demoScript, "--report"}, {.environment = variables});
    }
};

TEST_F(DemoElsewhereTests, onAMacItSaysInOneSentenceThatThereIsNoBox) {
    const auto result = demoWith("uname", "echo Darwin");

    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(std::ranges::count(result.err, '\n'), 1);
    EXPECT_THAT(result.err, HasSubstr("needs Linux"));
}

TEST_F(DemoElsewhereTests, whereNoPrivateMountsArePossibleItSaysSo) {
    const auto result = demoWith("unshare", "echo 'unshare failed: Operation not permitted' >&2; exit 1");

    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, HasSubstr("private mounts are not possible here"));
    EXPECT_THAT(result.err, HasSubstr("no sample Mac"));
}

} // namespace
} // namespace korvanti::testing
