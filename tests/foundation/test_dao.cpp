// cDAO against real databases: every case runs on an SQLite file and on PostgreSQL.
#include "foundation/dao.h"
#include "foundation/feedback.h"
#include "foundation/globals.h"
#include "foundation/sql_literal.h"
#include "support/foundation_fixture.h"
#include "support/test_databases.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using tp::cDAO;
using tp::RecordsetKind;
using tp::RecordsetPtr;

namespace {

const char* const kScript = R"(
CREATE TABLE Items (ItemID INTEGER, Name VARCHAR(30), Price DOUBLE PRECISION, Flag INTEGER NOT NULL DEFAULT 0,
                    Note VARCHAR(50));
CREATE TABLE Kinds (KindID INTEGER, Label VARCHAR(50));
CREATE TABLE Keyed (KeyID INTEGER PRIMARY KEY, Label VARCHAR(20));
)";

template <class Engine>
class DaoTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        const QString why = engine.create(QString::fromUtf8(kScript));
        if (why == QString::fromLatin1(tp::test::kPgSkipMessage))
            GTEST_SKIP() << tp::test::kPgSkipMessage;
        ASSERT_TRUE(why.isEmpty()) << why.toStdString();
        ASSERT_TRUE(connect(dao)) << dao.errorText.toStdString();
        dao.onError = [this](qint32& code, qint16& status) { raised.append({code, status}); };
    }
    bool connect(cDAO& d) { return d.DB_Connect(engine.location, QString(), QStringLiteral("Admin"), QString()); }
    void exec(const QString& sql)
    {
        dao.Exec(sql);
        ASSERT_EQ(dao.appError, 0) << sql.toStdString() << ": " << dao.errorText.toStdString();
    }
    void addItems(int n)
    {
        for (int i = 1; i <= n; ++i)
            exec(QStringLiteral("INSERT INTO Items (ItemID, Name, Price, Flag) VALUES (%1, 'item %1', %1.5, %2)")
                     .arg(i)
                     .arg(i % 2 ? -1 : 0));
    }
    QVariant scalar(const QString& sql)
    {
        RecordsetPtr rs = dao.RecSet_Stat(sql);
        return rs && !rs->atEnd() ? rs->value(0) : QVariant();
    }

    Engine engine;
    cDAO dao;
    QList<QPair<qint32, qint16>> raised;
};

using Engines = ::testing::Types<tp::test::SqliteTestEngine, tp::test::PgTestEngine>;
TYPED_TEST_SUITE(DaoTest, Engines, tp::test::EngineNames);

TYPED_TEST(DaoTest, ConnectAndClose)
{
    EXPECT_TRUE(this->dao.mbDatabaseIsOpen);
    EXPECT_EQ(this->dao.isPostgres(), TypeParam::kPostgres);
    this->addItems(1);
    RecordsetPtr open = this->dao.RecSet_Dyn(QStringLiteral("Select * from Items"));
    ASSERT_TRUE(open);
    this->dao.DB_Close();
    // A recordset that outlives its connection fails cleanly.
    ASSERT_TRUE(open->edit());
    open->setValue(QStringLiteral("Name"), QStringLiteral("late"));
    EXPECT_FALSE(open->update());
    EXPECT_NE(open->lastError(), 0);
    EXPECT_FALSE(this->dao.mbDatabaseIsOpen);
    EXPECT_FALSE(this->dao.RecSet_Stat(QStringLiteral("Select * from Items")));
    EXPECT_EQ(this->dao.appError, tp::StatusStat);
    this->dao.Exec(QStringLiteral("DELETE FROM Items"));
    EXPECT_EQ(this->dao.appError, tp::StatusExec);
}

