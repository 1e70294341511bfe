#pragma once

#include <radiosim/radiosim_export.h>
#include <radiosim/units/settings.h>

#include <QString>
#include <QVector>

namespace Simulation {

// One way point of a route. A leg's time is kept in the point where the leg starts, its speed
// in the point where it ends: the first point's speed and the last point's transition time
// belong to no leg and are only carried.
struct MovementPoint
{
    TPos position;
    // ms of the leg from this point to the next
    uint transitionTime = 0;
    // ms spent here before leaving
    uint dwellTime = 0;
    // false for a shape point between two user way points
    bool major = false;
    QString name;
    // km/h of the leg that arrives here
    double speed = 0.0;
};

// A route of way points travelled at given speeds. Speeds are what the user enters; every
// editing operation recomputes the transition times from them, back to front over the whole
// route, so that a run of minor points takes the speed of the major point that ends it.
class RADIOSIM_EXPORT PositionSettingsPtp : public IPositionSettings
{
public:
    // Two major points: start, and start moved by offset degrees in both coordinates, reached
    // at 50 km/h.
    PositionSettingsPtp(const TPos &start, double offset);

    PositionSettingsType getType() const override;
    // The first point.
    TPos getPosition() const override;
    // Shifts every point by the same degrees; times and speeds stay as they are.
    void setPosition(const TPos &target) override;
    // Moves in straight lines of longitude and latitude, not along great circles.
    TPos getPositionAt(uint time) const override;
    double headingAt(uint time) const override;
    // Lags one leg behind: the speed measured on the leg that arrived at the current point,
    // so -1.0 during the first leg.
    double speedAt(uint time) const override;
    bool isTimeDependend() const override;
    // Only INACTIVE ends; its limit includes the last point's dwell and transition time, which
    // the walk of getPositionAt does not.
    bool isActiveAt(uint time) const override;
    uint activeUntil() const override;
    // Inverted on purpose, its callers rely on it: false for an equal route, true for a
    // different one, false for anything that is no route. The end behaviour is not compared.
    bool equal(const IPositionSettings *other) override;
    IPositionSettings *clone() override;

    const QVector<MovementPoint> &getMovments() const { return movements; }
    // Lists of fewer than two points are ignored. The first point becomes major; a minor last
    // point becomes major at 50 km/h.
    void setMovements(const QVector<MovementPoint> &points);
    // A row out of range gives the last point.
    const MovementPoint &getPoint(int row) const;
    void setPoint(int row, const MovementPoint &point);
    EndBehaviourType getEndBehavior() const { return endBehavior; }
    void setEndBehavior(EndBehaviourType behaviour) { endBehavior = behaviour; }

    // The first point can never be removed.
    bool canRemoveRow(int row) const;
    // A removed major point hands its speed and dwell time (not its name) to a minor point
    // before it.
    void removeRow(int row);
    // distance in degrees, 0.0 for the length of the neighbouring leg. A null name inserts a
    // minor point, any other name (the empty one too) a major point. After the last point an
    // empty name extends the route and keeps its last point last; a non-empty one appends.
    void insertRowAfter(int row, double distance, const QString &name);
    // points[0] is the anchor that lands on row; the others are inserted shifted with it.
    void insertRowsAfter(int row, QVector<MovementPoint> points);
    // A circular arc of `points` minor points that leaves row sideways, turning by angle
    // degrees (the sign gives the direction); radius in metres. Needs at least two points.
    void insertArcAfter(int row, int points, int angle, double radius);

    // km/h that the times give for the leg arriving at row; -1.0 when no leg arrives there or
    // it takes no time.
    float getMovementSpeed(int row) const;
    // Row 0 has no arriving leg and is refused.
    void setMovementSpeed(int row, float speed);
    // ms from route start. min and max, when given, receive the bounds an editor allows.
    uint getArivalTime(int row, uint *min = nullptr, uint *max = nullptr) const;
    // Sets the speed of row so that it is reached at time. The time covers only the last leg
    // but the distance runs back to the preceding major point, so with minor points in between
    // the speed comes out higher than the average; kept, stored routes were edited this way.
    void setArivalTime(int row, uint time);
    uint getDepartureTime(int row, uint *min = nullptr, uint *max = nullptr) const;
    // Sets the dwell time so that row is left at time; an earlier time wraps.
    void setDepartureTime(int row, uint time);

    // km along all legs.
    double length() const;
    // Width and height in km of the bounding box of all points.
    void area(double &width, double &height) const;

private:
    // Recomputes the whole route; the row is not needed.
    void updatePoint(int row);
    bool sameRoute(const PositionSettingsPtp &other) const;
    // Index of the leg (dwell at its first point, then the transition) running at time, with
    // the ms elapsed since it began; a restarting route starts over at the end of the walk,
    // which leaves out the last point's dwell and transition time. -1 past the end otherwise.
    int legAt(uint time, uint &elapsed) const;
    uint sumOfTimesBefore(int row) const;
    // Azimuth and distance of the leg from point `row` to the next, solved once after each
    // edit of the geometry: a device asks heading and speed continuously, and a geodesic costs
    // more than the rest of a query.
    struct Leg
    {
        double azimuth = 0.0;
        double distance = 0.0;
    };
    const Leg &leg(int row) const;

    QVector<MovementPoint> movements;
    EndBehaviourType endBehavior = EndRestart;
    // Empty until a query needs it; emptied whenever a point moves.
    mutable QVector<Leg> legs;
};

} // namespace Simulation
