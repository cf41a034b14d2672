#pragma once

#include <QDialog>

#include "apps/orv-browser/BrowserSettings.h"

class QCheckBox;
class QComboBox;
class QLineEdit;

/// The preferences of the window: where the services are, what they are told, and when to ask them.
class PreferencesDialog : public QDialog
{
    Q_OBJECT

public:
    PreferencesDialog(const BrowserSettings& settings, QWidget* parent);

    /// What the user entered.
    BrowserSettings settings() const;

    /// Does not take an address that is none, and says so.
    void accept() override;

private:
    QLineEdit* mServiceUrl;
    QLineEdit* mProduct;
    QLineEdit* mVersion;
    QLineEdit* mBonusCatalogs;
    QLineEdit* mManufacturerCatalogs;
    QLineEdit* mManufacturerDataUrl;
    QLineEdit* mManufacturerLogoUrl;
    QLineEdit* mProxy;
    QCheckBox* mCheckAtStart;
    QComboBox* mColours;
};
