#pragma once

class QObject;
class QSqlTableModel;
class QString;

// Table models that show and edit one table of the store's file as it is
// stored, for the pages that work on raw rows (entry editing, the test page).
class StoreTable
{
public:
    // A new model of `table`, selected, that keeps edits until submitAll().
    // It belongs to `parent`.
    static QSqlTableModel *createModel(const QString &table, QObject *parent);

    // How long, in milliseconds, a statement on the store's connection waits
    // for a file that another program has locked. Setting it returns the
    // previous value; both give -1 when the connection is not open.
    static int busyTimeout();
    static int setBusyTimeout(int milliseconds);
};
