#pragma once

#include <QString>

/// The colours of the window.
namespace Appearance {

/// What the preferences may ask for: "system", "light" or "dark". Anything else counts as "system".
constexpr const char* kSystem = "system";
constexpr const char* kLight = "light";
constexpr const char* kDark = "dark";

/// Dresses the whole application; may be called again at any time. Interface thread.
void apply(const QString& colours);

} // namespace Appearance
