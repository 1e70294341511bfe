#include <radiosim/documents/commondataxml.h>

#include "documentstesthelpers.h"

#include <QtTest>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

using namespace Simulation;

namespace {

MovementPoint point(double lon, double lat, bool major, double speed = 0.0, uint dwell = 0,
    uint transition = 0, const QString &name = QString())
{
    return { { lon, lat }, transition, dwell, major, name, speed };
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
    void texts()
    {
        const QString yes[] = { "true", "TRUE", "untrue", "true1" };
        const QString no[] = { "false", "1", "", "tru e" };
        for (const QString &text : yes)
            QVERIFY2(CommonDataXml::toBool(QStringRef(&text)), qPrintable(text));
        for (const QString &text : no)
            QVERIFY2(!CommonDataXml::toBool(QStringRef(&text)), qPrintable(text));
        for (const EndBehaviourType value : { EndStop, EndRestart, EndInactive })
            QCOMPARE(CommonDataXml::stringToEndBehavior(CommonDataXml::endBehaviorToString(value)),
                value);
        QCOMPARE(
            CommonDataXml::endBehaviorToString(EndBehaviourType(3)), QStringLiteral("RESTART"));
    }

    // The position behaviour read from the children of the root, and where the reader stopped.
    void readPosition_data()
    {
        columns<QByteArray, QString>("xml", "position");
        row("fixed; the last Lat counts, strangers skipped",
            QByteArray(
                "<P><Fixed><Lon>11.4</Lon><Lat>1</Lat><Alt><Lat>5</Lat></Alt><Lat>48.25</Lat>"
                "</Fixed><Moving/></P>"),
            QStringLiteral("at 11.4,48.25 / P"));
        row("none", QByteArray("<P><Moving/></P>"), QStringLiteral("none / P"));
        row("the last child counts",
            QByteArray("<P><Movement EndBehavior='INACTIVE'/><Fixed><Lon>x</Lon></Fixed></P>"),
            QStringLiteral("at 0,0 / P"));
        // setMovements ignores a single point: the constructor's two stay.
        row("one point is lost; end behaviour in lower case is STOP",
            QByteArray("<P><Movement EndBehavior='restart'><Position Major='true' Speed='9'><Lon>11"
                       "</Lon></Position></Movement></P>"),
            QStringLiteral("route STOP [0,0 0+112970 0 ''; 0.01,0.01 0+0 50 ''] / P"));
        // Times follow from the speeds; a minor point takes neither speed nor name.
        row("times worked out anew",
            QByteArray("<P><Movement EndBehavior='INACTIVE'><Position DWellTime='100' "
                       "TransitionTime='1' Major='TRUE' Speed='1.56788e-299' Name='A'><Lon>11</Lon>"
                       "<Lat>48</Lat></Position><Position DWellTime='7' TransitionTime='2' "
                       "Major='false' Speed='99' Name='x'><Lat>48</Lat><Lon>11.01</Lon></Position>"
                       "<Position TransitionTime='8509' Major='true' Speed='36' Name='B'><Lon>11.02"
                       "</Lon><Lat>48</Lat></Position></Movement></P>"),
            QStringLiteral("route INACTIVE [11,48 100+74625 1.56788e-299 'A'; 11.01,48 0+74625; "
                           "11.02,48 0+8509 36 'B'] / P"));
        row("a speed too small for any time",
            QByteArray("<P><Movement><Position Major='true' Speed='1'><Lon>0</Lon><Lat>0</Lat>"
                       "</Position><Position Major='true' Speed='1e-300'><Lon>100</Lon><Lat>10"
                       "</Lat></Position></Movement></P>"),
            QStringLiteral("route STOP [0,0 0+0 1 ''; 100,10 0+0 1e-300 ''] / P"));
        row("a leg past the pole has no time",
            QByteArray("<P><Movement><Position Major='true' Speed='1'><Lon>0</Lon><Lat>0</Lat>"
                       "</Position><Position Major='true' Speed='40'><Lon>0</Lon><Lat>96</Lat>"
                       "</Position></Movement></P>"),
            QStringLiteral("route STOP [0,0 0+0 1 ''; 0,96 0+0 40 ''] / P"));
        row("numbers out of range, infinite or NaN",
            QByteArray("<P><Movement><Position DWellTime='4294967296' Major='true' Speed='1e400'>"
                       "<Lon>1e400</Lon><Lat>-0x10</Lat></Position><Position TransitionTime='-1'>"
                       "<Lon>nan</Lon><Lat>inf</Lat></Position></Movement></P>"),
            QStringLiteral("route STOP [0,0 0+0 0 ''; 0,0 0+0 50 ''] / P"));
    }
    void readPosition()
    {
        QFETCH(QByteArray, xml);
        QFETCH(QString, position);
        QXmlStreamReader reader(xml);
        reader.readNextStartElement();
        const std::unique_ptr<IPositionSettings> settings(
            CommonDataXml::readPositionSettings(reader));
        QCOMPARE(describePosition(settings.get()) + QStringLiteral(" / ")
                + (reader.hasError() ? QStringLiteral("error") : reader.name().toString()),
            position);
    }

    void writePosition()
    {
        PositionSettingsPtp route({ 11.0, 48.0 }, 0.01);
        route.setMovements({ point(11.123456789012345, 48, true, 1.56788e-299, 5, 0, "A&B"),
            point(11.13, 48, false), point(11.14, 48.5, true, 12.3456789) });
        route.setEndBehavior(EndInactive);
        QString xml;
        QXmlStreamWriter writer(&xml);
        CommonDataXml::writePositionSettings(&route, writer);
        CommonDataXml::writePositionSettings(nullptr, writer);
        QCOMPARE(xml,
            QStringLiteral("<Movement EndBehavior=\"INACTIVE\"><Position DWellTime=\"5\" "
                           "TransitionTime=\"142385\" Major=\"true\" Speed=\"1.56788e-299\" "
                           "Name=\"A&amp;B\"><Lon>11.123456789012</Lon><Lat>48</Lat></Position>"
                           "<Position DWellTime=\"0\" TransitionTime=\"16213703\" Major=\"false\">"
                           "<Lon>11.13</Lon><Lat>48</Lat></Position><Position DWellTime=\"0\" "
                           "TransitionTime=\"0\" Major=\"true\" Speed=\"12.3457\" Name=\"\"><Lon>"
                           "11.14</Lon><Lat>48.5</Lat></Position></Movement>"));
    }

    // No setMovements on this way: the times come back as they were.
    void movementsTextForm()
    {
        const QVector<MovementPoint> points { point(11.123456789012345, 48.2, true, 1.56788e-299, 0,
                                                  8509, "Start"),
            point(11.2, 48.3, false, 0, 0, 17), point(11.3, 48.4, true, 36.1234567, 60, 1) };
        const QString xml = CommonDataXml::xmlForMovements(points);
        QVERIFY(xml.startsWith("<?xml version=\"1.0\"?>\n<MovementsXml>\n    <Position"));
        QCOMPARE(describePoints(CommonDataXml::movementsForXml(xml)),
            QStringLiteral("11.123456789012,48.2 0+8509 1.56788e-299 'Start'; 11.2,48.3 0+17; "
                           "11.3,48.4 60+1 36.1235 ''"));
        QVERIFY(CommonDataXml::xmlForMovements({}).contains("<MovementsXml/>"));
        QVERIFY(CommonDataXml::movementsForXml(QString()).isEmpty());
        QCOMPARE(describePoints(CommonDataXml::movementsForXml(
                     "<Other><Position Major='x'><Lat>1</Lat></Position></Other>\x01")),
            QStringLiteral("0,1 0+0"));
    }
};

QTEST_GUILESS_MAIN(tst_CommonDataXml)
#include "tst_commondataxml.moc"
