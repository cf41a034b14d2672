#include <csignal>
#include <filesystem>

#include "tests/orv-library/ImportFixture.h"
#include "tests/support/FaultServer.h"

namespace fs = std::filesystem;
using test::FaultReply;
using test::FaultServer;
using test::ProgramResult;

namespace {

class UnpackCommand : public ImportFixture
{
protected:
    UnpackCommand()
    {
        fs::create_directory(path("out"));
        fs::create_directory(path("tmp"));
        mProgram.setEnvironment("TMPDIR", path("tmp"));
    }

    test::ProgramResult unpack(const std::string& source, std::vector<std::string> more = {})
    {
        std::vector<std::string> arguments{"--json", "unpack", source};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return mProgram.run(arguments);
    }
};

QJsonObject found(const std::string& where)
{
    return {{"found", true}, {"path", QString::fromStdString(where)}};
}

} // namespace

TEST_F(UnpackCommand, resultsGetTheArchivesStemInTheOutputFolder)
{
    const ProgramResult result = unpack(writeKitchen(), {"--output-dir", path("out")});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.json(), (QJsonObject{{"library", found(path("out/Kitchen.orvlib"))},
                                          {"referenced", found(path("out/Kitchen.zip"))}}));
    EXPECT_EQ(test::readFile(path("out/Kitchen.orvlib")), mDatabase);
    EXPECT_EQ(test::contentsOf(fileString(path("out/Kitchen.zip"))),
              (Contents{{"textures/oak.png", "oak"}, {"tile.jpg", "tile"}}));
    EXPECT_TRUE(test::listTree(path("tmp")).empty());
    EXPECT_FALSE(fs::exists(mProgram.root()));
}

TEST_F(UnpackCommand, currentFolderIsTheDefault)
{
    mProgram.setWorkingFolder(path("out"));
    writeKitchen();
    const ProgramResult result = mProgram.run({"unpack", "../Kitchen.orvlibz"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "Library: " + path("out/Kitchen.orvlib") +
                              "\nReferenced files: " + path("out/Kitchen.zip") + "\n");
    EXPECT_EQ(test::listTree(path("out")), (std::vector<std::string>{"Kitchen.orvlib", "Kitchen.zip"}));
}

TEST_F(UnpackCommand, besideWritesNextToTheArchive)
{
    const ProgramResult result = unpack(writeKitchen("out/K\xC3\xBC"
                                                     "che 1.orvlibz"),
                                        {"--beside"});
    EXPECT_EQ(result.json(), (QJsonObject{{"library", found(path("out/K\xC3\xBC"
                                                                 "che 1.orvlib"))},
                                          {"referenced", found(path("out/K\xC3\xBC"
                                                                    "che 1.zip"))}}));
    EXPECT_EQ(test::listTree(path("out")).size(), 3U);
}

TEST_F(UnpackCommand, filesBesideThatCannotBeWrittenAreNamed)
{
    const std::string archive = writeKitchen("out/Kitchen.orvlibz");
    const std::string left = ": cannot be written and was left as it was";
    mProgram.folder().write("out/Kitchen.orvlib", "old");
    fs::permissions(path("out/Kitchen.orvlib"), fs::perms::owner_read);
    const ProgramResult half = unpack(archive, {"--beside"});
    EXPECT_EQ(half.status, 0);
    EXPECT_THAT(half.err, testing::EndsWith("orv-library: " + path("out/Kitchen.orvlib") + left + "\n"));
    EXPECT_EQ(half.json()["library"], (QJsonObject{{"found", false}, {"path", QJsonValue()}}));
    EXPECT_EQ(half.json()["referenced"], found(path("out/Kitchen.zip")));
    fs::permissions(path("out/Kitchen.zip"), fs::perms::owner_read);
    const ProgramResult none = unpack(archive, {"--beside"});
    EXPECT_EQ(none.status, 1);
    EXPECT_THAT(none.err,
                testing::HasSubstr(path("out/Kitchen.orvlib") + " and " + path("out/Kitchen.zip") + left));
    EXPECT_EQ(test::readFile(mProgram.folder().file("out/Kitchen.orvlib")), "old");
}

TEST_F(UnpackCommand, archiveWithoutEitherIsAFailureThatSaysSo)
{
    test::ArchiveBuilder().write(mProgram.folder(), "Empty.orvlibz");
    const ProgramResult result = unpack(path("Empty.orvlibz"), {"--output-dir", path("out")});
    EXPECT_EQ(result.status, 1);
    const QJsonObject none{{"found", false}, {"path", QJsonValue()}};
    const QString reason =
        QString::fromStdString(path("Empty.orvlibz")) + ": holds neither a library nor referenced files";
    EXPECT_EQ(result.json(), (QJsonObject{{"error", reason}, {"library", none}, {"referenced", none}}));
    EXPECT_THAT(result.err, testing::HasSubstr("Empty.orvlibz: holds neither"));
}

TEST_F(UnpackCommand, failureStillSaysWhatWasFound)
{
    const QJsonObject none{{"found", false}, {"path", QJsonValue()}};
    for (const std::vector<std::string>& more :
         {std::vector<std::string>{"--output-dir", path("out")}, std::vector<std::string>{"--beside"}}) {
        const ProgramResult result = unpack(path("none.orvlibz"), more);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.json(),
                  (QJsonObject{{"library", none},
                               {"referenced", none},
                               {"error", QString::fromStdString(path("none.orvlibz: no such file"))}}));
    }
    fs::create_directory(path("out/Kitchen.orvlib"));
    const QJsonObject half = unpack(writeKitchen(), {"--output-dir", path("out")}).json();
    EXPECT_EQ(half["library"], none);
    EXPECT_EQ(half["referenced"], found(path("out/Kitchen.zip")));
    EXPECT_TRUE(fs::exists(path("out/Kitchen.zip")));
}

