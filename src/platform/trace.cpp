#include "trace.h"

Q_LOGGING_CATEGORY(lcRadioSimTrace, "radiosim.trace")

ErrorHandler *ErrorHandler::Instance()
{
    static ErrorHandler instance;
    return &instance;
}

quint32 ErrorHandler::traceClasses() const
{
    return m_uiTraceClasses.load();
}

void ErrorHandler::setTraceClasses(quint32 classes)
{
    m_uiTraceClasses.store(classes);
}

bool ErrorHandler::isTraceActive(quint32 traceClass) const
{
    return (m_uiTraceClasses.load() & traceClass) != 0;
}

void _Q_Trace(const QString &message, const QString &sourceFile, ushort line)
{
    qCDebug(lcRadioSimTrace).noquote()
        << QStringLiteral("%1(%2): %3").arg(sourceFile).arg(line).arg(message);
}
