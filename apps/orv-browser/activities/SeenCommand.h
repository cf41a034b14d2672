#pragma once

#include <cstdint>

#include <QUndoCommand>

class LibraryNews;

/// Undo command: the user has marked the news as seen. Lives on the interface thread.
class SeenCommand : public QUndoCommand
{
public:
    /// @param before news before this command were those after this run
    /// @param news must outlive the object
    SeenCommand(LibraryNews& news, std::int64_t before);

    void redo() override;
    void undo() override;

private:
    LibraryNews& mNews;
    std::int64_t mBefore;
    std::int64_t mAfter;
};
