#include "apps/orv-library/Console.h"

#include <cstdio>

#include <QJsonDocument>

namespace {

void print(std::FILE* stream, const std::string& text)
{
    std::fwrite(text.data(), 1, text.size(), stream);
    std::fflush(stream);
}

} // namespace

void Console::result(const QJsonObject& document, const std::string& text)
{
    mHasResult = true;
    if (mJson)
        print(stdout, QJsonDocument(document).toJson(QJsonDocument::Compact).toStdString() + "\n");
    else
        print(stdout, text);
}

void Console::failure(const std::string& reason)
{
    complain(reason);
    if (!mJson || mHasResult)
        return;
    QJsonObject document = mSoFar;
    document["error"] = jsonText(reason);
    result(document, {});
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
