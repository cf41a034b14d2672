#pragma once

#include <string>
#include <vector>

#include <QObject>

#include "OrvHost/records/FilterChange.h"
#include "apps/orv-browser/dialogs/FilterEditor.h"

class QUndoStack;
class QWidget;

/// The user's actions on the stored filters: choose one, make one, edit them. Each change goes through the
/// lock of the file, keeps what other programs did meanwhile, and can be undone. Lives on the interface
/// thread.
class FilterActions : public QObject
{
    Q_OBJECT

public:
    /// @param undo outlives the object
    FilterActions(QWidget& window, QUndoStack& undo);

    /// @param id of a filter; `OrvHost::FilterChange::kNoFilter` for none
    void use(long id);
    /// Asks for a name and makes a filter that lets these catalogs through; it is in force then.
    /// @param name to begin with
    void saveAs(const std::vector<FilterEditor::Database>& databases, const QString& name);
    /// @param databases all that a filter can name
    void edit(const std::vector<FilterEditor::Database>& databases);

Q_SIGNALS:
    /// Filters, or the one that is in force, have changed, or could not be changed.
    void changed();

private:
    /// The filters and which one is in force.
    struct State
    {
        OrvHost::FilterChange::Filters filters;
        long current = OrvHost::FilterChange::kNoFilter;
    };
    class Command;

    static State state();
    bool change(const State& from, const State& to);
    bool tell(const QString& problem);
    bool add(const std::vector<FilterEditor::Database>& databases, const QString& name);

    QWidget& mWindow;
    QUndoStack& mUndo;
};
