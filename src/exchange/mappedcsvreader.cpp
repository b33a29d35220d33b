// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "mappedcsvreader.h"

#include "amount.h"
#include "qifformat.h"
#include "textencoding.h"

#include <QCoreApplication>
#include <QDate>
#include <QHash>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("MappedCsvReader", text);
}

const QString delimiters = QStringLiteral(";\t,|");

bool isLineEnd(QChar c)
{
    return c == QLatin1Char('\n') || c == QLatin1Char('\r');
}

QString quoted(const QString &text)
{
    return QStringLiteral("\"%1\"").arg(text);
}

// The text of the file in its encoding, NUL characters left out (some
// exports pad with them).
QString decodedText(QByteArrayView bytes, const QString &encoding, QString *encodingName)
{
    QString text;
    if (encoding.isEmpty()) {
        const TextEncoding::Kind kind = TextEncoding::detect(bytes);
        *encodingName = TextEncoding::name(kind);
        text = TextEncoding::decode(bytes, kind);
    } else {
        *encodingName = TextEncoding::canonicalName(encoding);
        text = TextEncoding::decode(bytes, encoding);
    }
    text.remove(QChar(0));
    return text;
}

// Where each line starts; LF, CRLF and a lone CR each end one.
QList<qsizetype> lineStarts(QStringView text)
{
    QList<qsizetype> starts = { 0 };
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == QLatin1Char('\n') ||
            (text[i] == QLatin1Char('\r') && (i + 1 >= text.size() || text[i + 1] != QLatin1Char('\n')))) {
            if (i + 1 < text.size())
                starts.append(i + 1);
        }
    }
    return starts;
}

QStringView lineAt(QStringView text, const QList<qsizetype> &starts, int index)
{
    const qsizetype start = starts.at(index);
    qsizetype end = start;
    while (end < text.size() && !isLineEnd(text[end]))
        ++end;
    return text.sliced(start, end - start);
}

// The fields of one line on its own, for finding the header: a quote that
// does not close takes the rest of the line, so that a title line with a
// stray quote does no harm.
QStringList lineFields(QStringView line, QChar delimiter)
{
    QStringList fields;
    QString field;
    qsizetype i = 0;
    for (;;) {
        field.clear();
        if (i < line.size() && line[i] == QLatin1Char('"')) {
            for (++i; i < line.size(); ++i) {
                if (line[i] == QLatin1Char('"')) {
                    if (i + 1 < line.size() && line[i + 1] == QLatin1Char('"')) {
                        field += QLatin1Char('"');
                        ++i;
                        continue;
                    }
                    ++i;
                    break;
                }
                field += line[i];
            }
        }
        while (i < line.size() && line[i] != delimiter)
            field += line[i++];
        fields.append(field);
        if (i >= line.size())
            break;
        ++i;
    }
    return fields;
}

enum class Split { End, Record, Problem };

// Reads the record at `at` by RFC 4180 with `delimiter`, moving `at` and
// `line` past it. A quoted field may span lines. With `fields` null only
// the fields are counted. On a malformed field *problem says what and
// `line` is where.
Split nextRecord(QStringView text, qsizetype &at, int &line, QChar delimiter, QStringList *fields, int *count,
                 QString *problem)
{
    const qsizetype size = text.size();
    if (at >= size)
        return Split::End;
    *count = 0;
    if (fields)
        fields->clear();
    for (;;) {
        QString field;
        if (text[at] == QLatin1Char('"')) {
            const int fieldLine = line;
            const qsizetype start = ++at;
            bool closed = false;
            bool doubled = false;
            while (at < size) {
                const QChar c = text[at];
                if (c == QLatin1Char('"')) {
                    if (at + 1 < size && text[at + 1] == QLatin1Char('"')) {
                        doubled = true;
                        at += 2;
                        continue;
                    }
                    closed = true;
                    break;
                }
                if (c == QLatin1Char('\n') ||
                    (c == QLatin1Char('\r') && (at + 1 >= size || text[at + 1] != QLatin1Char('\n'))))
                    ++line;
                ++at;
            }
            if (closed && fields) {
                field = text.sliced(start, at - start).toString();
                if (doubled)
                    field.replace(QLatin1String("\"\""), QLatin1String("\""));
            }
            if (closed)
                ++at;
            if (!closed) {
                line = fieldLine;
                *problem = tr("a field in double quotes starts here and never ends");
                return Split::Problem;
            }
            if (at < size && text[at] != delimiter && !isLineEnd(text[at])) {
                *problem = tr("text follows the closing double quote of a field");
                return Split::Problem;
            }
        } else {
            const qsizetype start = at;
            while (at < size && text[at] != delimiter && !isLineEnd(text[at])) {
                if (text[at] == QLatin1Char('"')) {
                    *problem = tr("a double quote inside a field that is not in double quotes");
                    return Split::Problem;
                }
                ++at;
            }
            if (fields)
                field = text.sliced(start, at - start).toString();
        }
        ++*count;
        if (fields)
            fields->append(field);
        if (at < size && text[at] == delimiter) {
            ++at;
            if (at == size) {
                ++*count;
                if (fields)
                    fields->append(QString());
            } else {
                continue;
            }
        }
        if (at < size) {
            at += text[at] == QLatin1Char('\r') && at + 1 < size && text[at + 1] == QLatin1Char('\n') ? 2 : 1;
            ++line;
        }
        return Split::Record;
    }
}

