#include "OrvHost/update/LastCheck.h"

#include <QJsonDocument>

#include "OrvHost/TextFile.h"
#include "OrvHost/update/RunRecords.h"

namespace OrvHost {

namespace {

fileString fileIn(const fileString& root)
{
    return root / fileString("last-check.json");
}

} // namespace

std::optional<LastCheck> LastCheck::load(const fileString& root)
try {
    const QByteArray text = QByteArray::fromStdString(TextFile::read(fileIn(root)));
    const QJsonObject object = QJsonDocument::fromJson(text).object();
    LastCheck last;
    last.time = QDateTime::fromString(object["time"].toString(), Qt::ISODate);
    last.exitStatus = object["status"].toInt(1);
    last.document = object["document"].toObject();
    if (!last.time.isValid() || last.document.isEmpty())
        return std::nullopt;
    return last;
} catch (const std::runtime_error&) {
    return std::nullopt;
}

void LastCheck::save(const fileString& root, const CheckOutcome& found)
{
    if (!found.isServiceReached)
        return;
    const QJsonObject object{{"time", RunRecords::timeText(QDateTime::currentDateTimeUtc())},
                             {"status", found.exitStatus()},
                             {"document", found.document()}};
    TextFile::write(fileIn(root), QJsonDocument(object).toJson().toStdString());
}

} // namespace OrvHost
