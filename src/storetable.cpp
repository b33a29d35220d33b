#include "storetable.h"

#include <QDir>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSqlTableModel>
#include <QString>

namespace {

QSqlDatabase storeDatabase()
{
    // The store's own connection is shared rather than replaced: registering
    // another connection under the default name would cut the store off from
    // its file and invalidate every handle it holds.
    const QString name = QLatin1String(QSqlDatabase::defaultConnection);
    if (QSqlDatabase::contains(name))
        return QSqlDatabase::database(name, false);

    // No store has registered one (a page used on its own): open the file
    // the store would use. A file that cannot be opened leaves the table
    // empty, which is all the page has to say about it.
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"));
    db.setDatabaseName(QDir::homePath() + QDir::separator() + QStringLiteral("ledgerlydatabase.db"));
    db.open();
    return db;
}

} // namespace

QSqlTableModel *StoreTable::createModel(const QString &table, QObject *parent)
{
    auto *model = new QSqlTableModel(parent, storeDatabase());
    model->setTable(table);
    model->setEditStrategy(QSqlTableModel::OnManualSubmit);
    model->select();
    return model;
}

int StoreTable::busyTimeout()
{
    const QSqlDatabase db = storeDatabase();
    if (!db.isOpen())
        return -1;
    QSqlQuery query(db);
    if (query.exec(QStringLiteral("PRAGMA busy_timeout")) && query.next())
        return query.value(0).toInt();
    return -1;
}

int StoreTable::setBusyTimeout(int milliseconds)
{
    const int previous = busyTimeout();
    if (previous < 0)
        return previous;
    QSqlQuery query(storeDatabase());
    query.exec(QStringLiteral("PRAGMA busy_timeout = %1").arg(milliseconds));
    return previous;
}