TYPED_TEST(DaoTest, ConnectToAMissingDatabaseOrANonDatabaseFails)
{
    cDAO other;
    qint16 notified = 0;
    other.onError = [&](qint32&, qint16& status) { notified = status; };
    EXPECT_FALSE(other.DB_Connect(this->engine.missingLocation(), QString(), QStringLiteral("Admin"), QString()));
    EXPECT_EQ(other.appError, tp::StatusConnect);
    EXPECT_NE(other.error_code, 0);
    EXPECT_FALSE(other.errorText.isEmpty());
    EXPECT_EQ(notified, tp::StatusConnect);
    EXPECT_FALSE(other.mbDatabaseIsOpen);
    if (!TypeParam::kPostgres) {
        EXPECT_FALSE(QFileInfo::exists(this->engine.missingLocation())) << "an empty database was created";
        // Nor is a file of another kind a database.
        ASSERT_TRUE(tp::test::writeBytes(this->engine.missingLocation(), "data"));
        EXPECT_FALSE(other.DB_Connect(this->engine.missingLocation(), QString(), QStringLiteral("Admin"), QString()));
        EXPECT_EQ(other.appError, tp::StatusConnect);
    }
}

TYPED_TEST(DaoTest, CountsExistenceAndStatementFailures)
{
    EXPECT_FALSE(this->dao.Records_Exist(QStringLiteral("Select * from Items")));
    EXPECT_EQ(this->dao.appError, 0);
    this->addItems(5);
    const std::pair<const char*, qint32> cases[] = {{"Select * from Items", 5},
        {"Select top 1 * from Items where Flag = True", 1}, {"Select * from Items where Flag = False", 2}};
    for (const auto& [sql, count] : cases) {
        EXPECT_EQ(this->dao.Reco_Count(QString::fromLatin1(sql)), count) << sql;
        EXPECT_EQ(this->dao.appError, 0) << sql;
        EXPECT_TRUE(this->dao.Records_Exist(QString::fromLatin1(sql))) << sql;
        EXPECT_EQ(this->dao.appError, count) << sql;   // the count, in place of a status
    }
    EXPECT_TRUE(this->raised.isEmpty());

    EXPECT_FALSE(this->dao.Records_Exist(QStringLiteral("Select * from NoSuchTable")));
    EXPECT_EQ(this->dao.appError, tp::StatusStat);
    ASSERT_EQ(this->raised.size(), 1);
    EXPECT_EQ(this->raised[0].first, this->dao.error_code);
    EXPECT_EQ(this->raised[0].second, tp::StatusStat);
    EXPECT_EQ(this->dao.Reco_Count(QStringLiteral("Select * from NoSuchTable")), 0);
    EXPECT_EQ(this->dao.appError, tp::StatusStat);
    EXPECT_TRUE(this->dao.errorText.contains(QStringLiteral("nosuchtable"), Qt::CaseInsensitive))
        << this->dao.errorText.toStdString();
    // The engine's number, the same each time.
    const qint32 first = this->dao.error_code;
    EXPECT_NE(first, 0);
    this->dao.Reco_Count(QStringLiteral("Select * from OtherMissingTable"));
    EXPECT_EQ(this->dao.error_code, first);
    // The next call starts clean.
    EXPECT_EQ(this->dao.Reco_Count(QStringLiteral("Select * from Items")), 5);
    EXPECT_EQ(this->dao.error_code, 0);
    EXPECT_EQ(this->dao.appError, 0);
    // A failed statement is reported and changes nothing.
    this->exec(QStringLiteral("INSERT INTO Keyed (KeyID, Label) VALUES (1, 'one')"));
    this->dao.Exec(QStringLiteral("INSERT INTO Keyed (KeyID, Label) VALUES (1, 'again')"));
    EXPECT_EQ(this->dao.appError, tp::StatusExec);
    EXPECT_NE(this->dao.error_code, 0);
    EXPECT_EQ(this->raised.size(), 4);
    EXPECT_EQ(this->scalar(QStringLiteral("Select Label from Keyed where KeyID = 1")).toString(), QStringLiteral("one"));
}

