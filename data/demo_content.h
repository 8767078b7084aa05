#pragma once
// The demo rows, made once and handed to whichever database writes them.
#include "demo_generator.h"
#include <QByteArray>
#include <QStringList>
#include <span>
#include <vector>

namespace tp {

struct DemoValue {
    enum Kind : quint8 { Null, Int, Real, Text };
    Kind kind = Null;
    qint64 i = 0;
    double d = 0;
    QByteArray s;   // UTF-8

    void setNull() { kind = Null; }
    void setInt(qint64 v) { kind = Int; i = v; }
    void setReal(double v) { kind = Real; d = v; }
    void setText(const QString& v) { kind = Text; s = v.toUtf8(); }
};

// Receives one table after the other. Every call returns false (with error set) to stop.
class DemoSink {
public:
    virtual ~DemoSink() = default;
    virtual bool beginTable(const QString& table, const QStringList& columns) = 0;
    virtual bool addRow(std::span<const DemoValue> row) = 0;
    virtual bool endTable() = 0;
    QString error;
};

// Same options and seed, same rows, on every machine.
bool generateDemoContent(const DemoOptions& options, DemoSink& sink, DemoSummary& summary);

// The statements of a schema script, comments removed, in file order.
QStringList schemaStatements(const QString& scriptText);

} // namespace tp
