#include "OrvLibrary/json/DeepTree_p.h"

#include <utility>

namespace json {

namespace {

using Node = DeepTree::Node;

bool isContainer(const boost::any& value)
{
    return value.type() == typeid(object) || value.type() == typeid(array);
}

/// Takes one child out of a container; null if it is empty.
Node takeChild(boost::any& container)
{
    Node child;
    if (auto* elements = boost::any_cast<array>(&container); elements && !elements->empty()) {
        child = std::move(elements->back());
        elements->pop_back();
    } else if (auto* members = boost::any_cast<object>(&container); members && !members->empty()) {
        child = std::move(members->begin()->second);
        members->erase(members->begin());
    }
    return child;
}

} // namespace

void DeepTree::prepareFor(std::size_t levels)
{
    if (levels > kShallow && levels > mPath.capacity())
        mPath.reserve(2 * levels);
}

DeepTree::~DeepTree()
{
    if (!isDeep() || !mRoot)
        return;
    descend(std::move(mRoot));
    while (!mPath.empty()) {
        if (Node child = takeChild(*mPath.back()))
            descend(std::move(child));
        else
            mPath.pop_back();
    }
}

/// Keeps a container that must be emptied first. A node that somebody else also holds is simply released, and
/// so is a node that was added later, deeper than the reserved space.
void DeepTree::descend(Node node)
{
    if (node.use_count() == 1 && isContainer(*node) && mPath.size() < mPath.capacity())
        mPath.push_back(std::move(node));
}

} // namespace json
