#include "commondataxml.h"

#include "documentnumbers_p.h"
#include "documenttags_p.h"

#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace Simulation {

namespace {

QString coordinateText(double value)
{
    return QString::number(value, 'g', 14);
}

} // namespace

bool CommonDataXml::toBool(const QStringRef &text)
{
    return text.contains(Tag::True, Qt::CaseInsensitive);
}

EndBehaviourType CommonDataXml::stringToEndBehavior(const QString &text)
{
    if (text == Tag::Restart)
        return EndRestart;
    if (text == Tag::Inactive)
        return EndInactive;
    return EndStop;
}

QString CommonDataXml::endBehaviorToString(EndBehaviourType value)
{
    switch (value) {
    case EndStop:
        return Tag::Stop;
    case EndInactive:
        return Tag::Inactive;
    default:
        return Tag::Restart;
    }
}

TPos CommonDataXml::readCoordinate(QXmlStreamReader &reader)
{
    TPos pos;
    while (reader.readNextStartElement()) {
        if (reader.name() == Tag::Lat)
            pos.lat = documentDouble(reader.readElementText());
        else if (reader.name() == Tag::Lon)
            pos.lon = documentDouble(reader.readElementText());
        else
            reader.skipCurrentElement();
    }
    return pos;
}

void CommonDataXml::writeCoordinate(TPos pos, QXmlStreamWriter &writer)
{
    writer.writeTextElement(Tag::Lon, coordinateText(pos.lon));
    writer.writeTextElement(Tag::Lat, coordinateText(pos.lat));
}

IPositionSettings *CommonDataXml::readPositionSettings(QXmlStreamReader &reader)
{
    IPositionSettings *result = nullptr;
    while (reader.readNextStartElement()) {
        if (reader.name() == Tag::Fixed) {
            auto *fixed = new PositionSettingsFixed(TPos());
            fixed->setPosition(readCoordinate(reader));
            delete result;
            result = fixed;
        } else if (reader.name() == Tag::Movement) {
            auto *route = new PositionSettingsPtp(TPos(), 0.01);
            route->setEndBehavior(
                stringToEndBehavior(reader.attributes().value(Tag::EndBehavior).toString()));
            route->setMovements(readMovements(reader));
            delete result;
            result = route;
        } else {
            reader.skipCurrentElement();
        }
    }
    return result;
}

void CommonDataXml::writePositionSettings(
    const IPositionSettings *settings, QXmlStreamWriter &writer)
{
    if (!settings)
        return;
    if (settings->getType() == PositionFixed) {
        writer.writeStartElement(Tag::Fixed);
        writeCoordinate(settings->getPosition(), writer);
        writer.writeEndElement();
    } else if (const auto *route = dynamic_cast<const PositionSettingsPtp *>(settings)) {
        writer.writeStartElement(Tag::Movement);
        writer.writeAttribute(Tag::EndBehavior, endBehaviorToString(route->getEndBehavior()));
        writeMovements(route->getMovments(), writer);
        writer.writeEndElement();
    }
}

QVector<MovementPoint> CommonDataXml::readMovements(QXmlStreamReader &reader)
{
    QVector<MovementPoint> points;
    while (reader.readNextStartElement()) {
        if (reader.name() != Tag::Position) {
            reader.skipCurrentElement();
            continue;
        }
        const QXmlStreamAttributes attributes = reader.attributes();
        MovementPoint point;
        point.dwellTime = documentUInt(attributes.value(Tag::DWellTime));
        point.transitionTime = documentUInt(attributes.value(Tag::TransitionTime));
        point.major = toBool(attributes.value(Tag::Major));
        if (point.major) {
            point.speed = documentDouble(attributes.value(Tag::Speed));
            point.name = attributes.value(Tag::Name).toString();
        }
        point.position = readCoordinate(reader);
        points.append(point);
    }
    return points;
}

void CommonDataXml::writeMovements(const QVector<MovementPoint> &points, QXmlStreamWriter &writer)
{
    for (const MovementPoint &point : points) {
        writer.writeStartElement(Tag::Position);
        writer.writeAttribute(Tag::DWellTime, QString::number(point.dwellTime, 10));
        writer.writeAttribute(Tag::TransitionTime, QString::number(point.transitionTime, 10));
        if (point.major) {
            writer.writeAttribute(Tag::Major, Tag::True);
            writer.writeAttribute(Tag::Speed, QString::number(point.speed, 'g', 6));
            writer.writeAttribute(Tag::Name, point.name);
        } else {
            writer.writeAttribute(Tag::Major, Tag::False);
        }
        writeCoordinate(point.position, writer);
        writer.writeEndElement();
    }
}

QString CommonDataXml::xmlForMovements(const QVector<MovementPoint> &points)
{
    QString xml;
    QXmlStreamWriter writer(&xml);
    writer.setAutoFormatting(true);
    writer.writeStartDocument();
    writer.writeStartElement(Tag::MovementsXml);
    writeMovements(points, writer);
    writer.writeEndElement();
    writer.writeEndDocument();
    return xml;
}

QVector<MovementPoint> CommonDataXml::movementsForXml(const QString &xml)
{
    QXmlStreamReader reader(xml);
    reader.readNextStartElement();
    return readMovements(reader);
}

} // namespace Simulation
