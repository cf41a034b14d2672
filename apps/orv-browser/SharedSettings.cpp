#include "apps/orv-browser/SharedSettings.h"

#include <QCoreApplication>

#include "OrvHost/update/HostLock.h"
#include "OrvHost/update/ServiceAccess.h"
#include "OrvLibrary/host/Curl.h"
#include "apps/orv-browser/models/Reasons.h"

namespace {

void replace(std::string& value, const QString& override)
{
    if (!override.isEmpty())
        value = override.toStdString();
}

/// Names that cannot be the name of a file in the folder are left out.
void replace(std::vector<std::string>& names, const QStringList& override)
{
    if (override.isEmpty())
        return;
    names.clear();
    for (const QString& name : override) {
        if (!name.isEmpty() && !name.contains(QLatin1Char('/')))
            names.push_back(SharedSettings::catalogName(name));
    }
}

} // namespace

OrvHost::Settings::Values ServiceOverrides::over(OrvHost::Settings::Values values) const
{
    replace(values.url, serviceUrl);
    replace(values.product, product);
    replace(values.productVersion, productVersion);
    replace(values.bonus, bonusCatalogs);
    replace(values.manufacturer, manufacturerCatalogs);
    return values;
}

void ServiceOverrides::drop(const std::string& key)
{
    if (key == "url")
        serviceUrl.clear();
    else if (key == "product")
        product.clear();
    else if (key == "productVersion")
        productVersion.clear();
    else if (key == "bonus")
        bonusCatalogs.clear();
    else if (key == "manufacturer")
        manufacturerCatalogs.clear();
}

QString SharedSettings::reload()
try {
    mFile = OrvHost::Settings::load(mRoot);
    return {};
} catch (const std::exception& error) {
    mFile = OrvHost::Settings();
    return QCoreApplication::translate("SharedSettings", "The settings cannot be read: %1")
        .arg(Reasons::text(error.what()));
}

QString SharedSettings::apply() const
try {
    const OrvHost::Settings::Values values = this->values();
    OrvHost::ServiceAccess access;
    access.certificates = values.certificates;
    access.proxy = values.proxy;
    access.limitRate = values.limitRate;
    access.apply();
    Curl::setConnectionLimit(values.connections);
    return {};
} catch (const std::exception& error) {
    return QCoreApplication::translate("SharedSettings", "The certificates cannot be read: %1")
        .arg(Reasons::text(error.what()));
}

bool SharedSettings::change(const Changes& changes, QString& reason)
try {
    const OrvHost::HostLock lock = OrvHost::HostLock::ofChange("settings");
    OrvHost::Settings settings = OrvHost::Settings::load(mRoot);
    for (const auto& [key, texts] : changes) {
        if (texts.empty())
            settings.unset(key);
        else
            settings.set(key, texts);
    }
    if (!changes.empty())
        settings.save(mRoot);
    mFile = settings;
    for (const auto& [key, texts] : changes)
        mOverrides.drop(key);
    return true;
} catch (const std::exception& error) {
    reason = Reasons::text(error.what());
    return false;
}

std::string SharedSettings::catalogName(const QString& entered)
{
    const QString extension = QStringLiteral(".orvlib");
    return (entered.endsWith(extension) ? entered : entered + extension).toStdString();
}
