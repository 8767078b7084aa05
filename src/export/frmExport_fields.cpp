// The Export window's first stage: choosing the data set and the fields.
#include "export/frmExport.h"

#include "foundation/globals.h"
#include "ui/window_support.h"

#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScrollBar>
#include <QTableWidget>

namespace tp {

void frmExport::buildDataSetList()
{
    lstTables->clear();
    const QStringList offered = m_session.offeredDataSets();
    lstTables->addItems(offered);
    lstTables->show();
    if (offered.isEmpty()) {
        lstTables->setEnabled(false);
        lstTables->addItem(kNoSelectionAvailable);
    }
}

bool frmExport::chooseDataSet(const QString& listText)
{
    const auto items = lstTables->findItems(listText, Qt::MatchExactly);
    if (items.isEmpty() || !lstTables->isEnabled() || lstTables->isHidden())
        return false;
    lstTables->setCurrentItem(items.first());
    SelectDataSet();
    return m_session.dataSet() != nullptr;
}

void frmExport::SelectDataSet()
{
    if (lstTables->isHidden() || !lstTables->isEnabled())
        return;
    const QListWidgetItem* item = lstTables->currentItem();
    if (!item || !item->isSelected())
        return;
    if (!m_session.selectDataSet(item->text()))
        return;

    const ExportDataSet& set = *m_session.dataSet();
    lblSelection->setText(set.selectionCaption);
    fpFields->show();
    showFieldCatalogue();
    lstTables->hide();
    if (!set.allCaption.isEmpty())
        cmdAll->setText(set.allCaption);
    if (!set.dateCaption.isEmpty())
        cmdDate->setText(set.dateCaption);

    fpRecords->show();
    fpRecords->setEnabled(false);
    m_shownGridRevision = ~quint64(0);
    showRecordGrid();
    m_selectionPanel->show();
    m_actionBar->show();
    cmdAll->show();
    cmdDate->show();
    cmdAll->setEnabled(false);
    cmdDate->setEnabled(false);
    ui::setBoxColor(txtStart, ui::buttonFaceColor(this));
    ui::setBoxColor(txtStop, ui::buttonFaceColor(this));
    if (m_session.AvailabilityResult == -1)
        cmdPreviewExport->setEnabled(false);

    ui::placeWindow(this, 1000, 1000, 8700, 6855);
    // Ten records must show at the default size; a larger window gives the grids the room.
    const int rowHeight = fpRecords->verticalHeader()->defaultSectionSize();
    fpRecords->setMinimumHeight(10 * rowHeight + fpRecords->horizontalHeader()->sizeHint().height() +
                                2 * fpRecords->frameWidth() +
                                fpRecords->horizontalScrollBar()->sizeHint().height());
    resize(size().expandedTo(minimumSizeHint()));
    fpFields->setEnabled(m_session.AvailabilityResult == 1);
    m_session.reportAvailability();
}

void frmExport::showFieldCatalogue()
{
    m_fields->programmatic([&] {
        m_fields->setMaxRows(m_session.fieldCount());
        for (int r = 1; r <= m_session.fieldCount(); ++r) {
            const ExportSession::FieldRow& f = m_session.field(r);
            m_fields->setCellType(1, r, ui::GridAdapter::CellType::CheckBox);
            m_fields->setChecked(1, r, f.ticked);
            for (int c = 2; c <= 4; ++c)
                m_fields->setCellType(c, r, ui::GridAdapter::CellType::StaticText);
            m_fields->setText(2, r, m_session.fieldOrderText(r));
            m_fields->setText(3, r, f.name);
            m_fields->setText(4, r, f.type);
            m_fields->setText(5, r, f.header);
        }
    });
    fpFields->setCurrentItem(nullptr);
}

void frmExport::showFieldOrders()
{
    for (int r = 1; r <= m_session.fieldCount(); ++r) {
        m_fields->setText(2, r, m_session.fieldOrderText(r));
        m_fields->setChecked(1, r, m_session.field(r).ticked);
    }
}

void frmExport::clickFieldBox(int row, bool ticked)
{
    if (row < 1 || row > m_fields->maxRows() || m_fields->isLocked(1, row))
        return;
    QTableWidgetItem* it = fpFields->item(row - 1, 0);
    if (it)
        it->setCheckState(ticked ? Qt::Checked : Qt::Unchecked);   // as the mouse does it
}

void frmExport::ToggleField(int column, int row, int buttonDown)
{
    if (!m_session.CatalogueReady)
        return;
    m_session.CancelRequested = false;
    m_currentFieldColumn = column;
    m_currentFieldRow = row;

    if (buttonDown != 1) {
        m_session.toggleField(row, false);
    } else if (column == 1) {
        fpFields->setEnabled(true);
        m_session.toggleField(row, true);
    } else {
        fpFields->setEnabled(false);
    }
    showFieldOrders();

    const QString& table = m_session.msTableSelected;
    if (table != kTableGps) {
        cmdAll->setText(kSelectAllRecords);
        if (m_session.AvailableCount < 201)
            cmdAll->setEnabled(true);
    } else {
        cmdAll->setText(IsKrvSettings() ? kSelectEmployee : kSelectUnit);
        cmdDate->setEnabled(false);
    }
    if (table == kTableLocations)
        cmdDate->setEnabled(false);

    resetSelectionControls();
    ClearRecordGridHeaders();
    ClearRecordGrid();
    ClearRowBuffer();
    ApplyFieldSelection();
}

void frmExport::resetSelectionControls()
{
    m_session.resetSelection();
    cmdFormatDate->setText(QStringLiteral("Format Date"));
    cmdFormatTime->setText(QStringLiteral("Format Time"));
    cmdOK->setEnabled(false);
    for (QWidget* w : std::initializer_list<QWidget*>{lblStart, lblStop, cmdStart, cmdStop})
        w->setEnabled(false);
    for (QLineEdit* box : {txtStart, txtStop}) {
        box->clear();
        ui::setBoxColor(box, ui::scrollBarColor(this));
    }
    cmdStart->show();
    cmdStop->show();
}

void frmExport::ClearRecordGridHeaders()
{
    m_session.clearRecordGridHeaders();
    cmdFormatDate->setEnabled(false);
    cmdFormatTime->setEnabled(false);
    showRecordGrid();
}

void frmExport::ClearRecordGrid()
{
    cmdPreviewExport->setEnabled(false);
    m_session.clearRecordGrid();
    fpRecords->setEnabled(true);
    showRecordGrid();
}

void frmExport::ClearRowBuffer()
{
    m_session.clearRowBuffer();
}

void frmExport::ApplyFieldSelection()
{
    m_session.applyFieldSelection();
    showRecordGrid();

    const bool anyTicked = m_session.tickedCount() > 0;
    if (m_session.isTimeOrInventory()) {
        if (anyTicked) {
            if (m_session.AvailableCount < 201)
                cmdAll->setEnabled(true);
            cmdDate->setEnabled(true);
        } else {
            cmdAll->setEnabled(false);
            cmdDate->setEnabled(false);
        }
    } else {
        cmdAll->setEnabled(anyTicked);
    }
}

void frmExport::showRecordGrid()
{
    const RecordGrid& model = m_session.recordGrid();
    if (model.revision() == m_shownGridRevision)
        return;
    m_shownGridRevision = model.revision();
    m_records->programmatic([&] {
        m_records->setMaxCols(model.columnCount());
        m_records->setMaxRows(model.rowCount());
        for (int c = 1; c <= model.columnCount(); ++c) {
            m_records->setText(c, 0, model.header(c));
            m_records->setColWidth(c, model.columnWidth(c));
            for (int r = 1; r <= model.rowCount(); ++r) {
                m_records->setText(c, r, model.text(c, r));
                m_records->setLocked(c, r, model.locked());
            }
        }
    });
}

} // namespace tp
