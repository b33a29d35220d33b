#pragma once

#include <QList>
#include <QPointer>
#include <QString>
#include <QWidget>

class Category;
class DatabaseManager;
class QNetworkReply;

namespace Ui {
class AddEntryWidget;
}

// The page on which the user records one expense. It asks the IP-geolocation
// service where the device is when it opens and again on every Add, and can
// attach the latest answer to the entry. The store is only borrowed.
class AddEntryWidget : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(AddEntryWidget)

public:
    AddEntryWidget(QPointer<DatabaseManager> dbManager, QWidget *parent);
    ~AddEntryWidget() override;

    void CheckFieldsFunction();
    // Appends the names in list order; the categories stay the caller's.
    void AddCategoriesToComboBox(QList<Category *> categories);

protected:
    void showEvent(QShowEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private slots:
    void on_pushButtonAdd_clicked();
    void handleNetworkData(QNetworkReply *reply);

private:
    void startLocationLookup();

    Ui::AddEntryWidget *ui;
    QPointer<DatabaseManager> dbManager;
    float latitude;
    float longitude;
    QString location;
    QString ipAddress;
    QString city;
    QString region;
};