// How many records from `from` on share the most common field count above
// one; a malformed field ends the count there.
int delimiterScore(QStringView text, qsizetype from, QChar delimiter)
{
    QHash<int, int> lines;
    qsizetype at = from;
    int line = 1;
    int count = 0;
    QString problem;
    while (nextRecord(text, at, line, delimiter, nullptr, &count, &problem) == Split::Record) {
        if (count > 1)
            ++lines[count];
    }
    int best = 0;
    for (auto it = lines.cbegin(); it != lines.cend(); ++it)
        best = qMax(best, it.value());
    return best;
}

// The indexes of the lines that hold the first name anywhere: only those
// can be the header.
QList<int> linesNaming(QStringView text, const QList<qsizetype> &starts, const QStringList &names)
{
    QList<int> lines;
    if (names.isEmpty())
        return lines;
    for (int index = 0; index < starts.size(); ++index) {
        if (lineAt(text, starts, index).contains(names.constFirst(), Qt::CaseInsensitive))
            lines.append(index);
    }
    return lines;
}

// The index of the first of `candidates` that holds every name as a field,
// or -1.
int headerLineOf(QStringView text, const QList<qsizetype> &starts, const QList<int> &candidates, QChar delimiter,
                 const QStringList &names)
{
    for (const int index : candidates) {
        const QStringView line = lineAt(text, starts, index);
        if (!line.contains(delimiter) && names.size() > 1)
            continue;
        const QStringList fields = lineFields(line, delimiter);
        bool all = true;
        for (const QString &name : names) {
            bool found = false;
            for (const QString &field : fields) {
                if (field.trimmed().compare(name, Qt::CaseInsensitive) == 0) {
                    found = true;
                    break;
                }
            }
            if (!found) {
                all = false;
                break;
            }
        }
        if (all)
            return index;
    }
    return -1;
}

// The date forms tried on a date column, in the order they are tried.
enum DateForm { IsoDash, YearSlash, YearDot, DayDot4, DayDot2, Slash4, Slash2, Compact, FormCount };

struct Parts
{
    int number[3] = { 0, 0, 0 };
    int digits[3] = { 0, 0, 0 };
};

// Three groups of digits separated by `separator`, and nothing else.
bool splitParts(QStringView text, QChar separator, Parts *parts)
{
    int part = 0;
    for (const QChar c : text) {
        if (c == separator) {
            if (parts->digits[part] == 0 || ++part > 2)
                return false;
        } else if (c >= QLatin1Char('0') && c <= QLatin1Char('9')) {
            if (++parts->digits[part] > 4)
                return false;
            parts->number[part] = parts->number[part] * 10 + (c.unicode() - '0');
        } else {
            return false;
        }
    }
    return part == 2 && parts->digits[2] > 0;
}

bool shortPart(int digits)
{
    return digits == 1 || digits == 2;
}

