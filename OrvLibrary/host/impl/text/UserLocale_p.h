#pragma once

#include <QCollator>
#include <QLocale>

/// The locale that texts for the user follow: the application's, or English when that is the C locale, whose
/// numbers have no thousands separators and whose name order knows no numbers.
QLocale userLocale();

/// The calling thread's own collator for `userLocale`: numbers by their value. It is made anew when the
/// application changes its locale.
const QCollator& nameCollator(bool ignoreCase);
