#include "demo_content.h"
#include "demo_names.h"

#include <QDate>
#include <QRegularExpression>
#include <algorithm>
#include <cmath>
#include <numbers>

namespace tp {
namespace {

using namespace demo_names;

// splitmix64: small, fast and the same everywhere (the standard distributions are not).
class Rng {
public:
    explicit Rng(quint64 seed) : m_state(seed) {}
    quint64 next()
    {
        quint64 z = (m_state += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }
    int below(qint64 n) { return n <= 1 ? 0 : int(next() % quint64(n)); }
    int between(int lo, int hi) { return lo + below(qint64(hi) - lo + 1); }
    double unit() { return double(next() >> 11) * 0x1.0p-53; }
    double range(double lo, double hi) { return lo + (hi - lo) * unit(); }
    bool chance(double p) { return unit() < p; }
    template <typename List> auto pick(const List& list) { return list[below(qint64(list.size()))]; }

private:
    quint64 m_state;
};

// One stream per table, so that changing one count leaves the other tables as they were.
Rng stream(quint32 seed, quint64 salt) { return Rng((quint64(seed) << 32) ^ (salt * 0xD1B54A32D192ED03ull)); }

class Row {
public:
    explicit Row(int columns) : m_values(size_t(columns)) {}
    Row& whole(qint64 v) { m_values[m_at++].setInt(v); return *this; }
    Row& real(double v) { m_values[m_at++].setReal(v); return *this; }
    Row& text(const QString& v) { m_values[m_at++].setText(v); return *this; }
    Row& null() { m_values[m_at++].setNull(); return *this; }
    bool send(DemoSink& sink)
    {
        m_at = 0;
        return sink.addRow(m_values);
    }

private:
    std::vector<DemoValue> m_values;
    size_t m_at = 0;
};

constexpr qint64 kTrue = -1;   // how the product stores a true value
constexpr int kBranchCount = int(kBranches.size());

qint64 clockNumber(int seconds)
{
    seconds = std::clamp(seconds, 0, 86399);
    return qint64(seconds / 3600) * 10000 + (seconds / 60 % 60) * 100 + seconds % 60;
}

qint64 dateNumber(const QDate& d) { return qint64(d.year()) * 10000 + d.month() * 100 + d.day(); }

double round6(double v) { return std::round(v * 1e6) / 1e6; }

QString digits(Rng& rng, int count)
{
    QString s;
    for (int i = 0; i < count; ++i)
        s += QChar('0' + rng.below(10));
    return s;
}

QString phone(Rng& rng, const Branch& b)
{
    return QStringLiteral("(%1) 555-%2").arg(QLatin1String(b.area), digits(rng, 4));
}

QString zip(Rng& rng, const Branch& b)
{
    return rng.chance(0.5) ? QString::fromLatin1(b.zip) : QString::fromLatin1(b.zip) + '-' + digits(rng, 4);
}

QString street(Rng& rng) { return QString::number(rng.between(10, 9899)) + ' ' + QLatin1String(rng.pick(kStreets)); }

QString suite(Rng& rng) { return rng.chance(0.3) ? QStringLiteral("Suite %1").arg(rng.between(100, 950)) : QString(); }

// Status of a time or inventory record: older records have been exported, recent ones wait.
struct ExportState {
    int approved, exportId;
    int kind;   // index into the summary counts: waiting, exported, unapproved, approved again
};

ExportState exportState(double dayFraction, Rng& rng)
{
    static constexpr ExportState states[] = {{1, 0, 0}, {2, 1, 1}, {0, 0, 2}, {1, 1, 3}};
    if (dayFraction < 0.6)
        return states[rng.chance(0.03) ? 3 : 1];
    return states[rng.chance(0.2) ? 2 : 0];
}

struct Person {
    qint64 number;
    QString first, last;
    int branch, vehicle;
};

class Generator {
public:
    Generator(const DemoOptions& o, DemoSink& sink, DemoSummary& s) : m_opt(o), m_sink(sink), m_sum(s) {}

