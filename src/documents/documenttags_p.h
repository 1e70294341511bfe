#pragma once

// Element, attribute and value names of the scenario documents, built once at library load
// and shared read-only. The spelling is that of the files (DWellTime, Contionus, HoppCount).

#include <QString>

namespace Simulation {
namespace Tag {

// Frame and header
extern const QString Scenario;
extern const QString FileFormatVersion;
extern const QString Name;
extern const QString Author;
extern const QString Uid;
extern const QString Duration;
extern const QString Description;

// Noise
extern const QString NoiseSettings;
extern const QString Density;
extern const QString Deviation;
extern const QString FrequencyDependentDensity;
extern const QString FrequencyDependentGranularity;
extern const QString FrequencyDependentVariability;
extern const QString AzimuthErrorDeviation;

// Emitters and networks
extern const QString Emitter;
extern const QString ElintEmitter;
extern const QString Network;
extern const QString ID;
extern const QString Active;
extern const QString Default;
extern const QString LinkTarget;
extern const QString Class;
extern const QString EDWFile;
extern const QString EDWFile2;
extern const QString Color;
extern const QString NetworkType;
extern const QString Head;

// Transmitter
extern const QString Transmitter;
extern const QString Power;
extern const QString Antenna;
extern const QString Type;
extern const QString Gain;
extern const QString HeightOverGround;
extern const QString Direction;

// Frequency
extern const QString Frequency;
extern const QString Fixed;
extern const QString SlowHopper;
extern const QString Chirp;
extern const QString FastHopper;
extern const QString StartFrequency;
extern const QString StopFrequency;
extern const QString TimeslotOffset;
extern const QString MinimumFrequency;
extern const QString MaximumFrequency;
extern const QString HoppCount;
extern const QString HoppRate;
extern const QString HoppSet;
extern const QString EndBehavior;

// Timetable
extern const QString EmissionSettings;
extern const QString Broadcast;
extern const QString Emission;
extern const QString StartTime;
extern const QString SignalPackage;
extern const QString Groups;
extern const QString Group;
extern const QString EmissionId;
extern const QString GroupId;

// Older files
extern const QString Timing;
extern const QString Contionus;
extern const QString Contious;
extern const QString Manual;
extern const QString Activity;
extern const QString InactiveDuration;
extern const QString ActiveDuration;

// Positions
extern const QString Position;
extern const QString Movement;
extern const QString Lon;
extern const QString Lat;
extern const QString DWellTime;
extern const QString TransitionTime;
extern const QString Major;
extern const QString Speed;
extern const QString MovementsXml;

// Values
extern const QString True;
extern const QString False;
extern const QString Hierarchical;
extern const QString Star;
extern const QString Stop;
extern const QString Restart;
extern const QString Inactive;

} // namespace Tag
} // namespace Simulation
