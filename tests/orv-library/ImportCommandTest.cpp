#include <csignal>
#include <filesystem>

#include <QJsonArray>

#include "tests/orv-library/ImportFixture.h"
#include "tests/support/FaultServer.h"

namespace fs = std::filesystem;
using test::FaultReply;
using test::FaultServer;
using test::ProgramResult;

namespace {

class ImportCommand : public ImportFixture
{
};

QJsonValue value(const std::string& path)
{
    return path.empty() ? QJsonValue() : QJsonValue(QString::fromStdString(path));
}

/// The result for one source whose import was complete and replaced no members.
QJsonObject entry(const std::string& source, const std::string& library, const std::string& textures,
                  int added)
{
    return {{"source", value(source)},
            {"library", value(library)},
            {"textures", value(textures)},
            {"replaces", false},
            {"added", added},
            {"replaced", 0},
            {"error", QJsonValue()}};
}

/// The document for a single source.
QJsonObject document(const QJsonObject& entry)
{
    QJsonObject whole{
        {"library", entry["library"]}, {"textures", entry["textures"]}, {"imports", QJsonArray{entry}}};
    if (entry["error"].isString())
        whole["error"] = entry["error"];
    return whole;
}

/// The document for a single source of which nothing was imported.
QJsonObject failure(const std::string& source, const std::string& reason)
{
    QJsonObject failed = entry(source, "", "", 0);
    failed["error"] = QString::fromStdString(reason);
    return document(failed);
}

} // namespace

TEST_F(ImportCommand, libraryAndTexturesGoToTheUsersFolders)
{
    const ProgramResult result = mProgram.run({"--json", "import", writeKitchen()});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.json(), document(entry(path("Kitchen.orvlibz"), rootPath("user/Kitchen.orvlib"),
                                            rootPath("textures/Kitchen.zip"), 2)));
    EXPECT_EQ(test::readFile(rootPath("user/Kitchen.orvlib")), mDatabase);
    EXPECT_EQ(test::contentsOf(fileString(rootPath("textures/Kitchen.zip"))),
              (Contents{{"textures/oak.png", "oak"}, {"tile.jpg", "tile"}}));
    EXPECT_TRUE(test::listTree(rootPath("temp")).empty());
    EXPECT_EQ(test::listTree(rootPath("user")), std::vector<std::string>{"Kitchen.orvlib"});
    EXPECT_EQ(fs::status(rootPath("user/Kitchen.orvlib")).permissions(), static_cast<fs::perms>(0644));
}

TEST_F(ImportCommand, proprietaryLibraryGoesToTheManufacturersFolders)
{
    const ProgramResult result = mProgram.run({"--json", "import", "--proprietary", writeKitchen()});
    EXPECT_EQ(result.json(), document(entry(path("Kitchen.orvlibz"), rootPath("manufacturer/Kitchen.orvlib"),
                                            rootPath("referenced/Kitchen.zip"), 2)));
    EXPECT_EQ(test::readFile(rootPath("manufacturer/Kitchen.orvlib")), mDatabase);
    EXPECT_TRUE(fs::exists(rootPath("referenced/Kitchen.zip")));
}

TEST_F(ImportCommand, valuesThatTheArchiveLacksAreNull)
{
    test::ArchiveBuilder database;
    database.add("a.orvlib", mDatabase);
    database.write(mProgram.folder(), "Database.orvlibz");
    EXPECT_EQ(mProgram.run({"--json", "import", path("Database.orvlibz")}).json(),
              document(entry(path("Database.orvlibz"), rootPath("user/Database.orvlib"), "", 0)));
    test::ArchiveBuilder files;
    files.add("a.png", "picture");
    files.write(mProgram.folder(), "Files.orvlibz");
    EXPECT_EQ(mProgram.run({"--json", "import", path("Files.orvlibz")}).json(),
              document(entry(path("Files.orvlibz"), "", rootPath("textures/Files.zip"), 1)));
    const std::string empty =
        test::ArchiveBuilder().write(mProgram.folder(), "Empty.orvlibz").toNativeString();
    const ProgramResult none = mProgram.run({"--json", "import", empty});
    EXPECT_EQ(none.json(), failure(empty, empty + ": holds neither a library nor referenced files"));
    EXPECT_EQ(none.status, 1);
}

