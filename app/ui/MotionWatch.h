#pragma once

#include <functional>
#include <memory>

namespace korvanti {

/// Knows whether the user has asked the system for less motion. One implementation a system.
class MotionWatch {
public:
    using Changed = std::function<void(bool reduced)>;

    MotionWatch() = default;
    MotionWatch(const MotionWatch&) = delete;
    MotionWatch& operator=(const MotionWatch&) = delete;
    virtual ~MotionWatch() = default;
};

/// Calls `changed` on the main thread as soon as the answer is there and after each change, for as long as
/// the watch lives. Never waits; a system that gives no answer leaves it uncalled.
[[nodiscard]] std::unique_ptr<MotionWatch> watchMotion(MotionWatch::Changed changed);

} // namespace korvanti
