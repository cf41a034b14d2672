#include "apps/orv-library/console/InvocationTrace.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>

#include <QJsonDocument>

#include "apps/orv-library/console/Console.h"

InvocationTrace::InvocationTrace(const std::string& file) : mPath(file)
{
    if (file.empty())
        return;
    mFile.open(file, std::ios::app | std::ios::binary);
    if (!mFile)
        throw std::runtime_error("cannot write " + file + ": " + std::strerror(errno));
}

void InvocationTrace::write(const char* event, const QJsonArray& arguments)
{
    if (!mFile.is_open() || !mFile)
        return;
    // Written by hand around the arguments, because an object's members would be sorted by name.
    const std::string list = QJsonDocument(arguments).toJson(QJsonDocument::Compact).toStdString();
    // Line by line: the trace of a run that is killed ends with the last invocation before.
    mFile << "{\"event\":\"" << event << "\",\"args\":" << list << "}\n" << std::flush;
    if (!mFile)
        Console::complain("the trace breaks off: cannot write " + mPath + ": " + std::strerror(errno));
}
