#pragma once

#include <radiosim/radiosim_export.h>
#include <radiosim/scenario/positionsettings.h>
#include <radiosim/units/settings.h>
#include <radiosim/units/simulationtypes.h>

#include <QString>
#include <QStringRef>
#include <QVector>

class QXmlStreamReader;
class QXmlStreamWriter;

namespace Simulation {

// What the scenario and the deployment documents say alike: booleans, end behaviours,
// coordinates and positions. Silent and tolerant: a bad number is 0, an absent attribute empty,
// an unknown child skipped, and after an XML error the loops end with what they have.
// Readers start on the enclosing element's start tag and leave on its end tag.
class RADIOSIM_EXPORT CommonDataXml
{
public:
    // True when the text contains "true" in any case anywhere: "untrue" and "TRUE-ish" too.
    static bool toBool(const QStringRef &text);
    // Exact and case-sensitive; anything else is STOP.
    static EndBehaviourType stringToEndBehavior(const QString &text);
    // Any number but STOP and INACTIVE is "RESTART".
    static QString endBehaviorToString(EndBehaviourType value);

    // Longitude and latitude from the children Lon and Lat, the last of each counting.
    static TPos readCoordinate(QXmlStreamReader &reader);
    // Lon and Lat with 14 significant digits.
    static void writeCoordinate(TPos pos, QXmlStreamWriter &writer);

    // From a Fixed or Movement child, the last one counting; null without either. Owned by the
    // caller. A route keeps the two default points unless the file gives at least two, and
    // its transition times are worked out anew from the speeds.
    static IPositionSettings *readPositionSettings(QXmlStreamReader &reader);
    // The Fixed or Movement child into an element the caller opened; nothing for null.
    static void writePositionSettings(const IPositionSettings *settings, QXmlStreamWriter &writer);

    // The Position children as they stand, with no recomputation. A minor point takes neither
    // speed nor name from the file.
    static QVector<MovementPoint> readMovements(QXmlStreamReader &reader);
    // One Position per point; speeds with 6 significant digits, as they stand.
    static void writeMovements(const QVector<MovementPoint> &points, QXmlStreamWriter &writer);

    // A document of its own with the root "MovementsXml", and back. The reverse reads the
    // points below any root.
    static QString xmlForMovements(const QVector<MovementPoint> &points);
    static QVector<MovementPoint> movementsForXml(const QString &xml);
};

} // namespace Simulation
