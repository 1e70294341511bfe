#include "scenariotesthelpers.h"

#include <radiosim/units/geodesy.h>

#include <QtTest>

#include <cmath>
#include <functional>

using namespace Simulation;

Q_DECLARE_METATYPE(Simulation::TPos)

namespace {
MovementPoint point(double lon, double lat, bool major, double speed = 0.0, uint dwell = 0,
    const QString &name = QString())
{
    return { { lon, lat }, 0, dwell, major, name, speed };
}

PositionSettingsPtp route(const QVector<MovementPoint> &points)
{
    PositionSettingsPtp settings({ 0.0, 0.0 }, 0.01);
    settings.setMovements(points);
    return settings;
}

// One point as a line, so one comparison checks all of it.
QString describe(const MovementPoint &p)
{
    return QStringLiteral("%1 %2 t%3 d%4 %5 '%6'%7 %8")
        .arg(p.position.lon, 0, 'g', 12)
        .arg(p.position.lat, 0, 'g', 12)
        .arg(p.transitionTime)
        .arg(p.dwellTime)
        .arg(p.major ? "major" : "minor", p.name, p.name.isNull() ? "null" : "")
        .arg(p.speed, 0, 'g', 8);
}

const TPos p0 { 11.0, 48.0 }, p1 { 11.02, 48.01 }, p2 { 11.02, 48.03 };

// Distances and azimuths come from GeographicLib's GeodSolve, not from our own geodesy; a
// failed run gives not-a-number.
QVector<double> solved(const QStringList &options, const QVector<double> &input)
{
    const QVector<double> out = geodSolve(options, input);
    return out.size() == 3 ? out : QVector<double>(3, qQNaN());
}

// (azimuth in degrees, distance in km) from a to b.
QPair<double, double> inverse(const TPos &a, const TPos &b)
{
    const QVector<double> out = solved({ QStringLiteral("-i") }, { a.lat, a.lon, b.lat, b.lon });
    return { out[0] < 0.0 ? out[0] + 360.0 : out[0], out[2] / 1000.0 };
}

TPos direct(const TPos &from, double azimuth, double km)
{
    const QVector<double> out = solved({}, { from.lat, from.lon, azimuth, km * 1000.0 });
    return { out[1], out[0] };
}

// Dwell 1000 ms at p0, then 2000 ms to p1 and 1000 ms to p2: speeds that make the legs last
// 2000.5 and 1000.5 ms, so the floored times are exact.
PositionSettingsPtp walkRoute()
{
    return route({ point(p0.lon, p0.lat, true, 0.0, 1000),
        point(p1.lon, p1.lat, true, inverse(p0, p1).second * 3600000.0 / 2000.5),
        point(p2.lon, p2.lat, true, inverse(p1, p2).second * 3600000.0 / 1000.5) });
}
} // namespace

