#include "OrvLibrary/Utility/ObjectStyleManager.h"

#include "OrvLibrary/host/StringTable.h"
#include "OrvLibrary/host/StringUtils.h"

ObjectStyleManager::ObjectStyleManager() = default;
ObjectStyleManager::~ObjectStyleManager() = default;

ObjectStyleManager& ObjectStyleManager::getObjectStyleManager()
{
    static ObjectStyleManager theOneObjectStyleManager;
    theOneObjectStyleManager.loadObjectStyles();
    return theOneObjectStyleManager;
}

void ObjectStyleManager::loadObjectStyles()
{
    if (!mStyles.empty())
        return;
    for (long number = TextId::kFirstObjectStyle; number <= TextId::kLastObjectStyle; ++number)
        addObjectStyle(number);
}

const std::string& ObjectStyleManager::getStyleName(long number) const
{
    static const std::string nullString;
    const auto style = mStyles.find(number);
    return style == mStyles.end() ? nullString : style->second;
}

void ObjectStyleManager::addObjectStyle(long number)
{
    mStyles[number] = StringUtils::loadString(static_cast<std::uint32_t>(number));
}
