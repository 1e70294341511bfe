// A program that uses radiosim only through its installed package: an emitter on a
// 145.5 MHz fixed frequency, on air from 100 to 300 ms of every second, asked for the
// activity of a window, and a command element of the service protocol.
#include <radiosim/scenario/emissionsettings.h>
#include <radiosim/scenario/scenarioobject.h>
#include <radiosim/service/xmlelement.h>
#include <radiosim/units/geodesy.h>

#include <QTextStream>

int main()
{
    using namespace Simulation;
    auto emitter
        = std::make_shared<SzenarioEmitter>(QStringLiteral("EM1"), QStringLiteral("Tower"));
    emitter->frequencySettings()->setCenterFrequency(145500000.0);
    EmissionSettings *timetable = emitter->emissionSettings();
    timetable->setDuration(1000);
    auto entry = timetable->createEmission();
    entry->start = 100;
    entry->duration = 200;
    entry->emitter = emitter;
    timetable->addEmission(entry);

    QTextStream out(stdout);
    out << "distance "
        << QString::number(distance({ 11.4208, 48.1967 }, { 11.4013, 48.1576 }), 'f', 3) << " km\n";
    for (const HRActivity &burst : emitter->calculateBursts(1000, 1000, 1.0))
        out << "burst " << burst.start << "+" << burst.duration << " at "
            << QString::number(burst.frequency, 'f', 0) << " Hz\n";
    out << "element " << XmlElement(QStringLiteral("Command")).tagName() << "\n";

    releaseScenario({ emitter });
    return 0;
}
