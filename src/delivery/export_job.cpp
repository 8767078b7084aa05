#include "delivery/export_job.h"

#include "export/availability.h"
#include "delivery/export_lock.h"
#include "foundation/dao.h"
#include "foundation/feedback.h"

#include <optional>

namespace tp {

namespace {

// Types each record's getter texts and writes them as one line.
class FileSink : public RecordSink {
public:
    // refuseEmpty: an empty selection writes no file (the records were exported meanwhile).
    FileSink(const ExportJob& job, ExportFileWriter& writer, Feedback& feedback, bool refuseEmpty)
        : m_job(job), m_writer(writer), m_feedback(feedback), m_refuseEmpty(refuseEmpty)
    {
        for (const OutputColumn& c : job.columns) {
            m_headers << c.header;
            m_types.push_back(fieldTypeOf(c.dataType));
        }
        m_values.resize(job.columns.size());
    }

    bool begin(qint64 total) override
    {
        m_total = total;
        if (m_refuseEmpty && total == 0) {
            m_nothingLeft = true;
            return false;
        }
        return m_writer.open(m_job.fileName) && m_writer.writeHeader(m_headers);
    }

    bool record(const QStringList& texts) override
    {
        for (qsizetype c = 0; c < qsizetype(m_values.size()); ++c)
            m_values[std::size_t(c)] = TypeValue(c < texts.size() ? texts.at(c) : QString(),
                                                 m_types[std::size_t(c)]);
        if (!m_writer.writeLine(m_values))
            return false;
        ++m_written;
        if (m_throttle.due(m_written, m_total))
            showSaving();
        return true;
    }

    void showSaving()
    {
        if (m_written > 0)
            m_feedback.status(QStringLiteral("Saving Record # ") + QString::number(m_written) +
                              QStringLiteral(" Of ") + QString::number(m_total));
    }

