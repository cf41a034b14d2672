#pragma once

#include <memory>
#include <string>
#include <vector>

#include <QJsonObject>
#include <QProcess>

#include "tests/support/TempFolder.h"

namespace test {

/// The result of one run of `orv-library`.
struct ProgramResult
{
    int status = -1; ///< exit status; -1 if a signal ended it or it did not end
    std::string out;
    std::string err;

    /// Parses standard output, which must be one JSON document. Fails the test if it is not.
    QJsonObject json() const;
};

/// The `orv-library` executable with a fresh root and a clean environment: no proxies, no user folders,
/// English texts, UTC.
///
/// If the environment variable ORV_DOCUMENTS names a folder, each run that prints a JSON document is recorded
/// there in a file with its arguments, status and output. A test compares these documents with docs/schemas.
class Program
{
public:
    Program();

    /// Runs the program with `--root` and these arguments until it ends.
    ProgramResult run(const std::vector<std::string>& arguments) const;
    /// Runs the program with only these arguments.
    ProgramResult runBare(const std::vector<std::string>& arguments) const;

    /// Starts the program with `--root` and returns at once. The caller ends it; otherwise the destructor of
    /// the process kills it.
    std::unique_ptr<QProcess> start(const std::vector<std::string>& arguments) const;
    /// Creates the root with its folders, which most commands require.
    void createRoot() const;
    /// Waits until a started program ends. Returns the output that was not read before.
    static ProgramResult finish(QProcess& process);
    /// Waits for the next line of standard output. Returns it without its line break.
    static std::string readLine(QProcess& process);

    /// Sets a variable; an empty value removes it.
    void setEnvironment(const std::string& name, const std::string& value);
    /// Sets the current folder of the runs. By default it is a fresh folder.
    void setWorkingFolder(const std::string& folder) { mWorkingFolder = folder; }

    /// The path without a final separator. The folder does not exist until the program creates it.
    std::string root() const { return mFolder.path() + "/root"; }
    /// A temporary folder beside the root.
    const TempFolder& folder() const { return mFolder; }

private:
    TempFolder mFolder;
    QProcessEnvironment mEnvironment;
    std::string mWorkingFolder;
};

} // namespace test
