// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "ofxformat.h"

#include "amount.h"
#include "records.h"

#include <QCoreApplication>
#include <QDate>
#include <QRegularExpression>
#include <QUtf8StringView>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("OfxFormat", text);
}

QString quoted(const QString &text)
{
    return QStringLiteral("\"%1\"").arg(text);
}

// The encoding a header names; nothing for one that says nothing useful
// (USASCII, NONE), which leaves the bytes to tell.
std::optional<TextEncoding::Kind> declaredEncoding(QByteArrayView header, QByteArrayView bytes)
{
    const QString text = QString::fromLatin1(header);
    static const QRegularExpression encodingLine(QStringLiteral("ENCODING\\s*:\\s*([A-Za-z0-9_-]+)"),
                                                 QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression charsetLine(QStringLiteral("CHARSET\\s*:\\s*([A-Za-z0-9_-]+)"),
                                                QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression xmlEncoding(QStringLiteral("<\\?xml[^>]*encoding\\s*=\\s*[\"']([^\"']+)[\"']"),
                                                QRegularExpression::CaseInsensitiveOption);
    std::optional<TextEncoding::Kind> declared;
    const auto named = [&declared](const QString &name) {
        const QString key = name.toUpper().remove(QLatin1Char('-'));
        if (key == QLatin1String("UTF8") || key == QLatin1String("UNICODE"))
            declared = TextEncoding::Utf8;
        else if (key == QLatin1String("1252") || key == QLatin1String("WINDOWS1252") || key == QLatin1String("CP1252"))
            declared = TextEncoding::Windows1252;
        else if (key == QLatin1String("88591") || key == QLatin1String("ISO88591") || key == QLatin1String("LATIN1"))
            declared = TextEncoding::Latin1;
        return declared.has_value();
    };
    const QRegularExpressionMatch encoding = encodingLine.match(text);
    const QRegularExpressionMatch xml = xmlEncoding.match(text);
    if (!(encoding.hasMatch() && named(encoding.captured(1))) && !(xml.hasMatch() && named(xml.captured(1)))) {
        if (const QRegularExpressionMatch charset = charsetLine.match(text); charset.hasMatch())
            named(charset.captured(1));
    }
    // A file that says UTF-8 but is not would lose characters: its bytes
    // are then what a Windows program wrote.
    if (declared == TextEncoding::Utf8 && !QUtf8StringView(bytes).isValidUtf8())
        declared = TextEncoding::Windows1252;
    return declared;
}

QString decodeEntities(const QString &text)
{
    if (!text.contains(QLatin1Char('&')))
        return text;
    static const QRegularExpression entity(QStringLiteral("&(#[0-9]{1,7}|#[xX][0-9A-Fa-f]{1,6}|[A-Za-z]{2,6});"));
    QString out;
    qsizetype at = 0;
    QRegularExpressionMatchIterator matches = entity.globalMatch(text);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        const QString name = match.captured(1);
        QString replacement;
        if (name.startsWith(QLatin1String("#x"), Qt::CaseInsensitive) || name.startsWith(QLatin1Char('#'))) {
            const bool hex = name.size() > 1 && (name[1] == QLatin1Char('x') || name[1] == QLatin1Char('X'));
            bool ok = false;
            const uint code = name.mid(hex ? 2 : 1).toUInt(&ok, hex ? 16 : 10);
            if (ok && code > 0 && code <= 0x10FFFF && !(code >= 0xD800 && code < 0xE000)) {
                const char32_t unit = code;
                replacement = QString::fromUcs4(&unit, 1);
            }
        } else if (name == QLatin1String("amp")) {
            replacement = QStringLiteral("&");
        } else if (name == QLatin1String("lt")) {
            replacement = QStringLiteral("<");
        } else if (name == QLatin1String("gt")) {
            replacement = QStringLiteral(">");
        } else if (name == QLatin1String("quot")) {
            replacement = QStringLiteral("\"");
        } else if (name == QLatin1String("apos")) {
            replacement = QStringLiteral("'");
        } else if (name == QLatin1String("nbsp")) {
            replacement = QStringLiteral(" ");
        }
        if (replacement.isNull())
            continue;
        out += QStringView(text).sliced(at, match.capturedStart() - at);
        out += replacement;
        at = match.capturedEnd();
    }
    out += QStringView(text).sliced(at);
    return out;
}

std::optional<double> readOfxAmount(const QString &text)
{
    static const QRegularExpression number(QStringLiteral("^[+-]?([0-9]+([.,][0-9]*)?|[.,][0-9]+)$"));
    QString plain = text.trimmed();
    if (!number.match(plain).hasMatch())
        return std::nullopt;
    plain.replace(QLatin1Char(','), QLatin1Char('.'));
    bool ok = false;
    const double value = plain.toDouble(&ok);
    if (!ok)
        return std::nullopt;
    return value;
}

QDate readOfxDate(const QString &text)
{
    // yyyyMMdd, then a time, fractions and a zone that the day does not need.
    if (text.size() < 8)
        return QDate();
    for (int i = 0; i < 8; ++i) {
        if (!text[i].isDigit())
            return QDate();
    }
    if (text.size() > 8 && text[8].isDigit() == false && text[8] != QLatin1Char('.') && text[8] != QLatin1Char('['))
        return QDate();
    return QDate(text.left(4).toInt(), text.mid(4, 2).toInt(), text.mid(6, 2).toInt());
}

struct Transaction
{
    int line = 0;
    QString amount;
    bool hasAmount = false;
    QString posted;
    bool hasPosted = false;
    QString fitId;
    QString name;
    QString memo;
};

enum class Statement { None, Bank, Card, Investment };

// Reads the body's tags, one element after another, and keeps what the
// statements' transactions need.
class Reader
{
public:
    Reader(EntryFileContents &contents) : contents(contents) { }

    void start(const QString &tag, int line)
    {
        if (tag == QLatin1String("STMTRS") || tag == QLatin1String("CCSTMTRS") || tag == QLatin1String("INVSTMTRS")) {
            finishTransaction();
            statement = tag == QLatin1String("STMTRS")     ? Statement::Bank
                : tag == QLatin1String("CCSTMTRS") ? Statement::Card
                                                   : Statement::Investment;
            account.clear();
            awaitingAccount = false;
        } else if (tag == QLatin1String("STMTTRN")) {
            finishTransaction();
            if (statement == Statement::Bank || statement == Statement::Card) {
                transaction = Transaction();
                transaction.line = line;
                inTransaction = true;
            } else {
                ++contents.skippedOtherSections;
            }
        } else if (tag == QLatin1String("INVTRAN")) {
            if (statement == Statement::Investment)
                ++contents.skippedOtherSections;
        } else if (tag == QLatin1String("BANKACCTFROM") || tag == QLatin1String("CCACCTFROM")) {
            finishTransaction();
            awaitingAccount = true;
        } else if (endsTransaction(tag)) {
            finishTransaction();
        }
    }

    void end(const QString &tag)
    {
        if (tag == QLatin1String("STMTTRN") || endsTransaction(tag) || tag == QLatin1String("BANKTRANLIST")) {
            finishTransaction();
        }
        if (tag == QLatin1String("STMTRS") || tag == QLatin1String("CCSTMTRS") || tag == QLatin1String("INVSTMTRS") ||
            tag == QLatin1String("OFX"))
            statement = Statement::None;
    }

    void leaf(const QString &tag, const QString &value)
    {
        if (tag == QLatin1String("ACCTID") && awaitingAccount && !inTransaction) {
            account = value;
            awaitingAccount = false;
            return;
        }
        if (!inTransaction)
            return;
        if (tag == QLatin1String("TRNAMT")) {
            transaction.amount = value;
            transaction.hasAmount = true;
        } else if (tag == QLatin1String("DTPOSTED")) {
            transaction.posted = value;
            transaction.hasPosted = true;
        } else if (tag == QLatin1String("FITID")) {
            transaction.fitId = value;
        } else if (tag == QLatin1String("NAME")) {
            // NAME, or PAYEE's NAME where the bank gives an address.
            if (transaction.name.isEmpty())
                transaction.name = value;
        } else if (tag == QLatin1String("MEMO")) {
            transaction.memo = value;
        }
    }

    void finishTransaction()
    {
        if (!inTransaction)
            return;
        inTransaction = false;
        const Transaction &t = transaction;
        const std::optional<double> amount = t.hasAmount ? readOfxAmount(t.amount) : std::nullopt;
        if (!amount) {
            contents.addProblem(t.line, t.hasAmount ? tr("the amount %1 is not a number").arg(quoted(t.amount))
                                                    : tr("the transaction that starts here has no amount "
                                                         "(TRNAMT): the file may be cut short"));
            return;
        }
        const QDate date = t.hasPosted ? readOfxDate(t.posted) : QDate();
        if (!date.isValid()) {
            contents.addProblem(t.line, t.hasPosted ? tr("the date %1 is not a date Ledgerly can read").arg(quoted(t.posted))
                                                    : tr("the transaction that starts here has no date "
                                                         "(DTPOSTED): the file may be cut short"));
            return;
        }
        if (*amount == 0) {
            ++contents.skippedZeroAmounts;
            return;
        }
        if (*amount > 0) {
            ++contents.skippedIncome;
            return;
        }
        if (-*amount > Amount::largest) {
            contents.addProblem(t.line, tr("the amount %1 is above %2, the largest amount Ledgerly takes")
                                            .arg(quoted(t.amount), QString::number(Amount::largest, 'f', 2)));
            return;
        }
        Entry entry;
        entry.TransactDateTime = date.startOfDay();
        entry.Price = float(-*amount) + 0.0f;
        entry.LocationText = t.name.isNull() ? QLatin1String("") : t.name;
        entry.ItemName = !t.memo.isEmpty() ? t.memo : !t.name.isEmpty() ? t.name : QStringLiteral("Imported");
        entry.CategoryName = QStringLiteral("Others");
        // A unit separator cannot occur in either part, so that no two
        // pairs give the same id.
        const QString sourceId =
            t.fitId.isEmpty() ? QString() : QStringLiteral("OFX\x1f%1\x1f%2").arg(account, t.fitId);
        contents.entries.append({ t.line, entry, sourceId, QString() });
    }

private:
    // Elements that follow a statement's transactions: without end tags,
    // they are where the last transaction ends.
    static bool endsTransaction(const QString &tag)
    {
        return tag == QLatin1String("LEDGERBAL") || tag == QLatin1String("AVAILBAL") ||
            tag == QLatin1String("BALLIST") || tag == QLatin1String("MKTGINFO") ||
            tag == QLatin1String("STMTTRNRS") || tag == QLatin1String("CCSTMTTRNRS") ||
            tag == QLatin1String("INVSTMTTRNRS") || tag == QLatin1String("STMTRS") ||
            tag == QLatin1String("CCSTMTRS") || tag == QLatin1String("INVSTMTRS") ||
            tag == QLatin1String("OFX");
    }

    EntryFileContents &contents;
    Statement statement = Statement::None;
    QString account;
    bool awaitingAccount = false;
    bool inTransaction = false;
    Transaction transaction;
};

// How many line ends `text` holds from `from` to `to`; LF, CRLF and a lone
// CR each end a line.
int lineEnds(QStringView text, qsizetype from, qsizetype to)
{
    int count = 0;
    for (qsizetype i = from; i < to; ++i) {
        if (text[i] == QLatin1Char('\n') ||
            (text[i] == QLatin1Char('\r') && (i + 1 >= text.size() || text[i + 1] != QLatin1Char('\n'))))
            ++count;
    }
    return count;
}

} // namespace

