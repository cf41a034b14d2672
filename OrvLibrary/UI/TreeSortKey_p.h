#pragma once

#include <QCollator>
#include <QLocale>
#include <QString>

namespace Library {

/// A sort key for a name. Comparing two keys gives the same result as `StringUtils::compareStrings` without
/// letter case, but much faster. A key is valid for one text in one locale.
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
