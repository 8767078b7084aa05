#include "batch/batch_options.h"

#include "export/export_catalogue.h"

#include <QDate>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>

#include <cstdio>

namespace tp::batch {

namespace {

enum class Arg {
    Settings, User, Dataset, Fields, Output, Input, From, To, Subject, Encoding,
    FormatDate, FormatTime, Yes, Progress, Picture, PictureSize
};

struct ArgInfo {
    const char* name;
    Arg arg;
    bool takesValue;
    bool forExport;
    bool forImport;
};

const ArgInfo kArgs[] = {
    {"--settings", Arg::Settings, true, true, true},
    {"--user", Arg::User, true, true, true},
    {"--dataset", Arg::Dataset, true, true, true},
    {"--fields", Arg::Fields, true, true, true},
    {"--output", Arg::Output, true, true, false},
    {"--input", Arg::Input, true, false, true},
    {"--from", Arg::From, true, true, false},
    {"--to", Arg::To, true, true, false},
    {"--subject", Arg::Subject, true, true, false},
    {"--encoding", Arg::Encoding, true, true, false},
    {"--format-date", Arg::FormatDate, false, true, false},
    {"--format-time", Arg::FormatTime, false, true, false},
    {"--yes", Arg::Yes, false, true, true},
    {"--progress", Arg::Progress, false, false, true},
    {"--picture", Arg::Picture, true, true, false},
    {"--picture-size", Arg::PictureSize, true, true, false},
};

const ArgInfo* findArg(const QString& name)
{
    for (const ArgInfo& a : kArgs)
        if (name == QLatin1String(a.name))
            return &a;
    return nullptr;
}

QString parseFields(const QString& list, bool allowHeaders, std::vector<FieldChoice>& out)
{
    QSet<QString> seen;
    for (const QString& item : list.split(QLatin1Char(','))) {
        const qsizetype eq = item.indexOf(QLatin1Char('='));
        FieldChoice choice;
        choice.name = (eq < 0 ? item : item.left(eq)).trimmed();
        if (eq >= 0) {
            if (!allowHeaders)
                return QStringLiteral("import --fields takes field names only, no =HEADER");
            choice.header = item.mid(eq + 1);
        }
        if (choice.name.isEmpty())
            return QStringLiteral("--fields holds an empty field name");
        if (seen.contains(choice.name))
            return QStringLiteral("--fields names %1 twice").arg(choice.name);
        seen.insert(choice.name);
        out.push_back(choice);
    }
    return QString();
}

bool isTrackId(const QString& text)
{
    static const QRegularExpression digits(QStringLiteral("^[0-9]{1,9}$"));
    return digits.match(text).hasMatch() && text.toInt() > 0;
}

// "WIDTHxHEIGHT" within what a picture may take (a 4096 by 4096 picture holds 64 MB).
bool parsePictureSize(const QString& text, Options& o)
{
    static const QRegularExpression form(QStringLiteral("^([0-9]{2,4})x([0-9]{2,4})$"));
    const QRegularExpressionMatch m = form.match(text);
    if (!m.hasMatch())
        return false;
    o.pictureWidth = m.captured(1).toInt();
    o.pictureHeight = m.captured(2).toInt();
    return o.pictureWidth >= 64 && o.pictureHeight >= 64 && o.pictureWidth <= 4096 && o.pictureHeight <= 4096;
}

QString checkPicture(const Options& o, bool sizeGiven)
{
    if (o.picture.isEmpty())
        return sizeGiven ? QStringLiteral("--picture-size goes with --picture") : QString();
    if (o.dataset != kListGps)
        return QStringLiteral("--picture is for GPS Data only");
    if (o.picture == kStandardOutput)
        return QStringLiteral("--picture needs a file name");
    if (!o.output.isEmpty() && QFileInfo(o.picture).absoluteFilePath() == QFileInfo(o.output).absoluteFilePath())
        return QStringLiteral("--picture and --output name the same file");
    return QString();
}

// Checks that need the whole command line.
QString checkExport(const Options& o)
{
    if (!exportDataSetNames().contains(o.dataset))
        return QStringLiteral("--dataset must be one of: ") +
               exportDataSetNames().join(QStringLiteral(", "));
    if (!o.fieldsGiven)
        return QStringLiteral("export needs --fields");
    if (o.output.isEmpty() && o.picture.isEmpty())
        return QStringLiteral("export needs --output (or, for GPS Data, --picture)");
    if (o.from.isEmpty() != o.to.isEmpty())
        return QStringLiteral("--from and --to go together");
    for (const QString& date : {o.from, o.to})
        if (!date.isEmpty() && !isValidBoxDate(date))
            return QStringLiteral("%1 is not a date of the form MM/DD/YYYY").arg(date);
    const bool gps = o.dataset == kListGps;
    if (gps && (!o.byDate() || o.subject.isEmpty()))
        return QStringLiteral("GPS Data needs --from, --to and --subject");
    // The window offers no date range for locations: every row is exported.
    if ((o.dataset == kListMapLocations || o.dataset == kListPinpoints) && o.byDate())
        return o.dataset + QStringLiteral(" takes every location; --from and --to are not offered");
    if (!gps && !o.subject.isEmpty())
        return QStringLiteral("--subject is for GPS Data only");
    if (!o.subject.isEmpty() && o.subject != QLatin1String("all") && !isTrackId(o.subject))
        return QStringLiteral("--subject must be all or a track id");
    return QString();
}

QString checkImport(const Options& o)
{
    if (!importDataSetNames().contains(o.dataset))
        return QStringLiteral("--dataset must be one of: ") +
               importDataSetNames().join(QStringLiteral(", "));
    if (o.input.isEmpty())
        return QStringLiteral("import needs --input");
    return QString();
}

} // namespace

bool isValidBoxDate(const QString& text)
{
    static const QRegularExpression form(QStringLiteral("^[0-9]{2}/[0-9]{2}/[0-9]{4}$"));
    return form.match(text).hasMatch() &&
           QDate::fromString(text, QStringLiteral("MM/dd/yyyy")).isValid();
}

const QStringList& exportDataSetNames()
{
    static const QStringList names = {kListTime, kListInventory, kListGps, kListMapLocations,
                                      kListPinpoints};
    return names;
}

const QStringList& importDataSetNames()
{
    static const QStringList names = {
        QStringLiteral("Customer Data"), QStringLiteral("Employee Data"),
        QStringLiteral("Vehicle Data"), QStringLiteral("Map Locations Data"),
        QStringLiteral("Pinpoints Data")};
    return names;
}

ParseResult parseArguments(const QStringList& arguments)
{
    ParseResult result;
    Options& o = result.options;
    if (arguments.contains(QLatin1String("--help")) || arguments.contains(QLatin1String("-h"))) {
        o.command = Command::Help;
        return result;
    }
    if (arguments.isEmpty()) {
        result.error = QStringLiteral("no command given");
        return result;
    }
    const QString first = arguments.first();
    if (first == QLatin1String("--version")) {
        o.command = Command::Version;
        if (arguments.size() > 1)
            result.error = QStringLiteral("--version takes nothing else");
        return result;
    }
    if (first == QLatin1String("export"))
        o.command = Command::Export;
    else if (first == QLatin1String("import"))
        o.command = Command::Import;
    else {
        result.error = QStringLiteral("unknown command %1").arg(first);
        return result;
    }
    const bool isExport = o.command == Command::Export;

    QSet<int> given;
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        QString name = arguments.at(i);
        std::optional<QString> value;
        const qsizetype eq = name.indexOf(QLatin1Char('='));
        if (name.startsWith(QLatin1String("--")) && eq > 0) {
            value = name.mid(eq + 1);
            name = name.left(eq);
        }
        const ArgInfo* info = findArg(name);
        if (!info || !(isExport ? info->forExport : info->forImport)) {
            result.error = QStringLiteral("%1 is not an option of %2").arg(name, first);
            return result;
        }
        if (given.contains(int(info->arg))) {
            result.error = QStringLiteral("%1 given twice").arg(name);
            return result;
        }
        given.insert(int(info->arg));
        if (!info->takesValue) {
            if (value) {
                result.error = QStringLiteral("%1 takes no value").arg(name);
                return result;
            }
        } else if (!value) {
            if (i + 1 >= arguments.size() || arguments.at(i + 1).startsWith(QLatin1String("--"))) {
                result.error = QStringLiteral("%1 needs a value").arg(name);
                return result;
            }
            value = arguments.at(++i);
        }
        if (info->takesValue && value->isEmpty()) {
            result.error = QStringLiteral("%1 needs a value").arg(name);
            return result;
        }
        switch (info->arg) {
        case Arg::Settings: o.settings = *value; break;
        case Arg::User: o.user = *value; break;
        case Arg::Dataset: o.dataset = *value; break;
        case Arg::Output: o.output = *value; break;
        case Arg::Input: o.input = *value; break;
        case Arg::From: o.from = *value; break;
        case Arg::To: o.to = *value; break;
        case Arg::Subject: o.subject = *value; break;
        case Arg::FormatDate: o.formatDate = true; break;
        case Arg::FormatTime: o.formatTime = true; break;
        case Arg::Yes: o.yes = true; break;
        case Arg::Progress: o.progress = true; break;
        case Arg::Picture: o.picture = *value; break;
        case Arg::PictureSize:
            if (!parsePictureSize(*value, o)) {
                result.error = QStringLiteral("--picture-size must be WIDTHxHEIGHT, each from 64 to 4096");
                return result;
            }
            break;
        case Arg::Fields:
            o.fieldsGiven = true;
            result.error = parseFields(*value, isExport, o.fields);
            if (!result.error.isEmpty())
                return result;
            break;
        case Arg::Encoding:
            if (value->compare(QLatin1String("windows-1252"), Qt::CaseInsensitive) == 0)
                o.encoding = FileEncoding::Windows1252;
            else if (value->compare(QLatin1String("utf-8"), Qt::CaseInsensitive) == 0)
                o.encoding = FileEncoding::Utf8;
            else {
                result.error = QStringLiteral("--encoding must be windows-1252 or utf-8");
                return result;
            }
            break;
        }
    }
    if (o.settings.isEmpty() || o.user.isEmpty() || o.dataset.isEmpty()) {
        result.error = QStringLiteral("%1 needs --settings, --user and --dataset").arg(first);
        return result;
    }
    // They travel in the host's comma-separated command line, which cannot carry a comma.
    if (o.settings.contains(QLatin1Char(',')) || o.user.contains(QLatin1Char(','))) {
        result.error = QStringLiteral("--settings and --user cannot hold a comma");
        return result;
    }
    result.error = isExport ? checkExport(o) : checkImport(o);
    if (result.error.isEmpty() && isExport)
        result.error = checkPicture(o, given.contains(int(Arg::PictureSize)));
    return result;
}

