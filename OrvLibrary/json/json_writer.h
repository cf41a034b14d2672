#pragma once

#include <list>
#include <string>
#include <type_traits>
#include <utility>

#include <boost/variant.hpp>

/// Documents that are built in memory, from the inside out, and written to a file in one call. Everything
/// here is a plain value: adding and copying copy the whole subtree, unless it is moved in, as by
/// `root.add_element("Filter", std::move(filter))`. One object belongs to one thread.
namespace json_writer {

class Object;
class Array;

/// A value of a document, tagged in this order.
using Value = boost::variant<bool, int, long, double, std::string, boost::recursive_wrapper<Object>,
                             boost::recursive_wrapper<Array>>;

/// Whether a document holds values of exactly this type, so that nothing is converted on the way in.
template <class Type>
using IfAlternative = std::enable_if_t<std::is_same<Type, bool>::value || std::is_same<Type, int>::value ||
                                       std::is_same<Type, long>::value || std::is_same<Type, double>::value ||
                                       std::is_same<Type, std::string>::value ||
                                       std::is_same<Type, Object>::value || std::is_same<Type, Array>::value>;

/// Members in the order in which they were added. A key may occur any number of times.
class Object
{
public:
    using Members = std::list<std::pair<std::string, Value>>;

    Object();
    ~Object();
    Object(const Object& other);
    Object& operator=(const Object& other);
    Object(Object&& other) noexcept;
    Object& operator=(Object&& other) noexcept;

    void add_element(const std::string& key, const std::string& value);
    template <class Type, class = IfAlternative<Type>>
    void add_element(const std::string& key, const Type& value);
    /// Take the nested document over instead of copying it; it is left empty.
    void add_element(const std::string& key, Object&& value);
    void add_element(const std::string& key, Array&& value);

    const Members& members() const { return mMembers; }

private:
    Members mMembers;
};

/// Elements in the order in which they were added.
class Array
{
public:
    using Elements = std::list<Value>;

    Array();
    ~Array();
    Array(const Array& other);
    Array& operator=(const Array& other);
    Array(Array&& other) noexcept;
    Array& operator=(Array&& other) noexcept;

    void add_element(const std::string& value);
    template <class Type, class = IfAlternative<Type>>
    void add_element(const Type& value);
    /// Take the nested document over instead of copying it; it is left empty.
    void add_element(Object&& value);
    void add_element(Array&& value);

    const Elements& elements() const { return mElements; }

private:
    Elements mElements;
};

/// The document as JSON: integers without a point, reals with a point or an exponent and with as many digits
/// as read back the same value, bytes from 0x80 up as they stand; the process's locale changes nothing.
/// @throws std::domain_error for a real that is infinite or not a number
std::string toText(const Object& object);

/// Replaces the file as a whole; until that is done the old content stands, and on failure it stays.
/// @param path UTF-8
/// @throws std::domain_error as `toText`; std::runtime_error when the file cannot be written
void write_file(const std::string& path, const Object& object);

template <class Type, class>
void Object::add_element(const std::string& key, const Type& value)
{
    mMembers.emplace_back(key, Value(value));
}

template <class Type, class>
void Array::add_element(const Type& value)
{
    mElements.emplace_back(value);
}

} // namespace json_writer
