#pragma once

#include <memory>
#include <string>
#include <vector>

#include "OrvLibrary/json/DeepTree_p.h"
#include "OrvLibrary/json/json_reader.h"

namespace json {

/// The parse stack of one call: takes what the rules recognise, in the order of the text, and makes the tree
/// of it. A container stands in its parent from the moment it is opened, so the stack holds no more than the
/// containers that are open; a text that fails throws the whole tree away.
///
/// Containers nest on this stack and not on that of the thread, so any depth takes the same room there.
class TreeBuilder
{
public:
    using Node = grammar<char>::variant;

    TreeBuilder();
    ~TreeBuilder();
    TreeBuilder(const TreeBuilder&) = delete;
    TreeBuilder& operator=(const TreeBuilder&) = delete;

    /// Where the rules put the string last recognised, unescaped, for `takeKey` and `addText`.
    std::string& text() { return mText; }

    bool isOpen() const { return !mOpen.empty(); }
    bool mayOpen() const { return mOpen.size() < static_cast<std::size_t>(kDeepestNesting); }
    /// Of the innermost open container.
    bool inArray() const { return mOpen.back().elements != nullptr; }
    bool isEmpty() const;
    char closer() const { return inArray() ? ']' : '}'; }

    void openObject();
    void openArray();
    void close() { mOpen.pop_back(); }
    void takeKey() { mKey.swap(mText); }
    void addText();
    void addDouble(double value);
    void addInt(int value);
    void addTrue();
    void addFalse();
    void addNull();

    /// Whether all there is so far is the root's opening brace.
    bool isLoneBrace() const;
    /// The tree, once its root is closed; null before. The builder is empty afterwards.
    Node takeTree();

private:
    /// An open container: exactly one of the pointers is set.
    struct Container
    {
        object* members;
        array* elements;
        object::iterator lastMember;
    };

    boost::any& add(Node node);
    void addMember(Container& container, Node node);
    void push(const Container& container);

    std::string mText;
    std::string mKey;
    std::shared_ptr<DeepTree> mTree;
    std::vector<Container> mOpen;
};

} // namespace json
