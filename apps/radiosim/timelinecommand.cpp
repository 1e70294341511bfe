#include "commandline.h"
#include "commands.h"
#include "defaultdata.h"

#include <radiosim/units/units.h>

#include <QFontMetrics>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <vector>

using namespace Simulation;

namespace {

// One line of the picture: an emitter with its bursts, or the heading of a network.
struct Row
{
    QString label;
    std::shared_ptr<SzenarioEmitter> emitter;
    QColor heading;
    std::vector<HRActivity> bursts;
    quint64 onAir = 0;
};

// Bursts are asked for in long windows: the picture needs no device's look-ahead.
constexpr uint Chunk = 10000;
constexpr double Resolution = 10000.0;
constexpr int Margin = 10;
constexpr int TitleHeight = 30;
constexpr int AxisHeight = 34;
constexpr int LegendHeight = 46;
constexpr int DefaultRowHeight = 20;

QList<Row> rowsOf(const ScenarioFile &scenario)
{
    QList<Row> rows;
    auto add = [&rows](const std::shared_ptr<SzenarioEmitter> &emitter, const QString &indent) {
        rows.append(
            { indent + emitter->id() + QLatin1Char(' ') + emitter->name(), emitter, {}, {}, 0 });
    };
    for (const std::shared_ptr<ScenarioNetwork> &network : scenario.networks()) {
        rows.append({ network->id() + QLatin1Char(' ') + network->name(), nullptr, network->color(),
            {}, 0 });
        for (const std::shared_ptr<SzenarioEmitter> &member : network->emitterList())
            add(member, QStringLiteral("    "));
    }
    for (const std::shared_ptr<SzenarioEmitter> &emitter : scenario.emitters()) {
        if (!emitter->hasNetwork())
            add(emitter, QString());
    }
    return rows;
}

// Colours run through the hues by the logarithm of the frequency, low red to high violet.
class FrequencyColours
{
public:
    FrequencyColours(double low, double high)
        : m_low(std::log(std::max(low, 1.0)))
        , m_span(std::log(std::max(high, 1.0)) - m_low)
    {
    }
    QColor colour(double frequency) const
    {
        const double share
            = m_span > 0.0 ? (std::log(std::max(frequency, 1.0)) - m_low) / m_span : 0.0;
        return QColor::fromHsvF(0.75 * std::clamp(share, 0.0, 1.0), 0.85, 0.85);
    }
    double frequencyAt(double share) const { return std::exp(m_low + share * m_span); }

private:
    double m_low;
    double m_span;
};

// A step between ticks of at least minimum ms, from a list of round durations.
uint tickStep(double minimum)
{
    static const uint steps[] = { 10, 20, 50, 100, 200, 500, 1000, 2000, 5000, 10000, 15000, 30000,
        60000, 120000, 300000, 600000, 900000, 1800000, 3600000, 7200000, 21600000, 43200000 };
    for (uint step : steps) {
        if (step >= minimum)
            return step;
    }
    return 86400000;
}

} // namespace

