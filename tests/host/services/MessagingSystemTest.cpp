#include "OrvLibrary/host/MessagingSystem.h"

#include <thread>
#include <vector>

#include <QMessageLogContext>
#include <QTranslator>

#include <gmock/gmock.h>

#include "OrvLibrary/host/impl/services/DefaultMessagingSystem_p.h"
#include "tests/support/RecordingServices.h"
#include "tests/support/StubServices.h"

using error::MessagingSystem;

namespace {

struct LogLine
{
    QtMsgType type;
    std::string category;
    std::string file;
    int line;
    std::string text;
};

std::vector<LogLine>* gLines = nullptr;

/// Captures log messages until the destructor.
class LogCapture
{
public:
    LogCapture()
    {
        gLines = &lines;
        mFormer = qInstallMessageHandler(
            [](QtMsgType type, const QMessageLogContext& context, const QString& text) {
                gLines->push_back({type, context.category, context.file ? context.file : "", context.line,
                                   text.toStdString()});
            });
    }
    ~LogCapture() { qInstallMessageHandler(mFormer); }

    std::vector<LogLine> lines;

private:
    QtMessageHandler mFormer;
};

} // namespace

TEST(MessagingSystem, fillsTheArgumentsIn)
{
    const std::string text =
        MessagingSystem::messageText(error::Message::kCannotWriteDataFile, "/a/100%.json", "", "")
            .toUTF8String();
    EXPECT_NE(text.find("\"/a/100%.json\""), std::string::npos) << text;
    EXPECT_EQ(text.find("%1%"), std::string::npos);
    EXPECT_EQ(MessagingSystem::messageText(error::Message::kPreferenceType, "all of it %2%", "", ""),
              "all of it %2%");
    EXPECT_FALSE(MessagingSystem::messageText(error::Message::kManufacturerMaterial, "", "", "").empty());
}

TEST(MessagingSystem, anUnknownNumberShowsTheArgumentsAlone)
{
    EXPECT_EQ(MessagingSystem::messageText(1, "a", "b", "c"), "a b c");
    EXPECT_EQ(MessagingSystem::messageText(1, "", "b", ""), "b");
    EXPECT_EQ(MessagingSystem::messageText(1, "", "", ""), "");
}

TEST(MessagingSystem, usesUpToThreeArgumentsInAnyOrder)
{
    const test::OneText table("%3%-%1%-%2%");
    EXPECT_EQ(MessagingSystem::messageText(5, "a", "b", "c"), "c-a-b");
}

TEST(MessagingSystem, aBrokenTranslationShowsItsRawText)
{
    for (const char* const broken : {"100%", "%", "%1", "%0%", "a %1% b %"}) {
        const test::OneText table(broken);
        EXPECT_NO_THROW(MessagingSystem::messageText(5, "a", "", "")) << broken;
    }
    const test::OneText table("100%");
    EXPECT_EQ(MessagingSystem::messageText(5, "a", "", ""), "100%");
}

TEST(MessagingSystem, aMissingArgumentIsEmpty)
{
    const test::OneText table("%1%%2%%3%%4%.");
    EXPECT_EQ(MessagingSystem::messageText(5, "a", "b", "c"), "abc.");
}

TEST(DefaultMessagingSystem, recordsInTheLibrarysCategoryByTrait)
{
    LogCapture capture;
    error::DefaultMessagingSystem system;
    system.notify("Manager.cpp", 12, error::ErrorMinimalTrait(), error::Message::kPreferenceType, "e", "",
                  "");
    system.notify("Manager.cpp", 13, error::WarningTrait(), error::Message::kPreferenceType, "w é %s", "",
                  "");
    system.notify("Manager.cpp", 14, error::InformationOnceTrait(), error::Message::kPreferenceType, "i", "",
                  "");
    ASSERT_EQ(capture.lines.size(), 3u);
    EXPECT_EQ(capture.lines[0].type, QtCriticalMsg);
    EXPECT_EQ(capture.lines[1].type, QtWarningMsg);
    EXPECT_EQ(capture.lines[2].type, QtInfoMsg);
    EXPECT_EQ(capture.lines[1].text, "w é %s");
    EXPECT_EQ(capture.lines[1].category, "orv.library");
    EXPECT_EQ(capture.lines[1].file, "Manager.cpp");
    EXPECT_EQ(capture.lines[1].line, 13);
}

TEST(DefaultMessagingSystem, showsAnInformationOncePerNumber)
{
    LogCapture capture;
    error::DefaultMessagingSystem system;
    const auto inform = [&](int number, const char* text) {
        system.notify("x.cpp", 1, error::InformationOnceTrait(), number, text, "", "");
    };
    inform(1, "first");
    inform(1, "again");
    inform(2, "other");
    system.notify("x.cpp", 1, error::WarningTrait(), 1, "warning", "", "");
    system.notify("x.cpp", 1, error::WarningTrait(), 1, "warning", "", "");
    ASSERT_EQ(capture.lines.size(), 4u);
    EXPECT_EQ(capture.lines[0].text, "first");
    EXPECT_EQ(capture.lines[1].text, "other");
}

TEST(DefaultMessagingSystem, showsAnInformationOnceWhenThreadsSendItTogether)
{
    LogCapture capture;
    error::DefaultMessagingSystem system;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int k = 0; k < 100; ++k)
                system.notify("x.cpp", 1, error::InformationOnceTrait(), 272032338, "", "", "");
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(capture.lines.size(), 1u);
}

TEST(MessagingSystem, installGivesTheFormerOneBack)
{
    MessagingSystem& first = MessagingSystem::control();
    test::RecordingMessagingSystem recorder;
    EXPECT_EQ(MessagingSystem::install(&recorder), nullptr);
    MessagingSystem::control().notify("x.cpp", 1, error::WarningTrait(), 9, "a", "b", "c");
    EXPECT_EQ(MessagingSystem::install(nullptr), &recorder);
    EXPECT_EQ(&MessagingSystem::control(), &first);
    const test::SentMessage expected{9, error::Trait::Kind::Warning, "a", "b", "c"};
    EXPECT_THAT(recorder.messages(), testing::ElementsAre(expected));
}
