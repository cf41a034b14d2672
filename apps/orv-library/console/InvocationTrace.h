#pragma once

#include <memory>
#include <string>

#include <QFile>
#include <QJsonArray>

/// Appends what the host object receives to a file, one JSON line each, as it arrives.
class InvocationTrace
{
public:
    /// @param file empty: nothing is written
    /// @throws std::runtime_error when the file cannot be opened for appending
    explicit InvocationTrace(const std::string& file);

    void write(const char* event, const QJsonArray& arguments);

private:
    std::unique_ptr<QFile> mFile;
};
