#pragma once

#include <string>

/// A size for people, in units of 1000: "512 bytes", "4.6 MB".
std::string byteText(double bytes);
