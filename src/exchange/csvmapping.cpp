// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "csvmapping.h"

#include "textencoding.h"

#include <QCoreApplication>
#include <QRegularExpression>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("CsvMapping", text);
}

const char *const fieldNames[CsvMapping::FieldCount] = { "date",   "item",  "place",  "category",
                                                         "amount", "debit", "credit", "direction" };

QStringList marksOf(const QString &text)
{
    QStringList marks;
    for (const QString &mark : text.split(QLatin1Char(','))) {
        if (!mark.trimmed().isEmpty())
            marks.append(mark.trimmed());
    }
    return marks;
}

QString shellWord(const QString &word)
{
    static const QRegularExpression plain(QStringLiteral("^[\\p{L}\\p{N}_./:=,+@%-]+$"));
    if (plain.match(word).hasMatch())
        return word;
    QString quoted = word;
    quoted.replace(QLatin1String("'"), QLatin1String("'\\''"));
    return QLatin1Char('\'') + quoted + QLatin1Char('\'');
}

// Splits a line into words as a POSIX shell does for quotes and backslashes;
// false for a quote that never closes.
bool shellWords(const QString &text, QStringList *words)
{
    QString word;
    bool inWord = false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c == QLatin1Char('\'')) {
            const qsizetype end = text.indexOf(QLatin1Char('\''), i + 1);
            if (end < 0)
                return false;
            word += text.mid(i + 1, end - i - 1);
            inWord = true;
            i = end;
        } else if (c == QLatin1Char('"')) {
            inWord = true;
            for (++i; i < text.size() && text.at(i) != QLatin1Char('"'); ++i) {
                if (text.at(i) == QLatin1Char('\\') && i + 1 < text.size())
                    ++i;
                word += text.at(i);
            }
            if (i >= text.size())
                return false;
        } else if (c == QLatin1Char('\\') && i + 1 < text.size()) {
            word += text.at(++i);
            inWord = true;
        } else if (c.isSpace()) {
            if (inWord)
                words->append(word);
            word.clear();
            inWord = false;
        } else {
            word += c;
            inWord = true;
        }
    }
    if (inWord)
        words->append(word);
    return true;
}

} // namespace

QString CsvMapping::fieldName(Field field)
{
    return QLatin1String(fieldNames[field]);
}

QStringList CsvMapping::defaultOutMarks()
{
    return { QStringLiteral("D"),  QStringLiteral("DR"), QStringLiteral("Debit"), QStringLiteral("Debet"),
             QStringLiteral("Af"), QStringLiteral("S"),  QStringLiteral("Soll"),  QStringLiteral("-") };
}

bool CsvMapping::operator==(const CsvMapping &other) const
{
    for (int field = 0; field < FieldCount; ++field) {
        if (!(columns[field] == other.columns[field]))
            return false;
    }
    return delimiter == other.delimiter && encoding == other.encoding && dateFormat == other.dateFormat &&
        dateOrder == other.dateOrder && decimal == other.decimal && skipLines == other.skipLines &&
        invert == other.invert && outMarks == other.outMarks && inMarks == other.inMarks;
}

bool CsvMapping::hasNamedColumns() const
{
    for (const Column &column : columns) {
        if (!column.name.isEmpty())
            return true;
    }
    return false;
}

bool CsvMapping::isOutMark(const QString &value) const
{
    const QString cell = value.trimmed();
    const auto listed = [&cell](const QStringList &marks) {
        for (const QString &mark : marks) {
            if (cell.compare(mark, Qt::CaseInsensitive) == 0)
                return true;
        }
        return false;
    };
    if (!inMarks.isEmpty())
        return !listed(inMarks);
    return listed(outMarks.isEmpty() ? defaultOutMarks() : outMarks);
}

