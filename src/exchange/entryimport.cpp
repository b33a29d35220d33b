// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "entryimport.h"

#include "csvformat.h"
#include "importlog.h"
#include "mappedcsvreader.h"
#include "rulematcher.h"
#include "rules.h"
#include "storageform.h"
#include "ofxformat.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSet>

#include <algorithm>
#include <numeric>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("EntryImport", text);
}

// Ten years of entries is a few megabytes; a file far larger is no export
// of entries, and is not read into memory.
const qint64 largestFile = qint64(256) * 1024 * 1024;

} // namespace

std::optional<QByteArray> EntryImport::readBytes(const QString &fileName, EntryFileContents *contents)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        contents->addProblem(0, tr("%1 cannot be read: %2").arg(fileName, file.errorString()));
        return std::nullopt;
    }
    if (file.size() > largestFile) {
        contents->addProblem(0, tr("%1 is too large to be a file of entries").arg(fileName));
        return std::nullopt;
    }
    QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        contents->addProblem(0, tr("%1 cannot be read: %2").arg(fileName, file.errorString()));
        return std::nullopt;
    }
    return bytes;
}

EntryFileContents EntryImport::read(const QString &fileName, std::optional<QifFormat::DateOrder> dateOrder,
                                    std::optional<TextEncoding::Kind> encoding,
                                    const std::optional<CsvMapping> &mapping)
{
    EntryFileContents contents;
    const bool csv = CsvFormat::matches(fileName);
    const bool ofx = OfxFormat::matches(fileName);
    if (!csv && !ofx && !QifFormat::matches(fileName)) {
        contents.addProblem(0, tr("%1 is not a .csv, .qif, .ofx, .qfx or .qbo file").arg(fileName));
        return contents;
    }
    const std::optional<QByteArray> bytes = readBytes(fileName, &contents);
    if (!bytes)
        return contents;
    if (csv) {
        if (MappedCsvReader::isLedgerlyCsv(*bytes))
            return CsvFormat::read(*bytes);
        if (!mapping) {
            contents.addProblem(0, tr("%1: the columns are not Ledgerly's; map them with --map (columns: %2)")
                                       .arg(fileName, MappedCsvReader::columnNames(*bytes).join(QLatin1String(", "))));
            return contents;
        }
        CsvMapping chosen = *mapping;
        if (encoding)
            chosen.encoding = TextEncoding::name(*encoding);
        if (dateOrder)
            chosen.dateOrder = dateOrder;
        return MappedCsvReader::read(*bytes, chosen);
    }
    if (ofx)
        return OfxFormat::read(*bytes, encoding);
    return QifFormat::read(*bytes, dateOrder, encoding);
}

namespace {

QString fingerprintKey(const EntryFileContents::LineEntry &read)
{
    if (!read.sourceId.isEmpty())
        return read.sourceId;
    const Entry &entry = read.entry;
    return QStringLiteral("ENTRY\x1f%1\x1f%2\x1f%3\x1f%4")
        .arg(StorageForm::dateTime(entry.TransactDateTime), QString::number(double(entry.Price), 'g', 9),
             entry.ItemName, entry.LocationText);
}

void giveFingerprints(QList<EntryFileContents::LineEntry> &entries)
{
    QHash<QString, int> seen;
    for (EntryFileContents::LineEntry &read : entries) {
        const QString key = fingerprintKey(read);
        const int before = seen[key]++;
        read.fingerprint = QString::fromLatin1(
            QCryptographicHash::hash((key + QStringLiteral("\x1f%1").arg(before)).toUtf8(), QCryptographicHash::Sha1)
                .toHex());
    }
}

} // namespace

void EntryImport::recognise(DatabaseManager &store, EntryFileContents &contents, bool allowDuplicates)
{
    giveFingerprints(contents.entries);
    contents.skippedDuplicates = 0;
    if (allowDuplicates)
        return;
    const QSet<QString> known = ImportLog(store).knownFingerprints();
    if (known.isEmpty())
        return;
    const qsizetype before = contents.entries.size();
    contents.entries.removeIf(
        [&known](const EntryFileContents::LineEntry &read) { return known.contains(read.fingerprint); });
    contents.skippedDuplicates = int(before - contents.entries.size());
}

