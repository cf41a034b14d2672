#include "OrvLibrary/host/impl/text/Windows1252_p.h"

#include <QTextCodec>
#include <QVector>

namespace {

QTextCodec& codec()
{
    static QTextCodec& sCodec = *QTextCodec::codecForName("windows-1252");
    return sCodec;
}

bool isAscii(const QString& text)
{
    for (const QChar c : text) {
        if (c.unicode() >= 0x80)
            return false;
    }
    return true;
}

/// The characters for the bytes from 0x80 on, in order.
const QString& upperHalf()
{
    static const QString& sCharacters = *new QString([] {
        std::string bytes;
        for (int byte = 0x80; byte <= 0xFF; ++byte)
            bytes += static_cast<char>(byte);
        return windows1252ToText(bytes);
    }());
    return sCharacters;
}

char toByte(uint character)
{
    if (character < 0x80)
        return static_cast<char>(character);
    const bool isHeld = character <= 0xFFFF && character != QChar::ReplacementCharacter;
    const int place = isHeld ? upperHalf().indexOf(QChar(static_cast<ushort>(character))) : -1;
    return place < 0 ? '?' : static_cast<char>(0x80 + place);
}

} // namespace

// Qt's codec drops invisible characters such as a zero width space. Two different names would then become
// one.
std::string textToWindows1252(const QString& text)
{
    if (isAscii(text))
        return text.toStdString();
    std::string bytes;
    for (const uint character : text.toUcs4())
        bytes += toByte(character);
    return bytes;
}

QString windows1252ToText(const std::string& bytes)
{
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    return codec().toUnicode(bytes.data(), static_cast<int>(bytes.size()), &state);
}