class tst_PositionSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY2(!QStandardPaths::findExecutable(QStringLiteral("GeodSolve")).isEmpty(),
            "GeodSolve (geographiclib-tools) is not installed");
    }

    void newRouteAndSetMovementsKeepInvariants()
    {
        PositionSettingsPtp settings({ 11.0, 48.0 }, 0.01);
        const uint leg
            = std::floor(inverse({ 11.0, 48.0 }, { 11.01, 48.01 }).second / 50 * 3600000);
        QCOMPARE(settings.getMovments().size(), 2);
        QCOMPARE(
            describe(settings.getPoint(0)), QStringLiteral("11 48 t%1 d0 major ''null 0").arg(leg));
        QCOMPARE(
            describe(settings.getPoint(1)), QStringLiteral("11.01 48.01 t0 d0 major ''null 50"));

        // A file's transition times and a minor point's own speed and dwell do not survive.
        MovementPoint middle = point(11.01, 48.0, false, 5.0, 700);
        middle.transitionTime = 12345;
        settings.setMovements(
            { point(11.0, 48.0, false), middle, point(11.02, 48.0, false, 20.0) });
        const double km = inverse({ 11.01, 48.0 }, { 11.02, 48.0 }).second;
        QVERIFY(settings.getPoint(0).major);
        QCOMPARE(describe(settings.getPoint(1)),
            QStringLiteral("11.01 48 t%1 d0 minor ''null 50")
                .arg(uint(std::floor(km / 50 * 3600000))));
        QCOMPARE(describe(settings.getPoint(2)), QStringLiteral("11.02 48 t0 d0 major ''null 50"));

        settings.setMovementSpeed(2, 25.0f);
        QCOMPARE(settings.getPoint(1).speed, 25.0);
        QCOMPARE(settings.getPoint(1).transitionTime, uint(std::floor(km / 25 * 3600000)));
    }

    // Heading, speed and length are solved once per edit; each kind of edit must be seen by the
    // next query, which the fresh geodesy here checks.
    void queriesFollowEveryEditOfTheGeometry()
    {
        PositionSettingsPtp route({ 11.0, 48.0 }, 0.1);
        const std::function<void()> edits[] = {
            [&] { route.setPoint(1, point(10.8, 48.05, true, 50.0)); },
            [&] { route.insertRowAfter(0, 2.0, QStringLiteral("between")); },
            [&] {
                route.setPosition({ -70.0, -33.0 });
            },
            [&] { route.removeRow(1); },
            [&] { route.setMovementSpeed(1, 120.0f); },
        };
        for (const auto &edit : edits) {
            edit();
            const QVector<MovementPoint> &points = route.getMovments();
            double total = 0.0;
            uint begin = 0;
            for (int i = 0; i + 1 < points.size(); ++i) {
                const MovementPoint &from = points[i];
                const double km = distance(from.position, points[i + 1].position);
                total += km;
                const uint middle = begin + from.dwellTime + from.transitionTime / 2;
                QCOMPARE(route.headingAt(middle), azimuth(from.position, points[i + 1].position));
                const float speed = km / (from.transitionTime / 3600000.0);
                QVERIFY(qAbs(route.getMovementSpeed(i + 1) - speed) < 1e-3f);
                begin += from.dwellTime + from.transitionTime;
            }
            QVERIFY(qAbs(route.length() - total) < 1e-9);
        }
    }

    void walkThroughDwellAndLegs_data()
    {
        columns<int, uint, TPos, double, double>(
            "behaviour", "time", "position", "heading", "speed");
        const double azimuth01 = inverse(p0, p1).first, azimuth12 = inverse(p1, p2).first;
        const double speed01 = inverse(p0, p1).second * 3600000.0 / 2000.0;
        const TPos mid01 { (p0.lon + p1.lon) / 2, (p0.lat + p1.lat) / 2 };
        const TPos mid12 { p1.lon, (p1.lat + p2.lat) / 2 };
        const int restart = EndRestart, stop = EndStop;
        row("leg begins", restart, 1000u, p0, azimuth01, -1.0);
        row("halfway first leg", restart, 2000u, mid01, azimuth01, -1.0);
        row("speed lags one leg", restart, 3500u, mid12, azimuth12, speed01);
        row("restart at route time", restart, 4000u, p0, azimuth01, -1.0);
        row("stop at route time", stop, 4000u, p2, azimuth12, 0.0);
        row("inactive moves like stop", int(EndInactive), 5000u, p2, azimuth12, 0.0);
    }
    void walkThroughDwellAndLegs()
    {
        QFETCH(int, behaviour);
        QFETCH(uint, time);
        QFETCH(TPos, position);
        QFETCH(double, heading);
        QFETCH(double, speed);
        PositionSettingsPtp settings = walkRoute();
        settings.setEndBehavior(EndBehaviourType(behaviour));
        const TPos at = settings.getPositionAt(time);
        QVERIFY(qAbs(at.lon - position.lon) < 1e-12 && qAbs(at.lat - position.lat) < 1e-12);
        QVERIFY(qAbs(settings.headingAt(time) - heading) < 1e-6);
        QVERIFY(qAbs(settings.speedAt(time) - speed) <= 1e-5 * qAbs(speed));
    }

    // The limit counts the last transition and, when there is one, the last dwell.
    void inactiveLimitIncludesLastPoint()
    {
        for (const auto &[lastDwell, until] :
            { std::pair { 0u, 309431u }, std::pair { 500u, 309931u } }) {
            MovementPoint last = point(p1.lon, p1.lat, true, 40.0, lastDwell);
            last.transitionTime = 8509;
            PositionSettingsPtp settings = route({ point(p0.lon, p0.lat, true), last });
            settings.setDepartureTime(0, 300922 - settings.getPoint(0).transitionTime);
            QCOMPARE(settings.getArivalTime(1), 300922u);
            settings.setEndBehavior(EndInactive);
            QCOMPARE(settings.activeUntil(), until);
            QVERIFY(settings.isActiveAt(until) && !settings.isActiveAt(until + 1));
            settings.setEndBehavior(EndStop);
            QVERIFY(settings.activeUntil() == NoEnd && settings.isActiveAt(until + 1));
        }
    }

    void equalIsInverted()
    {
        PositionSettingsPtp original = walkRoute();
        const std::pair<std::function<void(MovementPoint &)>, bool> edits[] = {
            { [](MovementPoint &p) { p.position.lon += 1e-11; }, false },
            { [](MovementPoint &p) { p.position.lon += 1e-9; }, true },
            { [](MovementPoint &p) { p.speed += 1e-12; }, true },
            { [](MovementPoint &p) { p.name = QStringLiteral("B"); }, true },
        };
        for (const auto &edit : edits) {
            PositionSettingsPtp other = original;
            MovementPoint p = other.getPoint(1);
            edit.first(p);
            other.setPoint(1, p);
            QCOMPARE(original.equal(&other), edit.second);
        }
        // The end behaviour is not compared.
        PositionSettingsPtp stopping = original, longer = original;
        stopping.setEndBehavior(EndStop);
        QVERIFY(!original.equal(&stopping));
        longer.insertRowAfter(0, 0.001, QString());
        PositionSettingsFixed fixed(p0);
        QVERIFY(original.equal(&longer) && !original.equal(&fixed) && !original.equal(nullptr));
    }

    void removeRow()
    {
        // A removed major point hands speed and dwell, not its name, to the minor point before it.
        PositionSettingsPtp settings = route({ point(11.0, 48.0, true), point(11.01, 48.0, false),
            point(11.02, 48.0, true, 30.0, 900, "B"), point(11.03, 48.0, true, 40.0) });
        settings.removeRow(2);
        QCOMPARE(settings.getMovments().size(), 3);
        QCOMPARE(describe(settings.getPoint(1)).section(QLatin1Char(' '), 3),
            QStringLiteral("d900 major ''null 30"));

        PositionSettingsPtp pair({ 11.0, 48.0 }, 0.01);
        QVERIFY(!pair.canRemoveRow(-1) && !pair.canRemoveRow(0) && !pair.canRemoveRow(2));
        pair.removeRow(1);
        QCOMPARE(pair.getMovments().size(), 1);
        QVERIFY(pair.getPositionAt(9).lon == 11.0 && pair.headingAt(9) == 0.0
            && pair.speedAt(9) == 0.0);
        QVERIFY(pair.getPoint(7).position.lat == 48.0 && pair.length() == 0.0);
    }

    void insertRowAfter_data()
    {
        columns<int, double, QString, int, QString, double>(
            "row", "step", "name", "index", "inserted", "lastLon");
        const QString empty("");
        row("middle, capped at 0.7", 0, 10.0, empty, 1, "11.7 48 major '' 50", 12.0);
        row("middle, null name is minor", 0, 10.0, QString(), 1, "11.7 48 minor ''null 30", 12.0);
        row("middle, short step", 0, 0.25, "A", 1, "11.25 48 major 'A' 50", 12.0);
        row("middle, zero is the leg", 0, 0.0, "A", 1, "11.7 48 major 'A' 50", 12.0);
        row("end, empty name extends", 1, 0.5, empty, 1, "12 48 major '' 50", 12.5);
        row("end, null name extends minor", 1, 0.5, QString(), 1, "12 48 minor ''null 30", 12.5);
        row("end, named appends", 5, 0.5, "B", 2, "12.5 48 major 'B' 50", 12.5);
    }
    void insertRowAfter()
    {
        QFETCH(int, row);
        QFETCH(double, step);
        QFETCH(QString, name);
        QFETCH(int, index);
        QFETCH(double, lastLon);
        PositionSettingsPtp settings
            = route({ point(11.0, 48.0, true), point(12.0, 48.0, true, 30.0) });
        settings.insertRowAfter(row, step, name);
        QCOMPARE(settings.getMovments().size(), 3);
        const QStringList seen = describe(settings.getPoint(index)).split(QLatin1Char(' '));
        QTEST(QStringList(seen.mid(0, 2) + seen.mid(4)).join(QLatin1Char(' ')), "inserted");
        QVERIFY(qAbs(settings.getMovments().last().position.lon - lastLon) < 1e-12);
        QVERIFY(settings.getPoint(0).transitionTime > 0 && settings.getPoint(1).transitionTime > 0);
    }

    void arcPointsLieOnTheCircle_data()
    {
        columns<int, int, int, double>("row", "count", "angle", "radius");
        row("from the end, left", 2, 5, 90, 500.0);
        row("from the start, right", 0, 3, -180, 200.0);
        row("full circle", 1, 9, 360, 300.0);
    }
    void arcPointsLieOnTheCircle()
    {
        QFETCH(int, row);
        QFETCH(int, count);
        QFETCH(int, angle);
        QFETCH(double, radius);
        PositionSettingsPtp settings = route({ point(p0.lon, p0.lat, true),
            point(p1.lon, p1.lat, true, 30.0), point(p2.lon, p2.lat, true, 40.0, 0, "end") });
        const TPos from = settings.getPoint(row).position;
        double side = angle > 0 ? 90.0 : -90.0;
        if (row > 0)
            side += inverse(settings.getPoint(row - 1).position, from).first;
        const TPos centre = direct(from, side, radius / 1000.0);

        settings.insertArcAfter(row, count, angle, radius);
        QCOMPARE(settings.getMovments().size(), 3 + count - 1);
        const bool atEnd = row == 2;
        for (int j = 1; j < count; ++j) {
            const MovementPoint &arc = settings.getPoint(row + j);
            const QPair<double, double> seen = inverse(centre, arc.position);
            QVERIFY2(qAbs(seen.second * 1000.0 - radius) < 1.0, qPrintable(QString::number(j)));
            const double off
                = std::fmod(qAbs(seen.first - j * double(angle) / (count - 1) - side), 360);
            QVERIFY2(qAbs(off - 180.0) < 0.05, qPrintable(QString::number(seen.first)));
            QCOMPARE(arc.major, atEnd && j == count - 1);
            QCOMPARE(arc.speed, atEnd ? 40.0 : settings.getPoint(row + count).speed);
        }
        QCOMPARE(settings.getMovments().last().name, QStringLiteral("end"));
    }

    void badArgumentsChangeNothing()
    {
        PositionSettingsPtp settings({ 11.0, 48.0 }, 0.01);
        const PositionSettingsPtp before = settings;
        settings.setMovements({ point(5.0, 5.0, true) });
        settings.setMovementSpeed(0, 30.0f);
        settings.insertArcAfter(0, 1, 90, 500.0);
        settings.insertArcAfter(0, 0, 90, 500.0);
        settings.insertArcAfter(-1, 4, 90, 500.0);
        settings.insertArcAfter(2, 4, 90, 500.0);
        settings.insertRowsAfter(0, {});
        settings.insertRowAfter(-1, 0.5, QStringLiteral("X"));
        settings.setArivalTime(0, 99999);
        settings.setPoint(2, point(1.0, 1.0, true));
        settings.removeRow(0);
        // equal() answers false for equal routes.
        QVERIFY(!settings.equal(&before));

        // A route of zero time cannot restart; it stands still.
        settings.setPosition({ 11.01, 48.01 });
        QCOMPARE(settings.getPoint(0).transitionTime, before.getPoint(0).transitionTime);
        settings.setPoint(1, point(11.01, 48.01, true, 50.0));
        QVERIFY(settings.getPoint(0).transitionTime == 0 && settings.speedAt(777) == 0.0);
        QCOMPARE(settings.getPositionAt(777).lon, 11.01);
        QVERIFY(qIsFinite(settings.headingAt(777)));
    }

    void setArivalTimeCountsDistanceBackToMajor()
    {
        // A minor point between or a major one.
        for (bool middleMajor : { false, true }) {
            const TPos a { 11.0, 48.0 }, b { 11.01, 48.0 }, c { 11.02, 48.01 };
            PositionSettingsPtp settings = route({ point(a.lon, a.lat, true, 0.0, 1000),
                point(b.lon, b.lat, middleMajor, 50.0), point(c.lon, c.lat, true, 50.0) });
            const uint leave = settings.getDepartureTime(1);
            settings.setArivalTime(2, leave + 5000);
            const double km = inverse(b, c).second + (middleMajor ? 0.0 : inverse(a, b).second);
            const double speed = km / (5000.0 / 3600000.0);
            const MovementPoint &end = settings.getPoint(2);
            QVERIFY2(
                qAbs(end.speed - speed) < 1e-6 * speed, qPrintable(QString::number(end.speed)));
            QCOMPARE(end.speed, double(float(end.speed)));
            QCOMPARE(settings.getPoint(1).speed, middleMajor ? 50.0 : end.speed);
            // Only without minor points between is the point reached at the asked time.
            const uint arrival = settings.getArivalTime(2);
            QCOMPARE(arrival + 1 >= leave + 5000 && arrival <= leave + 5000, middleMajor);
        }
    }

    void timesBoundsLengthAndShift()
    {
        PositionSettingsPtp settings = walkRoute();
        settings.setDepartureTime(1, 3250);
        uint min = 1, max = 1;
        QCOMPARE(settings.getArivalTime(0, &min, &max), 0u);
        QVERIFY(min == 0 && max == 0);
        QCOMPARE(settings.getArivalTime(2, &min, &max), 4250u);
        QVERIFY(min == 3250 && max == NoEnd);
        QCOMPARE(settings.getDepartureTime(0, &min, &max), 1000u);
        QVERIFY(min == 0 && max == NoEnd);
        // A departure before the arrival wraps the dwell time.
        settings.setDepartureTime(1, 2000);
        QCOMPARE(settings.getPoint(1).dwellTime, 4294966296u);

        QVERIFY(qAbs(settings.length() - inverse(p0, p1).second - inverse(p1, p2).second) < 1e-9);
        double width = 0.0, height = 0.0;
        settings.area(width, height);
        QVERIFY(qAbs(width - inverse(p0, { p1.lon, p0.lat }).second) < 1e-9);
        QVERIFY(qAbs(height - inverse(p0, { p0.lon, p2.lat }).second) < 1e-9);

        const uint leg = settings.getPoint(0).transitionTime;
        settings.setPosition({ 12.0, 47.5 });
        QVERIFY(qAbs(settings.getPoint(2).position.lon - (p2.lon + 1.0)) < 1e-12);
        QVERIFY(qAbs(settings.getPoint(2).position.lat - (p2.lat - 0.5)) < 1e-12);
        QCOMPARE(settings.getPoint(0).transitionTime, leg);
    }
};

QTEST_GUILESS_MAIN(tst_PositionSettings)
#include "tst_positionsettings.moc"
