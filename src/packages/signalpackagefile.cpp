#include "signalpackagefile.h"

#include <radiosim/service/xmlelement.h>
#include <radiosim/service/xmllimits_p.h>

#include <QDomDocument>
#include <QDomElement>
#include <QFile>
#include <QSet>

namespace Simulation {

namespace {

const QString tagSignalPackage = QStringLiteral("SignalPackage");
const QString tagUpdateId = QStringLiteral("UpdateID");
const QString tagMetaData = QStringLiteral("MetaData");
const QString tagName = QStringLiteral("Name");
const QString tagAuthor = QStringLiteral("Author");
const QString tagBandwidth = QStringLiteral("Bandwidth");
const QString tagAnalogModulation = QStringLiteral("AnalogModulation");
const QString tagDuration = QStringLiteral("Duration");
const QString tagDigitalModulation = QStringLiteral("DigitalModulation");
const QString attrFileFormatVersion = QStringLiteral("FileFormatVersion");
const QString attrTimestamp = QStringLiteral("Timestamp");
const QString attrUid = QStringLiteral("UID");

} // namespace

SignalPackage SignalPackageFile::signalPackage(const QByteArray &xml)
{
    return readSignalPackageDescriptor(xml);
}

SignalPackage SignalPackageFile::signalPackage(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return SignalPackage();
    return readSignalPackageDescriptor(file.readAll());
}

bool SignalPackageFile::signalPackageFile(const SignalPackage &package, const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(writeSignalPackageDescriptor(package));
    return true;
}

SignalPackage SignalPackageFile::readSignalPackageDescriptor(const QByteArray &xml)
{
    SignalPackage package;
    if (!isModestXml(xml, true))
        return package;
    QDomDocument document;
    // The verdict is not asked: descriptors of the default data carry stray bytes behind the
    // root, and the tree parsed up to there holds every field.
    document.setContent(xml);
    const QDomElement root = document.documentElement();

    package.setTimestamp(root.attribute(attrTimestamp).toUInt(nullptr, 10));
    package.setId(root.attribute(attrUid));

    QStringList updateIds;
    for (QDomElement update = root.firstChildElement(tagUpdateId); !update.isNull();
         update = update.nextSiblingElement(tagUpdateId))
        updateIds << update.attribute(attrUid);
    package.setUpdateIds(updateIds);

    const QDomElement metaData = root.firstChildElement(tagMetaData);
    package.setName(metaData.firstChildElement(tagName).text());
    package.setAuthor(metaData.firstChildElement(tagAuthor).text());

    package.setSignalBandwidth(float(root.firstChildElement(tagBandwidth).text().toDouble()));
    package.setAnalogModulation(
        analogModulationFromString(root.firstChildElement(tagAnalogModulation).text()));
    package.setDuration(root.firstChildElement(tagDuration).text().toUInt(nullptr, 10));

    const QDomElement digital = root.firstChildElement(tagDigitalModulation);
    if (!digital.isNull() && !digital.text().isNull())
        package.setDigitalModulation(digital.text());
    return package;
}

QByteArray SignalPackageFile::writeSignalPackageDescriptor(const SignalPackage &package)
{
    XmlElement root(tagSignalPackage);
    root.setAttribute(attrFileFormatVersion, QStringLiteral("0"));
    root.setAttribute(attrTimestamp, QString::number(package.timestamp(), 10));
    root.setAttribute(attrUid, package.id());

    const QStringList &ids = package.updateIds();
    for (const QString &id : QSet<QString>(ids.begin(), ids.end())) {
        XmlElement update(tagUpdateId);
        update.setAttribute(attrUid, id);
        root.appendElement(update);
    }

    XmlElement metaData(tagMetaData);
    metaData.setChildText(tagName, package.name());
    metaData.setChildText(tagAuthor, package.author());
    root.appendElement(metaData);

    root.setChildText(tagBandwidth, QString::number(double(package.signalBandwidth()), 'g', 6));
    root.setChildText(tagAnalogModulation, analogModulationToString(package.analogModulation()));
    root.setChildText(tagDuration, QString::number(package.duration(), 10));
    if (package.hasDigitalModulation())
        root.setChildText(tagDigitalModulation, package.digitalModulation());
    return root.toByteArray();
}

} // namespace Simulation
