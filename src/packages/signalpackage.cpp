#include "signalpackage.h"

#include <QRegExp>

namespace Simulation {

bool SignalPackage::hasDigitalModulation() const
{
    return !m_digitalModulation.isEmpty() && m_analogModulation == ModulationDigital;
}

QString SignalPackage::fullName() const
{
    return QStringLiteral("%1/%2").arg(m_path, m_name);
}

QString SignalPackage::cleanId(QString id)
{
    // A local expression: QRegExp keeps match state, so a shared one would not be reentrant.
    const QRegExp unsafe(QStringLiteral("[\\\\/:\\*\\?\"<>|\\.]"));
    return id.replace(unsafe, QStringLiteral("_"));
}

QString SignalPackage::cleanId() const
{
    return cleanId(m_id);
}

} // namespace Simulation
