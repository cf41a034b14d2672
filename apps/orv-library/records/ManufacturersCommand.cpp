#include "apps/orv-library/records/ManufacturersCommand.h"

#include <QDateTime>
#include <QJsonArray>

#include "OrvHost/records/ManufacturerRefresh.h"
#include "OrvLibrary/Manufacturer/ManufacturerManager.h"
#include "OrvLibrary/host/TimeUtils.h"
#include "apps/orv-library/Session.h"
#include "apps/orv-library/update/ServiceOptions.h"

namespace {

using Table = OrvHost::ManufacturerRefresh::Table;

/// The manufacturer manager on the host's folders.
const ManufacturerManager& manager(Session& session)
{
    session.existingHost();
    return *ManufacturerManager::getManufacturerManager();
}

/// A time in the form of all documents; null if there is none. The file has the form "20261121T033512.25".
QJsonValue documentTime(const boost::posix_time::ptime& time)
{
    QDateTime parsed =
        QDateTime::fromString(jsonText(Library::toString(time).substr(0, 15)), "yyyyMMdd'T'HHmmss");
    parsed.setTimeSpec(Qt::UTC);
    return parsed.isValid() ? QJsonValue(parsed.toString(Qt::ISODate)) : QJsonValue();
}

QJsonObject document(long id, const Manufacturer& record, bool resolveDefault)
{
    return {{"id", static_cast<qint64>(id)},
            {"name", jsonText(record.getManufacturerName())},
            {"url", jsonText(record.getManufacturerUrl())},
            {"phone", jsonText(record.getManufacturerPhoneNumber(resolveDefault))},
            {"fax", jsonText(record.getManufacturerFaxNumber(resolveDefault))},
            {"email", jsonText(record.getManufacturerEmail(resolveDefault))},
            {"logo", jsonText(record.getManufacturerLogoName().toNativeString())},
            {"lock", record.isLocked()},
            {"deleted", record.isDeleted()},
            {"lastModified", documentTime(record.getLastModified())}};
}

/// The document for a record that does not exist.
QJsonObject unknownRecord(std::int64_t id)
{
    QJsonObject object{{"id", static_cast<qint64>(id)}};
    for (const char* member :
         {"name", "url", "phone", "fax", "email", "logo", "lock", "deleted", "lastModified"})
        object[member] = QJsonValue();
    return object;
}

/// The document until the file is read.
QJsonObject unknownRecords()
{
    return {{"lastModified", QJsonValue()}, {"defaultText", QJsonValue()}, {"manufacturers", QJsonArray()}};
}

QJsonObject document(const ManufacturerManager& manager, const Table& table)
{
    QJsonArray records;
    for (const auto& [id, record] : table)
        records.append(document(id, record, false));
    return {{"lastModified", documentTime(manager.getLastModified())},
            {"defaultText", jsonText(manager.getDefaultText())},
            {"manufacturers", records}};
}

std::string line(long id, const Manufacturer& record)
{
    return std::to_string(id) + "  " + record.getManufacturerName() +
           (record.isDeleted() ? "  (deleted)" : "") + (record.isLocked() ? "  (locked)" : "") + "\n";
}

std::string details(long id, const Manufacturer& record)
{
    return line(id, record) + "Url:    " + record.getManufacturerUrl() +
           "\nPhone:  " + record.getManufacturerPhoneNumber(true) +
           "\nFax:    " + record.getManufacturerFaxNumber(true) +
           "\nEmail:  " + record.getManufacturerEmail(true) +
           "\nLogo:   " + record.getManufacturerLogoName().toNativeString() +
           "\nChange: " + Library::toString(record.getLastModified()) + "\n";
}

/// The kinds of change, each with its ids.
std::vector<std::pair<const char*, const std::vector<long>*>>
kinds(const OrvHost::ManufacturerRefresh::Changes& changes)
{
    return {{"added", &changes.added},
            {"removed", &changes.removed},
            {"newer", &changes.newer},
            {"older", &changes.older},
            {"changed", &changes.changed}};
}

QJsonObject document(const OrvHost::ManufacturerRefresh::Changes& changes)
{
    QJsonObject object;
    for (const auto& [kind, ids] : kinds(changes)) {
        QJsonArray array;
        for (const long id : *ids)
            array.append(static_cast<qint64>(id));
        object[kind] = array;
    }
    return object;
}

std::string text(const OrvHost::ManufacturerRefresh::Changes& changes)
{
    std::string lines;
    for (const auto& [kind, ids] : kinds(changes)) {
        if (ids->empty())
            continue;
        lines += std::string(kind) + ":";
        for (const long id : *ids)
            lines += " " + std::to_string(id);
        lines += "\n";
    }
    return lines.empty() ? "Nothing has changed.\n" : lines;
}

/// The document if a refresh fails: the unchanged records.
void tellSoFar(Session& session, QJsonObject records)
{
    records["changes"] = document(OrvHost::ManufacturerRefresh::Changes());
    session.console().resultSoFar(records);
}

/// @throws UsageError if there is neither
std::string chosen(const std::string& given, const std::string& setting, const std::string& option)
{
    if (given.empty() && setting.empty())
        throw UsageError(option + " is required, because no setting names the address");
    return given.empty() ? setting : given;
}

} // namespace

