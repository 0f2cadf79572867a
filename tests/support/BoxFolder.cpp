#include "support/BoxFolder.h"

#include "support/BoxAnswers.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace korvanti::testing {
namespace {

constexpr const char* callLog = "/box/calls"; ///< there in the box only

/// The path, once everything in it is gone.
std::string emptied(const std::string& path) {
    if (!std::filesystem::exists(callLog)) {
        std::fprintf(stderr, "%s is only touched inside the box: start this program with tests/box/enter\n",
                     path.c_str());
        std::abort();
    }
    std::filesystem::remove_all(path);
    std::filesystem::create_directories(path);
    return path;
}

} // namespace

BoxMac::BoxMac() {
    std::ofstream(callLog, std::ios::trunc);
}

void BoxMac::answer(const std::string& call, const std::string& text, int status) {
    BoxAnswers::say(call, text, status);
}

void BoxMac::answerWithScript(const std::string& call, const std::string& script) {
    BoxAnswers::run(call, script);
}

std::vector<std::string> BoxMac::calls() {
    std::vector<std::string> calls;
    std::ifstream log(callLog);
    for (std::string line; std::getline(log, line);)
        calls.push_back(line);
    return calls;
}

BoxFolder::BoxFolder(const std::string& path) : TempFolder(emptied(path)) {}

void BoxMac::installApplication(const std::string& name, const std::string& bundleIdentifier) const {
    applications.file(name + ".app/Contents/Info.plist", {.text = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
	<key>CFBundleIdentifier</key>
	<string>)" + bundleIdentifier +
                                                                  R"(</string>
	<key>CFBundleName</key>
	<string>)" + name + R"(</string>
</dict>
</plist>
)"});
}

void BoxMac::grantFullDiskAccess() const {
    privacy.file("TCC.db");
}

} // namespace korvanti::testing