int runTimeline(const QStringList &arguments)
{
    CommandLine commandLine(QStringLiteral("timeline"),
        QStringLiteral("timeline [SCENARIO] --png FILE [options]"),
        QStringLiteral("Draws who is on air when: one row per emitter, network members under "
                       "their network, bars coloured by frequency, a time axis and a legend of "
                       "the frequencies. Prints each row's place in the picture."));
    QCommandLineParser &parser = commandLine.parser();
    commandLine.addScenarioArgument();
    commandLine.addSpanOptions();
    parser.addOptions({
        { QStringLiteral("png"), QStringLiteral("The PNG file to write."), QStringLiteral("FILE") },
        { QStringLiteral("width"), QStringLiteral("Width of the picture (default 1200)."),
            QStringLiteral("PX") },
        { QStringLiteral("height"),
            QStringLiteral("Height of the picture (default: 20 pixels a row)."),
            QStringLiteral("PX") },
    });
    if (!commandLine.parse(arguments, 1))
        return commandLine.status();
    const QString png = parser.value(QStringLiteral("png"));
    if (png.isEmpty())
        return commandLine.fail(QStringLiteral("no picture file: give --png FILE"), ExitUsage);
    uint from = 0;
    uint to = 0;
    uint width = 0;
    uint height = 0;
    if (!commandLine.unsignedValue(QStringLiteral("width"), 1200, width)
        || !commandLine.unsignedValue(QStringLiteral("height"), 0, height)) {
        return commandLine.status();
    }
    if (width < 200 || width > 20000)
        return commandLine.fail(QStringLiteral("--width must lie from 200 to 20000"), ExitUsage);

    LoadedScenario scenario;
    if (!commandLine.loadScenario(scenario)
        || !commandLine.span(scenario, QStringLiteral("draw"), from, to)) {
        return commandLine.status();
    }

    QList<Row> rows = rowsOf(*scenario.file);
    const int fixedHeight = TitleHeight + AxisHeight + LegendHeight + 2 * Margin;
    if (height == 0)
        height = uint(fixedHeight + DefaultRowHeight * std::max<int>(rows.size(), 1));
    const int rowHeight = (int(height) - fixedHeight) / std::max<int>(rows.size(), 1);
    if (height > 20000 || rowHeight < 3) {
        return commandLine.fail(
            QStringLiteral("--height must leave at least 3 pixels to each of the %1 rows, up to "
                           "20000 pixels in all")
                .arg(rows.size()),
            ExitUsage);
    }

    double low = 0.0;
    double high = 0.0;
    for (Row &row : rows) {
        if (!row.emitter)
            continue;
        for (quint64 start = from; start < to; start += Chunk) {
            const uint length = uint(std::min<quint64>(Chunk, to - start));
            for (const HRActivity &burst :
                row.emitter->calculateBursts(uint(start), length, Resolution)) {
                if (low == 0.0 || burst.frequency < low)
                    low = burst.frequency;
                high = std::max(high, burst.frequency);
                row.onAir += burst.duration;
                row.bursts.push_back(burst);
            }
        }
    }
    const FrequencyColours colours(low, high);

    QImage image(int(width), int(height), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    QFont font = painter.font();
    font.setPixelSize(std::clamp(rowHeight - 6, 8, 13));
    painter.setFont(font);
    const QFontMetrics metrics(font);
    int labelWidth = 0;
    for (const Row &row : rows)
        labelWidth = std::max(labelWidth, metrics.horizontalAdvance(row.label));
    const int plotLeft = std::min(labelWidth + 2 * Margin, int(width) / 3);
    // Room for half a tick label behind the end of the axis.
    const int plotRight = int(width) - 4 * Margin;
    const double scale = double(plotRight - plotLeft) / double(to - from);
    auto xAt = [&](double time) { return plotLeft + (time - from) * scale; };

    QFont titleFont = font;
    titleFont.setPixelSize(15);
    titleFont.setBold(true);
    painter.setFont(titleFont);
    painter.setPen(Qt::black);
    painter.drawText(QRect(Margin, Margin, int(width) - 2 * Margin, TitleHeight),
        Qt::AlignLeft | Qt::AlignVCenter,
        QStringLiteral("%1: who is on air from %2 to %3")
            .arg(scenario.file->document().getName(), Units::Duration::toString(from),
                Units::Duration::toString(to)));
    painter.setFont(font);

    int y = Margin + TitleHeight;
    for (int i = 0; i < rows.size(); ++i, y += rowHeight) {
        const Row &row = rows[i];
        const QRect band(plotLeft, y, plotRight - plotLeft, rowHeight);
        if (!row.emitter) {
            QColor tint = row.heading;
            tint.setAlpha(60);
            painter.fillRect(QRect(0, y, int(width), rowHeight), tint);
        } else if (i % 2 == 1) {
            painter.fillRect(band, QColor(244, 244, 244));
        }
        painter.setPen(Qt::black);
        painter.drawText(QRect(Margin, y, plotLeft - Margin, rowHeight),
            Qt::AlignLeft | Qt::AlignVCenter, row.label);
        const double barHeight = std::max(1, rowHeight - 4);
        for (const HRActivity &burst : row.bursts) {
            const double left = xAt(double(burst.start));
            const double right = xAt(double(burst.start + burst.duration));
            painter.fillRect(QRectF(left, y + 2, std::max(right - left, 1.0), barHeight),
                colours.colour(burst.frequency));
        }
        if (row.emitter) {
            printLine(QStringLiteral("%1\ty=%2..%3\ton air %4 ms")
                          .arg(row.emitter->id())
                          .arg(y)
                          .arg(y + rowHeight - 1)
                          .arg(row.onAir));
        }
    }

    const int axisTop = y + 4;
    painter.setPen(Qt::black);
    painter.drawLine(plotLeft, axisTop, plotRight, axisTop);
    const uint step = tickStep(90.0 / scale);
    for (quint64 tick = (from + step - 1) / step * step; tick <= to; tick += step) {
        const int x = int(xAt(double(tick)));
        painter.drawLine(x, axisTop, x, axisTop + 5);
        painter.drawText(QRect(x - 45, axisTop + 6, 90, AxisHeight - 8), Qt::AlignHCenter,
            Units::Duration::toString(uint(tick)));
    }

    // The legend: the colour scale with the frequencies at five places.
    const int legendTop = axisTop + AxisHeight;
    const QRect scaleBar(plotLeft, legendTop, plotRight - plotLeft, 12);
    QLinearGradient gradient(scaleBar.topLeft(), scaleBar.topRight());
    for (int i = 0; i <= 10; ++i)
        gradient.setColorAt(i / 10.0, colours.colour(colours.frequencyAt(i / 10.0)));
    painter.fillRect(scaleBar, gradient);
    painter.drawText(QRect(Margin, legendTop - 2, plotLeft - Margin, 16),
        Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("frequency"));
    const int labels = high > low ? 5 : 1;
    for (int i = 0; i < labels; ++i) {
        const double share = labels > 1 ? i / double(labels - 1) : 0.0;
        const int x = scaleBar.left() + int(share * scaleBar.width());
        const int left = std::clamp(x - 60, scaleBar.left(), scaleBar.right() - 120);
        painter.drawText(QRect(left, legendTop + 14, 120, 18), Qt::AlignHCenter,
            Units::Frequency::toString(colours.frequencyAt(share)));
    }
    painter.end();

    if (!image.save(png, "PNG"))
        return commandLine.fail(QStringLiteral("%1: cannot be written").arg(png));
    printLine(QStringLiteral("plot x=%1..%2").arg(plotLeft).arg(plotRight - 1));
    printLine(QStringLiteral("wrote %1 (%2x%3)").arg(png).arg(width).arg(height));
    return ExitOk;
}
