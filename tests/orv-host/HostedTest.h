#pragma once

#include <gtest/gtest.h>

#include "OrvHost/AppHost.h"
#include "tests/support/TempFolder.h"

namespace test {

/// Tests of the programs' common parts: in this process, with a host on a fresh root.
class HostedTest : public testing::Test
{
protected:
    HostedTest() : host({folder.file("root")}) {}

    TempFolder folder;
    OrvHost::AppHost host;
};

} // namespace test
