#include "ui/grid_adapter.h"

#include <QEvent>
#include <QFontMetrics>
#include <QHeaderView>
#include <QKeyEvent>
#include <QTableWidget>

namespace tp::ui {

namespace {

constexpr int kTypeRole = Qt::UserRole + 1;
constexpr int kLockedRole = Qt::UserRole + 2;
constexpr int kShownCheckRole = Qt::UserRole + 3;   // the tick last reported
constexpr int kWidthRole = Qt::UserRole + 4;        // header item: width in characters
constexpr int kCellPadding = 14;                    // pixels beside the text of a column

bool isNavigationKey(int key)
{
    switch (key) {
    case Qt::Key_Tab: case Qt::Key_Backtab: case Qt::Key_Left: case Qt::Key_Right:
    case Qt::Key_Up: case Qt::Key_Down: case Qt::Key_Home: case Qt::Key_End:
    case Qt::Key_PageUp: case Qt::Key_PageDown:
        return true;
    default:
        return false;
    }
}

// The width of one character of a grid column: the mean over the small letters with a tenth
// added for capitals, so that a column as wide as a field name in characters shows the name.
int characterWidth(const QFont& font)
{
    static const QString letters = QStringLiteral("abcdefghijklmnopqrstuvwxyz");
    const QFontMetrics fm(font);
    return qRound(fm.horizontalAdvance(letters) * 1.1 / letters.size());
}

} // namespace

GridAdapter::GridAdapter(QTableWidget* table) : QObject(table), m_table(table)
{
    m_table->installEventFilter(this);
    connect(m_table, &QTableWidget::itemChanged, this, &GridAdapter::onItemChanged);
    connect(m_table, &QTableWidget::cellClicked, this,
            [this](int row, int column) { emit cellClicked(column + 1, row + 1); });
}

void GridAdapter::programmatic(const std::function<void()>& f)
{
    ++m_quiet;
    f();
    --m_quiet;
}

int GridAdapter::maxCols() const { return m_table->columnCount(); }

void GridAdapter::setMaxCols(int count)
{
    programmatic([&] {
        const int old = m_table->columnCount();
        m_table->setColumnCount(qMax(0, count));
        for (int c = old + 1; c <= count; ++c)
            setColWidth(c, 8);
    });
}

int GridAdapter::maxRows() const { return m_table->rowCount(); }

void GridAdapter::setMaxRows(int count)
{
    programmatic([&] { m_table->setRowCount(qMax(0, count)); });
}

QTableWidgetItem* GridAdapter::item(int column, int row) const
{
    if (column < 1 || column > maxCols() || row < 1 || row > maxRows())
        return nullptr;
    QTableWidgetItem* it = m_table->item(row - 1, column - 1);
    if (!it) {
        it = new QTableWidgetItem;
        it->setData(kTypeRole, int(CellType::Text));
        auto* self = const_cast<GridAdapter*>(this);
        self->programmatic([&] {
            m_table->setItem(row - 1, column - 1, it);
            applyFlags(it);
        });
    }
    return it;
}

QString GridAdapter::text(int column, int row) const
{
    if (row == 0) {
        const QTableWidgetItem* h = column >= 1 && column <= maxCols()
                                        ? m_table->horizontalHeaderItem(column - 1) : nullptr;
        return h ? h->text() : QString();
    }
    if (column < 1 || column > maxCols() || row < 1 || row > maxRows())
        return QString();
    const QTableWidgetItem* it = m_table->item(row - 1, column - 1);
    return it ? it->text() : QString();
}

void GridAdapter::setText(int column, int row, const QString& text)
{
    if (row == 0) {
        if (column < 1 || column > maxCols())
            return;
        QTableWidgetItem* h = m_table->horizontalHeaderItem(column - 1);
        if (!h) {
            h = new QTableWidgetItem;
            m_table->setHorizontalHeaderItem(column - 1, h);
        }
        h->setText(text);
        return;
    }
    if (QTableWidgetItem* it = item(column, row))
        programmatic([&] { it->setText(text); });
}

void GridAdapter::clearCells()
{
    programmatic([&] {
        for (int r = 0; r < m_table->rowCount(); ++r)
            for (int c = 0; c < m_table->columnCount(); ++c)
                if (QTableWidgetItem* it = m_table->item(r, c))
                    it->setText(QString());
    });
}

GridAdapter::CellType GridAdapter::cellType(int column, int row) const
{
    const QTableWidgetItem* it = m_table->item(row - 1, column - 1);
    return it ? CellType(it->data(kTypeRole).toInt()) : CellType::Text;
}

void GridAdapter::applyFlags(QTableWidgetItem* it) const
{
    const auto type = CellType(it->data(kTypeRole).toInt());
    const bool locked = it->data(kLockedRole).toBool();
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (type == CellType::Text && !locked)
        flags |= Qt::ItemIsEditable;
    if (type == CellType::CheckBox && !locked)
        flags |= Qt::ItemIsUserCheckable;
    it->setFlags(flags);
}

void GridAdapter::setCellType(int column, int row, CellType type)
{
    QTableWidgetItem* it = item(column, row);
    if (!it)
        return;
    programmatic([&] {
        it->setData(kTypeRole, int(type));
        if (type == CellType::CheckBox) {
            if (it->data(Qt::CheckStateRole).isNull())
                it->setCheckState(Qt::Unchecked);
            it->setData(kShownCheckRole, it->checkState() == Qt::Checked);
        } else {
            it->setData(Qt::CheckStateRole, QVariant());
        }
        applyFlags(it);
    });
}

bool GridAdapter::isChecked(int column, int row) const
{
    const QTableWidgetItem* it = m_table->item(row - 1, column - 1);
    return it && it->data(kTypeRole).toInt() == int(CellType::CheckBox) &&
           it->checkState() == Qt::Checked;
}

void GridAdapter::setChecked(int column, int row, bool checked)
{
    QTableWidgetItem* it = item(column, row);
    if (!it || CellType(it->data(kTypeRole).toInt()) != CellType::CheckBox)
        return;
    programmatic([&] {
        it->setCheckState(checked ? Qt::Checked : Qt::Unchecked);
        it->setData(kShownCheckRole, checked);
    });
}

bool GridAdapter::isLocked(int column, int row) const
{
    const QTableWidgetItem* it = m_table->item(row - 1, column - 1);
    return it && it->data(kLockedRole).toBool();
}

void GridAdapter::setLocked(int column, int row, bool locked)
{
    QTableWidgetItem* it = item(column, row);
    if (!it)
        return;
    programmatic([&] {
        it->setData(kLockedRole, locked);
        applyFlags(it);
    });
}

void GridAdapter::setAllLocked(bool locked)
{
    for (int r = 1; r <= maxRows(); ++r)
        for (int c = 1; c <= maxCols(); ++c)
            setLocked(c, r, locked);
}

int GridAdapter::colWidth(int column) const
{
    const QTableWidgetItem* h = column >= 1 && column <= maxCols()
                                    ? m_table->horizontalHeaderItem(column - 1) : nullptr;
    return h ? h->data(kWidthRole).toInt() : 0;
}

void GridAdapter::setColWidth(int column, int characters)
{
    if (column < 1 || column > maxCols())
        return;
    QTableWidgetItem* h = m_table->horizontalHeaderItem(column - 1);
    if (!h) {
        h = new QTableWidgetItem;
        m_table->setHorizontalHeaderItem(column - 1, h);
    }
    h->setData(kWidthRole, characters);
    m_table->setColumnWidth(column - 1, characters * characterWidth(m_table->font()) + kCellPadding);
}

QColor GridAdapter::backColor(int column, int row) const
{
    const QTableWidgetItem* it = m_table->item(row - 1, column - 1);
    if (it && it->background().style() != Qt::NoBrush)
        return it->background().color();
    return m_table->palette().color(QPalette::Base);
}

void GridAdapter::setBackColor(int column, int row, const QColor& color)
{
    if (QTableWidgetItem* it = item(column, row))
        programmatic([&] { it->setBackground(color); });
}

void GridAdapter::setAllBackColor(const QColor& color)
{
    for (int r = 1; r <= maxRows(); ++r)
        for (int c = 1; c <= maxCols(); ++c)
            setBackColor(c, r, color);
}

void GridAdapter::onItemChanged(QTableWidgetItem* it)
{
    if (m_quiet > 0)
        return;
    const int column = it->column() + 1;
    const int row = it->row() + 1;
    if (CellType(it->data(kTypeRole).toInt()) == CellType::CheckBox) {
        const bool checked = it->checkState() == Qt::Checked;
        if (checked == it->data(kShownCheckRole).toBool())
            return;
        programmatic([&] { it->setData(kShownCheckRole, checked); });
        emit buttonClicked(column, row, checked ? 1 : 0);
        return;
    }
    emit textEdited(column, row, it->text());
}

bool GridAdapter::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_table && event->type() == QEvent::KeyPress && m_keyFilter) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (!isNavigationKey(key->key()) && !key->text().isEmpty() && !m_keyFilter(*key))
            return true;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace tp::ui
