#pragma once

#include <radiosim/radiosim_export.h>

#include <QString>
#include <QVariant>

// A handle on one section of the configuration store. Sections nest; a handle on a section
// that does not exist is valid and answers every read with its default. The trailing int of
// each operation is reserved for the callers' store options and is passed as 0.
class RADIOSIM_EXPORT ICfg
{
public:
    virtual ~ICfg();

    // A new handle on the sub-section; the caller owns it.
    virtual ICfg *OpenSection(const QString &name, int flags) = 0;
    // True when the sub-section holds at least one key, directly or in a sub-section of its own.
    virtual bool SectionExists(const QString &name, int flags) const = 0;
    virtual QString GetString(const QString &key, const QString &defaultValue, int flags) const = 0;
    // The default also when the stored text is not a number.
    virtual double GetNumber(const QString &key, double defaultValue, int flags) const = 0;
    // Stored at once, for tools and tests; the library itself only reads.
    virtual void SetValue(const QString &key, const QVariant &value) = 0;
};

// The configuration store: one INI file, its sections INI groups ("Simulation/Ports" is the
// section Ports inside Simulation). Each read sees changes another process made to the file.
class RADIOSIM_EXPORT CfgCenter
{
public:
    // Which store a handle reads. There is one store here, so every view reads the same file.
    enum View { ViewDefault = 0, ViewSystem = 4 };

    // A new handle on section (empty: the root); the caller owns it. Handles keep the file
    // that was configured when they were made.
    static ICfg *CreateCfg(QString section, View view, QString name);
    // Sixteen upper-case hexadecimal digits, the same on every call and run on one machine.
    static QString GetMachineId();

    // The INI file behind new handles. By default radiosim/radiosim.ini in the user's generic
    // configuration directory.
    static void setConfigurationFile(const QString &path);
    static QString configurationFile();
};
