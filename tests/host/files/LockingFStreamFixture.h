#pragma once

#include <ios>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "OrvLibrary/host/LockingFStream.h"
#include "tests/support/TempFolder.h"

namespace test {

using Names = std::vector<std::string>;
constexpr auto kRead = std::ios_base::in;
constexpr auto kWrite = std::ios_base::out | std::ios_base::trunc;
constexpr auto kAppend = std::ios_base::out | std::ios_base::app;

/// A temporary folder, and helpers to read and write files in it.
class LockingFStreamFixture : public testing::Test
{
protected:
    Names list() const { return listTree(mFolder.path()); }

    static bool opens(const fileString& path, std::ios_base::openmode mode)
    {
        const LockingFStream stream(path, mode);
        EXPECT_EQ(stream.is_open(), !stream.fail());
        return stream.is_open();
    }

    static std::string readAll(const fileString& path)
    {
        LockingFStream in(path, kRead);
        EXPECT_TRUE(in.is_open());
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }

    static void writeAll(const fileString& path, const std::string& content)
    {
        LockingFStream out(path, kWrite);
        out << content;
        out.close();
        EXPECT_TRUE(out.good());
    }

    TempFolder mFolder;
};

} // namespace test
