#include "ovzip.h"

#include <quazip/quazip.h>
#include <quazip/quazipfile.h>
#include <quazip/quazipfileinfo.h>

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

namespace OvZip {

namespace {

constexpr qint64 ChunkSize = 64 * 1024;
// An entry is not unpacked past these: a few bytes of archive must not fill the disk.
constexpr quint64 MaxEntrySize = quint64(1) << 30;
constexpr quint64 MaxCompressionRatio = 1000;

bool isPlausibleSize(const QuaZipFileInfo64 &info)
{
    return info.uncompressedSize <= MaxEntrySize
        && info.uncompressedSize <= info.compressedSize * MaxCompressionRatio;
}

QString slashed(const QString &name)
{
    return QString(name).replace(QLatin1Char('\\'), QLatin1Char('/'));
}

// A relative path that stays below wherever it is joined: no root, no drive, no "..".
bool isSafeEntryName(const QString &name)
{
    const QString path = slashed(name);
    if (path.isEmpty() || path.startsWith(QLatin1Char('/')))
        return false;
    const ushort drive = path.at(0).unicode();
    if (path.size() > 1 && path.at(1) == QLatin1Char(':')
        && ((drive >= 'A' && drive <= 'Z') || (drive >= 'a' && drive <= 'z')))
        return false;
    return !path.split(QLatin1Char('/')).contains(QStringLiteral(".."));
}

bool isInside(const QString &canonicalPath, const QString &canonicalRoot)
{
    return canonicalPath == canonicalRoot
        || canonicalPath.startsWith(canonicalRoot + QLatin1Char('/'));
}

// Whether folder, once created, lies below root: its deepest existing ancestor must, so a
// symbolic link already in the tree cannot carry the new folders elsewhere.
bool staysInside(QString folder, const QString &canonicalRoot)
{
    while (!QFileInfo::exists(folder)) {
        const QString parent = QFileInfo(folder).absolutePath();
        if (parent == folder)
            return false;
        folder = parent;
    }
    return isInside(QFileInfo(folder).canonicalFilePath(), canonicalRoot);
}

} // namespace

Archive::Archive(const QString &fileName)
    : m_fileName(fileName)
{
}

Archive::~Archive() = default;

bool Archive::open(int mode)
{
    close();
    if (mode != ZipRead)
        return false;
    try {
        auto zip = std::make_unique<QuaZip>(m_fileName);
        if (!zip->open(QuaZip::mdUnzip))
            return false;
        m_zip = std::move(zip);
        return true;
    } catch (...) {
        return false;
    }
}

QStringList Archive::files() const
{
    if (!m_zip)
        return {};
    try {
        return m_zip->getFileNameList();
    } catch (...) {
        return {};
    }
}

bool Archive::extractToFile(const QString &entry, const QString &target)
{
    if (!m_zip || !isSafeEntryName(entry))
        return false;
    try {
        return extractEntry(entry, target);
    } catch (...) {
        return false;
    }
}

bool Archive::extractToFolder(const QString &folderInArchive, const QString &targetFolder)
{
    if (!m_zip || !QDir().mkpath(targetFolder))
        return false;
    QString folder = slashed(folderInArchive);
    while (folder.startsWith(QLatin1Char('/')))
        folder.remove(0, 1);
    while (folder.endsWith(QLatin1Char('/')))
        folder.chop(1);
    const QString prefix = folder.isEmpty() ? QString() : folder + QLatin1Char('/');
    const QString root = QFileInfo(targetFolder).canonicalFilePath();

    bool ok = true;
    bool found = false;
    for (const QString &name : files()) {
        if (!name.startsWith(prefix))
            continue;
        const QString relative = name.mid(prefix.size());
        if (relative.isEmpty())
            continue;
        found = true;
        const QString target = root + QLatin1Char('/') + slashed(relative);
        if (!isSafeEntryName(relative) || !staysInside(QFileInfo(target).absolutePath(), root)) {
            ok = false;
            continue;
        }
        try {
            ok = extractEntry(name, target) && ok;
        } catch (...) {
            ok = false;
        }
    }
    return ok && (found || prefix.isEmpty());
}

bool Archive::extractToFolder(const QString &targetFolder)
{
    return extractToFolder(QString(), targetFolder);
}

void Archive::close()
{
    if (!m_zip)
        return;
    try {
        m_zip->close();
    } catch (...) {
    }
    m_zip.reset();
}

bool Archive::extractEntry(const QString &entry, const QString &target)
{
    if (entry.endsWith(QLatin1Char('/')))
        return QDir().mkpath(target);
    if (!m_zip->setCurrentFile(entry, QuaZip::csSensitive))
        return false;
    const QFileInfo targetInfo(target);
    if (!QDir().mkpath(targetInfo.absolutePath()))
        return false;
    // Replace a link rather than write through it to wherever it points.
    if (targetInfo.isSymLink() && !QFile::remove(target))
        return false;

    QuaZipFileInfo64 info;
    if (!m_zip->getCurrentFileInfo(&info) || !isPlausibleSize(info))
        return false;
    QuaZipFile in(m_zip.get());
    if (!in.open(QIODevice::ReadOnly))
        return false;
    const qint64 expected = in.usize();
    QSaveFile out(target);
    if (!out.open(QIODevice::WriteOnly))
        return false;
    qint64 total = 0;
    QByteArray chunk;
    while (!(chunk = in.read(ChunkSize)).isEmpty()) {
        total += chunk.size();
        if (total > expected || out.write(chunk) != chunk.size())
            return false;
    }
    // Closing checks the CRC, but only once everything was read: a read that stopped early
    // shows in the size. Either way the half-written copy is dropped.
    in.close();
    if (in.getZipError() != UNZ_OK || total != expected)
        return false;
    return out.commit();
}

} // namespace OvZip
