// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "csvformat.h"

#include "amount.h"
#include "records.h"
#include "storageform.h"

#include <QCoreApplication>
#include <QDate>
#include <QDateTime>
#include <QTime>

#include <cfloat>
#include <cmath>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("CsvFormat", text);
}

enum Column {
    DateColumn,
    ItemColumn,
    CategoryColumn,
    AmountColumn,
    PlaceColumn,
    GeoColumn,
    LongitudeColumn,
    LatitudeColumn,
    ColumnCount
};

const char *const columnNames[ColumnCount] = { "Date",  "Item",        "Category",  "Amount",
                                               "Place", "GeoLocation", "Longitude", "Latitude" };
const bool columnRequired[ColumnCount] = { true, true, true, true, false, false, false, false };

// Characters that make a spreadsheet read a cell as a formula, and the
// apostrophe that stops it.
bool startsFormula(QChar c)
{
    return c == QLatin1Char('=') || c == QLatin1Char('+') || c == QLatin1Char('-') || c == QLatin1Char('@') ||
        c == QLatin1Char('\'');
}

struct Record
{
    int line = 0;
    QList<QByteArray> fields;
};

// Splits the bytes into records of fields by RFC 4180. A quoted field may
// span lines; `line` is where its record begins. On a malformed field the
// problem goes into `contents` and nothing more is split.
QList<Record> splitRecords(QByteArrayView bytes, EntryFileContents &contents)
{
    QList<Record> records;
    const qsizetype size = bytes.size();
    qsizetype i = 0;
    int line = 1;
    const auto atLineEnd = [&](qsizetype at) { return at < size && (bytes[at] == '\r' || bytes[at] == '\n'); };
    while (i < size) {
        Record record;
        record.line = line;
        for (;;) {
            QByteArray field;
            if (bytes[i] == '"') {
                const int fieldLine = line;
                ++i;
                bool closed = false;
                while (i < size) {
                    const char c = bytes[i];
                    if (c == '"') {
                        if (i + 1 < size && bytes[i + 1] == '"') {
                            field += '"';
                            i += 2;
                            continue;
                        }
                        ++i;
                        closed = true;
                        break;
                    }
                    if (c == '\n' || (c == '\r' && (i + 1 >= size || bytes[i + 1] != '\n')))
                        ++line;
                    field += c;
                    ++i;
                }
                if (!closed) {
                    contents.addProblem(fieldLine, tr("a field in double quotes starts here and never ends"));
                    return records;
                }
                if (i < size && bytes[i] != ',' && !atLineEnd(i)) {
                    contents.addProblem(line, tr("text follows the closing double quote of a field"));
                    return records;
                }
            } else {
                const qsizetype start = i;
                while (i < size && bytes[i] != ',' && !atLineEnd(i)) {
                    if (bytes[i] == '"') {
                        contents.addProblem(line, tr("a double quote inside a field that is not in double quotes"));
                        return records;
                    }
                    ++i;
                }
                field = bytes.sliced(start, i - start).toByteArray();
            }
            record.fields.append(field);
            if (i < size && bytes[i] == ',') {
                ++i;
                // A comma at the very end still opens one more, empty field.
                if (i == size)
                    record.fields.append(QByteArray());
                else
                    continue;
            }
            if (i < size) {
                i += bytes[i] == '\r' && i + 1 < size && bytes[i + 1] == '\n' ? 2 : 1;
                ++line;
            }
            break;
        }
        records.append(record);
    }
    return records;
}

// Two digits or four at `from`, as a number; -1 when they are not digits.
int digits(QByteArrayView text, qsizetype from, qsizetype count)
{
    int number = 0;
    for (qsizetype i = from; i < from + count; ++i) {
        if (text[i] < '0' || text[i] > '9')
            return -1;
        number = number * 10 + (text[i] - '0');
    }
    return number;
}

// yyyy-MM-ddTHH:mm:ss (the file's own form), yyyy-MM-dd HH:mm:ss or
// yyyy-MM-dd (midnight); invalid for anything else.
QDateTime readDate(QByteArrayView text)
{
    if ((text.size() != 10 && text.size() != 19) || text[4] != '-' || text[7] != '-')
        return QDateTime();
    const int year = digits(text, 0, 4);
    const int month = digits(text, 5, 2);
    const int day = digits(text, 8, 2);
    // QDate takes a negative year (before Christ); a field that is no
    // digits is no date.
    if (year < 0 || month < 0 || day < 0)
        return QDateTime();
    const QDate date(year, month, day);
    if (text.size() == 10)
        return date.isValid() ? date.startOfDay() : QDateTime();
    if ((text[10] != 'T' && text[10] != ' ') || text[13] != ':' || text[16] != ':')
        return QDateTime();
    const QTime time(digits(text, 11, 2), digits(text, 14, 2), digits(text, 17, 2));
    if (!date.isValid() || !time.isValid())
        return QDateTime();
    return QDateTime(date, time);
}