// The date of `text` in `form`; for the slashed forms with the day first
// when `dayFirst`. Two-digit years are read around `thisYear`, which the
// caller asks the clock for once: every question costs a look at the time
// zone.
QDate dateIn(QStringView text, DateForm form, bool dayFirst, int thisYear)
{
    Parts p;
    switch (form) {
    case IsoDash:
        if (!splitParts(text, QLatin1Char('-'), &p) || p.digits[0] != 4 || p.digits[1] != 2 || p.digits[2] != 2)
            return QDate();
        return QDate(p.number[0], p.number[1], p.number[2]);
    case YearSlash:
    case YearDot:
        if (!splitParts(text, form == YearSlash ? QLatin1Char('/') : QLatin1Char('.'), &p) || p.digits[0] != 4 ||
            !shortPart(p.digits[1]) || !shortPart(p.digits[2]))
            return QDate();
        return QDate(p.number[0], p.number[1], p.number[2]);
    case DayDot4:
    case DayDot2:
    case Slash4:
    case Slash2: {
        const bool dotted = form == DayDot4 || form == DayDot2;
        const int yearDigits = form == DayDot4 || form == Slash4 ? 4 : 2;
        if (!splitParts(text, dotted ? QLatin1Char('.') : QLatin1Char('/'), &p) || !shortPart(p.digits[0]) ||
            !shortPart(p.digits[1]) || p.digits[2] != yearDigits)
            return QDate();
        const int year = yearDigits == 2 ? QifFormat::twoDigitYear(p.number[2], thisYear) : p.number[2];
        if (dotted || dayFirst)
            return QDate(year, p.number[1], p.number[0]);
        return QDate(year, p.number[0], p.number[1]);
    }
    case Compact: {
        if (text.size() != 8)
            return QDate();
        for (const QChar c : text) {
            if (c < QLatin1Char('0') || c > QLatin1Char('9'))
                return QDate();
        }
        return QDate(text.first(4).toInt(), text.sliced(4, 2).toInt(), text.sliced(6, 2).toInt());
    }
    case FormCount:
        break;
    }
    return QDate();
}

bool isSlashed(DateForm form)
{
    return form == Slash4 || form == Slash2;
}

QString formName(DateForm form, bool dayFirst)
{
    switch (form) {
    case IsoDash:
        return QStringLiteral("yyyy-MM-dd");
    case YearSlash:
        return QStringLiteral("yyyy/M/d");
    case YearDot:
        return QStringLiteral("yyyy.M.d");
    case DayDot4:
        return QStringLiteral("d.M.yyyy");
    case DayDot2:
        return QStringLiteral("d.M.yy");
    case Slash4:
        return dayFirst ? QStringLiteral("d/M/yyyy") : QStringLiteral("M/d/yyyy");
    case Slash2:
        return dayFirst ? QStringLiteral("d/M/yy") : QStringLiteral("M/d/yy");
    case Compact:
        return QStringLiteral("yyyyMMdd");
    case FormCount:
        break;
    }
    return QString();
}

// The date of a cell, a time after it (after a blank or a T) left out.
QStringView datePart(QStringView cell)
{
    for (qsizetype i = 1; i < cell.size(); ++i) {
        if (cell[i].isSpace() || (cell[i] == QLatin1Char('T') && cell[i - 1].isDigit()))
            return cell.first(i);
    }
    return cell;
}

// The date of a cell in a Qt date format, whose two-digit years follow the
// window of QIF files.
QDate dateInFormat(QStringView cell, const QString &format, int thisYear)
{
    const bool shortYear = format.contains(QLatin1String("yy")) && !format.contains(QLatin1String("yyyy"));
    QDate date = QDate::fromString(cell.toString(), format);
    if (!date.isValid())
        date = QDate::fromString(datePart(cell).toString(), format);
    if (date.isValid() && shortYear)
        date = QDate(QifFormat::twoDigitYear(date.year() % 100, thisYear), date.month(), date.day());
    return date;
}

struct DateColumn
{
    QList<QDate> dates;
    QString formName;
    // Set when one form reads some cells and another form others.
    int strayIndex = -1;
    DateForm form = FormCount;
    bool dayFirst = false;
    bool orderOpen = false;
    int openIndex = -1;
};

