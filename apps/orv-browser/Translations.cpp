#include "apps/orv-browser/Translations.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

// The linker leaves out the resources of a static library unless they are named, outside of any namespace.
static void askForResources()
{
    Q_INIT_RESOURCE(orvbrowser);
}

namespace {

/// The user's language; English if the process has none.
QLocale language()
{
    const QLocale locale;
    return locale.language() == QLocale::C ? QLocale(QLocale::English, QLocale::UnitedStates) : locale;
}

void installFrom(QApplication& application, const QString& name, const QString& folder)
{
    auto* translator = new QTranslator(&application);
    if (translator->load(language(), name, QStringLiteral("_"), folder))
        QApplication::installTranslator(translator);
    else
        delete translator;
}

} // namespace

void Translations::install(QApplication& application)
{
    askForResources();
    installFrom(application, QStringLiteral("qtbase"),
                QLibraryInfo::location(QLibraryInfo::TranslationsPath));
    // English needs a translation, too, for its plural forms.
    installFrom(application, QStringLiteral("orvbrowser"), QStringLiteral(":/orvbrowser/translations"));
    if (QLocale().textDirection() == Qt::RightToLeft)
        QApplication::setLayoutDirection(Qt::RightToLeft);
}
