#include "apps/orv-browser/activities/UpdateRequest.h"

OrvHost::CatalogUpdateRun::Request UpdateRequest::of(const OrvHost::Settings::Values& settings)
{
    OrvHost::CatalogUpdateRun::Request request;
    request.url = settings.url;
    request.product = settings.product;
    request.productVersion = settings.productVersion;
    request.bonus = settings.bonus;
    request.manufacturer = settings.manufacturer;
    request.access.certificates = settings.certificates;
    request.access.proxy = settings.proxy;
    request.access.limitRate = settings.limitRate;
    request.postponesOnMetered = settings.postponesOnMetered;
    request.retries = settings.retries;
    request.diskReserve = settings.diskReserve;
    request.history.versions = settings.historyVersions;
    request.history.bytes = settings.historyBytes;
    return request;
}
