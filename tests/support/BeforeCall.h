#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace korvanti::testing {

/// The system calls that a test can come before.
enum class Call { openAt, statAt, unlinkAt, renameAt2 };

/// Does something once, right before this process first makes the call with the given name (not a path) as
/// its first argument behind the folder, and while this object lives: what another program would do at the
/// worst moment.
class BeforeCall {
public:
    BeforeCall(Call call, std::string name, std::function<void()> action);
    /// Fails the running test if the call was never made.
    ~BeforeCall();
    BeforeCall(const BeforeCall&) = delete;
    BeforeCall& operator=(const BeforeCall&) = delete;

    /// Of those that wait for it; called by the replaced functions of the C library.
    static void made(Call call, std::string_view name);

private:
    Call call_;
    std::string name_;
    std::function<void()> action_; ///< empty once it is done
};

} // namespace korvanti::testing
