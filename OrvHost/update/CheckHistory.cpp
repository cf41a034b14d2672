#include "OrvHost/update/CheckHistory.h"

#include <stdexcept>

#include <QJsonDocument>
#include <QJsonObject>

#include "OrvHost/TextFile.h"

namespace OrvHost {

namespace {

const char* const kFileName = "update-history.json";

QDateTime timeOf(const QJsonValue& value)
{
    return QDateTime::fromString(value.toString(), Qt::ISODateWithMs);
}

QJsonObject readObject(const fileString& path)
try {
    return QJsonDocument::fromJson(QByteArray::fromStdString(TextFile::read(path))).object();
} catch (const std::runtime_error&) {
    return {};
}

} // namespace

CheckHistory::CheckHistory(const fileString& root) : mPath(root / fileString(kFileName))
{
    const QJsonObject document = readObject(mPath);
    mLastAttempt = timeOf(document["lastAttempt"]);
    mLastError = document["error"].toString().toStdString();
    mLastGoodCheck = timeOf(document["lastGoodCheck"]);
    const QJsonObject answers = document["answers"].toObject();
    for (auto answer = answers.begin(); answer != answers.end(); ++answer) {
        const QJsonObject fields = answer.value().toObject();
        noteAnswer(answer.key().toStdString(), static_cast<std::int64_t>(fields["status"].toDouble()),
                   timeOf(fields["time"]), fields["reason"].toString().toStdString());
    }
}

void CheckHistory::save() const
{
    QJsonObject answers;
    for (const auto& [catalog, answer] : mAnswers) {
        QJsonObject fields{{"status", static_cast<qint64>(answer.status)},
                           {"time", answer.time.toString(Qt::ISODateWithMs)}};
        if (!answer.reason.empty())
            fields["reason"] = QString::fromStdString(answer.reason);
        answers[QString::fromStdString(catalog)] = fields;
    }
    QJsonObject document{{"answers", answers}};
    if (mLastAttempt.isValid())
        document["lastAttempt"] = mLastAttempt.toString(Qt::ISODateWithMs);
    if (!mLastError.empty())
        document["error"] = QString::fromStdString(mLastError);
    if (mLastGoodCheck.isValid())
        document["lastGoodCheck"] = mLastGoodCheck.toString(Qt::ISODateWithMs);
    TextFile::write(mPath, QJsonDocument(document).toJson().toStdString());
}

} // namespace OrvHost
