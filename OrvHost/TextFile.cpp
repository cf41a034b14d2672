#include "OrvHost/TextFile.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>

#include <QFile>

#include "OrvLibrary/host/LockingFStream.h"

namespace OrvHost {

namespace {

[[noreturn]] void failToRead(const fileString& path, const QFileDevice& file)
{
    throw std::runtime_error("cannot read " + path.toNativeString() + ": " +
                             file.errorString().toStdString());
}

} // namespace

std::string TextFile::read(const fileString& path)
{
    QFile file(QFile::decodeName(path.toNativeString().c_str()));
    if (!file.open(QIODevice::ReadOnly))
        failToRead(path, file);
    const QByteArray content = file.readAll();
    if (file.error() != QFileDevice::NoError)
        failToRead(path, file);
    return content.toStdString();
}

void TextFile::write(const fileString& path, const std::string& content)
{
    LockingFStream stream(path, std::ios_base::out | std::ios_base::trunc);
    if (stream.is_open()) {
        stream << content;
        stream.close();
    }
    if (stream.fail())
        throw std::runtime_error("cannot write " + path.toNativeString() + ": " + std::strerror(errno));
}

} // namespace OrvHost
