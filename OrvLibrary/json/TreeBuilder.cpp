#include "OrvLibrary/json/TreeBuilder_p.h"

#include <utility>

namespace json {

TreeBuilder::TreeBuilder() : mTree(std::make_shared<DeepTree>()) {}

TreeBuilder::~TreeBuilder() = default;

bool TreeBuilder::isEmpty() const
{
    const Container& container = mOpen.back();
    return container.elements ? container.elements->empty() : container.members->empty();
}

void TreeBuilder::openObject()
{
    boost::any& node = add(std::make_shared<boost::any>(object()));
    push({boost::any_cast<object>(&node), nullptr, {}});
}

void TreeBuilder::openArray()
{
    boost::any& node = add(std::make_shared<boost::any>(array()));
    push({nullptr, boost::any_cast<array>(&node), {}});
}

void TreeBuilder::push(const Container& container)
{
    mOpen.push_back(container);
    mTree->prepareFor(mOpen.size());
}

void TreeBuilder::addText()
{
    add(std::make_shared<boost::any>(std::move(mText)));
}

void TreeBuilder::addDouble(double value)
{
    add(std::make_shared<boost::any>(value));
}

void TreeBuilder::addInt(int value)
{
    add(std::make_shared<boost::any>(value));
}

void TreeBuilder::addTrue()
{
    add(std::make_shared<boost::any>(true));
}

void TreeBuilder::addFalse()
{
    add(std::make_shared<boost::any>(false));
}

void TreeBuilder::addNull()
{
    add(std::make_shared<boost::any>());
}

/// Adds a value to the innermost container. If none is open, the value is the root.
boost::any& TreeBuilder::add(Node node)
{
    boost::any& value = *node;
    if (mOpen.empty())
        mTree->root() = std::move(node);
    else if (array* elements = mOpen.back().elements)
        elements->push_back(std::move(node));
    else
        addMember(mOpen.back(), std::move(node));
    return value;
}

/// Deliberate: a member goes before members with an equal key, so that `find` returns the last one in the
/// text. The hint saves a search in a run of equal keys, which a filter file has.
/// Kept by: JsonReader.equalKeysStandInReverseOrder
void TreeBuilder::addMember(Container& container, Node node)
{
    object& members = *container.members;
    const bool repeats = !members.empty() && container.lastMember->first == mKey;
    const auto hint = repeats ? container.lastMember : members.lower_bound(mKey);
    container.lastMember = members.emplace_hint(hint, std::move(mKey), std::move(node));
}

bool TreeBuilder::isLoneBrace() const
{
    return mOpen.size() == 1 && isEmpty();
}

/// For a deep tree, the returned root also frees the tree level by level.
TreeBuilder::Node TreeBuilder::takeTree()
{
    if (isOpen())
        return nullptr;
    boost::any* const root = mTree->root().get();
    return mTree->isDeep() ? Node(mTree, root) : std::move(mTree->root());
}

} // namespace json
