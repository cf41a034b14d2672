#include "OrvHost/update/ServiceAnswer.h"

#include <algorithm>
#include <charconv>

#include <QDateTime>

#include "OrvLibrary/host/WebUtils.h"

namespace OrvHost {

namespace {

constexpr std::int64_t kOk = 200;
constexpr std::int64_t kTooManyRequests = 429;
constexpr std::int64_t kUnavailable = 503;

/// The last value of a header, which is the one that the library uses.
std::optional<std::string> lastValue(const std::string& headerText, const char* name)
{
    WebUtils::HeaderMap headers;
    WebUtils::parseReturnHeader(headerText, headers);
    const auto header = headers.find(name);
    if (header == headers.end() || header->second.empty())
        return std::nullopt;
    return header->second.back();
}

std::optional<std::int64_t> number(const std::string& text)
{
    std::int64_t value = 0;
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    if (result.ec != std::errc() || result.ptr != end || value < 0)
        return std::nullopt;
    return value;
}

/// The text between the first and the last double quote; the whole text if there are no quotes. As in the
/// library, a closing quote at the very start stays.
std::string unquoted(const std::string& value)
{
    const std::size_t opening = value.find('"');
    std::string text = opening == std::string::npos ? value : value.substr(opening + 1);
    const std::size_t closing = text.rfind('"');
    if (closing != std::string::npos && closing >= 1)
        text.resize(closing);
    return text;
}

bool isBusy(const Curl::Answer& answer)
{
    return answer.status == kTooManyRequests || answer.status == kUnavailable;
}

/// Texts of the transfer library for failures that may pass.
bool isPassingText(const std::string& reason)
{
    const auto has = [&reason](const char* text) { return reason.find(text) != std::string::npos; };
    const char* const texts[] = {"timed out", "too slow",     "reset",        "Empty reply",
                                 "closed",    "Recv failure", "Send failure", "HTTP/2 stream",
                                 "refused",   "to connect",   "o answer"};
    return std::any_of(std::begin(texts), std::end(texts), has);
}

/// Numbers of the transfer library for such failures.
bool isPassingNumber(int errorNumber)
{
    constexpr int kNoConnection = 7, kHttp2 = 16, kCutBody = 18, kTimeOut = 28, kEmptyReply = 52,
                  kSendFailed = 55, kReceiveFailed = 56, kHttp2Stream = 92;
    constexpr int kPassing[] = {kNoConnection, kHttp2,      kCutBody,       kTimeOut,
                                kEmptyReply,   kSendFailed, kReceiveFailed, kHttp2Stream};
    return std::find(std::begin(kPassing), std::end(kPassing), errorNumber) != std::end(kPassing);
}

} // namespace

std::string ServiceAnswer::sentTag(const std::vector<std::string>& headerLines)
{
    const std::string name = "If-None-Match: ";
    for (const std::string& line : headerLines) {
        const std::size_t quotes = name.size() + 2;
        if (line.compare(0, name.size(), name) == 0 && line.size() >= quotes)
            return line.substr(name.size() + 1, line.size() - quotes);
    }
    return {};
}

std::optional<std::int64_t> ServiceAnswer::length(const std::string& headerText)
{
    const auto value = lastValue(headerText, "Content-Length");
    return value ? number(*value) : std::nullopt;
}

std::optional<std::string> ServiceAnswer::tag(const std::string& headerText)
{
    const auto value = lastValue(headerText, "ETag");
    if (!value)
        return std::nullopt;
    return unquoted(*value);
}

std::string ServiceAnswer::validator(const std::string& headerText)
{
    const std::string tag = lastValue(headerText, "ETag").value_or("");
    if (tag.size() > 2 && tag.front() == '"' && tag.back() == '"')
        return tag;
    return lastValue(headerText, "Last-Modified").value_or("");
}

std::optional<std::chrono::seconds> ServiceAnswer::retryAfter(const std::string& headerText)
{
    const auto value = lastValue(headerText, "Retry-After");
    if (!value)
        return std::nullopt;
    if (const auto seconds = number(*value))
        return std::chrono::seconds(std::min<std::int64_t>(*seconds, 1'000'000));
    QString text = QString::fromLatin1(value->c_str());
    const QDateTime date = QDateTime::fromString(text.replace("GMT", "+0000"), Qt::RFC2822Date);
    if (!date.isValid())
        return std::nullopt;
    return std::chrono::seconds(std::max<qint64>(QDateTime::currentDateTimeUtc().secsTo(date), 0));
}

bool ServiceAnswer::isWebPage(const Curl::Answer& answer)
{
    const QString type =
        QString::fromLatin1(lastValue(answer.headerText, "Content-Type").value_or("").c_str());
    const QString name = type.section(';', 0, 0).trimmed().toLower();
    return answer.status == kOk && (name == "text/html" || name == "application/xhtml+xml");
}

bool ServiceAnswer::isMarkup(const std::string& text)
{
    const std::string byteOrderMark = "\xef\xbb\xbf";
    const std::size_t begin =
        text.compare(0, byteOrderMark.size(), byteOrderMark) == 0 ? byteOrderMark.size() : 0;
    const std::size_t first = text.find_first_not_of(" \t\r\n", begin);
    return first != std::string::npos && text[first] == '<';
}

bool ServiceAnswer::isLeftAlone(const Curl::Answer& answer)
{
    return answer.status == 0 && answer.reason.find("a moment ago") != std::string::npos;
}

bool ServiceAnswer::isPassing(const Curl::Answer& answer)
{
    return isBusy(answer) || (answer.status == 0 && isPassingText(answer.reason) && !isLeftAlone(answer));
}

bool ServiceAnswer::isPassing(const Curl::Answer& answer, int errorNumber)
{
    return isBusy(answer) || (isPassingNumber(errorNumber) && !isLeftAlone(answer));
}

} // namespace OrvHost
