#include "OrvHost/health/Masking.h"

#include <QDir>
#include <QRegularExpression>

#include <pwd.h>
#include <unistd.h>

namespace OrvHost {

namespace {

/// The user's names: that of the account and those in the environment. The pattern matches whole words only,
/// so a very short name does not break other words.
QStringList userNames()
{
    QStringList names{qEnvironmentVariable("USER"), qEnvironmentVariable("LOGNAME")};
    if (const passwd* account = getpwuid(getuid()))
        names << QString::fromLocal8Bit(account->pw_name);
    names.removeAll(QString());
    return names;
}

} // namespace

std::string Masking::withoutSecrets(const std::string& text)
{
    static const QRegularExpression kPassword(QStringLiteral(R"(://[^/@\s"'<>]*@)"));
    static const QRegularExpression kValue(
        QStringLiteral(R"(([?&](?:[\w-]*[_-])?(?:api)?(?:key|token|password|secret|auth)=)[^&\s"'#<>]*)"),
        QRegularExpression::CaseInsensitiveOption);
    QString masked = QString::fromStdString(text);
    masked.replace(kPassword, QStringLiteral("://***@"));
    masked.replace(kValue, QStringLiteral("\\1***"));
    return masked.toStdString();
}

std::string Masking::withoutNames(const std::string& text)
{
    QString masked = QString::fromStdString(withoutSecrets(text));
    const QString home = QDir::homePath();
    if (home.size() > 1)
        masked.replace(home, QStringLiteral("~"));
    static const QRegularExpression kOtherHomes(QStringLiteral(R"(/home/[^/\s"':]+)"));
    masked.replace(kOtherHomes, QStringLiteral("/home/USER"));
    for (const QString& name : userNames())
        masked.replace(QRegularExpression("\\b" + QRegularExpression::escape(name) + "\\b"),
                       QStringLiteral("USER"));
    return masked.toStdString();
}

} // namespace OrvHost
