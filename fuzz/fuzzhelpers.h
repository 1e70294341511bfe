#pragma once

// Helpers shared by the fuzz targets.

#include <radiosim/platform/trace.h>

#include <QByteArray>
#include <QCoreApplication>
#include <QLoggingCategory>
#include <QString>

#include <cstddef>
#include <cstdint>

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
