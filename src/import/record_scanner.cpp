#include "import/record_scanner.h"

#include "foundation/conversions.h"
#include "import/value_checks.h"

namespace tp {

namespace {

enum class Check { Characters, Alphanumeric, Capitals, StateCode, NonNegative, Positive, Length, Range, Year, Zip, Phone };
enum class Then { Nothing, Branch, State, Serial, Group, YearRange };

struct FieldRule {
    const char* heading;     // the grid name whose marker the rule takes
    int field;
    Check check;
    QString name;            // the name the check reports (F) and the required list is asked for
    int max = 0;
    qint16 code = 0;
    Then then = Then::Nothing;
    qint16 thenCode = 0;
};

using Rules = std::vector<FieldRule>;

Rules peopleRules(bool customers)
{
    const int number = customers ? int(CuNumber) : int(EmNumber);
    Rules r;
    r.push_back({customers ? "CustomerNumber" : "EmployeeNumber", number, Check::Positive,
                 customers ? "CustomerNumber" : "EmployeeNumber", 0, ScanNotInteger});
    if (customers)
        r.push_back({"CompanyName", CuCompanyName, Check::Alphanumeric, "CompanyName", 30});
    const auto f = [customers](CustomerField c, EmployeeField e) { return customers ? int(c) : int(e); };
    r.push_back({"LastName", f(CuLastName, EmLastName), Check::Alphanumeric, "LastName", 30});
    r.push_back({"MI", f(CuMI, EmMI), Check::Capitals, "MI", 1, ScanOneCapital});
    r.push_back({"FirstName", f(CuFirstName, EmFirstName), Check::Alphanumeric, "FirstName", 20});
    r.push_back({customers ? "Accounting ID" : "AccountingID", f(CuAccountingID, EmAccountingID),
                 Check::Alphanumeric, "AccountingID", 20});
    r.push_back({"Address1", f(CuAddress1, EmAddress1), Check::Characters, "Address1", 30});
    r.push_back({"Address2", f(CuAddress2, EmAddress2), Check::Characters, "Address2", 30});
    r.push_back({"City", f(CuCity, EmCity), Check::Characters, "City", 20});
    r.push_back({"State", f(CuState, EmState), Check::StateCode, "State", 2, ScanTwoCapitals, Then::State,
                 ScanStateMissing});
    r.push_back({"ZipCode", f(CuZipCode, EmZipCode), Check::Zip, "ZipCode", 10, ScanZipCode});
    r.push_back({"MobilePhone", f(CuMobilePhone, EmMobilePhone), Check::Phone, "MobilePhone", 14, ScanBadFormat});
    r.push_back({"WorkPhone", f(CuWorkPhone, EmWorkPhone), Check::Phone, "WorkPhone", 14, ScanBadFormat});
    r.push_back({"HomePhone", f(CuHomePhone, EmHomePhone), Check::Phone, "HomePhone", 14, ScanBadFormat});
    r.push_back({"BranchNumber", f(CuBranchNumber, EmBranchNumber), Check::NonNegative, "BranchNumber", 0,
                 ScanNotInteger, Then::Branch, ScanBranchMissing});
    return r;
}

Rules locationRules(bool pinpoints)
{
    Rules r;
    if (pinpoints)
        r.push_back({"PinpointName", LoName, Check::Characters, "PinpointName", 20});
    else {
        r.push_back({"LocationName", LoName, Check::Characters, "LocationName", 30});
        r.push_back({"BranchNumber", LoBranchNumber, Check::NonNegative, "BranchNumber", 0, ScanNotInteger,
                     Then::Branch, ScanBranchMissing});
    }
    r.push_back({"Address1", LoAddress1, Check::Characters, "Address1", 30});
    r.push_back({"Address2", LoAddress2, Check::Characters, "Address2", 30});
    r.push_back({"City", LoCity, Check::Characters, "City", 20});
    r.push_back({"State", LoState, Check::StateCode, "State", 2, ScanTwoCapitals, Then::State, ScanTwoCapitals});
    r.push_back({"ZipCode", LoZipCode, Check::Zip, "ZipCode", 10, ScanZipCode});
    r.push_back({"Longitude", LoLongitude, Check::Range, "Longitude", 180, ScanBadFormat});
    r.push_back({"Latitude", LoLatitude, Check::Range, "Latitude", 90, ScanBadFormat});
    return r;
}

Rules vehicleRules()
{
    return {
        {"VehicleNumber", VeNumber, Check::Positive, "VehicleNumber", 0, ScanNotInteger},
        {"LicenseNumber", VeLicenseNumber, Check::Alphanumeric, "LicenseNumber", 10},
        {"GroupID", VeGroupID, Check::Positive, "GROUPID", 0, ScanNotInteger, Then::Group, ScanGroupMissing},
        {"VINNumber", VeVINNumber, Check::Alphanumeric, "VINNumber", 30},
        {"Year", VeYear, Check::Year, "Year", 4, ScanNotInteger, Then::YearRange, ScanYearRange},
        {"Make", VeMake, Check::Characters, "Make", 20},
        {"Model", VeModel, Check::Characters, "Model", 20},
        {"AccountingID", VeAccountingID, Check::Alphanumeric, "AccountingID", 20},
        {"TrackerSerialNumber", VeTrackerSerialNumber, Check::Length, "TrackerSerialNumber", 9, ScanTooLong,
         Then::Serial, ScanSerialMissing},
        {"BranchNumber", VeBranchNumber, Check::NonNegative, "BranchNumber", 0, ScanNotInteger, Then::Branch,
         ScanBranchMissing},
    };
}

const Rules& rulesOf(ImportDataType type)
{
    static const Rules customers = peopleRules(true);
    static const Rules employees = peopleRules(false);
    static const Rules vehicles = vehicleRules();
    static const Rules mapLocations = locationRules(false);
    static const Rules pinpoints = locationRules(true);
    switch (type) {
    case ImportDataType::Customers: return customers;
    case ImportDataType::Employees: return employees;
    case ImportDataType::Vehicles: return vehicles;
    case ImportDataType::MapLocations: return mapLocations;
    case ImportDataType::Pinpoints: break;
    }
    return pinpoints;
}

// Runs the rule's check (and the look-up after a pass) on value, which it may rewrite.
qint16 runCheck(const FieldRule& rule, QString& value, double& number, const ImportLookups& lookups, bool krv,
                ScanState& s)
{
    const QString& name = rule.name;
    qint16 r = ScanOk;
    switch (rule.check) {
    case Check::Characters: r = check::Characters(value, name, rule.max, s); break;
    case Check::Alphanumeric: r = check::Alphanumeric(value, name, rule.max, s); break;
    case Check::Capitals: r = check::Capitals(value, name, rule.max, rule.code, s); break;
    case Check::StateCode: r = check::StateCode(value, name, rule.code, s); break;
    case Check::NonNegative: r = check::NonNegativeNumber(value, name, rule.code, s); break;
    case Check::Positive: r = check::PositiveNumber(value, name, rule.code, s); break;
    case Check::Length: r = check::Length(value, name, rule.max, rule.code, s); break;
    case Check::Year: r = check::Year(value, rule.code, s); break;
    case Check::Range: {
        r = check::Range(value, name, -rule.max, rule.max, number, s);
        if (r != ScanOk)
            s.foundValue = value + (rule.max == 180 ? QStringLiteral(" - expected range -180 to +180")
                                                    : QStringLiteral(" - expected range -90 to +90"));
        break;
    }
    case Check::Zip:
        value = check::padOrCut(value, 10);
        r = check::ZipCode(value, s) ? qint16(ScanOk) : rule.code;
        break;
    case Check::Phone:
        r = check::PhoneNumber(value) ? qint16(ScanOk) : rule.code;
        break;
    }
    if (r != ScanOk)
        return r;
    switch (rule.then) {
    case Then::Nothing: break;
    case Then::Branch:
        if (krv && !lookups.branchExists(number))
            return rule.thenCode;
        break;
    case Then::State:
        if (!value.isEmpty() && !lookups.stateExists(value)) {
            s.foundValue = value + QStringLiteral(" - invalid State code");
            return rule.thenCode;
        }
        break;
    case Then::Serial:
        if (!lookups.serialExists(value))
            return rule.thenCode;
        break;
    case Then::Group:
        if (!lookups.groupExists(check::toNumber(value).value_or(-1)))
            return rule.thenCode;
        break;
    case Then::YearRange:
        if (number < 1950 || number > 2039)
            return rule.thenCode;
        break;
    }
    return ScanOk;
}

} // namespace

int RecordFieldFor(ImportDataType type, const QString& gridName)
{
    for (const FieldRule& rule : rulesOf(type))
        if (gridName.compare(QLatin1String(rule.heading), Qt::CaseInsensitive) == 0)
            return rule.field;
    return -1;
}

qint16 CheckHeadingLine(int fieldCount, const std::function<QString(int)>& heading,
                        const std::vector<FieldSpec>& rows, ImportRecordList& list, ScanState& s)
{
    const int count = int(rows.size());
    const auto row = [&rows](int r) -> const FieldSpec& { return rows[size_t(r - 1)]; };
    const auto same = [](const FieldSpec& spec, const QString& text) {
        return spec.name.compare(text, Qt::CaseInsensitive) == 0;
    };
    s.headingCount = qint16(std::min(fieldCount, 32767));
    for (int i = 1; i <= fieldCount; ++i) {
        const QString text = heading(i);
        s.fieldText = text;
        if (s.gridPosition + 1 <= count && row(s.gridPosition + 1).required)
            list.required << text.toUpper();
        qint16 result = ScanInvalidHeading;
        for (int r = s.gridPosition + 1; r <= count; ++r) {
            const FieldSpec& spec = row(r);
            const bool match = same(spec, text);
            s.gridPosition = qint16(r);
            if (spec.ticked && match) {
                const int field = RecordFieldFor(list.type, spec.name);
                if (field >= 0)
                    list.present[size_t(field)] = true;
                result = ScanOk;
                break;
            }
            if (!spec.ticked && match) {
                result = ScanNotSelected;
                break;
            }
            if (!spec.ticked)
                continue;
            // A ticked row expected here names another field: the heading is out of place.
            result = ScanInvalidHeading;
            for (int later = r; later <= count; ++later) {
                if (!same(row(later), text))
                    continue;
                if (row(later).ticked) {
                    result = ScanNotInFile;
                    s.fieldText = spec.name;
                } else {
                    result = ScanNotSelected;
                }
                break;
            }
            break;
        }
        if (result == ScanInvalidHeading)
            s.invalidHeading = text;
        if (result != ScanOk)
            return result;
    }
    if (s.gridPosition < count) {
        for (int r = s.gridPosition + 1; r <= count; ++r)
            if (row(r).ticked) {
                s.fieldText = row(r).name;
                s.gridPosition = qint16(s.gridPosition + 1);
                return ScanNotInFile;
            }
        s.gridPosition = qint16(s.gridPosition + 1);
    }
    s.fieldText.clear();
    return ScanHeadingOnly;
}

qint16 ScanFieldValue(ImportRecordList& list, qint32 record, const QString& value,
                      const ImportLookups& lookups, bool krvSettings, ScanState& s)
{
    const Rules& rules = rulesOf(list.type);
    const FieldRule* rule = nullptr;
    for (const FieldRule& r : rules)
        if (list.present[size_t(r.field)]) {
            rule = &r;
            break;
        }
    if (!rule) {
        s.fieldText = value;
        if (list.type == ImportDataType::Vehicles)
            s.foundValue = value;
        return ScanNoHeading;
    }
    list.present[size_t(rule->field)] = false;

    const CellKind kind = list.kind(rule->field);
    QString text = value;
    double number = 0;
    qint16 result = ScanOk;
    if (kind == CellKind::Number) {
        // Converted before the check; a value that is no number fails as a number.
        const std::optional<qint32> whole = check::toWholeNumber(value);
        if (whole)
            number = *whole;
        else {
            s.fieldText = rule->name;
            s.foundValue = value;
            result = ScanNotInteger;
        }
    }
    if (result == ScanOk)
        result = runCheck(*rule, text, number, lookups, krvSettings, s);

    if (result != ScanOk) {
        if (list.isRequired(rule->name))
            return result;
        // An optional field that fails is stored empty (or 0).
        text.clear();
        number = 0;
    }
    if (kind == CellKind::Text)
        list.setText(record, rule->field, text);
    else
        list.setNumber(record, rule->field, number);
    return ScanOk;
}

std::vector<int> TickedFields(ImportDataType type, const std::vector<FieldSpec>& rows)
{
    std::vector<int> fields;
    for (const FieldSpec& spec : rows) {
        const int field = spec.ticked ? RecordFieldFor(type, spec.name) : -1;
        if (field >= 0)
            fields.push_back(field);
    }
    return fields;
}

qint16 CompleteRecord(ImportRecordList& list, const std::vector<int>& tickedFields)
{
    for (const int field : tickedFields)
        list.present[size_t(field)] = true;
    return tickedFields.empty() ? qint16(ScanTooManyFields) : qint16(ScanOk);
}

} // namespace tp
