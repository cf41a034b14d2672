// The files that imports keep, and the record of the imports.
#include <filesystem>
#include <stdexcept>

#include <gmock/gmock.h>

#include "OrvHost/imports/ArchiveImport.h"
#include "OrvHost/imports/ImportUndo.h"
#include "OrvHost/update/HostLock.h"
#include "OrvLibrary/host/LockingFStream.h"
#include "tests/orv-host/HostedTest.h"
#include "tests/support/ArchiveBuilder.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/RecordingProgress.h"
#include "tests/support/RecordingServices.h"

namespace fs = std::filesystem;

using OrvHost::ArchiveImport;
using OrvHost::ImportUndo;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class FormerImports : public test::HostedTest
{
protected:
    FormerImports() { mOptions.checksDatabase = false; }

    ArchiveImport::Result import(const std::string& version, bool hasDatabase = true, bool hasTextures = true,
                                 const std::string& name = "Kitchen")
    {
        test::ArchiveBuilder archive;
        if (hasDatabase)
            archive.add("inside.orvlib", "database " + version);
        if (hasTextures)
            archive.add("oak.png", "oak " + version);
        const fileString source = archive.write(folder, name + ".orvlibz");
        return ArchiveImport(host.root(), mOptions).run(source.toNativeString(), mProgress);
    }
    std::string path(const std::string& name) const { return folder.path() + "/root/" + name; }
    std::string library() const { return test::readFile(path("user/Kitchen.orvlib")); }
    std::vector<std::string> kept() const { return test::listTree(path("former-imports")); }
    std::string record() const { return test::readFile(path("former-imports/imports.json")); }
    void writeRecord(const std::string& text) const
    {
        folder.write("root/former-imports/imports.json", text);
    }
    /// Sets the state in the record of the last import, as after a process that died in the middle.
    void setLastState(const std::string& state) const
    {
        std::string text = record();
        writeRecord(text.replace(text.rfind("\"done\""), 6, "\"" + state + "\""));
    }
    /// The message of the failed undo; empty if it is done.
    std::string undo() const
    {
        try {
            ImportUndo(host.root()).run();
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return {};
    }

    ArchiveImport::Options mOptions;
    std::shared_ptr<test::RecordingProgress> mProgress = std::make_shared<test::RecordingProgress>();
};

} // namespace

TEST_F(FormerImports, replacedFilesAreKeptUnderTheNumberOfTheirImport)
{
    import("1");
    EXPECT_THAT(kept(), ElementsAre("imports.json"));
    EXPECT_THAT(record(), HasSubstr("\"number\": 1,"));
    EXPECT_EQ(test::modeOf(fileString(path("former-imports"))), 0700U);
    import("2");
    EXPECT_THAT(kept(), ElementsAre("2.library", "2.textures", "imports.json"));
    import("3");
    EXPECT_THAT(kept(), ElementsAre("2.library", "2.textures", "3.library", "3.library.bak", "3.textures",
                                    "imports.json"));
    EXPECT_EQ(test::readFile(path("former-imports/3.library")), "database 2");
    EXPECT_EQ(test::readFile(path("former-imports/3.library.bak")), "database 1");
}

TEST_F(FormerImports, lastThreeImportsCanBeTakenBack)
{
    for (const char* version : {"1", "2", "3", "4"})
        import(version);
    for (const char* version : {"3", "2", "1"}) {
        EXPECT_EQ(undo(), "");
        EXPECT_EQ(library(), std::string("database ") + version);
    }
    EXPECT_EQ(undo(), "there is no import to take back");
    EXPECT_THAT(kept(), ElementsAre("imports.json"));
}

TEST_F(FormerImports, filesThatNobodyListsAreRemoved)
{
    import("1");
    for (const char* name : {"7.library", "notes", "imports.json.unreadable", "folder/x"})
        folder.write(std::string("root/former-imports/") + name, "x");
    import("2");
    EXPECT_THAT(kept(), ElementsAre("2.library", "2.textures", "folder/", "folder/x", "imports.json",
                                    "imports.json.unreadable"));
}

