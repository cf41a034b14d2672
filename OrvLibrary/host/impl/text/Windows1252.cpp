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

/// Characters beyond the basic plane are two units of text, and would become two question marks.
QString withoutSurrogatePairs(const QString& text)
{
    QString plain;
    plain.reserve(text.size());
    for (const uint character : text.toUcs4())
        plain += character > 0xFFFF ? QChar('?') : QChar(static_cast<ushort>(character));
    return plain;
}

} // namespace

std::string textToWindows1252(const QString& text)
{
    if (isAscii(text))
        return text.toStdString();
    const QString plain = withoutSurrogatePairs(text);
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    return codec().fromUnicode(plain.constData(), plain.size(), &state).toStdString();
}

QString windows1252ToText(const std::string& bytes)
{
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    return codec().toUnicode(bytes.data(), static_cast<int>(bytes.size()), &state);
}
