#include "apps/orv-library/console/ByteText.h"

#include <QString>

std::string byteText(double bytes)
{
    const char* const units[] = {" bytes", " KB", " MB", " GB"};
    int unit = 0;
    for (; bytes >= 1000 && unit < 3; ++unit)
        bytes /= 1000;
    const QString number = QString::number(bytes, 'f', unit == 0 ? 0 : 1);
    return number.toStdString() + units[unit];
}
