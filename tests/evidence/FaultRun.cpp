#include "FaultRun.h"

#include "base/Json.h"
#include "scan/ReportJson.h"
#include "support/RunProgram.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <utility>

namespace korvanti::testing {
namespace {

/// A folder at a known path, made at the beginning and removed at the end.
struct FixedFolder : TempFolder {
    explicit FixedFolder(const std::string& path) : TempFolder(path) {
        std::filesystem::create_directory(path);
    }
};

std::vector<std::string> linesOf(std::istream&& stream) {
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

std::optional<Outcome> outcomeFrom(const std::string& line, const char* bytesKey) {
    const auto json = parseJson(line);
    if (!json)
        return std::nullopt;
    JsonObjectReader in(*json);
    const auto outcome = in.finish(Outcome{.path = in.text("path"),
                                           .success = in.boolean("success"),
                                           .freedBytes = in.integer(bytesKey),
                                           .message = in.text("message")});
    return outcome ? std::optional(*outcome) : std::nullopt;
}

Call callFrom(const std::string& line) {
    Call call;
    std::istringstream stream(line);
    stream >> call.stage >> call.function >> call.number;
    stream.get();
    std::getline(stream, call.target);
    return call;
}

} // namespace

Stage::Stage(Scenario scenario) : scenario_(std::move(scenario)), items_(scenario_.items(home())) {
    Json items = Json::array();
    for (const auto& item : items_)
        items.push_back(toJson(item));
    folder_.file("items.json", {.text = items.dump()});

    const auto developer = folder_.folder("Xcode.app/Contents/Developer");
    folder_.file("tools/xcode-select", {.text = "#!/bin/sh\necho " + developer + "\n"});
    folder_.file("tools/xcrun", {.text = "#!/bin/sh\n"
                                         "echo \"$*\" >>\"${0%/*}/calls\"\n"
                                         "echo done\n"
                                         "echo note >&2\n"});
    folder_.file("tools/pkill", {.text = "#!/bin/sh\nexit 1\n"});
    for (const auto* tool : {"tools/xcode-select", "tools/xcrun", "tools/pkill"})
        folder_.setMode(tool, 0755);

    const FixedFolder world(folder_.path("world"));
    scenario_.build(world);
    before_ = snapshotOf(world.path());
}

Traces Stage::play(const std::optional<Fault>& fault) const {
    const auto record = folder_.path("record");
    const auto calls = folder_.path("tools/calls");
    for (const auto& file : {logPath(), record, calls})
        std::filesystem::remove(file);
    const FixedFolder world(folder_.path("world"));
    scenario_.build(world);

    std::string asked;
    if (fault)
        asked = std::to_string(fault->call.stage) + " " + (fault->always ? "*" : fault->call.function) + " " +
                std::to_string(fault->call.number) + " " + std::to_string(fault->error);
    const auto program = runProgram(
        {KORVANTI_CLEAN_ONCE, folder_.path("items.json"), home(), logPath()},
        {.environment = {{"HOME", home()},
                         {"LD_PRELOAD", KORVANTI_FAULT_PRELOAD},
                         {"KORVANTI_FAULT", asked},
                         {"KORVANTI_FAULT_TARGET", fault && fault->always ? fault->call.target : ""},
                         {"KORVANTI_FAULT_RECORD", record},
                         {"KORVANTI_FAULT_TOOLS", folder_.path("tools")}}});

    Traces traces{.status = program.status, .err = program.err};
    for (const auto& line : linesOf(std::istringstream(program.out))) {
        if (const auto outcome = outcomeFrom(line, "freedBytes"))
            traces.outcomes.push_back(*outcome);
        else
            traces.begun.push_back(line);
    }
    for (const auto& line : linesOf(std::ifstream(logPath()))) {
        if (const auto entry = outcomeFrom(line, "bytes"))
            traces.log.push_back(*entry);
        else
            ++traces.tornLines;
    }
    for (const auto& line : linesOf(std::ifstream(record)))
        traces.calls.push_back(callFrom(line));
    traces.simulatorCalls = linesOf(std::ifstream(calls));
    traces.world = snapshotOf(world.path());
    return traces;
}

} // namespace korvanti::testing
