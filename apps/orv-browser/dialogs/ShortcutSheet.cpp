#include "apps/orv-browser/dialogs/ShortcutSheet.h"

#include <QAction>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QMainWindow>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

void addKey(QTreeWidget& sheet, const QString& what, const QString& key)
{
    new QTreeWidgetItem(&sheet, {what, key});
}

} // namespace

ShortcutSheet::ShortcutSheet(QMainWindow& window) : QDialog(&window)
{
    setObjectName(QStringLiteral("shortcutSheet"));
    setWindowTitle(tr("Keys"));
    resize(420, 460);
    auto* sheet = new QTreeWidget;
    sheet->setObjectName(QStringLiteral("shortcuts"));
    sheet->setAccessibleName(tr("Keys"));
    sheet->setHeaderLabels({tr("What it does"), tr("Key")});
    sheet->setRootIsDecorated(false);
    sheet->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    sheet->header()->setStretchLastSection(false);
    for (const QAction* action : window.findChildren<QAction*>())
        if (!action->shortcut().isEmpty() && !action->text().isEmpty())
            addKey(*sheet, QString(action->text()).remove(QLatin1Char('&')),
                   QKeySequence::listToString(action->shortcuts(), QKeySequence::NativeText));
    const QString space = QKeySequence(Qt::Key_Space).toString(QKeySequence::NativeText);
    addKey(*sheet, tr("Show the item large"), space);
    addKey(*sheet, tr("Larger or smaller pictures"), tr("Ctrl and the wheel"));
    addKey(*sheet, tr("From the search to the items"), tr("Down"));
    addKey(*sheet, tr("Forget the search"), tr("Escape"));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(sheet);
    layout->addWidget(buttons);
}
