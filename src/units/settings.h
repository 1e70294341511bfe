#pragma once

#include <radiosim/radiosim_export.h>
#include <radiosim/units/simulationtypes.h>

namespace Simulation {

constexpr uint NoEnd = 4294967295u;

// Receives activity records one at a time, without a list being built; answering false stops
// the producer. Refers to the callable, which must outlive it.
class HRActivitySink
{
public:
    template <typename Callable>
    HRActivitySink(Callable &callable) // NOLINT(google-explicit-constructor)
        : m_object(&callable)
        , m_call([](void *object, const HRActivity &activity) {
            return (*static_cast<Callable *>(object))(activity);
        })
    {
    }
    bool operator()(const HRActivity &activity) const { return m_call(m_object, activity); }

private:
    void *m_object;
    bool (*m_call)(void *, const HRActivity &);
};

// What `visit` hands to the sink it is called with, as a list.
template <typename Visit> QList<HRActivity> collectActivities(const Visit &visit)
{
    QList<HRActivity> records;
    auto append = [&records](const HRActivity &record) {
        records.append(record);
        return true;
    };
    visit(HRActivitySink(append));
    return records;
}

// Frequency behaviour of an emitter or network over scenario time (ms).
class RADIOSIM_EXPORT IFrequencySettings
{
public:
    virtual ~IFrequencySettings();
    virtual FrequencySettingsType getType() const = 0;
    virtual double getCenterFrequency() const = 0;
    virtual void setCenterFrequency(double frequency) = 0;
    virtual double getMinimumFrequency() const = 0;
    virtual double getMaximumFrequency() const = 0;
    virtual double getFrequencyAt(uint time) const = 0;
    virtual bool isTimeDependend() const = 0;
    virtual bool isActiveAt(uint time) const = 0;
    // Constant-frequency pieces of [start, start + length), sorted by time.
    virtual QList<HRActivity> calculateHRActivities(
        uint start, uint length, double resolution) const = 0;
    // NoEnd if the behaviour never ends.
    virtual uint activeUntil() const = 0;
    virtual bool equal(const IFrequencySettings *other) const = 0;
    // New object of the same class, owned by the caller.
    virtual IFrequencySettings *clone() const = 0;
    // The pieces of calculateHRActivities, in the same order, handed to `sink`: the burst
    // merge runs on a device's real-time path and need not pay for a list it throws away.
    // The default walks the list of calculateHRActivities.
    virtual void visitHRActivities(
        uint start, uint length, double resolution, const HRActivitySink &sink) const;

protected:
    // calculateHRActivities for classes that produce their pieces in visitHRActivities.
    QList<HRActivity> collectHRActivities(uint start, uint length, double resolution) const;
};

// Position behaviour of an emitter or deployment object over scenario time (ms).
class RADIOSIM_EXPORT IPositionSettings
{
public:
    virtual ~IPositionSettings();
    virtual PositionSettingsType getType() const = 0;
    virtual TPos getPosition() const = 0;
    virtual void setPosition(const TPos &position) = 0;
    virtual TPos getPositionAt(uint time) const = 0;
    virtual double headingAt(uint time) const = 0;
    virtual double speedAt(uint time) const = 0;
    virtual bool isTimeDependend() const = 0;
    virtual bool isActiveAt(uint time) const = 0;
    virtual uint activeUntil() const = 0;
    virtual bool equal(const IPositionSettings *other) = 0;
    virtual IPositionSettings *clone() = 0;
};

class RADIOSIM_EXPORT FrequencySettingsFixed : public IFrequencySettings
{
public:
    FrequencySettingsFixed() = default;
    FrequencySettingsFixed(const FrequencySettingsFixed &) = default;
    FrequencySettingsFixed &operator=(const FrequencySettingsFixed &) = default;

    FrequencySettingsType getType() const override;
    double getCenterFrequency() const override;
    void setCenterFrequency(double frequency) override;
    double getMinimumFrequency() const override;
    double getMaximumFrequency() const override;
    double getFrequencyAt(uint time) const override;
    bool isTimeDependend() const override;
    bool isActiveAt(uint time) const override;
    // One record over the whole span; the resolution is not needed.
    QList<HRActivity> calculateHRActivities(
        uint start, uint length, double resolution) const override;
    void visitHRActivities(
        uint start, uint length, double resolution, const HRActivitySink &sink) const override;
    uint activeUntil() const override;
    bool equal(const IFrequencySettings *other) const override;
    IFrequencySettings *clone() const override;

private:
    double centerFrequency = 25000000.0;
};

class RADIOSIM_EXPORT PositionSettingsFixed : public IPositionSettings
{
public:
    explicit PositionSettingsFixed(const TPos &initial);

    PositionSettingsType getType() const override;
    TPos getPosition() const override;
    void setPosition(const TPos &position) override;
    TPos getPositionAt(uint time) const override;
    double headingAt(uint time) const override;
    double speedAt(uint time) const override;
    bool isTimeDependend() const override;
    bool isActiveAt(uint time) const override;
    uint activeUntil() const override;
    // Exact comparison of both coordinates.
    bool equal(const IPositionSettings *other) override;
    IPositionSettings *clone() override;

private:
    TPos position;
};

// Power and antenna of an emitter.
class RADIOSIM_EXPORT TransmitterSettings
{
public:
    float getPower() const { return power; }
    void setPower(float value) { power = value; }
    const QString &getAntennaType() const { return antennaType; }
    void setAntennaType(const QString &value) { antennaType = value; }
    float getAntennaGain() const { return antennaGain; }
    void setAntennaGain(float value) { antennaGain = value; }
    float getAntennaHeight() const { return antennaHeight; }
    void setAntennaHeight(float value) { antennaHeight = value; }
    float getAntennaDirection() const { return antennaDirection; }
    // Values of 360 and above wrap into [0, 360); negative values are kept as they are.
    void setAntennaDirection(float value);

private:
    float power = 1.0f;
    QString antennaType = QStringLiteral("Default");
    float antennaGain = 0.0f;
    float antennaHeight = 2.0f;
    float antennaDirection = 0.0f;
};

} // namespace Simulation
