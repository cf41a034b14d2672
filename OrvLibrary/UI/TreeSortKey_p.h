#pragma once

#include <QCollator>
#include <QLocale>
#include <QString>

namespace Library {

/// The place of a name in the browser's name order: comparing two keys gives what
/// `StringUtils::compareStrings`, without regard to letter case, says of the names, and much sooner. A key
/// holds for one text in one locale.
class TreeSortKey
{
public:
    /// The key of `text` in the calling thread's current locale.
    explicit TreeSortKey(const QString& text);

    bool isFor(const QString& text, const QLocale& locale) const;
    bool operator<(const TreeSortKey& rhs) const;

private:
    QString mText;
    QLocale mLocale;
    QCollatorSortKey mKey;
};

} // namespace Library
