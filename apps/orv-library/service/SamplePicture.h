#pragma once

#include <cstdint>

#include <QByteArray>

/// Small pictures for sample content: a plain drawing of a thing in front of a coloured ground, as PNG. The
/// same seed gives the same bytes.
namespace SamplePicture {

/// @param side width and height in pixels
QByteArray png(std::uint32_t seed, int side);
/// A texture: a pattern that fills the whole square.
QByteArray texture(std::uint32_t seed, int side);

} // namespace SamplePicture
