#pragma once

#include <QToolButton>

/// The stored filter that is in force, as one more choice above the gallery: a button that names it and opens
/// the list of filters, with the ways to make one of the current choices and to edit them. What is chosen is
/// done by whoever hears of it, who then calls `refresh`.
class FilterChip : public QToolButton
{
    Q_OBJECT

public:
    explicit FilterChip(QWidget* parent = nullptr);

    /// Shows the filter that the library's filter manager holds as current.
    void refresh();
    /// Whether there is something to make a filter of.
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
