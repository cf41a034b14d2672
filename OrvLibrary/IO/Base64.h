#pragma once

#include <exception>
#include <string>
#include <vector>

#include "OrvLibrary/OrvLibraryExport.h"

/// Bytes to Base64 text and back: the standard alphabet, "=" as padding, no line breaks. May be called from
/// any thread.
class ORVLIBRARY_EXPORT Base64
{
public:
    /// A character that is neither of the alphabet nor "=".
    class ORVLIBRARY_EXPORT InvalidCharacterException : public std::exception
    {
    public:
        explicit InvalidCharacterException(const std::string& message);
        ~InvalidCharacterException() override;
        const char* what() const noexcept override;

    private:
        std::string mMessage;
    };

    /// The text, always a multiple of four characters; empty for no bytes.
    static std::string encode(const std::vector<unsigned char>& bytes);
    /// The bytes of a text. A length that is no multiple of four is completed with zero bits, and "=" is
    /// taken anywhere.
    /// @throws InvalidCharacterException for the first other character, with its zero-based position
    static std::vector<unsigned char> decode(const std::string& text);
};
