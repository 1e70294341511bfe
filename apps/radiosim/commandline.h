#pragma once

#include <QCommandLineParser>
#include <QString>
#include <QStringList>

// Exit statuses shared by the subcommands.
enum ExitStatus {
    ExitOk = 0,
    ExitFailure = 1,
    // check: the checker repaired something.
    ExitRepaired = 2,
    // device: the server's confirmation does not belong to this device.
    ExitRejected = 3,
    // An option, a number or a command the tool does not understand.
    ExitUsage = 64
};

struct LoadedScenario;

// Writes one line to standard output or standard error, UTF-8, flushed at once so that a
// process reading the tool line by line sees it.
void printLine(const QString &line);
void printError(const QString &line);

// Where the simulation server is unless told otherwise: the system configuration's address and
// port, 127.0.0.1:57401 when nothing is configured.
struct ServerAddress
{
    QString host;
    quint16 port = 0;
};
ServerAddress configuredServer();

// The command line of one subcommand: its parser, its help, and the reading of numbers, each
// mistake told in one line on standard error as "radiosim COMMAND: ...".
class CommandLine
{
public:
    // usage: the part after "radiosim", e.g. "play [SCENARIO] [options]".
    CommandLine(const QString &command, const QString &usage, const QString &description);

    QCommandLineParser &parser() { return m_parser; }
    // False when the command ends here, with status() to return: after --help, or after a
    // mistake already reported. At most maxPositional arguments are accepted.
    bool parse(const QStringList &arguments, int maxPositional);
    int status() const { return m_status; }
    // The positional argument at index, empty when not given.
    QString positional(int index) const;

    // The option's value, or fallback when it is not given. A value that is no number in
    // range is reported and answers false.
    bool unsignedValue(const QString &option, uint fallback, uint &value);
    bool positiveValue(const QString &option, double fallback, double &value);

    // The optional SCENARIO argument, and --from and --to of a span in it.
    void addScenarioArgument();
    void addSpanOptions();
    // Reads the scenario named, the default one without a name, and tells what the checker
    // repaired on standard error.
    bool loadScenario(LoadedScenario &scenario);
    // --from and --to, the end by default the scenario's duration; an empty span is reported
    // with what would have been done to it (verb).
    bool span(const LoadedScenario &scenario, const QString &verb, uint &from, uint &to);

    // --trace: the library's trace lines of connections and commands on standard error.
    void addTraceOption();
    void applyTraceOption() const;

    // Reports message and answers status, for `return fail(...)`.
    int fail(const QString &message, int status = ExitFailure) const;

private:
    QString m_command;
    QString m_usage;
    QCommandLineParser m_parser;
    int m_status = ExitOk;
};
