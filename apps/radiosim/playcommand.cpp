#include "commandline.h"
#include "commands.h"
#include "defaultdata.h"
#include "terminationsignals.h"

#include <radiosim/packages/signalpackage.h>
#include <radiosim/units/units.h>

#include <QElapsedTimer>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QThread>

#include <algorithm>
#include <cstdio>
#include <unistd.h>

using namespace Simulation;

namespace {

enum class Format { Table, Csv, Json };

// An emitter and the texts of its records that change rarely, made once and reused.
struct EmitterTexts
{
    std::shared_ptr<SzenarioEmitter> emitter;
    QByteArray id;
    QByteArray name;
    bool positionKnown = false;
    TPos position;
    QByteArray positionText;
    std::shared_ptr<SignalPackage> package;
    QByteArray packageText;
};

struct Record
{
    HRActivity activity;
    int emitter;
};

// Writes the records in one of the three formats through a buffer of its own; a record costs
// two number conversions and a few appends.
class ActivityPrinter
{
public:
    ActivityPrinter(Format format, bool flushEachWindow)
        : m_format(format)
        , m_flushEachWindow(flushEachWindow)
    {
        m_buffer.reserve(BufferSize + 4096);
    }

    void begin(QList<EmitterTexts> &emitters)
    {
        for (EmitterTexts &texts : emitters) {
            m_idWidth = std::max(m_idWidth, int(texts.emitter->id().size()));
            m_nameWidth = std::max(m_nameWidth, int(texts.emitter->name().size()));
        }
        for (EmitterTexts &texts : emitters) {
            texts.id = field(texts.emitter->id(), -m_idWidth);
            texts.name = field(texts.emitter->name(), -m_nameWidth);
        }
        if (m_format == Format::Table) {
            m_buffer += QStringLiteral("%1 %2  %3  %4  %5  %6  package\n")
                            .arg(QStringLiteral("begin ms"), BeginWidth)
                            .arg(QStringLiteral("length"), LengthWidth)
                            .arg(QStringLiteral("emitter"), -m_idWidth)
                            .arg(QStringLiteral("name"), -m_nameWidth)
                            .arg(QStringLiteral("frequency"), FrequencyWidth)
                            .arg(QStringLiteral("position"), -PositionWidth)
                            .toUtf8();
        } else if (m_format == Format::Csv) {
            m_buffer += "begin_ms,length_ms,emitter,name,frequency,position,package\n";
        } else {
            m_buffer += "[";
        }
    }

    void record(EmitterTexts &texts, const HRActivity &activity)
    {
        const TPos position = texts.emitter->getPositionAt(uint(activity.start));
        if (!texts.positionKnown || position.lon != texts.position.lon
            || position.lat != texts.position.lat) {
            texts.positionKnown = true;
            texts.position = position;
            texts.positionText = field(Units::Position::toString(position.lon, position.lat,
                                           Units::Position::FormatDecimal),
                -PositionWidth);
        }
        // A timetable entry answers for (start, start + duration], and the period's end for the
        // period's start: the middle of the record is safely inside its entry.
        const std::shared_ptr<SignalPackage> package
            = texts.emitter->signalPackageAt(uint(activity.start + (activity.duration + 1) / 2));
        if (package != texts.package || texts.packageText.isEmpty()) {
            texts.package = package;
            texts.packageText = field(package ? package->id() : QString(), 0);
        }
        const FrequencyTexts &frequency = frequencyTexts(activity.frequency);
        switch (m_format) {
        case Format::Table:
            append(QByteArray::number(activity.start).rightJustified(BeginWidth), " ",
                QByteArray::number(activity.duration).rightJustified(LengthWidth), "  ", texts.id,
                "  ", texts.name, "  ", frequency.text, "  ", texts.positionText, "  ",
                texts.packageText, "\n");
            break;
        case Format::Csv:
            append(QByteArray::number(activity.start), ",", QByteArray::number(activity.duration),
                ",", texts.id, ",", texts.name, ",", frequency.text, ",", texts.positionText, ",",
                texts.packageText, "\n");
            break;
        case Format::Json:
            append(m_count == 0 ? "\n" : ",\n", "{\"begin\":", QByteArray::number(activity.start),
                ",\"length\":", QByteArray::number(activity.duration), ",\"emitter\":", texts.id,
                ",\"name\":", texts.name, ",\"frequency\":", frequency.text,
                ",\"hz\":", frequency.hz, ",\"position\":", texts.positionText,
                ",\"package\":", texts.packageText, "}");
            break;
        }
        ++m_count;
        if (m_buffer.size() > BufferSize)
            flush();
    }

