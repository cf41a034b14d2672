#pragma once

#include <QString>

/// Something that is fetched or imported, or was. A value.
struct Activity
{
    enum class Kind
    {
        Catalog, ///< of an update
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
    QString
        key; ///< tells it from the others of its kind: the name that the service is asked for, or a source
    QString name; ///< for people
    State state = State::Waiting;
    QString step;     ///< what goes on, for people; may be empty
    qint64 done = 0;  ///< bytes
    qint64 whole = 0; ///< bytes; 0 when it is not known
    QString reason;   ///< why it failed, for people
};
