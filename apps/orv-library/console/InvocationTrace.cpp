#include "apps/orv-library/console/InvocationTrace.h"

#include <stdexcept>

#include <QJsonDocument>

InvocationTrace::InvocationTrace(const std::string& file)
{
    if (file.empty())
        return;
    mFile = std::make_unique<QFile>(QFile::decodeName(file.c_str()));
    // Unbuffered, so that the file is complete even if the program is killed.
    if (!mFile->open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered))
        throw std::runtime_error("cannot write " + file + ": " + mFile->errorString().toStdString());
}

void InvocationTrace::write(const char* event, const QJsonArray& arguments)
{
    if (!mFile)
        return;
    // Composed by hand, because a JSON object would sort its members by name.
    const QByteArray list = QJsonDocument(arguments).toJson(QJsonDocument::Compact);
    mFile->write(QByteArray("{\"event\":\"") + event + "\",\"args\":" + list + "}\n");
}
