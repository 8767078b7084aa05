#pragma once
// The batch tool's command line: what was asked for, checked for form only. Whether the user
// may do it, and whether the fields exist, is decided later against the database.
#include "delivery/export_writer.h"

#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

namespace tp::batch {

// Exit statuses of the tool.
enum ExitStatus { ExitSuccess = 0, ExitFailure = 1, ExitUsage = 2 };

enum class Command { Export, Import, Help, Version };

struct FieldChoice {
    QString name;
    std::optional<QString> header;   // "=HEADER" given: the edited "Text File Header"
};

struct Options {
    Command command = Command::Help;
    QString settings;
    QString user;
    QString dataset;
    std::vector<FieldChoice> fields;   // in output (export) or file (import) order
    bool fieldsGiven = false;
    QString output;
    QString input;
    QString from, to;                  // MM/DD/YYYY as given; both or neither
    QString subject;                   // "all" or a track id; empty when not given
    bool formatDate = false;
    bool formatTime = false;
    FileEncoding encoding = FileEncoding::Windows1252;
    bool yes = false;
    bool progress = false;             // import: a line on standard error after each commit
    QString picture;                   // GPS Data: the track picture (PNG) to write
    int pictureWidth = 1200, pictureHeight = 900;

    bool byDate() const { return !from.isEmpty(); }
};

struct ParseResult {
    Options options;
    QString error;   // not empty: a usage error, to be printed with the usage text
    bool ok() const { return error.isEmpty(); }
};

// arguments: without the program name.
ParseResult parseArguments(const QStringList& arguments);

// A date typed as the date boxes hold it: MM/DD/YYYY, a real calendar day.
bool isValidBoxDate(const QString& text);

// Data-set texts of the two lists, in list order.
const QStringList& exportDataSetNames();
const QStringList& importDataSetNames();

QString usageText();   // the short synopsis printed with a usage error
QString helpText();    // --help: every option with an example

// Prints "tallyport-batch: why" and the usage text to standard error; returns ExitUsage.
int usageError(const QString& why);

} // namespace tp::batch
