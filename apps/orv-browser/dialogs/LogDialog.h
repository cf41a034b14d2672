#pragma once

#include <QDialog>

#include "OrvLibrary/host/fileString.h"

/// Shows the entries of the error log, newest first.
class LogDialog : public QDialog
{
    Q_OBJECT

public:
    LogDialog(const fileString& log, QWidget* parent);
};
