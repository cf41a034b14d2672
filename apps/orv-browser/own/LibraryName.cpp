#include "apps/orv-browser/own/LibraryName.h"

#include <algorithm>

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include "OrvLibrary/host/PathUtils.h"

namespace {

constexpr int kMostBytes = 200; // so that the names of files beside it have room
constexpr int kMostLetters = 500;
const QString kEnding = QStringLiteral(".orvlib");

QString translated(const char* text)
{
    return QCoreApplication::translate("LibraryName", text);
}

/// The letter that no name may have; nothing when all are good.
QString badLetter(const QString& name, const QString& forbidden)
{
    const auto isBad = [&](QChar letter) {
        return letter.category() == QChar::Other_Control || letter.category() == QChar::Separator_Line ||
               letter.category() == QChar::Separator_Paragraph || forbidden.contains(letter);
    };
    const auto* const bad = std::find_if(name.begin(), name.end(), isBad);
    if (bad == name.end())
        return {};
    return bad->isPrint() ? QString(*bad)
                          : QStringLiteral("U+%1").arg(bad->unicode(), 4, 16, QLatin1Char('0')).toUpper();
}

QString problemOfText(const QString& name, const QString& forbidden)
{
    if (name.isEmpty())
        return translated(QT_TRANSLATE_NOOP("LibraryName", "A name is needed."));
    const QString bad = badLetter(name, forbidden);
    if (!bad.isEmpty())
        return translated(QT_TRANSLATE_NOOP("LibraryName", "The name must not hold %1.")).arg(bad);
    const bool isLong = name.size() > kMostLetters;
    if (isLong || !name.isValidUtf16())
        return isLong ? translated(QT_TRANSLATE_NOOP("LibraryName", "The name is too long."))
                      : translated(QT_TRANSLATE_NOOP("LibraryName", "The name holds half a letter."));
    return {};
}

} // namespace

QString LibraryName::cleaned(const QString& typed)
{
    return typed.trimmed().normalized(QString::NormalizationForm_C);
}

QString LibraryName::problemOf(const QString& name, const QStringList& taken)
{
    // Archives of libraries go to systems whose files can have none of these in their names.
    const QString problem = problemOfText(name, QStringLiteral("/\\:*?\"<>|"));
    if (!problem.isEmpty())
        return problem;
    if (name.startsWith(QLatin1Char('.')) || name.endsWith(QLatin1Char('.')))
        return translated(
            QT_TRANSLATE_NOOP("LibraryName", "The name must not begin or end with a full stop."));
    if (name.toUtf8().size() > kMostBytes)
        return translated(QT_TRANSLATE_NOOP("LibraryName", "The name is too long."));
    const auto key = [](const QString& one) { return cleaned(one).toCaseFolded(); };
    const bool isTaken = std::any_of(taken.begin(), taken.end(),
                                     [&](const QString& other) { return key(other) == key(name); });
    return isTaken ? translated(QT_TRANSLATE_NOOP("LibraryName", "There is a library of that name already."))
                   : QString();
}

QString LibraryName::problemOfEntry(const QString& name)
{
    return problemOfText(name, QString());
}

QStringList LibraryName::installed()
{
    const fileString folder = PathUtils::getObject().getUserLibraryDatabasePath();
    const QDir files(QFile::decodeName(folder.toNativeString().c_str()));
    QStringList names;
    for (const QString& file :
         files.entryList({QLatin1Char('*') + kEnding}, QDir::Files | QDir::Hidden | QDir::System))
        names << file.chopped(kEnding.size());
    return names;
}

fileString LibraryName::databaseOf(const QString& name)
{
    return PathUtils::getObject().getUserLibraryDatabasePath() / fileString((name + kEnding).toStdString());
}

QString LibraryName::nameOf(const fileString& database)
{
    return QString::fromStdString(database.stem().toNativeString());
}
