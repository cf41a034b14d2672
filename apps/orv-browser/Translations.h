#pragma once

class QApplication;

/// Installs the texts of the window in the user's language.
namespace Translations {

/// Installs Qt's own texts and those of the window, in the language of the default locale or, in the C
/// locale, in English. Sets the layout direction of this language. Call it once, before the first window.
void install(QApplication& application);

} // namespace Translations
