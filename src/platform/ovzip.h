#pragma once

#include <radiosim/radiosim_export.h>

#include <QString>
#include <QStringList>

#include <memory>

class QuaZip;

namespace OvZip {

// Read access to a zip archive. Nothing is written outside the target a caller names: an entry
// whose name is absolute, carries a drive letter or climbs with ".." is refused, and so is a
// target reached through a symbolic link that leaves the target folder, and so is an entry that
// would unpack to more than 1 GiB or to more than 1000 times its packed size. No operation
// throws.
class RADIOSIM_EXPORT Archive
{
public:
    enum ZipModes { ZipRead = 1 };

    explicit Archive(const QString &fileName);
    ~Archive();
    Archive(const Archive &) = delete;
    Archive &operator=(const Archive &) = delete;

    // Only ZipRead is supported; an archive already open is closed first.
    bool open(int mode);
    // Entry names as stored; folders end with '/'. Empty while not open.
    QStringList files() const;
    // Writes one entry to target, replacing what is there and creating missing folders; a
    // folder entry creates target as a folder. A corrupt entry leaves target untouched.
    bool extractToFile(const QString &entry, const QString &target);
    // Unpacks the entries below folderInArchive ("/Name" or "Name"; empty or "/" for all) into
    // targetFolder with that prefix removed, overwriting what exists, so a repeated unpack ends
    // complete. A refused or failing entry is skipped and the others still unpacked; the answer
    // is then false, as it is when no entry lies below folderInArchive.
    bool extractToFolder(const QString &folderInArchive, const QString &targetFolder);
    bool extractToFolder(const QString &targetFolder);
    void close();

private:
    bool extractEntry(const QString &entry, const QString &target);

    QString m_fileName;
    std::unique_ptr<QuaZip> m_zip;
};

} // namespace OvZip
