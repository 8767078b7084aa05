#include "foundation/permissions.h"

#include "foundation/dao.h"
#include "foundation/globals.h"
#include "foundation/sql_literal.h"

namespace tp {

namespace {

// A stored truth value: -1 or 1 (any non-zero number) is true; so are the texts "True"/"Yes".
bool storedTruth(const QVariant& v)
{
    if (!v.isValid() || v.isNull())
        return false;
    bool isNumber = false;
    const double n = v.toString().trimmed().toDouble(&isNumber);
    if (isNumber)
        return n != 0;
    const QString t = v.toString().trimmed();
    return t.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0
        || t.compare(QLatin1String("yes"), Qt::CaseInsensitive) == 0;
}

bool isAdministrator(cDAO& db, const QString& user)
{
    RecordsetPtr rs = db.RecSet_Stat(QStringLiteral("Select top 1 Administrator from UserNames where UserID=") + user);
    if (!rs)
        return false;
    const bool admin = !rs->atEnd() && storedTruth(rs->value(0));
    db.RS_Close(rs);
    return admin;
}

} // namespace

bool CheckPermission(const QString& formCode, int formId)
{
    // The id comes from the command line and is pasted into SQL: only a number may pass.
    const std::optional<QString> user = sql::wholeNumber(globals().UserID);
    cDAO* db = SharedDatabase();
    if (!user || !db)
        return false;

    if (isAdministrator(*db, *user))
        return true;

    const QString form = sql::number(qint64(formId));
    if (formCode == QLatin1String("IMP"))
        return db->Records_Exist(QStringLiteral("Select top 1 * from Permissions") + QStringLiteral(" Where FormID=")
                                 + form + QStringLiteral(" And UserID=") + *user
                                 + QStringLiteral(" And CanAdd = True") + QStringLiteral(" And CanModify = True"));
    if (formCode == QLatin1String("EXP"))
        return db->Records_Exist(QStringLiteral("Select top 1 * from Permissions") + QStringLiteral(" Where FormID=")
                                 + form + QStringLiteral(" And UserID=") + *user
                                 + QStringLiteral(" And CanView = True"));
    if (formCode == QLatin1String("EXP2"))
        return db->Reco_Count(QStringLiteral("Select  * from Permissions") + QStringLiteral(" Where UserID=") + *user
                              + QStringLiteral(" And CanView = True") + QStringLiteral(" And FormID in (")
                              + sql::number(qint64(31)) + QStringLiteral(",") + form + QStringLiteral(")"))
            == 2;
    return false;
}

} // namespace tp