// Reads the date cells: the first form that reads every cell that any form
// reads; for the slashed forms, day or month first as the whole column
// decides (a number above 12), or else as `order` says (month first
// without it).
DateColumn readDates(const QList<QStringView> &cells, const CsvMapping &mapping, int thisYear)
{
    DateColumn column;
    column.dates.resize(cells.size());
    if (!mapping.dateFormat.isEmpty()) {
        column.formName = mapping.dateFormat;
        for (qsizetype i = 0; i < cells.size(); ++i)
            column.dates[i] = cells.at(i).isEmpty() ? QDate() : dateInFormat(cells.at(i), mapping.dateFormat, thisYear);
        return column;
    }

    // What each form reads, and for the slashed ones what the column says
    // about day and month.
    std::array<int, FormCount> reads {};
    std::array<bool, FormCount> dayFirstSeen {};
    std::array<bool, FormCount> monthFirstSeen {};
    QList<bool> readable(cells.size(), false);
    for (qsizetype i = 0; i < cells.size(); ++i) {
        const QStringView cell = datePart(cells.at(i));
        if (cell.isEmpty())
            continue;
        for (int f = 0; f < FormCount; ++f) {
            const DateForm form = DateForm(f);
            const QDate monthFirst = dateIn(cell, form, false, thisYear);
            const QDate dayFirst = isSlashed(form) ? dateIn(cell, form, true, thisYear) : monthFirst;
            if (!monthFirst.isValid() && !dayFirst.isValid())
                continue;
            readable[i] = true;
            ++reads[f];
            if (isSlashed(form) && monthFirst.isValid() != dayFirst.isValid()) {
                dayFirstSeen[f] = dayFirstSeen[f] || dayFirst.isValid();
                monthFirstSeen[f] = monthFirstSeen[f] || monthFirst.isValid();
            }
        }
    }
    const int readableCount = int(std::count(readable.cbegin(), readable.cend(), true));
    if (readableCount == 0)
        return column;
    int chosen = -1;
    int most = -1;
    for (int f = 0; f < FormCount; ++f) {
        // Dates that put the day first and others the month can be read by
        // neither order.
        const bool oneOrder = !(dayFirstSeen[f] && monthFirstSeen[f]);
        if (reads[f] == readableCount && oneOrder) {
            chosen = f;
            break;
        }
        if (reads[f] > most) {
            most = reads[f];
            chosen = f;
        }
    }
    column.form = DateForm(chosen);
    column.orderOpen = isSlashed(column.form) && !dayFirstSeen[chosen] && !monthFirstSeen[chosen];
    column.dayFirst = dayFirstSeen[chosen] || (column.orderOpen && mapping.dateOrder == QifFormat::DateOrder::DayFirst);
    column.formName = formName(column.form, column.dayFirst);
    for (qsizetype i = 0; i < cells.size(); ++i) {
        if (!readable.at(i))
            continue;
        const QStringView cell = datePart(cells.at(i));
        column.dates[i] = dateIn(cell, column.form, column.dayFirst, thisYear);
        if (!column.dates.at(i).isValid() && column.strayIndex < 0)
            column.strayIndex = int(i);
        if (column.orderOpen && column.openIndex < 0 &&
            dateIn(cell, column.form, !column.dayFirst, thisYear).isValid() &&
            dateIn(cell, column.form, !column.dayFirst, thisYear) != column.dates.at(i))
            column.openIndex = int(i);
    }
    return column;
}

// Where the number of a cell starts and ends: from the first digit (or a
// point or comma right before one) to the last digit; -1 without a digit.
void numberSpan(QStringView cell, qsizetype *first, qsizetype *last)
{
    *first = -1;
    *last = -1;
    const auto digit = [&cell](qsizetype i) {
        return i < cell.size() && cell[i] >= QLatin1Char('0') && cell[i] <= QLatin1Char('9');
    };
    for (qsizetype i = 0; i < cell.size(); ++i) {
        if (digit(i) || ((cell[i] == QLatin1Char('.') || cell[i] == QLatin1Char(',')) && digit(i + 1))) {
            *first = i;
            break;
        }
    }
    if (*first < 0)
        return;
    for (qsizetype i = cell.size() - 1; i >= *first; --i) {
        if (digit(i)) {
            *last = i;
            return;
        }
    }
}

