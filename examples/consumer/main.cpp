// A program that uses radiosim only through its installed package.
#include <radiosim/units/geodesy.h>
#include <radiosim/units/settings.h>

#include <QTextStream>

int main()
{
    const Simulation::TPos from { 11.4208, 48.1967 };
    const Simulation::TPos to { 11.4013, 48.1576 };
    Simulation::FrequencySettingsFixed frequency;
    frequency.setCenterFrequency(145500000.0);

    QTextStream out(stdout);
    out << "distance " << QString::number(Simulation::distance(from, to), 'f', 3) << " km, "
        << "frequency " << QString::number(frequency.getFrequencyAt(0), 'f', 0) << " Hz\n";
    return 0;
}
