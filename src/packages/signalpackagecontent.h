#pragma once

#include <radiosim/radiosim_export.h>

#include <QString>

namespace Simulation {

// One data file of a package as a package builder describes it in a content section of the
// descriptor. SignalPackage does not carry it, and the descriptor functions neither read nor
// write it.
class RADIOSIM_EXPORT SignalPackageContent
{
public:
    QString name() const { return m_name; }
    void setName(const QString &value) { m_name = value; }
    // Milliseconds.
    quint32 duration() const { return m_duration; }
    void setDuration(quint32 value) { m_duration = value; }
    // CRC-32 of the file as stored, unsigned decimal; carried as text, never computed here.
    QString checksum() const { return m_checksum; }
    void setChecksum(const QString &value) { m_checksum = value; }
    // File name of the source, such as "gauss.ssf".
    QString source() const { return m_source; }
    void setSource(const QString &value) { m_source = value; }
    QString format() const { return m_format; }
    void setFormat(const QString &value) { m_format = value; }

private:
    QString m_name;
    quint32 m_duration = 0;
    QString m_checksum;
    QString m_source;
    QString m_format;
};

} // namespace Simulation
