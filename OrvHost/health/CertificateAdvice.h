#pragma once

#include <string>

/// Advice for a user whose service has a certificate that was refused.
namespace OrvHost::CertificateAdvice {

/// @param reason why a request failed, in the transfer library's words
/// @return empty where the reason is no certificate
std::string of(const std::string& reason);

} // namespace OrvHost::CertificateAdvice