    void endWindow()
    {
        if (m_flushEachWindow)
            flush();
    }

    void end()
    {
        if (m_format == Format::Json)
            m_buffer += m_count == 0 ? "]\n" : "\n]\n";
        flush();
    }

    quint64 count() const { return m_count; }

private:
    static constexpr int BufferSize = 1 << 16;
    static constexpr int BeginWidth = 9;
    static constexpr int LengthWidth = 6;
    static constexpr int FrequencyWidth = 14;
    static constexpr int PositionWidth = 20;

    // A text as the format writes it; in a table padded to width (negative: to the left).
    QByteArray field(const QString &text, int width) const
    {
        switch (m_format) {
        case Format::Table:
            return QStringLiteral("%1").arg(text, width).toUtf8();
        case Format::Csv:
            if (!text.contains(QLatin1Char(',')) && !text.contains(QLatin1Char('"'))
                && !text.contains(QLatin1Char('\n'))) {
                return text.toUtf8();
            }
            return '"' + QString(text).replace(QLatin1Char('"'), QStringLiteral("\"\"")).toUtf8()
                + '"';
        case Format::Json:
            break;
        }
        const QByteArray array = QJsonDocument(QJsonArray { text }).toJson(QJsonDocument::Compact);
        return array.mid(1, array.size() - 2);
    }

    struct FrequencyTexts
    {
        QByteArray text;
        QByteArray hz;
    };

    const FrequencyTexts &frequencyTexts(double frequency)
    {
        auto it = m_frequencies.find(frequency);
        if (it == m_frequencies.end()) {
            it = m_frequencies.insert(frequency,
                { field(Units::Frequency::toString(frequency), FrequencyWidth),
                    QByteArray::number(frequency, 'g', 12) });
        }
        return *it;
    }

    template <typename... Parts> void append(const Parts &...parts)
    {
        (m_buffer.append(parts), ...);
    }

    void flush()
    {
        std::fwrite(m_buffer.constData(), 1, size_t(m_buffer.size()), stdout);
        std::fflush(stdout);
        m_buffer.clear();
    }

    Format m_format;
    bool m_flushEachWindow;
    int m_idWidth = 7;
    int m_nameWidth = 4;
    QByteArray m_buffer;
    QHash<double, FrequencyTexts> m_frequencies;
    quint64 m_count = 0;
};

// The progress line on a terminal: scenario time, records and the real-time factor, shown once
// the run has taken a second.
class Progress
{
public:
    explicit Progress(uint from)
        : m_from(from)
        , m_enabled(::isatty(STDERR_FILENO) == 1)
    {
        m_clock.start();
    }
    ~Progress()
    {
        if (m_shown)
            std::fputs("\r\x1b[K", stderr);
    }

    qint64 elapsed() const { return m_clock.elapsed(); }

    void update(uint time, quint64 records)
    {
        const qint64 now = m_clock.elapsed();
        if (!m_enabled || now < 1000 || now - m_lastShown < 250)
            return;
        m_lastShown = now;
        m_shown = true;
        const QString line = QStringLiteral("\rscenario %1  records %2  %3x real time\x1b[K")
                                 .arg(Units::Duration::toString(time))
                                 .arg(records)
                                 .arg(double(time - m_from) / double(now), 0, 'f', 1);
        std::fputs(line.toUtf8().constData(), stderr);
        std::fflush(stderr);
    }

private:
    uint m_from;
    bool m_enabled;
    bool m_shown = false;
    qint64 m_lastShown = 0;
    QElapsedTimer m_clock;
};

} // namespace

