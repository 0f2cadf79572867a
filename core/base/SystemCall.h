#pragma once

#include <cerrno>

namespace korvanti {

/// Repeats a system call that a signal interrupted.
template <class Call> auto uninterrupted(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

} // namespace korvanti
