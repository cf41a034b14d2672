#pragma once

#include <string>

#include <QString>

/// 8-bit Windows-1252; a character that the code page lacks becomes one "?".
std::string textToWindows1252(const QString& text);
/// The five bytes that the code page leaves open become the control characters of the same number, so that
/// every byte has a text and comes back from it.
QString windows1252ToText(const std::string& bytes);
