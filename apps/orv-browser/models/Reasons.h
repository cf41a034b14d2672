#pragma once

#include <string>

#include <QCoreApplication>
#include <QStringList>

/// Says in the language of the window why something failed: the careful host, the library and the transfer
/// library give their reasons in English. A text that it does not know stays as it is. May be used on any
/// thread.
class Reasons
{
    Q_DECLARE_TR_FUNCTIONS(Reasons)

public:
    /// @param english such as "cannot read /root/filters.json: Permission denied"
    static QString text(const QString& english);
    /// @param english as UTF-8
    static QString text(const std::string& english) { return text(QString::fromStdString(english)); }
    static QString text(const char* english) { return text(QString::fromUtf8(english)); }
    /// The reasons that it knows, with %1 and so on for their parts.
    static QStringList known();
};
