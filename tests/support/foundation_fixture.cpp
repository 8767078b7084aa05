#include "support/foundation_fixture.h"

#include "foundation/globals.h"
#include "foundation/log.h"

#include <QDir>
#include <QFile>

namespace tp::test {

ScopedSettingsDir::ScopedSettingsDir()
    : m_previous(qgetenv("TALLYPORT_SETTINGS_DIR")), m_hadPrevious(qEnvironmentVariableIsSet("TALLYPORT_SETTINGS_DIR"))
{
    qputenv("TALLYPORT_SETTINGS_DIR", QFile::encodeName(m_dir.path()));
}

ScopedSettingsDir::~ScopedSettingsDir()
{
    if (m_hadPrevious)
        qputenv("TALLYPORT_SETTINGS_DIR", m_previous);
    else
        qunsetenv("TALLYPORT_SETTINGS_DIR");
}

QString ScopedSettingsDir::write(const QString& name, const QByteArray& content) const
{
    const QString fileName = QDir(m_dir.path()).filePath(name);
    writeBytes(fileName, content);
    return fileName;
}

ScopedFoundation::ScopedFoundation()
{
    resetGlobals();
    setLogStem(QStringLiteral("tallyp"));
    setFeedback(&feedback);
}

ScopedFoundation::~ScopedFoundation()
{
    setFeedback(nullptr);
    resetGlobals();
    setLogStem(QString());
}

QByteArray readBytes(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();
    return file.readAll();
}

bool writeBytes(const QString& fileName, const QByteArray& content)
{
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    return file.write(content) == content.size();
}

} // namespace tp::test
