#include "apps/catalog-service/RequestTarget.h"

#include <algorithm>

namespace {

int hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

} // namespace

RequestTarget::RequestTarget(const std::string& target)
{
    const std::size_t mark = std::min(target.find('?'), target.size());
    mPath = target.substr(0, mark);
    mQuery = target.substr(std::min(mark + 1, target.size()));
}

bool RequestTarget::parameter(const std::string& name, std::string& value) const
{
    for (std::size_t at = 0; at < mQuery.size();) {
        const std::size_t end = std::min(mQuery.find('&', at), mQuery.size());
        const std::string piece = mQuery.substr(at, end - at);
        const std::size_t equals = piece.find('=');
        if (equals != std::string::npos && percentDecoded(piece.substr(0, equals)) == name) {
            value = piece.substr(equals + 1);
            return true;
        }
        at = end + 1;
    }
    return false;
}

std::string percentDecoded(const std::string& text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const int high = text[i] == '%' && i + 2 < text.size() ? hexDigit(text[i + 1]) : -1;
        const int low = high < 0 ? -1 : hexDigit(text[i + 2]);
        if (low < 0) {
            result += text[i];
            continue;
        }
        result += static_cast<char>(high * 16 + low);
        i += 2;
    }
    return result;
}