TEST_F(UnpackCommand, wrongUsageChangesNothing)
{
    const std::string archive = writeKitchen();
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{"unpack"},
                                               {"unpack", archive, "--beside", "--output-dir", path("out")},
                                               {"unpack", "http://127.0.0.1:1/a.orvlibz", "--beside"},
                                               {"unpack", writeKitchen("a.zip"), "--beside"},
                                               {"unpack", writeKitchen("a.orvlib"), "--beside"}}) {
        expectFailure(arguments, "unpack", 2);
    }
}

TEST_F(UnpackCommand, wrongUsageMakesNoFolders)
{
    const std::string archive = writeKitchen("a.zip");
    for (const std::string& source : {std::string("http://127.0.0.1:1/a.orvlibz"), archive})
        EXPECT_EQ(unpack(source, {"--beside"}).status, 2);
    EXPECT_FALSE(fs::exists(mProgram.root()));
}

TEST_F(UnpackCommand, sourcesThatAreNoArchiveFailWithAClearLine)
{
    fs::create_symlink("loop.orvlibz", path("loop.orvlibz"));
    mProgram.folder().write("text.orvlibz", "no archive");
    for (const std::string& source : {path("none.orvlibz"), path("out"), std::string("/dev/zero"),
                                      path("loop.orvlibz"), path("text.orvlibz")}) {
        expectFailure({"unpack", source, "--output-dir", path("out")}, source + ": ");
        expectFailure({"unpack", source, "--beside"}, source + ": ");
    }
}

TEST_F(UnpackCommand, outputFolderMustBeAFolder)
{
    const std::string archive = writeKitchen();
    expectFailure({"unpack", archive, "--output-dir", path("none")}, path("none") + ": no such folder");
    expectFailure({"unpack", archive, "--output-dir", archive}, archive + ": no such folder");
    expectFailure({"unpack", archive, "--output-dir", "/proc/self"}, "cannot be written");
}

TEST_F(UnpackCommand, folderInTheWayIsNamed)
{
    fs::create_directory(path("out/Kitchen.zip"));
    expectFailure({"unpack", writeKitchen(), "--output-dir", path("out")},
                  path("out/Kitchen.zip") + ": is a folder");
}

TEST_F(UnpackCommand, archiveIsNeverReplacedByItsOwnResult)
{
    for (const char* name : {"out/Kitchen.zip", "out/Kitchen.orvlib"}) {
        const std::string archive = writeKitchen(name);
        expectFailure({"unpack", archive, "--output-dir", path("out")}, archive + ": is the archive itself");
        EXPECT_EQ(mProgram.run({"unpack", archive, "--output-dir", mProgram.folder().path()}).status, 0);
    }
}

