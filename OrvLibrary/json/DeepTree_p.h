#pragma once

#include <cstddef>
#include <vector>

#include "OrvLibrary/json/json_reader.h"

namespace json {

/// Owns a tree and releases it level by level without recursion, and without asking for memory: nodes that
/// release each other would need the more of the thread's stack the deeper they are nested.
class DeepTree
{
public:
    using Node = grammar<char>::variant;
    /// Trees of so many levels may release themselves anywhere.
    static constexpr std::size_t kShallow = 64;

    DeepTree() = default;
    ~DeepTree();
    DeepTree(const DeepTree&) = delete;
    DeepTree& operator=(const DeepTree&) = delete;

    Node& root() { return mRoot; }
    /// Told the number of levels before the tree gets them.
    void prepareFor(std::size_t levels);
    bool isDeep() const { return mPath.capacity() > 0; }

private:
    void descend(Node node);

    Node mRoot;
    std::vector<Node> mPath; ///< from the root to the container that is being emptied; room made beforehand
};

} // namespace json
