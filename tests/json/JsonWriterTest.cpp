#include "OrvLibrary/json/json_writer.h"

#include <algorithm>
#include <clocale>
#include <cmath>
#include <cstring>
#include <limits>
#include <locale>
#include <map>
#include <random>

#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "OrvLibrary/json/json_file.h"
#include "OrvLibrary/json/json_reader.h"
#include "tests/json/JsonOracle.h"
#include "tests/support/TempFolder.h"

namespace {

using json_writer::Array;
using json_writer::Object;
using json_writer::Value;
using Node = json::grammar<char>::variant;

Node parse(const std::string& text)
{
    return json::parse(text.begin(), text.end());
}

template <class Type>
Type readBack(const Type& value)
{
    Object object;
    object.add_element("k", value);
    const Node root = parse(json_writer::toText(object));
    const auto* members = boost::any_cast<json::object>(root.get());
    const Type* held = members ? boost::any_cast<Type>(members->find("k")->second.get()) : nullptr;
    EXPECT_TRUE(held) << json_writer::toText(object);
    return held ? *held : Type();
}

/// Generates random documents. The same seed gives the same documents.
class Documents
{
public:
    Object object(int levels)
    {
        Object object;
        for (unsigned count = mRandom() % 5; count > 0; --count)
            addTo(levels, [&](const auto& value) { object.add_element(text(3), value); });
        return object;
    }

private:
    Array array(int levels)
    {
        Array array;
        for (unsigned count = mRandom() % 5; count > 0; --count)
            addTo(levels, [&](const auto& value) { array.add_element(value); });
        return array;
    }

    template <class Add>
    void addTo(int levels, const Add& add)
    {
        switch (mRandom() % (levels > 0 ? 7 : 5)) {
        case 0:
            return add(mRandom() % 2 == 0);
        case 1:
            return add(static_cast<int>(mRandom()));
        case 2:
            return add(static_cast<long>(static_cast<int>(mRandom())));
        case 3:
            return add(static_cast<double>(static_cast<int>(mRandom())) / 1024);
        case 4:
            return add(text(20));
        case 5:
            return add(object(levels - 1));
        default:
            return add(array(levels - 1));
        }
    }

    std::string text(unsigned longest)
    {
        std::string text;
        for (unsigned length = mRandom() % (longest + 1); length > 0; --length)
            text += static_cast<char>(mRandom());
        return text;
    }

    std::mt19937 mRandom;
};

bool isSame(const Value& written, const boost::any& read);

/// Whether the tree holds the written values. Among equal keys the one added last comes first.
struct SameValue : boost::static_visitor<bool>
{
    explicit SameValue(const boost::any& node) : read(node) {}

    template <class Type>
    bool operator()(const Type& value) const
    {
        const Type* const held = boost::any_cast<Type>(&read);
        return held && *held == value;
    }
    bool operator()(long value) const { return (*this)(static_cast<int>(value)); }
    bool operator()(double value) const
    {
        const auto* const held = boost::any_cast<double>(&read);
        return held && std::fabs(*held - value) <= 1e-15 * std::fabs(value);
    }
    bool operator()(const Array& array) const
    {
        const auto* const held = boost::any_cast<json::array>(&read);
        return held &&
               std::equal(array.elements().begin(), array.elements().end(), held->begin(), held->end(),
                          [](const Value& value, const Node& node) { return isSame(value, *node); });
    }
    bool operator()(const Object& object) const
    {
        const auto* const held = boost::any_cast<json::object>(&read);
        std::multimap<std::string, const Value*> members;
        for (auto member = object.members().rbegin(); member != object.members().rend(); ++member)
            members.emplace(member->first, &member->second);
        return held && std::equal(members.begin(), members.end(), held->begin(), held->end(),
                                  [](const auto& expected, const auto& found) {
                                      return expected.first == found.first &&
                                             isSame(*expected.second, *found.second);
                                  });
    }

