#pragma once
// An import session on a real primary database (SQLite file or PostgreSQL scratch database)
// with a few branches, states, serials, groups and existing rows; files written by the test.
#include "foundation/dao.h"
#include "foundation/globals.h"
#include "import/import_session.h"
#include "support/foundation_fixture.h"
#include "support/test_databases.h"

#include <QDir>
#include <gtest/gtest.h>

namespace tp::test {

// Branches 1 and 2; states CA, NY, TX; serials 310000001-2; groups 1 and 2; employees 5 and 7;
// customer 4; vehicle 3 with plate "ABC 123"; locations 1 "Depot" and 2 "OBrien Yard".
inline const char* const kImportSeed =
    "INSERT INTO BranchInfo (BranchNumber, BranchName) VALUES (1, 'North'), (2, 'South');\n"
    "INSERT INTO StatesAndProvinces (GTKRVAbbreviation, StateName) VALUES ('CA', 'California'), "
    "('NY', 'New York'), ('TX', 'Texas');\n"
    "INSERT INTO ValidTrackerSerialNumbers (TrackerSerialNumber) VALUES ('310000001'), ('310000002');\n"
    "INSERT INTO Extra2 (UniqueID, Description) VALUES (1, 'Service'), (2, 'Delivery');\n"
    "INSERT INTO EmployeeInfo (EmployeeNumber, LastName, FirstName) VALUES (5, 'Old', 'One'), (7, 'Old', 'Two');\n"
    "INSERT INTO CustomerInfo (CustomerNumber, CompanyName) VALUES (4, 'Old Co');\n"
    "INSERT INTO VehicleInfo (VehicleNumber, LicenseNumber) VALUES (3, 'ABC 123');\n"
    "INSERT INTO CommonLocations (CommonLocationNumber, BranchNumber, LocationName) VALUES (1, 1, 'Depot'), "
    "(2, 1, 'OBrien Yard');\n";

template <class Engine>
class ImportTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        const QString schema = schemaScript(Engine::kPostgres);
        const QString why = engine.create(schema + QLatin1Char('\n') + QLatin1String(kImportSeed));
        if (why == QLatin1String(kPgSkipMessage))
            GTEST_SKIP() << kPgSkipMessage;
        ASSERT_TRUE(why.isEmpty()) << why.toStdString();
        ASSERT_TRUE(db.DB_Connect(engine.location, QString(), QStringLiteral("Admin"), QString()))
            << db.errorText.toStdString();
        globals().SettingsFileName = QStringLiteral("KRV.ini");
        globals().UserID = QStringLiteral("1");
        globals().DatabaseOpen = true;
        ASSERT_TRUE(files.isValid());
    }
    void TearDown() override { db.DB_Close(); }

    // Writes the file and returns its full name.
    QString file(const QByteArray& content, const QString& name = QStringLiteral("import.txt"))
    {
        const QString path = QDir(files.path()).filePath(name);
        EXPECT_TRUE(writeBytes(path, content));
        return path;
    }

    // Chooses the data set and ticks the named optional fields.
    void choose(ImportDataType type, const QStringList& optional = {})
    {
        ASSERT_TRUE(session.selectDataSet(type));
        for (const QString& name : optional) {
            ASSERT_NE(session.rowOf(name), 0) << name.toStdString();
            session.setTicked(session.rowOf(name), true);
        }
    }

    // Scans the content; the outcome's report is the message shown.
    ImportScanOutcome scan(const QByteArray& content) { return session.scanFile(file(content)); }

    // Scans, expects acceptance and writes.
    ImportWriteOutcome scanAndWrite(const QByteArray& content)
    {
        const ImportScanOutcome s = scan(content);
        EXPECT_EQ(s.kind, ImportScanOutcome::Accepted) << s.report.toStdString();
        return session.importToDatabase(QStringLiteral("import.txt"));
    }

    // Every row of the query, columns joined by '|', rows by '\n'.
    QString rows(const QString& sql)
    {
        QStringList out;
        RecordsetPtr rs = db.RecSet_Forward(sql);
        if (!rs)
            return QStringLiteral("<") + db.errorText + QStringLiteral(">");
        for (; !rs->atEnd(); rs->moveNext()) {
            QStringList row;
            for (int c = 0; c < rs->fieldCount(); ++c)
                row << rs->value(c).toString();
            out << row.join(QLatin1Char('|'));
        }
        db.RS_Close(rs);
        return out.join(QLatin1Char('\n'));
    }
    qint64 count(const QString& table) { return rows(QStringLiteral("SELECT count(*) FROM ") + table).toLongLong(); }

    ScopedFoundation foundation;
    Engine engine;
    cDAO db;
    QTemporaryDir files;
    ScriptedFeedback& feedback = foundation.feedback;
    ImportSession session{db, foundation.feedback};
};

using ImportEngines = ::testing::Types<SqliteTestEngine, PgTestEngine>;

} // namespace tp::test
