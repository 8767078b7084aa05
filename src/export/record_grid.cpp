#include "export/record_grid.h"

namespace tp {

void RecordGrid::setColumnCount(int count)
{
    count = qMax(0, count);
    m_columns = count;
    m_headers.resize(count);
    m_widths.resize(static_cast<size_t>(count), kMinColumnWidth);
    for (QStringList& row : m_rows)
        row.resize(count);
    ++m_revision;
}

void RecordGrid::setRowCount(int count)
{
    count = qMax(0, count);
    m_rows.resize(static_cast<size_t>(count));
    for (QStringList& row : m_rows)
        row.resize(m_columns);
    ++m_revision;
}

QString RecordGrid::text(int column, int row) const
{
    if (column < 1 || column > m_columns || row < 0 || row > rowCount())
        return QString();
    if (row == 0)
        return m_headers.at(column - 1);
    return m_rows[static_cast<size_t>(row - 1)].at(column - 1);
}

void RecordGrid::setText(int column, int row, const QString& text)
{
    if (column < 1 || column > m_columns || row < 0 || row > rowCount())
        return;
    if (row == 0)
        m_headers[column - 1] = text;
    else
        m_rows[static_cast<size_t>(row - 1)][column - 1] = text;
    ++m_revision;
}

int RecordGrid::headerColumn(const QString& name) const
{
    const int index = m_headers.indexOf(name);
    return index < 0 ? 0 : index + 1;
}

int RecordGrid::columnWidth(int column) const
{
    if (column < 1 || column > m_columns)
        return 0;
    return m_widths[static_cast<size_t>(column - 1)];
}

void RecordGrid::setColumnWidth(int column, int characters)
{
    if (column < 1 || column > m_columns)
        return;
    m_widths[static_cast<size_t>(column - 1)] = characters;
    ++m_revision;
}

} // namespace tp
