#pragma once

#include <radiosim/platform/trace.h>

// Writes a trace line of the given class bit with this source file and line; the message is
// only built when the class is active.
#define SERVICE_TRACE(traceClass, message)                                                         \
    do {                                                                                           \
        if (ErrorHandler::Instance()->isTraceActive(traceClass))                                   \
            _Q_Trace((message), QStringLiteral(__FILE__), __LINE__);                               \
    } while (false)
