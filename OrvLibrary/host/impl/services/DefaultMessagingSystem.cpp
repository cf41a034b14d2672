#include "OrvLibrary/host/impl/services/DefaultMessagingSystem_p.h"

#include <QMessageLogger>

#include "OrvLibrary/host/StringUtils.h"
#include "OrvLibrary/host/impl/services/Logging_p.h"

namespace error {

void DefaultMessagingSystem::notify(const char* sourceFile, int line, const Trait& trait, int messageNumber,
                                    const marl::unicode::String& text1, const marl::unicode::String& text2,
                                    const marl::unicode::String& text3)
{
    if (trait.kind() == Trait::Kind::InformationOnce && !isFirst(messageNumber))
        return;
    const QString text =
        StringUtils::toQString(messageText(messageNumber, text1, text2, text3).toUTF8String());
    const QMessageLogger logger(sourceFile, line, nullptr, orvLibraryLog().categoryName());
    switch (trait.kind()) {
    case Trait::Kind::ErrorMinimal:
        logger.critical(orvLibraryLog(), "%s", qUtf8Printable(text));
        break;
    case Trait::Kind::Warning:
        logger.warning(orvLibraryLog(), "%s", qUtf8Printable(text));
        break;
    case Trait::Kind::InformationOnce:
        logger.info(orvLibraryLog(), "%s", qUtf8Printable(text));
        break;
    }
}

bool DefaultMessagingSystem::isFirst(int messageNumber)
{
    const ThreadLockGuard<ThreadMutex> lock(mMutex);
    return mShownOnce.insert(messageNumber).second;
}

} // namespace error
