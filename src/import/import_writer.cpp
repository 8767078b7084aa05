#include "import/import_writer.h"

#include "foundation/conversions.h"
#include "foundation/dao.h"
#include "foundation/feedback.h"
#include "import/value_checks.h"

#include <QDate>
#include <QElapsedTimer>
#include <QSet>
#include <QThread>

namespace tp {

namespace {

const QString kCr = QStringLiteral("\r");
const QString kCrLf = QStringLiteral("\r\n");
const QString kBlankZip = QStringLiteral("     -    ");
const QString kBlankPhone = QStringLiteral("(   )    -    ");

struct TableInfo {
    QString table;
    QString numberColumn;   // empty for common locations
    QString question;       // before the number
    QString questionEnd;
};

TableInfo tableInfo(RecordTable t)
{
    const QString tail = kCr + QStringLiteral("Would you like the system to select a number for you?");
    switch (t) {
    case RecordTable::Customers:
        return {QStringLiteral("CustomerInfo"), QStringLiteral("CustomerNumber"), QStringLiteral("Customer number = "),
                QStringLiteral(" is already in use.") + tail + QLatin1Char('.')};
    case RecordTable::Employees:
        return {QStringLiteral("EmployeeInfo"), QStringLiteral("EmployeeNumber"), QStringLiteral("EmployeeNumber = "),
                QStringLiteral(" is already in use.") + tail};
    case RecordTable::Vehicles:
        return {QStringLiteral("VehicleInfo"), QStringLiteral("VehicleNumber"), QStringLiteral("Vehicle number = "),
                QStringLiteral(" is already in use.") + tail};
    case RecordTable::Locations: break;
    }
    return {QStringLiteral("CommonLocations"), QString(), QString(), QString()};
}

int numberField(RecordTable t)
{
    switch (t) {
    case RecordTable::Customers: return CuNumber;
    case RecordTable::Employees: return EmNumber;
    case RecordTable::Vehicles: return VeNumber;
    case RecordTable::Locations: break;
    }
    return LoNumber;
}

// Every value of one column, upper-cased and trimmed when `text`.
QSet<QString> columnValues(cDAO& db, const QString& sql, bool trimUpper)
{
    QSet<QString> out;
    RecordsetPtr rs = db.RecSet_Forward(sql);
    for (; rs && !rs->atEnd(); rs->moveNext()) {
        const QVariant v = rs->value(0);
        if (v.isNull())
            continue;
        if (trimUpper)
            out.insert(TrimBlanks(v.toString()).toUpper());
        else
            out.insert(PlainNumber(v.toDouble()));
    }
    if (rs)
        db.RS_Close(rs);
    return out;
}

// The reduced form a name with apostrophes is compared in: its first two pieces joined.
QString comparedName(const QString& name)
{
    const QStringList pieces = name.split(QLatin1Char('\''));
    return pieces.size() == 1 ? name : pieces[0] + pieces[1];
}

bool duplicatePass(cDAO& db, Feedback& fb, ImportRecordList& list)
{
    const TableInfo info = tableInfo(list.table);
    const qint32 n = list.lastRecord;
    if (list.table == RecordTable::Locations) {
        const QSet<QString> names =
            columnValues(db, QStringLiteral("Select LocationName from CommonLocations"), true);
        for (qint32 i = 1; i <= n; ++i) {
            const QString name = TrimBlanks(list.cell(i, LoName).text);
            if (!names.contains(comparedName(name).toUpper()))
                continue;
            const QString q = QStringLiteral("The provided name ") + name + QStringLiteral(" already") + kCr +
                              QStringLiteral("exists in the database.") + kCr +
                              QStringLiteral("Would you like to add it anyway?") + kCr + kCr +
                              QStringLiteral("If you click No, the Import process will stop.");
            if (fb.ask(0, q) != AnswerYes)
                return false;
        }
        return true;
    }

    const int field = numberField(list.table);
    double next = db.MaxID_Value(info.table, info.numberColumn).toDouble();
    if (next < 1)
        next = 1;
    const QSet<QString> numbers = columnValues(
        db, QStringLiteral("Select ") + info.numberColumn + QStringLiteral(" from ") + info.table, false);
    for (qint32 i = 1; i <= n; ++i) {
        ImportCell& c = list.cell(i, field);
        if (!numbers.contains(PlainNumber(c.number)))
            continue;
        if (fb.ask(0, info.question + PlainNumber(c.number) + info.questionEnd) != AnswerYes)
            return false;
        c.number = next;
        next += 1;
    }
    if (list.table != RecordTable::Vehicles)
        return true;
    const QSet<QString> plates = columnValues(db, QStringLiteral("Select LicenseNumber from VehicleInfo"), true);
    for (qint32 i = 1; i <= n; ++i) {
        const QString plate = TrimBlanks(list.cell(i, VeLicenseNumber).text);
        if (!plates.contains(plate.toUpper()))
            continue;
        fb.message(0, QStringLiteral("Vehicle LicenseNumber = ") + plate + QStringLiteral(" is already in use.") + kCr +
                          QStringLiteral("Check your file and correct the problem."),
                   kBoxTitle);
        return false;
    }
    return true;
}

QString doneLine(qint32 i, bool twoBlanks = false)
{
    return kCrLf + QString::number(i - 1) +
           (twoBlanks ? QStringLiteral("  record(s) processed successfully.")
                      : QStringLiteral(" record(s) processed successfully."));
}

// Writes records one after the other into the table's dynaset.
class RowWriter {
public:
    RowWriter(cDAO& db, ImportRecordList& list) : m_db(db), m_list(list)
    {
        m_lookups.load(db);
        m_today = ImportDateAcquired();
    }

