// Imports by a host: cancelled at every check, previewed, and undone.
#include "OrvHost/imports/ArchiveImport.h"

#include <algorithm>
#include <filesystem>
#include <map>

#include <gmock/gmock.h>

#include "OrvHost/imports/ImportUndo.h"
#include "tests/orv-host/HostedTest.h"
#include "tests/support/ArchiveBuilder.h"
#include "tests/support/ArchiveReader.h"
#include "tests/support/RecordingProgress.h"
#include "tests/support/SampleDatabase.h"

using OrvHost::ArchiveImport;
using OrvHost::ImportUndo;

namespace {

class ArchiveImportTest : public test::HostedTest
{
protected:
    /// Writes an archive whose files contain `version`.
    std::string writeKitchen(const std::string& version) const
    {
        test::ArchiveBuilder archive;
        archive.add("inside.orvlib", test::sampleDatabase(version));
        archive.add("oak.png", "oak " + version);
        archive.add("own-" + version + ".png", "own");
        return archive.write(folder, "Kitchen.orvlibz").toNativeString();
    }
    ArchiveImport::Result import(const std::string& source)
    {
        return ArchiveImport(host.root(), {}).run(source, mProgress);
    }
    /// Every file below the root except those kept for an undo.
    std::map<std::string, std::string> files() const
    {
        std::map<std::string, std::string> found;
        const std::string root = host.root().toNativeString();
        for (const std::string& name : test::listTree(root))
            if (name.back() != '/' && name.rfind("former-imports", 0) != 0)
                found[name] = test::readFile(root + name);
        return found;
    }

    /// Sets the state in the record of the last import, as after a process that died in the middle.
    void setLastState(const std::string& state) const
    {
        const std::string path = host.root().toNativeString() + "former-imports/imports.json";
        std::string record = test::readFile(path);
        record.replace(record.rfind("\"done\""), 6, "\"" + state + "\"");
        test::writeFile(path, record);
    }
    /// Moves the former library back from where the last import kept it.
    void putLibraryBack(int import) const
    {
        const std::string root = host.root().toNativeString();
        std::filesystem::rename(root + "former-imports/" + std::to_string(import) + ".library",
                                root + "user/Kitchen.orvlib");
    }

    std::shared_ptr<test::RecordingProgress> mProgress = std::make_shared<test::RecordingProgress>();
};

} // namespace

TEST_F(ArchiveImportTest, cancelAtAnyQuestionLeavesEverythingAsItWas)
{
    ASSERT_EQ(import(writeKitchen("1")).error, "");
    const auto before = files();
    const std::string source = writeKitchen("2");
    int questions = 0;
    for (bool isDone = false; !isDone; ++questions) {
        mProgress = std::make_shared<test::RecordingProgress>();
        mProgress->isCancelled = [questions](int number) { return number > questions; };
        const ArchiveImport::Result result = import(source);
        isDone = result.error.empty();
        EXPECT_EQ(result.isCancelled, !isDone);
        if (isDone)
            break;
        EXPECT_EQ(result.error, "cancelled");
        EXPECT_TRUE(result.library.empty() && result.textures.empty());
        EXPECT_EQ(files(), before) << "cancelled at question " << questions + 1;
    }
    EXPECT_GT(questions, 5);
    EXPECT_EQ(test::readFile(host.root().toNativeString() + "user/Kitchen.orvlib"),
              test::sampleDatabase("2"));
}

TEST_F(ArchiveImportTest, nothingIsAskedBehindTheLastRenameOfTexturesAlone)
{
    test::ArchiveBuilder archive;
    archive.add("oak.png", "oak");
    const std::string source = archive.write(folder, "Oak.orvlibz").toNativeString();
    const fileString textures = folder.file("root/textures/Oak.zip");
    int late = 0;
    mProgress->isCancelled = [&](int) {
        late += textures.pathExists();
        return false;
    };
    EXPECT_EQ(import(source).error, "");
    EXPECT_TRUE(textures.pathExists());
    EXPECT_EQ(late, 0);
}

TEST_F(ArchiveImportTest, stepsAreToldOnceEachInOrder)
{
    import(writeKitchen("1"));
    mProgress = std::make_shared<test::RecordingProgress>();
    import(writeKitchen("2"));
    std::vector<std::string> steps;
    for (const std::string& call : mProgress->calls())
        if (call.rfind("labels ", 0) == 0)
            steps.push_back(call);
    EXPECT_THAT(
        steps, testing::ElementsAre("labels reading | ", "labels checking | ", "labels putting in place | "));
}

