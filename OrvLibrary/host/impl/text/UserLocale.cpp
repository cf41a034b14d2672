#include "OrvLibrary/host/impl/text/UserLocale_p.h"

namespace {

struct Collators
{
    QLocale application; // the locale they were made for; comparing it is cheaper than asking for the user's
    QCollator exact = make(userLocale(), Qt::CaseSensitive);
    QCollator caseless = make(userLocale(), Qt::CaseInsensitive);

private:
    static QCollator make(const QLocale& locale, Qt::CaseSensitivity sensitivity)
    {
        QCollator collator(locale);
        collator.setNumericMode(true);
        collator.setCaseSensitivity(sensitivity);
        return collator;
    }
};

} // namespace

QLocale userLocale()
{
    const QLocale locale;
    return locale.language() == QLocale::C ? QLocale(QLocale::English, QLocale::UnitedStates) : locale;
}

const QCollator& nameCollator(bool ignoreCase)
{
    thread_local Collators tCollators;
    if (tCollators.application != QLocale())
        tCollators = Collators();
    return ignoreCase ? tCollators.caseless : tCollators.exact;
}
