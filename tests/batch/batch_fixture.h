#pragma once
// Runs the built tallyport-batch against a demo site whose time records the test controls.
#include "support/demo_site.h"
#include "support/programs.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace tp::test {

using BatchRun = ProgramRun;

class BatchTest : public ::testing::Test {
protected:
    void SetUp() override;

    // Runs the binary with the site's settings folder; the working folder is the output folder.
    BatchRun run(const QStringList& arguments) const;
    // "export --settings KRV.ini --user USER --dataset "Time Data" --fields FIELDS --output FILE"
    // followed by extra.
    BatchRun exportTime(const QString& fields, const QString& file,
                        const QStringList& extra = {}, const QString& user = QStringLiteral("2")) const;

    void exec(const QString& sql) { ASSERT_TRUE(site.exec(sql)) << sql.toStdString(); }
    // "Approved:ExportID" of one record, e.g. "2:1".
    QString marks(qint64 id) const;
    qint64 waiting() const;
    // Waits again: the records SetUp made waiting, after an export marked them.
    void unmark() { exec("UPDATE JobTimeRecords SET Approved = 1, ExportID = 0 WHERE NewTimeRecordID IN (1, 2, 3, 5)"); }
    // n more waiting records of employee 9002 on 02/01/2024, ids from firstId.
    void addMany(int n, qint64 firstId);

    QString path(const QString& name) const { return outDir.filePath(name); }

    // The waiting records made by SetUp: ids 1, 2, 3 and 5.
    static QByteArray expectedDefaultFile();   // Windows-1252

    DemoSite site;
    QTemporaryDir outDir;
    const QString binary = QStringLiteral(TP_BINARY_DIR "/tallyport-batch");
};

} // namespace tp::test