    const boost::any& read;
};

bool isSame(const Value& written, const boost::any& read)
{
    return boost::apply_visitor(SameValue(read), written);
}

/// The text of a value without white space between the tokens. The value must not contain white space.
std::string compact(const Object& object)
{
    std::string text;
    for (const char character : json_writer::toText(object)) {
        if (character != ' ' && character != '\n')
            text += character;
    }
    return text;
}

/// The JSON text of one real number.
std::string realText(double value)
{
    Object object;
    object.add_element<double>("k", value);
    const std::string text = compact(object);
    return text.substr(5, text.size() - 6);
}

} // namespace

TEST(JsonWriter, membersKeepTheirOrderAndRepeat)
{
    Object object;
    object.add_element("b", std::string("x"));
    object.add_element<long>("a", 1);
    object.add_element("b", std::string("y"));
    EXPECT_EQ(compact(object), R"({"b":"x","a":1,"b":"y"})");
}

TEST(JsonWriter, emptyContainersAreWrittenEmpty)
{
    Object object;
    EXPECT_EQ(compact(object), "{}");
    object.add_element<Array>("a", Array());
    object.add_element<Object>("o", Object());
    EXPECT_EQ(compact(object), R"({"a":[],"o":{}})");
}

TEST(JsonWriter, addersKeepTheTypeOfTheirArgument)
{
    Object object;
    object.add_element<bool>("v", true);
    object.add_element<int>("v", 1);
    object.add_element<long>("v", 1);
    object.add_element<double>("v", 1);
    object.add_element("v", std::string());
    object.add_element<Object>("v", Object());
    object.add_element<Array>("v", Array());
    int tag = 0;
    for (const auto& member : object.members())
        EXPECT_EQ(member.second.which(), tag++);
    EXPECT_EQ(tag, 7);
}

TEST(JsonWriter, literalsAreTexts)
{
    Object object;
    object.add_element("k", "v");
    Array array;
    array.add_element("w");
    object.add_element("a", array);
    EXPECT_EQ(compact(object), R"({"k":"v","a":["w"]})");
}

TEST(JsonWriter, addedContainersAreCopies)
{
    Array array;
    array.add_element(std::string("one"));
    Object inner;
    inner.add_element("a", array);
    Object object;
    object.add_element<Array>("array", array);
    object.add_element<Object>("inner", inner);
    const Object copy = object;
    array.add_element(std::string("two"));
    inner.add_element("b", array);
    object.add_element("c", array);
    EXPECT_EQ(compact(copy), R"({"array":["one"],"inner":{"a":["one"]}})");
}

TEST(JsonWriter, aNestedDocumentThatIsMovedInIsTakenOver)
{
    Array array;
    for (int i = 0; i < 3; ++i)
        array.add_element(i);
    const Value* const first = &array.elements().front();
    Object object;
    object.add_element("list", std::move(array));
    const auto& taken = boost::get<Array>(object.members().front().second);
    EXPECT_EQ(&taken.elements().front(), first) << "nothing was copied";
    Array outer;
    outer.add_element(std::move(object));
    Array inner;
    inner.add_element(3);
    outer.add_element(std::move(inner));
    Object root;
    root.add_element("root", std::move(outer));
    EXPECT_EQ(
        json_writer::toText(root),
        "{\n  \"root\": [\n    {\n      \"list\": [\n        0,\n        1,\n        2\n      ]\n    },\n"
        "    [\n      3\n    ]\n  ]\n}\n");
    const std::string text = compact(root);
    root.add_element("self", std::move(root));
    EXPECT_EQ(compact(root), "{\"self\":" + text + "}");
}

TEST(JsonWriter, assignedContainersAreCopies)
{
    Array array;
    array.add_element(std::string("one"));
    Array otherArray;
    otherArray.add_element(std::string("former"));
    otherArray = array;
    array.add_element(std::string("two"));
    Object object;
    object.add_element<Array>("array", otherArray);
    Object otherObject;
    otherObject.add_element<long>("former", 1);
    otherObject = object;
    object.add_element("b", array);
    EXPECT_EQ(compact(otherObject), R"({"array":["one"]})");
}

