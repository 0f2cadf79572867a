#include "support/PrivateBus.h"

#include "base/Text.h"
#include "support/RunProgram.h"

#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>
#include <utility>

namespace korvanti::testing {

void PrivateBus::start() {
    const auto configuration = folder_.file(
        "bus.conf", {.text = "<busconfig><type>session</type><listen>unix:dir=" + folder_.path() +
                             "</listen><policy context='default'><allow eavesdrop='true'/>"
                             "<allow send_destination='*' eavesdrop='true'/><allow own='*'/>"
                             "</policy></busconfig>"});
    const auto started = runProgram(
        {"dbus-daemon", "--config-file=" + configuration, "--fork", "--print-address=1", "--print-pid=1"});
    ASSERT_EQ(started.status, 0) << started.err;
    const auto lines = Text::pieces(started.out, '\n');
    ASSERT_EQ(lines.size(), 2U) << started.out;
    address_ = lines[0];
    daemon_ = static_cast<pid_t>(Text::integer(lines[1]).value());
    ASSERT_EQ(::setenv("DBUS_SESSION_BUS_ADDRESS", address_.c_str(), 1), 0);
}

void PrivateBus::stop() {
    if (const auto process = std::exchange(daemon_, 0); process > 0)
        ::kill(process, SIGTERM);
}

} // namespace korvanti::testing
