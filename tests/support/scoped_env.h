#ifndef VORN_TESTS_SUPPORT_SCOPED_ENV_H
#define VORN_TESTS_SUPPORT_SCOPED_ENV_H

#include <cstdlib>
#include <optional>
#include <string>

namespace VornTest {
// Sets (or, with nullopt, unsets) an environment variable for the lifetime of the object and
// restores the previous value afterwards.
class ScopedEnv {
public:
    ScopedEnv(const char *name, const std::optional<std::string> &value) : name_(name)
    {
        const char *old = std::getenv(name);
        if (old != nullptr) {
            old_ = old;
        }
        Apply(value);
    }
    ~ScopedEnv() { Apply(old_); }
    ScopedEnv(const ScopedEnv &) = delete;
    ScopedEnv &operator=(const ScopedEnv &) = delete;

private:
    void Apply(const std::optional<std::string> &value)
    {
        if (value) {
            setenv(name_.c_str(), value->c_str(), 1);
        } else {
            unsetenv(name_.c_str());
        }
    }

    std::string name_;
    std::optional<std::string> old_;
};
} // namespace VornTest

#endif // VORN_TESTS_SUPPORT_SCOPED_ENV_H
