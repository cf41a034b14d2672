#pragma once

#include <exception>
#include <string>
#include <vector>

#include "OrvLibrary/OrvLibraryExport.h"

/// Converts bytes to Base64 text and back: standard alphabet, "=" as padding, no line breaks. May be called
/// from any thread.
class ORVLIBRARY_EXPORT Base64
{
public:
    /// Thrown for a character that is neither "=" nor in the alphabet.
    class ORVLIBRARY_EXPORT InvalidCharacterException : public std::exception
    {
    public:
        explicit InvalidCharacterException(const std::string& message);
        ~InvalidCharacterException() override;
        const char* what() const noexcept override;

    private:
        std::string mMessage;
    };

    /// The text; its length is a multiple of four. Empty if there are no bytes.
    static std::string encode(const std::vector<unsigned char>& bytes);
    /// The bytes of a text. If the length is not a multiple of four, the rest is filled with zero bits. "="
    /// is accepted at any place.
    /// @throws InvalidCharacterException for the first other character, with its index
    static std::vector<unsigned char> decode(const std::string& text);
};
