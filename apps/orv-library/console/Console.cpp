#include "apps/orv-library/console/Console.h"

#include <cstdio>

#include <QJsonDocument>

#include "apps/orv-library/console/Interrupt.h"

namespace {

void print(std::FILE* stream, const std::string& text)
{
    std::fwrite(text.data(), 1, text.size(), stream);
    std::fflush(stream);
}

std::string line(const QJsonObject& document)
{
    return QJsonDocument(document).toJson(QJsonDocument::Compact).toStdString() + "\n";
}

QJsonObject withError(QJsonObject document, const std::string& reason)
{
    document["error"] = jsonText(reason);
    return document;
}

} // namespace

Console::Console(bool json) : mJson(json)
{
    resultSoFar({});
}

void Console::resultSoFar(const QJsonObject& document, const std::string& text)
{
    mSoFar = document;
    mTextSoFar = text;
    if (mJson)
        Interrupt::setLastWords(line(withError(document, "interrupted")));
}

void Console::result(const QJsonObject& document, const std::string& text)
{
    mHasResult = true;
    Interrupt::setLastWords({});
    if (mJson)
        print(stdout, line(document));
    else
        print(stdout, text);
}

void Console::failure(const std::string& reason)
{
    if (!mJson && !mHasResult)
        print(stdout, mTextSoFar);
    complain(reason);
    if (mJson && !mHasResult)
        result(withError(mSoFar, reason), {});
}

void Console::note(const std::string& line)
{
    print(mJson ? stderr : stdout, line + "\n");
}

void Console::complain(const std::string& line)
{
    print(stderr, "orv-library: " + line + "\n");
}

bool Console::flush()
{
    return std::fflush(stdout) == 0 && !std::ferror(stdout);
}

QString jsonText(const std::string& utf8)
{
    return QString::fromUtf8(utf8.data(), static_cast<int>(utf8.size()));
}
