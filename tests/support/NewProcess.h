#pragma once

#include <functional>

namespace korvanti::testing {

/// Does a part of a test in a process of its own: for what is found out once a process, and for what must not
/// take this one along. Fails the running test when the part fails, ends by a signal or takes over a minute.
void inANewProcess(const std::function<void()>& body);

} // namespace korvanti::testing
