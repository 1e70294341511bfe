#include "deploymenttesthelpers.h"

#include <radiosim/deployment/deploymentcast.h>
#include <radiosim/scenario/positionsettings.h>

#include <QtTest>

using namespace Simulation;

class tst_DeploymentObject : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void stationKeepsASetOfDevices()
    {
        const auto station = std::make_shared<DeploymentStation>(QStringLiteral("S"));
        const auto a = makeDevice("A"), b = makeDevice("B");
        QVERIFY(station->addDevice(a) && !station->addDevice(a) && station->addDevice(b));
        QVERIFY(!station->removeDevice(makeDevice("A")) && station->removeDevice(b));
        QVERIFY(!station->removeDevice(b) && station->devices() == QSet { a });
        // The set alone: the device does not learn of its station.
        QVERIFY(!a->hasStation());

        station->setName(QStringLiteral("Renamed"));
        QCOMPARE(describe(*station), QStringLiteral("Renamed|Renamed||0,0"));
        QVERIFY(station->DeploymentObject::name().isEmpty());
        QVERIFY(station->removeDevice(a));
    }

    void deviceStandsWhereItsStationStands()
    {
        const auto station = std::make_shared<DeploymentStation>(QStringLiteral("S"));
        const auto device = makeDevice("D", { 1.0, 2.0 });
        join(station, device);
        device->setPosition({ 9.0, 49.0 });
        QCOMPARE(station->position().lon, 9.0);
        device->setStation(nullptr);
        QCOMPARE(describe(*device), QStringLiteral("D|name of D||1,2|-||||7/0"));

        // Always the own settings, which a device with a station does not show.
        auto *route = new PositionSettingsPtp({ 11.0, 48.0 }, 0.1);
        device->setStation(station);
        device->setPositionSettings(new PositionSettingsFixed({ 3.0, 4.0 }));
        device->setPositionSettings(nullptr);
        station->setPositionSettings(route);
        const uint halfway = route->activeUntil() / 2;
        QCOMPARE(device->positionAt(halfway).lon, route->getPositionAt(halfway).lon);
        QCOMPARE(device->headingAt(halfway), route->headingAt(halfway));
        QCOMPARE(device->speedAt(halfway), route->speedAt(halfway));
        device->setStation(nullptr);
        QCOMPARE(device->position().lat, 4.0);
        releaseDeployment({ station });
    }

    void copyTakesWhatTheKindsShare()
    {
        const auto station = std::make_shared<DeploymentStation>(QStringLiteral("S"));
        station->setIconId(QStringLiteral("station_friend"));
        station->setPosition({ 8.5, 48.25 });
        const auto source = makeDevice("Source", { 1.0, 2.0 });
        source->setDeviceType(QStringLiteral("Receiver"));
        source->setMachine(QStringLiteral("M1"));
        source->setConfiguredStationId(QStringLiteral("C"));
        source->receiverSettings() = { 12.5, 3.0 };
        source->setState(DeploymentDevice::State(5));
        join(station, source);

        const auto target = makeDevice("Target", { 5.0, 6.0 });
        target->setMachine(QStringLiteral("kept"));
        target->copy(station);
        QCOMPARE(describe(*target), QStringLiteral("S|S|station_friend|8.5,48.25|-||kept||7/0"));

        // From a device with a station: its station's position, its station, not its state.
        target->copy(source);
        QCOMPARE(describe(*target),
            QStringLiteral("Source|name of Source||8.5,48.25|S|Receiver|M1|C|12.5/3"));
        QCOMPARE(int(target->state()), 0);
        target->setStation(nullptr);
        QCOMPARE(target->position().lon, 8.5);
        target->setPosition({ 0.5, 0.5 });
        QCOMPARE(station->position().lon, 8.5);

        // A station takes from a device only the shared part, and stays nameless.
        const auto copied = std::make_shared<DeploymentStation>();
        copied->copy(target);
        QCOMPARE(describe(*copied), QStringLiteral("Source|Source||0.5,0.5"));
        copied->copy(nullptr);
        QCOMPARE(copied->id(), QStringLiteral("Source"));
        releaseDeployment({ station, source });
    }

    void cloneIsDeepButSharesMembers()
    {
        const auto station = std::make_shared<DeploymentStation>(QStringLiteral("S"));
        const auto a = makeDevice("A");
        join(station, a);
        join(station, makeDevice("B"));
        const auto clone = Cast::station(station->clone());
        QVERIFY(clone && clone != station && clone->devices() == station->devices());
        clone->setPosition({ 7.0, 7.0 });
        QCOMPARE(station->position().lon, 0.0);

        a->receiverSettings().antennaGain = 2.0;
        const auto device = Cast::device(a->clone());
        QCOMPARE(describe(*device), describe(*a));
        QVERIFY(device->station() == station && !station->devices().contains(device));

        DeploymentStation unshared(QStringLiteral("U"));
        QVERIFY(!unshared.clone());
        releaseDeployment({ station, clone });
    }

    void casts()
    {
        const std::shared_ptr<DeploymentObject> device = makeDevice("D");
        const std::shared_ptr<DeploymentObject> station = std::make_shared<DeploymentStation>();
        QVERIFY(device->type() == 0 && station->type() == 1);
        QVERIFY(Cast::isDevice(device) && !Cast::isDevice(station) && !Cast::isDevice(nullptr));
        QVERIFY(Cast::isStation(station) && !Cast::isStation(device) && !Cast::isStation(nullptr));
        const QSet<std::shared_ptr<DeploymentObject>> all { device, station, nullptr };
        QVERIFY(Cast::objects(Cast::devices(all)) == QSet { device });
        QVERIFY(Cast::objects(Cast::stations(all)) == QSet { station });
    }

    // Either side of each cycle is enough to name.
    void releasedDeploymentDies()
    {
        std::vector<std::weak_ptr<DeploymentObject>> watched;
        {
            const auto first = std::make_shared<DeploymentStation>(QStringLiteral("S1"));
            const auto second = std::make_shared<DeploymentStation>(QStringLiteral("S2"));
            const auto a = makeDevice("A"), b = makeDevice("B");
            join(first, a);
            join(first, b);
            join(second, b);
            watched = { first, second, a, b };
            releaseDeployment({ first, b, nullptr });
            QVERIFY(!a->hasStation() && !b->hasStation() && first->devices().isEmpty());
        }
        for (const auto &object : watched)
            QVERIFY(object.expired());
    }
};

QTEST_GUILESS_MAIN(tst_DeploymentObject)
#include "tst_deploymentobject.moc"
