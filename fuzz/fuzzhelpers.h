#pragma once

// Helpers shared by the fuzz targets.

#include <radiosim/platform/trace.h>

#include <QByteArray>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QString>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

// One input as bytes, without a copy.
inline QByteArray bytesOf(const uint8_t *data, size_t size)
{
    return QByteArray::fromRawData(reinterpret_cast<const char *>(data), int(size));
}

inline QString textOf(const uint8_t *data, size_t size)
{
    return QString::fromUtf8(reinterpret_cast<const char *>(data), int(size));
}

// The application that queued connections and posted calls need, made once. Every trace class
// is on, so that the lines are built, and the category is muted, so that none is printed.
inline void ensureApplication()
{
    static int argc = 1;
    static char name[] = "fuzz";
    static char *argv[] = { name, nullptr };
    static QCoreApplication application(argc, argv);
    if (ErrorHandler::Instance()->traceClasses() == 0) {
        ErrorHandler::Instance()->setTraceClasses(
            ErrorHandler::TraceConnection | ErrorHandler::TraceCommands);
        QLoggingCategory::setFilterRules(QStringLiteral("radiosim.trace.debug=false"));
    }
}

// The input as the content of a file of this process, for the readers that take a file name.
// One file per process, named with the suffix of the first call, overwritten by every input and
// removed when the process ends.
inline QString fileOf(const uint8_t *data, size_t size, const char *suffix)
{
    static const struct Path
    {
        ~Path() { QFile::remove(name); }
        QString name;
    } path { QDir::temp().filePath(QStringLiteral("radiosim-fuzz-%1.%2")
                                       .arg(QCoreApplication::applicationPid())
                                       .arg(QLatin1String(suffix))) };
    QFile file(path.name);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        std::abort();
    file.write(reinterpret_cast<const char *>(data), qint64(size));
    return path.name;
}

// Stretches a reader by milliseconds is asked for: the head, a step across, the last moments of
// a length, and one far beyond it.
struct Stretch
{
    uint start;
    uint duration;
};

inline std::array<Stretch, 4> stretchesFor(uint length)
{
    return { { { 0, 1 }, { 7, 40 }, { length - 1, 3 }, { 0xfffffff0u, 20 } } };
}