TEST_F(ImportCommand, formerLibraryIsKeptAndTexturesAreMerged)
{
    mProgram.run({"import", writeKitchen()});
    test::ArchiveBuilder second;
    second.add("tile.jpg", "new tile");
    second.add("door.png", "door");
    const std::string newDatabase = test::sampleDatabase("the second database");
    second.add("inside.orvlib", newDatabase);
    second.write(mProgram.folder(), "Kitchen.orvlibz");
    EXPECT_EQ(mProgram.run({"import", path("Kitchen.orvlibz")}).status, 0);
    EXPECT_EQ(test::readFile(rootPath("user/Kitchen.orvlib")), newDatabase);
    EXPECT_EQ(test::readFile(rootPath("user/Kitchen.orvlib.bak")), mDatabase);
    EXPECT_EQ(test::contentsOf(fileString(rootPath("textures/Kitchen.zip"))),
              (Contents{{"textures/oak.png", "oak"}, {"tile.jpg", "new tile"}, {"door.png", "door"}}));
    mProgram.run({"import", path("Kitchen.orvlibz")});
    EXPECT_EQ(test::readFile(rootPath("user/Kitchen.orvlib.bak")), newDatabase);
}

TEST_F(ImportCommand, readOnlyLibraryIsKeptAndReplacedEachTime)
{
    const std::string archive = writeKitchen();
    for (int i = 0; i < 3; ++i) {
        const ProgramResult result = mProgram.run({"import", archive});
        EXPECT_EQ(result.status, 0) << result.err;
        fs::permissions(rootPath("user/Kitchen.orvlib"), fs::perms::owner_read);
    }
    EXPECT_EQ(test::readFile(rootPath("user/Kitchen.orvlib.bak")), mDatabase);
    EXPECT_TRUE(test::listTree(rootPath("temp")).empty());
}

TEST_F(ImportCommand, formerLibraryThatCannotBeKeptStays)
{
    mProgram.folder().write("root/user/Kitchen.orvlib", "former");
    fs::create_directory(rootPath("user/Kitchen.orvlib.bak"));
    const ProgramResult result = mProgram.run({"import", writeKitchen()});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, testing::HasSubstr(rootPath("user/Kitchen.orvlib.bak") + ": is a folder"));
    EXPECT_EQ(test::readFile(rootPath("user/Kitchen.orvlib")), "former");
    EXPECT_TRUE(test::listTree(rootPath("temp")).empty());
}

TEST_F(ImportCommand, failedImportChangesNothingAndSaysWhy)
{
    const std::string none = path("none.orvlibz");
    EXPECT_EQ(mProgram.run({"--json", "import", none}).json(), failure(none, none + ": no such file"));

    fs::create_directory(rootPath("user/Kitchen.orvlib.bak"));
    mProgram.folder().write("root/user/Kitchen.orvlib", "former");
    EXPECT_EQ(mProgram.run({"--json", "import", writeKitchen()}).json(),
              failure(path("Kitchen.orvlibz"), rootPath("user/Kitchen.orvlib.bak: is a folder")));
    EXPECT_FALSE(fs::exists(rootPath("textures/Kitchen.zip")));
}

TEST_F(ImportCommand, packedWebPageNeverReplacesALibraryOrItsBackup)
{
    mProgram.run({"import", writeKitchen()});
    mProgram.run({"import", writeKitchen()});
    test::ArchiveBuilder page;
    page.add("inside.orvlib", "<html>sign in</html>");
    page.add("tile.jpg", "of the page");
    const std::string archive = page.write(mProgram.folder(), "Kitchen.orvlibz").toNativeString();
    for (int i = 0; i < 2; ++i)
        expectFailure({"import", archive}, archive + ": the library in it is no database");
    EXPECT_EQ(mProgram.run({"import", "--no-database-check", archive}).status, 0);
    EXPECT_EQ(test::readFile(rootPath("user/Kitchen.orvlib")), "<html>sign in</html>");
    EXPECT_EQ(test::readFile(rootPath("user/Kitchen.orvlib.bak")), mDatabase);
}