// The decimal separator the number shows by QifFormat's rule: the last
// point or comma followed by one, two or more than three digits.
QChar decimalShown(QStringView number)
{
    for (qsizetype i = number.size() - 1; i >= 0; --i) {
        if (number[i] == QLatin1Char('.') || number[i] == QLatin1Char(',')) {
            const qsizetype decimals = number.size() - 1 - i;
            return decimals != 3 ? number[i] : QChar();
        }
    }
    return QChar();
}

} // namespace

bool MappedCsvReader::isLedgerlyCsv(QByteArrayView bytes)
{
    if (bytes.startsWith("\xEF\xBB\xBF"))
        bytes = bytes.sliced(3);
    if (bytes.trimmed().isEmpty())
        return true;
    // Bytes that are no text (a NUL outside UTF-16) are for Ledgerly's own
    // reader to refuse, as it always has.
    if (bytes.contains('\0') && TextEncoding::detect(bytes) != TextEncoding::Utf16LittleEndian &&
        TextEncoding::detect(bytes) != TextEncoding::Utf16BigEndian)
        return true;
    qsizetype end = 0;
    while (end < bytes.size() && bytes[end] != '\n' && bytes[end] != '\r')
        ++end;
    const QString first = QString::fromLatin1(bytes.first(end));
    QStringList names;
    for (const QString &field : lineFields(first, QLatin1Char(',')))
        names.append(field.trimmed().toLower());
    // Ledgerly's four columns, whatever else the line names; or Ledgerly's
    // names alone, some missing, which its own reader tells.
    bool required = true;
    for (const char *name : { "date", "item", "category", "amount" })
        required = required && names.contains(QLatin1String(name));
    if (required)
        return true;
    const QStringList own = { QStringLiteral("date"),      QStringLiteral("item"),    QStringLiteral("category"),
                              QStringLiteral("amount"),    QStringLiteral("place"),   QStringLiteral("geolocation"),
                              QStringLiteral("longitude"), QStringLiteral("latitude") };
    for (const QString &name : names) {
        if (!own.contains(name))
            return false;
    }
    return names.contains(QLatin1String("date"));
}

QChar MappedCsvReader::detectDelimiter(QStringView text, int fromLine)
{
    const QList<qsizetype> starts = lineStarts(text);
    const qsizetype from = starts.at(qBound(0, fromLine, int(starts.size()) - 1));
    QChar best = delimiters.front();
    int bestScore = -1;
    for (const QChar delimiter : delimiters) {
        const int score = delimiterScore(text, from, delimiter);
        if (score > bestScore) {
            best = delimiter;
            bestScore = score;
        }
    }
    return best;
}

QStringList MappedCsvReader::columnNames(QByteArrayView bytes)
{
    QString encoding;
    const QString text = decodedText(bytes, QString(), &encoding);
    const QChar delimiter = detectDelimiter(text);
    const QList<qsizetype> starts = lineStarts(text);
    // The most common field count.
    QHash<int, int> lines;
    QList<QStringList> fields;
    for (int index = 0; index < starts.size(); ++index) {
        fields.append(lineFields(lineAt(text, starts, index), delimiter));
        ++lines[int(fields.constLast().size())];
    }
    int common = 0;
    for (auto it = lines.cbegin(); it != lines.cend(); ++it) {
        if (it.key() > 1 && (common == 0 || it.value() > lines.value(common)))
            common = it.key();
    }
    // The header is the first line with that many fields (or one more: a
    // trailing delimiter) that is about as full as the fullest line near
    // the top; a title line that pads itself with delimiters is not.
    const auto filled = [](const QStringList &line) {
        return int(
            std::count_if(line.cbegin(), line.cend(), [](const QString &field) { return !field.trimmed().isEmpty(); }));
    };
    int fullest = 0;
    for (qsizetype index = 0; index < fields.size() && index < 50; ++index) {
        if (fields.at(index).size() >= common)
            fullest = qMax(fullest, filled(fields.at(index)));
    }
    for (const QStringList &line : fields) {
        if (line.size() >= common && filled(line) >= fullest - 1) {
            QStringList names;
            for (const QString &field : line)
                names.append(field.trimmed());
            return names;
        }
    }
    return {};
}

