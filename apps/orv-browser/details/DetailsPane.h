#pragma once

#include <QScrollArea>
#include <QThreadPool>

#include "OrvLibrary/UI/TreeItemData.h"

class QFormLayout;
class QLabel;

/// Shows the chosen item: its picture, where it is from, its style, and who makes it, with the maker's
/// contact and logo.
class DetailsPane : public QScrollArea
{
    Q_OBJECT

public:
    explicit DetailsPane(QWidget* parent = nullptr);
    ~DetailsPane() override;

    /// Shows what `Library::Chooser` holds now.
    void showChosen();

private:
    struct Found;

    QLabel* addRow(QFormLayout& layout, const QString& title, const QString& objectName);
    void showFound(long long item, const Found& found);
    void showManufacturer(long id);
    void clear(const QString& title);
    void setRow(QLabel* value, const QString& text);

    QThreadPool mPool;
    QFormLayout* mRows = nullptr;
    QLabel* mTitle;
    QLabel* mPicture;
    QLabel* mCatalog;
    QLabel* mPaneName;
    QLabel* mStyle;
    QLabel* mMaker;
    QLabel* mContact;
    QLabel* mLogo;
};
