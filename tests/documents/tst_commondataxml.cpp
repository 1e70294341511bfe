#include <radiosim/documents/commondataxml.h>

#include "documentstesthelpers.h"

#include <QtTest>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <memory>

using namespace Simulation;

namespace {

// The position behaviour read from the children of the fragment's root, and where the reader
// stopped.
QString readPosition(const QByteArray &xml)
{
    QXmlStreamReader reader(xml);
    reader.readNextStartElement();
    const std::unique_ptr<IPositionSettings> settings(CommonDataXml::readPositionSettings(reader));
    return describePosition(settings.get()) + QStringLiteral(" / ")
        + (reader.hasError() ? QStringLiteral("error") : reader.name().toString());
}

QString written(const IPositionSettings *settings)
{
    QString xml;
    QXmlStreamWriter writer(&xml);
    CommonDataXml::writePositionSettings(settings, writer);
    return xml;
}

MovementPoint point(double lon, double lat, bool major, double speed = 0.0, uint dwell = 0,
    uint transition = 0, const QString &name = QString())
{
    MovementPoint p;
    p.position = { lon, lat };
    p.major = major;
    p.speed = speed;
    p.dwellTime = dwell;
    p.transitionTime = transition;
    p.name = name;
    return p;
}

QString describePoints(const QVector<MovementPoint> &points)
{
    QStringList text;
    for (const MovementPoint &p : points)
        text << describePoint(p);
    return text.join(QStringLiteral("; "));
}

} // namespace

