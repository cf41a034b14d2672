#pragma once

#include <QDialog>

#include "apps/orv-browser/BrowserSettings.h"
#include "apps/orv-browser/dialogs/SettingFields.h"

class QCheckBox;
class QComboBox;
class QTabWidget;

/// The preferences: what all programs on the root share (the service, the way to it, how much history is
/// kept), and what holds for this window alone.
class PreferencesDialog : public QDialog
{
    Q_OBJECT

public:
    /// @param shared outlives the dialog
    PreferencesDialog(const OrvHost::Settings& shared, const BrowserSettings& own, QWidget* parent);

    /// What the user changed of the shared ones.
    SharedSettings::Changes changes() const { return mFields.changes(); }
    /// What the user entered for this window.
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
