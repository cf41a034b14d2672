#include "apps/orv-browser/activities/SeenCommand.h"

#include <QCoreApplication>

#include "apps/orv-browser/models/LibraryNews.h"

SeenCommand::SeenCommand(LibraryNews& news, std::int64_t before)
    : QUndoCommand(QCoreApplication::translate("SeenCommand", "Mark all as seen")),
      mNews(news),
      mBefore(before),
      mAfter(news.lastRun())
{
}

void SeenCommand::redo()
{
    mNews.setSeen(mAfter);
}

void SeenCommand::undo()
{
    mNews.setSeen(mBefore);
}