std::optional<MappedCsvReader::Amount> MappedCsvReader::readAmount(QStringView cell, QChar decimal)
{
    qsizetype first = 0;
    qsizetype last = 0;
    numberSpan(cell, &first, &last);
    if (first < 0)
        return std::nullopt;
    const QStringView before = cell.first(first);
    const QStringView after = cell.sliced(last + 1);
    QString number = cell.sliced(first, last + 1 - first).toString();
    // Blanks that group thousands in French and Swiss amounts.
    number.replace(QChar(0x00A0), QLatin1Char(' '));
    number.replace(QChar(0x202F), QLatin1Char(' '));

    std::optional<double> value;
    if (decimal.isNull()) {
        value = QifFormat::readAmount(number);
    } else {
        QByteArray plain;
        int separators = 0;
        for (const QChar c : number) {
            if (c >= QLatin1Char('0') && c <= QLatin1Char('9')) {
                plain += char(c.unicode());
            } else if (c == decimal) {
                plain += '.';
                ++separators;
            } else if (c != QLatin1Char('.') && c != QLatin1Char(',') && c != QLatin1Char(' ') &&
                       c != QLatin1Char('\'')) {
                return std::nullopt;
            }
        }
        bool ok = false;
        const double read = plain.toDouble(&ok);
        if (separators <= 1 && ok && std::isfinite(read))
            value = read;
    }
    if (!value)
        return std::nullopt;

    Amount amount;
    const bool negative = before.contains(QLatin1Char('-')) || after.contains(QLatin1Char('-')) ||
        (before.contains(QLatin1Char('(')) && after.contains(QLatin1Char(')')));
    amount.value = negative ? -*value : *value;
    if (after.contains(QLatin1String("CR"), Qt::CaseInsensitive))
        amount.mark = Amount::In;
    else if (after.contains(QLatin1String("DR"), Qt::CaseInsensitive))
        amount.mark = Amount::Out;
    return amount;
}

