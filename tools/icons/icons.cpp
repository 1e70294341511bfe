// Draws the LED pictures and the map symbols that the library embeds, and the resource file
// that lists them: icons <output directory>. QImage and QPainter need no application object,
// so this runs on a build machine without a display.

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QRadialGradient>
#include <QStringList>

#include <cstdio>
#include <functional>

namespace {

// The lamp's colour at its centre; whoever looks for "the LED's colour" samples there.
const QColor LampColour(54, 180, 52);
const QColor Outline(40, 40, 40);
const int SymbolSize = 16;

QImage blank(int size)
{
    QImage image(size, size, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    return image;
}

QImage led(int size)
{
    QImage image = blank(size);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPointF centre(size / 2.0, size / 2.0);
    const double radius = size / 2.0 - 0.5;
    // Flat for the inner 40 %, so that the centre pixel has the lamp's colour at every size.
    QRadialGradient body(centre, radius);
    body.setColorAt(0.0, LampColour);
    body.setColorAt(0.4, LampColour);
    body.setColorAt(1.0, LampColour.darker(250));
    painter.setPen(QPen(LampColour.darker(400), 1.0));
    painter.setBrush(body);
    painter.drawEllipse(centre, radius, radius);
    // A glint up on the left, clear of the centre pixel.
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(255, 255, 255, 170));
    painter.drawEllipse(QPointF(size * 0.32, size * 0.32), size * 0.12, size * 0.12);
    return image;
}

// The fill of a map symbol by the state in its name; "empty" is drawn as an outline alone.
QBrush stateBrush(const QString &state)
{
    if (state == QLatin1String("friend"))
        return QColor(0, 110, 230);
    if (state == QLatin1String("hostile"))
        return QColor(220, 30, 30);
    if (state == QLatin1String("neutral"))
        return QColor(0, 160, 60);
    if (state == QLatin1String("null"))
        return QColor(230, 200, 0);
    return Qt::NoBrush;
}

QImage symbol(const std::function<void(QPainter &)> &draw)
{
    QImage image = blank(SymbolSize);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Outline, 1.0));
    draw(painter);
    return image;
}

// A mast carrying a V-shaped reflector.
QImage antenna(const QString &state)
{
    return symbol([&](QPainter &painter) {
        painter.drawLine(QPointF(8, 8), QPointF(8, 14.5));
        painter.drawLine(QPointF(4.5, 14.5), QPointF(11.5, 14.5));
        painter.setBrush(stateBrush(state));
        const QPointF reflector[] { { 1.5, 1.5 }, { 14.5, 1.5 }, { 8, 9 } };
        painter.drawPolygon(reflector, 3);
    });
}

// A hut under a pitched roof.
QImage station(const QString &state)
{
    return symbol([&](QPainter &painter) {
        painter.setBrush(stateBrush(state));
        const QPointF hut[] { { 2.5, 14.5 }, { 2.5, 7 }, { 8, 1.5 }, { 13.5, 7 }, { 13.5, 14.5 } };
        painter.drawPolygon(hut, 5);
        painter.setBrush(Qt::white);
        painter.drawRect(QRectF(6.5, 9.5, 3, 5));
    });
}

// Stands for a symbol that is unknown: a dashed frame, crossed.
QImage placeholder()
{
    return symbol([](QPainter &painter) {
        painter.setPen(QPen(Outline, 1.0, Qt::DashLine));
        painter.drawRect(QRectF(1.5, 1.5, 13, 13));
        painter.setPen(QPen(Outline, 1.0));
        painter.drawLine(QPointF(4, 4), QPointF(12, 12));
        painter.drawLine(QPointF(12, 4), QPointF(4, 12));
    });
}

struct Output
{
    QDir dir;
    QByteArray qrc;
    bool ok = true;

    void prefix(const char *name)
    {
        if (!qrc.isEmpty())
            qrc += "    </qresource>\n";
        qrc += QByteArray("    <qresource prefix=\"") + name + "\">\n";
    }

    void add(const QString &fileName, const QImage &image)
    {
        if (!image.save(dir.filePath(fileName), "PNG")) {
            std::fprintf(stderr, "icons: cannot write %s\n", qPrintable(dir.filePath(fileName)));
            ok = false;
        }
        qrc += "        <file>" + fileName.toUtf8() + "</file>\n";
    }

    bool finish()
    {
        QFile file(dir.filePath(QStringLiteral("icons.qrc")));
        const QByteArray text = "<RCC>\n" + qrc + "    </qresource>\n</RCC>\n";
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size()) {
            std::fprintf(stderr, "icons: cannot write %s\n", qPrintable(file.fileName()));
            return false;
        }
        return ok;
    }
};

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: icons <output directory>\n");
        return 2;
    }
    Output out { QDir(QString::fromLocal8Bit(argv[1])), {} };
    if (!out.dir.mkpath(QStringLiteral("."))) {
        std::fprintf(stderr, "icons: cannot create %s\n", argv[1]);
        return 1;
    }

    out.prefix("/Icons");
    for (int size : { 8, 10, 16, 24, 32, 48 })
        out.add(QStringLiteral("Led-%1x%1.png").arg(size), led(size));

    out.prefix("/DefaultData");
    const QStringList states { QStringLiteral("empty"), QStringLiteral("friend"),
        QStringLiteral("hostile"), QStringLiteral("neutral"), QStringLiteral("null") };
    for (const QString &state : states)
        out.add(QStringLiteral("ant_%1.png").arg(state), antenna(state));
    for (const QString &state : states)
        out.add(QStringLiteral("station_%1.png").arg(state), station(state));
    out.add(QStringLiteral("null_null.png"), placeholder());

    return out.finish() ? 0 : 1;
}