TEST(JsonWriter, addingAnObjectToItselfAddsWhatItWas)
{
    Object object;
    object.add_element<long>("a", 1);
    object.add_element<Object>("self", object);
    EXPECT_EQ(compact(object), R"({"a":1,"self":{"a":1}})");
}

TEST(JsonWriter, keywordsAndIntegers)
{
    Object object;
    object.add_element<bool>("t", true);
    object.add_element<bool>("f", false);
    object.add_element<int>("i", std::numeric_limits<int>::min());
    object.add_element<long>("l", std::numeric_limits<long>::max());
    EXPECT_EQ(compact(object), R"({"t":true,"f":false,"i":-2147483648,"l":9223372036854775807})");
}

TEST(JsonWriter, longsAreReadBackAsInts)
{
    Object object;
    object.add_element<long>("k", -1);
    const Node root = parse(json_writer::toText(object));
    EXPECT_EQ(boost::any_cast<int>(*boost::any_cast<json::object>(*root).find("k")->second), -1);
}

TEST(JsonWriter, longBeyondAnIntMakesTheTextUnreadable)
{
    for (const long value : {2147483648L, -2147483649L}) {
        Object object;
        object.add_element<long>("k", value);
        EXPECT_TRUE(parse(json_writer::toText(object))->empty());
    }
}

TEST(JsonWriter, realsAlwaysHaveAPointOrAnExponent)
{
    EXPECT_EQ(realText(0), "0.0");
    EXPECT_EQ(realText(-0.0), "-0.0");
    EXPECT_EQ(realText(5), "5.0");
    EXPECT_EQ(realText(0.1), "0.1");
    EXPECT_EQ(realText(-2.5), "-2.5");
    EXPECT_EQ(realText(1e22), "1e+22");
    EXPECT_EQ(realText(1e-7), "1e-07");
    EXPECT_EQ(realText(123456789012.0), "123456789012.0");
    EXPECT_EQ(realText(1.7976931348623157e308), "1.7976931348623157e+308");
    EXPECT_EQ(realText(5e-324), "5e-324");
}

TEST(JsonWriter, realsAreWrittenExactlyAndReadBackNearly)
{
    std::mt19937_64 random(1);
    for (int i = 0; i < 20000; ++i) {
        const std::uint64_t bits = random();
        double value;
        std::memcpy(&value, &bits, sizeof value);
        if (!std::isnormal(value))
            continue;
        ASSERT_EQ(test::realOf(realText(value)), value);
        // The reader's conversion is imprecise at the ends of the range.
        if (std::fabs(value) > 1e-290 && std::fabs(value) < 1e290) {
            ASSERT_NEAR(readBack(value) / value, 1, 2e-15) << realText(value);
        }
    }
}

TEST(JsonWriter, documentsAreReadBackIntoTheSameTree)
{
    Documents documents;
    for (int i = 0; i < 3000; ++i) {
        const Object object = documents.object(4);
        const std::string text = json_writer::toText(object);
        ASSERT_TRUE(isSame(Value(object), *parse(text))) << text;
    }
}

TEST(JsonWriter, realsThatAreNotFiniteAreRefused)
{
    const test::TempFolder folder;
    const fileString path = folder.write("a.json", "old");
    for (const double value : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
        Array array;
        array.add_element<double>(value);
        Object object;
        object.add_element("k", array);
        EXPECT_THROW(json_writer::toText(object), std::domain_error);
        EXPECT_THROW(json_writer::write_file(path.toNativeString(), object), std::domain_error);
    }
    EXPECT_EQ(test::readFile(path), "old");
}

TEST(JsonWriter, quotesBackslashesAndControlsAreEscaped)
{
    Object object;
    object.add_element("\"k\\", std::string("a\"b\\c/\b\f\n\r\t\x01\x1F\x7F\0", 15));
    EXPECT_EQ(compact(object), R"({"\"k\\":"a\"b\\c/\b\f\n\r\t\u0001\u001f)"
                               "\x7F\\u0000\"}");
}

