<?xml version="1.0" encoding="UTF-8"?>
<Scenario FileFormatVersion="2" Name="Older" Author="tests" Duration="400">
    <Emitter ID="O" Name="Old timer" Active="true">
        <SignalPackage>/Default/Rect10k</SignalPackage>
        <Frequency>
            <Fixed>7e+06</Fixed>
        </Frequency>
        <Timing>
            <Manual>
                <Activity InactiveDuration="100" ActiveDuration="50"/>
                <Activity InactiveDuration="10" ActiveDuration="20"/>
            </Manual>
        </Timing>
    </Emitter>
</Scenario>
