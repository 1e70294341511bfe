// radiosim: plays, draws, checks, converts and serves scenarios with the radiosim library.

#include "commandline.h"
#include "commands.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QLoggingCategory>

#include <cstdio>
#include <cstring>
#include <memory>

namespace {

struct Subcommand
{
    const char *name;
    const char *summary;
    int (*run)(const QStringList &arguments);
};

const Subcommand subcommands[] = {
    { "play", "print what is on air, window by window, as a device computes it", runPlay },
    { "timeline", "draw who is on air when as a PNG image", runTimeline },
    { "check", "read a scenario and report what the checker repairs", runCheck },
    { "convert", "write a scenario as version 4 XML or as the binary stream", runConvert },
    { "describe", "show a signal package, descriptor, archive or data file", runDescribe },
    { "serve", "run a simulation server for devices", runServe },
    { "device", "run a simulation device against a server", runDevice },
};

// Trace lines of the library go out when the user switched them on (serve and device have
// --trace, or QT_LOGGING_RULES); Qt's own chatter would only bury the tool's one-line errors.
void handleMessage(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (std::strcmp(context.category ? context.category : "", "radiosim.trace") == 0)
        printError(QStringLiteral("trace: ") + message);
    else if (type == QtCriticalMsg || type == QtFatalMsg)
        printError(QStringLiteral("radiosim: ") + message);
}

int usage(FILE *stream)
{
    QString text = QStringLiteral("Usage: radiosim COMMAND [options] [arguments]\n"
                                  "       radiosim COMMAND --help\n"
                                  "       radiosim --version\n\n"
                                  "Without a file, every command works on the built-in default "
                                  "scenario and signal library.\n\nCommands:\n");
    for (const Subcommand &command : subcommands)
        text += QStringLiteral("  %1 %2\n")
                    .arg(QLatin1String(command.name), -10)
                    .arg(QLatin1String(command.summary));
    std::fputs(text.toUtf8().constData(), stream);
    return stream == stdout ? ExitOk : ExitUsage;
}

} // namespace

int main(int argc, char **argv)
{
    qInstallMessageHandler(handleMessage);
    const char *name = argc > 1 ? argv[1] : "";
    // Only the timeline draws text, and fonts need a GUI application; it never needs a display.
    std::unique_ptr<QCoreApplication> app;
    if (std::strcmp(name, "timeline") == 0) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        app = std::make_unique<QGuiApplication>(argc, argv);
    } else {
        app = std::make_unique<QCoreApplication>(argc, argv);
    }
    QCoreApplication::setApplicationName(QStringLiteral("radiosim"));
    QCoreApplication::setApplicationVersion(QStringLiteral(RADIOSIM_VERSION));

    QStringList arguments = QCoreApplication::arguments();
    const QString command = arguments.value(1);
    if (command == QLatin1String("--help") || command == QLatin1String("-h"))
        return usage(stdout);
    if (command == QLatin1String("--version") || command == QLatin1String("-v")) {
        printLine(QStringLiteral("radiosim " RADIOSIM_VERSION));
        return ExitOk;
    }
    if (command.isEmpty()) {
        printError(QStringLiteral("radiosim: no command given"));
        return usage(stderr);
    }
    for (const Subcommand &subcommand : subcommands) {
        if (command == QLatin1String(subcommand.name)) {
            arguments.removeFirst();
            return subcommand.run(arguments);
        }
    }
    printError(QStringLiteral("radiosim: unknown command '%1'; radiosim --help lists the commands")
                   .arg(command));
    return ExitUsage;
}