class tst_CommonDataXml : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void toBool()
    {
        const QString texts[]
            = { "true", "TRUE", "untrue", "true1", "TRUE-ish", "false", "1", "", "tru e" };
        for (const QString &text : texts)
            QCOMPARE(CommonDataXml::toBool(QStringRef(&text)), &text - texts < 5);
    }

    void endBehaviour()
    {
        const QPair<QString, EndBehaviourType> texts[]
            = { { "STOP", EndStop }, { "RESTART", EndRestart }, { "INACTIVE", EndInactive },
                  { "restart", EndStop }, { " RESTART", EndStop }, { "", EndStop } };
        for (const auto &[text, value] : texts)
            QCOMPARE(CommonDataXml::stringToEndBehavior(text), value);
        QCOMPARE(CommonDataXml::endBehaviorToString(EndStop), QStringLiteral("STOP"));
        QCOMPARE(CommonDataXml::endBehaviorToString(EndInactive), QStringLiteral("INACTIVE"));
        QCOMPARE(
            CommonDataXml::endBehaviorToString(EndBehaviourType(3)), QStringLiteral("RESTART"));
    }

    void readPosition_data()
    {
        columns<QByteArray, QString>("xml", "position");
        row("fixed; the last Lat counts, strangers skipped",
            QByteArray("<Position><Fixed><Lon>11.4</Lon><Lat>1</Lat><Alt><Lat>5</Lat></Alt>"
                       "<Lat>48.25</Lat></Fixed></Position>"),
            QStringLiteral("at 11.4,48.25 / Position"));
        row("no Fixed or Movement", QByteArray("<Position><Moving/></Position>"),
            QStringLiteral("none / Position"));
        row("the last child counts",
            QByteArray("<Position><Movement EndBehavior='INACTIVE'/><Fixed><Lon>bad</Lon>"
                       "</Fixed></Position>"),
            QStringLiteral("at 0,0 / Position"));
        // setMovements ignores a single point: the constructor's two stay.
        row("one point is lost; end behaviour in lower case is STOP",
            QByteArray("<Position><Movement EndBehavior='restart'><Position DWellTime='5' "
                       "Major='true' Speed='9'><Lon>11</Lon><Lat>48</Lat></Position></Movement>"
                       "</Position>"),
            QStringLiteral("route STOP [0,0 0+112970 0 ''; 0.01,0.01 0+0 50 ''] / Position"));
        // Times follow from the speeds; a minor point takes neither speed nor name.
        row("three points, times worked out anew",
            QByteArray("<Position><Movement EndBehavior='INACTIVE'>"
                       "<Position DWellTime='100' TransitionTime='1' Major='TRUE' "
                       "Speed='1.56788e-299' Name='A'><Lon>11</Lon><Lat>48</Lat></Position>"
                       "<Position DWellTime='7' TransitionTime='2' Major='false' Speed='99' "
                       "Name='x'><Lat>48</Lat><Lon>11.01</Lon></Position>"
                       "<Position DWellTime='0' TransitionTime='8509' Major='true' Speed='36' "
                       "Name='B'><Lon>11.02</Lon><Lat>48</Lat></Position></Movement></Position>"),
            QStringLiteral("route INACTIVE [11,48 100+74625 1.56788e-299 'A'; 11.01,48 0+74625; "
                           "11.02,48 0+8509 36 'B'] / Position"));
        row("cut inside a point: loops end, the point is kept",
            QByteArray("<Position><Movement><Position Major='true' Speed='10'><Lon>11</Lon>"
                       "<Lat>48</Lat></Position><Position Major='true' Speed='20'><Lon>11.1"),
            QStringLiteral("route STOP [11,48 0+976280302 10 ''; 0,0 0+0 20 ''] / error"));
        row("10,000 levels inside Fixed",
            QByteArray("<Position><Fixed><Lon>3</Lon>") + QByteArray("<a>").repeated(10000),
            QStringLiteral("at 3,0 / error"));
        row("numbers out of range",
            QByteArray("<Position><Movement><Position DWellTime='4294967296' Major='true' "
                       "Speed='1e400'><Lon>1e400</Lon><Lat>-0x10</Lat></Position><Position "
                       "TransitionTime='-1'><Lon>nan</Lon><Lat>inf</Lat></Position></Movement></"
                       "Position>"),
            QStringLiteral("route STOP [0,0 0+0 0 ''; 0,0 0+0 50 ''] / Position"));
    }
    void readPosition()
    {
        QFETCH(QByteArray, xml);
        QFETCH(QString, position);
        QCOMPARE(::readPosition(xml), position);
    }

    void writePosition()
    {
        const PositionSettingsFixed fixed({ 11.123456789012345, -48.5 });
        QCOMPARE(written(&fixed),
            QStringLiteral("<Fixed><Lon>11.123456789012</Lon><Lat>-48.5</Lat></Fixed>"));
        PositionSettingsPtp route({ 11.0, 48.0 }, 0.01);
        route.setMovements({ point(11, 48, true, 1.56788e-299, 5, 0, QStringLiteral("A&B")),
            point(11.01, 48, false), point(11.02, 48.5, true, 12.3456789) });
        route.setEndBehavior(EndInactive);
        QCOMPARE(written(&route),
            QStringLiteral("<Movement EndBehavior=\"INACTIVE\">"
                           "<Position DWellTime=\"5\" TransitionTime=\"217607\" Major=\"true\" "
                           "Speed=\"1.56788e-299\" Name=\"A&amp;B\"><Lon>11</Lon><Lat>48</Lat>"
                           "</Position><Position DWellTime=\"0\" TransitionTime=\"16213703\" "
                           "Major=\"false\"><Lon>11.01</Lon><Lat>48</Lat></Position>"
                           "<Position DWellTime=\"0\" TransitionTime=\"0\" Major=\"true\" "
                           "Speed=\"12.3457\" Name=\"\"><Lon>11.02</Lon><Lat>48.5</Lat>"
                           "</Position></Movement>"));
        QCOMPARE(written(nullptr), QString());
    }

    // No setMovements on this way: the times come back as they were.
    void movementsTextForm()
    {
        const QVector<MovementPoint> points { point(11.123456789012345, 48.2, true, 1.56788e-299, 0,
                                                  8509, QStringLiteral("Start")),
            point(11.2, 48.3, false, 0, 0, 17), point(11.3, 48.4, true, 36.1234567, 60, 1) };
        const QString xml = CommonDataXml::xmlForMovements(points);
        QVERIFY(xml.startsWith(
            QStringLiteral("<?xml version=\"1.0\"?>\n<MovementsXml>\n    <Position")));
        QCOMPARE(describePoints(CommonDataXml::movementsForXml(xml)),
            QStringLiteral("11.123456789012,48.2 0+8509 1.56788e-299 'Start'; 11.2,48.3 0+17; "
                           "11.3,48.4 60+1 36.1235 ''"));

        const QString empty = CommonDataXml::xmlForMovements({});
        QVERIFY(empty.contains(QStringLiteral("<MovementsXml/>")));
        QVERIFY(CommonDataXml::movementsForXml(empty).isEmpty());
        QVERIFY(CommonDataXml::movementsForXml(QString()).isEmpty());
        QCOMPARE(describePoints(CommonDataXml::movementsForXml(
                     QStringLiteral("<Other><Position Major='x'><Lat>1</Lat></Position></Other>"))),
            QStringLiteral("0,1 0+0"));
        QCOMPARE(CommonDataXml::movementsForXml(QStringLiteral("\x01garbage<<")).size(), 0);
    }
};

QTEST_GUILESS_MAIN(tst_CommonDataXml)
#include "tst_commondataxml.moc"
