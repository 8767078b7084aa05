#pragma once
// Shared set-up for tests of code that reads settings, writes the log or shows messages.
#include "foundation/feedback.h"

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

namespace tp::test {

// Points the settings folder at a fresh temporary folder for the lifetime of the object.
class ScopedSettingsDir {
public:
    ScopedSettingsDir();
    ~ScopedSettingsDir();
    ScopedSettingsDir(const ScopedSettingsDir&) = delete;
    ScopedSettingsDir& operator=(const ScopedSettingsDir&) = delete;

    QString path() const { return m_dir.path(); }
    // Writes a file into the folder (bytes as given) and returns its full name.
    QString write(const QString& name, const QByteArray& content) const;

private:
    QTemporaryDir m_dir;
    QByteArray m_previous;
    bool m_hadPrevious = false;
};

// Fresh globals, a recording feedback sink and the log stem "tallyp"; all undone afterwards.
class ScopedFoundation {
public:
    ScopedFoundation();
    ~ScopedFoundation();
    ScopedFoundation(const ScopedFoundation&) = delete;
    ScopedFoundation& operator=(const ScopedFoundation&) = delete;

    ScriptedFeedback feedback;
};

QByteArray readBytes(const QString& fileName);
bool writeBytes(const QString& fileName, const QByteArray& content);

} // namespace tp::test
