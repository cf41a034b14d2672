#pragma once

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/UnicodeString.h"

namespace error {

/// The numbers of the messages that the library sends.
namespace Message {
constexpr int kCannotWriteDataFile = 272032391;  ///< argument: the path
constexpr int kManufacturerMaterial = 272032338; ///< no argument
constexpr int kPreferenceType = 272032175;       ///< argument: the whole text
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

/// An error, shown without more ado than its text.
struct ErrorMinimalTrait : Trait
{
    constexpr ErrorMinimalTrait() : Trait(Kind::ErrorMinimal) {}
};

/// A warning: the operation goes on.
struct WarningTrait : Trait
{
    constexpr WarningTrait() : Trait(Kind::Warning) {}
};

/// An information that is shown at most once per run.
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

    /// Shows or records the text of a message with up to three arguments. May be called from any thread; an
    /// implementation that shows a window hands the message to its interface thread.
    /// @param sourceFile, line where it was sent, for support staff
    virtual void notify(const char* sourceFile, int line, const Trait& trait, int messageNumber,
                        const marl::unicode::String& text1, const marl::unicode::String& text2,
                        const marl::unicode::String& text3) = 0;

    /// The text of a message with its arguments filled in, UTF-8, translated; the arguments alone when the
    /// number is unknown.
    static marl::unicode::String messageText(int messageNumber, const marl::unicode::String& text1,
                                             const marl::unicode::String& text2,
                                             const marl::unicode::String& text3);

    /// The installed message system, or the default, which records each message in the logging category
    /// "orv.library".
    static MessagingSystem& control();
    /// Makes `system` the one that `control` returns; null for the default. The pointer is not owned.
    /// @return the former one, null when it was the default
    static MessagingSystem* install(MessagingSystem* system);
};

} // namespace error
