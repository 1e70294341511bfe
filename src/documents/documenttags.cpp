#include "documenttags_p.h"

namespace Simulation {
namespace Tag {

const QString Scenario = QStringLiteral("Scenario");
const QString FileFormatVersion = QStringLiteral("FileFormatVersion");
const QString Name = QStringLiteral("Name");
const QString Author = QStringLiteral("Author");
const QString Uid = QStringLiteral("Uid");
const QString Duration = QStringLiteral("Duration");
const QString Description = QStringLiteral("Description");
const QString NoiseSettings = QStringLiteral("NoiseSettings");
const QString Density = QStringLiteral("Density");
const QString Deviation = QStringLiteral("Deviation");
const QString FrequencyDependentDensity = QStringLiteral("FrequencyDependentDensity");
const QString FrequencyDependentGranularity = QStringLiteral("FrequencyDependentGranularity");
const QString FrequencyDependentVariability = QStringLiteral("FrequencyDependentVariability");
const QString AzimuthErrorDeviation = QStringLiteral("AzimuthErrorDeviation");
const QString Emitter = QStringLiteral("Emitter");
const QString ElintEmitter = QStringLiteral("ElintEmitter");
const QString Network = QStringLiteral("Network");
const QString ID = QStringLiteral("ID");
const QString Active = QStringLiteral("Active");
const QString Default = QStringLiteral("Default");
const QString LinkTarget = QStringLiteral("LinkTarget");
const QString Class = QStringLiteral("Class");
const QString EDWFile = QStringLiteral("EDWFile");
const QString EDWFile2 = QStringLiteral("EDWFile2");
const QString Color = QStringLiteral("Color");
const QString NetworkType = QStringLiteral("NetworkType");
const QString Head = QStringLiteral("Head");
const QString Transmitter = QStringLiteral("Transmitter");
const QString Power = QStringLiteral("Power");
const QString Antenna = QStringLiteral("Antenna");
const QString Type = QStringLiteral("Type");
const QString Gain = QStringLiteral("Gain");
const QString HeightOverGround = QStringLiteral("HeightOverGround");
const QString Direction = QStringLiteral("Direction");
const QString Frequency = QStringLiteral("Frequency");
const QString Fixed = QStringLiteral("Fixed");
const QString SlowHopper = QStringLiteral("SlowHopper");
const QString Chirp = QStringLiteral("Chirp");
const QString FastHopper = QStringLiteral("FastHopper");
const QString StartFrequency = QStringLiteral("StartFrequency");
const QString StopFrequency = QStringLiteral("StopFrequency");
const QString TimeslotOffset = QStringLiteral("TimeslotOffset");
const QString MinimumFrequency = QStringLiteral("MinimumFrequency");
const QString MaximumFrequency = QStringLiteral("MaximumFrequency");
const QString HoppCount = QStringLiteral("HoppCount");
const QString HoppRate = QStringLiteral("HoppRate");
const QString HoppSet = QStringLiteral("HoppSet");
const QString EndBehavior = QStringLiteral("EndBehavior");
const QString EmissionSettings = QStringLiteral("EmissionSettings");
const QString Broadcast = QStringLiteral("Broadcast");
const QString Emission = QStringLiteral("Emission");
const QString StartTime = QStringLiteral("StartTime");
const QString SignalPackage = QStringLiteral("SignalPackage");
const QString Groups = QStringLiteral("Groups");
const QString Group = QStringLiteral("Group");
const QString EmissionId = QStringLiteral("EmissionId");
const QString GroupId = QStringLiteral("GroupId");
const QString Timing = QStringLiteral("Timing");
const QString Contionus = QStringLiteral("Contionus");
const QString Contious = QStringLiteral("Contious");
const QString Manual = QStringLiteral("Manual");
const QString Activity = QStringLiteral("Activity");
const QString InactiveDuration = QStringLiteral("InactiveDuration");
const QString ActiveDuration = QStringLiteral("ActiveDuration");
const QString Position = QStringLiteral("Position");
const QString Movement = QStringLiteral("Movement");
const QString Lon = QStringLiteral("Lon");
const QString Lat = QStringLiteral("Lat");
const QString DWellTime = QStringLiteral("DWellTime");
const QString TransitionTime = QStringLiteral("TransitionTime");
const QString Major = QStringLiteral("Major");
const QString Speed = QStringLiteral("Speed");
const QString MovementsXml = QStringLiteral("MovementsXml");
const QString True = QStringLiteral("true");
const QString False = QStringLiteral("false");
const QString Hierarchical = QStringLiteral("Hierarchical");
const QString Star = QStringLiteral("Star");
const QString Stop = QStringLiteral("STOP");
const QString Restart = QStringLiteral("RESTART");
const QString Inactive = QStringLiteral("INACTIVE");

} // namespace Tag
} // namespace Simulation
