#include "delivery/export_faults.h"

#include <QThread>

#include <csignal>
#include <cstdlib>

namespace tp {

ExportFaults::ExportFaults()
{
    const QString spec = qEnvironmentVariable("TALLYPORT_EXPORT_FAULT");
    const qsizetype colon = spec.lastIndexOf(QLatin1Char(':'));
    if (colon <= 0)
        return;
    m_point = spec.left(colon);
    m_action = spec.mid(colon + 1);
    if (m_point.startsWith(QLatin1String("lines="))) {
        bool ok = false;
        m_line = m_point.mid(6).toLongLong(&ok);
        if (!ok)
            m_point.clear();
    }
}

bool ExportFaults::act()
{
    if (m_action == QLatin1String("kill")) {
        std::raise(SIGKILL);
        std::abort();
    }
    if (m_action.startsWith(QLatin1String("sleep"))) {
        QThread::msleep(m_action.mid(5).toULong());
        return false;
    }
    return m_action == QLatin1String("fail");
}

bool ExportFaults::at(const QString& point)
{
    return !m_point.isEmpty() && m_line < 0 && point == m_point && act();
}

bool ExportFaults::afterLine(qint64 n)
{
    return m_line >= 0 && n == m_line && act();
}

} // namespace tp
