#include "signalpackagefolder.h"

#include "signalpackagefile.h"

#include <QDir>
#include <QFileInfo>

namespace Simulation {

namespace {
const QString descriptorName = QStringLiteral("Signal.xml");
} // namespace

QString SignalPackageFolder::signalFilePath(const QString &folder)
{
    return QDir(folder).absoluteFilePath(descriptorName);
}

QString SignalPackageFolder::signalShapeFilePath(const QString &folder)
{
    return QDir(folder).absoluteFilePath(QStringLiteral("Signal.ssf"));
}

QString SignalPackageFolder::audioFilePath(const QString &folder)
{
    return QDir(folder).absoluteFilePath(QStringLiteral("Signal.wav"));
}

QString SignalPackageFolder::symbolDataFilePath(const QString &folder)
{
    return QDir(folder).absoluteFilePath(QStringLiteral("Signal.sdf"));
}

QString SignalPackageFolder::resultDataFilePath(const QString &folder)
{
    return QDir(folder).absoluteFilePath(QStringLiteral("Signal.rdf"));
}

bool SignalPackageFolder::isValid(const QString &folder)
{
    return QDir(folder).exists(descriptorName);
}

SignalPackage SignalPackageFolder::signalPackage(const QString &folder)
{
    SignalPackage package = SignalPackageFile::signalPackage(signalFilePath(folder));
    package.setName(QFileInfo(folder).baseName());
    package.setHasAudioContent(QFile::exists(audioFilePath(folder)));
    package.setHasSymbolDataContent(QFile::exists(symbolDataFilePath(folder)));
    package.setHasResultDataContent(QFile::exists(resultDataFilePath(folder)));
    return package;
}

void SignalPackageFolder::setSignalPackage(const QString &folder, const SignalPackage &package)
{
    SignalPackageFile::signalPackageFile(package, signalFilePath(folder));
}

} // namespace Simulation
