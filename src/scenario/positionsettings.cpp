#include "positionsettings.h"

#include <radiosim/units/geodesy.h>

#include <cmath>

namespace Simulation {

namespace {
// km/h of a leg the user has not given a speed yet.
constexpr double defaultSpeed = 50.0;
constexpr double msPerHour = 3600000.0;

TPos shifted(const TPos &from, double dLon, double dLat)
{
    return TPos { from.lon + dLon, from.lat + dLat };
}
} // namespace

PositionSettingsPtp::PositionSettingsPtp(const TPos &start, double offset)
{
    MovementPoint first;
    first.position = start;
    first.major = true;
    MovementPoint second;
    second.position = shifted(start, offset, offset);
    second.major = true;
    second.speed = defaultSpeed;
    movements = { first, second };
    updatePoint(0);
}

PositionSettingsType PositionSettingsPtp::getType() const
{
    return PositionMovement;
}

TPos PositionSettingsPtp::getPosition() const
{
    return movements.isEmpty() ? TPos {} : movements.first().position;
}

void PositionSettingsPtp::setPosition(const TPos &target)
{
    if (movements.isEmpty())
        return;
    legs.clear();
    const TPos first = movements.first().position;
    for (MovementPoint &point : movements)
        point.position = shifted(point.position, target.lon - first.lon, target.lat - first.lat);
}

const PositionSettingsPtp::Leg &PositionSettingsPtp::leg(int row) const
{
    if (legs.size() != movements.size() - 1) {
        legs.resize(movements.size() - 1);
        for (int i = 0; i < legs.size(); ++i) {
            legs[i].azimuth = azimuth(movements[i].position, movements[i + 1].position);
            legs[i].distance = distance(movements[i].position, movements[i + 1].position);
        }
    }
    return legs.at(row);
}

int PositionSettingsPtp::legAt(uint time, uint &elapsed) const
{
    uint begin = 0;
    for (int i = 0; i + 1 < movements.size(); ++i) {
        const uint legTime = movements[i].dwellTime + movements[i].transitionTime;
        if (begin <= time && time < begin + legTime) {
            elapsed = time - begin;
            return i;
        }
        begin += legTime;
    }
    // A route of zero time cannot restart; it stands like a stopped one.
    if (endBehavior == EndRestart && begin != 0)
        return legAt(time % begin, elapsed);
    return -1;
}

TPos PositionSettingsPtp::getPositionAt(uint time) const
{
    if (movements.isEmpty())
        return {};
    uint elapsed = 0;
    const int leg = legAt(time, elapsed);
    if (leg < 0)
        return movements.last().position;
    const MovementPoint &from = movements[leg];
    if (elapsed < from.dwellTime)
        return from.position;
    const TPos &to = movements[leg + 1].position;
    const double f = double(elapsed - from.dwellTime) / from.transitionTime;
    return TPos { (to.lon - from.position.lon) * f + from.position.lon,
        (to.lat - from.position.lat) * f + from.position.lat };
}

double PositionSettingsPtp::headingAt(uint time) const
{
    uint elapsed = 0;
    const int leg = legAt(time, elapsed);
    if (leg >= 0)
        return this->leg(leg).azimuth;
    const int n = movements.size();
    return n < 2 ? 0.0 : this->leg(n - 2).azimuth;
}

double PositionSettingsPtp::speedAt(uint time) const
{
    uint elapsed = 0;
    const int leg = legAt(time, elapsed);
    return leg >= 0 ? getMovementSpeed(leg) : 0.0;
}

bool PositionSettingsPtp::isTimeDependend() const
{
    return true;
}

bool PositionSettingsPtp::isActiveAt(uint time) const
{
    return endBehavior != EndInactive || time <= sumOfTimesBefore(movements.size());
}

uint PositionSettingsPtp::activeUntil() const
{
    return endBehavior == EndInactive ? sumOfTimesBefore(movements.size()) : NoEnd;
}

bool PositionSettingsPtp::equal(const IPositionSettings *other)
{
    const auto *route = dynamic_cast<const PositionSettingsPtp *>(other);
    return route && !sameRoute(*route);
}

bool PositionSettingsPtp::sameRoute(const PositionSettingsPtp &other) const
{
    if (movements.size() != other.movements.size())
        return false;
    for (int i = 0; i < movements.size(); ++i) {
        const MovementPoint &a = movements[i];
        const MovementPoint &b = other.movements[i];
        if (qAbs(a.position.lon - b.position.lon) >= 1e-10
            || qAbs(a.position.lat - b.position.lat) >= 1e-10
            || a.transitionTime != b.transitionTime || a.dwellTime != b.dwellTime
            || a.major != b.major || a.name != b.name || a.speed != b.speed)
            return false;
    }
    return true;
}

IPositionSettings *PositionSettingsPtp::clone()
{
    return new PositionSettingsPtp(*this);
}

void PositionSettingsPtp::setMovements(const QVector<MovementPoint> &points)
{
    if (points.size() < 2)
        return;
    movements = points;
    movements.first().major = true;
    MovementPoint &last = movements.last();
    if (!last.major) {
        last.major = true;
        last.speed = defaultSpeed;
    }
    updatePoint(0);
}

const MovementPoint &PositionSettingsPtp::getPoint(int row) const
{
    if (row >= 0 && row < movements.size())
        return movements[row];
    if (movements.isEmpty()) {
        static const MovementPoint none;
        return none;
    }
    return movements.last();
}

void PositionSettingsPtp::setPoint(int row, const MovementPoint &point)
{
    if (row < 0 || row >= movements.size())
        return;
    movements[row] = point;
    updatePoint(row);
}

void PositionSettingsPtp::updatePoint(int)
{
    legs.clear();
    for (int i = movements.size() - 2; i >= 0; --i) {
        MovementPoint &point = movements[i];
        const MovementPoint &next = movements[i + 1];
        if (!point.major) {
            point.speed = next.speed;
            point.dwellTime = 0;
        }
        if (next.speed > 0.0) {
            const double ms = std::floor(leg(i).distance / next.speed * 3600.0 * 1000.0);
            // Through 64 bits: a leg of more than 49 days wraps instead of being undefined. A
            // time beyond 64 bits (a tiny speed) or none at all (a latitude past the pole) is 0.
            point.transitionTime = ms >= 0.0 && ms < 18446744073709551616.0 ? uint(quint64(ms)) : 0;
        } else {
            point.transitionTime = 0;
        }
    }
}

bool PositionSettingsPtp::canRemoveRow(int row) const
{
    return row > 0 && row < movements.size();
}

void PositionSettingsPtp::removeRow(int row)
{
    if (!canRemoveRow(row))
        return;
    const MovementPoint &point = movements[row];
    MovementPoint &before = movements[row - 1];
    if (point.major && !before.major) {
        before.major = true;
        before.speed = point.speed;
        before.dwellTime = point.dwellTime;
    }
    movements.remove(row);
    updatePoint(row);
}

void PositionSettingsPtp::insertRowAfter(int row, double distance, const QString &name)
{
    const int n = movements.size();
    if (n < 2 || row < 0)
        return;
    // Plain arithmetic in degrees along the neighbouring leg.
    const bool middle = row + 1 < n;
    const TPos a = movements[middle ? row : n - 2].position;
    const TPos b = movements[middle ? row + 1 : n - 1].position;
    const double dLon = b.lon - a.lon;
    const double dLat = b.lat - a.lat;
    const double len = std::sqrt(dLat * dLat + dLon * dLon);
    const double step = distance == 0.0 ? len : distance;
    // A leg of zero length has no direction: the new point then lies on it.
    const auto along = [&](const TPos &from, double d) {
        return len > 0.0 ? shifted(from, dLon * d / len, dLat * d / len) : from;
    };

    MovementPoint point;
    int index = n;
    if (middle) {
        point.position = along(a, qMin(step, 0.7 * len));
        index = row + 1;
    } else if (name.isEmpty()) {
        point.position = b;
        movements.last().position = along(b, step);
        index = n - 1;
    } else {
        point.position = along(b, step);
    }

    point.speed = defaultSpeed;
    if (name.isNull()) {
        for (int i = index; i < n; ++i) {
            if (movements[i].major) {
                point.speed = movements[i].speed;
                break;
            }
        }
    }
    point.major = !name.isNull();
    point.name = name;
    movements.insert(index, point);
    updatePoint(index);
}

void PositionSettingsPtp::insertRowsAfter(int row, QVector<MovementPoint> points)
{
    if (points.isEmpty() || row < 0 || row >= movements.size())
        return;
    const MovementPoint &last = movements.last();
    MovementPoint &tail = points.last();
    if (row == movements.size() - 1 && !tail.major) {
        tail.major = true;
        tail.speed = last.speed;
        tail.name = last.name;
        tail.transitionTime = last.transitionTime;
        tail.dwellTime = last.dwellTime;
    }
    const TPos anchor = movements[row].position;
    const double dLon = points.first().position.lon - anchor.lon;
    const double dLat = points.first().position.lat - anchor.lat;
    for (int i = 1; i < points.size(); ++i) {
        MovementPoint point = points[i];
        point.position = shifted(point.position, -dLon, -dLat);
        movements.insert(row + i, point);
    }
    updatePoint(row);
}

void PositionSettingsPtp::insertArcAfter(int row, int points, int angle, double radius)
{
    if (points < 2 || row < 0 || row >= movements.size())
        return;
    const double step = double(angle) / (points - 1);
    double side = angle > 0 ? 90.0 : -90.0;
    if (row > 0)
        side += azimuth(movements[row - 1].position, movements[row].position);
    const double r = radius / 1000.0;
    const TPos centre = position(movements[row].position, side, r);

    // Default points are minor, unnamed and at speed 0; they take the speed of the major point
    // that ends the arc.
    QVector<MovementPoint> arc(points);
    for (int j = 0; j < points; ++j) {
        double a = j * step + side - 180.0;
        while (a < 0.0)
            a += 360.0;
        while (a > 360.0)
            a -= 360.0;
        arc[j].position = position(centre, a, r);
    }
    insertRowsAfter(row, arc);
}

float PositionSettingsPtp::getMovementSpeed(int row) const
{
    if (row <= 0 || row >= movements.size())
        return -1.0f;
    const uint legTime = movements[row - 1].transitionTime;
    if (legTime == 0)
        return -1.0f;
    return float(leg(row - 1).distance / (float(legTime) / 3600000.0f));
}

void PositionSettingsPtp::setMovementSpeed(int row, float speed)
{
    if (row <= 0 || row >= movements.size())
        return;
    movements[row].speed = speed;
    updatePoint(row);
}

uint PositionSettingsPtp::sumOfTimesBefore(int row) const
{
    uint sum = 0;
    for (int i = 0; i < qMin(row, movements.size()); ++i)
        sum += movements[i].transitionTime + movements[i].dwellTime;
    return sum;
}

uint PositionSettingsPtp::getArivalTime(int row, uint *min, uint *max) const
{
    if (min)
        *min = row > 0 ? getDepartureTime(row - 1) : 0;
    if (max)
        *max = row > 0 ? NoEnd : 0;
    return sumOfTimesBefore(row);
}

uint PositionSettingsPtp::getDepartureTime(int row, uint *min, uint *max) const
{
    const uint arrival = getArivalTime(row);
    if (min)
        *min = arrival;
    if (max)
        *max = NoEnd;
    const bool inRange = row >= 0 && row < movements.size();
    return arrival + (inRange ? movements[row].dwellTime : 0);
}

void PositionSettingsPtp::setArivalTime(int row, uint time)
{
    if (row < 1 || row >= movements.size())
        return;
    double d = 0.0;
    int i = row;
    do {
        d += leg(i - 1).distance;
        --i;
    } while (i > 0 && !movements[i].major);
    // Arriving at the previous departure gives an infinite speed and a leg of no time.
    const uint dt = time - getDepartureTime(row - 1);
    movements[row].speed = float(d / (float(dt) / msPerHour));
    updatePoint(row);
}

void PositionSettingsPtp::setDepartureTime(int row, uint time)
{
    if (row < 0 || row >= movements.size())
        return;
    movements[row].dwellTime = time - getArivalTime(row);
}

double PositionSettingsPtp::length() const
{
    double sum = 0.0;
    for (int i = 0; i + 1 < movements.size(); ++i)
        sum += leg(i).distance;
    return sum;
}

void PositionSettingsPtp::area(double &width, double &height) const
{
    width = 0.0;
    height = 0.0;
    if (movements.isEmpty())
        return;
    TPos low = movements.first().position;
    TPos high = low;
    for (const MovementPoint &point : movements) {
        low.lon = qMin(low.lon, point.position.lon);
        low.lat = qMin(low.lat, point.position.lat);
        high.lon = qMax(high.lon, point.position.lon);
        high.lat = qMax(high.lat, point.position.lat);
    }
    width = distance(low, TPos { high.lon, low.lat });
    height = distance(low, TPos { low.lon, high.lat });
}

} // namespace Simulation
