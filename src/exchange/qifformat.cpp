// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "qifformat.h"

#include "amount.h"
#include "csvformat.h"
#include "records.h"

#include <QCoreApplication>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("QifFormat", text);
}

// One part of a split record: S category, E memo, $ amount.
struct Split
{
    int line = 0;
    QString category;
    QString memo;
    int amountLine = 0;
    QString amount;
};

// A record's fields as the file gives them; a line of 0 is a field the
// record does not have.
struct Record
{
    int line = 0;
    int dateLine = 0;
    QString date;
    int amountLine = 0;
    QString amount;
    bool amountFromT = false;
    QString payee;
    QString memo;
    int categoryLine = 0;
    QString category;
    QList<Split> splits;
};

// A date as written: three numbers, before the file's order of day and
// month is known.
struct WrittenDate
{
    bool valid = false;
    // A four-digit first number, or eight digits without separators.
    bool yearFirst = false;
    // The year follows an apostrophe: Quicken's form, of this century when
    // it has one or two digits.
    bool apostropheYear = false;
    bool dotted = false;
    int first = 0;
    int second = 0;
    int third = 0;
    int firstDigits = 0;
    int thirdDigits = 0;
};

WrittenDate readWrittenDate(const QString &written)
{
    static const QRegularExpression compact(QStringLiteral("^(\\d{4})(\\d{2})(\\d{2})$"));
    static const QRegularExpression separated(QStringLiteral("^(\\d{1,4})([/.-])(\\d{1,2})([/.'-])(\\d{1,4})$"));

    // Blanks may stand anywhere inside a date (`6/ 1/94`); those of ASCII
    // are left out, as programs write them.
    QString text = written;
    text.removeIf(
        [](QChar c) { return c == u' ' || c == u'\t' || c == u'\n' || c == u'\v' || c == u'\f' || c == u'\r'; });
    WrittenDate date;
    if (const QRegularExpressionMatch match = compact.match(text); match.hasMatch()) {
        date.valid = true;
        date.yearFirst = true;
        date.first = match.captured(1).toInt();
        date.second = match.captured(2).toInt();
        date.third = match.captured(3).toInt();
        return date;
    }
    const QRegularExpressionMatch match = separated.match(text);
    if (!match.hasMatch())
        return date;
    date.firstDigits = int(match.capturedLength(1));
    date.thirdDigits = int(match.capturedLength(5));
    date.first = match.captured(1).toInt();
    date.second = match.captured(3).toInt();
    date.third = match.captured(5).toInt();
    date.apostropheYear = match.captured(4) == QLatin1String("'");
    date.dotted = match.captured(2) == QLatin1String(".");
    date.yearFirst = date.firstDigits == 4;
    if (date.yearFirst)
        date.valid = !date.apostropheYear && date.thirdDigits <= 2;
    else
        date.valid = date.firstDigits <= 2 && date.thirdDigits != 3;
    return date;
}

// Whether the date can put its day or its month first: everything but the
// forms whose order is fixed.
bool ordersOpen(const WrittenDate &date)
{
    return date.valid && !date.yearFirst;
}

// Two-digit years by the window around `thisYear`, which a reader asks the
// clock for once per file: asked per date, the clock was most of the cost of
// reading a large file, and a file read across New Year could have had
// dates in two windows.
QDate dateOf(const WrittenDate &written, QifFormat::DateOrder order, int thisYear)
{
    if (!written.valid)
        return QDate();
    if (written.yearFirst)
        return QDate(written.first, written.second, written.third);
    if (order == QifFormat::DateOrder::YearFirst && written.firstDigits == 2 && !written.apostropheYear &&
        written.thirdDigits <= 2)
        return QDate(QifFormat::twoDigitYear(written.first, thisYear), written.second, written.third);
    int year = written.third;
    if (written.apostropheYear && written.thirdDigits <= 2)
        year += 2000;
    else if (written.thirdDigits <= 2)
        year = QifFormat::twoDigitYear(written.third, thisYear);
    if (order == QifFormat::DateOrder::DayFirst)
        return QDate(year, written.second, written.first);
    return QDate(year, written.first, written.second);
}

QString quoted(const QString &text)
{
    return QStringLiteral("\"%1\"").arg(text);
}

