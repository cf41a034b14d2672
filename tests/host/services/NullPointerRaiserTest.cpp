#include "OrvLibrary/host/NullPointerRaiser.h"

#include <QString>
#include <gtest/gtest.h>

namespace {

TEST(NullPointerRaiser, throwsWithNameFileAndLine)
{
    try {
        NullPointerRaiser::Throw("gApp", "Some.cpp", 12);
        FAIL() << "nothing was thrown";
    } catch (const NullPointerError& error) {
        EXPECT_EQ(error.pointerName(), "gApp");
        EXPECT_STREQ(error.what(), "Null pointer: gApp (Some.cpp:12)");
    }
}

TEST(NullPointerRaiser, doesNotMindNullTexts)
{
    EXPECT_THROW(NullPointerRaiser::Throw(nullptr, nullptr, 0), NullPointerError);
}

TEST(NullPointerRaiser, isALogicErrorThatMayBeCopied)
{
    const NullPointerError error("name", "file", 1);
    const NullPointerError copy(error);
    EXPECT_EQ(copy.pointerName(), "name");
    EXPECT_STREQ(static_cast<const std::logic_error&>(copy).what(), error.what());
}

struct Report
{
    std::string file;
    int line = 0;
    int code = 0;
    std::string expression;
};
Report lastReport;

void keepReport(const char* file, int line, int code, const char* expression)
{
    lastReport = {file, line, code, expression};
}

TEST(NotifyAssert, tellsTheInstalledHandlerAndReturns)
{
    EXPECT_EQ(installAssertHandler(keepReport), nullptr);
    notifyAssert("Some.cpp", 12, 7, "count > 0");
    EXPECT_EQ(installAssertHandler(nullptr), &keepReport);
    EXPECT_EQ(lastReport.file, "Some.cpp");
    EXPECT_EQ(lastReport.line, 12);
    EXPECT_EQ(lastReport.code, 7);
    EXPECT_EQ(lastReport.expression, "count > 0");
}

QString lastCategory;
QString lastMessage;

void keepMessage(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    EXPECT_EQ(type, QtWarningMsg);
    lastCategory = context.category;
    lastMessage = message;
}

TEST(NotifyAssert, warnsInTheLoggingCategoryByDefault)
{
    const QtMessageHandler former = qInstallMessageHandler(keepMessage);
    notifyAssert("Some.cpp", 12, 7, "count > 0");
    qInstallMessageHandler(former);
    EXPECT_EQ(lastCategory, "orv.library");
    EXPECT_EQ(lastMessage, "Assertion failed: count > 0 (code 7, Some.cpp:12)");
}

} // namespace
