#pragma once
// Contents of the record grid: the ticked fields as columns and the scanned records as rows.
// Numbered like the grid control: columns from 1 (column 1 is "Record Number"), rows from 1,
// row 0 is the header row. The Export window mirrors this model into its grid.
#include <QString>
#include <QStringList>
#include <vector>

namespace tp {

class RecordGrid {
public:
    static constexpr int kMinColumnWidth = 10;   // characters

    int columnCount() const { return m_columns; }
    // Keeps what fits; new columns are empty with the minimum width.
    void setColumnCount(int count);
    int rowCount() const { return static_cast<int>(m_rows.size()); }
    void setRowCount(int count);

    // row 0: the header cell. Out-of-range cells read as "" and ignore writes.
    QString text(int column, int row) const;
    void setText(int column, int row, const QString& text);
    QString header(int column) const { return text(column, 0); }
    void setHeader(int column, const QString& text) { setText(column, 0, text); }
    // The first column whose header is name (exact), 0 if none.
    int headerColumn(const QString& name) const;

    // Width in characters, as the grid control counts it.
    int columnWidth(int column) const;
    void setColumnWidth(int column, int characters);

    // Read-only cells after a scan.
    bool locked() const { return m_locked; }
    void setLocked(bool locked) { m_locked = locked; ++m_revision; }

    // Grows at every change: the window re-reads the model when it differs from what it showed.
    quint64 revision() const { return m_revision; }

private:
    int m_columns = 0;
    QStringList m_headers;
    std::vector<int> m_widths;
    std::vector<QStringList> m_rows;
    bool m_locked = false;
    quint64 m_revision = 0;
};

} // namespace tp