    bool run()
    {
        if (!prepareDays())
            return false;
        return lookupTables() && users() && employees() && vehicles() && customers() && locations()
            && timeRecords() && inventory() && tracksAndPoints();
    }

private:
    bool fail(const QString& text)
    {
        m_sink.error = text;
        return false;
    }

    bool table(const QString& name, const QStringList& columns) { return m_sink.beginTable(name, columns); }
    bool done() { return m_sink.endTable(); }

    bool prepareDays()
    {
        if (m_opt.employees < 1 || m_opt.vehicles < 1 || m_opt.customers < 1 || m_opt.months < 1
            || m_opt.locations < 0 || m_opt.timeRecords < 0 || m_opt.inventoryRecords < 0
            || m_opt.tracks < 0 || m_opt.gpsPoints < 0)
            return fail(QStringLiteral("Counts must not be negative; employees, vehicles, customers and months at least 1."));
        const QDate first = QDate::fromString(QString::number(m_opt.firstDate), QStringLiteral("yyyyMMdd"));
        if (!first.isValid())
            return fail(QStringLiteral("The first date must be a date YYYYMMDD."));
        const QDate end = first.addMonths(m_opt.months);
        for (QDate d = first; d < end; d = d.addDays(1))
            if (d.dayOfWeek() <= 5)
                m_days.push_back(dateNumber(d));
        if (m_days.empty())
            return fail(QStringLiteral("The date range holds no working day."));
        m_sum.firstDate = int(m_days.front());
        m_sum.lastDate = int(m_days.back());
        return true;
    }

    // Day of the i-th of n records spread evenly over the working days, in date order.
    int dayIndex(qint64 i, qint64 n) const { return n <= 0 ? 0 : int(i * qint64(m_days.size()) / n); }

    bool lookupTables()
    {
        Row row(2);
        if (!table("BranchInfo", {"BranchNumber", "BranchName"}))
            return false;
        for (int b = 0; b < kBranchCount; ++b)
            if (!row.whole(b + 1).text(QLatin1String(kBranches[b].name)).send(m_sink))
                return false;
        m_sum.branches = kBranchCount;
        if (!done() || !table("StatesAndProvinces", {"GTKRVAbbreviation", "StateName"}))
            return false;
        for (const auto& s : kStates)
            if (!row.text(QLatin1String(s[0])).text(QLatin1String(s[1])).send(m_sink))
                return false;
        m_sum.states = int(kStates.size());
        if (!done() || !table("Extra2", {"UniqueID", "Description"}))
            return false;
        for (size_t g = 0; g < kGroups.size(); ++g)
            if (!row.whole(qint64(g) + 1).text(QLatin1String(kGroups[g])).send(m_sink))
                return false;
        m_sum.groups = int(kGroups.size());
        if (!done() || !table("ValidTrackerSerialNumbers", {"TrackerSerialNumber"}))
            return false;
        Row serial(1);
        const int spares = 10;   // serials in stock, not yet in a vehicle
        for (int v = 1; v <= m_opt.vehicles + spares; ++v)
            if (!serial.text(trackerSerial(v)).send(m_sink))
                return false;
        m_sum.trackerSerials = m_opt.vehicles + spares;
        return done();
    }

    static QString trackerSerial(int vehicle) { return QString::number(310000000 + vehicle); }

