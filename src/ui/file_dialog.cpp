#include "ui/file_dialog.h"

#include <QFileDialog>

namespace tp::ui {

QString QtFilter(const QString& filter)
{
    const QStringList parts = filter.split(QLatin1Char('|'));
    QStringList out;
    for (int i = 0; i + 1 < parts.size(); i += 2) {
        const QString description = parts.at(i).trimmed();
        const QString pattern = parts.at(i + 1).trimmed().replace(QLatin1Char(';'), QLatin1Char(' '));
        out << (description.contains(QLatin1Char('(')) ? description
                                                       : description + QStringLiteral(" (") + pattern + QLatin1Char(')'));
    }
    if (parts.size() % 2 == 1 && !parts.last().trimmed().isEmpty())
        out << parts.last().trimmed();
    return out.join(QStringLiteral(";;"));
}

QString QtFileDialog::saveFileName(const QString& title, const QString& filter)
{
    return QFileDialog::getSaveFileName(m_parent, title, QString(), QtFilter(filter));
}

QString QtFileDialog::openFileName(const QString& title, const QString& filter)
{
    return QFileDialog::getOpenFileName(m_parent, title, QString(), QtFilter(filter));
}

namespace {
QString next(std::deque<QString>& names)
{
    if (names.empty())
        return QString();
    QString name = names.front();
    names.pop_front();
    return name;
}
} // namespace

QString ScriptedFileDialog::saveFileName(const QString& /*title*/, const QString& filter)
{
    requests << QStringLiteral("save:") + filter;
    return next(names);
}

QString ScriptedFileDialog::openFileName(const QString& /*title*/, const QString& filter)
{
    requests << QStringLiteral("open:") + filter;
    return next(names);
}

} // namespace tp::ui