TEST_F(ArchiveImportTest, workIsAnnouncedAndToldToItsEnd)
{
    import(writeKitchen("1"));
    mProgress = std::make_shared<test::RecordingProgress>();
    import(writeKitchen("2"));
    std::uint64_t total = 0;
    for (const std::string& call : mProgress->calls()) {
        if (call.rfind("total ", 0) == 0)
            total += std::stoull(call.substr(6));
    }
    EXPECT_GT(total, 0U);
    EXPECT_EQ(mProgress->sumOfBytes(), total);
}

TEST_F(ArchiveImportTest, planForetellsWhatTheImportSays)
{
    import(writeKitchen("1"));
    const std::string source = writeKitchen("2");
    const auto before = files();
    const ArchiveImport::Result plan = ArchiveImport(host.root(), {}).plan(source, mProgress);
    EXPECT_EQ(files(), before);
    const ArchiveImport::Result result = import(source);
    EXPECT_EQ(plan.error, "");
    EXPECT_EQ(plan.library, result.library);
    EXPECT_EQ(plan.textures, result.textures);
    EXPECT_TRUE(plan.replaces && result.replaces);
    EXPECT_EQ(plan.added, 1U);
    EXPECT_EQ(plan.replaced, 1U);
    EXPECT_EQ(result.added, 1U);
    EXPECT_EQ(result.replaced, 1U);
}

TEST_F(ArchiveImportTest, damagedTextureArchiveIsNamedSoThatTheUserCanBeAsked)
{
    const fileString textures = import(writeKitchen("1")).textures;
    std::string damaged = test::readFile(textures.toNativeString());
    damaged[damaged.find("own-1.png") + 10] ^= 1; // in the data of the member
    test::writeFile(textures.toNativeString(), damaged);
    const ArchiveImport::Result result = import(writeKitchen("2"));
    EXPECT_EQ(result.damaged, textures);
    EXPECT_THAT(result.error, testing::HasSubstr("member \"own-1.png\""));
    ArchiveImport::Options options;
    options.setsAside = true;
    const ArchiveImport::Result second =
        ArchiveImport(host.root(), options).run(writeKitchen("2"), mProgress);
    EXPECT_EQ(second.error, "");
    EXPECT_EQ(second.setAside, textures + fileString(".damaged"));
    EXPECT_TRUE(second.damaged.empty());
}

TEST_F(ArchiveImportTest, undoOffersTheLastImportAndTakesItBack)
{
    ImportUndo undo(host.root());
    EXPECT_FALSE(undo.last());
    import(writeKitchen("1"));
    const auto before = files();
    const ArchiveImport::Result result = import(writeKitchen("2"));
    const auto offered = undo.last();
    ASSERT_TRUE(offered);
    EXPECT_EQ(offered->name, "Kitchen");
    EXPECT_EQ(offered->library, result.library);
    EXPECT_EQ(offered->textures, result.textures);
    EXPECT_EQ(undo.run().library, result.library);
    EXPECT_EQ(files(), before);
    undo.run();
    EXPECT_FALSE(undo.last());
    EXPECT_THROW(undo.run(), std::runtime_error);
}

TEST_F(ArchiveImportTest, undoSaysBeforehandWhyItWouldRefuse)
{
    const ImportUndo undo(host.root());
    EXPECT_EQ(undo.refusal(), "");
    const ArchiveImport::Result result = import(writeKitchen("1"));
    EXPECT_EQ(undo.refusal(), "");
    test::writeFile(result.library.toNativeString(), "edited");
    const std::string refusal = undo.refusal();
    EXPECT_NE(refusal.find(": was changed after the import"), std::string::npos) << refusal;
    std::string refused;
    try {
        ImportUndo(host.root()).run();
    } catch (const std::runtime_error& error) {
        refused = error.what();
    }
    EXPECT_EQ(refused, refusal);
    std::filesystem::remove(result.library.toNativeString());
    EXPECT_EQ(undo.refusal(), "");
}

