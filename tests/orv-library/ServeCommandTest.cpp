#include <chrono>
#include <csignal>
#include <filesystem>

#include <QJsonDocument>
#include <gmock/gmock.h>

#include "OrvLibrary/host/Curl.h"
#include "tests/orv-library/Program.h"

using testing::HasSubstr;
using testing::StartsWith;

namespace test {

namespace {

class ServeCommand : public testing::Test
{
protected:
    ServeCommand()
    {
        program.folder().write("served/content/a.orvlib", "a");
        program.folder().write("served/manufacturers/manufacturer_data.json", "{}");
    }
    /// Starts the program and reads its first line.
    QJsonObject serve(const std::vector<std::string>& arguments)
    {
        process = program.start(arguments);
        const std::string line = Program::readLine(*process);
        return QJsonDocument::fromJson(QByteArray::fromStdString(line)).object();
    }
    static std::string text(const QJsonObject& document, const char* name)
    {
        return document.value(QLatin1String(name)).toString().toStdString();
    }

    Program program;
    std::string served = program.folder().path() + "/served";
    std::unique_ptr<QProcess> process;
};

} // namespace

TEST_F(ServeCommand, firstLineSaysWhereAndTheServiceIsThere)
{
    for (const bool json : {false, true}) {
        const QJsonObject document =
            json ? serve({"--json", "serve", served}) : serve({"serve", served, "--port", "0"});
        EXPECT_EQ(document.size(), 3);
        EXPECT_THAT(text(document, "redirect"), testing::MatchesRegex("http://127.0.0.1:[0-9]+/redirect"));
        EXPECT_THAT(text(document, "manufacturers"),
                    testing::MatchesRegex("http://127.0.0.1:[0-9]+/manufacturers\\?"));
        EXPECT_THAT(text(document, "logos"), testing::MatchesRegex("http://127.0.0.1:[0-9]+/logos\\?"));
        const std::string endpoint = Curl::get().urlAfterRedirects(text(document, "redirect"));
        EXPECT_THAT(endpoint, testing::EndsWith("/content?"));
        std::string body;
        EXPECT_TRUE(Curl::get().browseURL(endpoint + "&library=a.orvlib", {}, body, true, 0));
        EXPECT_EQ(body, "a");
        EXPECT_TRUE(Curl::get().browseURL(text(document, "manufacturers"), {}, body, true, 0));
        EXPECT_EQ(body, "{}");
    }
}

TEST_F(ServeCommand, signalsEndItWithStatus0)
{
    for (const int signal : {SIGINT, SIGTERM}) {
        const QJsonObject document = serve({"--json", "serve", served});
        // The client keeps its connection open, which must not delay the end.
        std::string body;
        EXPECT_TRUE(Curl::get().browseURL(text(document, "manufacturers"), {}, body, true, 0));
        kill(static_cast<pid_t>(process->processId()), signal);
        const ProgramResult result = Program::finish(*process);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, "");
    }
}

TEST_F(ServeCommand, missingFolderIsOneClearLine)
{
    const ProgramResult result = program.run({"serve", served + "/missing"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "orv-library: no such folder: " + served + "/missing\n");
}

TEST_F(ServeCommand, takenPortIsOneClearLine)
{
    const std::string redirect = text(serve({"serve", served}), "redirect");
    const std::string port = redirect.substr(17, redirect.rfind('/') - 17);
    const ProgramResult result = program.run({"serve", served, "--port", port});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "orv-library: cannot listen on 127.0.0.1 port " + port + "\n");
}

TEST_F(ServeCommand, addressIsUsed)
{
    EXPECT_THAT(text(serve({"serve", served, "--address", "127.0.0.2"}), "redirect"),
                StartsWith("http://127.0.0.2:"));
    const ProgramResult result = program.run({"serve", served, "--address", "192.0.2.1"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("192.0.2.1"));
}

TEST_F(ServeCommand, impossiblePortIsWrongUsage)
{
    for (const char* port : {"65536", "-1", "x"})
        EXPECT_EQ(program.run({"serve", served, "--port", port}).status, 2) << port;
    EXPECT_EQ(program.run({"serve"}).status, 2);
}

} // namespace test
