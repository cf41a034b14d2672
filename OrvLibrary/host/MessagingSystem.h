#pragma once

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/UnicodeString.h"

namespace error {

/// The numbers of the messages that the library sends.
namespace Message {
constexpr int kCannotWriteDataFile = 272032391;  ///< argument: the path
constexpr int kManufacturerMaterial = 272032338; ///< no argument
constexpr int kPreferenceType = 272032175;       ///< argument: the complete text
} // namespace Message

/// How a message is to be shown.
class Trait
{
public:
    enum class Kind
    {
        ErrorMinimal,
        Warning,
        InformationOnce
    };

    constexpr Kind kind() const { return mKind; }

protected:
    constexpr explicit Trait(Kind kind) : mKind(kind) {}

private:
    Kind mKind;
};

/// An error that is shown as its text only.
struct ErrorMinimalTrait : Trait
{
    constexpr ErrorMinimalTrait() : Trait(Kind::ErrorMinimal) {}
};

/// A warning; the operation goes on.
struct WarningTrait : Trait
{
    constexpr WarningTrait() : Trait(Kind::Warning) {}
};

/// An information that is shown only once in each run.
struct InformationOnceTrait : Trait
{
    constexpr InformationOnceTrait() : Trait(Kind::InformationOnce) {}
};

/// Shows or records numbered messages for the user.
class ORVLIBRARY_EXPORT MessagingSystem
{
public:
    MessagingSystem();
    virtual ~MessagingSystem();
    MessagingSystem(const MessagingSystem&) = delete;
    MessagingSystem& operator=(const MessagingSystem&) = delete;

    /// Shows or records a message with up to three arguments. May be called from any thread, so an
    /// implementation with a window passes the message to its interface thread.
    /// @param sourceFile, line the place in the source that sent it, for support staff
    virtual void notify(const char* sourceFile, int line, const Trait& trait, int messageNumber,
                        const marl::unicode::String& text1, const marl::unicode::String& text2,
                        const marl::unicode::String& text3) = 0;

    /// The translated text of a message with its arguments filled in, UTF-8. If the number is unknown, only
    /// the arguments.
    static marl::unicode::String messageText(int messageNumber, const marl::unicode::String& text1,
                                             const marl::unicode::String& text2,
                                             const marl::unicode::String& text3);

    /// The installed message system. The default writes each message to the logging category "orv.library".
    static MessagingSystem& control();
    /// Makes `control` return `system`, or the default if null. The caller keeps ownership.
    /// @return the former one; null if it was the default
    static MessagingSystem* install(MessagingSystem* system);
};

} // namespace error
