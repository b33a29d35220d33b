// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QPointer>
#include <QWidget>

class DatabaseManager;

namespace Ui {
class TestWidget;
}

// A developer page: each button writes one fixed sample row through the store
// and then shows the table it wrote to. No menu leads to it; a developer puts
// it into the main window's page area by hand. The store is borrowed.
class TestWidget : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(TestWidget)

public:
    explicit TestWidget(QPointer<DatabaseManager> dbManager, QWidget *parent = nullptr);
    ~TestWidget() override;

private slots:
    void on_pushButton_clicked();
    void on_pushButton_2_clicked();
    void on_pushButton_3_clicked();
    void on_pushButton_4_clicked();

private:
    void showTable(const QString &table);

    Ui::TestWidget *ui;
    QPointer<DatabaseManager> dbManager;
};
