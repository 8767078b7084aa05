#include "export/export_job.h"

#include "foundation/feedback.h"

namespace tp {

namespace {

// Types each record's getter texts and writes them as one line.
class FileSink : public RecordSink {
public:
    FileSink(const ExportJob& job, ExportFileWriter& writer, Feedback& feedback)
        : m_job(job), m_writer(writer), m_feedback(feedback)
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

private:
    const ExportJob& m_job;
    ExportFileWriter& m_writer;
    Feedback& m_feedback;
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

    ExportRequest request = job.request;
    request.fields.clear();
    for (const OutputColumn& c : job.columns)
        request.fields << c.fieldName;

    ExportFileWriter writer(job.encoding);
    FileSink sink(job, writer, feedback);
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
        // What was written completely stays, as a failed run always left it.
        const QString error = load.outcome == LoadOutcome::Failed ? load.error
                                                                  : writer.errorString();
        writer.keepPartial();
        return finish(ExportJobResult::Failed, error + kExportUnsuccessful);
    }
    }
    if (!writer.finish()) {
        writer.keepPartial();
        return finish(ExportJobResult::Failed, writer.errorString() + kExportUnsuccessful);
    }
    sink.showSaving();
    result.rows = std::move(load.rows);
    finish(ExportJobResult::Completed, kExportCompleted);
    if (job.markAfterSuccess)
        result.marked = assembler.mark(request, &result.rows);
    return result;
}

} // namespace tp
