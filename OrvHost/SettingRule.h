#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <QJsonValue>

namespace OrvHost {

/// A key of the settings: the values it may have, and its default.
struct SettingRule
{
    enum class Kind
    {
        Address,     ///< http or https
        Text,        ///< any text of one line
        Path,        ///< path of a file or folder
        Proxy,       ///< host and port, with or without a scheme
        CatalogList, ///< file names that end in ".orvlib"
        Number,
        Choice ///< one of `choices`
    };

    const char* key;
    Kind kind;
    const char* defaultText = "";
    std::vector<std::string> choices = {};
    std::int64_t lowest = 0; ///< this and what follows are for numbers
    std::int64_t highest = 0;
    std::int64_t defaultNumber = 0;

    /// All keys, in the order in which they are documented.
    static const std::vector<SettingRule>& all();
    /// Null if there is no such key.
    static const SettingRule* find(const std::string& key);

    QJsonValue defaultValue() const;
    /// The value for `texts`. If they are not valid, the value is undefined and `reason` says why.
    QJsonValue valueOf(const std::vector<std::string>& texts, std::string& reason) const;
    /// Why a value read from the file is not valid; empty if it is.
    std::string problemOf(const QJsonValue& value) const;

private:
    std::string problemOfText(const std::string& text) const;
    std::string problemOfNumber(std::int64_t number) const;
};

} // namespace OrvHost
