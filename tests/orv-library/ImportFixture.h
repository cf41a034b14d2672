#pragma once

#include <map>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/orv-library/Program.h"
#include "tests/support/ArchiveBuilder.h"
#include "tests/support/ArchiveReader.h"
#include "tests/support/SampleDatabase.h"

/// The program, a library archive, and a snapshot of all files for the tests of packed libraries.
class ImportFixture : public testing::Test
{
protected:
    using Contents = std::vector<std::pair<std::string, std::string>>;

    ImportFixture()
    {
        mKitchen.add("inside.orvlib", mDatabase);
        mKitchen.add("textures/oak.png", "oak");
        mKitchen.add("tile.jpg", "tile");
    }

    std::string path(const std::string& name) const { return mProgram.folder().path() + "/" + name; }
    std::string rootPath(const std::string& name) const { return mProgram.root() + "/" + name; }
    std::string writeKitchen(const std::string& name = "Kitchen.orvlibz") const
    {
        return mKitchen.write(mProgram.folder(), name).toNativeString();
    }
    /// The content of every file below the test's folder, including the root.
    std::map<std::string, std::string> everything() const
    {
        std::map<std::string, std::string> files;
        for (const std::string& name : test::listTree(mProgram.folder().path()))
            files[name] = name.back() == '/' || name.find("loop") != std::string::npos
                              ? std::string()
                              : test::readFile(path(name));
        return files;
    }
    /// Runs a command that must fail with a one-line message that contains `reason`, and must not change any
    /// file.
    void expectFailure(const std::vector<std::string>& arguments, const std::string& reason, int status = 1)
    {
        mProgram.createRoot();
        const auto before = everything();
        const test::ProgramResult result = mProgram.run(arguments);
        EXPECT_EQ(result.status, status) << result.err;
        EXPECT_THAT(result.err, testing::HasSubstr(reason));
        EXPECT_EQ(everything(), before);
    }

    test::Program mProgram;
    const std::string mDatabase = test::sampleDatabase("the database");
    test::ArchiveBuilder mKitchen;
};
