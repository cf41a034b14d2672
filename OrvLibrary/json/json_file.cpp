#include "OrvLibrary/json/json_file.h"

#include <stdexcept>
#include <string>

#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/LockingFStream.h"

namespace json {

namespace {

std::string readText(const fileString& path)
{
    const std::int64_t size = FileUtils::fileSize(path);
    if (size < 0 || size > kLargestFile)
        throw std::runtime_error("no file that is read: " + path.toNativeString());
    LockingFStream stream(path, std::ios_base::in);
    if (!stream.is_open())
        throw std::runtime_error("cannot open " + path.toNativeString());
    stream.exceptions(std::ios_base::badbit);
    std::string text(static_cast<std::size_t>(size), '\0');
    stream.read(text.data(), size);
    text.resize(static_cast<std::size_t>(stream.gcount()));
    return text;
}

} // namespace

grammar<char>::variant readFile(const fileString& path)
{
    const std::string text = readText(path);
    return parse(text.begin(), text.end());
}

} // namespace json
