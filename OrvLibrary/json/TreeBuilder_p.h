#pragma once

#include <memory>
#include <string>
#include <vector>

#include "OrvLibrary/json/DeepTree_p.h"
#include "OrvLibrary/json/json_reader.h"

namespace json {

/// Builds the tree from the tokens that the rules recognise, in the order of the text. A container is added
/// to its parent when it is opened, so the stack holds only the open containers. If parsing fails, the whole
/// tree is freed.
///
/// Containers nest on this stack, not on that of the thread, so the depth does not matter for the thread.
class TreeBuilder
{
public:
    using Node = grammar<char>::variant;

    TreeBuilder();
    ~TreeBuilder();
    TreeBuilder(const TreeBuilder&) = delete;
    TreeBuilder& operator=(const TreeBuilder&) = delete;

    /// The last string, unescaped. The rules write it here for `takeKey` and `addText`.
    std::string& text() { return mText; }

    bool isOpen() const { return !mOpen.empty(); }
    bool mayOpen() const { return mOpen.size() < static_cast<std::size_t>(kDeepestNesting); }
    /// Whether the innermost open container is an array.
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

    /// Whether there is only the opening brace of the root so far.
    bool isLoneBrace() const;
    /// The tree if its root is closed; otherwise null. The builder is empty afterwards.
    Node takeTree();

private:
    /// An open container. Exactly one of the pointers is set.
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