TEST_F(FormerImports, changeOfTheSameLengthIsNoticed)
{
    import("1");
    const std::string file = path("user/Kitchen.orvlib");
    const auto time = fs::last_write_time(file);
    fs::last_write_time(file, time + std::chrono::nanoseconds(1'000'000));
    EXPECT_THAT(undo(), HasSubstr(file + ": was changed after the import"));
    fs::last_write_time(file, time);
    test::writeFile(file, "database 1 and more");
    fs::last_write_time(file, time);
    EXPECT_THAT(undo(), HasSubstr(file + ": was changed after the import"));
    test::writeFile(file, "database 1");
    fs::last_write_time(file, time);
    EXPECT_EQ(undo(), "");
}

TEST_F(FormerImports, recordWithOtherFilesIsNotUnderstood)
{
    const std::string begin = R"({"imports":[{"number":1,"name":"x","state":"done","files":[{"file":")";
    for (const char* role :
         {"", "librarx", "texturex", "librar", "a library", "a textures", "library/x", "library\\u0000x"}) {
        writeRecord(begin + role + "\"}]}]}");
        EXPECT_FALSE(ImportUndo(host.root()).last()) << role;
        EXPECT_THAT(undo(), HasSubstr("imports.json: is no record of imports")) << role;
    }
    for (const char* role : {"library", "textures", "library.bak", "textures.damaged.2"}) {
        writeRecord(begin + role + "\"}]}]}");
        EXPECT_TRUE(ImportUndo(host.root()).last()) << role;
    }
}

TEST_F(FormerImports, nameOfAnyBytesIsRecorded)
{
    for (const std::string name : {"\xFF %41 \"K\xC3\xBC"
                                   "che\"",
                                   "a.b"}) {
        test::ArchiveBuilder archive;
        archive.add("inside.orvlib", "database");
        const fileString source = archive.write(folder, name + ".orvlibz");
        EXPECT_EQ(ArchiveImport(host.root(), mOptions).run(source.toNativeString(), mProgress).error, "");
        EXPECT_EQ(ImportUndo(host.root()).run().name, name);
    }
}

TEST_F(FormerImports, undoTellsOnlyTheFilesOfTheImport)
{
    const ArchiveImport::Result database = import("1", true, false);
    EXPECT_EQ(ImportUndo(host.root()).last()->library, database.library);
    EXPECT_TRUE(ImportUndo(host.root()).last()->textures.empty());
    const ArchiveImport::Result textures = import("2", false, true);
    EXPECT_TRUE(ImportUndo(host.root()).last()->library.empty());
    EXPECT_EQ(ImportUndo(host.root()).run().textures, textures.textures);
}

TEST_F(FormerImports, killedUndoIsOfferedBeforeTheImportBeforeIt)
{
    import("1");
    import("1", true, true, "Bath");
    setLastState("undoing");
    EXPECT_EQ(ImportUndo(host.root()).last()->name, "Bath");
    EXPECT_EQ(ImportUndo(host.root()).refusal(), "");
    EXPECT_EQ(ImportUndo(host.root()).run().name, "Bath");
    EXPECT_EQ(ImportUndo(host.root()).last()->name, "Kitchen");
}

TEST_F(FormerImports, proprietaryImportIsTakenBackInItsFolders)
{
    mOptions.isProprietary = true;
    import("1");
    const ArchiveImport::Result result = import("2");
    EXPECT_EQ(ImportUndo(host.root()).last()->library, result.library);
    EXPECT_EQ(result.library, fileString(path("manufacturer/Kitchen.orvlib")));
    EXPECT_EQ(undo(), "");
    EXPECT_EQ(test::readFile(result.library), "database 1");
}

