// The window translates the reasons that OrvHost reports.
#include <algorithm>
#include <filesystem>

#include <QApplication>
#include <QLocale>
#include <QRegularExpression>
#include <QTranslator>

#include <gmock/gmock.h>

#include "apps/orv-browser/models/Reasons.h"
#include "tests/support/TempFolder.h"

namespace {

class BrowserReasonsTest : public testing::Test
{
protected:
    ~BrowserReasonsTest() override { QApplication::removeTranslator(&mGerman); }

    void speakGerman()
    {
        ASSERT_TRUE(mGerman.load(QLocale("de_DE"), "orvbrowser", "_", ":/orvbrowser/translations"));
        QApplication::installTranslator(&mGerman);
    }

    /// All quoted texts of at least two words in those OrvHost sources whose texts the window shows. The
    /// listed sources produce texts only for the command line.
    static QStringList textsOfTheHost()
    {
        const QStringList others{"health/Doctor",        "health/CertificateAdvice", "health/LibraryHealth",
                                 "health/SupportReport", "update/CheckOutcome",      "update/RunRecords",
                                 "ConsoleMessages"};
        const QRegularExpression quoted(R"("((?:[^"\\]|\\.)*)\")");
        QStringList texts;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(ORV_HOST_SOURCES)) {
            const QString path = QString::fromStdString(entry.path().string());
            const bool isOther = std::any_of(others.begin(), others.end(),
                                             [&](const QString& other) { return path.contains(other); });
            if (!path.endsWith(".cpp") || isOther)
                continue;
            const QString source = QString::fromStdString(test::readFile(entry.path().string()));
            for (const QString& line : source.split('\n')) {
                if (line.trimmed().startsWith("//") || line.startsWith("#include"))
                    continue;
                auto matches = quoted.globalMatch(line);
                while (matches.hasNext())
                    texts << matches.next().captured(1);
            }
        }
        return texts.filter(QRegularExpression("[a-z]+ [a-z]+"));
    }

private:
    QTranslator mGerman;
};

} // namespace

TEST_F(BrowserReasonsTest, areLeftAsTheyAreInEnglish)
{
    for (const QString& reason : Reasons::known())
        EXPECT_EQ(Reasons::text(reason), reason);
    EXPECT_EQ(Reasons::text("cannot read /root/x: Permission denied"),
              "cannot read /root/x: Permission denied");
}

TEST_F(BrowserReasonsTest, areGermanInGermanWithTheirPartsAndTheReasonsInThem)
{
    speakGerman();
    const std::pair<const char*, const char*> reasons[] = {
        {"cannot read /a/b: c: Permission denied", "/a/b kann nicht gelesen werden: c: Permission denied"},
        {"cannot read /a/b: Permission denied", "/a/b kann nicht gelesen werden: keine Berechtigung"},
        {"/a/x.orvlibz: the library in it is a damaged database: it is cut off",
         "/a/x.orvlibz: die Bibliothek darin ist eine beschädigte Datenbank: das Ende fehlt"},
        {"another version than announced: 5 bytes instead of 1,000",
         "eine andere Fassung als angekündigt: 5 statt 1,000 Bytes"},
        {"http://x/redirect answers with web pages (a login page?), not as a catalog service",
         "http://x/redirect antwortet mit Webseiten (einer Anmeldeseite?) und nicht wie ein Katalogdienst"},
        {"/r/settings.json: line 2, column 14: retries must be a number from 0 to 100",
         "/r/settings.json: Zeile 2, Spalte 14: retries muss eine Zahl von 0 bis 100 sein"},
        {"Could not resolve host: nowhere.example", "den Rechner nowhere.example gibt es nicht"},
        {"Failed to connect to 127.0.0.1 port 9 after 0 ms: Couldn't connect to server",
         "Keine Verbindung zu 127.0.0.1, Port 9, nach 0 ms: der Rechner nimmt keine Verbindung an"},
        {"Operation timed out after 5000 milliseconds with 12 out of 40 bytes received",
         "nach 5000 Millisekunden abgebrochen; 12 von 40 Bytes waren da"},
        {"Operation too slow. Less than 1 bytes/sec transferred the last 60 seconds",
         "zu langsam: weniger als 1 Bytes je Sekunde in den letzten 60 Sekunden"},
        {"SSL certificate problem: unable to get local issuer certificate",
         "das Zertifikat des Dienstes gilt nicht: sein Aussteller ist hier nicht bekannt"},
        {"SSL: no alternative certificate subject name matches target host name 'a.example'",
         "das Zertifikat gilt nicht für a.example"},
        {"Recv failure: Connection reset by peer",
         "Empfang abgebrochen: die Gegenseite hat die Verbindung abgebrochen"},
        {"Maximum (10) redirects followed", "mehr als 10 Weiterleitungen"},
        {"CONNECT tunnel failed, response 407", "der Proxy antwortet mit HTTP 407"},
        {"end of response with 12 bytes missing", "die Antwort endete 12 Bytes zu früh"},
        {"HTTP 503", "HTTP 503"},
        {"something that nobody foresaw", "something that nobody foresaw"},
    };
    for (const auto& [english, german] : reasons)
        EXPECT_EQ(Reasons::text(english), QString::fromUtf8(german)) << english;
}

TEST_F(BrowserReasonsTest, haveAGermanTextEach)
{
    speakGerman();
    for (const QString& reason : Reasons::known())
        EXPECT_NE(Reasons::text(reason), reason) << reason.toStdString();
}

TEST_F(BrowserReasonsTest, knowEveryTextOfTheHost)
{
    // These texts are never shown: SQL statements, step names that have separate texts, and words that the
    // code searches for in responses.
    const QRegularExpression inner(
        "^(SELECT |PRAGMA |SQLite format|putting in place$|HTTP/2 stream$|timed out$|"
        "too slow$|to connect$|o answer$|Empty reply$|Recv failure$|"
        "Send failure$|Catalog web service not found:$|a moment ago$|moment ago$)");
    const QStringList texts = textsOfTheHost();
    EXPECT_GE(texts.size(), 60);
    for (const QString& text : texts) {
        const QString part = text.trimmed();
        const auto known = Reasons::known();
        const bool isKnown = std::any_of(known.begin(), known.end(),
                                         [&](const QString& reason) { return reason.contains(part); });
        EXPECT_TRUE(isKnown || inner.match(part).hasMatch()) << part.toStdString();
    }
}
