#include "support/BeforeCall.h"

#include <algorithm>
#include <cstdarg>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <mutex>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace korvanti::testing {
namespace {

std::mutex mutex;
std::vector<BeforeCall*> waiting;

} // namespace

BeforeCall::BeforeCall(Call call, std::string name, std::function<void()> action)
    : call_(call), name_(std::move(name)), action_(std::move(action)) {
    const std::lock_guard lock(mutex);
    waiting.push_back(this);
}

BeforeCall::~BeforeCall() {
    const std::lock_guard lock(mutex);
    std::erase(waiting, this);
    EXPECT_FALSE(action_) << "no such call concerned " << name_;
}

void BeforeCall::made(Call call, std::string_view name) {
    std::function<void()> action;
    {
        const std::lock_guard lock(mutex);
        const auto first = std::ranges::find_if(waiting, [&](const BeforeCall* one) {
            return one->action_ && one->call_ == call && one->name_ == name;
        });
        if (first != waiting.end())
            action = std::exchange((*first)->action_, {});
    }
    if (action) // it may make such calls itself
        action();
}

} // namespace korvanti::testing

using korvanti::testing::BeforeCall;
using korvanti::testing::Call;

// In the place of the C library's own.
extern "C" {

int openat(int folder, const char* path, int flags, ...) {
    BeforeCall::made(Call::openAt, path);
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return static_cast<int>(::syscall(SYS_openat, folder, path, flags, mode));
}

int fstatat(int folder, const char* __restrict path, struct stat* __restrict status, int flags) noexcept {
    BeforeCall::made(Call::statAt, path);
    return static_cast<int>(::syscall(SYS_newfstatat, folder, path, status, flags));
}

int unlinkat(int folder, const char* path, int flags) noexcept {
    BeforeCall::made(Call::unlinkAt, path);
    return static_cast<int>(::syscall(SYS_unlinkat, folder, path, flags));
}

int renameat2(int from, const char* path, int to, const char* newPath, unsigned flags) noexcept {
    BeforeCall::made(Call::renameAt2, path);
    return static_cast<int>(::syscall(SYS_renameat2, from, path, to, newPath, flags));
}
}
