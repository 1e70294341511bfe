#include <radiosim/documents/scenariodatabinary.h>

#include "testhelpers.h"

#include <QBuffer>
#include <QDataStream>
#include <QtTest>

using namespace Simulation;

namespace {

// A QString as the stream holds it: 32-bit length in bytes, then UTF-16, both big-endian;
// 0xffffffff for the null string. Latin-1 text only.
QByteArray text(const char *value)
{
    if (!value)
        return QByteArray(4, '\xff');
    QByteArray bytes { 3, '\0' };
    bytes += char(2 * qstrlen(value));
    for (const char *c = value; *c; ++c)
        bytes += QByteArray(1, '\0') + *c;
    return bytes;
}

QByteArray count(qint32 value)
{
    QByteArray bytes;
    QDataStream(&bytes, QIODevice::WriteOnly) << value;
    return bytes;
}

// The record the reader takes: id, name, description, active, link target, a dropped string,
// class.
QByteArray readerRecord(const char *id, const char *name, bool active, const char *emitterClass)
{
    return text(id) + text(name) + text("d") + char(active) + text("T") + text("x")
        + text(emitterClass);
}

QStringList fromDevice(const QByteArray &bytes)
{
    ScenarioDataBinary document(nullptr);
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    document.fromBinary(&buffer);
    QStringList emitters;
    for (const auto &e : document.scenarioEmitter())
        emitters << QStringLiteral("%1 '%2' '%3' %4 '%5'%6")
                        .arg(e->id(), e->name(), e->description(), e->isActive() ? "on" : "off",
                            e->getClass(), e->isLinked() ? " linked" : "");
    emitters.sort();
    // The default flag is not in the reader's record.
    if (document.defaultEmitter())
        emitters << QStringLiteral("a default emitter");
    return emitters;
}

} // namespace

class tst_ScenarioDataBinary : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writtenBytes()
    {
        ScenarioDataBinary document(nullptr);
        QCOMPARE(document.toBinary(), QByteArray(4, '\0'));
        const auto target
            = std::make_shared<SzenarioEmitter>(QStringLiteral("T"), QStringLiteral("t"));
        const auto linked = std::make_shared<SzenarioEmitter>(QStringLiteral("L"), QString());
        linked->setLinkTargetEmitter(target);
        linked->setActive(false);
        linked->setClass(QStringLiteral("c"));
        document.setScenarioEmitter({ target });
        document.setDefaultEmitter(target);
        QCOMPARE(document.toBinary(),
            count(1) + text("T") + text("t") + text(nullptr) + "\x01\x01" + text("%%NONE%%")
                + text(nullptr));
        document.setScenarioEmitter({ linked });
        QCOMPARE(document.toBinary(),
            count(1) + text("L") + text(nullptr) + text(nullptr) + QByteArray(2, '\0') + text("T")
                + text("c"));

        // The byte array form opens nothing and reads nothing; neither does a closed device.
        document.fromBinary(count(1) + text("A"));
        QBuffer closed;
        document.fromBinary(&closed);
        QCOMPARE(document.scenarioEmitter().size(), 1);
    }

    void read_data()
    {
        columns<QByteArray, QStringList>("bytes", "emitters");
        row("empty document", QByteArray(4, '\0'), QStringList());
        row("the reader's own form",
            count(2) + readerRecord("A", "a", true, "Emitter-White.ico")
                + readerRecord("B", nullptr, false, ""),
            QStringList { "A 'a' 'd' on 'Emitter-White.ico'", "B '' 'd' off ''" });
        row("records missing behind the stream's end",
            count(3) + readerRecord("A", "a", true, "c") + text("B"),
            QStringList { " '' '' off ''", "A 'a' 'd' on 'c'", "B '' '' off ''" });
        row("a count no stream could hold", count(0x7fffffff) + readerRecord("A", "a", true, "c"),
            QVector<QString>(1024, " '' '' off ''").toList() + QStringList { "A 'a' 'd' on 'c'" });
        row("a negative count", count(-1) + readerRecord("A", "a", true, "c"), QStringList());
        // The reader takes the writer's default flag and link target for a string and is out
        // of step from there: the class is lost.
        ScenarioDataBinary writer(nullptr);
        const auto emitter
            = std::make_shared<SzenarioEmitter>(QStringLiteral("A"), QStringLiteral("a"));
        emitter->setClass(QStringLiteral("lost"));
        writer.setScenarioEmitter({ emitter });
        row("the writer's stream", writer.toBinary(), QStringList { "A 'a' '' on ''" });
        row("odd or huge string lengths",
            count(2) + QByteArray("\0\0\0\x03\0A\0\x7f\xff\xff\xfe\0A", 13),
            QStringList { " '' '' off ''", " '' '' off ''" });
    }
    void read()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QStringList, emitters);
        QCOMPARE(fromDevice(bytes), emitters);
    }
};

QTEST_GUILESS_MAIN(tst_ScenarioDataBinary)
#include "tst_scenariodatabinary.moc"
