#pragma once
// The one way values enter SQL text. Numbers must be numbers; texts have their quotes doubled.
#include <QString>
#include <optional>

namespace tp::sql {

// A text literal: 'text' with every ' doubled.
QString text(const QString& value);

// A whole-number literal. Returns nullopt unless value (blanks around allowed) is an optional
// sign followed by digits and fits in 64 bits; the result is the canonical decimal text.
std::optional<QString> wholeNumber(const QString& value);
QString number(qint64 value);

// A decimal-number literal (period separator, optional sign, optional exponent); nullopt otherwise.
std::optional<QString> decimalNumber(const QString& value);
QString number(double value);

} // namespace tp::sql
