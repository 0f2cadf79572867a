#pragma once

#include "FaultScenarios.h"
#include "Snapshot.h"
#include "support/TempFolder.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace korvanti::testing {

/// No call can be made to fail, then.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool aSanitizerIsInTheWay = true;
#else
inline constexpr bool aSanitizerIsInTheWay = false;
#endif

/// One call that the cleaner makes.
struct Call {
    int stage = 0; ///< 0 before the first item, then the item's number from 1
    std::string function;
    int number = 0;     ///< among the stage's calls of this function, from 1
    std::string target; ///< path or open file that it is about, where it is about one
    bool operator==(const Call&) const = default;
};

/// A call that is to fail, and with which error number; with 0 it reads or writes half.
struct Fault {
    Call call;
    int error = 0;
    bool always = false; ///< all calls about the target of this one, not it alone
};

struct Outcome {
    std::string path;
    bool success = false;
    std::int64_t freedBytes = 0;
    std::string message;
    bool operator==(const Outcome&) const = default;
};

/// What one run of the cleaner left.
struct Traces {
    int status = 0;
    std::string err;
    std::vector<std::string> begun; ///< the items in the order in which the cleaner began with them
    std::vector<Outcome> outcomes;
    std::vector<Outcome> log;                ///< the lines that are whole
    int tornLines = 0;                       ///< those that are none
    Snapshot world;                          ///< the scenario's folder afterwards
    std::vector<Call> calls;                 ///< all, or with a fault the one that failed
    std::vector<std::string> simulatorCalls; ///< arguments of simctl
};

/// A folder of its own in which a scenario is played again and again. The paths stay the same.
class Stage {
public:
    explicit Stage(Scenario scenario);

    /// Builds the world anew and cleans in it once.
    [[nodiscard]] Traces play(const std::optional<Fault>& fault) const;

    [[nodiscard]] const Scenario& scenario() const { return scenario_; }
    [[nodiscard]] const std::vector<CleanupItem>& items() const { return items_; }
    [[nodiscard]] const Snapshot& before() const { return before_; } ///< the world as it is built
    [[nodiscard]] std::string home() const { return folder_.path("world/home"); }
    [[nodiscard]] std::string logPath() const { return folder_.path("activity.jsonl"); }

private:
    Scenario scenario_;
    TempFolder folder_;
    std::vector<CleanupItem> items_;
    Snapshot before_;
};

} // namespace korvanti::testing