QByteArray oneLine(const QString &text)
{
    // A QIF field ends with its line; a line break inside a text would
    // start a field of its own.
    QString flat = text;
    flat.replace(QLatin1String("\r\n"), QLatin1String(" "));
    flat.replace(QLatin1Char('\r'), QLatin1Char(' '));
    flat.replace(QLatin1Char('\n'), QLatin1Char(' '));
    return flat.toUtf8();
}

// An expense as a negative amount, in the CSV's number form. Three digits
// after the point would read as a group of thousands (1.125 as 1125), so
// such an amount carries one more zero (1.1250).
QByteArray amount(float price)
{
    const float written = -price;
    QByteArray text = CsvFormat::number(written);
    if (text.contains('e')) {
        // QIF has no exponents: the fewest decimals that read back instead.
        for (int decimals = 1; decimals <= 64; ++decimals) {
            text = QByteArray::number(double(written), 'f', decimals);
            if (float(text.toDouble()) == written)
                break;
        }
    }
    const qsizetype point = text.indexOf('.');
    if (point >= 0 && text.size() - 1 - point == 3)
        text += '0';
    return text;
}

enum class Section { None, Transactions, Other };

Section sectionOf(QStringView header)
{
    // Programs pad headers with blanks; the line was trimmed already.
    for (const char *name : { "!Type:Cash", "!Type:Bank", "!Type:CCard" }) {
        if (header.compare(QLatin1String(name), Qt::CaseInsensitive) == 0)
            return Section::Transactions;
    }
    return Section::Other;
}

bool isOption(QStringView header)
{
    // !Option:AutoSwitch and !Clear:AutoSwitch switch how Quicken reads the
    // account list that follows; they open no section of their own.
    return header.startsWith(QLatin1String("!Option:"), Qt::CaseInsensitive) ||
        header.startsWith(QLatin1String("!Clear:"), Qt::CaseInsensitive);
}

} // namespace

QByteArray QifFormat::header()
{
    return QByteArrayLiteral("!Type:Cash\r\n");
}

void QifFormat::appendRecord(QByteArray &out, const Entry &entry)
{
    out += 'D';
    out += entry.TransactDateTime.date().toString(QStringLiteral("MM/dd/yyyy")).toLatin1();
    out += "\r\nT";
    out += amount(entry.Price);
    out += "\r\nP";
    out += oneLine(entry.LocationText);
    out += "\r\nM";
    out += oneLine(entry.ItemName);
    out += "\r\nL";
    out += oneLine(entry.CategoryName);
    out += "\r\n^\r\n";
}

QByteArray QifFormat::write(const QList<Entry *> &entries)
{
    QByteArray out = header();
    for (const Entry *entry : entries)
        appendRecord(out, *entry);
    return out;
}

std::optional<double> QifFormat::readAmount(QStringView text)
{
    text = text.trimmed();
    bool negative = false;
    if (!text.isEmpty() && (text.front() == QLatin1Char('-') || text.front() == QLatin1Char('+'))) {
        negative = text.front() == QLatin1Char('-');
        text = text.sliced(1);
    }
    // The digits after the last '.' or ',' tell what it is: three of them
    // are a group of thousands, any other number the decimals.
    qsizetype decimalAt = -1;
    for (qsizetype i = text.size() - 1; i >= 0; --i) {
        if (text[i] == QLatin1Char('.') || text[i] == QLatin1Char(',')) {
            const qsizetype decimals = text.size() - 1 - i;
            if (decimals > 0 && decimals != 3)
                decimalAt = i;
            break;
        }
        if (text[i] < QLatin1Char('0') || text[i] > QLatin1Char('9'))
            break;
    }
    QByteArray number;
    number.reserve(text.size());
    bool anyDigit = false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (i == decimalAt) {
            number += '.';
        } else if (c >= QLatin1Char('0') && c <= QLatin1Char('9')) {
            number += char(c.unicode());
            anyDigit = true;
        } else if (c != QLatin1Char('.') && c != QLatin1Char(',') && c != QLatin1Char(' ') && c != QLatin1Char('\'')) {
            return std::nullopt;
        }
    }
    if (!anyDigit)
        return std::nullopt;
    bool ok = false;
    const double value = number.toDouble(&ok);
    if (!ok || !std::isfinite(value))
        return std::nullopt;
    return negative ? -value : value;
}

int QifFormat::twoDigitYear(int yy, int currentYear)
{
    if (currentYear == 0)
        currentYear = QDate::currentDate().year();
    const int earliest = currentYear - 80;
    int year = earliest - earliest % 100 + yy % 100;
    if (year < earliest)
        year += 100;
    return year;
}

