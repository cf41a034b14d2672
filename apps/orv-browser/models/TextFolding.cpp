#include "apps/orv-browser/models/TextFolding.h"

#include <algorithm>

#include <QString>

namespace {

bool isAscii(const std::string& text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

std::string foldedAscii(std::string text)
{
    for (char& c : text)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return text;
}

/// Letters without an accent that are typed as others if a keyboard does not have them.
QString typed(QChar letter)
{
    switch (letter.unicode()) {
    case 0xDF: // sharp s
        return QStringLiteral("ss");
    case 0xE6: // ae in one
        return QStringLiteral("ae");
    case 0xF8: // o with a stroke
        return QStringLiteral("o");
    case 0x142: // l with a stroke
        return QStringLiteral("l");
    case 0x153: // oe in one
        return QStringLiteral("oe");
    default:
        return letter;
    }
}

} // namespace

std::string TextFolding::folded(const std::string& utf8)
{
    if (isAscii(utf8))
        return foldedAscii(utf8);
    QString text;
    const QString split = QString::fromStdString(utf8).normalized(QString::NormalizationForm_KD);
    for (const QChar letter : split.toCaseFolded())
        if (letter.category() != QChar::Mark_NonSpacing)
            text += typed(letter);
    return text.toStdString();
}
