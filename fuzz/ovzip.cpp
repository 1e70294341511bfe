// A zip archive through the archive layer: its entries listed and unpacked into a fresh folder,
// all together and one by one.

#include "fuzzhelpers.h"

#include <radiosim/platform/ovzip.h>

#include <QTemporaryDir>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    OvZip::Archive archive(fileOf(data, size, "zip"));
    if (!archive.open(OvZip::Archive::ZipRead))
        return 0;
    const QTemporaryDir folder;
    archive.extractToFolder(folder.path() + QStringLiteral("/all"));
    for (const QString &entry : archive.files())
        archive.extractToFile(entry, folder.path() + QStringLiteral("/one"));
    return 0;
}
