#pragma once

class QApplication;

/// The texts of the window in the user's language.
namespace Translations {

/// Installs Qt's own texts and the window's where there are some in the language of the default locale,
/// English ones in the C locale, and lays the windows out in its direction. To be called once, before the
/// first window.
void install(QApplication& application);

} // namespace Translations
