#pragma once

#include <gtest/gtest.h>

#include "OrvHost/AppHost.h"
#include "tests/support/TempFolder.h"

namespace test {

/// The base of the OrvHost tests: a host on a fresh root, in this process.
class HostedTest : public testing::Test
{
protected:
    HostedTest() : host({folder.file("root")}) {}

    TempFolder folder;
    OrvHost::AppHost host;
};

} // namespace test
