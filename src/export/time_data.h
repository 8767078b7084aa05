#pragma once
// "Time Data": approved time records of JobTimeRecords, waiting under the request's export
// identifier, with the employee names looked up in EmployeeInfo.
#include "export/assembler.h"
#include "export/lookups.h"

#include <QHash>
#include <memory>
#include <optional>

namespace tp {

inline const QString kLumtrekSettings = QStringLiteral("lumtrek.ini");

class TimeAssembler : public ExportAssembler {
public:
    // The 15 fields of the data set, in slot order.
    static const QStringList& fieldNames();
    // Slot of a field name (case counts); -1 for a name the data set does not know.
    static int slotOf(const QString& fieldName);
    // The getter: the stored slot text as the file gets it (Date and Time formatted on request).
    static QString fieldText(int slot, const QString& stored, bool formatDate, bool formatTime);

    TimeAssembler(cDAO& db, Feedback& feedback);

    qint16 available(const ExportRequest& request) override;
    qint64 count(const ExportRequest& request) override;
    PreviewResult preview(const ExportRequest& request, qint64 recordCount,
                          int maxRows = 20) override;
    LoadResult load(const ExportRequest& request, RecordSink& sink, bool& cancel) override;
    qint64 mark(const ExportRequest& request, const ExportedRows* rows) override;

    Lookups& lookups() { return m_lookups; }

private:
    struct Names {
        QString first, last;   // held names of the last look-up
        QString single;        // the one Name of "lumtrek.ini"
    };
    struct CachedEmployee {
        bool found = false;
        QString first, last;
    };
    class Reader;

    // "WHERE ..." of the selection; nullopt when the dates are not numbers.
    std::optional<QString> where(const ExportRequest& request) const;
    std::unique_ptr<Recordset> openSelection(const QString& sql);
    // chunk: the first kChunkRows from a position added to condition, with the position's
    // columns (SQLite loads). top > 0: only the first top rows.
    QString selectSql(const ExportRequest& request, const QString& columns,
                      const QString& condition, bool chunk = false, int top = 0) const;
    void readFailed(const ExportRequest& request, qint64 index);
    const CachedEmployee& employee(qint32 number, bool lumtrek);

    cDAO& m_db;
    Feedback& m_feedback;
    Lookups m_lookups;
    QHash<qint32, CachedEmployee> m_employees;   // one pass's look-ups
};

} // namespace tp