    bool users()
    {
        if (!table("UserNames", {"UserID", "UserName", "Administrator"}))
            return false;
        Row u(3);
        if (!u.whole(1).text("Administrator").whole(kTrue).send(m_sink) || !u.whole(2).text("Dispatcher").whole(0).send(m_sink)
            || !u.whole(3).text("Guest").whole(0).send(m_sink) || !done())
            return false;
        m_sum.users = 3;
        // The dispatcher may export time data (forms 31 and 11) and import vehicles (form 12);
        // the guest holds rows without the rights that count (add without modify).
        struct Right {
            int user, form;
            qint64 add, modify, view;
        };
        static constexpr Right rights[] = {
            {2, 31, 0, 0, kTrue}, {2, 11, 0, 0, 1}, {2, 12, kTrue, kTrue, 0},
            {3, 11, 0, 0, 0},     {3, 12, kTrue, 0, 0},
        };
        if (!table("Permissions", {"UserID", "FormID", "CanAdd", "CanModify", "CanView"}))
            return false;
        Row p(5);
        for (const Right& r : rights)
            if (!p.whole(r.user).whole(r.form).whole(r.add).whole(r.modify).whole(r.view).send(m_sink))
                return false;
        m_sum.permissionRows = int(std::size(rights));
        return done();
    }

    bool employees()
    {
        Rng rng = stream(m_opt.seed, 1);
        if (!table("EmployeeInfo", {"EmployeeNumber", "Name", "LastName", "FirstName", "MI", "AccountingID",
                                    "BranchNumber", "Address1", "Address2", "City", "State", "Zip",
                                    "MobilePhone", "WorkPhone", "Phone", "Pager"}))
            return false;
        Row row(16);
        for (int e = 1; e <= m_opt.employees; ++e) {
            Person p{e, QLatin1String(rng.pick(kFirstNames)), QLatin1String(rng.pick(kLastNames)),
                     (e - 1) % kBranchCount + 1, (e - 1) % m_opt.vehicles + 1};
            const Branch& b = kBranches[p.branch - 1];
            row.whole(e).text(p.first + ' ' + p.last).text(p.last).text(p.first)
                .text(QString(QChar('A' + rng.below(26)))).text(QStringLiteral("EMP-%1").arg(e, 4, 10, QChar('0')))
                .whole(p.branch).text(street(rng)).text(suite(rng)).text(QLatin1String(b.city))
                .text(QLatin1String(b.state)).text(zip(rng, b)).text(phone(rng, b)).text(phone(rng, b))
                .text(phone(rng, b)).text(QStringLiteral("(   )    -    "));
            if (!row.send(m_sink))
                return false;
            m_people.push_back(p);
        }
        m_sum.employees = m_opt.employees;
        return done();
    }

    bool vehicles()
    {
        Rng rng = stream(m_opt.seed, 2);
        if (!table("VehicleInfo", {"VehicleNumber", "LicenseNumber", "VINNumber", "TrackerSerialNumber",
                                   "VehicleIdentifier", "BranchNumber", "DateAcquired", "Year", "Make", "Model",
                                   "VehicleDescription", "AccountingID", "Field1"}))
            return false;
        static const QString vinChars = QStringLiteral("ABCDEFGHJKLMNPRSTUVWXYZ0123456789");
        const QDate first = QDate::fromString(QString::number(m_opt.firstDate), QStringLiteral("yyyyMMdd"));
        Row row(13);
        for (int v = 1; v <= m_opt.vehicles; ++v) {
            QString plate;
            for (int i = 0; i < 3; ++i)
                plate += QChar('A' + rng.below(26));
            plate += ' ' + digits(rng, 4);
            QString vin;
            for (int i = 0; i < 17; ++i)
                vin += vinChars[rng.below(vinChars.size())];
            const auto& model = rng.pick(kVehicleModels);
            const int year = rng.between(2012, 2023);
            const QDate acquired = first.addDays(-rng.between(30, 2500));
            row.whole(v).text(plate).text(vin).text(trackerSerial(v))
                .text(QStringLiteral("Unit %1").arg(v, 2, 10, QChar('0'))).whole((v - 1) % kBranchCount + 1)
                .text(acquired.toString(QStringLiteral("yyyyMMdd"))).whole(year).text(QLatin1String(model[0]))
                .text(QLatin1String(model[1])).text(QLatin1String(rng.pick(kVehicleKinds)))
                .text(QStringLiteral("VEH-%1").arg(v, 4, 10, QChar('0')))
                .text(QString::number(rng.between(1, int(kGroups.size()))));
            if (!row.send(m_sink))
                return false;
        }
        m_sum.vehicles = m_opt.vehicles;
        return done();
    }

