// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "qifformat.h"

#include "amount.h"
#include "csvformat.h"
#include "records.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QUtf8StringView>

#include <cmath>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("QifFormat", text);
}

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
};

// A date as written, before the file's day and month order is known.
struct WrittenDate
{
    bool valid = false;
    // Year first or with dots: the order is fixed.
    bool fixedOrder = false;
    int first = 0;
    int second = 0;
    int year = 0;
};

WrittenDate readWrittenDate(const QString &written)
{
    static const QRegularExpression iso(QStringLiteral("^(\\d{4})-(\\d{1,2})-(\\d{1,2})$"));
    static const QRegularExpression dotted(QStringLiteral("^(\\d{1,2})\\.(\\d{1,2})\\.(\\d{4})$"));
    static const QRegularExpression slashed(QStringLiteral("^(\\d{1,2})/(\\d{1,2})(['/])(\\d{4}|\\d{1,2})$"));

    QString text = written;
    text.remove(QLatin1Char(' '));
    WrittenDate date;
    if (const QRegularExpressionMatch match = iso.match(text); match.hasMatch()) {
        // Stored day first, like the dotted form, so that one rule reads both.
        date = { true, true, match.captured(3).toInt(), match.captured(2).toInt(), match.captured(1).toInt() };
    } else if (const QRegularExpressionMatch match = dotted.match(text); match.hasMatch()) {
        date = { true, true, match.captured(1).toInt(), match.captured(2).toInt(), match.captured(3).toInt() };
    } else if (const QRegularExpressionMatch match = slashed.match(text); match.hasMatch()) {
        const QString year = match.captured(4);
        int fullYear = year.toInt();
        // A short year after an apostrophe is of this century, after a slash
        // of the last one: Quicken's own convention.
        if (year.size() <= 2)
            fullYear += match.captured(3) == QLatin1String("'") ? 2000 : 1900;
        date = { true, false, match.captured(1).toInt(), match.captured(2).toInt(), fullYear };
    }
    return date;
}

// The date in the given order; fixed-order dates hold the day first.
QDate dateOf(const WrittenDate &written, QifFormat::DateOrder order)
{
    if (written.fixedOrder || order == QifFormat::DateOrder::DayFirst)
        return QDate(written.year, written.second, written.first);
    return QDate(written.year, written.first, written.second);
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

EntryFileContents QifFormat::read(QByteArrayView bytes, DateOrder openOrder)
{
    EntryFileContents contents;
    if (bytes.startsWith("\xEF\xBB\xBF"))
        bytes = bytes.sliced(3);
    if (bytes.trimmed().isEmpty()) {
        contents.addProblem(1, tr("the file is empty"));
        return contents;
    }
    if (!contents.acceptText(bytes, false))
        return contents;
    // Older programs wrote their code page; Latin-1 reads every byte.
    const QString text = QUtf8StringView(bytes).isValidUtf8() ? QString::fromUtf8(bytes) : QString::fromLatin1(bytes);

    // First the records as written, then the dates, whose order the whole
    // file decides.
    QList<Record> records;
    Section section = Section::None;
    Record record;
    bool inRecord = false;
    // Where the record of a skipped section that is being read started.
    int otherRecordLine = 0;
    int lineNumber = 0;
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
                return contents;
            }
            section = sectionOf(line);
            continue;
        }
        if (section == Section::None) {
            contents.addProblem(lineNumber, tr("a QIF file starts with a header such as !Type:Bank"));
            return contents;
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
        switch (code.unicode()) {
        case 'D':
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
        default:
            // Numbers, cleared marks, addresses and the lines of splits.
            break;
        }
    }
    if (inRecord || otherRecordLine > 0) {
        contents.addProblem(inRecord ? record.line : otherRecordLine,
                            tr("the record that starts here does not end with ^: the file may be cut short"));
        return contents;
    }

    // The day and month order, from every date with slashes.
    QList<WrittenDate> dates;
    dates.reserve(records.size());
    int dayFirstLine = 0;
    int monthFirstLine = 0;
    for (const Record &r : records) {
        const WrittenDate date = readWrittenDate(r.date);
        dates.append(date);
        if (!date.valid || date.fixedOrder)
            continue;
        if (date.first > 12 && date.second <= 12 && dayFirstLine == 0)
            dayFirstLine = r.dateLine;
        if (date.second > 12 && date.first <= 12 && monthFirstLine == 0)
            monthFirstLine = r.dateLine;
        if (contents.openDate.isEmpty() && date.first <= 12 && date.second <= 12 && date.first != date.second) {
            contents.openDate = r.date;
            contents.openDateLine = r.dateLine;
            contents.openDateMonthFirst = dateOf(date, DateOrder::MonthFirst);
            contents.openDateDayFirst = dateOf(date, DateOrder::DayFirst);
        }
    }
    if (dayFirstLine > 0 && monthFirstLine > 0) {
        contents.addProblem(qMax(dayFirstLine, monthFirstLine),
                            tr("this date has the %1 first, but the one on line %2 the %3 first")
                                .arg(dayFirstLine > monthFirstLine ? tr("day") : tr("month"))
                                .arg(qMin(dayFirstLine, monthFirstLine))
                                .arg(dayFirstLine > monthFirstLine ? tr("month") : tr("day")));
        return contents;
    }
    DateOrder order = openOrder;
    if (dayFirstLine > 0 || monthFirstLine > 0) {
        order = dayFirstLine > 0 ? DateOrder::DayFirst : DateOrder::MonthFirst;
        contents.openDate.clear();
        contents.openDateLine = 0;
        contents.openDateMonthFirst = QDate();
        contents.openDateDayFirst = QDate();
    }

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
        const QDate date = dates.at(i).valid ? dateOf(dates.at(i), order) : QDate();
        if (!date.isValid()) {
            contents.addProblem(r.dateLine, tr("the date %1 is not a date Ledgerly can read").arg(quoted(r.date)));
            continue;
        }
        const std::optional<double> amount = readAmount(r.amount);
        if (!amount) {
            contents.addProblem(r.amountLine, tr("the amount %1 is not a number").arg(quoted(r.amount)));
            continue;
        }
        if (r.category.startsWith(QLatin1Char('['))) {
            ++contents.skippedTransfers;
            continue;
        }
        if (*amount > 0) {
            ++contents.skippedIncome;
            continue;
        }
        if (-*amount > Amount::largest) {
            contents.addProblem(r.amountLine,
                                tr("the amount %1 is above %2, the largest amount Ledgerly takes")
                                    .arg(quoted(r.amount), QString::number(Amount::largest, 'f', 2)));
            continue;
        }

        Entry entry;
        entry.TransactDateTime = date.startOfDay();
        // Adding zero makes an expense of -0 plain 0.
        entry.Price = float(-*amount) + 0.0f;
        entry.LocationText = r.payee.isNull() ? QLatin1String("") : r.payee;
        entry.ItemName = !r.memo.isEmpty() ? r.memo : !r.payee.isEmpty() ? r.payee : QStringLiteral("Imported");
        // Without a category an expense goes where the program puts what
        // fits nowhere else.
        entry.CategoryName = !r.category.isEmpty() ? r.category : QStringLiteral("Others");
        contents.entries.append({ r.line, entry });
    }
    return contents;
}

bool QifFormat::matches(const QString &fileName)
{
    return fileName.endsWith(QLatin1String(".qif"), Qt::CaseInsensitive);
}