QString nonNull(QString text)
{
    // A null text would be stored as SQL NULL, which the entry table refuses.
    if (text.isNull())
        text = QLatin1String("");
    return text;
}

// Whether the number is finite and rounds to a finite float: up to half a
// unit in the last place above the largest float, a number still rounds to
// it rather than to infinity.
bool fitsAFloat(double number)
{
    return std::isfinite(number) && std::fabs(number) < double(FLT_MAX) + std::ldexp(1.0, 103);
}

QString largestAmount()
{
    return QString::number(Amount::largest, 'f', 2);
}

QString quoted(QByteArrayView field)
{
    return QStringLiteral("\"%1\"").arg(QString::fromUtf8(field));
}

} // namespace

QByteArray CsvFormat::header()
{
    return QByteArrayLiteral("Date,Item,Category,Amount,Place,GeoLocation,Longitude,Latitude\r\n");
}

QByteArray CsvFormat::field(const QString &text)
{
    QByteArray bytes = text.toUtf8();
    if (!text.isEmpty() && startsFormula(text.front()))
        bytes.prepend('\'');
    for (const char c : bytes) {
        if (c == ',' || c == '"' || c == '\r' || c == '\n') {
            bytes.replace("\"", "\"\"");
            bytes.prepend('"');
            bytes.append('"');
            break;
        }
    }
    return bytes;
}

QString CsvFormat::fieldText(const QString &unquoted)
{
    if (unquoted.size() >= 2 && unquoted.front() == QLatin1Char('\'') && startsFormula(unquoted.at(1)))
        return unquoted.mid(1);
    return unquoted;
}

void CsvFormat::appendLine(QByteArray &out, const Entry &entry)
{
    out += StorageForm::dateTime(entry.TransactDateTime).toLatin1();
    out += ',';
    out += field(entry.ItemName);
    out += ',';
    out += field(entry.CategoryName);
    out += ',';
    out += number(entry.Price);
    out += ',';
    out += field(entry.LocationText);
    out += entry.EnableGeoLoc ? QByteArrayView(",true,") : QByteArrayView(",false,");
    out += number(entry.GeoLocLongit);
    out += ',';
    out += number(entry.GeoLocLatit);
    out += "\r\n";
}

QByteArray CsvFormat::write(const QList<Entry *> &entries)
{
    QByteArray out = header();
    for (const Entry *entry : entries)
        appendLine(out, *entry);
    return out;
}

QByteArray CsvFormat::number(float value)
{
    for (int precision = 6; precision < 9; ++precision) {
        const QByteArray text = QByteArray::number(double(value), 'g', precision);
        float back = 0.0f;
        if (readNumber(text, &back) && back == value)
            return text;
    }
    // Nine significant digits tell every float apart.
    return QByteArray::number(double(value), 'g', 9);
}

bool CsvFormat::readNumber(QByteArrayView text, float *value)
{
    // The general format's characters only: toDouble() alone would also
    // take blanks around the number, "inf" and "nan".
    qsizetype i = 0;
    const qsizetype size = text.size();
    if (i < size && (text[i] == '+' || text[i] == '-'))
        ++i;
    int mantissaDigits = 0;
    while (i < size && text[i] >= '0' && text[i] <= '9') {
        ++i;
        ++mantissaDigits;
    }
    if (i < size && text[i] == '.') {
        ++i;
        while (i < size && text[i] >= '0' && text[i] <= '9') {
            ++i;
            ++mantissaDigits;
        }
    }
    if (mantissaDigits == 0)
        return false;
    if (i < size && (text[i] == 'e' || text[i] == 'E')) {
        ++i;
        if (i < size && (text[i] == '+' || text[i] == '-'))
            ++i;
        int exponentDigits = 0;
        while (i < size && text[i] >= '0' && text[i] <= '9') {
            ++i;
            ++exponentDigits;
        }
        if (exponentDigits == 0)
            return false;
    }
    if (i != size)
        return false;
    bool ok = false;
    const double number = text.toByteArray().toDouble(&ok);
    if (!ok || !fitsAFloat(number))
        return false;
    // Adding zero makes -0 plain 0, which is what it is written as.
    *value = float(number) + 0.0f;
    return true;
}