void EntryImport::categorise(DatabaseManager &store, EntryFileContents &contents)
{
    contents.categorisedByRules = 0;
    RuleMatcher matcher(Rules(store).all());
    if (matcher.isEmpty())
        return;
    for (EntryFileContents::LineEntry &read : contents.entries) {
        Entry &entry = read.entry;
        if (!RuleMatcher::takesRuleCategory(entry.CategoryName))
            continue;
        const std::optional<QString> category = matcher.categoryOf(entry.ItemName, entry.LocationText);
        if (category && *category != entry.CategoryName) {
            entry.CategoryName = *category;
            ++contents.categorisedByRules;
        }
    }
}

EntryImport::Outcome EntryImport::write(DatabaseManager &store, const QList<EntryFileContents::LineEntry> &entries,
                                        const DatabaseManager::Progress &progress, const QString &fileName)
{
    Outcome outcome;
    QList<qsizetype> order(entries.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&entries](qsizetype a, qsizetype b) {
        return entries.at(a).entry.TransactDateTime < entries.at(b).entry.TransactDateTime;
    });

    QSet<QString> known;
    for (const Category *category : owned(store.GetAllCategories()))
        known.insert(category->CategoryName);
    QStringList missing;
    for (qsizetype i : order) {
        const QString &name = entries.at(i).entry.CategoryName;
        if (!known.contains(name)) {
            known.insert(name);
            missing.append(name);
        }
    }

    const qsizetype total = entries.size();
    bool cancelled = false;
    QString failure;
    const bool recorded = !fileName.isEmpty() && total > 0;
    QList<EntryFileContents::LineEntry> withFingerprints;
    if (recorded && std::any_of(entries.begin(), entries.end(), [](const EntryFileContents::LineEntry &read) {
            return read.fingerprint.isEmpty();
        })) {
        withFingerprints = entries;
        giveFingerprints(withFingerprints);
    }
    const QList<EntryFileContents::LineEntry> &remembered = withFingerprints.isEmpty() ? entries : withFingerprints;
    ImportLog log(store);
    QList<int> entryIds;
    QStringList fingerprints;
    if (recorded) {
        entryIds.reserve(total);
        fingerprints.reserve(total);
    }
    const bool written = store.runInTransaction(
        DatabaseManager::WriteKind::Import,
        [&] {
            for (const QString &name : missing) {
                if (!store.AddCategory(name)) {
                    failure = tr("the category \"%1\" could not be added to the database").arg(name);
                    return false;
                }
            }
            qsizetype done = 0;
            for (qsizetype i : order) {
                Entry entry = entries.at(i).entry;
                if (!store.AddEntry(&entry)) {
                    failure = tr("the entry of line %1 could not be added to the database").arg(entries.at(i).line);
                    return false;
                }
                if (recorded) {
                    entryIds.append(log.lastEntryId());
                    fingerprints.append(remembered.at(i).fingerprint);
                }
                ++done;
                if (progress && (done % 256 == 0 || done == total) && !progress(done, total)) {
                    cancelled = true;
                    return false;
                }
            }
            if (recorded) {
                outcome.importId = log.record(QFileInfo(fileName).absoluteFilePath(), QDateTime::currentDateTime(),
                                              entryIds, fingerprints);
                if (outcome.importId == 0) {
                    failure = tr("the import could not be recorded in the database");
                    return false;
                }
            }
            return true;
        },
        &failure);
    if (written) {
        outcome.written = true;
        outcome.added = int(total);
    } else {
        outcome.failure = cancelled ? tr("the import was cancelled") : failure;
    }
    return outcome;
}

QString EntryImport::summary(const QString &fileName, const EntryFileContents &contents, int added)
{
    QString summary = added == 1
        ? tr("Imported 1 entry from %1; %2").arg(fileName, contents.skippedSummary())
        : tr("Imported %1 entries from %2; %3").arg(QString::number(added), fileName, contents.skippedSummary());
    if (contents.categorisedByRules > 0)
        summary += tr("; categorised by rules %1").arg(contents.categorisedByRules);
    return summary;
}
