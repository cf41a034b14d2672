#include "tests/orv-browser/BrowserService.h"

#include <filesystem>

#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

#include "tests/support/TempFolder.h"

namespace test {

namespace {

constexpr int kMostMilliseconds = 60000;

} // namespace

BrowserService::BrowserService(const std::string& folder)
    : mContent(folder + "/content"), mManufacturerFolder(folder + "/manufacturers")
{
    static const TempFolder sample;
    if (listTree(sample.path()).empty())
        runProgram({"sample", QString::fromStdString(sample.path())});
    std::filesystem::copy(sample.path(), folder, std::filesystem::copy_options::recursive);
    const QString path = QString::fromStdString(folder);
    mProcess.start(ORV_LIBRARY_PROGRAM, {"serve", path});
    while (!mProcess.canReadLine() && mProcess.waitForReadyRead(kMostMilliseconds))
        continue;
    const QJsonObject addresses = QJsonDocument::fromJson(mProcess.readLine()).object();
    mRedirect = addresses["redirect"].toString();
    mManufacturers = addresses["manufacturers"].toString();
    mLogos = addresses["logos"].toString();
    EXPECT_FALSE(mRedirect.isEmpty()) << mProcess.readAllStandardError().toStdString();
}

BrowserService::~BrowserService()
{
    stop();
}

std::string BrowserService::manufacturerSettings() const
{
    return "{\"manufacturerDataUrl\": \"" + mManufacturers.toStdString() + "\", \"manufacturerLogoUrl\": \"" +
           mLogos.toStdString() + "\"}";
}

void BrowserService::stop()
{
    mProcess.kill();
    mProcess.waitForFinished(kMostMilliseconds);
}

void BrowserService::runProgram(const QStringList& arguments)
{
    QProcess program;
    program.start(ORV_LIBRARY_PROGRAM, arguments);
    ASSERT_TRUE(program.waitForFinished(kMostMilliseconds));
    EXPECT_EQ(program.exitCode(), 0) << program.readAllStandardError().toStdString();
}

} // namespace test
