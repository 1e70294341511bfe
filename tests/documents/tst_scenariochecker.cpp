#include <radiosim/documents/scenariochecker.h>

#include "documentstesthelpers.h"

#include <QtTest>

using namespace Simulation;

class tst_ScenarioChecker : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // What a pass finds and mends in documents as a client loads them; the flags as packages,
    // classes, settings.
    void checkAndFix_data()
    {
        columns<QByteArray, bool, QString, QStringList>("xml", "provider", "flags", "repaired");
        row("empty", QByteArray(), true, QStringLiteral("---"), QStringList());
        row("clean",
            QByteArray("<Emitter ID='A'><EmissionSettings Duration='10'><Emission StartTime='1' "
                       "Emitter='A' SignalPackage='/P'/></EmissionSettings></Emitter>"),
            true, QStringLiteral("---"), QStringList { "A M10: 1+0>A@/P#0" });
        // An older file that names its package too late leaves the emissions without one.
        const QByteArray unpackaged
            = "<Emitter ID='A'><Timing><Manual><Activity ActiveDuration='2'/>"
              "</Manual></Timing><SignalPackage>/P</SignalPackage>"
              "<Frequency/><Position/></Emitter>";
        row("no package, frequency or position", unpackaged, true, QStringLiteral("P-S"),
            QStringList { "A M2: 0+2>A@/Default/Default#0" });
        row("without a provider the package stays empty", unpackaged, false, QStringLiteral("P-S"),
            QStringList { "A M2: 0+2>A@-#0" });
        row("a network without frequency, seen by its member too",
            QByteArray("<Network ID='N'><Frequency/><Emitter>M</Emitter></Network>"), true,
            QStringLiteral("--S"),
            QStringList { "M net=N",
                "net N '' #ff0000 S head=M [M] fixed 2.5e+07 | "
                "M9223372036854775807: " });
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
        const Objects objects = document.scenarioObjects();
        ISignalPackageProvider *given = provider ? &packages : nullptr;
        const auto run = [&objects, given](ScenarioChecker &checker) {
            const bool found = checker.checkAndFixScenario(objects, given);
            return QStringLiteral("%1%2%3%4")
                .arg(found ? "found " : "")
                .arg(checker.hadInvalidSignalPackages() ? 'P' : '-')
                .arg(checker.hadInvalidClasses() ? 'C' : '-')
                .arg(checker.hadNullPointerSettings() ? 'S' : '-');
        };
        ScenarioChecker checker;
        const QString report = (flags == "---" ? "" : "found ") + flags;
        QCOMPARE(run(checker), report);
        QCOMPARE(describeScenario(objects), repaired);
        // The flags stay with the checker; a new one sees only what is left.
        QCOMPARE(run(checker), report);
        ScenarioChecker fresh;
        QCOMPARE(run(fresh), !provider && flags.startsWith('P') ? "found P--" : "---");
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
        const Objects objects = document.scenarioObjects();
        ScenarioChecker checker;
        QVERIFY(checker.scenarioUsesClass(QStringLiteral("Emitter-Red.ico"), objects));
        QVERIFY(checker.scenarioUsesClass(QString(), objects));
        QVERIFY(!checker.scenarioUsesClass(QStringLiteral("emitter-red.ico"), objects));
        const Package used = packages.packages.value("/P");
        QVERIFY(checker.scenarioUsesSignalPackage(used, objects));
        QVERIFY(!checker.scenarioUsesSignalPackage(packages.fallback, objects));
        // By object: an equal copy is not used.
        QVERIFY(
            !checker.scenarioUsesSignalPackage(std::make_shared<SignalPackage>(*used), objects));
        QVERIFY(!checker.scenarioUsesSignalPackage(nullptr, objects));
        releaseScenario(objects);
    }
};

QTEST_GUILESS_MAIN(tst_ScenarioChecker)
#include "tst_scenariochecker.moc"