// The helpers the import side leans on: a duplicate key ignored, the next identifier, the size.
TYPED_TEST(DaoTest, ExecUniqueMaxIdAndSize)
{
    this->exec(QStringLiteral("INSERT INTO Keyed (KeyID, Label) VALUES (1, 'one')"));
    this->dao.ExecUnique(QStringLiteral("INSERT INTO Keyed (KeyID, Label) VALUES (1, 'again')"));
    EXPECT_EQ(this->dao.appError, 0);
    EXPECT_EQ(this->dao.error_code, 0);
    EXPECT_TRUE(this->raised.isEmpty());
    this->dao.ExecUnique(QStringLiteral("INSERT INTO Keyed (KeyID, Label) VALUES (2, 'two')"));
    EXPECT_EQ(this->dao.Reco_Count(QStringLiteral("Select * from Keyed")), 2);
    EXPECT_EQ(this->scalar(QStringLiteral("Select Label from Keyed where KeyID = 1")).toString(), QStringLiteral("one"));

    EXPECT_EQ(this->dao.MaxID_Value(QStringLiteral("Items"), QStringLiteral("ItemID")), QVariant(qint64(1)));
    this->exec(QStringLiteral("INSERT INTO Items (ItemID) VALUES (41)"));
    this->exec(QStringLiteral("INSERT INTO Items (ItemID, Price) VALUES (7, 2.25)"));
    const QVariant next = this->dao.MaxID_Value(QStringLiteral("Items"), QStringLiteral("ItemID"));
    EXPECT_EQ(next.typeId(), QMetaType::LongLong);
    EXPECT_EQ(next.toLongLong(), 42);
    const QVariant real = this->dao.MaxID_Value(QStringLiteral("Items"), QStringLiteral("Price"));
    EXPECT_EQ(real.typeId(), QMetaType::Double);
    EXPECT_DOUBLE_EQ(real.toDouble(), 3.25);
    EXPECT_FALSE(this->dao.MaxID_Value(QStringLiteral("NoSuchTable"), QStringLiteral("ItemID")).isValid());
    EXPECT_EQ(this->dao.appError, tp::StatusStat);

    EXPECT_GT(this->dao.DB_Size(), 0);
    EXPECT_EQ(this->dao.databaseSize, this->dao.DB_Size());
}

TYPED_TEST(DaoTest, RecordsExistAboveTheSixteenBitCountFailsButStaysTrue)
{
    this->exec(QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 32768) "
                              "INSERT INTO Kinds (KindID) SELECT i FROM n"));
    EXPECT_EQ(this->dao.Reco_Count(QStringLiteral("Select * from Kinds")), 32768);
    EXPECT_TRUE(this->dao.Records_Exist(QStringLiteral("Select * from Kinds")));
    EXPECT_EQ(this->dao.appError, tp::StatusStat);
    EXPECT_NE(this->dao.error_code, 0);
    this->exec(QStringLiteral("DELETE FROM Kinds WHERE KindID = 32768"));
    EXPECT_TRUE(this->dao.Records_Exist(QStringLiteral("Select * from Kinds")));
    EXPECT_EQ(this->dao.appError, 32767);
}

TYPED_TEST(DaoTest, SnapshotMovesBothWaysWithTypedValues)
{
    this->addItems(3);
    this->exec(QStringLiteral("INSERT INTO Items (ItemID) VALUES (4)"));
    RecordsetPtr rs = this->dao.RecSet_Stat(QStringLiteral("Select ItemID, Name, Price, Note from Items order by ItemID"));
    ASSERT_TRUE(rs);
    EXPECT_EQ(rs->kind(), RecordsetKind::Snapshot);
    EXPECT_EQ(rs->recordCount(), 4);
    EXPECT_EQ(rs->fieldCount(), 4);
    EXPECT_FALSE(rs->atBegin());
    EXPECT_EQ(rs->value(0), QVariant(qint64(1)));
    EXPECT_EQ(rs->value(QStringLiteral("NAME")), QVariant(QStringLiteral("item 1")));
    EXPECT_EQ(rs->value(QStringLiteral("price")), QVariant(1.5));
    EXPECT_TRUE(rs->value(QStringLiteral("Note")).isNull());
    rs->moveLast();
    EXPECT_EQ(rs->value(QStringLiteral("itemid")).toLongLong(), 4);
    EXPECT_TRUE(rs->value(QStringLiteral("Name")).isNull());
    rs->moveNext();
    EXPECT_TRUE(rs->atEnd());
    EXPECT_FALSE(rs->value(0).isValid());
    EXPECT_EQ(rs->lastError(), 3021);
    rs->movePrevious();
    rs->movePrevious();
    EXPECT_EQ(rs->value(0).toLongLong(), 3);
    rs->moveFirst();
    rs->movePrevious();
    EXPECT_TRUE(rs->atBegin());
    EXPECT_FALSE(rs->value(QStringLiteral("NoSuchField")).isValid());
    EXPECT_EQ(rs->lastError(), 3265);
    EXPECT_EQ(rs->fieldIndex(QStringLiteral("tp_rowkey__")), -1);
    rs->moveFirst();
    EXPECT_FALSE(rs->edit());
    EXPECT_FALSE(rs->addNew());

    RecordsetPtr empty = this->dao.RecSet_Stat(QStringLiteral("Select * from Items where ItemID = 99"));
    ASSERT_TRUE(empty);
    EXPECT_TRUE(empty->atBegin() && empty->atEnd());
    EXPECT_EQ(empty->recordCount(), 0);
    EXPECT_EQ(empty->fieldCount(), 5);
}