EntryFileContents CsvFormat::read(QByteArrayView bytes)
{
    EntryFileContents contents;
    if (bytes.startsWith("\xEF\xBB\xBF"))
        bytes = bytes.sliced(3);
    if (bytes.trimmed().isEmpty()) {
        contents.addProblem(1, tr("the file is empty; its first line must name the columns"));
        return contents;
    }
    if (!contents.acceptText(bytes, true))
        return contents;

    const QList<Record> records = splitRecords(bytes, contents);
    if (!contents.isAcceptable() || records.isEmpty())
        return contents;

    // The columns, by name.
    int columnAt[ColumnCount];
    std::fill(std::begin(columnAt), std::end(columnAt), -1);
    const Record &names = records.constFirst();
    for (qsizetype i = 0; i < names.fields.size(); ++i) {
        const QString name = QString::fromUtf8(names.fields.at(i)).trimmed();
        for (int column = 0; column < ColumnCount; ++column) {
            if (name.compare(QLatin1String(columnNames[column]), Qt::CaseInsensitive) != 0)
                continue;
            if (columnAt[column] >= 0)
                contents.addProblem(names.line,
                                    tr("the column %1 is named twice").arg(QLatin1String(columnNames[column])));
            columnAt[column] = int(i);
        }
    }
    QStringList missing;
    for (int column = 0; column < ColumnCount; ++column) {
        if (columnRequired[column] && columnAt[column] < 0)
            missing.append(tr("no %1 column").arg(QLatin1String(columnNames[column])));
    }
    if (!missing.isEmpty())
        contents.addProblem(names.line, tr("the first line names %1").arg(missing.join(QLatin1String(", "))));
    if (!contents.isAcceptable())
        return contents;

    const qsizetype columns = names.fields.size();
    contents.entries.reserve(records.size() - 1);
    for (qsizetype r = 1; r < records.size(); ++r) {
        const Record &record = records.at(r);
        // A blank line is no record.
        if (record.fields.size() == 1 && record.fields.constFirst().isEmpty())
            continue;
        if (record.fields.size() != columns) {
            contents.addProblem(record.line,
                                tr("%1 fields where the first line names %2").arg(record.fields.size()).arg(columns));
            continue;
        }
        const auto value = [&](Column column) -> QByteArrayView {
            return columnAt[column] < 0 ? QByteArrayView() : QByteArrayView(record.fields.at(columnAt[column]));
        };
        const auto text = [&](Column column) { return nonNull(fieldText(QString::fromUtf8(value(column)))); };
        const int problemsBefore = int(contents.problems.size());

        Entry entry;
        entry.TransactDateTime = readDate(value(DateColumn));
        if (!entry.TransactDateTime.isValid())
            contents.addProblem(
                record.line, tr("the date %1 is not of the form yyyy-MM-ddTHH:mm:ss").arg(quoted(value(DateColumn))));
        entry.ItemName = text(ItemColumn);
        if (entry.ItemName.isEmpty())
            contents.addProblem(record.line, tr("the item is empty"));
        entry.CategoryName = text(CategoryColumn);
        if (entry.CategoryName.isEmpty())
            contents.addProblem(record.line, tr("the category is empty"));
        if (!readNumber(value(AmountColumn), &entry.Price))
            contents.addProblem(record.line,
                                tr("the amount %1 is not a number Ledgerly can keep").arg(quoted(value(AmountColumn))));
        else if (std::fabs(double(entry.Price)) > Amount::largest)
            contents.addProblem(record.line,
                                tr("the amount %1 is above %2, the largest amount Ledgerly takes")
                                    .arg(quoted(value(AmountColumn)), largestAmount()));
        entry.LocationText = text(PlaceColumn);

        const QByteArrayView geo = value(GeoColumn);
        if (geo.compare("true", Qt::CaseInsensitive) == 0)
            entry.EnableGeoLoc = true;
        else if (!geo.isEmpty() && geo.compare("false", Qt::CaseInsensitive) != 0)
            contents.addProblem(record.line, tr("the geolocation %1 is neither true nor false").arg(quoted(geo)));
        for (const auto &[column, coordinate] :
             { std::pair(LongitudeColumn, &entry.GeoLocLongit), std::pair(LatitudeColumn, &entry.GeoLocLatit) }) {
            const QByteArrayView number = value(column);
            if (!number.isEmpty() && !readNumber(number, coordinate))
                contents.addProblem(record.line,
                                    tr("the %1 %2 is not a number")
                                        .arg(QString::fromLatin1(columnNames[column]).toLower(), quoted(number)));
        }
        if (contents.problems.size() == problemsBefore)
            contents.entries.append({ record.line, entry, QString(), QString() });
    }
    return contents;
}

bool CsvFormat::matches(const QString &fileName)
{
    return fileName.endsWith(QLatin1String(".csv"), Qt::CaseInsensitive);
}
