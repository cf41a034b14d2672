#include <iostream>

#include <QApplication>
#include <QCommandLineParser>
#include <QFile>

#include "OrvHost/AppHost.h"
#include "OrvLibrary/Manufacturer/ManufacturerManager.h"
#include "OrvLibrary/OrvLibraryVersion.h"
#include "OrvLibrary/Utility/Chooser.h"
#include "apps/orv-browser/LibraryActions.h"
#include "apps/orv-browser/MainWindow.h"
#include "apps/orv-browser/Translations.h"
#include "apps/orv-browser/activities/WindowMessages.h"

namespace {

std::string value(const QCommandLineParser& parser, const QString& option)
{
    return QFile::encodeName(parser.value(option)).toStdString();
}

ServiceOverrides overrides(const QCommandLineParser& parser)
{
    return {parser.value(QStringLiteral("url")), parser.value(QStringLiteral("product")),
            parser.value(QStringLiteral("product-version")), parser.values(QStringLiteral("bonus")),
            parser.values(QStringLiteral("manufacturer"))};
}

} // namespace

int main(int argc, char** argv)
{
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("orv-browser"));
    QApplication::setApplicationVersion(QStringLiteral(ORVLIBRARY_VERSION_STRING));
    Translations::install(application);

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Shows what a library holds and keeps it up to date."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOptions({
        {QStringLiteral("root"), QStringLiteral("Root of the well-known folders."), QStringLiteral("DIR")},
        {QStringLiteral("url"), QStringLiteral("Address of the catalog service."),
         QStringLiteral("REDIRECT")},
        {QStringLiteral("product"), QStringLiteral("What the service is told of the product."),
         QStringLiteral("P")},
        {QStringLiteral("product-version"), QStringLiteral("And of its version."), QStringLiteral("V")},
        {QStringLiteral("bonus"), QStringLiteral("One more bonus catalog to fetch; may be repeated."),
         QStringLiteral("NAME")},
        {QStringLiteral("manufacturer"),
         QStringLiteral("One more manufacturer catalog to fetch; may be repeated."), QStringLiteral("NAME")},
    });
    parser.process(application);

    try {
        OrvHost::AppHost::Settings settings;
        settings.root = fileString(value(parser, QStringLiteral("root")));
        OrvHost::AppHost host(settings);
        int status = 0;
        {
            WindowMessages messages;
            MainWindow window(host.root(), messages);
            window.library().overrideService(overrides(parser));
            window.show();
            window.library().start();
            status = QApplication::exec();
        }
        ManufacturerManager::cleanup();
        Library::Chooser::cleanup();
        return status;
    } catch (const std::exception& error) {
        std::cerr << "orv-browser: " << error.what() << std::endl;
        return 1;
    }
}
