#include "OrvHost/TextFile.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>

#include <fcntl.h>

#include <QFile>

#include "OrvLibrary/host/LockingFStream.h"

namespace OrvHost {

std::string TextFile::read(const fileString& path)
{
    // A path that is not UTF-8 does not fit into Qt's text, so Qt gets the descriptor.
    const std::string name = path.toNativeString();
    const int descriptor = open(name.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor == -1)
        throw std::runtime_error("cannot read " + name + ": " + std::strerror(errno));
    QFile file;
    file.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle);
    const QByteArray content = file.readAll();
    if (file.error() != QFileDevice::NoError)
        throw std::runtime_error("cannot read " + name + ": " + file.errorString().toStdString());
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
