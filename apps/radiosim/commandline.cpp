#include "commandline.h"
#include "defaultdata.h"

#include <radiosim/platform/trace.h>
#include <radiosim/service/simulationsystemconfiguration.h>

#include <QCoreApplication>
#include <QLoggingCategory>

#include <cstdio>

namespace {

void writeLine(FILE *stream, const QString &line)
{
    const QByteArray bytes = line.toUtf8() + '\n';
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stream);
    std::fflush(stream);
}

} // namespace

ServerAddress configuredServer()
{
    Simulation::SimulationSystemConfiguration configuration;
    configuration.loadConfiguation();
    return { configuration.simulationServerAddress(), configuration.simulationServerPort() };
}

void printLine(const QString &line)
{
    writeLine(stdout, line);
}

void printError(const QString &line)
{
    writeLine(stderr, line);
}

CommandLine::CommandLine(const QString &command, const QString &usage, const QString &description)
    : m_command(command)
    , m_usage(usage)
{
    m_parser.setApplicationDescription(description);
    m_parser.addHelpOption();
}

bool CommandLine::parse(const QStringList &arguments, int maxPositional)
{
    if (!m_parser.parse(arguments)) {
        m_status = fail(m_parser.errorText(), ExitUsage);
        return false;
    }
    if (m_parser.isSet(QStringLiteral("help")) || m_parser.isSet(QStringLiteral("help-all"))) {
        // The parser's own first line names the executable's path and no subcommand.
        const QString help = m_parser.helpText();
        std::fputs(qPrintable(QStringLiteral("Usage: radiosim %1\n%2")
                                  .arg(m_usage, help.section(QLatin1Char('\n'), 1))),
            stdout);
        m_status = ExitOk;
        return false;
    }
    if (m_parser.positionalArguments().size() > maxPositional) {
        m_status = fail(QStringLiteral("too many arguments: %1; usage: radiosim %2")
                            .arg(m_parser.positionalArguments().join(QLatin1Char(' ')), m_usage),
            ExitUsage);
        return false;
    }
    return true;
}

QString CommandLine::positional(int index) const
{
    return m_parser.positionalArguments().value(index);
}

bool CommandLine::unsignedValue(const QString &option, uint fallback, uint &value)
{
    value = fallback;
    if (!m_parser.isSet(option))
        return true;
    bool ok = false;
    const QString text = m_parser.value(option);
    value = text.toUInt(&ok);
    if (!ok) {
        m_status = fail(QStringLiteral("--%1 wants a whole number from 0 to 4294967295, not '%2'")
                            .arg(option, text),
            ExitUsage);
    }
    return ok;
}

bool CommandLine::positiveValue(const QString &option, double fallback, double &value)
{
    value = fallback;
    if (!m_parser.isSet(option))
        return true;
    bool ok = false;
    const QString text = m_parser.value(option);
    value = text.toDouble(&ok);
    if (!ok || !(value > 0.0) || qIsInf(value)) {
        m_status = fail(
            QStringLiteral("--%1 wants a number above 0, not '%2'").arg(option, text), ExitUsage);
        return false;
    }
    return true;
}

void CommandLine::addScenarioArgument()
{
    m_parser.addPositionalArgument(QStringLiteral("SCENARIO"),
        QStringLiteral("A scenario XML file of any version (default: the built-in scenario)."));
}

void CommandLine::addSpanOptions()
{
    m_parser.addOptions({
        { QStringLiteral("from"), QStringLiteral("Scenario time to start at (default 0)."),
            QStringLiteral("MS") },
        { QStringLiteral("to"),
            QStringLiteral("Scenario time to end at (default: the scenario's duration)."),
            QStringLiteral("MS") },
    });
}

bool CommandLine::loadScenario(LoadedScenario &scenario)
{
    QString error;
    if (!scenario.load(positional(0), error)) {
        m_status = fail(error);
        return false;
    }
    for (const QString &repair : scenario.repairs)
        fail(scenario.name + QStringLiteral(": repaired: ") + repair);
    return true;
}

bool CommandLine::span(const LoadedScenario &scenario, const QString &verb, uint &from, uint &to)
{
    if (!unsignedValue(QStringLiteral("from"), 0, from)
        || !unsignedValue(QStringLiteral("to"), scenario.file->document().getDuration(), to)) {
        return false;
    }
    if (to <= from) {
        m_status
            = fail(QStringLiteral("nothing to %1 from %2 ms to %3 ms").arg(verb).arg(from).arg(to),
                ExitUsage);
        return false;
    }
    return true;
}

void CommandLine::addTraceOption()
{
    m_parser.addOption({ QStringLiteral("trace"),
        QStringLiteral("Show the library's trace of connections and commands.") });
}

void CommandLine::applyTraceOption() const
{
    if (!m_parser.isSet(QStringLiteral("trace")))
        return;
    QLoggingCategory::setFilterRules(QStringLiteral("radiosim.trace.debug=true"));
    ErrorHandler::Instance()->setTraceClasses(
        ErrorHandler::TraceConnection | ErrorHandler::TraceCommands);
}

int CommandLine::fail(const QString &message, int status) const
{
    printError(QStringLiteral("radiosim %1: %2").arg(m_command, message));
    return status;
}
