#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace test {

/// Sets or unsets an environment variable until the destructor.
class ScopedEnvironment
{
public:
    ScopedEnvironment(const char* name, const char* value) : mName(name)
    {
        if (const char* former = std::getenv(name))
            mFormer = former;
        set(value);
    }
    ~ScopedEnvironment() { set(mFormer ? mFormer->c_str() : nullptr); }
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

private:
    void set(const char* value) const
    {
        if (value)
            setenv(mName, value, 1);
        else
            unsetenv(mName);
    }

    const char* mName;
    std::optional<std::string> mFormer;
};

} // namespace test
