#include "support/Environment.h"

#include <cstdlib>
#include <utility>

namespace korvanti::testing {
namespace {

void set(const std::string& name, const std::optional<std::string>& value) {
    if (value)
        ::setenv(name.c_str(), value->c_str(), 1);
    else
        ::unsetenv(name.c_str());
}

} // namespace

ScopedVariable::ScopedVariable(std::string name, std::optional<std::string> value) : name_(std::move(name)) {
    if (const char* old = std::getenv(name_.c_str()))
        old_ = old;
    set(name_, value);
}

ScopedVariable::~ScopedVariable() {
    set(name_, old_);
}

} // namespace korvanti::testing
