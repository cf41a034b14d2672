#include "OrvHost/update/RunRecords.h"

#include <cerrno>
#include <csignal>
#include <stdexcept>

#include <unistd.h>

#include <QJsonDocument>

#include "OrvHost/TextFile.h"
#include "OrvHost/history/CatalogNews.h"
#include "OrvHost/update/HostLock.h"

namespace OrvHost {

namespace {

constexpr int kMostRuns = 50;
/// A run that has not ended has this member: the process that runs it.
const QString kProcess = QStringLiteral("process");

fileString fileIn(const fileString& root)
{
    return root / fileString("runs.json");
}

/// Oldest first. None if there is no file, or another kind of file.
/// @throws std::runtime_error if the file cannot be read at this moment
QJsonArray read(const fileString& root)
{
    const fileString path = fileIn(root);
    if (!path.pathExists())
        return {};
    const QByteArray text = QByteArray::fromStdString(TextFile::read(path));
    return QJsonDocument::fromJson(text).object()["runs"].toArray();
}

void write(const fileString& root, QJsonArray runs)
{
    while (runs.size() > kMostRuns)
        runs.removeFirst();
    TextFile::write(fileIn(root), QJsonDocument(QJsonObject{{"runs", runs}}).toJson().toStdString());
}

bool isUnderWay(const QJsonObject& run)
{
    return run.contains(kProcess);
}

bool isProcessGone(const QJsonObject& run)
{
    const auto process = static_cast<pid_t>(run[kProcess].toInt());
    return process <= 0 || (kill(process, 0) != 0 && errno == ESRCH);
}

std::int64_t numberOf(const QJsonObject& run)
{
    return static_cast<std::int64_t>(run["number"].toDouble());
}

/// The end of a killed run is unknown.
void noteKilled(QJsonArray& runs)
{
    for (auto&& entry : runs) {
        QJsonObject run = entry.toObject();
        if (!isUnderWay(run) || !isProcessGone(run))
            continue;
        run.remove(kProcess);
        run["outcome"] = "killed";
        entry = run;
    }
}

} // namespace

QString RunRecords::timeText(const QDateTime& time)
{
    return time.toUTC().toString(QStringLiteral("yyyy-MM-ddTHH:mm:ssZ"));
}

std::int64_t RunRecords::begin(const fileString& root, const QString& kind, const QDateTime& start)
{
    const HostLock lock = HostLock::ofChange("runs");
    QJsonArray runs = read(root);
    noteKilled(runs);
    const std::int64_t last = runs.isEmpty() ? CatalogNews::lastRun(root) : numberOf(runs.last().toObject());
    const std::int64_t number = last + 1;
    runs.append(QJsonObject{{"number", static_cast<qint64>(number)},
                            {"start", timeText(start)},
                            {"end", QJsonValue()},
                            {"kind", kind},
                            {"outcome", "running"},
                            {"asked", 0},
                            {"fetched", 0},
                            {"bytes", 0},
                            {"failed", QJsonArray()},
                            {"catalogs", QJsonArray()},
                            {kProcess, static_cast<qint64>(getpid())}});
    write(root, runs);
    return number;
}

void RunRecords::end(const fileString& root, std::int64_t number, const QDateTime& end,
                     const QJsonObject& result)
{
    const HostLock lock = HostLock::ofChange("runs");
    QJsonArray runs = read(root);
    for (auto&& entry : runs) {
        QJsonObject run = entry.toObject();
        if (numberOf(run) != number)
            continue;
        run.remove(kProcess);
        run["end"] = timeText(end);
        for (auto member = result.begin(); member != result.end(); ++member)
            run[member.key()] = member.value();
        entry = run;
    }
    write(root, runs);
}

QJsonArray RunRecords::list(const fileString& root)
{
    QJsonArray ended;
    for (const QJsonValue entry : read(root)) {
        QJsonObject run = entry.toObject();
        run.remove("catalogs");
        if (!isUnderWay(run))
            ended.prepend(run);
    }
    return ended;
}

QJsonObject RunRecords::show(const fileString& root, std::int64_t number)
{
    for (const QJsonValue entry : read(root)) {
        const QJsonObject run = entry.toObject();
        if (numberOf(run) == number && !isUnderWay(run))
            return run;
    }
    throw std::runtime_error("there is no record of a run with the number " + std::to_string(number));
}

} // namespace OrvHost
