#include "commandline.h"
#include "commands.h"
#include "defaultdata.h"

#include <radiosim/documents/scenariodatabinary.h>
#include <radiosim/scenario/cast.h>
#include <radiosim/units/units.h>

#include <QFile>
#include <QSaveFile>

using namespace Simulation;

int runCheck(const QStringList &arguments)
{
    CommandLine commandLine(QStringLiteral("check"), QStringLiteral("check [SCENARIO]"),
        QStringLiteral("Reads a scenario, runs the checker over it and reports what it found and "
                       "repaired. Exit status 0: clean; 2: the checker repaired something; 1: the "
                       "file cannot be opened or is no scenario."));
    commandLine.addScenarioArgument();
    if (!commandLine.parse(arguments, 1))
        return commandLine.status();

    LoadedScenario scenario;
    QString error;
    if (!scenario.load(commandLine.positional(0), error))
        return commandLine.fail(error);
    ScenarioDataXml &document = scenario.file->document();
    printLine(QStringLiteral("scenario: %1").arg(scenario.name));
    printLine(QStringLiteral("name: %1").arg(document.getName()));
    printLine(QStringLiteral("author: %1").arg(document.getAuthor()));
    printLine(QStringLiteral("file format: %1")
                  .arg(document.isOlderFileVersion() ? QStringLiteral("older than version 4")
                                                     : QStringLiteral("version 4")));
    printLine(QStringLiteral("duration: %1 (%2 ms)")
                  .arg(Units::Duration::toString(document.getDuration()))
                  .arg(document.getDuration()));
    printLine(QStringLiteral("emitters: %1").arg(scenario.file->emitters().size()));
    printLine(QStringLiteral("networks: %1").arg(scenario.file->networks().size()));
    if (scenario.repairs.isEmpty()) {
        printLine(QStringLiteral("clean: the checker repaired nothing"));
        return ExitOk;
    }
    for (const QString &repair : scenario.repairs)
        printLine(QStringLiteral("repaired: ") + repair);
    return ExitRepaired;
}

int runConvert(const QStringList &arguments)
{
    CommandLine commandLine(QStringLiteral("convert"),
        QStringLiteral("convert [SCENARIO] -o OUT [--binary]"),
        QStringLiteral("Reads a scenario of any version, older forms included, runs the checker, "
                       "and writes it as a version 4 XML document, or as the binary stream of "
                       "its emitters."));
    QCommandLineParser &parser = commandLine.parser();
    commandLine.addScenarioArgument();
    parser.addOptions({
        { { QStringLiteral("o"), QStringLiteral("output") }, QStringLiteral("The file to write."),
            QStringLiteral("OUT") },
        { QStringLiteral("binary"),
            QStringLiteral("Write the binary stream: the emitters' ids, names, descriptions, "
                           "flags, link targets and classes, nothing else.") },
    });
    if (!commandLine.parse(arguments, 1))
        return commandLine.status();
    const QString output = parser.value(QStringLiteral("output"));
    if (output.isEmpty())
        return commandLine.fail(QStringLiteral("no output file: give -o OUT"), ExitUsage);

    LoadedScenario scenario;
    if (!commandLine.loadScenario(scenario))
        return commandLine.status();

    ScenarioDataXml &document = scenario.file->document();
    // Written aside and renamed, so a failed write leaves no half file behind.
    QSaveFile file(output);
    if (!file.open(QIODevice::WriteOnly))
        return commandLine.fail(
            QStringLiteral("%1: cannot be written: %2").arg(output, file.errorString()));
    if (parser.isSet(QStringLiteral("binary"))) {
        ScenarioDataBinary binary(scenario.library.cache());
        binary.setScenarioEmitter(Cast::emitter(scenario.file->objects()));
        binary.setScenarioNetworks(Cast::networks(scenario.file->objects()));
        binary.setDefaultEmitter(document.getDefaultEmitter());
        binary.setName(document.getName());
        binary.setAuthor(document.getAuthor());
        binary.setDescription(document.getDescription());
        binary.setDuration(document.getDuration());
        binary.setPersistantId(document.getPersistantId());
        binary.toBinary(&file);
    } else {
        document.toXml(&file);
    }
    if (!file.commit())
        return commandLine.fail(
            QStringLiteral("%1: cannot be written: %2").arg(output, file.errorString()));
    return ExitOk;
}
