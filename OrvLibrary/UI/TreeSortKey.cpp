#include "OrvLibrary/UI/TreeSortKey_p.h"

#include "OrvLibrary/host/StringUtils.h"
#include "OrvLibrary/host/impl/text/UserLocale_p.h"

namespace Library {

namespace {

// Names are compared as UTF-8, which has no room for half a surrogate pair.
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
    return (mText.isSharedWith(text) || mText == text) && mLocale == locale;
}

bool TreeSortKey::operator<(const TreeSortKey& rhs) const
{
    // The collator puts the empty text before every other one, also before one that it ignores as a whole.
    if (mText.isEmpty() || rhs.mText.isEmpty())
        return mText.isEmpty() && !rhs.mText.isEmpty();
    return mKey.compare(rhs.mKey) < 0;
}

} // namespace Library
