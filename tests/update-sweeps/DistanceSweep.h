#pragma once

#include <chrono>
#include <string>

#include <gtest/gtest.h>

#include "tests/update-sweeps/ResourceGuard.h"
#include "tests/update-sweeps/UpdateWorld.h"

namespace test {

/// How long the service of a sweep takes to answer. A far one is asked for bodies ahead of their turn.
constexpr std::chrono::milliseconds kNear{0};
constexpr std::chrono::milliseconds kFar{7};

/// A sweep that is made with a near service and with a far one.
class DistanceSweep : public testing::TestWithParam<std::chrono::milliseconds>
{
protected:
    /// The library as it was, with the service at its distance.
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
