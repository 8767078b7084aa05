#pragma once
// A small demo database with both settings files, in a temporary folder, for tests that run
// the program's start-up. Users: 1 administrator, 2 dispatcher (exports time data, imports
// vehicles), 3 guest (no rights that count).
#include "support/foundation_fixture.h"

#include <QString>
#include <QTemporaryDir>

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

} // namespace tp::test
