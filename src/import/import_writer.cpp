#include "import/import_writer.h"

#include "foundation/conversions.h"
#include "foundation/dao.h"
#include "foundation/feedback.h"
#include "import/grouped_insert.h"
#include "import/value_checks.h"

#include <QDate>
#include <QSet>

#include <functional>

namespace tp {

namespace {

const QString kCr = QStringLiteral("\r");
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
        const QSet<QString> names = ReadUpperTexts(db, QStringLiteral("Select LocationName from CommonLocations"));
        for (qint32 i = 1; i <= n; ++i) {
            const QString name = TrimBlanks(list.text(i, LoName));
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
    const QSet<qint64> numbers =
        ReadWholeNumbers(db, QStringLiteral("Select ") + info.numberColumn + QStringLiteral(" from ") + info.table);
    for (qint32 i = 1; i <= n; ++i) {
        const double number = list.number(i, field);
        if (!numbers.contains(qint64(number)))
            continue;
        if (fb.ask(0, info.question + PlainNumber(number) + info.questionEnd) != AnswerYes)
            return false;
        list.setNumber(i, field, next);
        next += 1;
    }
    if (list.table != RecordTable::Vehicles)
        return true;
    const QSet<QString> plates = ReadUpperTexts(db, QStringLiteral("Select LicenseNumber from VehicleInfo"));
    for (qint32 i = 1; i <= n; ++i) {
        const QString plate = TrimBlanks(list.text(i, VeLicenseNumber));
        if (!plates.contains(plate.toUpper()))
            continue;
        fb.message(0, QStringLiteral("Vehicle LicenseNumber = ") + plate + QStringLiteral(" is already in use.") + kCr +
                          QStringLiteral("Check your file and correct the problem."),
                   kBoxTitle);
        return false;
    }
    return true;
}


// The row a record becomes: the columns are decided once from the presence markers, and
// each record gives a value per column.
class RowWriter {
public:
    RowWriter(cDAO& db, ImportRecordList& list) : m_db(db), m_list(list)
    {
        m_lookups.load(db);
        m_today = ImportDateAcquired();
        planColumns();
    }

    // The write-time checks of record i; the notice when one fails, empty when all pass.
    QString refusal(qint32 i) const;
    const QStringList& columns() const { return m_columns; }
    QVector<QVariant> row(qint32 i) const;

private:
    using Value = std::function<QVariant(qint32)>;

    bool present(int f) const { return m_list.isPresent(f); }
    QString text(qint32 i, int f) const { return m_list.text(i, f); }
    QStringView trimmedView(qint32 i, int f) const { return TrimBlanks(m_list.textView(i, f)); }
    QString trimmed(qint32 i, int f) const { return trimmedView(i, f).toString(); }
    bool blank(qint32 i, int f) const { return trimmedView(i, f).isEmpty(); }
    // A column value straight from the record list's buffer, not copied: the row is handed to
    // the database before anything in the list changes.
    static QVariant unowned(QStringView text) { return QVariant(QString::fromRawData(text.data(), text.size())); }
    qint64 whole(qint32 i, int f) const { return qint64(m_list.number(i, f)); }
    QString branchText(qint32 i, int f) const { return PlainNumber(m_list.number(i, f)); }
    bool branchOk(qint32 i, int f) const { return !present(f) || m_lookups.branchExists(m_list.number(i, f)); }

    void planColumns();
    void add(const char* column, Value value);
    void addFixed(const char* column, const QVariant& value);
    // The field's value as its kind stores it, when the file has the field; text cut to
    // width (after trimming) when a width is given.
    void addIfPresent(const char* column, int f, int width = 0);
    void addTrimmedIfPresent(const char* column, int f);
    // The trimmed value, or `blank` when the file has no such field or the value is empty.
    void addDefaulted(const char* column, int f, const QString& blank);
    void addBranch(const char* column, int f);

