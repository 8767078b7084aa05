#include "import/scan_report.h"

namespace tp {

namespace {

const QString kCrLf = QStringLiteral("\r\n");

QString quoted(const QString& s)
{
    return QStringLiteral("''") + s + QStringLiteral("''");
}

// The two advice lines every heading fault carries, numbered from `first`; code 16 has a
// doubled blank in its second line.
QString headingAdvice(int first, bool doubledBlank = false)
{
    return kCrLf + QString::number(first) + QStringLiteral(". Each heading should match the field name you selected. ") +
           kCrLf + QString::number(first + 1) +
           (doubledBlank ? QStringLiteral(". Each heading  should be seperated") : QStringLiteral(". Each heading should be seperated")) +
           QStringLiteral(" by commas (no spaces between the comma and the heading).");
}

const QString kSameOrder = QStringLiteral("The heading should be in the same order as your field selection.");

QString notValidEntry(const QString& f)
{
    return QStringLiteral("The field ") + quoted(f) + QStringLiteral(" is not a valid entry in the database.") + kCrLf +
           QStringLiteral("1. Enter the appropriate value in the text file or") + kCrLf +
           QStringLiteral("2. Delete this field from the text file and  uncheck it from the grid.");
}

} // namespace

void ScanState::clearAfterReport()
{
    fieldText.clear();
    foundValue.clear();
    lengthLimit = 0;
    result = 0;
    gridPosition = 0;
}

QString ScanReportText(const ScanState& s)
{
    const QString& f = s.fieldText;
    const QString l = QString::number(s.lengthLimit);
    bool withValue = true;
    QString text;
    switch (s.result) {
    case -1:
        text = QStringLiteral("The field value ") + quoted(f) + QStringLiteral(" can not be empty.") + kCrLf +
               QStringLiteral("Please enter the appropriate value for this field. ");
        break;
    case 1:
        text = QStringLiteral("The heading ") + quoted(f) +
               QStringLiteral(" is selected but does not exist in the text file or is in the wrong order.") +
               headingAdvice(1) + kCrLf +
               QStringLiteral("3. The heading name should be in the same order as your field selection.") + kCrLf +
               QStringLiteral("4. Modify your import file and try again.");
        break;
    case 2:
        text = QStringLiteral("The heading ") + quoted(f) + QStringLiteral(" exists in the text file but it is not selected.") +
               headingAdvice(1) + kCrLf + QStringLiteral("3. ") + kSameOrder + kCrLf +
               QStringLiteral("4. Modify your import file or select ") + f + QStringLiteral(" from the grid and try again.");
        break;
    case 3:
    case 4:
        text = QStringLiteral("Expecting ") + QString::number(s.headingCount) + QStringLiteral(" fields ") +
               QStringLiteral(" in record number ") + QString::number(s.recordNumber) +
               QStringLiteral(" of your text file:") + kCrLf +
               QStringLiteral("1. The number of fields selected must match the number of fields in the text file. ") +
               headingAdvice(2) + kCrLf + QStringLiteral("4. ") + kSameOrder + kCrLf +
               QStringLiteral("5. Modify your import file and try again.");
        break;
    case 5:
    case 8:
    case 10:
    case 12:
    case 13:
        text = notValidEntry(f);
        break;
    case 6:
        text = QStringLiteral("Data type mismatch: ") + quoted(f) + QStringLiteral(" must be an integer value .");
        break;
    case 7:
        if (f == QLatin1String("State")) {
            text = QStringLiteral("Invalid field length: ") + quoted(f) + QStringLiteral(" ") +
                   QStringLiteral("must be less than or equal to ") + l + QStringLiteral(" character(s) in length.");
            withValue = false;
        } else {
            text = QStringLiteral("Invalid field type or length: ") + quoted(f) + QStringLiteral(" ") +
                   QStringLiteral("must be less than or equal to ") + l +
                   QStringLiteral(" characters and spaces in length.");
        }
        break;
    case 9:
        text = QStringLiteral("The field ") + quoted(f) + QStringLiteral(" does not have the appropriate format.") +
               QStringLiteral("Check the grid for the appropriate format.") + kCrLf;
        break;
    case 11:
        text = QStringLiteral("The field ") + quoted(f) + QStringLiteral(" must be an integer value in the range 1950 - 2039.");
        break;
    case 14:
        text = QStringLiteral("Data type mismatch, ") + quoted(f) + QStringLiteral(".") + QStringLiteral("  is the wrong format.");
        break;
    case 15:
        text = QStringLiteral("The value, ") + quoted(f) + QStringLiteral(" ,does not have a corresponding header.") + kCrLf +
               QStringLiteral("Check your import text file.");
        break;
    case 16:
        text = QStringLiteral("The heading ") + quoted(s.invalidHeading) + QStringLiteral(" in your file is invalid.") +
               headingAdvice(1, true) + kCrLf + QStringLiteral("3. ") + kSameOrder + kCrLf +
               QStringLiteral("4. Modify your import file and try again.");
        break;
    case 20:
        text = QStringLiteral("Invalid field provided: [") + f + QStringLiteral("] - must be less than or equal to ") + l +
               QStringLiteral(" characters and spaces in length.");
        break;
    case 21:
        text = QStringLiteral("Invalid field provided: [") + f + QStringLiteral("] - must be less than or equal to ") + l +
               QStringLiteral(" Alphas,Numbers & Spaces in length.");
        break;
    case 22:
        text = QStringLiteral("Invalid field provided: [") + f + QStringLiteral("] - must be 1 Capital Charachter in length.");
        break;
    case 23:
        text = QStringLiteral("Invalid field provided: [") + f + QStringLiteral("] - must be 2 Capital Characters in length.");
        break;
    case 24:
        text = QStringLiteral("Invalid field provided: [") + f + QStringLiteral("] - must be less than or equal to ") + l +
               QStringLiteral(" Characters in length.");
        break;
    case 25:
        text = QStringLiteral("Invalid field provided: [") + f + QStringLiteral("] - cannot contain single or double quotes");
        break;
    case 26:
        text = QStringLiteral("Zip Code format mismatch:");
        break;
    case 99:
        text = QStringLiteral("The field '") + f + QStringLiteral("' can not be empty.") + kCrLf +
               QStringLiteral("Please enter the appropriate value for this field. ");
        withValue = false;
        break;
    default:
        text = QStringLiteral("The heading ") + quoted(f) + QStringLiteral(" has created an un-expected error.") + kCrLf +
               QStringLiteral("1. Check your import text file. ") + kCrLf + QStringLiteral("2. Try selecting the fields again.");
        break;
    }
    if (withValue && !s.foundValue.isEmpty())
        text += kCrLf + QStringLiteral("Found Value = ") + s.foundValue;
    return text;
}

} // namespace tp