QString usageText()
{
    return QStringLiteral(
        "Usage:\n"
        "  tallyport-batch export --settings FILE --user ID --dataset NAME --fields LIST --output FILE\n"
        "                         [--from MM/DD/YYYY --to MM/DD/YYYY] [--subject all|TRACKID]\n"
        "                         [--format-date] [--format-time] [--encoding windows-1252|utf-8] [--yes]\n"
        "                         [--picture FILE.png [--picture-size WxH]]\n"
        "  tallyport-batch import --settings FILE --user ID --dataset NAME --input FILE [--fields LIST]\n"
        "                         [--yes] [--progress]\n"
        "  tallyport-batch --help | --version\n");
}

int usageError(const QString& why)
{
    const QByteArray text =
        (QStringLiteral("tallyport-batch: ") + why + QStringLiteral("\n\n") + usageText() +
         QStringLiteral("Try tallyport-batch --help for more.\n")).toLocal8Bit();
    std::fwrite(text.constData(), 1, std::size_t(text.size()), stderr);
    return ExitUsage;
}

QString helpText()
{
    return usageText() + QStringLiteral(
        "\n"
        "Runs the Export (or Import) window's work without a window, for scheduled jobs.\n"
        "\n"
        "Options:\n"
        "  --settings FILE   settings file, a bare name looked up in the settings folder as the\n"
        "                    window does ($TALLYPORT_SETTINGS_DIR, else ~/.config/tallyport).\n"
        "                    Example: --settings KRV.ini\n"
        "  --user ID         the user id the host would pass; the same permission gates apply.\n"
        "                    Example: --user 2\n"
        "  --dataset NAME    the data set as the window's list names it. Export: \"Time Data\",\n"
        "                    \"Inventory Data\", \"GPS Data\", \"Map Locations Data\", \"Pinpoint Data\".\n"
        "                    Import: \"Customer Data\", \"Employee Data\", \"Vehicle Data\",\n"
        "                    \"Map Locations Data\", \"Pinpoints Data\".\n"
        "                    Example: --dataset \"Time Data\"\n"
        "  --fields LIST     export: catalogue field names in output order, separated by commas, each\n"
        "                    optionally followed by =HEADER for its header text (no commas in it).\n"
        "                    Example: --fields EmployeeNumber=Emp,EmployeeLastName,Date\n"
        "                    import: the optional fields to tick (required fields are always\n"
        "                    ticked); the file's headings follow the grid's order.\n"
        "                    Example: --fields City,State,ZipCode\n"
        "  --output FILE     export file to write (replaced when it exists).\n"
        "                    Example: --output /srv/payroll/time.txt\n"
        "  --input FILE      import: the text file to read. Example: --input customers.txt\n"
        "  --from DATE       with --to: only records dated from DATE to DATE, both included\n"
        "  --to DATE         (MM/DD/YYYY). Without them every waiting record is exported.\n"
        "                    Example: --from 01/01/2024 --to 01/31/2024\n"
        "  --subject S       GPS Data only (needs --from/--to): all, or one track id.\n"
        "                    Example: --subject all\n"
        "  --picture FILE    GPS Data only: also draw the selected tracks into a PNG picture\n"
        "                    (one colour per subject, start and end markers, grey crosses for\n"
        "                    the fixes the export leaves out, a legend and a scale bar). Without\n"
        "                    --output only the picture is made. Example: --picture march.png\n"
        "  --picture-size WxH  the picture's size in pixels, 64 to 4096 each (default 1200x900).\n"
        "  --format-date     write dates as \"MM/DD/YYYY\" text instead of YYYYMMDD numbers.\n"
        "  --format-time     write times as \"HH:MM:SS\" text instead of HHMMSS numbers (a time\n"
        "                    stored with five digits keeps its one-digit hour: 9:30:00).\n"
        "  --encoding E      windows-1252 (default) or utf-8 (no byte-order mark).\n"
        "                    Example: --encoding utf-8\n"
        "  --yes             answer Yes to the window's questions (for example the question\n"
        "                    before exporting more than 200 records, or whether an import may\n"
        "                    renumber a record whose number is taken); without it they get No.\n"
        "  --progress        import: each time a group of records is committed, print\n"
        "                    \"Records written: N of TOTAL\" on a line of its own to standard\n"
        "                    error; the N records are in the database from then on.\n"
        "  --help            this text.   --version   the program version.\n"
        "\n"
        "Messages and questions go to standard error as the window shows them; the final status\n"
        "text goes to standard output.\n"
        "\n"
        "Exit status: 0 the export completed (\"Export Completed Successfully\") or the import did\n"
        "(\"Importing File ''NAME'' Completed Successfully\"); 1 refused, nothing to export, a fault\n"
        "in the import file (its report goes to standard error), declined or failed; 2 usage error.\n"
        "\n"
        "Example (every night at 02:30, Time Data of the signed-in payroll user 2):\n"
        "  tallyport-batch export --settings KRV.ini --user 2 --dataset \"Time Data\" \\\n"
        "      --fields EmployeeNumber=Emp,EmployeeLastName,Date,Time --format-date \\\n"
        "      --output /srv/payroll/time.txt --yes\n");
}

} // namespace tp::batch