TEST_F(ImportCommand, severalSourcesAreImportedWhateverBecomesOfOne)
{
    const std::string kitchen = writeKitchen();
    const std::string none = path("none.orvlibz");
    const std::string bath = writeKitchen("Bath.orvlibz");
    const ProgramResult result = mProgram.run({"--json", "import", kitchen, none, bath});
    EXPECT_EQ(result.status, 1);
    QJsonObject failed = entry(none, "", "", 0);
    failed["error"] = QString::fromStdString(none + ": no such file");
    EXPECT_EQ(
        result.json(),
        (QJsonObject{
            {"library", QJsonValue()},
            {"textures", QJsonValue()},
            {"imports",
             QJsonArray{entry(kitchen, rootPath("user/Kitchen.orvlib"), rootPath("textures/Kitchen.zip"), 2),
                        failed,
                        entry(bath, rootPath("user/Bath.orvlib"), rootPath("textures/Bath.zip"), 2)}}}));
    EXPECT_EQ(test::readFile(rootPath("user/Bath.orvlib")), mDatabase);
    EXPECT_THAT(result.err, testing::EndsWith("orv-library: " + none + ": no such file\n"));
}

TEST_F(ImportCommand, dryRunSaysWhatWouldComeAndChangesNothing)
{
    mProgram.run({"import", writeKitchen()});
    mKitchen.add("door.png", "door");
    const std::string archive = writeKitchen();
    const auto before = everything();
    const ProgramResult result = mProgram.run({"--json", "import", "--dry-run", archive});
    EXPECT_EQ(result.status, 0) << result.err;
    QJsonObject expected =
        entry(archive, rootPath("user/Kitchen.orvlib"), rootPath("textures/Kitchen.zip"), 1);
    expected["replaces"] = true;
    expected["replaced"] = 2;
    expected = document(expected);
    expected["dryRun"] = true;
    EXPECT_EQ(result.json(), expected);
    EXPECT_EQ(everything(), before);
}

TEST_F(ImportCommand, dryRunMakesNoRoot)
{
    const ProgramResult result = mProgram.run({"--json", "import", "--dry-run", writeKitchen()});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.json()["library"].toString().toStdString(), rootPath("user/Kitchen.orvlib"));
    EXPECT_EQ(result.json()["imports"].toArray()[0].toObject()["added"], 2);
    EXPECT_FALSE(fs::exists(mProgram.root()));
}

TEST_F(ImportCommand, progressIsOneLineAStep)
{
    EXPECT_EQ(mProgram.run({"--progress", "plain", "import", writeKitchen()}).err,
              "reading\nchecking\nputting in place\n");
    FaultServer server;
    server.on("/Bath.orvlibz", FaultReply::ok(mKitchen.bytes()));
    EXPECT_EQ(mProgram.run({"--progress", "plain", "import", server.url("/Bath.orvlibz")}).err,
              "downloading\nreading\nchecking\nputting in place\n");
    EXPECT_EQ(mProgram.run({"--progress", "none", "import", writeKitchen()}).err, "");
}

TEST_F(ImportCommand, interruptImportsAllOrNothing)
{
    mProgram.run({"import", writeKitchen()});
    const std::string former = test::readFile(rootPath("textures/Kitchen.zip"));
    for (int i = 0; i < 20; ++i)
        mKitchen.add("large-" + std::to_string(i) + ".jpg",
                     test::sampleBytes(2000000, static_cast<unsigned>(i)));
    const std::string archive = writeKitchen();
    const auto process = mProgram.start({"--json", "--progress", "plain", "import", archive});
    process->setReadChannel(QProcess::StandardError);
    ASSERT_TRUE(process->waitForReadyRead(10000)) << "it says that it reads";
    ::kill(static_cast<pid_t>(process->processId()), SIGINT);
    const ProgramResult result = test::Program::finish(*process);
    const bool isDone = result.status == 0;
    EXPECT_EQ(result.status, isDone ? 0 : 130) << result.err;
    EXPECT_EQ(result.json()["library"].isNull(), !isDone);
    EXPECT_EQ(test::readFile(rootPath("textures/Kitchen.zip")) == former, !isDone);
    EXPECT_EQ(fs::exists(rootPath("user/Kitchen.orvlib.bak")), isDone);
    EXPECT_TRUE(test::listTree(rootPath("temp")).empty());
}

