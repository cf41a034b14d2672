#pragma once

#include <QToolButton>

/// The current filter as one more choice above the gallery: a button with its name that opens the list of
/// filters, and actions to make a filter of the current choices and to edit filters. The receivers of its
/// signals change the filters and then call `refresh`.
class FilterChip : public QToolButton
{
    Q_OBJECT

public:
    explicit FilterChip(QWidget* parent = nullptr);

    /// Shows the current filter of the filter manager.
    void refresh();
    /// Whether there is anything to make a filter of.
    void setSavable(bool isSavable) { mIsSavable = isSavable; }

Q_SIGNALS:
    /// @param id of a filter; `OrvHost::FilterChange::kNoFilter` for none
    void useAsked(long id);
    void saveAsked();
    void editAsked();

private:
    void fillMenu();
    void addChoice(const QString& name, long id, bool isCurrent);

    bool mIsSavable = false;
};