bool CsvMapping::readMap(const QString &text, QString *error)
{
    Column read[FieldCount];
    for (const QString &pair : text.split(QLatin1Char(','))) {
        const qsizetype equals = pair.indexOf(QLatin1Char('='));
        const QString field = (equals < 0 ? pair : pair.left(equals)).trimmed();
        int index = -1;
        for (int f = 0; f < FieldCount; ++f) {
            if (field.compare(QLatin1String(fieldNames[f]), Qt::CaseInsensitive) == 0)
                index = f;
        }
        if (index < 0) {
            *error = tr("--map knows the fields date, item, place, category, amount, debit, credit and direction, "
                        "not \"%1\".")
                         .arg(field);
            return false;
        }
        const QString column = equals < 0 ? QString() : pair.mid(equals + 1).trimmed();
        if (column.isEmpty()) {
            *error = tr("--map gives %1 no column: write %1=NAME or %1=NUMBER.").arg(fieldName(Field(index)));
            return false;
        }
        if (read[index].isSet()) {
            *error = tr("--map gives %1 twice.").arg(fieldName(Field(index)));
            return false;
        }
        static const QRegularExpression number(QStringLiteral("^[0-9]+$"));
        if (number.match(column).hasMatch()) {
            read[index].number = column.toInt();
            if (read[index].number < 1 || read[index].number > 10000) {
                *error = tr("--map numbers columns from 1, not %1.").arg(column);
                return false;
            }
        } else {
            read[index].name = column;
        }
    }
    std::copy(std::begin(read), std::end(read), std::begin(columns));
    return true;
}

QString CsvMapping::mapText() const
{
    QStringList pairs;
    for (int field = 0; field < FieldCount; ++field) {
        const Column &column = columns[field];
        if (column.isSet())
            pairs.append(fieldName(Field(field)) + QLatin1Char('=') +
                         (column.number > 0 ? QString::number(column.number) : column.name));
    }
    return pairs.join(QLatin1Char(','));
}

bool CsvMapping::readOption(const QString &name, const QString &value, QString *error)
{
    if (name == QLatin1String("map"))
        return readMap(value, error);
    if (name == QLatin1String("delimiter")) {
        const QString given =
            value.compare(QLatin1String("tab"), Qt::CaseInsensitive) == 0 ? QStringLiteral("\t") : value;
        if (given.size() != 1 || !QStringLiteral(",;\t|").contains(given.front())) {
            *error = tr("--delimiter is ',', ';', tab or '|', not \"%1\".").arg(value);
            return false;
        }
        delimiter = given.front();
        return true;
    }
    if (name == QLatin1String("encoding")) {
        const QString canonical = TextEncoding::canonicalName(value);
        if (canonical.isEmpty()) {
            *error = tr("--encoding names no encoding Qt knows: \"%1\".").arg(value);
            return false;
        }
        encoding = canonical;
        return true;
    }
    if (name == QLatin1String("date-format")) {
        if (value.trimmed().isEmpty()) {
            *error = tr("--date-format takes a date format such as dd.MM.yyyy.");
            return false;
        }
        dateFormat = value;
        return true;
    }
    if (name == QLatin1String("date-order")) {
        for (const QifFormat::DateOrder order :
             { QifFormat::DateOrder::MonthFirst, QifFormat::DateOrder::DayFirst, QifFormat::DateOrder::YearFirst }) {
            if (value == QifFormat::orderName(order)) {
                dateOrder = order;
                return true;
            }
        }
        *error = tr("--date-order is mdy, dmy or ymd, not \"%1\".").arg(value);
        return false;
    }
    if (name == QLatin1String("decimal")) {
        if (value == QLatin1String("comma") || value == QLatin1String("point")) {
            decimal = value == QLatin1String("comma") ? QLatin1Char(',') : QLatin1Char('.');
            return true;
        }
        *error = tr("--decimal is comma or point, not \"%1\".").arg(value);
        return false;
    }
    if (name == QLatin1String("skip-lines")) {
        bool ok = false;
        const int lines = value.toInt(&ok);
        if (!ok || lines < 0) {
            *error = tr("--skip-lines takes a number of lines, 0 or more, not \"%1\".").arg(value);
            return false;
        }
        skipLines = lines;
        return true;
    }
    if (name == QLatin1String("invert")) {
        invert = true;
        return true;
    }
    if (name == QLatin1String("out-marks") || name == QLatin1String("in-marks")) {
        const QStringList marks = marksOf(value);
        if (marks.isEmpty()) {
            *error = tr("--%1 takes values such as D,DR.").arg(name);
            return false;
        }
        (name == QLatin1String("out-marks") ? outMarks : inMarks) = marks;
        return true;
    }
    *error = tr("Unknown option '%1'.").arg(name);
    return false;
}