TEST_F(ImportCommand, interruptAfterTheResultChangesNothing)
{
    const std::string archive = writeKitchen();
    for (int i = 0; i < 20; ++i) {
        const auto process = mProgram.start({"--json", "import", archive});
        ASSERT_TRUE(process->waitForReadyRead(10000));
        ::kill(static_cast<pid_t>(process->processId()), SIGINT);
        const ProgramResult result = test::Program::finish(*process);
        ASSERT_EQ(result.status, 0) << result.err;
        ASSERT_FALSE(result.json()["library"].isNull());
    }
}

TEST_F(ImportCommand, barNamesTheStepAndTheFile)
{
    const ProgramResult result = mProgram.run({"--progress", "bar", "import", writeKitchen()});
    EXPECT_THAT(result.err, testing::HasSubstr("] reading"));
    EXPECT_THAT(result.err, testing::HasSubstr("] putting in place"));
    EXPECT_THAT(result.err, testing::EndsWith("\r\033[K")) << "the bar goes from the line";
}

TEST_F(ImportCommand, badSourcesChangeNothing)
{
    mProgram.run({"import", writeKitchen()});
    fs::create_symlink("loop.orvlibz", path("loop.orvlibz"));
    std::string damaged = mKitchen.bytes();
    damaged[damaged.find("oak.png") + 8] ^= 1; // in the data of the member
    mProgram.folder().write("Kitchen.orvlibz", damaged);
    for (const std::string& source :
         {path("none.orvlibz"), mProgram.folder().path(), std::string("/dev/null"), path("loop.orvlibz"),
          path("Kitchen.orvlibz")})
        expectFailure({"import", source}, source + ": ");
}

TEST_F(ImportCommand, badAnswersChangeNothing)
{
    FaultServer server;
    mProgram.run({"import", writeKitchen()});
    const std::string bytes = mKitchen.bytes();
    server.on("/404/Kitchen.orvlibz", FaultReply::status(404));
    server.on("/html/Kitchen.orvlibz", FaultReply::ok("<html></html>"));
    server.on("/half/Kitchen.orvlibz", FaultReply::ok(bytes.substr(0, bytes.size() / 2)));
    server.on("/cut/Kitchen.orvlibz", FaultReply::ok(bytes).cutAt(300));
    for (const char* target :
         {"/404/Kitchen.orvlibz", "/html/Kitchen.orvlibz", "/half/Kitchen.orvlibz", "/cut/Kitchen.orvlibz"})
        expectFailure({"import", server.url(target)}, server.url(target) + ": ");
    server.on("/Kitchen.orvlibz", FaultReply::ok(bytes));
    EXPECT_EQ(mProgram.run({"import", server.url("/Kitchen.orvlibz")}).status, 0);
}

TEST_F(ImportCommand, texturesThatCannotBePlacedLeaveTheLibraryAsItWas)
{
    mProgram.run({"import", writeKitchen()});
    const std::string former = "not an archive";
    mProgram.folder().write("root/textures/Kitchen.zip", former);
    expectFailure({"import", path("Kitchen.orvlibz")}, rootPath("textures/Kitchen.zip"));
}