QString QifFormat::orderName(DateOrder order)
{
    switch (order) {
    case DateOrder::MonthFirst:
        return QStringLiteral("mdy");
    case DateOrder::DayFirst:
        return QStringLiteral("dmy");
    case DateOrder::YearFirst:
        break;
    }
    return QStringLiteral("ymd");
}

namespace {

// Reads the lines of the file into records; the sections the reader does not
// take are counted. False when the file is refused (a problem added).
bool readRecords(const QString &text, EntryFileContents &contents, QList<Record> &records)
{
    Section section = Section::None;
    Record record;
    bool inRecord = false;
    // Where the record of a skipped section that is being read started.
    int otherRecordLine = 0;
    int lineNumber = 0;
    int firstTextLine = 0;
    qsizetype at = 0;
    while (at < text.size()) {
        qsizetype end = at;
        while (end < text.size() && text[end] != QLatin1Char('\n') && text[end] != QLatin1Char('\r'))
            ++end;
        const QStringView line = QStringView(text).sliced(at, end - at).trimmed();
        ++lineNumber;
        at = end +
            (end + 1 < text.size() && text[end] == QLatin1Char('\r') && text[end + 1] == QLatin1Char('\n') ? 2 : 1);
        if (line.isEmpty())
            continue;

        if (line.front() == QLatin1Char('!')) {
            if (isOption(line))
                continue;
            if (inRecord || otherRecordLine > 0) {
                contents.addProblem(inRecord ? record.line : otherRecordLine,
                                    tr("the record that starts here does not end with ^ before the next header"));
                return false;
            }
            section = sectionOf(line);
            continue;
        }
        if (section == Section::None) {
            // A title or a comment before the first header.
            if (firstTextLine == 0)
                firstTextLine = lineNumber;
            continue;
        }
        if (section == Section::Other) {
            if (line.front() == QLatin1Char('^')) {
                if (otherRecordLine > 0)
                    ++contents.skippedOtherSections;
                otherRecordLine = 0;
            } else if (otherRecordLine == 0) {
                otherRecordLine = lineNumber;
            }
            continue;
        }

        const QChar code = line.front();
        const QString value = line.sliced(1).trimmed().toString();
        if (code == QLatin1Char('^')) {
            if (inRecord)
                records.append(record);
            record = Record();
            inRecord = false;
            continue;
        }
        if (!inRecord) {
            record.line = lineNumber;
            inRecord = true;
        }
        Split *split = record.splits.isEmpty() ? nullptr : &record.splits.last();
        switch (code.unicode()) {
        case 'D':
            // A second date in a record (some programs repeat it among the
            // splits) changes nothing.
            if (record.dateLine == 0) {
                record.dateLine = lineNumber;
                record.date = value;
            }
            break;
        case 'T':
        case 'U':
            // T is the amount; U, which newer programs add, the same with
            // more digits. T wins when both are there.
            if (record.amountLine == 0 || (code == QLatin1Char('T') && !record.amountFromT)) {
                record.amountLine = lineNumber;
                record.amount = value;
                record.amountFromT = code == QLatin1Char('T');
            }
            break;
        case 'P':
            record.payee = value;
            break;
        case 'M':
            record.memo = value;
            break;
        case 'L':
            record.categoryLine = lineNumber;
            record.category = value;
            break;
        case 'S':
            record.splits.append({ lineNumber, value, QString(), 0, QString() });
            break;
        case 'E':
            if (!split || split->amountLine > 0 || !split->memo.isNull()) {
                record.splits.append({ lineNumber, QString(), QString(), 0, QString() });
                split = &record.splits.last();
            }
            split->memo = value.isNull() ? QLatin1String("") : value;
            break;
        case '$':
            if (!split || split->amountLine > 0) {
                record.splits.append({ lineNumber, QString(), QString(), 0, QString() });
                split = &record.splits.last();
            }
            split->amountLine = lineNumber;
            split->amount = value;
            break;
        default:
            // Numbers, cleared marks, addresses, split percentages.
            break;
        }
    }
    if (section == Section::None && firstTextLine > 0) {
        contents.addProblem(firstTextLine, tr("a QIF file starts with a header such as !Type:Bank"));
        return false;
    }
    if (otherRecordLine > 0) {
        contents.addProblem(otherRecordLine,
                            tr("the record that starts here does not end with ^: the file may be cut short"));
        return false;
    }
    if (inRecord) {
        // The last record may end with the file instead of ^.
        if (record.dateLine == 0 || record.amountLine == 0) {
            contents.addProblem(record.line,
                                tr("the record that starts here does not end with ^: the file may be cut short"));
            return false;
        }
        records.append(record);
    }
    return true;
}

bool isTransfer(const QString &category)
{
    return category.startsWith(QLatin1Char('['));
}

// Amounts in whole cents, for adding splits up exactly. Amounts beyond any
// price are refused where an entry is made of them; here they only need to
// stay within what 64 bits hold, added up as well (see addCents()).
qint64 cents(double amount)
{
    constexpr double beyondAnyAmount = 1e15;
    if (std::isnan(amount))
        return 0;
    return qint64(std::llround(std::clamp(amount, -beyondAnyAmount, beyondAnyAmount) * 100.0));
}

qint64 addCents(qint64 sum, qint64 more)
{
    qint64 added = 0;
    if (!__builtin_add_overflow(sum, more, &added))
        return added;
    return more < 0 ? std::numeric_limits<qint64>::min() / 2 : std::numeric_limits<qint64>::max() / 2;
}

} // namespace

