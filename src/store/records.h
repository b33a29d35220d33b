// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QDateTime>
#include <QList>
#include <QString>
#include <QtAlgorithms>

#include <utility>

// Plain records, one per table row, field for field in column order. Records
// that DatabaseManager returns are allocated per call and owned by the caller.

class Category
{
public:
    Category();
    ~Category();

    int SNo;
    QString CategoryName;
};

class Mode
{
public:
    Mode();
    ~Mode();

    int SNo;
    QString ModeName;
};

class Items
{
public:
    Items();
    ~Items();

    int SNo;
    QString ItemName;
    QString CategoryName;
    int CategoryID;
    float LastPrice;
    int UseFrequency;
};

class ItemSubstitutes
{
public:
    ItemSubstitutes();
    ~ItemSubstitutes();

    int SNo;
    QString ItemName;
    QString SubstituteName;
    int ItemID;
    int SubstituteID; // stored in the column "SubstitueID"
};

class HistoricLocation
{
public:
    HistoricLocation();
    ~HistoricLocation();

    int SNo;
    QString LocationName;
    float LocationLongitude;
    float LocationLatitude;
    QString ReverseGeoLocation;
    QString CoordinateText;
};

class Entry
{
public:
    Entry();
    ~Entry();

    int SNo;
    QString ItemName;
    QString CategoryName;
    int CategoryID;
    QDateTime TransactDateTime;
    float Price;
    QString LocationText;
    bool EnableGeoLoc;
    int GeoLocID;
    float GeoLocLongit;
    float GeoLocLatit;
    int ItemID;
};

// What the entries at one place text add up to: a line of the places
// report, grouped from table Entry, not a row of a table of its own.
class PlaceSpending
{
public:
    PlaceSpending();
    ~PlaceSpending();

    QString LocationText;
    int NumberOfEntries;
    float Total;
    float Average;
    QDateTime LastVisit;
};

// What the entries of one category add up to: a line of the history page's
// per-category figures, grouped from table Entry.
class CategorySpending
{
public:
    CategorySpending();
    ~CategorySpending();

    QString CategoryName;
    // The distinct stored date-times of the category's entries, as
    // GetAllDistinctDatesOfEntriesOfCategory() lists them.
    int NumberOfDateTimes;
    // The prices added in single precision in the order that
    // GetAllEntriesOfCategory() lists the entries, so that the sum is the
    // very float that adding up that list gives.
    float Total;
};

// A remembered place (a HistoricLocation row) with what the entries that
// point at it (by GeoLocID) add up to.
class RememberedPlaceSpending
{
public:
    RememberedPlaceSpending();
    ~RememberedPlaceSpending();

    int SNo;
    QString LocationName;
    float LocationLongitude;
    float LocationLatitude;
    int NumberOfEntries;
    float Total;
};

// Owns the records of one list that the store returned and deletes them with
// itself; it reads like the list (range-for, size(), at(), list()). Made by
// owned(): `const auto entries = owned(store.GetAllEntries());`.
template<typename Record> class OwnedList
{
public:
    explicit OwnedList(QList<Record *> records) : records(std::move(records)) { }
    ~OwnedList() { qDeleteAll(records); }
    OwnedList(OwnedList &&other) noexcept : records(std::exchange(other.records, {})) { }
    OwnedList &operator=(OwnedList &&other) noexcept
    {
        records.swap(other.records);
        return *this;
    }
    OwnedList(const OwnedList &) = delete;
    OwnedList &operator=(const OwnedList &) = delete;

    const QList<Record *> &list() const { return records; }
    // Hands the records over to the caller, who then deletes them; the list
    // is left empty.
    QList<Record *> release() { return std::exchange(records, {}); }
    qsizetype size() const { return records.size(); }
    bool isEmpty() const { return records.isEmpty(); }
    Record *at(qsizetype i) const { return records.at(i); }
    Record *operator[](qsizetype i) const { return records.at(i); }
    auto begin() const { return records.cbegin(); }
    auto end() const { return records.cend(); }

private:
    QList<Record *> records;
};

template<typename Record> OwnedList<Record> owned(QList<Record *> records)
{
    return OwnedList<Record>(std::move(records));
}
