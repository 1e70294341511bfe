#include <radiosim/scenario/positionsettings.h>

#include <QtTest>

#include <cmath>
#include <memory>

using namespace Simulation;

Q_DECLARE_METATYPE(Simulation::TPos)

namespace {
MovementPoint point(double lon, double lat, bool major, double speed = 0.0, uint dwell = 0,
    const QString &name = QString())
{
    MovementPoint p;
    p.position = TPos { lon, lat };
    p.major = major;
    p.speed = speed;
    p.dwellTime = dwell;
    p.name = name;
    return p;
}

PositionSettingsPtp route(const QVector<MovementPoint> &points)
{
    PositionSettingsPtp settings({ 0.0, 0.0 }, 0.01);
    settings.setMovements(points);
    return settings;
}

bool sameRoute(PositionSettingsPtp &a, const PositionSettingsPtp &b)
{
    return !a.equal(&b);
}

const TPos p0 { 11.0, 48.0 };
const TPos p1 { 11.02, 48.01 };
const TPos p2 { 11.02, 48.03 };
} // namespace

// Distances and azimuths come from GeographicLib's GeodSolve, not from our own geodesy.
class tst_PositionSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void newRouteHasTwoMajorPointsAt50();
    void walkThroughDwellAndLegs_data();
    void walkThroughDwellAndLegs();
    void inactiveLimitIncludesLastPoint_data();
    void inactiveLimitIncludesLastPoint();
    void setMovementsKeepsInvariants();
    void equalIsInverted_data();
    void equalIsInverted();
    void removeRowDownToOnePointStaysSafe();
    void removeMajorHandsOverToMinorBefore();
    void insertRowAfter_data();
    void insertRowAfter();
    void arcPointsLieOnTheCircle_data();
    void arcPointsLieOnTheCircle();
    void arcRefusesBadArguments_data();
    void arcRefusesBadArguments();
    void setArivalTimeCountsDistanceBackToMajor_data();
    void setArivalTimeCountsDistanceBackToMajor();
    void timesAndBounds();
    void zeroRouteTimeWithRestartStandsStill();
    void lengthAreaAndShift();

private:
    // (azimuth in degrees, distance in km) from a to b.
    QPair<double, double> inverse(const TPos &a, const TPos &b);
    TPos direct(const TPos &from, double azimuth, double km);
    QStringList geodSolve(const QStringList &arguments, const QString &input);
    // The three-point walk: dwell 1000 at p0, 2000 ms to p1, 1000 ms to p2.
    PositionSettingsPtp walkRoute();

    QString m_geodSolve;
    double m_azimuth01 = 0.0;
    double m_azimuth12 = 0.0;
    double m_speed01 = 0.0;
};

QStringList tst_PositionSettings::geodSolve(const QStringList &arguments, const QString &input)
{
    QProcess process;
    process.start(
        m_geodSolve, QStringList(arguments) << QStringLiteral("-p") << QStringLiteral("9"));
    process.write(input.toUtf8() + '\n');
    process.closeWriteChannel();
    if (!process.waitForFinished(10000))
        return {};
    return QString::fromUtf8(process.readAllStandardOutput()).simplified().split(QLatin1Char(' '));
}

QPair<double, double> tst_PositionSettings::inverse(const TPos &a, const TPos &b)
{
    const QStringList out = geodSolve({ QStringLiteral("-i") },
        QStringLiteral("%1 %2 %3 %4")
            .arg(a.lat, 0, 'g', 17)
            .arg(a.lon, 0, 'g', 17)
            .arg(b.lat, 0, 'g', 17)
            .arg(b.lon, 0, 'g', 17));
    if (out.size() != 3)
        return { qQNaN(), qQNaN() };
    const double azimuth = out[0].toDouble();
    return { azimuth < 0.0 ? azimuth + 360.0 : azimuth, out[2].toDouble() / 1000.0 };
}