    // The write-time checks of record i; the notice when one fails, empty when all pass.
    QString refusal(qint32 i) const;
    // Adds record i; false when the database refused the row (its error then in m_error).
    bool add(Recordset& rs, qint32 i);
    QString error() const { return m_error; }

private:
    bool present(int f) const { return m_list.isPresent(f); }
    QString text(qint32 i, int f) const { return m_list.cell(i, f).text; }
    QString trimmed(qint32 i, int f) const { return TrimBlanks(text(i, f)); }
    qint64 whole(qint32 i, int f) const { return qint64(m_list.cell(i, f).number); }
    QString branchText(qint32 i, int f) const { return PlainNumber(m_list.cell(i, f).number); }
    bool branchOk(qint32 i, int f) const { return !present(f) || m_lookups.branchExists(m_list.cell(i, f).number); }
    void set(Recordset& rs, const char* column, const QVariant& v) { m_ok = rs.setValue(QLatin1String(column), v) && m_ok; }
    void setIfPresent(Recordset& rs, const char* column, qint32 i, int f, int width = 0);
    void setDefaulted(Recordset& rs, const char* column, qint32 i, int f, const QString& blank);

    cDAO& m_db;
    ImportRecordList& m_list;
    ImportLookups m_lookups;
    QString m_today;
    QString m_error;
    bool m_ok = true;
};

QString RowWriter::refusal(qint32 i) const
{
    const QString rec = QString::number(i);
    switch (m_list.table) {
    case RecordTable::Vehicles:
        if (!branchOk(i, VeBranchNumber))
            return QStringLiteral("BranchNumber = ") + branchText(i, VeBranchNumber) + QStringLiteral("  in record # ") +
                   rec + QStringLiteral(" is not a valid entry in the database.") + doneLine(i, true);
        return QString();
    case RecordTable::Employees:
        if (!branchOk(i, EmBranchNumber))
            return QStringLiteral("BranchNumber = ") + branchText(i, EmBranchNumber) + QStringLiteral(" in record # ") +
                   rec + QStringLiteral(" is not a valid entry in the database.") + doneLine(i);
        for (const auto& [field, label] : {std::pair{int(EmLastName), "LastName = ''"}, std::pair{int(EmFirstName), "FirstName = ''"}})
            if (present(field) && trimmed(i, field).isEmpty())
                return QLatin1String(label) + text(i, field) + QStringLiteral("''  in record # ") + rec +
                       QStringLiteral(" can not be an empty field.") + doneLine(i);
        return QString();
    case RecordTable::Customers:
        if (!branchOk(i, CuBranchNumber))
            return QStringLiteral("BranchNumber = ") + branchText(i, CuBranchNumber) +
                   QStringLiteral(" is not a valid entry in the database.") + doneLine(i);
        for (const auto& [field, label] : {std::pair{int(CuCompanyName), "CompanyName  = ''"},
                                           std::pair{int(CuLastName), "LastName  = ''"},
                                           std::pair{int(CuFirstName), "FirstName  = ''"}})
            if (present(field) && trimmed(i, field).isEmpty())
                return QLatin1String(label) + text(i, field) + QStringLiteral("''  in record # ") + rec +
                       QStringLiteral("  can not be an empty field.") + doneLine(i);
        return QString();
    case RecordTable::Locations: break;
    }
    return QString();
}

void RowWriter::setIfPresent(Recordset& rs, const char* column, qint32 i, int f, int width)
{
    if (!present(f))
        return;
    const CellKind kind = RecordLayout(m_list.table)[size_t(f)].kind;
    if (kind == CellKind::Number)
        set(rs, column, whole(i, f));
    else if (kind == CellKind::Real)
        set(rs, column, m_list.cell(i, f).number);
    else if (width > 0)
        set(rs, column, trimmed(i, f).left(width));
    else
        set(rs, column, text(i, f));
}

void RowWriter::setDefaulted(Recordset& rs, const char* column, qint32 i, int f, const QString& blank)
{
    const QString v = present(f) ? trimmed(i, f) : QString();
    set(rs, column, v.isEmpty() ? blank : v);
}

bool RowWriter::add(Recordset& rs, qint32 i)
{
    m_ok = rs.addNew();
    switch (m_list.table) {
    case RecordTable::Vehicles:
        setIfPresent(rs, "VehicleNumber", i, VeNumber);
        set(rs, "VINNumber", present(VeVINNumber) ? trimmed(i, VeVINNumber) : QStringLiteral("0"));
        if (present(VeLicenseNumber))
            set(rs, "LicenseNumber", trimmed(i, VeLicenseNumber));
        set(rs, "BranchNumber", present(VeBranchNumber) ? whole(i, VeBranchNumber) : qint64(0));
        set(rs, "DateAcquired", m_today);
        setIfPresent(rs, "Year", i, VeYear);
        for (const auto& [column, field] : {std::pair{"Make", int(VeMake)}, std::pair{"Model", int(VeModel)},
                                            std::pair{"AccountingID", int(VeAccountingID)},
                                            std::pair{"TrackerSerialNumber", int(VeTrackerSerialNumber)},
                                            std::pair{"Field1", int(VeGroupID)}})
            if (present(field))
                set(rs, column, trimmed(i, field));
        set(rs, "VehicleDescription", QStringLiteral("?"));
        break;
    case RecordTable::Employees:
        setIfPresent(rs, "EmployeeNumber", i, EmNumber);
        set(rs, "BranchNumber", present(EmBranchNumber) ? whole(i, EmBranchNumber) : qint64(0));
        for (const auto& [column, field] : {std::pair{"AccountingID", int(EmAccountingID)},
                                            std::pair{"Address1", int(EmAddress1)}, std::pair{"Address2", int(EmAddress2)},
                                            std::pair{"City", int(EmCity)}, std::pair{"LastName", int(EmLastName)},
                                            std::pair{"MI", int(EmMI)}, std::pair{"FirstName", int(EmFirstName)},
                                            std::pair{"State", int(EmState)}})
            setIfPresent(rs, column, i, field);
        setDefaulted(rs, "Zip", i, EmZipCode, kBlankZip);
        setDefaulted(rs, "MobilePhone", i, EmMobilePhone, kBlankPhone);
        setDefaulted(rs, "WorkPhone", i, EmWorkPhone, kBlankPhone);
        setDefaulted(rs, "Phone", i, EmHomePhone, kBlankPhone);
        set(rs, "Pager", kBlankPhone);
        break;
    case RecordTable::Customers: {
        setIfPresent(rs, "CustomerNumber", i, CuNumber);
        setIfPresent(rs, "AccountingID", i, CuAccountingID);
        set(rs, "BranchNumber", present(CuBranchNumber) ? whole(i, CuBranchNumber) : qint64(0));
        for (const auto& [column, field, width] :
             {std::tuple{"CompanyName", int(CuCompanyName), 30}, std::tuple{"Address1", int(CuAddress1), 30},
              std::tuple{"Address2", int(CuAddress2), 30}, std::tuple{"City", int(CuCity), 20},
              std::tuple{"ContactLastName", int(CuLastName), 30}, std::tuple{"ContactMI", int(CuMI), 1},
              std::tuple{"ContactFirstName", int(CuFirstName), 20}, std::tuple{"State", int(CuState), 2}})
            setIfPresent(rs, column, i, field, width);
        QString zip = present(CuZipCode) ? trimmed(i, CuZipCode) : QString();
        if (zip.isEmpty())
            zip = kBlankZip;
        else if (zip.size() == 6 && zip.endsWith(QLatin1Char('-')))
            zip += QStringLiteral("    ");
        else
            zip = zip.left(10);
        set(rs, "Zip", zip);
        setDefaulted(rs, "MobilePhone", i, CuMobilePhone, kBlankPhone);
        setDefaulted(rs, "WorkPhone", i, CuWorkPhone, kBlankPhone);
        setDefaulted(rs, "Pager", i, CuHomePhone, kBlankPhone);
        break;
    }
    case RecordTable::Locations:
        set(rs, "CommonLocationNumber",
            qint64(m_db.MaxID_Value(QStringLiteral("CommonLocations"), QStringLiteral("CommonLocationNumber")).toDouble()));
        set(rs, "BranchNumber", present(LoBranchNumber) ? whole(i, LoBranchNumber) : qint64(0));
        if (present(LoName))
            set(rs, "LocationName", trimmed(i, LoName));
        for (const auto& [column, field] : {std::pair{"Address1", int(LoAddress1)}, std::pair{"Address2", int(LoAddress2)},
                                            std::pair{"City", int(LoCity)}, std::pair{"State", int(LoState)},
                                            std::pair{"zipcode", int(LoZipCode)}, std::pair{"Longitude", int(LoLongitude)},
                                            std::pair{"Latitude", int(LoLatitude)}})
            setIfPresent(rs, column, i, field);
        break;
    }
    if (m_ok && rs.update())
        return true;
    m_error = rs.lastErrorText();
    rs.cancelUpdate();
    return false;
}

} // namespace

QString ImportDateAcquired()
{
    return ConvertStandard2FieldDate(QDate::currentDate().toString(QStringLiteral("MM/dd/yyyy")));
}

ImportWriteResult WriteImportedRecords(cDAO& db, Feedback& fb, ImportRecordList& list)
{
    ImportWriteResult out;
    const qint32 n = list.lastRecord;
    if (n <= 0 || !duplicatePass(db, fb, list))
        return out;

    const QString table = tableInfo(list.table).table;
    const QString select = QStringLiteral("Select top 1 * from ") + table;
    RecordsetPtr rs = db.RecSet_Dyn(select);
    if (!rs) {
        fb.message(1, QStringLiteral("Cannot open ") + table + QStringLiteral(": ") + db.errorText, kBoxTitle);
        return out;
    }
    RowWriter writer(db, list);

    // Rows since the last commit; a group is committed when it has been open for a while,
    // and always before the user is told anything.
    qint32 groupStart = 1;
    bool inGroup = false;
    QElapsedTimer open;
    const auto commit = [&](qint32 upTo) {
        if (inGroup && db.CommitTrans()) {
            out.written = upTo;
            fb.progress(upTo, n);
        } else if (inGroup) {
            db.Rollback();
        }
        inGroup = false;
    };
    for (qint32 i = 1; i <= n; ++i) {
        if (!inGroup) {
            inGroup = db.BeginTrans();
            groupStart = i;
            open.start();
        }
        const QString refusal = writer.refusal(i);
        if (!refusal.isEmpty()) {
            commit(i - 1);
            db.RS_Close(rs);
            fb.message(0, refusal, kBoxTitle);
            return out;
        }
        if (!writer.add(*rs, i)) {
            // A failed row may have spoilt the open group (PostgreSQL aborts it): the group is
            // undone and its earlier rows are written again, each on its own.
            const QString why = writer.error();
            if (inGroup) {
                db.Rollback();
                inGroup = false;
                for (qint32 j = groupStart; j < i; ++j)
                    if (!writer.add(*rs, j)) {
                        i = j;
                        break;
                    }
                out.written = i - 1;
            }
            db.RS_Close(rs);
            fb.message(1, QStringLiteral("Record # ") + QString::number(i) + QStringLiteral(" could not be saved: ") +
                              why + doneLine(i),
                       kBoxTitle);
            return out;
        }
        if (!inGroup)
            out.written = i;
        else if (open.elapsed() >= kImportGroupMs) {
            commit(i);
            QThread::msleep(kImportGapMs);
            // The dynaset keeps every row added to it; a fresh one per group keeps memory flat.
            db.RS_Close(rs);
            rs = db.RecSet_Dyn(select);
            if (!rs) {
                fb.message(1, QStringLiteral("Cannot open ") + table + QStringLiteral(": ") + db.errorText +
                                  doneLine(i + 1),
                           kBoxTitle);
                return out;
            }
        }
    }
    commit(n);
    db.RS_Close(rs);
    if (out.written != n)
        return out;
    list.lastRecord = 0;
    out.result = 0;
    return out;
}

} // namespace tp
