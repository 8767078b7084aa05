#pragma once
// Runs the built tallyport-batch against a demo site whose time records the test controls.
#include "support/demo_site.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace tp::test {

struct BatchRun {
    int exitCode = -1;
    QString out;   // standard output
    QString err;   // standard error
};

class BatchTest : public ::testing::Test {
protected:
    void SetUp() override;

    // Runs the binary with the site's settings folder; the working folder is the output folder.
    BatchRun run(const QStringList& arguments) const;
    // "export --settings KRV.ini --user USER --dataset "Time Data" --fields FIELDS --output FILE"
    // followed by extra.
    BatchRun exportTime(const QString& fields, const QString& file,
                        const QStringList& extra = {}, const QString& user = QStringLiteral("2")) const;

    void exec(const QString& sql);
    qint64 scalar(const QString& sql) const;
    // "Approved/ExportID" of one record, e.g. "2/1".
    QString marks(qint64 id) const;
    qint64 waiting() const;
    // Inserts a waiting time record.
    void addTime(qint64 id, qint32 employee, qint32 date, qint32 time, bool jobIn = false,
                 int approved = 1, int exportId = 0);
    // n more waiting records of employee 9002, ids from firstId.
    void addMany(int n, qint64 firstId);

    QString path(const QString& name) const;
    static QByteArray read(const QString& file);

    // The waiting records made by SetUp: ids 1, 2, 3 and 5.
    static QByteArray expectedDefaultFile();   // Windows-1252

    DemoSite site;
    QTemporaryDir outDir;
    const QString binary = QStringLiteral(TP_BINARY_DIR "/tallyport-batch");
};

} // namespace tp::test
