#pragma once
// A small demo database with both settings files, in a temporary folder, for tests that run
// the program's start-up. Users: 1 administrator, 2 dispatcher (exports time data, imports
// vehicles), 3 guest (no rights that count).
#include "demo_generator.h"
#include "support/foundation_fixture.h"
#include "support/test_databases.h"

#include <QString>
#include <QTemporaryDir>
#include <memory>

namespace tp::test {

class DemoSite {
public:
    DemoSite();

    bool ok() const { return m_error.isEmpty(); }
    QString error() const { return m_error; }
    QString databaseFile() const;
    QString settingsFolder() const { return m_settings.path(); }
    // Rewrites a settings file of the folder.
    void writeSettings(const QString& name, const QByteArray& content) const;

    // Runs a statement on the database with a connection of its own.
    bool exec(const QString& sql);
    // Reads with a connection of its own: every row's columns joined by ':', rows by ' '.
    QString rows(const QString& sql) const;
    // The first column of the first row; -1 (and a test failure) when there is none.
    qint64 scalar(const QString& sql) const;

private:
    QTemporaryDir m_dir;
    ScopedSettingsDir m_settings;
    QString m_error;
};

// A generated demo database on either engine for runs of the programs: "demo.db" in a scratch
// folder, or a scratch database on the PostgreSQL test server; and a settings folder whose
// KRV.ini and lumtrek.ini name it.
class EngineDemoSite {
public:
    // Empty on success; kPgSkipMessage when no PostgreSQL server is configured; else why not.
    QString create(bool postgres, DemoOptions options);

    QString location() const { return m_location; }   // the SQLite file or the PostgreSQL URL
    QString folder() const { return m_files.path(); }  // scratch room for the test's own files
    QString settingsFolder() const { return m_settings.path(); }
    PgScratchDatabase* pg() const { return m_pg.get(); }

private:
    QTemporaryDir m_files, m_settings;
    std::unique_ptr<PgScratchDatabase> m_pg;
    QString m_location;
};

// Every row of sql read on a connection of its own to location, its columns joined by
// columnGap and the rows by rowGap; "<why>" where the connection or the query failed.
QString queryRows(const QString& location, const QString& sql, QChar columnGap, QChar rowGap);

} // namespace tp::test
