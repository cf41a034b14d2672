#pragma once

#include <string>

#include <QString>

/// Converts to Windows-1252. A character that the code page lacks becomes one "?".
std::string textToWindows1252(const QString& text);
/// Converts from Windows-1252. The code page leaves five bytes undefined; they become the control characters
/// with the same number, so every byte survives the way there and back.
QString windows1252ToText(const std::string& bytes);
