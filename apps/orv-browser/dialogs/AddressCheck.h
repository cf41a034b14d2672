#pragma once

#include <QCoreApplication>
#include <QString>

/// Checks whether a text is a usable address. May be used on any thread.
class AddressCheck
{
    Q_DECLARE_TR_FUNCTIONS(AddressCheck)

public:
    /// Why nothing can be downloaded from this address, in a sentence for people. For example, "foo" has no
    /// scheme and no host.
    /// @return empty for an http or https address with a host
    static QString problemOf(const QString& address);
};
