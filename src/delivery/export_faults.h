#pragma once
// Stops an export at a named point, so that tests can show what a failure or a kill at that
// moment leaves behind. Driven by TALLYPORT_EXPORT_FAULT="<point>:<action>", where point is
// one of "lines=N" (after the N-th record line), "synced" (file on disk, nothing marked),
// "marked" (marks made, not committed), "renamed" (file in place, marks not committed) or
// "committed", and action is "fail" (the step fails; at lines=N with "No space left on
// device"), "kill" (the process dies at once, as with SIGKILL) or "sleepMS" (waits MS ms).
// Unset, it costs one look at the environment per run.
#include <QString>

namespace tp {

class ExportFaults {
public:
    ExportFaults();   // reads the environment
    // True when the step at point should fail. Kills or waits when told to.
    bool at(const QString& point);
    // The same for "lines=N" after the n-th record line.
    bool afterLine(qint64 n);
    bool active() const { return !m_point.isEmpty(); }

private:
    bool act();
    QString m_point;
    QString m_action;
    qint64 m_line = -1;
};

} // namespace tp