TPos tst_PositionSettings::direct(const TPos &from, double azimuth, double km)
{
    const QStringList out = geodSolve({},
        QStringLiteral("%1 %2 %3 %4")
            .arg(from.lat, 0, 'g', 17)
            .arg(from.lon, 0, 'g', 17)
            .arg(azimuth, 0, 'g', 17)
            .arg(km * 1000.0, 0, 'g', 17));
    if (out.size() != 3)
        return { qQNaN(), qQNaN() };
    return { out[1].toDouble(), out[0].toDouble() };
}

PositionSettingsPtp tst_PositionSettings::walkRoute()
{
    // Speeds that make the legs last 2000.5 and 1000.5 ms, so the floored times are exact.
    const double speed2 = inverse(p1, p2).second * 3600000.0 / 1000.5;
    return route({ point(p0.lon, p0.lat, true, 0.0, 1000),
        point(p1.lon, p1.lat, true, inverse(p0, p1).second * 3600000.0 / 2000.5),
        point(p2.lon, p2.lat, true, speed2) });
}

void tst_PositionSettings::initTestCase()
{
    m_geodSolve = QStandardPaths::findExecutable(QStringLiteral("GeodSolve"));
    QVERIFY2(!m_geodSolve.isEmpty(), "GeodSolve (geographiclib-tools) is not installed");
    m_azimuth01 = inverse(p0, p1).first;
    m_azimuth12 = inverse(p1, p2).first;
    m_speed01 = inverse(p0, p1).second * 3600000.0 / 2000.0;
}

void tst_PositionSettings::newRouteHasTwoMajorPointsAt50()
{
    PositionSettingsPtp settings({ 11.0, 48.0 }, 0.01);
    const QVector<MovementPoint> &points = settings.getMovments();
    QCOMPARE(points.size(), 2);
    QVERIFY(points[0].major && points[1].major);
    QCOMPARE(points[1].position.lon, 11.01);
    QCOMPARE(points[1].position.lat, 48.01);
    QCOMPARE(points[0].speed, 0.0);
    QCOMPARE(points[1].speed, 50.0);
    QCOMPARE(points[1].transitionTime, 0u);
    const double km = inverse({ 11.0, 48.0 }, { 11.01, 48.01 }).second;
    QCOMPARE(points[0].transitionTime, uint(std::floor(km / 50.0 * 3600000.0)));
    QCOMPARE(settings.getEndBehavior(), EndRestart);
    QCOMPARE(settings.getMovementSpeed(0), -1.0f);
    QCOMPARE(settings.speedAt(0), -1.0);
    QCOMPARE(settings.activeUntil(), NoEnd);
    for (uint t : { 0u, 5000u, 4294967295u })
        QVERIFY(settings.isActiveAt(t));
}

void tst_PositionSettings::walkThroughDwellAndLegs_data()
{
    QTest::addColumn<int>("behaviour");
    QTest::addColumn<uint>("time");
    QTest::addColumn<TPos>("position");
    QTest::addColumn<double>("heading");
    QTest::addColumn<double>("speed");
    const TPos mid01 { (p0.lon + p1.lon) / 2, (p0.lat + p1.lat) / 2 };
    const TPos mid12 { p1.lon, (p1.lat + p2.lat) / 2 };
    QTest::newRow("dwell at start") << int(EndRestart) << 500u << p0 << m_azimuth01 << -1.0;
    QTest::newRow("leg begins") << int(EndRestart) << 1000u << p0 << m_azimuth01 << -1.0;
    QTest::newRow("halfway first leg") << int(EndRestart) << 2000u << mid01 << m_azimuth01 << -1.0;
    QTest::newRow("second leg lags one leg")
        << int(EndRestart) << 3500u << mid12 << m_azimuth12 << m_speed01;
    QTest::newRow("restart at route time") << int(EndRestart) << 4000u << p0 << m_azimuth01 << -1.0;
    QTest::newRow("restart second lap")
        << int(EndRestart) << 10000u << mid01 << m_azimuth01 << -1.0;
    QTest::newRow("stop at route time") << int(EndStop) << 4000u << p2 << m_azimuth12 << 0.0;
    QTest::newRow("stop long after") << int(EndStop) << 900000u << p2 << m_azimuth12 << 0.0;
    QTest::newRow("inactive moves like stop")
        << int(EndInactive) << 5000u << p2 << m_azimuth12 << 0.0;
}

