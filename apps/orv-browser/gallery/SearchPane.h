#pragma once

#include <atomic>
#include <memory>
#include <vector>

#include <QThreadPool>
#include <QTimer>
#include <QWidget>

#include "OrvLibrary/Search/Info.h"
#include "OrvLibrary/host/fileString.h"
#include "apps/orv-browser/gallery/FoundItems.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QListView;

/// The search field, the choice of a category, and what was found. A search starts a moment after the last
/// key, runs off the interface thread, and ends when the next one starts.
class SearchPane : public QWidget
{
    Q_OBJECT

public:
    /// A catalog to search: its category by position in the choice, and its file.
    struct Source
    {
        int category;
        fileString database;
    };

    explicit SearchPane(QWidget* parent = nullptr);
    ~SearchPane() override;

    /// What the next search goes through.
    void setSources(std::vector<Source> sources) { mSources = std::move(sources); }
    void focusField();

Q_SIGNALS:
    /// The field was filled or emptied.
    void activeChanged(bool isActive);
    /// The user went to a found item.
    void chosen(const fileString& database, long long item);

private:
    struct Results;

    Library::Search::Info query() const;
    void start();
    void showResults(const std::shared_ptr<std::atomic<bool>>& cancelled, Results& results);
    void choose(const QModelIndex& index);

    QThreadPool mPool;
    QTimer mDelay;
    std::vector<Source> mSources;
    std::shared_ptr<std::atomic<bool>> mCancelled;
    FoundItems mModel;
    QLineEdit* mField;
    QComboBox* mCategory;
    QListView* mList;
    QLabel* mSummary;
};
