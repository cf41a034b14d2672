#pragma once

#include <list>
#include <string>
#include <type_traits>
#include <utility>

#include <boost/variant.hpp>

/// Builds documents in memory, from the inside out, and writes each to a file in one call. All types are
/// plain values: adding and copying copy the whole subtree, unless it is moved, as in
/// `root.add_element("Filter", std::move(filter))`. One object belongs to one thread.
namespace json_writer {

class Object;
class Array;

/// A value in a document. The order of the types is that of `Value::which`.
using Value = boost::variant<bool, int, long, double, std::string, boost::recursive_wrapper<Object>,
                             boost::recursive_wrapper<Array>>;

/// Whether a document can hold exactly this type, so that nothing is converted.
template <class Type>
using IfAlternative = std::enable_if_t<std::is_same<Type, bool>::value || std::is_same<Type, int>::value ||
                                       std::is_same<Type, long>::value || std::is_same<Type, double>::value ||
                                       std::is_same<Type, std::string>::value ||
                                       std::is_same<Type, Object>::value || std::is_same<Type, Array>::value>;

/// Members, in the order in which they were added. A key may occur several times.
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
    /// These move the nested document instead of copying it. It is empty afterwards.
    void add_element(const std::string& key, Object&& value);
    void add_element(const std::string& key, Array&& value);

    const Members& members() const { return mMembers; }

private:
    Members mMembers;
};

/// Elements, in the order in which they were added.
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
    /// These move the nested document instead of copying it. It is empty afterwards.
    void add_element(Object&& value);
    void add_element(Array&& value);

    const Elements& elements() const { return mElements; }

private:
    Elements mElements;
};

/// The document as JSON. Integers have no point; reals have a point or an exponent, and enough digits to read
/// back the same value. Bytes from 0x80 up stay unchanged. The process's locale has no effect.
/// @throws std::domain_error for a real that is infinite or NaN
std::string toText(const Object& object);

/// Replaces the whole file. Until this is complete, and after a failure, the old content stays.
/// @param path UTF-8
/// @throws std::domain_error as in `toText`; std::runtime_error if the file cannot be written
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