void tst_PositionSettings::walkThroughDwellAndLegs()
{
    QFETCH(int, behaviour);
    QFETCH(uint, time);
    QFETCH(TPos, position);
    QFETCH(double, heading);
    QFETCH(double, speed);
    PositionSettingsPtp settings = walkRoute();
    QCOMPARE(settings.getMovments()[0].transitionTime, 2000u);
    QCOMPARE(settings.getMovments()[1].transitionTime, 1000u);
    settings.setEndBehavior(EndBehaviourType(behaviour));
    const TPos at = settings.getPositionAt(time);
    QVERIFY2(qAbs(at.lon - position.lon) < 1e-12 && qAbs(at.lat - position.lat) < 1e-12,
        qPrintable(QStringLiteral("%1 %2").arg(at.lon, 0, 'g', 15).arg(at.lat, 0, 'g', 15)));
    QVERIFY(qAbs(settings.headingAt(time) - heading) < 1e-6);
    QVERIFY(qAbs(settings.speedAt(time) - speed) <= 1e-5 * qAbs(speed));
}

void tst_PositionSettings::inactiveLimitIncludesLastPoint_data()
{
    QTest::addColumn<uint>("lastDwell");
    QTest::addColumn<uint>("until");
    QTest::newRow("last transition only") << 0u << 309431u;
    QTest::newRow("last dwell too") << 500u << 309931u;
}

void tst_PositionSettings::inactiveLimitIncludesLastPoint()
{
    QFETCH(uint, lastDwell);
    QFETCH(uint, until);
    MovementPoint last = point(p1.lon, p1.lat, true, 40.0, lastDwell);
    last.transitionTime = 8509;
    PositionSettingsPtp settings = route({ point(p0.lon, p0.lat, true), last });
    settings.setDepartureTime(0, 300922 - settings.getMovments()[0].transitionTime);
    QCOMPARE(settings.getArivalTime(1), 300922u);

    settings.setEndBehavior(EndInactive);
    QCOMPARE(settings.activeUntil(), until);
    QVERIFY(settings.isActiveAt(until));
    QVERIFY(!settings.isActiveAt(until + 1));
    const TPos standing = settings.getPositionAt(until);
    QCOMPARE(standing.lon, p1.lon);
    QCOMPARE(standing.lat, p1.lat);

    settings.setEndBehavior(EndStop);
    QCOMPARE(settings.activeUntil(), NoEnd);
    QVERIFY(settings.isActiveAt(until + 1));
}

void tst_PositionSettings::setMovementsKeepsInvariants()
{
    PositionSettingsPtp settings({ 11.0, 48.0 }, 0.01);
    const PositionSettingsPtp before = settings;
    settings.setMovements({ point(5.0, 5.0, true) });
    QVERIFY(sameRoute(settings, before));

    MovementPoint middle = point(11.01, 48.0, false, 5.0, 700);
    middle.transitionTime = 12345;
    settings.setMovements({ point(11.0, 48.0, false), middle, point(11.02, 48.0, false, 20.0) });
    const QVector<MovementPoint> &points = settings.getMovments();
    QVERIFY(points[0].major);
    QVERIFY(!points[1].major);
    QVERIFY(points[2].major);
    QCOMPARE(points[2].speed, 50.0);
    QCOMPARE(points[1].speed, 50.0);
    QCOMPARE(points[1].dwellTime, 0u);
    const double km = inverse({ 11.01, 48.0 }, { 11.02, 48.0 }).second;
    QCOMPARE(points[1].transitionTime, uint(std::floor(km / 50.0 * 3600000.0)));

    const PositionSettingsPtp edited = settings;
    settings.setMovementSpeed(0, 30.0f);
    QVERIFY(sameRoute(settings, edited));
    settings.setMovementSpeed(2, 25.0f);
    QCOMPARE(settings.getMovments()[1].speed, 25.0);
    QCOMPARE(settings.getMovments()[1].transitionTime, uint(std::floor(km / 25.0 * 3600000.0)));
}

