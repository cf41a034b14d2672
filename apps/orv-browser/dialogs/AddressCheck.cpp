#include "apps/orv-browser/dialogs/AddressCheck.h"

#include "OrvLibrary/host/Curl.h"

QString AddressCheck::problemOf(const QString& address)
{
    if (Curl::get().downloadable(address.toStdString()))
        return {};
    return tr("“%1” is no address of a service. An address begins with http:// or https:// and the name of "
              "a host.")
        .arg(address);
}
