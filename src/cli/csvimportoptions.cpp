// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "csvimportoptions.h"

#include "commandline.h"
#include "csvprofiles.h"
#include "databasemanager.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTextStream>

#include <utility>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("CommandLine", text);
}

} // namespace

CsvImportOptions::CsvImportOptions()
    : map(QStringLiteral("map"),
          tr("import: read a bank's CSV with these columns: date, item, place, category, and amount (negative is "
             "an expense), or debit and credit, or amount and direction; each by its header name or its number "
             "(date=Datum,item=2,amount=Betrag)."),
          QStringLiteral("FIELD=COLUMN,...")),
      delimiter(QStringLiteral("delimiter"),
                tr("import: the bank CSV's delimiter: ',', ';', tab or '|' (detected without it)."),
                QStringLiteral("CHAR")),
      dateFormat(QStringLiteral("date-format"),
                 tr("import: read the bank CSV's dates in this Qt date format alone (dd.MM.yyyy, dd-MMM-yyyy)."),
                 QStringLiteral("FORMAT")),
      decimal(QStringLiteral("decimal"), tr("import: the decimal separator of the bank CSV's amounts."),
              QStringLiteral("comma|point")),
      skipLines(QStringLiteral("skip-lines"),
                tr("import: the lines before the first row of a bank CSV whose columns are given by number "
                   "(1, a header, without it)."),
                QStringLiteral("N")),
      invert(QStringLiteral("invert"), tr("import: a positive amount in the bank CSV is an expense.")),
      outMarks(QStringLiteral("out-marks"),
               tr("import: the direction values that are expenses (D,DR,Debit,Debet,Af,S,Soll,- without it); "
                  "any other is income."),
               QStringLiteral("MARKS")),
      inMarks(QStringLiteral("in-marks"),
              tr("import: the direction values that are income; any other, an empty one too, is an expense."),
              QStringLiteral("MARKS")),
      profile(QStringLiteral("profile"), tr("import: read a bank's CSV as the saved profile NAME says."),
              QStringLiteral("NAME")),
      saveProfileOption(QStringLiteral("save-profile"),
                        tr("import: keep the mapping as the profile NAME once the import is done."),
                        QStringLiteral("NAME"))
{
}

QList<QCommandLineOption> CsvImportOptions::options() const
{
    return { map, delimiter, dateFormat, decimal, skipLines, invert, outMarks, inMarks, profile, saveProfileOption };
}

void CsvImportOptions::addTo(QCommandLineParser &parser) const
{
    for (const QCommandLineOption &option : options())
        parser.addOption(option);
}