TEST_F(ImportCommand, damagedTextureArchiveIsSetAside)
{
    mProgram.run({"import", writeKitchen()});
    const std::string textures = rootPath("textures/Kitchen.zip");
    std::string damaged = test::readFile(textures);
    damaged[damaged.find("oak.png") + 8] ^= 1; // in the data of the member
    mProgram.folder().write("root/textures/Kitchen.zip", damaged);
    test::ArchiveBuilder second;
    second.add("inside.orvlib", mDatabase);
    second.add("door.png", "door");
    const std::string archive = second.write(mProgram.folder(), "Kitchen.orvlibz").toNativeString();
    expectFailure({"import", archive}, textures + ": member \"textures/oak.png\": ");
    expectFailure({"import", "--dry-run", archive}, "--set-aside");

    const ProgramResult result = mProgram.run({"--json", "import", "--set-aside", archive});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(test::readFile(textures + ".damaged"), damaged);
    EXPECT_EQ(test::contentsOf(fileString(textures)), (Contents{{"tile.jpg", "tile"}, {"door.png", "door"}}));
    EXPECT_EQ(mProgram.run({"undo"}).status, 0);
    EXPECT_EQ(test::readFile(textures), damaged);
    EXPECT_FALSE(fs::exists(textures + ".damaged"));
}

TEST_F(ImportCommand, damagedTextureArchivesAreKeptBesideEachOther)
{
    mProgram.run({"import", writeKitchen()});
    for (const char* name : {"Kitchen.zip.damaged", "Kitchen.zip.damaged.2"}) {
        mProgram.folder().write("root/textures/Kitchen.zip", "not an archive");
        const ProgramResult result = mProgram.run({"import", "--set-aside", path("Kitchen.orvlibz")});
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_EQ(test::readFile(rootPath(std::string("textures/") + name)), "not an archive");
        EXPECT_EQ(test::contentsOf(fileString(rootPath("textures/Kitchen.zip"))).size(), 2U);
    }
}

TEST_F(ImportCommand, damageInAFileThatIsReplacedDoesNotMatter)
{
    mProgram.run({"import", writeKitchen()});
    std::string damaged = test::readFile(rootPath("textures/Kitchen.zip"));
    damaged[damaged.find("oak.png") + 8] ^= 1; // in the data of the member
    mProgram.folder().write("root/textures/Kitchen.zip", damaged);
    const ProgramResult result = mProgram.run({"import", path("Kitchen.orvlibz")});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(test::contentsOf(fileString(rootPath("textures/Kitchen.zip"))),
              (Contents{{"textures/oak.png", "oak"}, {"tile.jpg", "tile"}}));
}

TEST_F(ImportCommand, unsafeNamesNeverLeaveTheFolders)
{
    for (const char* name : {"../../evil.png", "/evil.png", "a/../../evil.png"})
        mKitchen.add(name, "evil");
    mKitchen.add("../../evil.orvlib", test::sampleDatabase("evil"));
    const auto before = everything();
    const std::string archive = writeKitchen();
    EXPECT_EQ(mProgram.run({"import", archive}).status, 0);
    auto after = everything();
    for (auto file = after.begin(); file != after.end();)
        file = file->first.rfind("root/", 0) == 0 || file->first == "Kitchen.orvlibz" ? after.erase(file)
                                                                                      : ++file;
    EXPECT_EQ(after, before);
    EXPECT_EQ(test::readFile(rootPath("user/Kitchen.orvlib")), test::sampleDatabase("evil"));
    EXPECT_EQ(test::contentsOf(fileString(rootPath("textures/Kitchen.zip"))).size(), 2U);
}

TEST_F(ImportCommand, twoProcessesImportTheSameArchiveAtOnce)
{
    for (int i = 0; i < 200; ++i)
        mKitchen.add("many/" + std::to_string(i), test::sampleBytes(2000, static_cast<unsigned>(i)));
    const std::string archive = writeKitchen();
    for (int round = 0; round < 5; ++round) {
        const auto first = mProgram.start({"import", archive});
        const auto second = mProgram.start({"import", archive});
        for (const auto& process : {first.get(), second.get()}) {
            const ProgramResult result = test::Program::finish(*process);
            EXPECT_EQ(result.status, 0) << result.err;
        }
        EXPECT_EQ(test::readFile(rootPath("user/Kitchen.orvlib")), mDatabase);
        EXPECT_EQ(test::contentsOf(fileString(rootPath("textures/Kitchen.zip"))).size(), 202U);
        EXPECT_TRUE(test::listTree(rootPath("temp")).empty());
        EXPECT_EQ(test::listTree(rootPath("textures")), std::vector<std::string>{"Kitchen.zip"});
    }
}
