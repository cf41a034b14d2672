#include "apps/common/TextFile.h"

#include <stdexcept>

#include <QFile>
#include <QSaveFile>

#include <unistd.h>

namespace {

[[noreturn]] void fail(const char* what, const fileString& path, const QFileDevice& file)
{
    throw std::runtime_error(std::string("cannot ") + what + " " + path.toNativeString() + ": " +
                             file.errorString().toStdString());
}

QString qtPath(const fileString& path)
{
    return QFile::decodeName(path.toNativeString().c_str());
}

} // namespace

std::string TextFile::read(const fileString& path)
{
    QFile file(qtPath(path));
    if (!file.open(QIODevice::ReadOnly))
        fail("read", path, file);
    const QByteArray content = file.readAll();
    if (file.error() != QFileDevice::NoError)
        fail("read", path, file);
    return content.toStdString();
}

void TextFile::write(const fileString& path, const std::string& content)
{
    QSaveFile file(qtPath(path));
    if (!file.open(QIODevice::WriteOnly))
        fail("write", path, file);
    file.write(content.data(), static_cast<qint64>(content.size()));
    // The class syncs too, but takes no notice of the sync's error.
    if (!file.flush() || fsync(file.handle()) != 0 || !file.commit())
        fail("write", path, file);
}