TEST_F(UnpackCommand, addressIsDownloadedAndNamedAfterWhatItAsksFor)
{
    FaultServer server;
    server.otherwise([&](const test::FaultRequest&) { return FaultReply::ok(mKitchen.bytes()); });
    const std::vector<std::pair<std::string, std::string>> cases{
        {"/files/Kitchen%201.orvlibz", "Kitchen 1"},
        {"/content?&library=Kitchen.orvlibz&product=p", "Kitchen"},
        {"/content?library=%2Fetc%2FSauna.orvlibz", "Sauna"},
        {"/a/Bath.orvlibz?version=1#part", "Bath"}};
    for (const auto& [target, stem] : cases) {
        const ProgramResult result = unpack(server.url(target), {"--output-dir", path("out")});
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_TRUE(fs::exists(path("out/" + stem + ".orvlib"))) << stem;
        EXPECT_TRUE(test::listTree(path("tmp")).empty());
        EXPECT_FALSE(fs::exists(mProgram.root()));
    }
    EXPECT_EQ(test::listTree(path("out")).size(), 8U);
}

TEST_F(UnpackCommand, addressIsAskedForInUtf8)
{
    FaultServer server;
    const FaultReply reply = FaultReply::ok(mKitchen.bytes());
    server.otherwise([&reply](const test::FaultRequest&) { return reply; });
    const ProgramResult result = unpack(server.url("/K\xC3\xBC"
                                                   "che 1.orvlibz"),
                                        {"--output-dir", path("out")});
    EXPECT_EQ(result.status, 0) << result.err;
    ASSERT_EQ(server.requests().size(), 1u);
    EXPECT_EQ(server.requests()[0].target, "/K%C3%BCche%201.orvlibz");
    EXPECT_EQ(test::readFile(path("out/K\xC3\xBC"
                                  "che 1.orvlib")),
              mDatabase);
}

TEST_F(UnpackCommand, badAnswersFailWithTheAddressAndTheReason)
{
    FaultServer server;
    server.on("/404.orvlibz", FaultReply::status(404, "no such catalog"));
    server.on("/html.orvlibz", FaultReply::ok("<html>sign in</html>"));
    const std::string bytes = mKitchen.bytes();
    server.on("/half.orvlibz", FaultReply::ok(bytes.substr(0, bytes.size() / 2)));
    server.on("/cut.orvlibz", FaultReply::ok(bytes).cutAt(200));
    const std::vector<std::pair<std::string, std::string>> cases{{"/404.orvlibz", "HTTP 404"},
                                                                 {"/html.orvlibz", "not a zip archive"},
                                                                 {"/half.orvlibz", "not a zip archive"},
                                                                 {"/cut.orvlibz", ""},
                                                                 {"/", "names no library"}};
    for (const auto& [target, reason] : cases) {
        const std::string url = server.url(target);
        expectFailure({"unpack", url, "--output-dir", path("out")}, url + ": " + reason);
    }
}

TEST_F(UnpackCommand, interruptWhileDownloadingLeavesNothing)
{
    FaultServer server;
    server.on("/slow.orvlibz", FaultReply::ok(mKitchen.bytes()).silentAt(150));
    const auto process =
        mProgram.start({"--json", "unpack", server.url("/slow.orvlibz"), "--output-dir", path("out")});
    ASSERT_TRUE(server.waitForRequests(1));
    ::kill(static_cast<pid_t>(process->processId()), SIGINT);
    const ProgramResult result = test::Program::finish(*process);
    EXPECT_EQ(result.status, 130) << result.err;
    EXPECT_FALSE(result.json()["library"].toObject()["found"].toBool());
    EXPECT_TRUE(test::listTree(path("out")).empty());
    EXPECT_TRUE(test::listTree(path("tmp")).empty());
    EXPECT_FALSE(fs::exists(mProgram.root()));
}

TEST_F(UnpackCommand, interruptAfterTheResultChangesNothing)
{
    const std::string archive = writeKitchen();
    for (int i = 0; i < 20; ++i) {
        const auto process = mProgram.start({"--json", "unpack", archive, "--output-dir", path("out")});
        ASSERT_TRUE(process->waitForReadyRead(10000));
        ::kill(static_cast<pid_t>(process->processId()), SIGINT);
        const ProgramResult result = test::Program::finish(*process);
        ASSERT_EQ(result.status, 0) << result.err;
        ASSERT_TRUE(result.json()["library"].toObject()["found"].toBool());
    }
}

TEST_F(UnpackCommand, progressIsOneLineAStep)
{
    const ProgramResult result =
        mProgram.run({"--progress", "plain", "unpack", writeKitchen(), "--output-dir", path("out")});
    EXPECT_EQ(result.err, "reading\nputting in place\n");
}

TEST_F(UnpackCommand, noneIsSilent)
{
    const ProgramResult result =
        mProgram.run({"--progress", "none", "unpack", writeKitchen(), "--output-dir", path("out")});
    EXPECT_EQ(result.err, "");
}