QString CsvMapping::problem() const
{
    if (!columns[Date].isSet())
        return tr("--map needs a date column: date=NAME or date=NUMBER.");
    if (!columns[Item].isSet() && !columns[Place].isSet())
        return tr("--map needs an item or a place column (or both).");
    const bool debitOrCredit = columns[Debit].isSet() || columns[Credit].isSet();
    if (!columns[Amount].isSet() && !debitOrCredit)
        return tr("--map needs the money: an amount column, or debit and credit columns.");
    if (columns[Amount].isSet() && debitOrCredit)
        return tr("--map takes an amount column or debit and credit columns, not both.");
    if (columns[Direction].isSet() && !columns[Amount].isSet())
        return tr("--map takes a direction column only with an amount column.");
    if (!outMarks.isEmpty() && !inMarks.isEmpty())
        return tr("--out-marks and --in-marks exclude each other.");
    if ((!outMarks.isEmpty() || !inMarks.isEmpty()) && !columns[Direction].isSet())
        return tr("--%1 goes with a direction column only.")
            .arg(outMarks.isEmpty() ? QStringLiteral("in-marks") : QStringLiteral("out-marks"));
    if (invert && !columns[Amount].isSet())
        return tr("--invert goes with an amount column only.");
    if (invert && columns[Direction].isSet())
        return tr("--invert goes with an amount column without a direction column only.");
    if (skipLines && hasNamedColumns())
        return tr("--skip-lines goes with columns given by number only; named columns find their header line.");
    return QString();
}

QStringList CsvMapping::arguments() const
{
    QStringList list = { QStringLiteral("--map"), mapText() };
    if (!delimiter.isNull())
        list << QStringLiteral("--delimiter")
             << (delimiter == QLatin1Char('\t') ? QStringLiteral("tab") : QString(delimiter));
    if (!encoding.isEmpty())
        list << QStringLiteral("--encoding") << encoding;
    if (!dateFormat.isEmpty())
        list << QStringLiteral("--date-format") << dateFormat;
    if (dateOrder)
        list << QStringLiteral("--date-order") << QifFormat::orderName(*dateOrder);
    if (!decimal.isNull())
        list << QStringLiteral("--decimal")
             << (decimal == QLatin1Char(',') ? QStringLiteral("comma") : QStringLiteral("point"));
    if (skipLines)
        list << QStringLiteral("--skip-lines") << QString::number(*skipLines);
    if (invert)
        list << QStringLiteral("--invert");
    if (!outMarks.isEmpty())
        list << QStringLiteral("--out-marks") << outMarks.join(QLatin1Char(','));
    if (!inMarks.isEmpty())
        list << QStringLiteral("--in-marks") << inMarks.join(QLatin1Char(','));
    return list;
}

QString CsvMapping::text() const
{
    QStringList words;
    for (const QString &argument : arguments())
        words.append(shellWord(argument));
    return words.join(QLatin1Char(' '));
}

std::optional<CsvMapping> CsvMapping::fromText(const QString &text, QString *error)
{
    QString problemText;
    QStringList words;
    CsvMapping mapping;
    if (!shellWords(text, &words)) {
        problemText = tr("a quote never closes");
    } else {
        for (qsizetype i = 0; i < words.size() && problemText.isEmpty(); ++i) {
            QString name = words.at(i);
            if (!name.startsWith(QLatin1String("--"))) {
                problemText = tr("\"%1\" is no option").arg(name);
                break;
            }
            name = name.mid(2);
            QString value;
            const qsizetype equals = name.indexOf(QLatin1Char('='));
            if (equals >= 0) {
                value = name.mid(equals + 1);
                name.truncate(equals);
            } else if (name != QLatin1String("invert")) {
                if (i + 1 == words.size()) {
                    problemText = tr("--%1 has no value").arg(name);
                    break;
                }
                value = words.at(++i);
            }
            mapping.readOption(name, value, &problemText);
        }
    }
    if (problemText.isEmpty())
        problemText = mapping.problem();
    if (!problemText.isEmpty()) {
        if (error)
            *error = problemText;
        return std::nullopt;
    }
    return mapping;
}

QStringList CsvMapping::optionNames()
{
    return { QStringLiteral("map"),         QStringLiteral("delimiter"),  QStringLiteral("encoding"),
             QStringLiteral("date-format"), QStringLiteral("date-order"), QStringLiteral("decimal"),
             QStringLiteral("skip-lines"),  QStringLiteral("invert"),     QStringLiteral("out-marks"),
             QStringLiteral("in-marks") };
}
