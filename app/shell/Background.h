#pragma once

#include <QObject>
#include <QTimer>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <system_error>
#include <thread>
#include <type_traits>
#include <utility>

namespace korvanti {

/// Work off the main thread whose results come back to it. Each piece gets value copies and a thread of its
/// own, since most of them wait for tools and disks.
class Background {
public:
    /// Results are handed over in the event loop of `receiver`'s thread, and none after it is gone.
    explicit Background(QObject& receiver) : receiver_(&receiver) {}
    /// Blocks until no piece is under way. Their results go nowhere.
    ~Background() {
        std::unique_lock lock(mutex_);
        ended_.wait(lock, [this] { return running_ == 0; });
    }
    Background(const Background&) = delete;
    Background& operator=(const Background&) = delete;

    /// Calls `work` on a thread of its own, then `done` with what it gave on the receiver's.
    template <class Work, class Done> void start(Work work, Done done) {
        {
            const std::scoped_lock lock(mutex_);
            ++running_;
        }
        const auto piece = [this, work = std::make_shared<Work>(std::move(work)),
                            done = std::make_shared<Done>(std::move(done))]() mutable {
            auto result = std::make_shared<std::invoke_result_t<Work&>>((*work)());
            work.reset(); // what it held is not to outlive this object
            QMetaObject::invokeMethod(
                receiver_, [done = std::move(done), result] { (*done)(std::move(*result)); },
                Qt::QueuedConnection);
            const std::scoped_lock lock(mutex_);
            if (--running_ == 0)
                ended_.notify_all();
        };
        try {
            std::thread(piece).detach();
        } catch (const std::system_error&) {
            auto here = piece; // no more threads to be had: late is better than never
            here();
        }
    }

private:
    QObject* receiver_;
    std::mutex mutex_;
    std::condition_variable ended_;
    int running_ = 0; ///< under `mutex_`
};

/// Carries the progress of a piece of work to the main thread, no more often than a screen can show: what
/// comes in between is replaced by what comes later. The last word is always shown, and nothing behind the
/// end.
template <class Value> class ProgressRelay : public std::enable_shared_from_this<ProgressRelay<Value>> {
public:
    using Show = std::function<void(const Value&)>;

    /// `show` is called on `receiver`'s thread, and not once that is gone.
    ProgressRelay(QObject& receiver, Show show) : receiver_(&receiver), show_(std::move(show)) {}

    /// From any thread, while the receiver lives.
    void tell(Value value) {
        const std::scoped_lock lock(mutex_);
        if (ended_)
            return;
        latest_ = std::move(value);
        if (!std::exchange(isWaiting_, true))
            QMetaObject::invokeMethod(
                receiver_, [self = this->shared_from_this()] { self->arrive(); }, Qt::QueuedConnection);
    }

    /// On the receiver's thread: shows the last word if it still waits. Nothing comes after it.
    void end() {
        show();
        const std::scoped_lock lock(mutex_);
        ended_ = true;
    }

private:
    using Clock = std::chrono::steady_clock;
    static constexpr auto frame = std::chrono::milliseconds(33);

    void arrive() {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(next_ - Clock::now());
        if (left.count() > 0)
            QTimer::singleShot(left, Qt::PreciseTimer, receiver_,
                               [self = this->shared_from_this()] { self->show(); });
        else
            show();
    }

    void show() {
        Value value;
        {
            const std::scoped_lock lock(mutex_);
            if (ended_ || !std::exchange(isWaiting_, false))
                return;
            value = std::move(latest_);
        }
        next_ = Clock::now() + frame;
        show_(value);
    }

    QObject* receiver_;
    Show show_;
    Clock::time_point next_ = Clock::now(); ///< when the next may be shown; on the receiver's thread only
    std::mutex mutex_;
    Value latest_{};
    bool isWaiting_ = false; ///< a word is to be shown, and will be
    bool ended_ = false;
};

} // namespace korvanti
