#include "support/BoxAnswers.h"

#include "support/DiskFolder.h"

#include <algorithm>

namespace korvanti::testing::BoxAnswers {
namespace {

DiskFolder answers() {
    return DiskFolder("/box/answers");
}

std::string answerFile(std::string call) {
    std::ranges::replace(call, '/', '%');
    return call;
}

} // namespace

void say(const std::string& call, const std::string& text, int status) {
    answers().file(answerFile(call), {.text = text});
    if (status != 0)
        answers().file(answerFile(call) + ".status", {.text = std::to_string(status)});
}

void run(const std::string& call, const std::string& script) {
    answers().file(answerFile(call), {.text = "#!/bin/sh\n" + script + "\n"});
    answers().setMode(answerFile(call), 0755);
}

} // namespace korvanti::testing::BoxAnswers
