#pragma once

#include <memory>
#include <string>
#include <vector>

#include <QJsonObject>
#include <QProcess>

#include "tests/support/TempFolder.h"

namespace test {

/// What one run of `orv-library` gave.
struct ProgramResult
{
    int status = -1; ///< exit status; -1 when it did not end by itself
    std::string out;
    std::string err;

    /// Standard output as the one JSON document that it must be; fails the test when it is not.
    QJsonObject json() const;
};

/// The `orv-library` executable on a fresh root of its own, with a clean environment: no proxies, no user
/// folders, English texts, UTC.
///
/// Where the environment variable ORV_DOCUMENTS names a folder, each run that was asked for a document is
/// kept there: its arguments, status and output, a file each. Tests compare them with docs/schemas.
class Program
{
public:
    Program();

    /// Runs it to its end with `--root` first.
    ProgramResult run(const std::vector<std::string>& arguments) const;
    /// Runs it with these arguments alone.
    ProgramResult runBare(const std::vector<std::string>& arguments) const;

    /// Starts it with `--root` and returns at once; the caller ends it. It is killed at the end of the
    /// object.
    std::unique_ptr<QProcess> start(const std::vector<std::string>& arguments) const;
    /// Makes the root with its folders, as most commands need it.
    void createRoot() const;
    /// Waits for a started one and collects what it printed and was not read yet.
    static ProgramResult finish(QProcess& process);
    /// Waits for the next line of standard output; without its line break.
    static std::string readLine(QProcess& process);

    /// Adds or replaces a variable; an empty value removes it.
    void setEnvironment(const std::string& name, const std::string& value);
    /// The current folder of the runs: a fresh one, unless it is set.
    void setWorkingFolder(const std::string& folder) { mWorkingFolder = folder; }

    /// Without the final separator. The folder does not exist until the program makes it.
    std::string root() const { return mFolder.path() + "/root"; }
    /// A folder of the test's own beside the root.
    const TempFolder& folder() const { return mFolder; }

private:
    TempFolder mFolder;
    QProcessEnvironment mEnvironment;
    std::string mWorkingFolder;
};

} // namespace test
