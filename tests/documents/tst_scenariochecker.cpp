#include <radiosim/documents/scenariochecker.h>
#include <radiosim/documents/scenariodataxml.h>

#include "documentstesthelpers.h"

#include <QtTest>

using namespace Simulation;

namespace {

// The flags in one word: packages, classes, settings.
QString flags(const ScenarioChecker &checker)
{
    return QStringLiteral("%1%2%3")
        .arg(checker.hadInvalidSignalPackages() ? 'P' : '-')
        .arg(checker.hadInvalidClasses() ? 'C' : '-')
        .arg(checker.hadNullPointerSettings() ? 'S' : '-');
}

} // namespace

class tst_ScenarioChecker : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // What a pass finds and mends, read from documents as a client would load them.
    void checkAndFix_data()
    {
        columns<QByteArray, bool, QString, QStringList>("xml", "provider", "flags", "repaired");
        const QByteArray clean = "<Emitter ID='A'><EmissionSettings Duration='10'><Emission "
                                 "StartTime='1' Duration='2' Emitter='A' SignalPackage='/P'/>"
                                 "</EmissionSettings></Emitter>";
        row("empty", QByteArray(), true, QStringLiteral("---"), QStringList());
        row("clean", clean, true, QStringLiteral("---"),
            QStringList { "A '' class '' desc '' | tx 1 Default 0 2 0 | fixed 2.5e+07 | "
                          "M10: 1+2>A@/P#0 | at 0,0" });
        // An older file that names its package too late leaves the emissions without one.
        const QByteArray unpackaged = "<Emitter ID='A'><Timing><Manual><Activity "
                                      "InactiveDuration='1' ActiveDuration='2'/></Manual></Timing>"
                                      "<SignalPackage>/P</SignalPackage><Frequency/><Position/>"
                                      "</Emitter>";
        row("no package, no frequency, no position", unpackaged, true, QStringLiteral("P-S"),
            QStringList { "A '' class '' desc '' | tx 1 Default 0 2 0 | fixed 2.5e+07 | "
                          "M3: 1+2>A@/Default/Default#0 | at 0,0" });
        row("without a provider the package stays empty", unpackaged, false, QStringLiteral("P-S"),
            QStringList { "A '' class '' desc '' | tx 1 Default 0 2 0 | fixed 2.5e+07 | "
                          "M3: 1+2>A@-#0 | at 0,0" });
        row("a network without frequency, seen by its member too",
            QByteArray("<Network ID='N'><Frequency/><EmissionSettings Duration='5'><Emission "
                       "StartTime='0' Duration='1' Emitter='M' SignalPackage='/P'/>"
                       "</EmissionSettings><Emitter>M</Emitter></Network>"),
            true, QStringLiteral("--S"),
            QStringList {
                "M '' class '' desc '' | tx 1 Default 0 2 0 | net N | fixed 2.5e+07 | at 0,0",
                "net N '' desc '' #ff0000 S head M [M] | fixed 2.5e+07 | M5: 0+1>M@/P#0" });
    }
    void checkAndFix()
    {
        QFETCH(QByteArray, xml);
        QFETCH(bool, provider);
        QFETCH(QString, flags);
        QFETCH(QStringList, repaired);
        FakeProvider packages({ "/Default/Default", "/P" });
        ScenarioDataXml document(&packages);
        document.fromXml("<Scenario>" + xml + "</Scenario>");
        const auto objects = document.scenarioObjects();
        ScenarioChecker checker;
        QCOMPARE(checker.checkAndFixScenario(objects, provider ? &packages : nullptr),
            flags != QStringLiteral("---"));
        QCOMPARE(::flags(checker), flags);
        QCOMPARE(describeScenario(objects), repaired);

        // The flags stay with the checker; a new one sees what is left.
        QCOMPARE(checker.checkAndFixScenario(objects, provider ? &packages : nullptr),
            flags != QStringLiteral("---"));
        ScenarioChecker fresh;
        QCOMPARE(fresh.checkAndFixScenario(objects, provider ? &packages : nullptr),
            !provider && flags.startsWith(QLatin1Char('P')));
        QCOMPARE(::flags(fresh).mid(1), QStringLiteral("--"));
        releaseScenario(objects);
    }

    void usage()
    {
        FakeProvider packages({ "/Default/Default", "/P" });
        ScenarioDataXml document(&packages);
        document.fromXml(QByteArray("<Scenario><Emitter ID='A'><Class>Emitter-Red.ico</Class>"
                                    "</Emitter><Emitter ID='B'/><Network ID='N'><EmissionSettings>"
                                    "<Emission Emitter='B' SignalPackage='/P'/></EmissionSettings>"
                                    "</Network></Scenario>"));
        const auto objects = document.scenarioObjects();
        ScenarioChecker checker;
        QVERIFY(checker.scenarioUsesClass(QStringLiteral("Emitter-Red.ico"), objects));
        QVERIFY(checker.scenarioUsesClass(QString(), objects));
        QVERIFY(!checker.scenarioUsesClass(QStringLiteral("emitter-red.ico"), objects));
        QVERIFY(checker.scenarioUsesSignalPackage(packages.packages.value("/P"), objects));
        QVERIFY(!checker.scenarioUsesSignalPackage(packages.fallback, objects));
        // An equal package that is another object is not used.
        QVERIFY(!checker.scenarioUsesSignalPackage(
            std::make_shared<SignalPackage>(*packages.packages.value("/P")), objects));
        QVERIFY(!checker.scenarioUsesSignalPackage(nullptr, objects));
        QCOMPARE(flags(checker), QStringLiteral("---"));
        releaseScenario(objects);
    }
};

QTEST_GUILESS_MAIN(tst_ScenarioChecker)
#include "tst_scenariochecker.moc"
