#include "apps/orv-browser/FilterActions.h"

#include <algorithm>
#include <stdexcept>

#include <QInputDialog>
#include <QMessageBox>
#include <QUndoStack>

#include "OrvLibrary/LibraryFilterManager.h"
#include "apps/orv-browser/models/Reasons.h"

using OrvHost::FilterChange;

namespace {

constexpr std::size_t kMostNames = 5;

LibraryFilterManager& manager()
{
    return LibraryFilterManager::getLibraryFilterManager();
}

QString listed(const std::vector<FilterEditor::Database>& databases)
{
    QStringList names;
    for (const FilterEditor::Database& database : databases)
        names << QString::fromStdString(database.name);
    const bool isLong = databases.size() > kMostNames;
    const QString text = names.mid(0, kMostNames).join(QStringLiteral(", "));
    return isLong ? text + QStringLiteral(", …") : text;
}

} // namespace

/// A change that was made before it comes onto the stack. Changes of other programs in between stay.
class FilterActions::Command : public QUndoCommand
{
public:
    Command(FilterActions& actions, const QString& text, State before)
        : QUndoCommand(text), mActions(actions), mBefore(std::move(before)), mAfter(state())
    {
    }

    void redo() override
    {
        if (mIsUndone)
            setObsolete(!mActions.change(mBefore, mAfter));
    }
    void undo() override
    {
        mIsUndone = true;
        setObsolete(!mActions.change(mAfter, mBefore));
    }

private:
    FilterActions& mActions;
    State mBefore;
    State mAfter;
    bool mIsUndone = false;
};

FilterActions::FilterActions(QWidget& window, QUndoStack& undo)
    : QObject(&window), mWindow(window), mUndo(undo)
{
}

FilterActions::State FilterActions::state()
{
    return {manager().getLibraryFilters(), manager().getCurrentFilterId()};
}

/// Another program may have removed the filter meanwhile, and a folder that cannot be written keeps no
/// choice.
void FilterActions::use(long id)
{
    QString problem;
    State before = state();
    try {
        FilterChange change;
        before = state();
        change.use(id);
        change.save();
        mUndo.push(new Command(*this, tr("Filter"), before));
    } catch (const std::runtime_error& error) {
        problem = tr("The choice of the filter was not saved: %1").arg(Reasons::text(error.what()));
    }
    Q_EMIT changed();
    tell(problem);
}

void FilterActions::saveAs(const std::vector<FilterEditor::Database>& databases, const QString& name)
{
    QInputDialog dialog(&mWindow);
    dialog.setObjectName(QStringLiteral("filterName"));
    dialog.setWindowTitle(tr("Save as filter"));
    dialog.setLabelText(tr("The filter will let these catalogs through: %1.").arg(listed(databases)) +
                        QStringLiteral("\n\n") + tr("Name of the filter:"));
    dialog.setTextValue(name);
    while (dialog.exec() == QDialog::Accepted)
        if (add(databases, dialog.textValue().trimmed()))
            return;
}

bool FilterActions::add(const std::vector<FilterEditor::Database>& databases, const QString& name)
{
    std::vector<std::string> ids;
    for (const FilterEditor::Database& database : databases)
        ids.push_back(database.id);
    try {
        FilterChange change;
        const State before = state();
        const auto isSame = [&](const LibraryFilter& filter) {
            return filter.getFilterName() == name.toStdString();
        };
        if (name.isEmpty())
            return tell(tr("A filter needs a name."));
        if (std::any_of(before.filters.begin(), before.filters.end(), isSame))
            return tell(tr("There is a filter “%1” already.").arg(name));
        change.use(change.add(name.toStdString(), ids));
        change.save();
        mUndo.push(new Command(*this, tr("Save as filter"), before));
    } catch (const std::runtime_error& error) {
        return tell(tr("The filter was not saved: %1").arg(Reasons::text(error.what())));
    }
    Q_EMIT changed();
    return true;
}

void FilterActions::edit(const std::vector<FilterEditor::Database>& databases)
{
    const State before = state();
    FilterEditor editor(databases, &mWindow);
    if (editor.exec() != QDialog::Accepted)
        return;
    mUndo.push(new Command(*this, tr("Edit the filters"), before));
    Q_EMIT changed();
}

bool FilterActions::change(const State& from, const State& to)
{
    QString problem;
    try {
        FilterChange change;
        change.apply(from.filters, to.filters);
        if (to.current != from.current)
            change.use(to.current);
        change.save();
    } catch (const std::runtime_error& error) {
        problem = tr("The filters were not changed: %1").arg(Reasons::text(error.what()));
    }
    Q_EMIT changed();
    return tell(problem);
}

/// @return whether there is no problem
bool FilterActions::tell(const QString& problem)
{
    if (!problem.isEmpty())
        QMessageBox::warning(&mWindow, tr("Filter"), problem);
    return problem.isEmpty();
}