    bool customers()
    {
        Rng rng = stream(m_opt.seed, 3);
        if (!table("CustomerInfo", {"CustomerNumber", "CompanyName", "ContactLastName", "ContactMI",
                                    "ContactFirstName", "AccountingID", "BranchNumber", "Address1", "Address2",
                                    "City", "State", "Zip", "MobilePhone", "WorkPhone", "Pager"}))
            return false;
        Row row(15);
        const int names = int(kCompanies.size());
        for (int c = 1; c <= m_opt.customers; ++c) {
            QString company = QLatin1String(kCompanies[(c - 1) % names]);
            if (c > names)
                company += ' ' + QString::number((c - 1) / names + 1);
            const int branch = rng.between(1, kBranchCount);
            const Branch& b = kBranches[branch - 1];
            row.whole(c).text(company).text(QLatin1String(rng.pick(kLastNames)))
                .text(QString(QChar('A' + rng.below(26)))).text(QLatin1String(rng.pick(kFirstNames)))
                .text(QStringLiteral("CUST-%1").arg(c, 4, 10, QChar('0'))).whole(branch).text(street(rng))
                .text(suite(rng)).text(QLatin1String(b.city)).text(QLatin1String(b.state)).text(zip(rng, b))
                .text(phone(rng, b)).text(phone(rng, b)).text(phone(rng, b));
            if (!row.send(m_sink))
                return false;
        }
        m_sum.customers = m_opt.customers;
        return done();
    }

    bool locations()
    {
        Rng rng = stream(m_opt.seed, 4);
        if (!table("CommonLocations", {"CommonLocationNumber", "BranchNumber", "LocationName", "Address1",
                                       "Address2", "City", "State", "ZipCode", "Longitude", "Latitude"}))
            return false;
        Row row(10);
        const int names = int(kLocationNames.size());
        for (int n = 1; n <= m_opt.locations; ++n) {
            QString name = QLatin1String(kLocationNames[(n - 1) % names]);
            if (n > names)
                name += ' ' + QString::number((n - 1) / names + 1);
            const int branch = rng.between(1, kBranchCount);
            const Branch& b = kBranches[branch - 1];
            row.whole(n).whole(branch).text(name).text(street(rng)).text(suite(rng)).text(QLatin1String(b.city))
                .text(QLatin1String(b.state)).text(zip(rng, b)).real(round6(b.longitude + rng.range(-0.2, 0.2)))
                .real(round6(b.latitude + rng.range(-0.15, 0.15)));
            if (!row.send(m_sink))
                return false;
        }
        m_sum.locations = m_opt.locations;
        return done();
    }