    cDAO& m_db;
    ImportRecordList& m_list;
    ImportLookups m_lookups;
    QString m_today;
    QStringList m_columns;
    std::vector<Value> m_values;
};

QString RowWriter::refusal(qint32 i) const
{
    const auto rec = [i] { return QString::number(i); };
    switch (m_list.table) {
    case RecordTable::Vehicles:
        if (!branchOk(i, VeBranchNumber))
            return QStringLiteral("BranchNumber = ") + branchText(i, VeBranchNumber) + QStringLiteral("  in record # ") +
                   rec() + QStringLiteral(" is not a valid entry in the database.") + ImportDoneLine(i, true);
        return QString();
    case RecordTable::Employees:
        if (!branchOk(i, EmBranchNumber))
            return QStringLiteral("BranchNumber = ") + branchText(i, EmBranchNumber) + QStringLiteral(" in record # ") +
                   rec() + QStringLiteral(" is not a valid entry in the database.") + ImportDoneLine(i);
        for (const auto& [field, label] : {std::pair{int(EmLastName), "LastName = ''"}, std::pair{int(EmFirstName), "FirstName = ''"}})
            if (present(field) && blank(i, field))
                return QLatin1String(label) + text(i, field) + QStringLiteral("''  in record # ") + rec() +
                       QStringLiteral(" can not be an empty field.") + ImportDoneLine(i);
        return QString();
    case RecordTable::Customers:
        if (!branchOk(i, CuBranchNumber))
            return QStringLiteral("BranchNumber = ") + branchText(i, CuBranchNumber) +
                   QStringLiteral(" is not a valid entry in the database.") + ImportDoneLine(i);
        for (const auto& [field, label] : {std::pair{int(CuCompanyName), "CompanyName  = ''"},
                                           std::pair{int(CuLastName), "LastName  = ''"},
                                           std::pair{int(CuFirstName), "FirstName  = ''"}})
            if (present(field) && blank(i, field))
                return QLatin1String(label) + text(i, field) + QStringLiteral("''  in record # ") + rec() +
                       QStringLiteral("  can not be an empty field.") + ImportDoneLine(i);
        return QString();
    case RecordTable::Locations: break;
    }
    return QString();
}

void RowWriter::add(const char* column, Value value)
{
    m_columns << QLatin1String(column);
    m_values.push_back(std::move(value));
}

void RowWriter::addFixed(const char* column, const QVariant& value)
{
    add(column, [value](qint32) { return value; });
}

void RowWriter::addIfPresent(const char* column, int f, int width)
{
    if (!present(f))
        return;
    switch (m_list.kind(f)) {
    case CellKind::Number: add(column, [this, f](qint32 i) { return QVariant(whole(i, f)); }); return;
    case CellKind::Real: add(column, [this, f](qint32 i) { return QVariant(m_list.number(i, f)); }); return;
    case CellKind::Text: break;
    }
    if (width > 0)
        add(column, [this, f, width](qint32 i) { return unowned(trimmedView(i, f).left(width)); });
    else
        add(column, [this, f](qint32 i) { return unowned(m_list.textView(i, f)); });
}

void RowWriter::addTrimmedIfPresent(const char* column, int f)
{
    if (present(f))
        add(column, [this, f](qint32 i) { return unowned(trimmedView(i, f)); });
}

void RowWriter::addDefaulted(const char* column, int f, const QString& blank)
{
    if (!present(f)) {
        addFixed(column, blank);
        return;
    }
    add(column, [this, f, blank](qint32 i) {
        const QStringView v = trimmedView(i, f);
        return v.isEmpty() ? QVariant(blank) : unowned(v);
    });
}

void RowWriter::addBranch(const char* column, int f)
{
    if (present(f))
        add(column, [this, f](qint32 i) { return QVariant(whole(i, f)); });
    else
        addFixed(column, qint64(0));
}

void RowWriter::planColumns()
{
    switch (m_list.table) {
    case RecordTable::Vehicles:
        addIfPresent("VehicleNumber", VeNumber);
        if (present(VeVINNumber))
            addTrimmedIfPresent("VINNumber", VeVINNumber);
        else
            addFixed("VINNumber", QStringLiteral("0"));
        addTrimmedIfPresent("LicenseNumber", VeLicenseNumber);
        addBranch("BranchNumber", VeBranchNumber);
        addFixed("DateAcquired", m_today);
        addIfPresent("Year", VeYear);
        for (const auto& [column, field] : {std::pair{"Make", int(VeMake)}, std::pair{"Model", int(VeModel)},
                                            std::pair{"AccountingID", int(VeAccountingID)},
                                            std::pair{"TrackerSerialNumber", int(VeTrackerSerialNumber)},
                                            std::pair{"Field1", int(VeGroupID)}})
            addTrimmedIfPresent(column, field);
        addFixed("VehicleDescription", QStringLiteral("?"));
        break;
    case RecordTable::Employees:
        addIfPresent("EmployeeNumber", EmNumber);
        addBranch("BranchNumber", EmBranchNumber);
        for (const auto& [column, field] : {std::pair{"AccountingID", int(EmAccountingID)},
                                            std::pair{"Address1", int(EmAddress1)}, std::pair{"Address2", int(EmAddress2)},
                                            std::pair{"City", int(EmCity)}, std::pair{"LastName", int(EmLastName)},
                                            std::pair{"MI", int(EmMI)}, std::pair{"FirstName", int(EmFirstName)},
                                            std::pair{"State", int(EmState)}})
            addIfPresent(column, field);
        addDefaulted("Zip", EmZipCode, kBlankZip);
        addDefaulted("MobilePhone", EmMobilePhone, kBlankPhone);
        addDefaulted("WorkPhone", EmWorkPhone, kBlankPhone);
        addDefaulted("Phone", EmHomePhone, kBlankPhone);
        addFixed("Pager", kBlankPhone);
        break;
    case RecordTable::Customers:
        addIfPresent("CustomerNumber", CuNumber);
        addIfPresent("AccountingID", CuAccountingID);
        addBranch("BranchNumber", CuBranchNumber);
        for (const auto& [column, field, width] :
             {std::tuple{"CompanyName", int(CuCompanyName), 30}, std::tuple{"Address1", int(CuAddress1), 30},
              std::tuple{"Address2", int(CuAddress2), 30}, std::tuple{"City", int(CuCity), 20},
              std::tuple{"ContactLastName", int(CuLastName), 30}, std::tuple{"ContactMI", int(CuMI), 1},
              std::tuple{"ContactFirstName", int(CuFirstName), 20}, std::tuple{"State", int(CuState), 2}})
            addIfPresent(column, field, width);
        add("Zip", [this](qint32 i) {
            QString zip = present(CuZipCode) ? trimmed(i, CuZipCode) : QString();
            if (zip.isEmpty())
                zip = kBlankZip;
            else if (zip.size() == 6 && zip.endsWith(QLatin1Char('-')))
                zip += QStringLiteral("    ");
            else
                zip = zip.left(10);
            return QVariant(zip);
        });
        addDefaulted("MobilePhone", CuMobilePhone, kBlankPhone);
        addDefaulted("WorkPhone", CuWorkPhone, kBlankPhone);
        addDefaulted("Pager", CuHomePhone, kBlankPhone);
        break;
    case RecordTable::Locations:
        // Asked afresh for each record, so rows of locations go in one at a time.
        add("CommonLocationNumber", [this](qint32) {
            return QVariant(qint64(
                m_db.MaxID_Value(QStringLiteral("CommonLocations"), QStringLiteral("CommonLocationNumber")).toDouble()));
        });
        addBranch("BranchNumber", LoBranchNumber);
        addTrimmedIfPresent("LocationName", LoName);
        for (const auto& [column, field] : {std::pair{"Address1", int(LoAddress1)}, std::pair{"Address2", int(LoAddress2)},
                                            std::pair{"City", int(LoCity)}, std::pair{"State", int(LoState)},
                                            std::pair{"zipcode", int(LoZipCode)}, std::pair{"Longitude", int(LoLongitude)},
                                            std::pair{"Latitude", int(LoLatitude)}})
            addIfPresent(column, field);
        break;
    }
}

QVector<QVariant> RowWriter::row(qint32 i) const
{
    QVector<QVariant> out;
    out.reserve(qsizetype(m_values.size()));
    for (const Value& value : m_values)
        out.append(value(i));
    return out;
}

} // namespace

QString ImportDoneLine(qint32 record, bool twoBlanks)
{
    return QStringLiteral("\r\n") + QString::number(record - 1) +
           (twoBlanks ? QStringLiteral("  record(s) processed successfully.")
                      : QStringLiteral(" record(s) processed successfully."));
}

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

    const RowWriter writer(db, list);
    GroupedInsert inserter(db, fb, tableInfo(list.table).table, writer.columns(),
                           [&writer](qint32 i) { return writer.row(i); }, n);
    const qint32 batch = list.table == RecordTable::Locations ? 1 : kImportBatchRows;
    qint32 from = 1;   // first record not yet given to the database
    for (qint32 i = 1; i <= n; ++i) {
        const QString refusal = writer.refusal(i);
        if (!refusal.isEmpty()) {
            // Everything before the refused record is written, and committed before the notice.
            if ((from == i || inserter.insert(from, i - 1)) && inserter.commit())
                fb.message(0, refusal, kBoxTitle);
            out.written = inserter.committed();
            return out;
        }
        if (i - from + 1 >= batch || i == n) {
            if (!inserter.insert(from, i)) {
                out.written = inserter.committed();
                return out;
            }
            from = i + 1;
        }
    }
    const bool committed = inserter.commit();
    out.written = inserter.committed();
    if (!committed || out.written != n)
        return out;
    list.lastRecord = 0;
    out.result = 0;
    return out;
}

} // namespace tp
