#include "tests/orv-library/Program.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <gtest/gtest.h>

namespace test {

namespace {

/// Long enough for sanitizers and a busy machine.
constexpr int kTimeoutMilliseconds = 120000;

QStringList toList(const std::vector<std::string>& arguments)
{
    QStringList list;
    for (const std::string& argument : arguments)
        list.append(QString::fromStdString(argument));
    return list;
}

/// Keeps only the variables for finding programs and for sanitizers and coverage.
QProcessEnvironment cleanEnvironment(const std::string& home)
{
    const QProcessEnvironment mine = QProcessEnvironment::systemEnvironment();
    QProcessEnvironment environment;
    for (const char* name : {"PATH", "LD_LIBRARY_PATH", "ASAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS",
                             "UBSAN_OPTIONS", "GCOV_PREFIX", "GCOV_PREFIX_STRIP"}) {
        if (mine.contains(name))
            environment.insert(name, mine.value(name));
    }
    environment.insert("HOME", QString::fromStdString(home));
    environment.insert("LC_ALL", "C.UTF-8");
    environment.insert("TZ", "UTC");
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    environment.insert("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent");
    return environment;
}

constexpr const char* kReadBefore = "readBefore"; ///< property of a process: the lines that were already read

/// The folder for the collected documents; empty if none are collected. Documents of an earlier test program
/// are removed.
const QString& documentFolder()
{
    static const QString folder = [] {
        const QString path = qEnvironmentVariable("ORV_DOCUMENTS");
        const bool isUsable = path.isEmpty() || (QDir(path).removeRecursively() && QDir().mkpath(path));
        EXPECT_TRUE(isUsable) << path.toStdString();
        return path;
    }();
    return folder;
}

void keepDocument(const QProcess& process, const ProgramResult& result)
{
    static int number = 0;
    const QStringList arguments = process.arguments();
    if (documentFolder().isEmpty() || !arguments.contains("--json"))
        return;
    const QString out = process.property(kReadBefore).toString() + QString::fromStdString(result.out);
    const QJsonObject kept{
        {"arguments", QJsonArray::fromStringList(arguments)}, {"status", result.status}, {"out", out}};
    QFile file(documentFolder() + "/" + QString::number(++number) + ".json");
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(QJsonDocument(kept).toJson()) > 0)
        << file.fileName().toStdString();
}

} // namespace

QJsonObject ProgramResult::json() const
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(QByteArray::fromStdString(out), &error);
    EXPECT_TRUE(document.isObject()) << error.errorString().toStdString() << " in: " << out << "\n" << err;
    return document.object();
}

Program::Program() : mEnvironment(cleanEnvironment(mFolder.path() + "/home"))
{
    mWorkingFolder = mFolder.path();
}

void Program::setEnvironment(const std::string& name, const std::string& value)
{
    mEnvironment.remove(QString::fromStdString(name));
    if (!value.empty())
        mEnvironment.insert(QString::fromStdString(name), QString::fromStdString(value));
}

ProgramResult Program::run(const std::vector<std::string>& arguments) const
{
    const std::unique_ptr<QProcess> process = start(arguments);
    return finish(*process);
}

ProgramResult Program::runBare(const std::vector<std::string>& arguments) const
{
    QProcess process;
    process.setProcessEnvironment(mEnvironment);
    process.setWorkingDirectory(QString::fromStdString(mWorkingFolder));
    process.start(ORV_LIBRARY_PROGRAM, toList(arguments));
    return finish(process);
}

std::unique_ptr<QProcess> Program::start(const std::vector<std::string>& arguments) const
{
    std::vector<std::string> all = {"--root", root()};
    all.insert(all.end(), arguments.begin(), arguments.end());
    auto process = std::make_unique<QProcess>();
    process->setProcessEnvironment(mEnvironment);
    process->setWorkingDirectory(QString::fromStdString(mWorkingFolder));
    process->start(ORV_LIBRARY_PROGRAM, toList(all));
    EXPECT_TRUE(process->waitForStarted(kTimeoutMilliseconds)) << process->errorString().toStdString();
    return process;
}

void Program::createRoot() const
{
    EXPECT_EQ(0, run({"paths", "--create"}).status);
}

ProgramResult Program::finish(QProcess& process)
{
    EXPECT_TRUE(process.state() == QProcess::NotRunning || process.waitForFinished(kTimeoutMilliseconds));
    ProgramResult result;
    if (process.state() == QProcess::NotRunning && process.exitStatus() == QProcess::NormalExit)
        result.status = process.exitCode();
    result.out = process.readAllStandardOutput().toStdString();
    result.err = process.readAllStandardError().toStdString();
    keepDocument(process, result);
    return result;
}

std::string Program::readLine(QProcess& process)
{
    while (!process.canReadLine()) {
        if (!process.waitForReadyRead(kTimeoutMilliseconds))
            return {};
    }
    const QByteArray line = process.readLine();
    process.setProperty(kReadBefore, process.property(kReadBefore).toString() + QString::fromUtf8(line));
    return line.trimmed().toStdString();
}

} // namespace test