TEST_F(FormerImports, texturesAloneCountAsDoneWhenTheyAreInPlace)
{
    import("1", false, true);
    const std::string file = path("textures/Kitchen.zip");
    const std::string first = test::readFile(file);
    import("2", false, true);
    setLastState("begun");
    EXPECT_EQ(ImportUndo(host.root()).refusal(), "");
    EXPECT_EQ(undo(), "");
    EXPECT_EQ(test::readFile(file), first);
    import("2", false, true);
    setLastState("begun");
    fs::rename(path("former-imports/2.textures"), file);
    EXPECT_EQ(undo(), "") << "it had not taken place, so the one before is taken back";
    EXPECT_FALSE(fs::exists(file));
}

TEST_F(FormerImports, archiveThatWasSetAsideComesBack)
{
    const std::string file = import("1").textures.toNativeString();
    std::string damaged = test::readFile(file);
    damaged[damaged.find("oak.png") + 8] ^= 1;
    test::writeFile(file, damaged);
    mOptions.setsAside = true;
    test::ArchiveBuilder archive;
    archive.add("elm.png", "elm");
    const fileString source = archive.write(folder, "Kitchen.orvlibz");
    const auto result = ArchiveImport(host.root(), mOptions).run(source.toNativeString(), mProgress);
    ASSERT_EQ(result.error, "");
    EXPECT_TRUE(result.setAside.pathExists());
    EXPECT_EQ(undo(), "");
    EXPECT_EQ(test::readFile(file), damaged);
    EXPECT_FALSE(result.setAside.pathExists());
}

TEST_F(FormerImports, archiveThatAnotherProgramChangesIsLeftAlone)
{
    import("1");
    const std::string first = test::readFile(path("textures/Kitchen.zip"));
    import("2");
    {
        LockingFStream other(fileString(path("textures/Kitchen.zip")), std::ios_base::app);
        ASSERT_TRUE(other.is_open());
        EXPECT_THAT(undo(), HasSubstr("Kitchen.zip: another program is changing it"));
    }
    EXPECT_EQ(undo(), "") << "the next one goes on";
    EXPECT_EQ(library(), "database 1");
    EXPECT_EQ(test::readFile(path("textures/Kitchen.zip")), first);
}

TEST_F(FormerImports, cancelEndsTheWaitForAnotherImport)
{
    import("1");
    const OrvHost::HostLock other =
        OrvHost::HostLock::ofImport(fileString(path("former-imports")), [] { return false; });
    int questions = 0;
    mProgress->isCancelled = [&questions](int) { return ++questions > 20; };
    EXPECT_EQ(import("2").error, "cancelled");
    EXPECT_THAT(mProgress->calls(), testing::Not(testing::Contains("check with events")));
    EXPECT_EQ(library(), "database 1");
}

TEST_F(FormerImports, hostSearchesTheFoldersOfRestoredFilesAgain)
{
    import("1");
    import("2");
    test::RecordingFileSearch search;
    FileSearch* const former = FileSearch::install(&search);
    undo();
    FileSearch::install(former);
    EXPECT_THAT(search.folders(), testing::IsSupersetOf({path("user/"), path("textures/")}));
}

TEST_F(FormerImports, filesOnAnotherDiskComeBackWithTheirTimes)
{
    const test::OtherDevice other;
    if (other.path().empty())
        GTEST_SKIP() << "there is no other disk";
    fs::remove(path("user"));
    fs::create_directory_symlink(other.path(), path("user"));
    import("1");
    const std::string file = path("user/Kitchen.orvlib");
    const auto time = fs::last_write_time(file) - std::chrono::hours(100);
    fs::last_write_time(file, time);
    import("2");
    EXPECT_EQ(test::readFile(path("user/Kitchen.orvlib.bak")), "database 1");
    EXPECT_EQ(fs::last_write_time(path("former-imports/2.library")), time);
    EXPECT_EQ(undo(), "");
    EXPECT_EQ(library(), "database 1");
    EXPECT_EQ(fs::last_write_time(file), time);
    EXPECT_FALSE(fs::exists(path("user/Kitchen.orvlib.bak")));
}
