#include "apps/orv-browser/dialogs/LogDialog.h"

#include <QDialogButtonBox>
#include <QPlainTextEdit>
#include <QVBoxLayout>

#include "OrvHost/health/ErrorLogReader.h"
#include "apps/orv-browser/models/Reasons.h"

namespace {

QString entriesText(const fileString& log)
{
    QString text;
    try {
        const auto entries = OrvHost::ErrorLogReader::read(log);
        for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry)
            text += QString::fromStdString(entry->time) + QLatin1Char('\n') +
                    QString::fromStdString(entry->message) + QLatin1String("\n\n");
    } catch (const std::exception& error) {
        return Reasons::text(error.what());
    }
    return text.isEmpty() ? LogDialog::tr("The log is empty.") : text.trimmed();
}

} // namespace

LogDialog::LogDialog(const fileString& log, QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("logDialog"));
    setWindowTitle(tr("Log"));
    resize(640, 400);
    auto* text = new QPlainTextEdit(entriesText(log));
    text->setObjectName(QStringLiteral("logText"));
    text->setAccessibleName(tr("Log entries, the newest first"));
    text->setReadOnly(true);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(text);
    layout->addWidget(buttons);
}
