#pragma once
// Asking the user for a file name. The windows hold a FileDialog so that tests can answer
// with names of their own. Every call returns an empty name when the user cancels.
#include <QString>
#include <QStringList>
#include <deque>

class QWidget;

namespace tp::ui {

class FileDialog {
public:
    virtual ~FileDialog() = default;
    // filter in the "description|pattern|description|pattern" form, e.g.
    // "Text files (*.txt) | *.txt".
    virtual QString saveFileName(const QString& title, const QString& filter) = 0;
    virtual QString openFileName(const QString& title, const QString& filter) = 0;
};

// The "description|pattern" filter as Qt's file dialogs want it ("description (pattern);;...").
QString QtFilter(const QString& filter);

class QtFileDialog : public FileDialog {
public:
    explicit QtFileDialog(QWidget* parent) : m_parent(parent) {}
    QString saveFileName(const QString& title, const QString& filter) override;
    QString openFileName(const QString& title, const QString& filter) override;

private:
    QWidget* m_parent;
};

// Hands out queued names in order (empty when the queue is empty, as a cancel would) and
// records each request.
class ScriptedFileDialog : public FileDialog {
public:
    QString saveFileName(const QString& title, const QString& filter) override;
    QString openFileName(const QString& title, const QString& filter) override;

    std::deque<QString> names;
    QStringList requests;   // "save:" or "open:" + filter, in order
};

} // namespace tp::ui