void ManufacturersCommand::declare(CommandSyntax& syntax)
{
    syntax.action("list", "Print all records, as they are stored").runs(list);
    CommandSyntax& one = syntax.action("show", "Print one record, with the default text for its contacts");
    one.argument("ID", mId, "Id of the manufacturer");
    one.runs([this](Session& session) { return show(session); });
    CommandSyntax& refreshing =
        syntax.action("refresh", "Fetch the records and their logos from the web service");
    refreshing.option("--data-url", mDataUrl, "U", "Address of the manufacturer file (default: as set)");
    refreshing.option("--logo-url", mLogoUrl, "U",
                      "Address to which the path of a logo is appended (default: as set)");
    refreshing.runs([this](Session& session) { return refresh(session); });
}

ExitStatus ManufacturersCommand::list(Session& session)
{
    session.console().resultSoFar(unknownRecords());
    const ManufacturerManager& records = manager(session);
    const Table table = OrvHost::ManufacturerRefresh::currentTable();
    std::string lines;
    for (const auto& [id, record] : table)
        lines += line(id, record);
    session.console().result(document(records, table), lines);
    return ExitStatus::Done;
}

ExitStatus ManufacturersCommand::show(Session& session) const
{
    session.console().resultSoFar(unknownRecord(mId));
    const ManufacturerManager& records = manager(session);
    if (!records.manufacturerExists(mId))
        throw CommandFailure("no manufacturer has the id " + std::to_string(mId));
    const Manufacturer& record = records.getManufacturer(mId);
    session.console().result(document(mId, record, true), details(mId, record));
    return ExitStatus::Done;
}

ExitStatus ManufacturersCommand::refresh(Session& session) const
{
    tellSoFar(session, unknownRecords());
    ServiceOptions options;
    options.complete(OrvHost::Settings::load(session.root()));
    const std::string dataUrl = chosen(mDataUrl, options.values().manufacturerDataUrl, "--data-url");
    const std::string logoUrl = chosen(mLogoUrl, options.values().manufacturerLogoUrl, "--logo-url");
    options.apply();
    tellSoFar(session, document(manager(session), OrvHost::ManufacturerRefresh::currentTable()));
    OrvHost::ManufacturerRefresh refresh(Curl::get());
    refresh.run(dataUrl, logoUrl);
    for (const std::string& failure : refresh.failedLogos())
        Console::complain(failure);
    QJsonObject result = document(manager(session), OrvHost::ManufacturerRefresh::currentTable());
    result["changes"] = document(refresh.changes());
    session.console().result(result, text(refresh.changes()));
    return ExitStatus::Done;
}
