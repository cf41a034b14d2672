#include "OrvLibrary/json/json_writer.h"

#include <charconv>
#include <cmath>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "OrvLibrary/host/LockingFStream.h"

namespace json_writer {

namespace {

/// Appends values to a text, with each member or element on its own line.
class TextWriter : public boost::static_visitor<>
{
public:
    explicit TextWriter(std::string& text) : mText(text) {}

    void operator()(bool value) { mText += value ? "true" : "false"; }
    void operator()(int value) { integer(value); }
    /// Deliberate: written unchanged, although the reader accepts only 32 bits and will refuse the file.
    /// Kept by: JsonWriter.longBeyondAnIntMakesTheTextUnreadable
    void operator()(long value) { integer(value); }
    void operator()(double value);
    void operator()(const std::string& value) { quoted(value); }
    void operator()(const Object& object);
    void operator()(const Array& array);

private:
    void integer(long value) { mText += std::to_string(value); }
    void quoted(const std::string& value);
    void escaped(unsigned char character);
    void startLine() { mText.append(1, '\n').append(2 * mLevel, ' '); }

    std::string& mText;
    std::size_t mLevel = 0;
};

void TextWriter::operator()(double value)
{
    if (!std::isfinite(value))
        throw std::domain_error("a number that is not finite cannot be written");
    char digits[32];
    const auto end = std::to_chars(std::begin(digits), std::end(digits), value).ptr;
    const std::string number(digits, end);
    mText += number;
    if (number.find_first_of(".e") == std::string::npos)
        mText += ".0";
}

void TextWriter::escaped(unsigned char character)
{
    constexpr char kHex[] = "0123456789abcdef";
    constexpr std::string_view kCharacters = "\"\\\b\f\n\r\t";
    constexpr std::string_view kLetters = "\"\\bfnrt";
    mText += '\\';
    const auto known = kCharacters.find(static_cast<char>(character));
    if (known != std::string::npos)
        mText += kLetters[known];
    else
        mText.append("u00").append(1, kHex[character >> 4]).append(1, kHex[character & 15]);
}

void TextWriter::quoted(const std::string& value)
{
    mText += '"';
    for (const char character : value) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < 0x20 || byte == '"' || byte == '\\')
            escaped(byte);
        else
            mText += character;
    }
    mText += '"';
}

void TextWriter::operator()(const Object& object)
{
    mText += '{';
    ++mLevel;
    for (const auto& [key, value] : object.members()) {
        if (&key != &object.members().front().first)
            mText += ',';
        startLine();
        quoted(key);
        mText += ": ";
        boost::apply_visitor(*this, value);
    }
    --mLevel;
    if (!object.members().empty())
        startLine();
    mText += '}';
}

void TextWriter::operator()(const Array& array)
{
    mText += '[';
    ++mLevel;
    for (const Value& value : array.elements()) {
        if (&value != &array.elements().front())
            mText += ',';
        startLine();
        boost::apply_visitor(*this, value);
    }
    --mLevel;
    if (!array.elements().empty())
        startLine();
    mText += ']';
}

} // namespace

Object::Object() = default;
Object::~Object() = default;
Object::Object(const Object& other) = default;
Object& Object::operator=(const Object& other) = default;
Object::Object(Object&& other) noexcept = default;
Object& Object::operator=(Object&& other) noexcept = default;

void Object::add_element(const std::string& key, const std::string& value)
{
    mMembers.emplace_back(key, Value(value));
}

// Swaps the nested document into its place, which copies nothing. Takes it out first, because it may be the
// document that it is added to.
void Object::add_element(const std::string& key, Object&& value)
{
    Object taken(std::move(value));
    mMembers.emplace_back(key, Value(Object()));
    std::swap(boost::get<Object>(mMembers.back().second), taken);
}

void Object::add_element(const std::string& key, Array&& value)
{
    Array taken(std::move(value));
    mMembers.emplace_back(key, Value(Array()));
    std::swap(boost::get<Array>(mMembers.back().second), taken);
}

Array::Array() = default;
Array::~Array() = default;
Array::Array(const Array& other) = default;
Array& Array::operator=(const Array& other) = default;
Array::Array(Array&& other) noexcept = default;
Array& Array::operator=(Array&& other) noexcept = default;

void Array::add_element(const std::string& value)
{
    mElements.emplace_back(value);
}

void Array::add_element(Object&& value)
{
    Object taken(std::move(value));
    mElements.emplace_back(Object());
    std::swap(boost::get<Object>(mElements.back()), taken);
}

void Array::add_element(Array&& value)
{
    Array taken(std::move(value));
    mElements.emplace_back(Array());
    std::swap(boost::get<Array>(mElements.back()), taken);
}

std::string toText(const Object& object)
{
    std::string text;
    TextWriter writer(text);
    writer(object);
    text += '\n';
    return text;
}

void write_file(const std::string& path, const Object& object)
{
    const std::string text = toText(object);
    LockingFStream stream(fileString(path), std::ios_base::out | std::ios_base::trunc);
    stream.write(text.data(), static_cast<std::streamsize>(text.size()));
    stream.close();
    if (!stream)
        throw std::runtime_error("cannot write " + path);
}

} // namespace json_writer
