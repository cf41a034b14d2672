#pragma once

#include <QDialog>

class QMainWindow;

/// Lists the keys of the window, read from its menus, and those of the gallery.
class ShortcutSheet : public QDialog
{
    Q_OBJECT

public:
    explicit ShortcutSheet(QMainWindow& window);
};