TYPED_TEST(DaoTest, DynasetAddsAndEditsRowsOfItsTable)
{
    this->addItems(2);
    RecordsetPtr rs = this->dao.RecSet_Dyn(QStringLiteral("Select top 1 * from Items"));
    ASSERT_TRUE(rs) << this->dao.errorText.toStdString();
    EXPECT_EQ(rs->kind(), RecordsetKind::Dynaset);
    EXPECT_EQ(rs->fieldCount(), 5);   // the row key stays hidden
    EXPECT_EQ(rs->fieldIndex(QStringLiteral("tp_rowkey__")), -1);
    for (int id : {10, 11}) {
        ASSERT_TRUE(rs->addNew());
        ASSERT_TRUE(rs->setValue(QStringLiteral("itemid"), id));
        ASSERT_TRUE(rs->setValue(QStringLiteral("Name"), QStringLiteral("O'Brien %1 \\' ?").arg(id)));
        ASSERT_TRUE(rs->update()) << rs->lastErrorText().toStdString();
    }
    EXPECT_EQ(rs->recordCount(), 3);
    rs->moveLast();
    EXPECT_EQ(rs->value(QStringLiteral("ItemID")).toLongLong(), 11);
    EXPECT_EQ(rs->value(QStringLiteral("Flag")).toLongLong(), 0);   // the column default, read back
    EXPECT_EQ(this->dao.Reco_Count(QStringLiteral("Select * from Items where Name = 'O''Brien 10 \\'' ?'")), 1);

    RecordsetPtr two = this->dao.RecSet_Dyn(QStringLiteral("Select ItemID, Name from Items where ItemID = 2"));
    ASSERT_TRUE(two);
    EXPECT_FALSE(two->setValue(QStringLiteral("Name"), QStringLiteral("x")));   // no edit yet
    EXPECT_EQ(two->lastError(), 3020);
    ASSERT_TRUE(two->edit());
    EXPECT_FALSE(two->setValue(QStringLiteral("Missing"), 1));
    ASSERT_TRUE(two->setValue(QStringLiteral("NAME"), QStringLiteral("renamed")));
    ASSERT_TRUE(two->update()) << two->lastErrorText().toStdString();
    EXPECT_EQ(this->scalar(QStringLiteral("Select Name from Items where ItemID = 2")).toString(), QStringLiteral("renamed"));
    EXPECT_EQ(this->scalar(QStringLiteral("Select Name from Items where ItemID = 1")).toString(), QStringLiteral("item 1"));
    ASSERT_TRUE(two->edit());
    two->setValue(QStringLiteral("Name"), QStringLiteral("dropped"));
    two->cancelUpdate();
    EXPECT_FALSE(two->update());
    EXPECT_EQ(this->scalar(QStringLiteral("Select Name from Items where ItemID = 2")).toString(), QStringLiteral("renamed"));

    // Over a join it is read-only.
    this->exec(QStringLiteral("INSERT INTO Kinds (KindID, Label) VALUES (1, 'a')"));
    RecordsetPtr join = this->dao.RecSet_Dyn(
        QStringLiteral("Select Items.ItemID, Kinds.Label from Items, Kinds where Items.ItemID = Kinds.KindID"));
    ASSERT_TRUE(join) << this->dao.errorText.toStdString();
    EXPECT_EQ(join->recordCount(), 1);
    EXPECT_FALSE(join->edit());
    EXPECT_EQ(join->lastError(), 3027);
    EXPECT_FALSE(join->addNew());
    EXPECT_FALSE(this->dao.RecSet_Dyn(QStringLiteral("Select * from Nowhere")));
    EXPECT_EQ(this->dao.appError, tp::StatusDyn);
    EXPECT_FALSE(this->dao.RecSet_Opt(QStringLiteral("Select * from Nowhere")));
    EXPECT_EQ(this->dao.appError, tp::StatusOpt);
    EXPECT_FALSE(this->dao.RecSet_Idle(QStringLiteral("Select * from Nowhere")));
    EXPECT_EQ(this->dao.appError, tp::StatusOpt);
    // The optimistic kind under its other name: edits of an unchanged row go through.
    RecordsetPtr idle = this->dao.RecSet_Idle(QStringLiteral("Select * from Items where ItemID = 1"));
    ASSERT_TRUE(idle);
    EXPECT_EQ(idle->kind(), RecordsetKind::Optimistic);
    ASSERT_TRUE(idle->edit());
    idle->setValue(QStringLiteral("Name"), QStringLiteral("idle"));
    ASSERT_TRUE(idle->update()) << idle->lastErrorText().toStdString();
    EXPECT_EQ(this->scalar(QStringLiteral("Select Name from Items where ItemID = 1")).toString(), QStringLiteral("idle"));
}

