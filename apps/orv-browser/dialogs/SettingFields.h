#pragma once

#include <string>
#include <utility>
#include <vector>

#include <QString>

#include "apps/orv-browser/SharedSettings.h"

class QComboBox;
class QLineEdit;
class QSpinBox;
class QWidget;

/// The fields in which the user changes shared settings. Each is called as its setting. Only what the user
/// changed is told, so that nothing is lost that another program sets meanwhile. The fields belong to the
/// layouts that they are put into.
class SettingFields
{
public:
    /// @param settings as they are; outlives the object
    explicit SettingFields(const OrvHost::Settings& settings);

    QLineEdit* addText(const char* key);
    /// Names, separated by semicolons.
    QLineEdit* addCatalogs(const char* key);
    /// @param unit what the field counts in, such as 1000 for bytes told as KB
    QSpinBox* addNumber(const char* key, int lowest, int highest, int unit = 1);

    /// @param choices the texts of the values for people, and the values
    QComboBox* addChoice(const char* key, const std::vector<std::pair<QString, QString>>& choices);

    SharedSettings::Changes changes() const;
    /// The first field with a text that cannot be; null when all are fine.
    /// @param problem filled with what is wrong, for people
    QLineEdit* firstWrong(QString& problem) const;

private:
    struct Text
    {
        std::string key;
        QLineEdit* line;
        QString shown; ///< to begin with
        bool isList;
    };
    struct Number
    {
        std::string key;
        QSpinBox* box;
        int shown; ///< to begin with
        int unit;
    };

    struct Choice
    {
        std::string key;
        QComboBox* box;
        int shown; ///< to begin with
    };

    QLineEdit* addLine(const char* key, const QString& shown, bool isList);

    const OrvHost::Settings& mSettings;
    std::vector<Text> mTexts;
    std::vector<Number> mNumbers;
    std::vector<Choice> mChoices;
};
