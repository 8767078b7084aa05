#include "demo_generator.h"
#include "demo_content.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace tp {

bool createSqliteDemo(const QString& file, const QString& schemaText, const DemoOptions& options,
                      QString* error, DemoSummary& summary);
bool createPostgresDemo(const QString& location, const QString& schemaText, const DemoOptions& options,
                        QString* error, DemoSummary& summary);

namespace {

bool isPostgres(const QString& location)
{
    return location.startsWith(QLatin1String("postgresql://"), Qt::CaseInsensitive)
        || location.startsWith(QLatin1String("postgres://"), Qt::CaseInsensitive);
}

} // namespace

QString demoSchemaPath(bool postgres)
{
    QString dir = qEnvironmentVariable("TALLYPORT_DATA_DIR");
    if (dir.isEmpty() && QCoreApplication::instance()) {
        // An installed generator reads the scripts installed with it; one in a build folder,
        // the sources.
        const QString installed = QDir::cleanPath(QDir(QCoreApplication::applicationDirPath())
                                                      .filePath(QStringLiteral(TP_INSTALLED_DATA_DIR)));
        if (QFileInfo::exists(QDir(installed).filePath(QStringLiteral("schema_sqlite.sql"))))
            dir = installed;
    }
    if (dir.isEmpty())
        dir = QStringLiteral(TP_DATA_DIR);
    return QDir(dir).filePath(postgres ? QStringLiteral("schema_postgres.sql") : QStringLiteral("schema_sqlite.sql"));
}

bool createDemoDatabase(const QString& location, const DemoOptions& options, QString* error, DemoSummary* summary)
{
    const bool postgres = isPostgres(location);
    QFile schema(demoSchemaPath(postgres));
    if (!schema.open(QIODevice::ReadOnly | QIODevice::Text)) {
        if (error)
            *error = QStringLiteral("Cannot read the schema %1: %2").arg(schema.fileName(), schema.errorString());
        return false;
    }
    const QString schemaText = QString::fromUtf8(schema.readAll());
    DemoSummary made;
    QElapsedTimer clock;
    clock.start();
    const bool ok = postgres ? createPostgresDemo(location, schemaText, options, error, made)
                             : createSqliteDemo(location, schemaText, options, error, made);
    made.seconds = double(clock.nsecsElapsed()) / 1e9;
    if (ok && summary)
        *summary = made;
    return ok;
}

bool writeDemoSettings(const QString& folder, const QString& dbFolder, const QString& dbName, QString* error)
{
    if (!QDir().mkpath(folder)) {
        if (error)
            *error = QStringLiteral("Cannot create the folder %1.").arg(folder);
        return false;
    }
    QString path = dbFolder;
    if (!path.endsWith('/') && !path.endsWith('\\'))
        path += '/';
    const QString text = QStringLiteral(
                             "[PRIMARY]\n"
                             "Field1=%1\n"
                             "Field2=%2\n"
                             "SevereError=Log\n"
                             "MinorError=Ignore\n"
                             "FieldPSP=0\n"
                             "Field6=False\n"
                             "\n"
                             "[GPS]\n"
                             "GPSTargetAreaDeviation=0.0005\n")
                             .arg(path, dbName);
    for (const QString& name : {QStringLiteral("KRV.ini"), QStringLiteral("lumtrek.ini")}) {
        QSaveFile file(QDir(folder).filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0 || !file.commit()) {
            if (error)
                *error = QStringLiteral("Cannot write %1: %2").arg(file.fileName(), file.errorString());
            return false;
        }
    }
    return true;
}

QString DemoSummary::describe() const
{
    QStringList lines;
    lines << QStringLiteral("Dates %1 to %2 (working days)").arg(firstDate).arg(lastDate);
    lines << QStringLiteral("%1 branches, %2 states and provinces, %3 tracker serials, %4 vehicle groups")
                 .arg(branches).arg(states).arg(trackerSerials).arg(groups);
    lines << QStringLiteral("%1 employees, %2 vehicles, %3 customers, %4 map locations")
                 .arg(employees).arg(vehicles).arg(customers).arg(locations);
    lines << QStringLiteral("%1 users (1 administrator, 2 some rights, 3 none), %2 permission rows")
                 .arg(users).arg(permissionRows);
    lines << QStringLiteral("%1 time records: %2 waiting for export, %3 exported, %4 not approved, %5 approved again")
                 .arg(timeRecords()).arg(timeWaiting).arg(timeExported).arg(timeUnapproved).arg(timeReapproved);
    lines << QStringLiteral("%1 inventory records: %2 waiting for export, %3 exported, %4 not approved, %5 approved again")
                 .arg(inventoryRecords()).arg(inventoryWaiting).arg(inventoryExported).arg(inventoryUnapproved)
                 .arg(inventoryReapproved);
    lines << QStringLiteral("%1 tracks with %2 GPS points (%3 unusable fixes)").arg(tracks).arg(gpsPoints).arg(gpsUnusable);
    lines << QStringLiteral("Made in %1 s").arg(seconds, 0, 'f', 2);
    return lines.join('\n');
}

} // namespace tp
