#pragma once

#include <QMetaType>

/// Outcome of an operation of DataBase. Registered with the meta-type system as "ErrorDataBase", since it crosses
/// threads.
enum ErrorDataBase
{
    ErrorDataBaseNone = 0,        ///< success
    ErrorDataBaseOpen = 1,        ///< the database could not be opened
    ErrorDataBaseCreateTable = 2, ///< the table could not be created
    ErrorDataBaseNoData = 3,      ///< a list of rows to insert was empty
    ErrorDataBasePrepare = 4,     ///< a statement could not be prepared
    ErrorDataBaseExec = 5         ///< a statement could not be executed
};

Q_DECLARE_METATYPE(ErrorDataBase)
