#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <QJsonValue>

namespace OrvHost {

/// The values that a key of the settings may have, and its default.
struct SettingRule
{
    enum class Kind
    {
        Address,     ///< http or https
        Text,        ///< anything that fits into a line
        Path,        ///< of a file or folder
        Proxy,       ///< host and port, with or without a scheme
        CatalogList, ///< file names that end in ".orvlib"
        Number
    };

    const char* key;
    Kind kind;
    std::int64_t lowest = 0;
    std::int64_t highest = 0;
    std::int64_t defaultNumber = 0;
    const char* defaultText = "";

    /// All keys, in the order in which they are documented.
    static const std::vector<SettingRule>& all();
    /// Null when there is no such key.
    static const SettingRule* find(const std::string& key);

    QJsonValue defaultValue() const;
    /// The value that `texts` mean; undefined when they cannot mean one, and `reason` then says why.
    QJsonValue valueOf(const std::vector<std::string>& texts, std::string& reason) const;
    /// Why a value that was read cannot be; empty when it can.
    std::string problemOf(const QJsonValue& value) const;

private:
    std::string problemOfText(const std::string& text) const;
    std::string problemOfNumber(std::int64_t number) const;
};

} // namespace OrvHost
