#include "OrvLibrary/host/MessagingSystem.h"

#include <string>

#include <boost/format.hpp>

#include "OrvLibrary/host/StringUtils.h"
#include "OrvLibrary/host/impl/files/Installed_p.h"
#include "OrvLibrary/host/impl/services/DefaultMessagingSystem_p.h"

namespace error {

namespace {

host::Installed<MessagingSystem> gInstalled(host::immortal<MessagingSystem, DefaultMessagingSystem>);

using marl::unicode::String;

std::string joined(const String& text1, const String& text2, const String& text3)
{
    std::string all;
    for (const String* text : {&text1, &text2, &text3}) {
        if (!text->empty())
            all += (all.empty() ? "" : " ") + text->toUTF8String();
    }
    return all;
}

/// If a translation is broken, shows it without arguments, because a message must not fail.
std::string filled(const std::string& text, const String& text1, const String& text2, const String& text3)
{
    try {
        boost::format format(text);
        format.exceptions(boost::io::no_error_bits);
        return (format % text1.toUTF8String() % text2.toUTF8String() % text3.toUTF8String()).str();
    } catch (const boost::io::format_error&) {
        return text;
    }
}

} // namespace

MessagingSystem::MessagingSystem() = default;
MessagingSystem::~MessagingSystem() = default;

String MessagingSystem::messageText(int messageNumber, const String& text1, const String& text2,
                                    const String& text3)
{
    const std::string text = StringUtils::loadString(static_cast<std::uint32_t>(messageNumber));
    return text.empty() ? joined(text1, text2, text3) : filled(text, text1, text2, text3);
}

MessagingSystem& MessagingSystem::control()
{
    return gInstalled.get();
}

MessagingSystem* MessagingSystem::install(MessagingSystem* system)
{
    return gInstalled.install(system);
}

} // namespace error
