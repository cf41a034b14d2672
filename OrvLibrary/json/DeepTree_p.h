#pragma once

#include <cstddef>
#include <vector>

#include "OrvLibrary/json/json_reader.h"

namespace json {

/// Owns a tree and frees it level by level, without recursion and without allocating memory. Nodes that free
/// each other would need more stack the deeper they are nested.
class DeepTree
{
public:
    using Node = grammar<char>::variant;
    /// A tree with at most this many levels may be freed in the ordinary way.
    static constexpr std::size_t kShallow = 64;

    DeepTree() = default;
    ~DeepTree();
    DeepTree(const DeepTree&) = delete;
    DeepTree& operator=(const DeepTree&) = delete;

    Node& root() { return mRoot; }
    /// Called with the number of levels before the tree gets that deep.
    void prepareFor(std::size_t levels);
    bool isDeep() const { return mPath.capacity() > 0; }

private:
    void descend(Node node);

    Node mRoot;
    std::vector<Node> mPath; ///< from the root to the container being emptied; reserved beforehand
};

} // namespace json
