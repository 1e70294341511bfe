#pragma once

#include <radiosim/radiosim_export.h>

#include <QtGlobal>

// The operating-system layer: a wall clock in microseconds since 1970-01-01 UTC, so every
// process of one simulation on synchronised machines reads the same time.
class RADIOSIM_EXPORT IOrvoOS
{
public:
    virtual ~IOrvoOS();
    virtual quint64 currentTimeStampUs() const = 0;
};

class RADIOSIM_EXPORT OrvoOS : public IOrvoOS
{
public:
    // The process-wide instance.
    static IOrvoOS *Instance();
    quint64 currentTimeStampUs() const override;
};
