// The Import window's first stage: the data-set list, the specification grid and its ticks.
#include "import/frmImport.h"

#include "foundation/globals.h"
#include "ui/window_support.h"

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableWidget>

namespace tp {

void frmImport::buildDataSetList()
{
    m_offeredCount = ui::fillChoiceList(lstTables, m_session.offeredDataSets(), kImportNoSelection);
}

bool frmImport::chooseDataSet(const QString& listText)
{
    if (!ui::highlightEntry(lstTables, listText))
        return false;
    SelectDataSet();
    return m_session.dataSet() != nullptr;
}

void frmImport::SelectDataSet()
{
    if (lstTables->isHidden() || !lstTables->isEnabled())
        return;
    const QListWidgetItem* item = lstTables->currentItem();
    if (!item || !item->isSelected())
        return;
    m_feedback->busy(true);
    // The entry is taken by its text: a list that offers only some data sets still imports
    // the one the user sees.
    if (m_session.selectDataSet(item->text())) {
        const ImportDataSetInfo& set = *m_session.dataSet();
        lblSelection->setText(set.selectionCaption);
        lblFileFormat->setText(set.fileFormatCaption);
        m_dataPanel->show();
        fpFields->show();
        showSpecRows();
        lstTables->hide();
    }
    cmdOk->show();
    txtFormat->show();
    lblFileFormat->show();
    showFormat();
    ui::placeWindow(this, 1000, 1000, 8700, 5625);
    m_feedback->busy(false);
}

void frmImport::showSpecRows()
{
    m_gridFilled = false;
    m_fields->programmatic([&] {
        m_fields->clearCells();
        m_fields->setMaxRows(m_session.rowCount());
        for (const FieldSpec& spec : m_session.rows()) {
            m_fields->setCellType(1, spec.row, ui::GridAdapter::CellType::CheckBox);
            m_fields->setLocked(1, spec.row, false);
            m_fields->setChecked(1, spec.row, spec.ticked);
            m_fields->setLocked(1, spec.row, spec.required);
            for (int c = 2; c <= 5; ++c) {
                m_fields->setCellType(c, spec.row, ui::GridAdapter::CellType::StaticText);
                m_fields->setText(c, spec.row, spec.columnText(c));
            }
        }
    });
    fpFields->setCurrentItem(nullptr);
    m_gridFilled = true;
}

void frmImport::showTicks()
{
    m_fields->programmatic([&] {
        for (const FieldSpec& spec : m_session.rows())
            m_fields->setChecked(1, spec.row, spec.ticked);
    });
}

void frmImport::clickFieldBox(int row, bool ticked)
{
    if (row < 1 || row > m_fields->maxRows() || m_fields->isLocked(1, row))
        return;
    if (QTableWidgetItem* it = fpFields->item(row - 1, 0))
        it->setCheckState(ticked ? Qt::Checked : Qt::Unchecked);   // as the mouse does it
}

void frmImport::TickClicked(int column, int row, int buttonDown)
{
    if (!m_gridFilled || column != 1)
        return;
    if (!txtName->text().isEmpty() && !txtPath->text().isEmpty())
        cmdOk->setEnabled(true);
    m_session.setTicked(row, buttonDown == 1);
    cmdImportToDB->setEnabled(false);
    m_status->setText(QString());
    showFormat();
    showTicks();
}

void frmImport::ToggleAllTicks()
{
    if (!m_gridFilled || fpFields->isHidden())
        return;
    m_session.toggleAllTicks();
    showTicks();
}

void frmImport::ChangeDataType()
{
    m_session.clearDataSet();
    showFormat();
    m_status->setText(QString());
    showChoiceState();
    ui::placeWindow(this, 1000, 2000, 3775, 3630);
    buildDataSetList();
}

} // namespace tp