TYPED_TEST(DaoTest, OptimisticUpdateFailsWhenAnotherConnectionChangedTheRow)
{
    this->addItems(3);
    cDAO second;
    ASSERT_TRUE(this->connect(second)) << second.errorText.toStdString();

    RecordsetPtr rs = this->dao.RecSet_Opt(QStringLiteral("Select * from Items where ItemID = 2"));
    ASSERT_TRUE(rs);
    EXPECT_EQ(rs->kind(), RecordsetKind::Optimistic);
    second.Exec(QStringLiteral("UPDATE Items SET Name = 'theirs' WHERE ItemID = 2"));
    ASSERT_EQ(second.appError, 0) << second.errorText.toStdString();

    ASSERT_TRUE(rs->edit());
    rs->setValue(QStringLiteral("Name"), QStringLiteral("mine"));
    EXPECT_FALSE(rs->update());
    EXPECT_EQ(rs->lastError(), 3197);
    EXPECT_FALSE(rs->lastErrorText().isEmpty());
    EXPECT_EQ(this->scalar(QStringLiteral("Select Name from Items where ItemID = 2")).toString(), QStringLiteral("theirs"));

    // Read afresh, the same edit goes through and the recordset shows it.
    RecordsetPtr again = this->dao.RecSet_Opt(QStringLiteral("Select * from Items where ItemID = 2"));
    ASSERT_TRUE(again && again->edit());
    again->setValue(QStringLiteral("Name"), QStringLiteral("mine"));
    ASSERT_TRUE(again->update()) << again->lastErrorText().toStdString();
    EXPECT_EQ(second.RecSet_Stat(QStringLiteral("Select Name from Items where ItemID = 2"))->value(0).toString(),
              QStringLiteral("mine"));

    // A row deleted meanwhile is a conflict too.
    RecordsetPtr third = this->dao.RecSet_Opt(QStringLiteral("Select * from Items where ItemID = 3"));
    second.Exec(QStringLiteral("DELETE FROM Items WHERE ItemID = 3"));
    ASSERT_TRUE(third->edit());
    third->setValue(QStringLiteral("Name"), QStringLiteral("gone"));
    EXPECT_FALSE(third->update());
    EXPECT_EQ(this->dao.Reco_Count(QStringLiteral("Select * from Items where ItemID = 3")), 0);
}

