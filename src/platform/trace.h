#pragma once

#include <radiosim/radiosim_export.h>

#include <atomic>
#include <QLoggingCategory>
#include <QString>

RADIOSIM_EXPORT Q_DECLARE_LOGGING_CATEGORY(lcRadioSimTrace)

    // Holds the word of active trace classes. A trace line of a class goes out only if the
    // class bit is set in the word; none is set at start.
    class RADIOSIM_EXPORT ErrorHandler
{
public:
    // Bits in use: connection changes, heart-beat loss and rejected commands...
    static constexpr quint32 TraceConnection = 32;
    // ...and socket errors, XML errors and processed commands.
    static constexpr quint32 TraceCommands = 64;

    static ErrorHandler *Instance();

    quint32 traceClasses() const;
    void setTraceClasses(quint32 classes);
    bool isTraceActive(quint32 traceClass) const;

private:
    ErrorHandler() = default;
    std::atomic<quint32> m_uiTraceClasses { 0 };
};

// Writes one trace line through the lcRadioSimTrace category (debug level), so Qt users can
// filter or route it. The caller tests the class bit first.
RADIOSIM_EXPORT void _Q_Trace(const QString &message, const QString &sourceFile, ushort line);