void tst_PositionSettings::equalIsInverted_data()
{
    QTest::addColumn<int>("change");
    QTest::addColumn<bool>("differs");
    QTest::newRow("own clone") << 0 << false;
    QTest::newRow("end behaviour not compared") << 1 << false;
    QTest::newRow("longitude within 1e-10") << 2 << false;
    QTest::newRow("longitude beyond 1e-10") << 3 << true;
    QTest::newRow("speed compared exactly") << 4 << true;
    QTest::newRow("name") << 5 << true;
    QTest::newRow("extra point") << 6 << true;
}

void tst_PositionSettings::equalIsInverted()
{
    QFETCH(int, change);
    QFETCH(bool, differs);
    PositionSettingsPtp original = walkRoute();
    std::unique_ptr<IPositionSettings> copy(original.clone());
    auto &other = static_cast<PositionSettingsPtp &>(*copy);
    MovementPoint p = other.getPoint(1);
    p.position.lon += change == 2 ? 1e-11 : change == 3 ? 1e-9 : 0.0;
    p.name = change == 5 ? QStringLiteral("B") : p.name;
    other.setPoint(1, p);
    if (change == 1)
        other.setEndBehavior(EndStop);
    if (change == 4)
        other.setMovementSpeed(2, float(other.getPoint(2).speed) + 0.5f);
    if (change == 6)
        other.insertRowAfter(0, 0.001, QString());
    QCOMPARE(original.equal(&other), differs);

    PositionSettingsFixed fixed(p0);
    QVERIFY(!original.equal(&fixed));
    QVERIFY(!original.equal(nullptr));
}

void tst_PositionSettings::removeRowDownToOnePointStaysSafe()
{
    PositionSettingsPtp settings({ 11.0, 48.0 }, 0.01);
    QVERIFY(!settings.canRemoveRow(-1));
    QVERIFY(!settings.canRemoveRow(0));
    QVERIFY(settings.canRemoveRow(1));
    QVERIFY(!settings.canRemoveRow(2));
    settings.removeRow(1);
    QCOMPARE(settings.getMovments().size(), 1);
    QCOMPARE(settings.getPositionAt(12345).lon, 11.0);
    QCOMPARE(settings.headingAt(12345), 0.0);
    QCOMPARE(settings.speedAt(12345), 0.0);
    QCOMPARE(settings.getPoint(7).position.lat, 48.0);
    QCOMPARE(settings.length(), 0.0);
    const PositionSettingsPtp single = settings;
    settings.insertRowAfter(0, 0.5, QStringLiteral("X"));
    settings.removeRow(0);
    QVERIFY(sameRoute(settings, single));
}

void tst_PositionSettings::removeMajorHandsOverToMinorBefore()
{
    PositionSettingsPtp settings = route({ point(11.0, 48.0, true), point(11.01, 48.0, false),
        point(11.02, 48.0, true, 30.0, 900, QStringLiteral("B")), point(11.03, 48.0, true, 40.0) });
    settings.removeRow(2);
    const MovementPoint &heir = settings.getPoint(1);
    QVERIFY(heir.major);
    QCOMPARE(heir.speed, 30.0);
    QCOMPARE(heir.dwellTime, 900u);
    QVERIFY(heir.name.isNull());
    QCOMPARE(settings.getMovments().size(), 3);
}

void tst_PositionSettings::insertRowAfter_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<double>("step");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("index");
    QTest::addColumn<double>("lon");
    QTest::addColumn<bool>("major");
    QTest::addColumn<double>("speed");
    QTest::addColumn<double>("lastLon");
    QTest::newRow("middle, capped at 0.7")
        << 0 << 10.0 << QString("") << 1 << 11.7 << true << 50.0 << 12.0;
    QTest::newRow("middle, null name is minor")
        << 0 << 10.0 << QString() << 1 << 11.7 << false << 30.0 << 12.0;
    QTest::newRow("middle, short step")
        << 0 << 0.25 << QString("A") << 1 << 11.25 << true << 50.0 << 12.0;
    QTest::newRow("middle, zero means leg length")
        << 0 << 0.0 << QString("A") << 1 << 11.7 << true << 50.0 << 12.0;
    QTest::newRow("end, empty name extends")
        << 1 << 0.5 << QString("") << 1 << 12.0 << true << 50.0 << 12.5;
    QTest::newRow("end, null name extends minor")
        << 1 << 0.5 << QString() << 1 << 12.0 << false << 30.0 << 12.5;
    QTest::newRow("end, named appends")
        << 5 << 0.5 << QString("B") << 2 << 12.5 << true << 50.0 << 12.5;
}