TYPED_TEST(DaoTest, OptimisticUpdateOfRowsWithRealsAndNulls)
{
    this->exec(QStringLiteral("INSERT INTO Items (ItemID, Name, Price, Flag, Note) VALUES (1, NULL, -81.123456789, 1, NULL)"));
    this->exec(QStringLiteral("INSERT INTO Items (ItemID, Name, Price, Flag, Note) VALUES (2, 'b', 0.1, 0, '')"));
    RecordsetPtr rs = this->dao.RecSet_Opt(QStringLiteral("Select * from Items order by ItemID"));
    ASSERT_TRUE(rs);
    int marked = 0;
    while (!rs->atEnd()) {
        ASSERT_TRUE(rs->edit());
        rs->setValue(QStringLiteral("Flag"), 2);
        ASSERT_TRUE(rs->update()) << rs->lastErrorText().toStdString();
        ++marked;
        rs->moveNext();
    }
    EXPECT_EQ(marked, 2);
    EXPECT_EQ(this->dao.Reco_Count(QStringLiteral("Select * from Items where Flag = 2")), 2);
}

// An export looks a name up for every streamed record: other statements between two rows,
// and more rows than one fetch brings, must not lose or repeat any row.
TYPED_TEST(DaoTest, ForwardOnlySurvivesStatementsBetweenRows)
{
    this->exec(QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 4500) "
                              "INSERT INTO Kinds (KindID, Label) SELECT i, 'k' FROM n"));
    RecordsetPtr rs = this->dao.RecSet_Forward(QStringLiteral("Select KindID, Label from Kinds order by KindID"));
    ASSERT_TRUE(rs) << this->dao.errorText.toStdString();
    EXPECT_EQ(rs->kind(), RecordsetKind::ForwardOnly);
    EXPECT_EQ(rs->fieldName(1).toLower(), QStringLiteral("label"));
    qint64 expected = 1, rows = 0;
    while (!rs->atEnd()) {
        ASSERT_EQ(rs->value(0).toLongLong(), expected++);
        if (++rows % 700 == 0) {
            EXPECT_TRUE(this->dao.Records_Exist(QStringLiteral("Select top 1 * from Kinds where KindID = 3")));
            this->dao.Exec(QStringLiteral("Update Kinds set Label = 'seen' where KindID = 1"));
            EXPECT_EQ(this->dao.appError, 0) << this->dao.errorText.toStdString();
        }
        rs->moveNext();
    }
    EXPECT_EQ(rows, 4500);
    EXPECT_EQ(rs->recordCount(), 4500);
    rs->movePrevious();
    EXPECT_NE(rs->lastError(), 0);
    EXPECT_FALSE(rs->edit());
    rs.reset();
    EXPECT_FALSE(this->dao.RecSet_Forward(QStringLiteral("Select * from Nowhere")));
    EXPECT_EQ(this->dao.appError, tp::StatusStat);
    // The connection is still good for the next statement once the stream is gone.
    EXPECT_EQ(this->dao.Reco_Count(QStringLiteral("Select * from Kinds where Label = 'seen'")), 1);
}

TYPED_TEST(DaoTest, TransactionsCommitOrRollBack)
{
    ASSERT_TRUE(this->dao.BeginTrans());
    this->addItems(3);
    this->dao.Rollback();
    EXPECT_EQ(this->dao.appError, 0);
    EXPECT_EQ(this->dao.Reco_Count(QStringLiteral("Select * from Items")), 0);
    ASSERT_TRUE(this->dao.BeginTrans());
    this->addItems(3);
    ASSERT_TRUE(this->dao.CommitTrans());
    cDAO other;
    ASSERT_TRUE(this->connect(other));
    EXPECT_EQ(other.Reco_Count(QStringLiteral("Select * from Items")), 3);
}

