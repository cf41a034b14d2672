#include "apps/orv-browser/models/Reasons.h"

#include <vector>

#include <QRegularExpression>

namespace {

/// The first one that fits counts.
const char* const kKnown[] = {
    QT_TRANSLATE_NOOP("Reasons", "%1 answers with web pages (a login page?), not as a catalog service"),
    QT_TRANSLATE_NOOP("Reasons", "a web page instead of an answer"),
    QT_TRANSLATE_NOOP("Reasons", "a web page instead of a catalog"),
    QT_TRANSLATE_NOOP("Reasons", "another version than announced: %1 bytes instead of %2"),
    QT_TRANSLATE_NOOP("Reasons", "another version than announced: tag %1 instead of %2"),
    QT_TRANSLATE_NOOP("Reasons", "no answer"),
    QT_TRANSLATE_NOOP("Reasons", "the catalog web service was not found: %1"),
    QT_TRANSLATE_NOOP("Reasons", "the content index could not be fetched: %1"),
    QT_TRANSLATE_NOOP("Reasons", "no catalog could be checked: %1"),
    QT_TRANSLATE_NOOP("Reasons", "an error was written to the log"),
    QT_TRANSLATE_NOOP("Reasons", "it could not be installed"),
    QT_TRANSLATE_NOOP("Reasons", "the service did not tell its length, so that it was not fetched"),
    QT_TRANSLATE_NOOP("Reasons", "the service did not tell its version, so that it was not fetched"),
    QT_TRANSLATE_NOOP("Reasons", "less than a kilobyte has changed in all, which is not fetched"),
    QT_TRANSLATE_NOOP("Reasons", "it was not fetched, because an installation before it failed"),
    QT_TRANSLATE_NOOP("Reasons", "its newer version was not fetched: %1"),
    QT_TRANSLATE_NOOP("Reasons", "the hash file still lists %1"),
    QT_TRANSLATE_NOOP("Reasons", "no catalog is in the archive"),
    QT_TRANSLATE_NOOP("Reasons", "the new file %1"),
    QT_TRANSLATE_NOOP("Reasons", "the download failed"),
    QT_TRANSLATE_NOOP("Reasons", "is no database"),
    QT_TRANSLATE_NOOP("Reasons", "is a damaged database: it is cut off"),
    QT_TRANSLATE_NOOP("Reasons", "is a damaged database: %1"),
    QT_TRANSLATE_NOOP("Reasons", "cannot be read: %1"),
    QT_TRANSLATE_NOOP("Reasons", "another update is running on this root: %1 is locked"),
    QT_TRANSLATE_NOOP("Reasons", "another import is running on this root: %1 is locked"),
    QT_TRANSLATE_NOOP("Reasons", "cannot lock %1: another program is changing the settings"),
    QT_TRANSLATE_NOOP("Reasons", "cannot lock %1: another program is changing the filters"),
    QT_TRANSLATE_NOOP("Reasons", "cannot lock %1: another program is changing the manufacturers"),
    QT_TRANSLATE_NOOP("Reasons", "cannot lock %1: another program is changing the %2"),
    QT_TRANSLATE_NOOP("Reasons", "cannot lock %1: %2"),
    QT_TRANSLATE_NOOP("Reasons", "cannot keep the unreadable filter file as %1"),
    QT_TRANSLATE_NOOP("Reasons", "cannot keep the former file as %1"),
    QT_TRANSLATE_NOOP("Reasons", "cannot keep %1 as %2: %3"),
    QT_TRANSLATE_NOOP("Reasons", "cannot create the folder %1"),
    QT_TRANSLATE_NOOP("Reasons", "cannot create %1"),
    QT_TRANSLATE_NOOP("Reasons", "cannot read what came from %1"),
    QT_TRANSLATE_NOOP("Reasons", "cannot read %1: %2"),
    QT_TRANSLATE_NOOP("Reasons", "cannot read %1"),
    QT_TRANSLATE_NOOP("Reasons", "cannot write the hash file in %1"),
    QT_TRANSLATE_NOOP("Reasons", "cannot write %1: it was read-only; the next refresh may write it"),
    QT_TRANSLATE_NOOP("Reasons", "cannot write %1: %2"),
    QT_TRANSLATE_NOOP("Reasons", "cannot write %1"),
    QT_TRANSLATE_NOOP("Reasons", "cannot replace %1"),
    QT_TRANSLATE_NOOP("Reasons", "cannot move %1 to %2: %3"),
    QT_TRANSLATE_NOOP("Reasons", "cannot move %1 to %2"),
    QT_TRANSLATE_NOOP("Reasons", "cannot fetch %1: %2"),
    QT_TRANSLATE_NOOP("Reasons", "cannot understand %1: repair or remove it, which releases all catalogs"),
    QT_TRANSLATE_NOOP("Reasons", "cannot understand %1"),
    QT_TRANSLATE_NOOP("Reasons", "%1 answers no manufacturer file"),
    QT_TRANSLATE_NOOP("Reasons", "no filter has the id %1: %2"),
    QT_TRANSLATE_NOOP("Reasons", "another filter has the id %1"),
    QT_TRANSLATE_NOOP("Reasons", "another filter has the name %1; its id is %2"),
    QT_TRANSLATE_NOOP("Reasons", "%1: names no library"),
    QT_TRANSLATE_NOOP("Reasons", "%1: no such file"),
    QT_TRANSLATE_NOOP("Reasons", "%1: no such archive"),
    QT_TRANSLATE_NOOP("Reasons", "%1: is a folder"),
    QT_TRANSLATE_NOOP("Reasons", "%1: cannot be written"),
    QT_TRANSLATE_NOOP("Reasons", "%1: cannot be removed"),
    QT_TRANSLATE_NOOP("Reasons", "%1: cannot be put back"),
    QT_TRANSLATE_NOOP("Reasons", "%1: cannot be kept for a later undo"),
    QT_TRANSLATE_NOOP("Reasons", "%1: the damaged archive cannot be kept there"),
    QT_TRANSLATE_NOOP("Reasons", "%1: holds neither a library nor referenced files"),
    QT_TRANSLATE_NOOP("Reasons", "%1: the library in it %2"),
    QT_TRANSLATE_NOOP("Reasons", "%1: is no record of imports"),
    QT_TRANSLATE_NOOP("Reasons", "%1: another program is changing it"),
    QT_TRANSLATE_NOOP("Reasons", "%1: was changed after the import, and the change would be lost; to undo "
                                 "all the same, move the file away first"),
    QT_TRANSLATE_NOOP("Reasons", "%1: not enough memory"),
    QT_TRANSLATE_NOOP("Reasons", "there is no import to take back"),
    QT_TRANSLATE_NOOP("Reasons", "cancelled"),
    QT_TRANSLATE_NOOP("Reasons", "%1 has no former versions"),
    QT_TRANSLATE_NOOP("Reasons", "%1 has no former version '%2'"),
    QT_TRANSLATE_NOOP("Reasons", "no catalog is called '%1'"),
    QT_TRANSLATE_NOOP("Reasons", "'%1' can be %2"),
    QT_TRANSLATE_NOOP("Reasons", "'%1' is no setting"),
    QT_TRANSLATE_NOOP("Reasons", "'%1' is no http or https address"),
    QT_TRANSLATE_NOOP("Reasons", "'%1' is no proxy, such as http://proxy.example:3128"),
    QT_TRANSLATE_NOOP("Reasons", "'%1' is not a file name that ends in .orvlib"),
    QT_TRANSLATE_NOOP("Reasons", "%1 must be a number from %2 to %3"),
    QT_TRANSLATE_NOOP("Reasons", "%1 must be a number from %2 on"),
    QT_TRANSLATE_NOOP("Reasons", "%1 must be one line of UTF-8 text"),
    QT_TRANSLATE_NOOP("Reasons", "%1 must be a list of texts"),
    QT_TRANSLATE_NOOP("Reasons", "%1 must be a text"),
    QT_TRANSLATE_NOOP("Reasons", "%1 must be one object"),
    QT_TRANSLATE_NOOP("Reasons", "%1 must not be empty"),
    QT_TRANSLATE_NOOP("Reasons", "%1 needs a value"),
    QT_TRANSLATE_NOOP("Reasons", "%1 takes one value"),
    QT_TRANSLATE_NOOP("Reasons", "disk full: %1 needed, %2 free, %3 kept free"),
    QT_TRANSLATE_NOOP("Reasons", "write error: %1"),
    QT_TRANSLATE_NOOP("Reasons", "read error: %1"),
    QT_TRANSLATE_NOOP("Reasons", "the partial file is in use"),
    QT_TRANSLATE_NOOP("Reasons", "Resolving timed out after %1 milliseconds"),
    QT_TRANSLATE_NOOP("Reasons", "Connection timed out after %1 milliseconds"),
    QT_TRANSLATE_NOOP("Reasons", "Connection timeout after %1 ms"),
    QT_TRANSLATE_NOOP("Reasons",
                      "Operation timed out after %1 milliseconds with %2 out of %3 bytes received"),
    QT_TRANSLATE_NOOP("Reasons", "Operation timed out after %1 milliseconds with %2 bytes received"),
    QT_TRANSLATE_NOOP("Reasons",
                      "Operation too slow. Less than %1 bytes/sec transferred the last %2 seconds"),
    QT_TRANSLATE_NOOP("Reasons", "Timeout was reached"),
    QT_TRANSLATE_NOOP("Reasons", "Couldn't resolve host name"),
    QT_TRANSLATE_NOOP("Reasons", "Couldn't resolve proxy name"),
    QT_TRANSLATE_NOOP("Reasons", "Could not connect to server"),
    QT_TRANSLATE_NOOP("Reasons", "Server returned nothing (no headers, no data)"),
    QT_TRANSLATE_NOOP("Reasons", "Failed sending data to the peer"),
    QT_TRANSLATE_NOOP("Reasons", "Failure when receiving data from the peer"),
    QT_TRANSLATE_NOOP("Reasons", "Transferred a partial file"),
    QT_TRANSLATE_NOOP("Reasons", "transfer closed with outstanding read data remaining"),
    QT_TRANSLATE_NOOP("Reasons", "end of response with %1 bytes missing"),
    QT_TRANSLATE_NOOP("Reasons", "HTTP/2 stream %1 was not closed cleanly: %2 (err %3)"),
    QT_TRANSLATE_NOOP("Reasons",
                      "HTTP/2 stream %1 was not closed cleanly before end of the underlying stream"),
    QT_TRANSLATE_NOOP("Reasons", "Error in the HTTP2 framing layer"),
    QT_TRANSLATE_NOOP("Reasons", "Received HTTP/0.9 when not allowed"),
    QT_TRANSLATE_NOOP("Reasons", "Unsupported HTTP version in response"),
    QT_TRANSLATE_NOOP("Reasons", "Error while processing content unencoding: %1"),
    QT_TRANSLATE_NOOP("Reasons", "Unrecognized or bad HTTP Content or Transfer-Encoding"),
    QT_TRANSLATE_NOOP("Reasons", "Maximum (%1) redirects followed"),
    QT_TRANSLATE_NOOP("Reasons", "Number of redirects hit maximum amount"),
    QT_TRANSLATE_NOOP("Reasons", "Protocol \"%1\" not supported or disabled in libcurl"),
    QT_TRANSLATE_NOOP("Reasons", "Unsupported protocol"),
    QT_TRANSLATE_NOOP("Reasons", "URL using bad/illegal format or missing URL"),
    QT_TRANSLATE_NOOP("Reasons", "Received HTTP code %1 from proxy after CONNECT"),
    QT_TRANSLATE_NOOP("Reasons", "CONNECT tunnel failed, response %1"),
    QT_TRANSLATE_NOOP("Reasons", "Proxy CONNECT aborted"),
    QT_TRANSLATE_NOOP("Reasons", "Proxy CONNECT aborted due to timeout"),
    QT_TRANSLATE_NOOP("Reasons",
                      "SSL: no alternative certificate subject name matches target host name '%1'"),
    QT_TRANSLATE_NOOP("Reasons", "SSL: certificate subject name '%1' does not match target host name '%2'"),
    QT_TRANSLATE_NOOP("Reasons", "SSL peer certificate or SSH remote key was not OK"),
    QT_TRANSLATE_NOOP("Reasons", "unable to get local issuer certificate"),
    QT_TRANSLATE_NOOP("Reasons", "unable to verify the first certificate"),
    QT_TRANSLATE_NOOP("Reasons", "self-signed certificate in certificate chain"),
    QT_TRANSLATE_NOOP("Reasons", "self signed certificate in certificate chain"),
    QT_TRANSLATE_NOOP("Reasons", "self-signed certificate"),
    QT_TRANSLATE_NOOP("Reasons", "self signed certificate"),
    QT_TRANSLATE_NOOP("Reasons", "certificate has expired"),
    QT_TRANSLATE_NOOP("Reasons", "certificate is not yet valid"),
    QT_TRANSLATE_NOOP("Reasons", "certificate revoked"),
    QT_TRANSLATE_NOOP("Reasons", "SSL connect error"),
    QT_TRANSLATE_NOOP("Reasons", "OpenSSL SSL_connect: %1 in connection to %2"),
    QT_TRANSLATE_NOOP("Reasons", "OpenSSL SSL_read: %1"),
    QT_TRANSLATE_NOOP("Reasons", "error setting certificate file: %1"),
    QT_TRANSLATE_NOOP("Reasons", "error setting certificate verify locations: CAfile: %1 CApath: %2"),
    QT_TRANSLATE_NOOP("Reasons", "Problem with the SSL CA cert (path? access rights?)"),
    QT_TRANSLATE_NOOP("Reasons", "Out of memory"),
    QT_TRANSLATE_NOOP("Reasons", "Failed to connect to %1 port %2 after %3 ms: %4"),
    QT_TRANSLATE_NOOP("Reasons", "Failed to connect to %1 port %2: %3"),
    QT_TRANSLATE_NOOP("Reasons", "Couldn't connect to server"),
    QT_TRANSLATE_NOOP("Reasons", "Connection refused"),
    QT_TRANSLATE_NOOP("Reasons", "Could not resolve host: %1"),
    QT_TRANSLATE_NOOP("Reasons", "Could not resolve proxy: %1"),
    QT_TRANSLATE_NOOP("Reasons", "Empty reply from server"),
    QT_TRANSLATE_NOOP("Reasons", "Operation timed out after %1"),
    QT_TRANSLATE_NOOP("Reasons", "Operation too slow. %1"),
    QT_TRANSLATE_NOOP("Reasons", "Recv failure: %1"),
    QT_TRANSLATE_NOOP("Reasons", "Send failure: %1"),
    QT_TRANSLATE_NOOP("Reasons", "Connection reset by peer"),
    QT_TRANSLATE_NOOP("Reasons", "SSL certificate problem: %1"),
    QT_TRANSLATE_NOOP("Reasons", "no answer from %1 a moment ago: %2"),
    QT_TRANSLATE_NOOP("Reasons", "%1: line %2, column %3: %4"),
    QT_TRANSLATE_NOOP("Reasons", "must be one object"),
    QT_TRANSLATE_NOOP("Reasons", "transfer closed with %1 bytes remaining to read"),
    QT_TRANSLATE_NOOP("Reasons", "Permission denied"),
    QT_TRANSLATE_NOOP("Reasons", "Connection timed out"),
    QT_TRANSLATE_NOOP("Reasons", "Network is unreachable"),
    QT_TRANSLATE_NOOP("Reasons", "No route to host"),
    QT_TRANSLATE_NOOP("Reasons", "Broken pipe"),
    QT_TRANSLATE_NOOP("Reasons", "Operation not permitted"),
    QT_TRANSLATE_NOOP("Reasons", "Too many open files"),
    QT_TRANSLATE_NOOP("Reasons", "Cannot allocate memory"),
    QT_TRANSLATE_NOOP("Reasons", "Device or resource busy"),
    QT_TRANSLATE_NOOP("Reasons", "Disk quota exceeded"),
    QT_TRANSLATE_NOOP("Reasons", "File name too long"),
    QT_TRANSLATE_NOOP("Reasons", "Stale file handle"),
    QT_TRANSLATE_NOOP("Reasons", "No such file or directory"),
    QT_TRANSLATE_NOOP("Reasons", "No space left on device"),
    QT_TRANSLATE_NOOP("Reasons", "Is a directory"),
    QT_TRANSLATE_NOOP("Reasons", "Not a directory"),
    QT_TRANSLATE_NOOP("Reasons", "Read-only file system"),
    QT_TRANSLATE_NOOP("Reasons", "Input/output error"),
};

struct Pattern
{
    const char* source;
    QRegularExpression expression;
};

Pattern patternOf(const char* source)
{
    QString text = QRegularExpression::escape(QString::fromUtf8(source));
    text.replace(QRegularExpression(QStringLiteral(R"(\\%[1-9])")), QStringLiteral("(.+?)"));
    return {source, QRegularExpression(QRegularExpression::anchoredPattern(text),
                                       QRegularExpression::DotMatchesEverythingOption)};
}

const std::vector<Pattern>& patterns()
{
    static const std::vector<Pattern> all = [] {
        std::vector<Pattern> made;
        for (const char* source : kKnown)
            made.push_back(patternOf(source));
        return made;
    }();
    return all;
}

} // namespace

QString Reasons::text(const QString& english)
{
    for (const Pattern& pattern : patterns()) {
        const QRegularExpressionMatch match = pattern.expression.match(english);
        if (!match.hasMatch())
            continue;
        const QString translated = tr(pattern.source);
        QString result;
        for (int i = 0; i < translated.size(); ++i) {
            const int part = translated[i] == QLatin1Char('%') && i + 1 < translated.size()
                                 ? translated[i + 1].digitValue()
                                 : -1;
            if (part > 0 && part <= match.lastCapturedIndex()) {
                result += text(match.captured(part)); // a reason may hold another one
                ++i;
            } else
                result += translated[i];
        }
        return result;
    }
    return english;
}

QStringList Reasons::known()
{
    QStringList all;
    for (const char* source : kKnown)
        all << QString::fromUtf8(source);
    return all;
}
