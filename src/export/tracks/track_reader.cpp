#include "export/tracks/track_reader.h"

#include "export/gps_data.h"
#include "export/track_subjects.h"
#include "foundation/dao.h"
#include "foundation/sql_literal.h"

#include <algorithm>
#include <cmath>

namespace tp::tracks {

namespace {

// A stored coordinate; nullopt for none and for -1, the receiver's mark of a lost fix (the
// export's rule, which compares the number).
std::optional<double> coordinate(const QVariant& v)
{
    bool ok = false;
    const double d = v.isNull() ? 0 : v.toDouble(&ok);
    if (!ok || !std::isfinite(d) || d == -1)
        return std::nullopt;
    return d;
}

qint32 micro(double degrees)
{
    // Nothing on the ground lies this far out; a wild value still stays a number.
    return qint32(std::lround(std::clamp(degrees, -2000.0, 2000.0) * kMicro));
}

qint32 whole(const QVariant& v)
{
    return v.isNull() ? 0 : qint32(v.toDouble());
}

// Seconds from a stored date and time, for placing a left-out fix between two others; only
// differences matter, and days are counted as a proleptic calendar would.
qint64 secondsOf(const Fix& f)
{
    const qint64 y = f.date / 10000, m = f.date / 100 % 100, d = f.date % 100;
    // Days from a fixed origin (Howard Hinnant's days_from_civil).
    const qint64 yy = y - (m <= 2 ? 1 : 0);
    const qint64 era = (yy >= 0 ? yy : yy - 399) / 400;
    const qint64 yoe = yy - era * 400;
    const qint64 doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const qint64 days = era * 146097 + yoe * 365 + yoe / 4 - yoe / 100 + doy;
    const qint64 t = f.time;
    return days * 86400 + t / 10000 * 3600 + t / 100 % 100 * 60 + t % 100;
}

// Where the track was when the left-out fix came: between the usable fixes around it.
void place(Fix& f, const std::vector<Fix>& usable, std::size_t after, bool hasLon, bool hasLat)
{
    if (usable.empty()) {
        f.lon = f.lat = kNoPosition;
        return;
    }
    const Fix* a = after > 0 ? &usable[after - 1] : nullptr;
    const Fix* b = after < usable.size() ? &usable[after] : nullptr;
    double share = 0;
    if (a && b) {
        const qint64 span = secondsOf(*b) - secondsOf(*a);
        share = span > 0 ? std::clamp(double(secondsOf(f) - secondsOf(*a)) / double(span), 0.0, 1.0) : 0.5;
    } else if (!a) {
        a = b;
    }
    const Fix& from = *a;
    const Fix& to = b ? *b : *a;
    if (!hasLon)
        f.lon = qint32(std::lround(from.lon + share * (double(to.lon) - from.lon)));
    if (!hasLat)
        f.lat = qint32(std::lround(from.lat + share * (double(to.lat) - from.lat)));
}

} // namespace

bool TrackSet::hasPositions() const
{
    for (const Track& t : tracks)
        if (!t.fixes.empty())
            return true;
    return false;
}

TrackReader::TrackReader(cDAO& db, Feedback& feedback)
    : m_db(db), m_feedback(feedback), m_gps(std::make_unique<GpsAssembler>(db, feedback))
{
}

TrackReader::~TrackReader() = default;

bool TrackReader::fail(const QString& why)
{
    m_error = why.isEmpty() ? QStringLiteral("The tracks could not be read") : why;
    return false;
}

bool TrackReader::begin(const ExportRequest& request)
{
    m_set = TrackSet();
    m_pending.clear();
    m_next = 0;
    m_latitudeSum = 0;
    m_placed = 0;
    m_error.clear();
    if (!GpsAssembler::hasSubjectList(request) && request.currentTrackSubject < 1)
        return fail(kNoTrackForEmployee);

    TrackSubjectList list;
    if (!list.load(m_db, m_feedback, request.settingsFile))
        return fail(list.entries().empty() ? QString() : list.entries().front().text);
    for (qint32 named : GpsAssembler::subjectTracks(request)) {
        const int entry = list.entryOfTrack(named);
        const int index = int(m_set.subjects.size());
        m_set.subjects.push_back({named, entry > 0 ? list.entries()[std::size_t(entry)].text
                                                   : QStringLiteral("Track %1").arg(named)});
        const GpsAssembler::Subject s = m_gps->selectSubject(request, named);
        if (s.failed)
            return fail(m_db.errorText);
        for (qint32 track : s.tracks)
            m_pending.emplace_back(track, index);
    }
    m_set.tracks.reserve(m_pending.size());
    return true;
}

bool TrackReader::readNext()
{
    if (!m_error.isEmpty() || m_next >= m_pending.size())
        return false;
    const auto [trackId, subject] = m_pending[m_next];
    // Every fix of the track in the order the export reads its usable ones.
    RecordsetPtr rs = m_db.RecSet_Forward(
        QStringLiteral("Select Longitude, Latitude, RcvDate, RcvTime, Speed from GPSCoordinates "
                       "WHERE TrackID = ") + sql::number(qint64(trackId)) +
        QStringLiteral("  Order By RcvDate, RcvTime"));
    if (!rs)
        return fail(m_db.errorText);
    Track track;
    track.trackId = trackId;
    track.subject = subject;
    std::vector<std::size_t> after;            // usable fixes before each left-out one
    std::vector<std::pair<bool, bool>> carried;   // which coordinates a left-out fix has
    for (; !rs->atEnd(); rs->moveNext()) {
        Fix f;
        const auto lon = coordinate(rs->value(0));
        const auto lat = coordinate(rs->value(1));
        f.date = whole(rs->value(2));
        f.time = whole(rs->value(3));
        f.speed = rs->value(4).toFloat();
        if (lon && lat) {
            f.lon = micro(*lon);
            f.lat = micro(*lat);
            track.fixes.push_back(f);
            continue;
        }
        if (lon)
            f.lon = micro(*lon);
        if (lat)
            f.lat = micro(*lat);
        after.push_back(track.fixes.size());
        carried.emplace_back(bool(lon), bool(lat));
        track.leftOut.push_back(f);
    }
    // A read that stopped on an error is no end of the track.
    const bool broken = rs->lastError() != 0;
    const QString why = rs->lastErrorText();
    m_db.RS_Close(rs);
    if (broken)
        return fail(why);

    for (std::size_t i = 0; i < track.leftOut.size(); ++i)
        place(track.leftOut[i], track.fixes, after[i], carried[i].first, carried[i].second);
    for (const std::vector<Fix>* fixes : {&track.fixes, &track.leftOut})
        for (const Fix& f : *fixes)
            if (f.placed()) {
                m_latitudeSum += f.lat / kMicro;
                ++m_placed;
            }
    track.fixes.shrink_to_fit();
    track.leftOut.shrink_to_fit();
    m_set.usable += qint64(track.fixes.size());
    m_set.leftOut += qint64(track.leftOut.size());
    m_set.tracks.push_back(std::move(track));
    ++m_next;
    return true;
}

TrackSet TrackReader::take()
{
    m_set.meanLatitude = m_placed > 0 ? m_latitudeSum / double(m_placed) : 0;
    TrackSet out = std::move(m_set);
    m_set = TrackSet();
    m_pending.clear();
    m_next = 0;
    m_latitudeSum = 0;
    m_placed = 0;
    return out;
}

std::optional<TrackSet> TrackReader::readAll(const ExportRequest& request)
{
    if (!begin(request))
        return std::nullopt;
    while (readNext()) {
    }
    if (!m_error.isEmpty())
        return std::nullopt;
    return take();
}

} // namespace tp::tracks
