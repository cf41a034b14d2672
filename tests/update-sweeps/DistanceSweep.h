#pragma once

#include <chrono>
#include <string>

#include <gtest/gtest.h>

#include "tests/update-sweeps/ResourceGuard.h"
#include "tests/update-sweeps/UpdateWorld.h"

namespace test {

/// The response time of the service. If it is far, bodies are fetched ahead of their turn.
constexpr std::chrono::milliseconds kNear{0};
constexpr std::chrono::milliseconds kFar{7};

/// A sweep that runs with a near service and with a far one.
class DistanceSweep : public testing::TestWithParam<std::chrono::milliseconds>
{
protected:
    /// Restores the initial library and sets the response time.
    void reset()
    {
        mWorld.reset();
        mWorld.setDelay(GetParam());
    }

    ResourceGuard mGuard;
    UpdateWorld mWorld;
};

inline std::string distanceName(const testing::TestParamInfo<std::chrono::milliseconds>& info)
{
    return info.param == kNear ? "near" : "far";
}

} // namespace test