EntryFileContents MappedCsvReader::read(QByteArrayView bytes, const CsvMapping &mapping, Layout *layout, int rows)
{
    EntryFileContents contents;
    const QString text = decodedText(bytes, mapping.encoding, &contents.encoding);
    if (layout)
        layout->encoding = contents.encoding;
    if (contents.encoding.isEmpty()) {
        contents.addProblem(0, tr("there is no text encoding named %1").arg(mapping.encoding));
        return contents;
    }
    if (text.trimmed().isEmpty()) {
        contents.addProblem(1, tr("the file is empty"));
        return contents;
    }
    const QList<qsizetype> starts = lineStarts(text);

    // The names of the columns given by name, and the delimiter under which
    // a line holds them all.
    QStringList names;
    for (const CsvMapping::Column &column : mapping.columns) {
        if (!column.name.isEmpty() && !names.contains(column.name, Qt::CaseInsensitive))
            names.append(column.name);
    }
    const QString candidates = mapping.delimiter.isNull() ? delimiters : QString(mapping.delimiter);
    QChar delimiter;
    int headerIndex = -1;
    int bestScore = -1;
    const int skip = mapping.skipLines.value_or(1);
    const QList<int> naming = linesNaming(text, starts, names);
    QList<std::pair<QChar, int>> found;
    for (const QChar candidate : candidates) {
        const int header = names.isEmpty() ? skip - 1 : headerLineOf(text, starts, naming, candidate, names);
        if (names.isEmpty() || header >= 0)
            found.append({ candidate, header });
    }
    // Only where more than one delimiter would do are the lines counted.
    for (const auto &[candidate, header] : found) {
        const int score = found.size() == 1
            ? 0
            : delimiterScore(text, starts.at(qBound(0, header, int(starts.size()) - 1)), candidate);
        if (score > bestScore) {
            bestScore = score;
            delimiter = candidate;
            headerIndex = header;
        }
    }
    if (delimiter.isNull()) {
        contents.addProblem(0, tr("no line names the columns %1").arg(names.join(QLatin1String(", "))));
        return contents;
    }
    if (layout)
        layout->delimiter = delimiter;

    // Each field's place in a row.
    int indexOf[CsvMapping::FieldCount];
    QStringList header;
    if (headerIndex >= 0 && headerIndex < starts.size())
        header = lineFields(lineAt(text, starts, headerIndex), delimiter);
    for (int field = 0; field < CsvMapping::FieldCount; ++field) {
        const CsvMapping::Column &column = mapping.columns[field];
        indexOf[field] = column.number - 1;
        if (column.name.isEmpty())
            continue;
        for (qsizetype i = 0; i < header.size(); ++i) {
            if (header.at(i).trimmed().compare(column.name, Qt::CaseInsensitive) == 0) {
                indexOf[field] = int(i);
                break;
            }
        }
    }
    if (layout) {
        layout->headerLine = headerIndex + 1;
        for (const QString &name : header)
            layout->columns.append(name.trimmed());
    }

    // The rows, split by RFC 4180 from the line after the header.
    struct Row
    {
        int line = 0;
        QStringList fields;
    };
    QList<Row> records;
    const int firstDataLine = headerIndex + 1;
    if (firstDataLine < starts.size()) {
        qsizetype at = starts.at(firstDataLine);
        int line = firstDataLine + 1;
        Row row;
        int count = 0;
        QString problem;
        for (;;) {
            row.line = line;
            const Split split = nextRecord(text, at, line, delimiter, &row.fields, &count, &problem);
            if (split == Split::End)
                break;
            if (split == Split::Problem) {
                contents.addProblem(line, problem);
                return contents;
            }
            records.append(row);
        }
    }
    if (layout) {
        int widest = int(layout->columns.size());
        for (qsizetype r = 0; r < records.size() && layout->rows.size() < rows; ++r) {
            layout->rows.append(records.at(r).fields);
            widest = qMax(widest, int(records.at(r).fields.size()));
        }
        for (int i = int(layout->columns.size()); i < widest; ++i)
            layout->columns.append(QString::number(i + 1));
    }

    const auto cell = [&indexOf](const Row &row, CsvMapping::Field field) -> QStringView {
        const int index = indexOf[field];
        if (index < 0 || index >= row.fields.size())
            return QStringView();
        return QStringView(row.fields.at(index)).trimmed();
    };

    // The dates, whose form the whole column decides.
    QList<QStringView> dateCells;
    dateCells.reserve(records.size());
    for (const Row &row : records)
        dateCells.append(row.fields.size() == 1 && row.fields.constFirst().isEmpty() ? QStringView()
                                                                                     : cell(row, CsvMapping::Date));
    const int thisYear = QDate::currentDate().year();
    const DateColumn dates = readDates(dateCells, mapping, thisYear);
    if (layout)
        layout->dateForm = dates.formName;
    if (dates.strayIndex >= 0) {
        contents.addProblem(records.at(dates.strayIndex).line,
                            tr("the date %1 is not written as the file's other dates (%2); choose the date form "
                               "with --date-format")
                                .arg(quoted(dateCells.at(dates.strayIndex).toString()), dates.formName));
        return contents;
    }
    int readDatesCount = 0;
    int unreadable = 0;
    int firstUnreadable = -1;
    for (qsizetype i = 0; i < records.size(); ++i) {
        if (dates.dates.at(i).isValid()) {
            ++readDatesCount;
        } else if (!dateCells.at(i).isEmpty()) {
            ++unreadable;
            if (firstUnreadable < 0)
                firstUnreadable = int(i);
        }
    }
    if (unreadable > readDatesCount) {
        contents.addProblem(records.at(firstUnreadable).line,
                            tr("the dates of most rows cannot be read; choose the date form with --date-format"));
        return contents;
    }
    if (isSlashed(dates.form))
        contents.dateOrder =
            QifFormat::orderName(dates.dayFirst ? QifFormat::DateOrder::DayFirst : QifFormat::DateOrder::MonthFirst);
    if (dates.openIndex >= 0) {
        const QStringView open = datePart(dateCells.at(dates.openIndex));
        contents.openDate = open.toString();
        contents.openDateLine = records.at(dates.openIndex).line;
        contents.openDateMonthFirst = dateIn(open, dates.form, false, thisYear);
        contents.openDateDayFirst = dateIn(open, dates.form, true, thisYear);
    }

    int commas = 0;
    int points = 0;
    const auto noteDecimal = [&](QStringView amountCell) {
        qsizetype first = 0;
        qsizetype last = 0;
        numberSpan(amountCell, &first, &last);
        if (first < 0)
            return;
        const QChar shown = decimalShown(amountCell.sliced(first, last + 1 - first));
        commas += shown == QLatin1Char(',');
        points += shown == QLatin1Char('.');
    };

    contents.entries.reserve(records.size());
    // A day's start in local time costs a look at the time zone; rows of
    // one day share it.
    QHash<QDate, QDateTime> dayStarts;
    const bool byAmount = mapping.columns[CsvMapping::Amount].isSet();
    const bool byDirection = mapping.columns[CsvMapping::Direction].isSet();
    for (qsizetype r = 0; r < records.size(); ++r) {
        const Row &row = records.at(r);
        const QDate date = dates.dates.at(r);
        if (!date.isValid()) {
            ++contents.skippedNotTransactions;
            continue;
        }
        // What the row says about the money: out (an expense), in, or zero.
        enum class Way { Out, In, Zero } way = Way::Zero;
        double magnitude = 0;
        QString written;
        const auto readCell = [&](CsvMapping::Field field, std::optional<Amount> *read) {
            const QStringView text = cell(row, field);
            written = text.toString();
            *read = readAmount(text, mapping.decimal);
            if (!*read) {
                contents.addProblem(
                    row.line,
                    text.isEmpty()
                        ? tr("the %1 is empty").arg(CsvMapping::fieldName(field))
                        : tr("the %1 %2 is not a number").arg(CsvMapping::fieldName(field), quoted(text.toString())));
                return false;
            }
            noteDecimal(text);
            return true;
        };
        if (byAmount) {
            std::optional<Amount> read;
            if (!readCell(CsvMapping::Amount, &read))
                continue;
            magnitude = std::fabs(read->value);
            bool out = false;
            if (byDirection)
                out = mapping.isOutMark(cell(row, CsvMapping::Direction).toString());
            else if (read->mark != Amount::None)
                out = read->mark == Amount::Out;
            else
                out = mapping.invert ? read->value > 0 : read->value < 0;
            way = magnitude == 0 ? Way::Zero : out ? Way::Out : Way::In;
        } else {
            for (const CsvMapping::Field field : { CsvMapping::Debit, CsvMapping::Credit }) {
                if (!mapping.columns[field].isSet() || cell(row, field).isEmpty())
                    continue;
                std::optional<Amount> read;
                if (!readCell(field, &read))
                    break;
                if (read->value != 0) {
                    magnitude = std::fabs(read->value);
                    way = field == CsvMapping::Debit ? Way::Out : Way::In;
                    break;
                }
            }
        }
        if (way == Way::Zero) {
            ++contents.skippedZeroAmounts;
            continue;
        }
        if (way == Way::In) {
            ++contents.skippedIncome;
            continue;
        }
        if (magnitude > ::Amount::largest) {
            contents.addProblem(row.line,
                                tr("the amount %1 is above %2, the largest amount Ledgerly takes")
                                    .arg(quoted(written), QString::number(::Amount::largest, 'f', 2)));
            continue;
        }
        Entry entry;
        auto start = dayStarts.constFind(date);
        if (start == dayStarts.constEnd())
            start = dayStarts.insert(date, date.startOfDay());
        entry.TransactDateTime = *start;
        entry.Price = float(magnitude);
        QString item = cell(row, CsvMapping::Item).toString();
        QString place = cell(row, CsvMapping::Place).toString();
        if (item.isEmpty() && place.isEmpty())
            item = QStringLiteral("Imported");
        entry.ItemName = item.isEmpty() ? place : item;
        entry.LocationText = place.isEmpty() ? entry.ItemName : place;
        const QString category = cell(row, CsvMapping::Category).toString();
        entry.CategoryName = category.isEmpty() ? QStringLiteral("Others") : category;
        contents.entries.append({ row.line, entry, QString(), QString() });
    }
    if (layout)
        layout->decimal = commas > points ? QLatin1Char(',') : points > 0 ? QLatin1Char('.') : QChar();
    return contents;
}
