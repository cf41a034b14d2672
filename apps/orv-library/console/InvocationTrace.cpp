#include "apps/orv-library/console/InvocationTrace.h"

#include <stdexcept>

#include <QJsonDocument>

InvocationTrace::InvocationTrace(const std::string& file)
{
    if (file.empty())
        return;
    mFile = std::make_unique<QFile>(QFile::decodeName(file.c_str()));
    // Unbuffered: the trace of a run that is killed ends with the last invocation before.
    if (!mFile->open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered))
        throw std::runtime_error("cannot write " + file + ": " + mFile->errorString().toStdString());
}

void InvocationTrace::write(const char* event, const QJsonArray& arguments)
{
    if (!mFile)
        return;
    // Written by hand around the arguments, because an object's members would be sorted by name.
    const QByteArray list = QJsonDocument(arguments).toJson(QJsonDocument::Compact);
    mFile->write(QByteArray("{\"event\":\"") + event + "\",\"args\":" + list + "}\n");
}
