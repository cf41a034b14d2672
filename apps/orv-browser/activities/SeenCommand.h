#pragma once

#include <cstdint>

#include <QUndoCommand>

class LibraryNews;

/// The user has seen what is new. Lives on the interface thread.
class SeenCommand : public QUndoCommand
{
public:
    /// @param before the update after which things were new so far
    /// @param news outlives the object
    SeenCommand(LibraryNews& news, std::int64_t before);

    void redo() override;
    void undo() override;

private:
    LibraryNews& mNews;
    std::int64_t mBefore;
    std::int64_t mAfter;
};
