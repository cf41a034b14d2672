#pragma once

#include <memory>
#include <string>

#include <QFile>
#include <QJsonArray>

/// Appends each call that the host object receives to a file, as one line of JSON.
class InvocationTrace
{
public:
    /// @param file if empty, nothing is written
    /// @throws std::runtime_error if the file cannot be opened for appending
    explicit InvocationTrace(const std::string& file);

    void write(const char* event, const QJsonArray& arguments);

private:
    std::unique_ptr<QFile> mFile;
};
