#pragma once

#include <QCollator>
#include <QLocale>

/// The locale for texts that the user sees: the application's. If that is the C locale, English, because the
/// C locale has no thousands separators and does not sort numbers by value.
QLocale userLocale();

/// The calling thread's collator for `userLocale`. It sorts numbers by value. When the application changes
/// its locale, a new one is made.
const QCollator& nameCollator(bool ignoreCase);
