#pragma once

#include "support/TempFolder.h"

#include <string>
#include <sys/types.h>

namespace korvanti::testing {

/// A session bus that only this process and its children know of, by DBUS_SESSION_BUS_ADDRESS. No program is
/// started from it. A process looks for its bus but once, so one serves a whole test suite.
class PrivateBus {
public:
    /// Fails the running test when the bus does not start.
    PrivateBus() { start(); }
    ~PrivateBus() { stop(); }
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    [[nodiscard]] const std::string& address() const { return address_; }
    void stop();

private:
    void start();

    TempFolder folder_;
    std::string address_;
    pid_t daemon_ = 0;
};

} // namespace korvanti::testing
