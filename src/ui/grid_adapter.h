#pragma once
// The spreadsheet-grid operations the windows use, over a QTableWidget. Numbering follows the
// grid control the windows were designed around: columns and rows from 1, row 0 is the
// column-header row; cell arguments are (column, row).
#include <QColor>
#include <QObject>
#include <QString>
#include <functional>

class QTableWidget;
class QTableWidgetItem;
class QKeyEvent;

namespace tp::ui {

class GridAdapter : public QObject {
    Q_OBJECT
public:
    enum class CellType { Text, StaticText, CheckBox };

    explicit GridAdapter(QTableWidget* table);

    QTableWidget* widget() const { return m_table; }

    int maxCols() const;
    void setMaxCols(int count);
    int maxRows() const;
    void setMaxRows(int count);

    // Row 0 reads and writes the column header.
    QString text(int column, int row) const;
    void setText(int column, int row, const QString& text);
    // Empties every cell (headers stay).
    void clearCells();

    CellType cellType(int column, int row) const;
    void setCellType(int column, int row, CellType type);
    bool isChecked(int column, int row) const;
    // A change made by the program: no buttonClicked signal.
    void setChecked(int column, int row, bool checked);

    // A locked cell cannot be typed into or ticked.
    bool isLocked(int column, int row) const;
    void setLocked(int column, int row, bool locked);
    void setAllLocked(bool locked);

    // Widths in characters of the grid's font.
    int colWidth(int column) const;
    void setColWidth(int column, int characters);

    QColor backColor(int column, int row) const;
    void setBackColor(int column, int row, const QColor& color);
    void setAllBackColor(const QColor& color);

    // A filter for typed characters: return false to discard the key. Navigation keys
    // (arrows, Tab, page keys) always pass.
    void setKeyFilter(std::function<bool(const QKeyEvent&)> filter) { m_keyFilter = std::move(filter); }

    // Runs f with the change signals held back: for filling the grid from the program.
    void programmatic(const std::function<void()>& f);

signals:
    // The user ticked (buttonDown 1) or unticked (0) a check-box cell.
    void buttonClicked(int column, int row, int buttonDown);
    // A mouse click released over a cell.
    void cellClicked(int column, int row);
    // The user finished editing a text cell.
    void textEdited(int column, int row, const QString& text);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QTableWidgetItem* item(int column, int row) const;   // created on demand for rows >= 1
    void applyFlags(QTableWidgetItem* it) const;
    void onItemChanged(QTableWidgetItem* it);

    QTableWidget* m_table;
    std::function<bool(const QKeyEvent&)> m_keyFilter;
    int m_quiet = 0;
};

} // namespace tp::ui
