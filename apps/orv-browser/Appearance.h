#pragma once

#include <QString>

/// The colours of the window.
namespace Appearance {

/// The choices in the preferences: "system", "light" or "dark". Anything else counts as "system".
constexpr const char* kSystem = "system";
constexpr const char* kLight = "light";
constexpr const char* kDark = "dark";

/// Sets the colours of the whole application; may be called at any time. Interface thread.
void apply(const QString& colours);

} // namespace Appearance