// The bulk road: every value type bound as it stands (texts no engine may reinterpret, a
// null, reals), more rows than one PostgreSQL statement carries, and a refused row failing
// the call with the engine's reason.
TYPED_TEST(DaoTest, InsertRowsStoresEveryValueAndFailsOnARefusedRow)
{
    const QStringList columns{QStringLiteral("ItemID"), QStringLiteral("Name"), QStringLiteral("Price"),
                              QStringLiteral("Note")};
    const QString texts[] = {QStringLiteral("x' OR '1'='1"), QStringLiteral("'); DROP TABLE Items; --"),
                             QStringLiteral("back\\slash ? $1 :name"), QString::fromUtf8("Zoë – 🚚"),
                             QString()};
    std::vector<QVector<QVariant>> rows;
    for (int i = 0; i < 1200; ++i)
        rows.push_back({QVariant(qint64(i)), QVariant(texts[i % 5]), QVariant(i + 0.25),
                        i % 3 ? QVariant(QStringLiteral("n%1").arg(i)) : QVariant()});
    ASSERT_TRUE(this->dao.BeginWriteTrans()) << this->dao.errorText.toStdString();
    ASSERT_TRUE(this->dao.InsertRows(QStringLiteral("Items"), columns, rows)) << this->dao.errorText.toStdString();
    ASSERT_TRUE(this->dao.CommitTrans());
    EXPECT_EQ(this->dao.Reco_Count(QStringLiteral("Select * from Items")), 1200);
    for (const int i : {0, 1, 2, 3, 4, 500, 1199}) {
        RecordsetPtr rs = this->dao.RecSet_Stat(QStringLiteral("Select Name, Price, Note from Items where ItemID = %1").arg(i));
        ASSERT_TRUE(rs && !rs->atEnd()) << i;
        EXPECT_EQ(rs->value(0).toString(), texts[i % 5]) << i;
        EXPECT_DOUBLE_EQ(rs->value(1).toDouble(), i + 0.25);
        EXPECT_EQ(rs->value(2).isNull(), i % 3 == 0) << i;
    }
    EXPECT_EQ(this->dao.Reco_Count(QStringLiteral("Select * from Items where Name = ''")), 240);

    const QStringList keyed{QStringLiteral("KeyID"), QStringLiteral("Label")};
    ASSERT_TRUE(this->dao.InsertRows(QStringLiteral("Keyed"), keyed, {{QVariant(1), QVariant(QStringLiteral("one"))}}));
    EXPECT_FALSE(this->dao.InsertRows(QStringLiteral("Keyed"), keyed,
                                      {{QVariant(2), QVariant(QStringLiteral("two"))},
                                       {QVariant(1), QVariant(QStringLiteral("again"))}}));
    EXPECT_EQ(this->dao.appError, tp::StatusExec);
    EXPECT_FALSE(this->dao.errorText.isEmpty());
}

TYPED_TEST(DaoTest, HostileTextDoesNotChangeAStatement)
{
    this->addItems(2);
    const QString hostile[] = {QStringLiteral("x' OR '1'='1"), QStringLiteral("'; DROP TABLE Items; --"),
                               QStringLiteral("O'Brien = True"), QStringLiteral("\\' OR 1=1 --")};
    for (const QString& text : hostile) {
        EXPECT_FALSE(this->dao.Records_Exist(QStringLiteral("Select * from Items where Name = ") + tp::sql::text(text)))
            << text.toStdString();
        EXPECT_EQ(this->dao.appError, 0) << text.toStdString() << this->dao.errorText.toStdString();
        this->exec(QStringLiteral("INSERT INTO Kinds (KindID, Label) VALUES (1, ") + tp::sql::text(text) + u')');
        EXPECT_EQ(this->scalar(QStringLiteral("Select Label from Kinds where Label = ") + tp::sql::text(text)).toString(),
                  text);
    }
    EXPECT_EQ(this->dao.Reco_Count(QStringLiteral("Select * from Items")), 2);
    EXPECT_EQ(this->dao.Reco_Count(QStringLiteral("Select * from Kinds")), 4);
}

