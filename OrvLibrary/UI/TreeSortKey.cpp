#include "OrvLibrary/UI/TreeSortKey_p.h"

#include "OrvLibrary/host/StringUtils.h"
#include "OrvLibrary/host/impl/text/UserLocale_p.h"

namespace Library {

namespace {

// The name as it is compared. Names are compared as UTF-8, which cannot hold half of a surrogate pair.
QString asCompared(const QString& text)
{
    return text.isValidUtf16() ? text : StringUtils::toQString(StringUtils::toStdString(text));
}

} // namespace

TreeSortKey::TreeSortKey(const QString& text)
    : mText(text), mKey(nameCollator(true).sortKey(asCompared(text)))
{
}

bool TreeSortKey::isFor(const QString& text, const QLocale& locale) const
{
    return mText == text && mLocale == locale;
}

bool TreeSortKey::operator<(const TreeSortKey& rhs) const
{
    // The collator sorts the empty text first, even before a text of which it ignores every character.
    if (mText.isEmpty() || rhs.mText.isEmpty())
        return mText.isEmpty() && !rhs.mText.isEmpty();
    return mKey.compare(rhs.mKey) < 0;
}

} // namespace Library