void tst_PositionSettings::insertRowAfter()
{
    QFETCH(int, row);
    QFETCH(double, step);
    QFETCH(QString, name);
    QFETCH(int, index);
    QFETCH(double, lon);
    QFETCH(bool, major);
    QFETCH(double, speed);
    QFETCH(double, lastLon);
    PositionSettingsPtp settings
        = route({ point(11.0, 48.0, true), point(12.0, 48.0, true, 30.0) });
    settings.insertRowAfter(row, step, name);
    const QVector<MovementPoint> &points = settings.getMovments();
    QCOMPARE(points.size(), 3);
    QVERIFY(qAbs(points[index].position.lon - lon) < 1e-12);
    QCOMPARE(points[index].position.lat, 48.0);
    QCOMPARE(points[index].major, major);
    QCOMPARE(points[index].name.isNull(), name.isNull());
    QCOMPARE(points[index].speed, speed);
    QVERIFY(qAbs(points.last().position.lon - lastLon) < 1e-12);
    QVERIFY(points[0].transitionTime > 0 && points[1].transitionTime > 0);
}

void tst_PositionSettings::arcPointsLieOnTheCircle_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("angle");
    QTest::addColumn<double>("radius");
    QTest::newRow("from the end, left") << 2 << 5 << 90 << 500.0;
    QTest::newRow("from the start, right") << 0 << 3 << -180 << 200.0;
    QTest::newRow("middle, after a leg") << 1 << 4 << 120 << 1000.0;
    QTest::newRow("full circle") << 1 << 9 << 360 << 300.0;
}

void tst_PositionSettings::arcPointsLieOnTheCircle()
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
        const double expected = std::fmod(j * double(angle) / (count - 1) + side + 180.0, 360.0);
        const double off = std::fmod(qAbs(seen.first - expected), 360.0);
        QVERIFY2(qMin(off, 360.0 - off) < 0.05, qPrintable(QString::number(seen.first)));
        const bool last = j == count - 1;
        QCOMPARE(arc.major, atEnd && last);
        QCOMPARE(arc.speed, atEnd ? 40.0 : settings.getPoint(row + count).speed);
    }
    if (atEnd)
        QCOMPARE(settings.getMovments().last().name, QStringLiteral("end"));
}

void tst_PositionSettings::arcRefusesBadArguments_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("count");
    QTest::newRow("one point") << 0 << 1;
    QTest::newRow("no points") << 0 << 0;
    QTest::newRow("negative row") << -1 << 4;
    QTest::newRow("row past the end") << 2 << 4;
}

void tst_PositionSettings::arcRefusesBadArguments()
{
    QFETCH(int, row);
    QFETCH(int, count);
    PositionSettingsPtp settings({ 11.0, 48.0 }, 0.01);
    const PositionSettingsPtp before = settings;
    settings.insertArcAfter(row, count, 90, 500.0);
    settings.insertRowsAfter(row, {});
    QVERIFY(sameRoute(settings, before));
}

void tst_PositionSettings::setArivalTimeCountsDistanceBackToMajor_data()
{
    QTest::addColumn<bool>("middleMajor");
    QTest::newRow("minor point between") << false;
    QTest::newRow("major point between") << true;
}