EntryFileContents OfxFormat::read(QByteArrayView bytes, std::optional<TextEncoding::Kind> encoding)
{
    EntryFileContents contents;
    std::optional<TextEncoding::Kind> kind = encoding;
    if (!kind) {
        const TextEncoding::Kind detected = TextEncoding::detect(bytes);
        // A mark or UTF-16 says more than any header can.
        const bool marked = bytes.startsWith("\xEF\xBB\xBF") || detected == TextEncoding::Utf16LittleEndian ||
            detected == TextEncoding::Utf16BigEndian;
        if (!marked) {
            qsizetype body = QByteArray::fromRawData(bytes.data(), bytes.size()).toUpper().indexOf("<OFX>");
            kind = declaredEncoding(bytes.first(body < 0 ? qMin<qsizetype>(bytes.size(), 4096) : body), bytes);
        }
        if (!kind)
            kind = detected;
    }
    contents.encoding = TextEncoding::name(*kind);
    const QString text = TextEncoding::decode(bytes, *kind);

    static const QRegularExpression ofxStart(QStringLiteral("<OFX>"), QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch begin = ofxStart.match(text);
    if (!begin.hasMatch()) {
        contents.addProblem(1, tr("this is not an OFX file: it has no <OFX> element"));
        return contents;
    }
    if (const qsizetype nul = text.left(begin.capturedStart()).indexOf(QChar(0)); nul >= 0) {
        contents.addProblem(1 + lineEnds(text, 0, nul), tr("a NUL byte: this is not a text file"));
        return contents;
    }

    Reader reader(contents);
    QStringView body(text);
    qsizetype at = begin.capturedStart();
    int line = 1 + lineEnds(body, 0, at);
    // The element whose text may follow: a start tag not yet followed by
    // another tag.
    QString open;
    bool done = false;
    while (at < body.size() && !done) {
        if (body[at] != QLatin1Char('<')) {
            qsizetype next = body.indexOf(QLatin1Char('<'), at);
            if (next < 0)
                next = body.size();
            if (!open.isEmpty()) {
                const QString value = decodeEntities(body.sliced(at, next - at).toString()).simplified();
                reader.leaf(open, value);
                open.clear();
            }
            line += lineEnds(body, at, next);
            at = next;
            continue;
        }
        qsizetype close = body.indexOf(QLatin1Char('>'), at);
        if (close < 0)
            break; // cut inside a tag: what was open is finished below
        const QStringView inside = body.sliced(at + 1, close - at - 1).trimmed();
        const int tagLine = line;
        line += lineEnds(body, at, close + 1);
        at = close + 1;
        if (!open.isEmpty()) {
            // A start tag right after another: the first is empty.
            reader.leaf(open, QString());
            open.clear();
        }
        if (inside.isEmpty() || inside.front() == QLatin1Char('?') || inside.front() == QLatin1Char('!'))
            continue;
        if (inside.front() == QLatin1Char('/')) {
            const QString tag = inside.sliced(1).trimmed().toString().toUpper();
            reader.end(tag);
            // Whatever follows the end of the statement file is no part of it.
            done = tag == QLatin1String("OFX");
            continue;
        }
        const bool selfClosing = inside.back() == QLatin1Char('/');
        QStringView name = selfClosing ? inside.chopped(1) : inside;
        for (qsizetype i = 0; i < name.size(); ++i) {
            if (name[i].isSpace()) {
                name = name.first(i);
                break;
            }
        }
        const QString tag = name.toString().toUpper();
        reader.start(tag, tagLine);
        if (selfClosing) {
            reader.leaf(tag, QString());
            reader.end(tag);
        } else {
            open = tag;
        }
    }
    reader.finishTransaction();
    return contents;
}

bool OfxFormat::matches(const QString &fileName)
{
    for (const char *suffix : { ".ofx", ".qfx", ".qbo" }) {
        if (fileName.endsWith(QLatin1String(suffix), Qt::CaseInsensitive))
            return true;
    }
    return false;
}