TEST(JsonWriter, everyByteIsReadBack)
{
    std::string all;
    for (int byte = 0; byte < 256; ++byte)
        all += static_cast<char>(byte);
    EXPECT_EQ(readBack(all), all);
    EXPECT_EQ(readBack(std::string("Möbel \xF0\x9F\x98\x80")), "Möbel \xF0\x9F\x98\x80");
    Object object;
    object.add_element(all, std::string());
    EXPECT_NE(json_writer::toText(object).find(R"(\u001f !\"#)"), std::string::npos);
    const Node root = parse(json_writer::toText(object));
    EXPECT_EQ(boost::any_cast<json::object>(*root).begin()->first, all);
}

TEST(JsonWriter, processLocaleChangesNothing)
{
    struct German : std::numpunct<char>
    {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    Object object;
    object.add_element<long>("l", 1234567);
    object.add_element<double>("d", 1234567.5);
    const std::string expected = compact(object);
    const test::TempFolder folder;
    const std::locale former = std::locale::global(std::locale(std::locale::classic(), new German));
    const std::string formerC = std::setlocale(LC_ALL, nullptr);
    std::setlocale(LC_ALL, "de_DE.UTF-8"); // if the machine has it
    json_writer::write_file(folder.file("a.json").toNativeString(), object);
    const Node root = json::readFile(folder.file("a.json"));
    std::setlocale(LC_ALL, formerC.c_str());
    std::locale::global(former);
    EXPECT_EQ(expected, R"({"l":1234567,"d":1234567.5})");
    EXPECT_EQ(test::readFile(folder.file("a.json")), json_writer::toText(object));
    EXPECT_EQ(boost::any_cast<double>(*boost::any_cast<json::object>(*root).find("d")->second), 1234567.5);
}

TEST(JsonWriter, fileIsReplacedAsAWhole)
{
    const test::TempFolder folder;
    const fileString path = folder.write("a.json", std::string(10000, 'x'));
    Object object;
    object.add_element("k", "v");
    json_writer::write_file(path.toNativeString(), object);
    EXPECT_EQ(test::readFile(path), "{\n  \"k\": \"v\"\n}\n");
    EXPECT_EQ(test::listTree(folder.path()), std::vector<std::string>{"a.json"});
}

TEST(JsonWriter, linkIsFollowed)
{
    const test::TempFolder folder;
    const fileString target = folder.write("target.json", "old");
    ASSERT_EQ(symlink("target.json", folder.file("link.json").toNativeString().c_str()), 0);
    json_writer::write_file(folder.file("link.json").toNativeString(), Object());
    EXPECT_EQ(test::readFile(target), "{}\n");
    struct stat status;
    ASSERT_EQ(lstat(folder.file("link.json").toNativeString().c_str(), &status), 0);
    EXPECT_TRUE(S_ISLNK(status.st_mode));
}

TEST(JsonWriter, failureToWriteThrowsAndLeavesNothing)
{
    const test::TempFolder folder;
    EXPECT_THROW(json_writer::write_file(folder.path() + "/no/such/folder.json", Object()),
                 std::runtime_error);
    EXPECT_THROW(json_writer::write_file(folder.path(), Object()), std::runtime_error);
    EXPECT_THROW(json_writer::write_file("", Object()), std::runtime_error);
    EXPECT_TRUE(test::listTree(folder.path()).empty());
}

TEST(JsonWriter, readOnlyFileIsRefused)
{
    const test::TempFolder folder;
    const fileString path = folder.write("a.json", "old");
    ASSERT_EQ(chmod(path.toNativeString().c_str(), 0444), 0);
    EXPECT_THROW(json_writer::write_file(path.toNativeString(), Object()), std::runtime_error);
    EXPECT_EQ(test::readFile(path), "old");
    EXPECT_EQ(test::listTree(folder.path()), std::vector<std::string>{"a.json"});
}
