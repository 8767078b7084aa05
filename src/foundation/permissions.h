#pragma once
#include <QString>

namespace tp {

// May the signed-in user (globals().UserID) use the function? Codes "IMP", "EXP", "EXP2".
// Administrators pass for every code. A UserID that is not a whole number is refused
// without running any statement.
bool CheckPermission(const QString& formCode, int formId);

} // namespace tp
