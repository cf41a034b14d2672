#pragma once

#include <QString>

/// Something that is being downloaded or imported, or was. A plain value.
struct Activity
{
    enum class Kind
    {
        Catalog, ///< in an update
        Import
    };
    enum class State
    {
        Waiting,
        Running,
        Done,
        Failed,
        Cancelled
    };

    Kind kind = Kind::Catalog;
    QString key;  ///< identifies it within its kind: the name in the request, or the source
    QString name; ///< name for people
    State state = State::Waiting;
    QString step;     ///< the current step, for people; may be empty
    qint64 done = 0;  ///< bytes
    qint64 whole = 0; ///< bytes; 0 if unknown
    QString reason;   ///< why it failed, for people
};