    qint64 written() const { return m_written; }
    bool nothingLeft() const { return m_nothingLeft; }

private:
    const ExportJob& m_job;
    ExportFileWriter& m_writer;
    Feedback& m_feedback;
    bool m_refuseEmpty;
    bool m_nothingLeft = false;
    QStringList m_headers;
    std::vector<FieldType> m_types;
    std::vector<ExportValue> m_values;
    qint64 m_total = 0;
    qint64 m_written = 0;
    ProgressThrottle m_throttle;
};

} // namespace

ExportJobResult runExport(const ExportJob& job, ExportAssembler& assembler, Feedback& feedback,
                          bool& cancel)
{
    ExportJobResult result;
    if (!job.fileName.isEmpty() && isReadOnlyFile(job.fileName)) {
        feedback.message(0, kReadOnlyFileMessage, kBoxTitle);
        feedback.busy(false);
        result.outcome = ExportJobResult::ReadOnlyRefused;
        return result;
    }
    auto finish = [&](ExportJobResult::Outcome outcome, const QString& status) {
        result.outcome = outcome;
        result.status = status;
        feedback.status(status);
        feedback.progress(0, 0);
        feedback.busy(false);
        return result;
    };
    if (job.fileName.isEmpty())
        return finish(ExportJobResult::NoFileName, kFileNameEmpty);
    if (job.markAfterSuccess && !job.database)
        return finish(ExportJobResult::Failed, QStringLiteral("No database") + kExportUnsuccessful);

    ExportRequest request = job.request;
    request.fields.clear();
    for (const OutputColumn& c : job.columns)
        request.fields << c.fieldName;

    const bool marks = job.markAfterSuccess;
    // Declared before the writer: the lock is let go only after the file is settled.
    std::optional<ExportLock> lock;
    if (marks) {
        lock.emplace(*job.database, feedback);
        switch (lock->acquire(request.table, cancel)) {
        case ExportLock::Outcome::Taken:
            break;
        case ExportLock::Outcome::Cancelled:
            return finish(ExportJobResult::Cancelled, kFileNameEmpty);
        case ExportLock::Outcome::TimedOut:
        case ExportLock::Outcome::Failed:
            return finish(ExportJobResult::Failed, lock->errorString() + kExportUnsuccessful);
        }
    }

    ExportFileWriter writer(job.encoding);
    FileSink sink(job, writer, feedback, marks);
    LoadResult load = assembler.load(request, sink, cancel);
    result.records = sink.written();

    switch (load.outcome) {
    case LoadOutcome::Completed:
        break;
    case LoadOutcome::Cancelled:
    case LoadOutcome::Declined:
        writer.discard();
        return finish(load.outcome == LoadOutcome::Declined ? ExportJobResult::Declined
                                                            : ExportJobResult::Cancelled,
                      kFileNameEmpty);
    case LoadOutcome::Failed:
    case LoadOutcome::Aborted: {
        writer.discard();
        if (load.outcome == LoadOutcome::Aborted && sink.nothingLeft())
            return finish(ExportJobResult::NothingLeft, avail::kNoRecordsAvailable);
        const QString error = load.outcome == LoadOutcome::Failed ? load.error
                                                                  : writer.errorString();
        return finish(ExportJobResult::Failed, error + kExportUnsuccessful);
    }
    }
    if (marks && sink.written() == 0) {   // the selection emptied while it was read
        writer.discard();
        return finish(ExportJobResult::NothingLeft, avail::kNoRecordsAvailable);
    }
    if (!writer.finish()) {
        writer.discard();
        return finish(ExportJobResult::Failed, writer.errorString() + kExportUnsuccessful);
    }
    sink.showSaving();
    if (!marks) {
        if (!writer.putInPlace())
            return finish(ExportJobResult::Failed, writer.errorString() + kExportUnsuccessful);
        writer.commit();
        return finish(ExportJobResult::Completed, kExportCompleted);
    }

    // The marks are made, then the file takes its name, then the marks are committed: a
    // failure anywhere undoes both.
    cDAO& db = *job.database;
    ExportFaults faults;
    bool begun = false;
    auto undo = [&](const QString& cause) {
        if (begun)
            db.Rollback();
        writer.restore();
        writer.discard();
        // A server's report can run over lines (context, state): the status takes the first.
        return finish(ExportJobResult::Failed, cause.section(QLatin1Char('\n'), 0, 0).trimmed() +
                                                   kExportUnsuccessful);
    };
    const QString injected = QStringLiteral("Injected failure");
    if (faults.at(QStringLiteral("synced")))
        return undo(injected);
    begun = db.BeginTrans();
    if (!begun)
        return undo(db.errorText);
    const qint64 marked = assembler.mark(request, &load.rows);
    if (marked < 0)
        return undo(db.errorText.isEmpty() ? QStringLiteral("The records could not be marked")
                                           : db.errorText);
    if (faults.at(QStringLiteral("marked")))
        return undo(injected);
    if (!writer.putInPlace())
        return undo(writer.errorString());
    if (faults.at(QStringLiteral("renamed")))
        return undo(injected);
    if (!db.CommitTrans()) {
        const QString cause = db.errorText.section(QLatin1Char('\n'), 0, 0).trimmed();
        // A server that went away during the commit may have committed it or not; nobody can
        // tell from here. The file stays beside the earlier one, so no marked record is lost.
        if (db.isPostgres() && !db.RecSet_Forward(QStringLiteral("Select 1"))) {
            const QString kept = writer.keepCopy(QStringLiteral(".unconfirmed"));
            if (!kept.isEmpty())
                return undo(cause + QStringLiteral("; the records may have been marked: the file "
                                                   "written is kept as ") + kept);
        }
        return undo(cause);
    }
    begun = false;
    writer.commit();
    faults.at(QStringLiteral("committed"));
    lock->release();
    result.marked = marked;
    return finish(ExportJobResult::Completed, kExportCompleted);
}

} // namespace tp