TEST_F(ArchiveImportTest, anImportThatDiedBehindItsLastStepCounts)
{
    import(writeKitchen("1"));
    const auto before = files();
    import(writeKitchen("2"));
    const auto after = files();
    setLastState("begun");
    EXPECT_TRUE(ImportUndo(host.root()).last());
    import(writeKitchen("3"));
    ImportUndo(host.root()).run();
    EXPECT_EQ(files(), after);
    ImportUndo(host.root()).run();
    EXPECT_EQ(files(), before);
}

TEST_F(ArchiveImportTest, anImportThatDiedBeforeItsLastStepIsTakenBack)
{
    import(writeKitchen("1"));
    const auto before = files();
    import(writeKitchen("2"));
    setLastState("begun");
    putLibraryBack(2);
    EXPECT_NE(files(), before) << "the textures are those of the second one";
    const auto offered = ImportUndo(host.root()).last();
    ASSERT_TRUE(offered) << "the first one";
    ImportUndo(host.root()).run();
    EXPECT_TRUE(files().empty());
    EXPECT_FALSE(ImportUndo(host.root()).last());
}

TEST_F(ArchiveImportTest, theNextImportTakesBackOneThatDied)
{
    import(writeKitchen("1"));
    const auto before = files();
    import(writeKitchen("2"));
    setLastState("begun");
    putLibraryBack(2);
    ASSERT_EQ(import(writeKitchen("3")).error, "");
    ImportUndo(host.root()).run();
    EXPECT_EQ(files(), before);
}

TEST_F(ArchiveImportTest, anUndoThatDiedIsEndedByTheNextOneAndToldOnce)
{
    import(writeKitchen("1"));
    const auto before = files();
    const ArchiveImport::Result second = import(writeKitchen("2"));
    setLastState("undoing");
    putLibraryBack(2);
    EXPECT_EQ(ImportUndo(host.root()).run().library, second.library);
    EXPECT_EQ(files(), before) << "the first one was not taken back, too";
}

TEST_F(ArchiveImportTest, recordThatCannotBeReadStopsNoImport)
{
    import(writeKitchen("1"));
    const std::string record = host.root().toNativeString() + "former-imports/imports.json";
    for (const char* text :
         {"", "no record", "{\"imports\":[{\"number\":1,\"name\":\"../x\",\"state\":\"done\"}]}",
          "{\"imports\":[{\"number\":0,\"name\":\"x\",\"state\":\"done\"}]}",
          "{\"imports\":[{\"number\":1,\"name\":\"\",\"state\":\"done\"}]}",
          "{\"imports\":[{\"number\":1,\"name\":\".\",\"state\":\"done\"}]}",
          "{\"imports\":[{\"number\":1,\"name\":\"..\",\"state\":\"done\"}]}",
          "{\"imports\":[{\"number\":1,\"name\":\"x%00\",\"state\":\"done\"}]}",
          "{\"imports\":[{\"number\":1,\"name\":\"x\",\"state\":\"over\"}]}",
          "{\"imports\":[{\"number\":1,\"name\":\"x\",\"state\":\"done\",\"files\":[{\"file\":\"other\"}]}]}",
          "{\"imports\":[{\"number\":1,\"name\":\"x\",\"state\":\"done\",\"files\":"
          "[{\"file\":\"library/../../x\"}]}]}"}) {
        test::writeFile(record, text);
        EXPECT_FALSE(ImportUndo(host.root()).last()) << text;
        EXPECT_THROW(ImportUndo(host.root()).run(), std::runtime_error) << text;
        EXPECT_EQ(import(writeKitchen("2")).error, "") << text;
        EXPECT_EQ(test::readFile(record + ".unreadable"), text);
        EXPECT_TRUE(ImportUndo(host.root()).last()) << text;
    }
}

TEST_F(ArchiveImportTest, filesBehindLinksComeBack)
{
    const ArchiveImport::Result first = import(writeKitchen("1"));
    for (const fileString& file : {first.library, first.textures}) {
        const std::string away = folder.path() + "/" + file.stemWithExtension().toNativeString();
        std::filesystem::rename(file.toNativeString(), away);
        std::filesystem::create_symlink(away, file.toNativeString());
    }
    const auto before = files();
    EXPECT_EQ(import(writeKitchen("2")).error, "");
    EXPECT_NE(files(), before);
    ImportUndo(host.root()).run();
    EXPECT_EQ(files(), before);
}
