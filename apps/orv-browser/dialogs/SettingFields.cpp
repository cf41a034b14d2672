#include "apps/orv-browser/dialogs/SettingFields.h"

#include <algorithm>
#include <cmath>

#include <QComboBox>
#include <QCoreApplication>
#include <QJsonArray>
#include <QLineEdit>
#include <QSpinBox>

#include "apps/orv-browser/dialogs/AddressCheck.h"

namespace {

constexpr int kLineWidth = 360;

/// File names with this separator are none that a service offers.
constexpr QLatin1Char kSeparator(';');

QString joined(const QJsonArray& names)
{
    QStringList texts;
    for (const QJsonValue name : names)
        texts << name.toString();
    return texts.join(QString(kSeparator) + QLatin1Char(' '));
}

std::vector<std::string> textsIn(const QLineEdit& line, bool isList)
{
    std::vector<std::string> texts;
    if (!isList && !line.text().trimmed().isEmpty())
        texts.push_back(line.text().trimmed().toStdString());
    if (!isList)
        return texts;
    for (const QString& name : line.text().split(kSeparator))
        if (!name.trimmed().isEmpty())
            texts.push_back(SharedSettings::catalogName(name.trimmed()));
    return texts;
}

QString problemOf(const std::string& key, const std::vector<std::string>& texts)
{
    for (const std::string& text : texts) {
        try {
            OrvHost::Settings().set(key, {text});
        } catch (const OrvHost::Settings::Refusal&) {
            const QString shown = QString::fromStdString(text);
            const QString notAddress = AddressCheck::problemOf(shown);
            if (key == "proxy")
                return QCoreApplication::translate("SettingFields",
                                                   "“%1” is no proxy, such as http://proxy.example:3128.")
                    .arg(shown);
            if (key == "bonus" || key == "manufacturer")
                return QCoreApplication::translate("SettingFields", "“%1” is no name of a catalog.")
                    .arg(shown);
            return notAddress;
        }
    }
    return {};
}

} // namespace

SettingFields::SettingFields(const OrvHost::Settings& settings) : mSettings(settings) {}

QLineEdit* SettingFields::addLine(const char* key, const QString& shown, bool isList)
{
    auto* line = new QLineEdit(shown);
    line->setObjectName(QLatin1String(key));
    line->setMinimumWidth(kLineWidth);
    line->setCursorPosition(0);
    mTexts.push_back({key, line, shown, isList});
    return line;
}

QLineEdit* SettingFields::addText(const char* key)
{
    QLineEdit* line = addLine(key, mSettings.stored()[QLatin1String(key)].toString(), false);
    line->setPlaceholderText(OrvHost::Settings::defaults()[QLatin1String(key)].toString());
    return line;
}

QLineEdit* SettingFields::addCatalogs(const char* key)
{
    return addLine(key, joined(mSettings.stored()[QLatin1String(key)].toArray()), true);
}

QSpinBox* SettingFields::addNumber(const char* key, int lowest, int highest, int unit)
{
    const QString name = QLatin1String(key);
    const QJsonObject stored = mSettings.stored();
    const double value = (stored.contains(name) ? stored : OrvHost::Settings::defaults())[name].toDouble();
    auto* box = new QSpinBox;
    box->setObjectName(name);
    box->setRange(lowest, highest);
    box->setGroupSeparatorShown(true);
    box->setValue(static_cast<int>(std::min(std::ceil(value / unit), static_cast<double>(highest))));
    mNumbers.push_back({key, box, box->value(), unit});
    return box;
}

QComboBox* SettingFields::addChoice(const char* key, const std::vector<std::pair<QString, QString>>& choices)
{
    const QString name = QLatin1String(key);
    auto* box = new QComboBox;
    box->setObjectName(name);
    for (const auto& [text, value] : choices)
        box->addItem(text, value);
    const QJsonObject stored = mSettings.stored();
    const QString value = (stored.contains(name) ? stored : OrvHost::Settings::defaults())[name].toString();
    box->setCurrentIndex(box->findData(value));
    mChoices.push_back({key, box, box->currentIndex()});
    return box;
}

SharedSettings::Changes SettingFields::changes() const
{
    SharedSettings::Changes changes;
    for (const Text& text : mTexts)
        if (text.line->text().trimmed() != text.shown)
            changes.emplace_back(text.key, textsIn(*text.line, text.isList));
    for (const Number& number : mNumbers)
        if (number.box->value() != number.shown)
            changes.emplace_back(number.key, std::vector<std::string>{std::to_string(
                                                 std::int64_t{number.box->value()} * number.unit)});
    for (const Choice& choice : mChoices)
        if (choice.box->currentIndex() != choice.shown)
            changes.emplace_back(
                choice.key, std::vector<std::string>{choice.box->currentData().toString().toStdString()});
    return changes;
}

QLineEdit* SettingFields::firstWrong(QString& problem) const
{
    for (const Text& text : mTexts) {
        problem = problemOf(text.key, textsIn(*text.line, text.isList));
        if (!problem.isEmpty())
            return text.line;
    }
    return nullptr;
}
