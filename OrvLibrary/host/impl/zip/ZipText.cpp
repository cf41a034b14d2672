#include "OrvLibrary/host/impl/zip/ZipText_p.h"

#include <algorithm>

#include <QTextCodec>

namespace ZipUtils {

bool needsUtf8Flag(std::string_view name)
{
    if (std::all_of(name.begin(), name.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; }))
        return false;
    QTextCodec::ConverterState state;
    QTextCodec::codecForName("UTF-8")->toUnicode(name.data(), static_cast<int>(name.size()), &state);
    return state.invalidChars == 0 && state.remainingChars == 0;
}

} // namespace ZipUtils
