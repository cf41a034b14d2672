#include "OrvLibrary/json/json_file.h"

#include <stdexcept>
#include <string>

#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/LockingFStream.h"

namespace json {

namespace {

std::string readText(const fileString& path)
{
    if (FileUtils::fileSize(path) < 0)
        throw std::runtime_error("no file that is read: " + path.toNativeString());
    LockingFStream stream(path, std::ios_base::in);
    if (!stream.is_open())
        throw std::runtime_error("cannot open " + path.toNativeString());
    stream.exceptions(std::ios_base::badbit);
    // The size of the open file. The path may belong to another file by now.
    const std::streamoff size = stream.seekg(0, std::ios_base::end).tellg();
    if (size < 0 || size > kLargestFile)
        throw std::runtime_error("no file that is read: " + path.toNativeString());
    stream.seekg(0);
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