EntryFileContents QifFormat::read(QByteArrayView bytes, std::optional<DateOrder> order,
                                  std::optional<TextEncoding::Kind> encoding)
{
    EntryFileContents contents;
    const int thisYear = QDate::currentDate().year();
    const TextEncoding::Kind kind = encoding ? *encoding : TextEncoding::detect(bytes);
    contents.encoding = TextEncoding::name(kind);
    const QString text = TextEncoding::decode(bytes, kind);
    if (text.trimmed().isEmpty()) {
        contents.addProblem(1, tr("the file is empty"));
        return contents;
    }
    if (const qsizetype nul = text.indexOf(QChar(0)); nul >= 0) {
        const QByteArray before = text.left(nul).toUtf8();
        contents.addProblem(EntryFileContents::lineAt(before, before.size()),
                            tr("a NUL byte: this is not a text file"));
        return contents;
    }

    // First the records as written, then the dates, whose order the whole
    // file decides.
    QList<Record> records;
    if (!readRecords(text, contents, records))
        return contents;

    QList<WrittenDate> dates;
    dates.reserve(records.size());
    int dayFirstLine = 0;
    int monthFirstLine = 0;
    for (const Record &r : records) {
        const WrittenDate date = readWrittenDate(r.date);
        dates.append(date);
        if (!ordersOpen(date))
            continue;
        if (date.first > 12 && date.second <= 12 && dayFirstLine == 0)
            dayFirstLine = r.dateLine;
        if (date.second > 12 && date.first <= 12 && monthFirstLine == 0)
            monthFirstLine = r.dateLine;
        if (!order && contents.openDate.isEmpty() && date.first <= 12 && date.second <= 12 &&
            date.first != date.second) {
            contents.openDate = r.date;
            contents.openDateLine = r.dateLine;
            contents.openDateMonthFirst = dateOf(date, DateOrder::MonthFirst, thisYear);
            contents.openDateDayFirst = dateOf(date, DateOrder::DayFirst, thisYear);
        }
    }
    if (!order && dayFirstLine > 0 && monthFirstLine > 0) {
        contents.addProblem(qMax(dayFirstLine, monthFirstLine),
                            tr("this date has the %1 first, but the one on line %2 the %3 first")
                                .arg(dayFirstLine > monthFirstLine ? tr("day") : tr("month"))
                                .arg(qMin(dayFirstLine, monthFirstLine))
                                .arg(dayFirstLine > monthFirstLine ? tr("month") : tr("day")));
        return contents;
    }
    std::optional<DateOrder> fileOrder = order;
    if (!order && (dayFirstLine > 0 || monthFirstLine > 0)) {
        fileOrder = dayFirstLine > 0 ? DateOrder::DayFirst : DateOrder::MonthFirst;
        contents.openDate.clear();
        contents.openDateLine = 0;
        contents.openDateMonthFirst = QDate();
        contents.openDateDayFirst = QDate();
    }
    bool anyOpen = false;
    bool anyDotted = false;
    for (const WrittenDate &date : dates) {
        anyOpen = anyOpen || ordersOpen(date);
        anyDotted = anyDotted || (ordersOpen(date) && date.dotted);
    }
    if (fileOrder)
        contents.dateOrder = orderName(*fileOrder);
    else if (anyOpen)
        contents.dateOrder = orderName(anyDotted ? DateOrder::DayFirst : DateOrder::MonthFirst);

    for (qsizetype i = 0; i < records.size(); ++i) {
        const Record &r = records.at(i);
        if (r.dateLine == 0) {
            contents.addProblem(r.line, tr("the record that starts here has no date (D)"));
            continue;
        }
        if (r.amountLine == 0) {
            contents.addProblem(r.line, tr("the record that starts here has no amount (T)"));
            continue;
        }
        const WrittenDate &written = dates.at(i);
        // Where the file leaves the order open, dots are the day-first
        // countries' form and slashes the month-first ones'.
        const DateOrder dateOrder =
            fileOrder ? *fileOrder : written.dotted ? DateOrder::DayFirst : DateOrder::MonthFirst;
        const QDate date = dateOf(written, dateOrder, thisYear);
        if (!date.isValid()) {
            contents.addProblem(r.dateLine, tr("the date %1 is not a date Ledgerly can read").arg(quoted(r.date)));
            continue;
        }
        const std::optional<double> amount = readAmount(r.amount);
        if (!amount) {
            contents.addProblem(r.amountLine, tr("the amount %1 is not a number").arg(quoted(r.amount)));
            continue;
        }
        if (isTransfer(r.category)) {
            ++contents.skippedTransfers;
            continue;
        }
        if (*amount == 0) {
            ++contents.skippedZeroAmounts;
            continue;
        }
        if (*amount > 0) {
            ++contents.skippedIncome;
            continue;
        }

        const QString recordItem =
            !r.memo.isEmpty() ? r.memo : !r.payee.isEmpty() ? r.payee : QStringLiteral("Imported");
        // Without a category an expense goes where the program puts what
        // fits nowhere else; so does what a split record leaves over.
        const QString recordCategory = r.category.isEmpty() || r.category == QLatin1String("--Split--")
            ? QStringLiteral("Others")
            : r.category;
        const auto addExpense = [&](int line, const QString &written, double value, const QString &item,
                                    const QString &category) {
            if (-value > Amount::largest) {
                contents.addProblem(line, tr("the amount %1 is above %2, the largest amount Ledgerly takes")
                                              .arg(quoted(written), QString::number(Amount::largest, 'f', 2)));
                return;
            }
            Entry entry;
            entry.TransactDateTime = date.startOfDay();
            // Adding zero makes an expense of -0 plain 0.
            entry.Price = float(-value) + 0.0f;
            entry.LocationText = r.payee.isNull() ? QLatin1String("") : r.payee;
            entry.ItemName = item;
            entry.CategoryName = category;
            contents.entries.append({ r.line, entry, QString(), QString() });
        };

        if (r.splits.isEmpty()) {
            addExpense(r.amountLine, r.amount, *amount, recordItem, recordCategory);
            continue;
        }
        qint64 splitCents = 0;
        bool splitsRead = true;
        for (const Split &split : r.splits) {
            const std::optional<double> part = readAmount(split.amount);
            if (!part) {
                contents.addProblem(split.amountLine > 0 ? split.amountLine : split.line,
                                    tr("the split amount %1 is not a number").arg(quoted(split.amount)));
                splitsRead = false;
                continue;
            }
            splitCents = addCents(splitCents, cents(*part));
            if (isTransfer(split.category))
                ++contents.skippedTransfers;
            else if (*part == 0)
                ++contents.skippedZeroAmounts;
            else if (*part > 0)
                ++contents.skippedIncome;
            else
                addExpense(split.amountLine, split.amount, *part, !split.memo.isEmpty() ? split.memo : recordItem,
                           split.category.isEmpty() ? QStringLiteral("Others") : split.category);
        }
        if (!splitsRead)
            continue;
        const qint64 rest = addCents(cents(*amount), -splitCents);
        if (rest < 0)
            addExpense(r.amountLine, r.amount, double(rest) / 100.0, recordItem, recordCategory);
        else if (rest > 0)
            ++contents.skippedIncome;
    }
    return contents;
}

bool QifFormat::matches(const QString &fileName)
{
    return fileName.endsWith(QLatin1String(".qif"), Qt::CaseInsensitive);
}