    bool timeRecords()
    {
        Rng rng = stream(m_opt.seed, 5);
        if (!table("JobTimeRecords", {"NewTimeRecordID", "EmployeeNumber", "VehicleBlock", "EmployeeFirstName",
                                      "EmployeeLastName", "Date", "Time", "JobRecordID", "CustomerNumber",
                                      "IsJobInRecord", "IsTimeInRecord", "IsJobOutRecord", "IsTimeOutRecord",
                                      "OdometerReading", "Approved", "ExportID"}))
            return false;
        std::vector<qint64> odometer(size_t(m_opt.vehicles) + 1);
        for (size_t v = 1; v < odometer.size(); ++v)
            odometer[v] = 12000 + rng.below(80000);
        // A shift is four records: time in, job in, job out, time out.
        const qint64 shifts = (m_opt.timeRecords + 3) / 4;
        int counts[4] = {};
        Row row(16);
        ExportState state{};
        const Person* who = nullptr;
        int day = 0, clock = 0, customer = 1;
        for (int i = 0; i < m_opt.timeRecords; ++i) {
            const int step = i % 4;
            if (step == 0) {
                const qint64 shift = i / 4;
                day = dayIndex(shift, shifts);
                who = &m_people[size_t(rng.below(qint64(m_people.size())))];
                clock = 6 * 3600 + rng.below(2 * 3600);
                customer = rng.between(1, m_opt.customers);
                state = exportState(double(day) / double(m_days.size()), rng);
            } else {
                clock += step == 2 ? rng.between(3600, 4 * 3600) : rng.between(600, 2400);
            }
            ++counts[state.kind];
            odometer[size_t(who->vehicle)] += rng.between(0, 40);
            row.whole(i + 1).whole(who->number).whole(who->vehicle).text(who->first).text(who->last)
                .whole(m_days[size_t(day)]).whole(clockNumber(clock)).whole(5000 + i / 4).whole(customer)
                .whole(step == 1 ? kTrue : 0).whole(step == 0 ? kTrue : 0).whole(step == 2 ? kTrue : 0)
                .whole(step == 3 ? kTrue : 0).whole(odometer[size_t(who->vehicle)]).whole(state.approved)
                .whole(state.exportId);
            if (!row.send(m_sink))
                return false;
        }
        m_sum.timeWaiting = counts[0];
        m_sum.timeExported = counts[1];
        m_sum.timeUnapproved = counts[2];
        m_sum.timeReapproved = counts[3];
        return done();
    }

    bool inventory()
    {
        Rng rng = stream(m_opt.seed, 6);
        if (!table("InventoryHistory", {"InventoryHistoryID", "InventoryNumber", "EmployeeID", "CustomerID",
                                        "UsedQuantity", "EmployeeFirstName", "EmployeeLastName", "Date", "Time",
                                        "JobRecordID", "Approved", "ExportID"}))
            return false;
        int counts[4] = {};
        Row row(12);
        const qint64 jobs = std::max(1, (m_opt.timeRecords + 3) / 4);
        for (int i = 0; i < m_opt.inventoryRecords; ++i) {
            const int day = dayIndex(i, m_opt.inventoryRecords);
            const Person& who = m_people[size_t(rng.below(qint64(m_people.size())))];
            const ExportState state = exportState(double(day) / double(m_days.size()), rng);
            ++counts[state.kind];
            row.whole(i + 1).whole(1001 + rng.below(40)).whole(who.number).whole(rng.between(1, m_opt.customers))
                .whole(rng.between(1, 12)).text(who.first).text(who.last).whole(m_days[size_t(day)])
                .whole(clockNumber(rng.between(7 * 3600, 18 * 3600 - 1))).whole(5000 + rng.below(jobs))
                .whole(state.approved).whole(state.exportId);
            if (!row.send(m_sink))
                return false;
        }
        m_sum.inventoryWaiting = counts[0];
        m_sum.inventoryExported = counts[1];
        m_sum.inventoryUnapproved = counts[2];
        m_sum.inventoryReapproved = counts[3];
        return done();
    }