void tst_PositionSettings::setArivalTimeCountsDistanceBackToMajor()
{
    QFETCH(bool, middleMajor);
    const TPos a { 11.0, 48.0 }, b { 11.01, 48.0 }, c { 11.02, 48.01 };
    PositionSettingsPtp settings = route({ point(a.lon, a.lat, true, 0.0, 1000),
        point(b.lon, b.lat, middleMajor, 50.0), point(c.lon, c.lat, true, 50.0) });
    const PositionSettingsPtp before = settings;
    settings.setArivalTime(0, 99999);
    QVERIFY(sameRoute(settings, before));

    const uint leave = settings.getDepartureTime(1);
    settings.setArivalTime(2, leave + 5000);
    const double km = inverse(b, c).second + (middleMajor ? 0.0 : inverse(a, b).second);
    const double speed = km / (5000.0 / 3600000.0);
    const MovementPoint &end = settings.getPoint(2);
    QVERIFY2(qAbs(end.speed - speed) < 1e-6 * speed, qPrintable(QString::number(end.speed)));
    QCOMPARE(end.speed, double(float(end.speed)));
    QCOMPARE(settings.getPoint(1).speed, middleMajor ? 50.0 : end.speed);
    // Only a leg that ends a major run reaches the point at the asked time.
    const uint arrival = settings.getArivalTime(2);
    if (middleMajor)
        QVERIFY(arrival + 1 >= leave + 5000 && arrival <= leave + 5000);
    else
        QVERIFY(arrival < leave + 5000 - 1000);
}

void tst_PositionSettings::timesAndBounds()
{
    PositionSettingsPtp settings = walkRoute();
    settings.setDepartureTime(1, 3000 + 250);
    uint min = 1, max = 1;
    QCOMPARE(settings.getArivalTime(0, &min, &max), 0u);
    QCOMPARE(min, 0u);
    QCOMPARE(max, 0u);
    QCOMPARE(settings.getArivalTime(2, &min, &max), 4250u);
    QCOMPARE(min, 3250u);
    QCOMPARE(max, NoEnd);
    QCOMPARE(settings.getDepartureTime(0, &min, &max), 1000u);
    QCOMPARE(min, 0u);
    QCOMPARE(max, NoEnd);
    // A departure before the arrival wraps the dwell time.
    settings.setDepartureTime(1, 2000);
    QCOMPARE(settings.getPoint(1).dwellTime, 4294966296u);
}

void tst_PositionSettings::zeroRouteTimeWithRestartStandsStill()
{
    PositionSettingsPtp settings
        = route({ point(11.0, 48.0, true), point(11.0, 48.0, true, 50.0) });
    QCOMPARE(settings.getMovments()[0].transitionTime, 0u);
    QCOMPARE(settings.getEndBehavior(), EndRestart);
    QCOMPARE(settings.speedAt(777), 0.0);
    QCOMPARE(settings.getPositionAt(777).lon, 11.0);
    QVERIFY(qIsFinite(settings.headingAt(777)));
}

void tst_PositionSettings::lengthAreaAndShift()
{
    PositionSettingsPtp settings = walkRoute();
    const double legs = inverse(p0, p1).second + inverse(p1, p2).second;
    QVERIFY(qAbs(settings.length() - legs) < 1e-9);
    double width = 0.0, height = 0.0;
    settings.area(width, height);
    QVERIFY(qAbs(width - inverse(p0, { p1.lon, p0.lat }).second) < 1e-9);
    QVERIFY(qAbs(height - inverse(p0, { p0.lon, p2.lat }).second) < 1e-9);

    const QVector<MovementPoint> before = settings.getMovments();
    settings.setPosition({ 12.0, 47.5 });
    QCOMPARE(settings.getPosition().lon, 12.0);
    QCOMPARE(settings.getPosition().lat, 47.5);
    const MovementPoint &moved = settings.getPoint(2);
    QVERIFY(qAbs(moved.position.lon - (p2.lon + 1.0)) < 1e-12);
    QVERIFY(qAbs(moved.position.lat - (p2.lat - 0.5)) < 1e-12);
    QCOMPARE(moved.speed, before[2].speed);
    QCOMPARE(settings.getPoint(0).transitionTime, before[0].transitionTime);
}

QTEST_GUILESS_MAIN(tst_PositionSettings)
#include "tst_positionsettings.moc"
