#include "OrvLibrary/host/SQL.h"

#include "OrvLibrary/host/impl/text/Windows1252_p.h"

namespace SQL {

std::string to_utf8(const std::string& text)
{
    return windows1252ToText(text).toStdString();
}

} // namespace SQL