int runPlay(const QStringList &arguments)
{
    CommandLine commandLine(QStringLiteral("play"), QStringLiteral("play [SCENARIO] [options]"),
        QStringLiteral("Steps through a scenario in windows, as a simulation device does, and "
                       "prints every stretch on air: begin and length in ms, emitter id and name, "
                       "frequency, position, signal package. Without SCENARIO it plays the "
                       "built-in default scenario. What the checker repairs is said on standard "
                       "error."));
    QCommandLineParser &parser = commandLine.parser();
    commandLine.addScenarioArgument();
    commandLine.addSpanOptions();
    parser.addOptions({
        { QStringLiteral("window"), QStringLiteral("Length of one window (default 100)."),
            QStringLiteral("MS") },
        { QStringLiteral("resolution"), QStringLiteral("Frequency step of chirps (default 10000)."),
            QStringLiteral("HZ") },
        { QStringLiteral("emitter"), QStringLiteral("Play only this emitter; may be repeated."),
            QStringLiteral("ID") },
        { QStringLiteral("format"), QStringLiteral("table (default), csv or json."),
            QStringLiteral("FORMAT") },
        { QStringLiteral("speed"),
            QStringLiteral("Pace to the wall clock, X times faster (default: as fast as it can)."),
            QStringLiteral("X") },
    });
    if (!commandLine.parse(arguments, 1))
        return commandLine.status();

    uint from = 0;
    uint to = 0;
    uint window = 0;
    double resolution = 0.0;
    double speed = 0.0;
    if (!commandLine.unsignedValue(QStringLiteral("window"), 100, window)
        || !commandLine.positiveValue(QStringLiteral("resolution"), 10000.0, resolution)
        || !commandLine.positiveValue(QStringLiteral("speed"), 1.0, speed)) {
        return commandLine.status();
    }
    if (window == 0)
        return commandLine.fail(QStringLiteral("--window must be at least 1 ms"), ExitUsage);
    const QString formatName = parser.value(QStringLiteral("format"));
    Format format = Format::Table;
    if (formatName == QLatin1String("csv"))
        format = Format::Csv;
    else if (formatName == QLatin1String("json"))
        format = Format::Json;
    else if (!formatName.isEmpty() && formatName != QLatin1String("table"))
        return commandLine.fail(
            QStringLiteral("--format is table, csv or json, not '%1'").arg(formatName), ExitUsage);

    LoadedScenario scenario;
    if (!commandLine.loadScenario(scenario)
        || !commandLine.span(scenario, QStringLiteral("play"), from, to)) {
        return commandLine.status();
    }

    QList<EmitterTexts> emitters;
    const QStringList chosen = parser.values(QStringLiteral("emitter"));
    for (const std::shared_ptr<SzenarioEmitter> &emitter : scenario.file->emitters()) {
        if (chosen.isEmpty() || chosen.contains(emitter->id()))
            emitters.append({ emitter, {}, {}, false, {}, {}, {}, {} });
    }
    for (const QString &id : chosen) {
        if (std::none_of(emitters.cbegin(), emitters.cend(),
                [&id](const EmitterTexts &texts) { return texts.emitter->id() == id; })) {
            return commandLine.fail(
                QStringLiteral("%1: no emitter with the id '%2'").arg(scenario.name, id));
        }
    }

    const bool paced = parser.isSet(QStringLiteral("speed"));
    TerminationSignals termination;
    ActivityPrinter printer(format, paced);
    printer.begin(emitters);
    Progress progress(from);
    std::vector<Record> windowRecords;
    for (quint64 start = from; start < to && !TerminationSignals::requested(); start += window) {
        const uint length = uint(std::min<quint64>(window, to - start));
        if (paced) {
            const qint64 due = qint64(double(start - from) / speed);
            const qint64 wait = due - progress.elapsed();
            if (wait > 0)
                QThread::msleep(ulong(wait));
        }
        windowRecords.clear();
        for (int i = 0; i < emitters.size(); ++i) {
            for (const HRActivity &activity :
                emitters[i].emitter->calculateBursts(uint(start), length, resolution)) {
                windowRecords.push_back({ activity, i });
            }
        }
        // Within a window the emitters take turns by begin; equal begins keep the id order.
        std::stable_sort(windowRecords.begin(), windowRecords.end(),
            [](const Record &a, const Record &b) { return a.activity.start < b.activity.start; });
        for (const Record &record : windowRecords)
            printer.record(emitters[record.emitter], record.activity);
        printer.endWindow();
        progress.update(uint(start + length), printer.count());
    }
    printer.end();
    return ExitOk;
}
