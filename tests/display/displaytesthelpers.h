#pragma once

#include <QCoreApplication>
#include <QDir>
#include <QImage>

// Keeps a rendered picture beside the test binary, for a person to look at.
inline bool saveArtefact(const QImage &image, const QString &fileName)
{
    return image.save(QDir(QCoreApplication::applicationDirPath()).filePath(fileName));
}
