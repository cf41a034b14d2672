#include "apps/catalog-service/ServiceMap.h"

#include <algorithm>

#include <QFile>

#include "OrvHost/TextFile.h"
#include "OrvLibrary/host/StringUtils.h"

namespace {

/// Whether nginx would not read the key as a name: "
/// " begins a pattern, and some words are its own.
bool isSpecialKey(const std::string& name)
{
    return name.front() == '~' || name == "default" || name == "include" || name == "hostnames" ||
           name == "volatile";
}

std::string quoted(const std::string& name)
{
    std::string text = isSpecialKey(name) ? "\"\\" : "\"";
    for (char c : name) {
        if (c == '"' || c == '\\')
            text += '\\';
        text += c;
    }
    return text + '"';
}

bool isAscii(const std::string& text)
{
    return std::all_of(text.begin(), text.end(), [](unsigned char c) { return c < 0x80; });
}

/// Reads the name in a line and sets `end` to its closing quote; false if the line has another form.
bool unquote(const std::string& line, std::string& name, std::size_t& end)
{
    if (line.empty() || line.front() != '"')
        return false;
    for (std::size_t i = 1; i < line.size(); ++i) {
        if (line[i] == '"') {
            end = i;
            return !name.empty();
        }
        if (line[i] == '\\' && i + 1 < line.size())
            ++i;
        name += line[i];
    }
    return false;
}

bool isHash(const std::string& text)
{
    return text.size() == 40 && text.find_first_not_of("0123456789abcdef") == std::string::npos;
}

} // namespace

namespace ServiceMap {

Map read(const std::string& path)
{
    Map map;
    QFile file(QFile::decodeName(path.c_str()));
    if (!file.open(QIODevice::ReadOnly))
        return map;
    while (!file.atEnd()) {
        const std::string line = file.readLine().toStdString();
        std::string name;
        std::size_t end = 0;
        if (unquote(line, name, end) && line.size() >= end + 42 && isHash(line.substr(end + 2, 40)))
            map[name] = line.substr(end + 2, 40);
    }
    return map;
}

void write(const std::string& path, const Map& map, bool alsoWindows1252)
{
    std::string text;
    for (const auto& [name, hash] : map) {
        text += quoted(name) + ' ' + hash + ";\n";
        const std::string legacy = StringUtils::toWin1252(name);
        if (alsoWindows1252 && !isAscii(name) && map.count(legacy) == 0)
            text += quoted(legacy) + ' ' + hash + ";\n";
    }
    OrvHost::TextFile::write(fileString(path), text);
}

} // namespace ServiceMap
