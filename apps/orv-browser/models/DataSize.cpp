#include "apps/orv-browser/models/DataSize.h"

#include <algorithm>

#include <QLocale>

namespace {

constexpr qint64 kThousand = 1000;

} // namespace

QString DataSize::text(qint64 bytes)
{
    return QLocale().formattedDataSize(bytes, 1, QLocale::DataSizeSIFormat);
}

QString DataSize::part(qint64 done, qint64 whole)
{
    const QLocale locale;
    qint64 unit = 1;
    while (whole / unit >= kThousand)
        unit *= kThousand;
    const double count = static_cast<double>(std::min(done, whole)) / static_cast<double>(unit);
    return tr("%1 of %2").arg(locale.toString(count, 'f', unit == 1 ? 0 : 1), text(whole));
}
