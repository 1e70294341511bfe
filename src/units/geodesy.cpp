#include "geodesy.h"

#include <radiosim/platform/georef.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace Simulation {

namespace {
constexpr QDir::Filters walkFilter
    = QDir::NoDotAndDotDot | QDir::Hidden | QDir::System | QDir::AllDirs | QDir::Files;
}

double azimuth(const TPos &from, const TPos &to)
{
    const double a[2] = { from.lon, from.lat };
    const double b[2] = { to.lon, to.lat };
    return Georef::azimuth(a, b);
}

double distance(const TPos &from, const TPos &to)
{
    const double a[2] = { from.lon, from.lat };
    const double b[2] = { to.lon, to.lat };
    return Georef::distance(a, b, 1.0f);
}

TPos position(const TPos &from, double azimuth, double distance)
{
    const double start[2] = { from.lon, from.lat };
    double out[2] = { 0.0, 0.0 };
    Georef::destination(start, azimuth, distance, out);
    return TPos { out[0], out[1] };
}

bool copyDir(const QString &source, const QString &target)
{
    QDir(target).mkpath(QStringLiteral("."));
    QDir sourceDir(source);
    if (!sourceDir.exists())
        return true;
    const QFileInfoList entries = sourceDir.entryInfoList(walkFilter, QDir::DirsFirst);
    for (const QFileInfo &entry : entries) {
        const QString destination = target + QLatin1Char('/') + entry.fileName();
        const bool ok = entry.isDir() ? copyDir(entry.filePath(), destination)
                                      : QFile::copy(entry.filePath(), destination);
        if (!ok)
            return false;
    }
    return true;
}

bool removeDir(const QString &path)
{
    QDir dir(path);
    if (!dir.exists())
        return true;
    const QFileInfoList entries = dir.entryInfoList(walkFilter, QDir::DirsFirst);
    for (const QFileInfo &entry : entries) {
        const bool ok = entry.isDir() && !entry.isSymLink() ? removeDir(entry.filePath())
                                                            : QFile::remove(entry.filePath());
        if (!ok)
            return false;
    }
    return dir.rmdir(dir.absolutePath());
}

} // namespace Simulation
