#pragma once

#include <string>

/// What a user does about a certificate that was refused.
namespace OrvHost::CertificateAdvice {

/// @param reason why a request failed, in the transfer library's words
/// @return empty where the reason is no certificate
std::string of(const std::string& reason);

} // namespace OrvHost::CertificateAdvice