QString CsvImportOptions::read(const QCommandLineParser &parser, const QCommandLineOption &encoding,
                               const QCommandLineOption &dateOrder, Request *request) const
{
    const QList<std::pair<const QCommandLineOption *, QString>> mappingOptions = {
        { &delimiter, QStringLiteral("delimiter") }, { &dateFormat, QStringLiteral("date-format") },
        { &decimal, QStringLiteral("decimal") },     { &skipLines, QStringLiteral("skip-lines") },
        { &invert, QStringLiteral("invert") },       { &outMarks, QStringLiteral("out-marks") },
        { &inMarks, QStringLiteral("in-marks") },
    };
    const bool mapped = parser.isSet(map);
    if (parser.isSet(profile)) {
        if (mapped)
            return tr("--map and --profile exclude each other.");
        if (parser.isSet(saveProfileOption))
            return tr("--save-profile goes with --map, not --profile.");
        for (const auto &[option, name] : mappingOptions) {
            if (parser.isSet(*option))
                return tr("--%1 goes with --map, not --profile.").arg(name);
        }
        request->profile = parser.value(profile);
        for (const auto &[option, name] : { std::pair(&encoding, QStringLiteral("encoding")),
                                            std::pair(&dateOrder, QStringLiteral("date-order")) }) {
            if (!parser.isSet(*option))
                continue;
            QString error;
            if (!CsvMapping().readOption(name, parser.value(*option), &error))
                return error;
            request->profileOverrides.append({ name, parser.value(*option) });
        }
        return QString();
    }
    if (!mapped) {
        for (const auto &[option, name] : mappingOptions) {
            if (parser.isSet(*option))
                return tr("--%1 goes with import --map only.").arg(name);
        }
        if (parser.isSet(saveProfileOption))
            return tr("--save-profile goes with import --map only.");
        return QString();
    }
    CsvMapping mapping;
    QString error;
    if (!mapping.readMap(parser.value(map), &error))
        return error;
    for (const auto &[option, name] : mappingOptions) {
        if (parser.isSet(*option) &&
            !mapping.readOption(name, option == &invert ? QString() : parser.value(*option), &error))
            return error;
    }
    for (const auto &[option, name] :
         { std::pair(&encoding, QStringLiteral("encoding")), std::pair(&dateOrder, QStringLiteral("date-order")) }) {
        if (parser.isSet(*option) && !mapping.readOption(name, parser.value(*option), &error))
            return error;
    }
    error = mapping.problem();
    if (!error.isEmpty())
        return error;
    if (parser.isSet(saveProfileOption)) {
        request->saveProfile = parser.value(saveProfileOption).trimmed();
        // The list of profiles gives one a line, its name before a tab.
        if (request->saveProfile.isEmpty() || request->saveProfile.contains(QLatin1Char('\t')) ||
            request->saveProfile.contains(QLatin1Char('\n')) || request->saveProfile.contains(QLatin1Char('\r')))
            return tr("--save-profile takes a NAME without tabs or line breaks.");
    }
    request->mapping = mapping;
    return QString();
}

std::optional<CsvMapping> CsvImportOptions::mappingOf(DatabaseManager &store, const Request &request, QString *failure)
{
    if (request.mapping)
        return request.mapping;
    const std::optional<QString> text = CsvProfiles(store).mapping(request.profile);
    if (!text) {
        *failure = tr("There is no profile %1; \"profiles\" lists them.").arg(request.profile);
        return std::nullopt;
    }
    QString problem;
    std::optional<CsvMapping> mapping = CsvMapping::fromText(*text, &problem);
    if (!mapping) {
        *failure = tr("The profile %1 cannot be read: %2").arg(request.profile, problem);
        return mapping;
    }
    for (const auto &[name, value] : request.profileOverrides)
        mapping->readOption(name, value, &problem);
    return mapping;
}

bool CsvImportOptions::saveProfile(DatabaseManager &store, const Request &request, const CsvMapping &mapping,
                                   QString *failure)
{
    if (request.saveProfile.isEmpty())
        return true;
    if (!CsvProfiles(store).save(request.saveProfile, mapping.text())) {
        *failure = tr("The profile %1 could not be saved.").arg(request.saveProfile);
        return false;
    }
    return true;
}

int CsvImportOptions::profiles(const QStringList &words, QTextStream &out, QTextStream &err,
                               const std::function<int(const QString &)> &usageError)
{
    const bool remove = words.size() == 2 && words.at(0) == QLatin1String("remove");
    if (!words.isEmpty() && !remove)
        return usageError(tr("profiles takes nothing, or remove and the NAME of a profile."));
    DatabaseManager store(nullptr);
    if (!store.isUsable()) {
        err << tr("The database %1 cannot be opened: %2").arg(store.databaseFileName(), store.openError()) << '\n';
        return CommandLine::Refused;
    }
    CsvProfiles profiles(store);
    if (!remove) {
        for (const CsvProfiles::Profile &profile : profiles.all())
            out << profile.name << '\t' << profile.mapping << '\n';
        return 0;
    }
    const QString name = words.at(1);
    if (!profiles.mapping(name)) {
        err << tr("There is no profile %1; \"profiles\" lists them.").arg(name) << '\n';
        return CommandLine::Refused;
    }
    if (!profiles.remove(name)) {
        err << tr("The profile %1 could not be removed.").arg(name) << '\n';
        return CommandLine::Refused;
    }
    out << tr("Removed the profile %1").arg(name) << '\n';
    return CommandLine::Success;
}