    bool tracksAndPoints()
    {
        Rng rng = stream(m_opt.seed, 7);
        // Subjects: employee and vehicle pairs, each driven on several days.
        struct Pair {
            qint64 employee;
            int vehicle;
        };
        std::vector<Pair> pairs;
        const int pairCount = std::max(1, (m_opt.tracks + 2) / 3);
        for (int k = 0; k < pairCount; ++k) {
            const Person& p = m_people[size_t(k) % m_people.size()];
            pairs.push_back({p.number, p.vehicle});
        }
        if (pairCount >= 4)   // a vehicle out without a driver
            pairs[size_t(pairCount / 2)].employee = 0;
        if (pairCount >= 3 && m_opt.vehicles > 1)   // the first driver also took another vehicle
            pairs.back() = {pairs[0].employee, pairs[0].vehicle % m_opt.vehicles + 1};

        if (!table("EmployeeTrackActivity", {"TrackID", "EmployeeNumber", "VehicleNumber", "TrackingDate"}))
            return false;
        std::vector<int> trackDay(size_t(m_opt.tracks));
        Row row(4);
        for (int t = 0; t < m_opt.tracks; ++t) {
            trackDay[size_t(t)] = dayIndex(t, m_opt.tracks);
            const Pair& p = pairs[size_t(t % pairCount)];
            if (!row.whole(t + 1).whole(p.employee).whole(p.vehicle).whole(m_days[size_t(trackDay[size_t(t)])]).send(m_sink))
                return false;
        }
        m_sum.tracks = m_opt.tracks;
        if (!done())
            return false;

        if (!table("GPSCoordinates", {"TrackID", "Longitude", "Latitude", "RcvDate", "RcvTime", "Speed",
                                      "TimeDeviation", "PowerOnOff", "TrackStartStop", "DownloadID"}))
            return false;
        Row point(10);
        const qint64 perTrack = m_opt.tracks > 0 ? m_opt.gpsPoints / m_opt.tracks : 0;
        const qint64 extra = m_opt.tracks > 0 ? m_opt.gpsPoints % m_opt.tracks : 0;
        for (int t = 0; t < m_opt.tracks; ++t) {
            const qint64 n = perTrack + (t < extra ? 1 : 0);
            const Pair& p = pairs[size_t(t % pairCount)];
            const Branch& b = kBranches[size_t((p.vehicle - 1) % kBranchCount)];
            double lat = b.latitude + rng.range(-0.05, 0.05), lon = b.longitude + rng.range(-0.05, 0.05);
            double heading = rng.range(0, 2 * std::numbers::pi), speed = rng.range(0, 40);
            const int start = 6 * 3600 + rng.below(3 * 3600);
            const int interval = int(std::clamp<qint64>(36000 / std::max<qint64>(n, 1), 1, 30));
            const qint64 date = m_days[size_t(trackDay[size_t(t)])];
            for (qint64 j = 0; j < n; ++j) {
                heading += rng.range(-0.3, 0.3);
                speed = std::clamp(speed + rng.range(-6, 6), 0.0, 70.0);
                const double stepDegrees = speed * interval / 3600.0 / 69.0;   // miles to degrees, roughly
                lat += stepDegrees * std::cos(heading);
                lon += stepDegrees * std::sin(heading) / 0.75;
                double outLon = round6(lon), outLat = round6(lat);
                if (rng.chance(0.01)) {   // the receiver lost its fix
                    (j % 2 ? outLat : outLon) = -1;
                    ++m_sum.gpsUnusable;
                }
                point.whole(t + 1).real(outLon).real(outLat).whole(date)
                    .whole(clockNumber(int(std::min<qint64>(start + j * interval, 86399))))
                    .real(std::round(speed * 10) / 10).whole(rng.below(4)).whole(j + 1 == n ? 0 : 1);
                if (j == 0)
                    point.whole(1);
                else if (j + 1 == n)
                    point.whole(2);
                else
                    point.null();
                if (!point.whole(trackDay[size_t(t)] + 1).send(m_sink))
                    return false;
            }
            m_sum.gpsPoints += n;
        }
        return done();
    }

    const DemoOptions& m_opt;
    DemoSink& m_sink;
    DemoSummary& m_sum;
    std::vector<qint64> m_days;
    std::vector<Person> m_people;
};

} // namespace

bool generateDemoContent(const DemoOptions& options, DemoSink& sink, DemoSummary& summary)
{
    summary = DemoSummary{};
    return Generator(options, sink, summary).run();
}

QStringList schemaStatements(const QString& scriptText)
{
    QString text = scriptText;
    text.remove(QRegularExpression(QStringLiteral("--[^\n]*")));
    QStringList out;
    for (const QString& part : text.split(';')) {
        const QString s = part.trimmed();
        if (!s.isEmpty())
            out << s;
    }
    return out;
}

} // namespace tp
