#pragma once

#include <QDialog>

#include "apps/orv-browser/BrowserSettings.h"
#include "apps/orv-browser/dialogs/SettingFields.h"

class QCheckBox;
class QComboBox;
class QTabWidget;

/// The preferences that all programs on the root share (the service, the way to it, how much history is
/// kept), and those of this window alone.
class PreferencesDialog : public QDialog
{
    Q_OBJECT

public:
    /// @param shared outlives the dialog
    PreferencesDialog(const OrvHost::Settings& shared, const BrowserSettings& own, QWidget* parent);

    /// The user's changes of the shared preferences.
    SharedSettings::Changes changes() const { return mFields.changes(); }
    /// The preferences of this window, as entered.
    BrowserSettings own() const;

    /// Does not take a text that cannot be, and says so.
    void accept() override;

private:
    QWidget* servicePage();
    QWidget* networkPage();
    QWidget* diskPage();
    QWidget* windowPage(const BrowserSettings& own);

    SettingFields mFields;
    QTabWidget* mPages;
    QCheckBox* mCheckAtStart;
    QSpinBox* mCheckAge;
    QComboBox* mColours;
};
