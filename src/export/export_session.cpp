#include "export/export_session.h"

#include "export/availability.h"
#include "foundation/feedback.h"
#include "foundation/globals.h"

namespace tp {

ExportSession::ExportSession(cDAO& db, Feedback& feedback) : m_db(db), m_feedback(feedback) {}

QStringList ExportSession::offeredDataSets()
{
    AllRecordsLimit = 200;
    CatalogueReady = true;
    return OfferedDataSets(m_db, m_feedback);
}

bool ExportSession::selectDataSet(const QString& listText)
{
    const ExportDataSet* set = FindDataSet(listText, IsKrvSettings());
    if (!set)
        return false;

    m_feedback.busy(true);
    mlExportID = 0;
    SelectionMode = QStringLiteral("All");
    m_dataSet = set;
    m_assembler.reset();
    resetSelection();
    FieldCount = set->fieldCount();
    msTableSelected = set->tableKey;
    if (set->loadBeforeCheck) {
        loadCatalogue();
        AvailabilityResult = runAvailabilityCheck();
    } else {
        AvailabilityResult = runAvailabilityCheck();
        loadCatalogue();
    }
    if (set->type == ExportDataType::TimeData)
        AvailableCount = AvailabilityResult;

    ExportRowBuffer.assign(static_cast<size_t>(FieldCount) + 2, QVariant());
    m_grid.setColumnCount(FieldCount + 1);
    m_grid.setHeader(1, kRecordNumber);
    m_grid.setColumnWidth(1, kRecordNumber.size());
    m_feedback.busy(false);
    return true;
}

void ExportSession::reportAvailability()
{
    if (AvailabilityResult == -1)
        m_feedback.message(0, kCannotReadDatabase, kBoxTitle);
    else if (AvailabilityResult == 0)
        m_feedback.message(0, avail::kNoRecordsAvailable, kBoxTitle);
}

bool ExportSession::isTimeOrInventory() const
{
    return msTableSelected == kTableTime || msTableSelected == kTableInventory;
}

void ExportSession::loadCatalogue()
{
    CatalogueReady = false;
    m_fields.clear();
    for (const CatalogueField& f : m_dataSet->fields)
        m_fields.push_back({f.name, f.type, f.name, false, 0});
    CatalogueReady = true;
}

qint16 ExportSession::runAvailabilityCheck()
{
    switch (m_dataSet->check) {
    case AvailabilityCheck::Time:
        return avail::TimeRecordsAvailable(m_db, m_feedback, mlExportID, ExportRecordCount);
    case AvailabilityCheck::Inventory:
        return avail::InventoryRecordsAvailable(m_db, m_feedback, mlExportID, ExportRecordCount);
    case AvailabilityCheck::Gps:
        return avail::GpsPointsAvailable(m_db, m_feedback);
    case AvailabilityCheck::Locations:
        return avail::LocationRecordsAvailable(m_db, m_feedback);
    }
    return -1;
}

QString ExportSession::fieldOrderText(int row) const
{
    if (row < 1 || row > FieldCount)
        return QString();
    const FieldRow& f = field(row);
    return f.order > 0 ? QStringLiteral("Field ") + QString::number(f.order) : QString();
}

int ExportSession::tickedCount() const
{
    int n = 0;
    for (const FieldRow& f : m_fields)
        n += f.ticked ? 1 : 0;
    return n;
}

int ExportSession::fieldRow(const QString& name) const
{
    for (size_t i = 0; i < m_fields.size(); ++i) {
        if (m_fields[i].name == name)
            return static_cast<int>(i) + 1;
    }
    return 0;
}

bool ExportSession::toggleField(int row, bool ticked)
{
    if (!CatalogueReady || row < 1 || row > static_cast<int>(m_fields.size()))
        return false;
    CancelRequested = false;
    FieldRow& target = m_fields[static_cast<size_t>(row - 1)];
    if (ticked) {
        if (target.ticked)
            return true;
        int highest = 0;
        for (const FieldRow& f : m_fields)
            highest = qMax(highest, f.order);
        target.ticked = true;
        target.order = highest + 1;
        return true;
    }
    const int removed = target.order;
    target.ticked = false;
    target.order = 0;
    if (removed > 0) {
        for (FieldRow& f : m_fields) {
            if (f.order > removed)
                --f.order;
        }
    }
    return true;
}

void ExportSession::setHeaderText(int row, const QString& text)
{
    if (row >= 1 && row <= static_cast<int>(m_fields.size()))
        m_fields[static_cast<size_t>(row - 1)].header = text;
}

std::vector<ExportSession::OutputField> ExportSession::outputFields() const
{
    std::vector<OutputField> out;
    for (int c = 2; c <= OutputColumnCount; ++c) {
        const QString name = m_grid.header(c);
        const int row = fieldRow(name);
        if (row > 0) {
            const FieldRow& f = field(row);
            out.push_back({f.name, f.type, f.header});
        } else {
            out.push_back({name, QString(), name});
        }
    }
    return out;
}

void ExportSession::clearRecordGridHeaders()
{
    CatalogueReady = false;
    for (int c = 2; c <= OutputColumnCount; ++c)
        m_grid.setHeader(c, QString());
    CatalogueReady = true;
}

void ExportSession::clearRecordGrid()
{
    CatalogueReady = false;
    m_grid.setRowCount(0);
    m_grid.setLocked(false);
    ExportRecordCount = 0;
    CatalogueReady = true;
}

void ExportSession::clearRowBuffer()
{
    for (int i = 1; i <= FieldCount && i < static_cast<int>(ExportRowBuffer.size()); ++i)
        ExportRowBuffer[static_cast<size_t>(i)] = QString();
}

void ExportSession::applyFieldSelection()
{
    int c = 2;
    for (size_t i = 0; i < m_fields.size(); ++i) {
        const FieldRow& f = m_fields[i];
        if (!f.ticked)
            continue;
        m_grid.setHeader(f.order + 1, f.name);
        m_grid.setColumnWidth(f.order + 1, qMax<int>(RecordGrid::kMinColumnWidth, f.name.size()));
        const size_t r = i + 1;
        if (r < ExportRowBuffer.size())
            ExportRowBuffer[r] = f.name;
        ++c;
    }
    OutputColumnCount = c - 1;
}

void ExportSession::reset()
{
    CatalogueReady = false;
    msTableSelected.clear();
    m_dataSet = nullptr;
    m_fields.clear();
    FieldCount = 0;
    OutputColumnCount = 0;
    ExportRecordCount = 0;
    m_grid.setRowCount(0);
    m_grid.setColumnCount(0);
}

} // namespace tp
