#include "apps/orv-browser/dialogs/NameDialog.h"

#include <utility>

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "apps/orv-browser/own/LibraryName.h"

namespace {

constexpr int kWidth = 380; // pixels

} // namespace

NameDialog::NameDialog(const QString& title, const QString& question, const QString& name,
                       std::function<QString(const QString&)> problemOf, QWidget* parent)
    : QDialog(parent),
      mProblemOf(std::move(problemOf)),
      mField(new QLineEdit(name)),
      mProblem(new QLabel),
      mButtons(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel))
{
    setObjectName(QStringLiteral("nameDialog"));
    setWindowTitle(title);
    auto* label = new QLabel(question);
    label->setWordWrap(true);
    label->setBuddy(mField);
    mField->setObjectName(QStringLiteral("name"));
    mField->setAccessibleName(question);
    mField->selectAll();
    mProblem->setObjectName(QStringLiteral("nameProblem"));
    mProblem->setTextFormat(Qt::PlainText);
    mProblem->setWordWrap(true);
    mProblem->setMinimumHeight(2 * mProblem->fontMetrics().lineSpacing()); // so that nothing jumps
    mProblem->setAlignment(Qt::AlignTop);
    mButtons->button(QDialogButtonBox::Ok)->setDefault(true);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(mField);
    layout->addWidget(mProblem);
    layout->addStretch();
    layout->addWidget(mButtons);
    resize(kWidth, sizeHint().height());
    connect(mField, &QLineEdit::textChanged, this, &NameDialog::check);
    connect(mButtons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(mButtons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    check();
}

QString NameDialog::name() const
{
    return LibraryName::cleaned(mField->text());
}

void NameDialog::check()
{
    const QString problem = mProblemOf(name());
    mProblem->setText(problem);
    mField->setAccessibleDescription(problem);
    mButtons->button(QDialogButtonBox::Ok)->setEnabled(problem.isEmpty());
}
