// The import data sets: specification rows per data set and branch, the specification texts
// as the grid reads them, and the selection line.
#include "import/import_specs.h"

#include "foundation/dao.h"
#include "support/demo_site.h"

#include <gtest/gtest.h>

namespace tp::test {
namespace {

QString names(const std::vector<FieldSpec>& rows, bool requiredOnly)
{
    QStringList out;
    for (const FieldSpec& r : rows)
        if (!requiredOnly || r.required)
            out << r.name;
    return out.join(QLatin1Char(','));
}

struct RowsCase {
    ImportDataType type;
    bool branch;
    int rows;
    const char* required;
};

TEST(ImportSpecs, RowCountsAndRequiredFieldsFollowTheDataSetAndWhetherABranchExists)
{
    const RowsCase cases[] = {
        {ImportDataType::Customers, true, 15, "CustomerNumber,CompanyName,LastName,FirstName,BranchNumber"},
        {ImportDataType::Customers, false, 14, "CustomerNumber,CompanyName,LastName,FirstName"},
        {ImportDataType::Employees, true, 14, "EmployeeNumber,LastName,FirstName,BranchNumber"},
        {ImportDataType::Employees, false, 13, "EmployeeNumber,LastName,FirstName"},
        {ImportDataType::Vehicles, true, 9, "VehicleNumber,LicenseNumber,GroupID,BranchNumber"},
        {ImportDataType::Vehicles, false, 8, "VehicleNumber,LicenseNumber,GroupID"},
        {ImportDataType::MapLocations, true, 9, "LocationName,BranchNumber,Address1"},
        {ImportDataType::MapLocations, false, 9, "LocationName,Address1"},
        {ImportDataType::Pinpoints, true, 8, "PinpointName"},
        {ImportDataType::Pinpoints, false, 8, "PinpointName"},
    };
    for (const RowsCase& c : cases) {
        SCOPED_TRACE(ImportDataSet(c.type).listText.toStdString() + (c.branch ? " with branch" : " without"));
        const std::vector<FieldSpec> rows = ImportSpecRows(c.type, c.branch);
        ASSERT_EQ(int(rows.size()), c.rows);
        EXPECT_EQ(names(rows, true), QString::fromLatin1(c.required));
        for (int i = 0; i < c.rows; ++i) {
            EXPECT_EQ(rows[i].row, i + 1);
            EXPECT_EQ(rows[i].columns, 5);
            EXPECT_EQ(rows[i].ticked, rows[i].required) << rows[i].name.toStdString();
        }
    }
    EXPECT_EQ(names(ImportSpecRows(ImportDataType::MapLocations, false), false),
              QStringLiteral("LocationName,BranchNumber,Address1,Address2,City,State,ZipCode,Longitude,Latitude"));
    EXPECT_EQ(names(ImportSpecRows(ImportDataType::Pinpoints, true), false),
              QStringLiteral("PinpointName,Address1,Address2,City,State,ZipCode,Longitude,Latitude"));
    EXPECT_EQ(names(ImportSpecRows(ImportDataType::Customers, true), false),
              QStringLiteral("CustomerNumber,CompanyName,LastName,MI,FirstName,Accounting ID,Address1,Address2,"
                             "City,State,ZipCode,MobilePhone,WorkPhone,HomePhone,BranchNumber"));
    EXPECT_EQ(names(ImportSpecRows(ImportDataType::Employees, false), false),
              QStringLiteral("EmployeeNumber,LastName,MI,FirstName,AccountingID,Address1,Address2,City,State,"
                             "ZipCode,MobilePhone,WorkPhone,HomePhone"));
    EXPECT_EQ(names(ImportSpecRows(ImportDataType::Vehicles, true), false),
              QStringLiteral("VehicleNumber,LicenseNumber,GroupID,VINNumber,Year,Make,Model,TrackerSerialNumber,"
                             "BranchNumber"));
}

TEST(ImportSpecs, TextsCarryTheOperatorsWordingAsItStands)
{
    const struct {
        ImportDataType type;
        bool branch;
        int row;
        const char* text;
    } cases[] = {
        {ImportDataType::MapLocations, true, 1, "5::1::T::1::LocationName::Text::30::Characters."},
        {ImportDataType::MapLocations, true, 2, "5::2::T::1::BranchNumber::Number::9::Number of Existing Branch."},
        {ImportDataType::MapLocations, false, 2, "5::2::F::0::BranchNumber::Number::9::Number of Existing Branch."},
        {ImportDataType::MapLocations, false, 8, "5::8::F::0::Longitude::Number::Decimal::-180 to +180."},
        {ImportDataType::Pinpoints, false, 1, "5::1::T::1::PinpointName::Text::20::Characters & Spaces."},
        {ImportDataType::Pinpoints, false, 4, "5::4::F::0::City::Text::20::Characters & Spaces."},
        {ImportDataType::Pinpoints, false, 6, "5::6::F::0::ZipCode::Text::10::#####- or #####-####"},
        {ImportDataType::MapLocations, false, 3, "5::3::T::1::Address1::Text::30::Characters."},
        {ImportDataType::Vehicles, true, 5, "5::5::F::0::Year::Number::4::#### ex.: 2001."},
        {ImportDataType::Vehicles, true, 8,
         "5::8::F::0::TrackerSerialNumber::Text::9::Number of Existing Tracker Serial Number."},
        {ImportDataType::Vehicles, true, 9, "5::9::T::1::BranchNumber::Number::9::Number of Existing Branch."},
        {ImportDataType::Employees, false, 3, "5::3::F::0::MI::Text::1::1 Character Capitalized."},
        {ImportDataType::Employees, false, 8, "5::8::F::0::City::Text::20::Alphas,Numbers & Spaces."},
        {ImportDataType::Employees, false, 13, "5::13::F::0::HomePhone::Text::14::(###) ###-####"},
        {ImportDataType::Customers, true, 6, "5::6::F::0::Accounting ID::Text::20::Alphas, Numbers & Spaces."},
        {ImportDataType::Customers, true, 9, "5::9::F::0::City::Text::20::Characters."},
        {ImportDataType::Customers, true, 10, "5::10::F::0::State::Text::2::Two Characters Capitalized"},
    };
    for (const auto& c : cases) {
        const QStringList texts = ImportSpecTexts(c.type, c.branch);
        ASSERT_GE(texts.size(), c.row);
        EXPECT_EQ(texts[c.row - 1], QString::fromLatin1(c.text));
        // The parsed row gives the same text back.
        const std::optional<FieldSpec> spec = FieldSpec::parse(texts[c.row - 1]);
        ASSERT_TRUE(spec.has_value());
        EXPECT_EQ(spec->text(), texts[c.row - 1]);
    }
}

TEST(ImportSpecs, ParsingSkipsEmptyRowsAndFillsOnlyTheColumnsNamed)
{
    EXPECT_FALSE(FieldSpec::parse(QStringLiteral("0::1::T::1::LocationName::Text::30::Characters.")));
    EXPECT_FALSE(FieldSpec::parse(QStringLiteral("-2::1::T::1::LocationName::Text::30::Characters.")));
    EXPECT_FALSE(FieldSpec::parse(QStringLiteral("x::1::T::1::LocationName::Text::30::Characters.")));
    EXPECT_FALSE(FieldSpec::parse(QStringLiteral("5::1::T::1::LocationName::Text::30")));
    EXPECT_FALSE(FieldSpec::parse(QString()));

    // The required mark is read after upper-casing; the tick only when it is 1.
    const std::optional<FieldSpec> lower = FieldSpec::parse(QStringLiteral("3::4::t::2::City::Text::20::Characters."));
    ASSERT_TRUE(lower);
    EXPECT_TRUE(lower->required);
    EXPECT_FALSE(lower->ticked);
    EXPECT_EQ(lower->row, 4);
    EXPECT_EQ(lower->columnText(2), QStringLiteral("City"));
    EXPECT_EQ(lower->columnText(3), QStringLiteral("Text"));
    EXPECT_EQ(lower->columnText(4), QString());   // beyond the three columns the text fills
    EXPECT_EQ(lower->columnText(5), QString());
}

TEST(ImportSpecs, SelectionLineAndEntriesFollowTheTickedRowsInGridOrder)
{
    std::vector<FieldSpec> rows = ImportSpecRows(ImportDataType::MapLocations, false);
    ImportSelection selection = ImportSelection::fromRows(rows);
    EXPECT_EQ(selection.count(), 2);
    EXPECT_EQ(selection.formatLine(), QStringLiteral("''LocationName'' , ''Address1''"));
    EXPECT_EQ(selection.name(1), QStringLiteral("LocationName"));
    EXPECT_EQ(selection.name(2), QStringLiteral("Address1"));
    EXPECT_EQ(selection.name(0), QString());
    EXPECT_EQ(selection.name(3), QString());
    EXPECT_TRUE(selection.contains(QStringLiteral("ADDRESS1")));
    EXPECT_FALSE(selection.contains(QStringLiteral("City")));

    rows[8].ticked = true;   // Latitude
    rows[4].ticked = true;   // City
    selection = ImportSelection::fromRows(rows);
    EXPECT_EQ(selection.formatLine(), QStringLiteral("''LocationName'' , ''Address1'' , ''City'' , ''Latitude''"));

    const ImportSelection none;
    EXPECT_EQ(none.count(), 0);
    EXPECT_EQ(none.formatLine(), QString());
}

TEST(ImportSpecs, ListEntriesAndIndexesNameTheirDataSets)
{
    EXPECT_EQ(ImportDataTypeAt(0, false), ImportDataType::Pinpoints);
    EXPECT_FALSE(ImportDataTypeAt(1, false));
    EXPECT_EQ(ImportDataTypeAt(0, true), ImportDataType::Customers);
    EXPECT_EQ(ImportDataTypeAt(3, true), ImportDataType::MapLocations);
    EXPECT_FALSE(ImportDataTypeAt(4, true));
    EXPECT_FALSE(ImportDataTypeAt(-1, true));
    EXPECT_EQ(ImportDataTypeFor(QStringLiteral("Vehicle Data")), ImportDataType::Vehicles);
    EXPECT_FALSE(ImportDataTypeFor(QStringLiteral("No Selection Available")));
    EXPECT_EQ(ImportDataSet(ImportDataType::Pinpoints).table, QStringLiteral("CommonLocations"));
    EXPECT_EQ(ImportDataSet(ImportDataType::MapLocations).fileFormatCaption,
              QStringLiteral("Map Data Fields To Save To The Database"));
}

TEST(ImportSpecs, BranchLookupFindsExistingBranchesAndNeverRunsForeignText)
{
    DemoSite site;
    ASSERT_TRUE(site.ok()) << site.error().toStdString();
    cDAO db;
    ASSERT_TRUE(db.DB_Connect(site.databaseFile(), QString(), QStringLiteral("Admin"), QString()));
    const struct {
        const char* number;
        bool exists;
    } cases[] = {{"-1", true}, {"1", true}, {" 2 ", true}, {"999", false}, {"1 or 1=1", false},
                 {"1; Delete from BranchInfo", false}, {"", false}, {"abc", false}};
    for (const auto& c : cases)
        EXPECT_EQ(BranchExists(db, QString::fromLatin1(c.number)), c.exists) << c.number;
    EXPECT_GT(site.scalar(QStringLiteral("Select count(*) from BranchInfo")), 0);

    db.Exec(QStringLiteral("Delete from BranchInfo"));
    EXPECT_FALSE(BranchExists(db));
    db.DB_Close();
}

} // namespace
} // namespace tp::test
