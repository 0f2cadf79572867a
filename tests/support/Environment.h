#pragma once

#include <optional>
#include <string>

namespace korvanti::testing {

/// Sets one variable of the environment (or unsets it) and puts the old value back at the end.
class ScopedVariable {
public:
    ScopedVariable(std::string name, std::optional<std::string> value);
    ~ScopedVariable();
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

private:
    std::string name_;
    std::optional<std::string> old_;
};

/// Makes a folder the user's home, as every system sees it, and puts the old one back at the end.
struct ScopedHome {
    explicit ScopedHome(const std::string& home) : variable("HOME", home), fixed("CFFIXED_USER_HOME", home) {}

    ScopedVariable variable;
    ScopedVariable fixed; ///< what a Mac asks first
};

} // namespace korvanti::testing
