#include "support/demo_site.h"

#include "demo_generator.h"
#include "foundation/dao.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

namespace tp::test {

namespace {

// One generated database per test program, copied for every site: generating is the slow part.
QString templateDatabase(QString* error)
{
    static QTemporaryDir dir;
    static QString made;
    static QString failure;
    if (made.isEmpty() && failure.isEmpty()) {
        DemoOptions options;
        options.employees = 12, options.vehicles = 8, options.customers = 8, options.locations = 6;
        options.timeRecords = 60, options.inventoryRecords = 30, options.tracks = 6, options.gpsPoints = 300;
        options.months = 2;
        const QString file = dir.filePath(QStringLiteral("template.db"));
        if (createDemoDatabase(file, options, &failure))
            made = file;
        else if (failure.isEmpty())
            failure = QStringLiteral("the demo database could not be made");
    }
    *error = failure;
    return made;
}

} // namespace

DemoSite::DemoSite()
{
    const QString source = templateDatabase(&m_error);
    if (!m_error.isEmpty())
        return;
    if (!QFile::copy(source, databaseFile())) {
        m_error = QStringLiteral("cannot copy the demo database");
        return;
    }
    QFile::setPermissions(databaseFile(), QFile::ReadOwner | QFile::WriteOwner);
    QString error;
    if (!writeDemoSettings(m_settings.path(), m_dir.path(), QStringLiteral("primary.db"), &error))
        m_error = QStringLiteral("cannot write the settings: ") + error;
}

QString DemoSite::databaseFile() const
{
    return QDir(m_dir.path()).filePath(QStringLiteral("primary.db"));
}

void DemoSite::writeSettings(const QString& name, const QByteArray& content) const
{
    m_settings.write(name, content);
}

bool DemoSite::exec(const QString& sql)
{
    cDAO db;
    if (!db.DB_Connect(databaseFile(), QString(), QStringLiteral("Admin"), QString()))
        return false;
    db.Exec(sql);
    const bool ok = db.appError == 0;
    db.DB_Close();
    return ok;
}

QString DemoSite::rows(const QString& sql) const
{
    return queryRows(databaseFile(), sql, QLatin1Char(':'), QLatin1Char(' '));
}

qint64 DemoSite::scalar(const QString& sql) const
{
    bool number = false;
    const qint64 value = rows(sql).section(QLatin1Char(' '), 0, 0).section(QLatin1Char(':'), 0, 0).toLongLong(&number);
    if (!number)
        ADD_FAILURE() << sql.toStdString() << " gave " << rows(sql).toStdString();
    return number ? value : -1;
}

QString EngineDemoSite::create(bool postgres, DemoOptions options)
{
    QString folder, name;
    if (postgres) {
        m_pg = std::make_unique<PgScratchDatabase>();
        if (!m_pg->ok())
            return pgTestUrl().isEmpty() ? QString::fromLatin1(kPgSkipMessage) : m_pg->error();
        m_location = m_pg->url();
        const qsizetype cut = m_location.lastIndexOf(QLatin1Char('/')) + 1;
        folder = m_location.left(cut);
        name = m_location.mid(cut);
    } else {
        if (!m_files.isValid() || !m_settings.isValid())
            return QStringLiteral("no temporary folder");
        name = QStringLiteral("demo.db");
        m_location = QDir(m_files.path()).filePath(name);
        folder = m_files.path() + QLatin1Char('/');
    }
    options.replaceExisting = true;
    QString error;
    if (!createDemoDatabase(m_location, options, &error) || !writeDemoSettings(m_settings.path(), folder, name, &error))
        return error.isEmpty() ? QStringLiteral("the demo database could not be made") : error;
    return QString();
}

QString queryRows(const QString& location, const QString& sql, QChar columnGap, QChar rowGap)
{
    cDAO db;
    if (!db.DB_Connect(location, QString(), QStringLiteral("Admin"), QString()))
        return QStringLiteral("<cannot open>");
    QStringList out;
    RecordsetPtr rs = db.RecSet_Forward(sql);
    if (!rs)
        out << QStringLiteral("<") + db.errorText + QStringLiteral(">");
    for (; rs && !rs->atEnd(); rs->moveNext()) {
        QStringList row;
        for (int c = 0; c < rs->fieldCount(); ++c)
            row << rs->value(c).toString();
        out << row.join(columnGap);
    }
    if (rs)
        db.RS_Close(rs);
    db.DB_Close();
    return out.join(rowGap);
}

} // namespace tp::test
