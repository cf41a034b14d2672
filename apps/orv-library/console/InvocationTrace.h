#pragma once

#include <fstream>
#include <string>

#include <QJsonArray>

/// Appends each call that the host object receives to a file, as one line of JSON.
class InvocationTrace
{
public:
    /// @param file if empty, nothing is written
    /// @throws std::runtime_error if the file cannot be opened for appending
    explicit InvocationTrace(const std::string& file);

    /// After a line that could not be written, which the user is told, there are no more.
    void write(const char* event, const QJsonArray& arguments);

private:
    std::string mPath;
    std::ofstream mFile;
};