TEST(DaoFiles, OpenPrimaryDatabaseOnce)
{
    QTemporaryDir dir;
    tp::test::ScopedFoundation scope;
    const tp::ScriptedFeedback& seen = scope.feedback;
    tp::globals().PrimaryDatabasePath = dir.path() + u'/';
    tp::globals().PrimaryDatabaseName = QStringLiteral("Missing.db");
    EXPECT_FALSE(tp::OpenPrimaryDatabase());
    EXPECT_EQ(tp::SharedDatabase(), nullptr);
    ASSERT_EQ(seen.shown.size(), 1u);
    EXPECT_EQ(seen.shown[0].code, 1);
    EXPECT_EQ(seen.shown[0].text, QStringLiteral("Cannot open the database"));

    ASSERT_FALSE(tp::test::makeSqliteDatabase(dir.path(), "CREATE TABLE t (a INTEGER);", "Primary.db").isEmpty());
    tp::globals().PrimaryDatabaseName = QStringLiteral("Primary.db");
    EXPECT_TRUE(tp::OpenPrimaryDatabase());
    cDAO* first = tp::SharedDatabase();
    ASSERT_NE(first, nullptr);
    EXPECT_TRUE(first->mbDatabaseIsOpen);
    tp::globals().PrimaryDatabaseName = QStringLiteral("Missing.db");
    EXPECT_TRUE(tp::OpenPrimaryDatabase());
    EXPECT_EQ(tp::SharedDatabase(), first);
    EXPECT_EQ(seen.shown.size(), 1u);
}

// A copy of the closed database file, numbered after the highest copy of the same stem.
TEST(DaoFiles, BackupNumbersCopiesAndRefusesWhatItCannotCopy)
{
    QTemporaryDir dir;
    auto touch = [&](const QString& name) {
        QFile f(dir.filePath(name));
        EXPECT_TRUE(f.open(QIODevice::WriteOnly));
        f.write("data");
        return f.fileName();
    };
    cDAO dao;
    const QString source = touch(QStringLiteral("Data.mdb"));
    ASSERT_TRUE(QDir(dir.path()).mkdir(QStringLiteral("bak")));
    const QString bak = dir.filePath(QStringLiteral("bak"));
    EXPECT_TRUE(dao.DB_Backup(source, bak));
    EXPECT_TRUE(QFileInfo::exists(bak + QStringLiteral("/Data_1.mdb")));
    touch(QStringLiteral("bak/Data_3.mdb"));
    touch(QStringLiteral("bak/data_x.mdb"));
    touch(QStringLiteral("bak/Other_9.mdb"));
    // Either separator, doubled ones and a trailing one are all fine.
    QString windowsStyle = bak;
    windowsStyle.replace(u'/', QStringLiteral("\\\\")).append(u'\\');
    EXPECT_TRUE(dao.DB_Backup(source, windowsStyle));
    EXPECT_TRUE(QFileInfo::exists(bak + QStringLiteral("/Data_4.mdb")));
    EXPECT_EQ(dao.appError, 0);

    EXPECT_FALSE(dao.DB_Backup(QStringLiteral("  "), dir.path()));
    EXPECT_EQ(dao.appError, tp::StatusBackupBad);
    EXPECT_FALSE(dao.DB_Backup(source, dir.filePath(QStringLiteral("missing"))));
    EXPECT_EQ(dao.error_code, 99);
    EXPECT_FALSE(dao.DB_Backup(QStringLiteral("postgresql://u@127.0.0.1/db"), dir.path()));
    EXPECT_EQ(dao.appError, tp::StatusBackupBad);
    EXPECT_FALSE(dao.DB_Backup(dir.filePath(QStringLiteral("Gone.mdb")), dir.path()));
    EXPECT_FALSE(QFileInfo::exists(dir.filePath(QStringLiteral("Gone_1.mdb"))));

    // Never while the database is open.
    ASSERT_FALSE(tp::test::makeSqliteDatabase(dir.path(), "CREATE TABLE t (a INTEGER);", "Open.db").isEmpty());
    ASSERT_TRUE(dao.DB_Connect(dir.filePath(QStringLiteral("Open.db")), QString(), QStringLiteral("Admin"), QString()));
    EXPECT_FALSE(dao.DB_Backup(dir.filePath(QStringLiteral("Open.db")), bak));
    EXPECT_EQ(dao.appError, tp::StatusBackupOpen);
    EXPECT_EQ(dao.error_code, 98);
    dao.DB_Close();
}

} // namespace
