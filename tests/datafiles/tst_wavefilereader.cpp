#include "datafiletesthelpers.h"

#include <radiosim/datafiles/audiofile.h>
#include <radiosim/datafiles/wavefilereader.h>

#include <QtTest>

using namespace Simulation;

namespace {

QByteArray cues(const QVector<QPair<quint32, QByteArray>> &records)
{
    QByteArray payload = le<quint32>(quint32(records.size()));
    for (const auto &[id, chunkId] : records)
        payload += le(id) + le<quint32>(0) + chunkId + le<quint32>(0) + le<quint32>(0)
            + le<quint32>(id * 100);
    return chunk("cue ", payload);
}

QByteArray labels(const QVector<QPair<quint32, QByteArray>> &texts)
{
    QByteArray payload = "adtl";
    for (const auto &[id, text] : texts)
        payload += chunk("labl", le(id) + text);
    return chunk("LIST", payload);
}

// "channels/rate/align/bits length first-sample [cues]".
QString summary(const WaveFileReader &reader)
{
    const WaveFileReader::Format &f = reader.format();
    std::vector<short> first;
    const QString sample = reader.readSamples(0, 1, first) ? QString::number(first[0]) : "-";
    QStringList cueTexts;
    for (const WaveFileReader::CuePoint &cue : reader.cuePoints())
        cueTexts << QStringLiteral("%1@%2:%3").arg(cue.id).arg(cue.sampleOffset).arg(cue.label);
    return QStringLiteral("%1/%2/%3/%4 %5 %6 [%7]")
        .arg(f.channels)
        .arg(f.sampleRate)
        .arg(f.blockAlign)
        .arg(f.bitsPerSample)
        .arg(reader.length())
        .arg(sample, cueTexts.join(QLatin1Char(',')));
}

template <typename T> QString flat(bool ok, const std::vector<T> &values)
{
    QStringList texts;
    for (const T value : values)
        texts << QString::number(value);
    return QStringLiteral("%1:%2").arg(ok).arg(texts.join(QLatin1Char(',')));
}

const QByteArray mono16 = fmt(1, 1, 32000, 2, 16);
const QByteArray threeFrames = chunk("data", le<qint16>(7) + le<qint16>(8) + le<qint16>(9));

} // namespace

class tst_WaveFileReader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QVERIFY(m_dir.isValid()); }

    void open_data()
    {
        columns<QByteArray, bool, QString>("bytes", "opened", "summary");
        const QByteArray plain = mono16 + threeFrames;
        const QByteArray fmtHead = le<quint16>(1) + le<quint16>(1) + le<quint32>(32000)
            + le<quint32>(64000) + le<quint16>(2) + le<quint16>(16);
        const QByteArray threeCues = cues({ { 3, "data" }, { 1, "data" }, { 2, "data" } });
        const QByteArray threeLabels = labels({ { 2, "two" }, { 3, "three" }, { 1, "one" } });
        const QString ordered = "1/32000/2/16 3 7 [1@100:one,2@200:two,3@300:three]";

        row("pcm", wave(plain), true, QString("1/32000/2/16 3 7 []"));
        row("extensible, rest of the format record skipped",
            wave(chunk("fmt ", le<quint16>(65534) + fmtHead.mid(2) + QByteArray(24, 'x'))
                + threeFrames),
            true, QString("1/32000/2/16 3 7 []"));
        row("float format", wave(fmt(3, 1, 32000, 4, 32) + threeFrames), false, QString());
        row("odd chunk before data, behind its pad byte", wave(chunk("junk", "abc") + plain), true,
            QString("1/32000/2/16 3 7 []"));
        row("cues and labels out of order", wave(plain + threeCues + threeLabels), true, ordered);
        row("labels before cues", wave(threeLabels + plain + threeCues), true, ordered);
        row("cue of another chunk dropped", wave(plain + cues({ { 1, "slnt" }, { 2, "data" } })),
            true, QString("1/32000/2/16 3 7 [2@200:]"));
        row("label without cue", wave(plain + labels({ { 7, "seven" } })), true,
            QString("1/32000/2/16 3 7 [0@0:seven]"));
        row("LIST of type INFO", wave(plain + chunk("LIST", "INFO" + chunk("INAM", "name"))), true,
            QString("1/32000/2/16 3 7 []"));
        row("no fmt and no data", wave({}), true, QString("0/0/0/0 0 - []"));
        row("block align 0", wave(fmt(1, 1, 32000, 0, 16) + threeFrames), true,
            QString("1/32000/0/16 0 - []"));
        row("cue count beyond its chunk",
            wave(plain + chunk("cue ", le<quint32>(2) + QByteArray(24, 'd'))), false, QString());
        row("cue count beyond the file",
            wave(plain + "cue " + le<quint32>(0xffffffff) + le<quint32>(0xffffffff)), false,
            QString());
        row("label beyond the file",
            wave(
                plain + "LIST" + le<quint32>(40) + "adtllabl" + le<quint32>(1000) + le<quint32>(1)),
            false, QString());
        row("list claiming more than the file",
            wave(plain + "LIST" + le<quint32>(100000) + "adtl"
                + chunk("labl", le<quint32>(1) + "a")),
            true, QString("1/32000/2/16 3 7 [0@0:a]"));
        row("short format", wave(chunk("fmt ", fmtHead.left(12)) + threeFrames), false, QString());
        row("not RIFF", "RIFX" + wave(plain).mid(4), false, QString());
        row("not WAVE", chunk("RIFF", "AVI " + plain), false, QString());
        row("empty", QByteArray(), false, QString());
    }

    void open()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, opened);
        QFETCH(QString, summary);
        WaveFileReader reader(writeFile(m_dir.filePath("a.wav"), bytes));
        QCOMPARE(reader.open(), opened);
        if (opened)
            QCOMPARE(::summary(reader), summary);
        else
            QVERIFY(reader.length() == 0 || !reader.readSamples(0, 1, m_shorts));
    }

    void missingFileAndReopen()
    {
        WaveFileReader missing(m_dir.filePath("missing.wav"));
        QVERIFY(!missing.open());
        // The walk appends every time.
        WaveFileReader reader(writeFile(
            m_dir.filePath("a.wav"), wave(mono16 + threeFrames + cues({ { 1, "data" } }))));
        QVERIFY(reader.open() && reader.open());
        QCOMPARE(::summary(reader), QString("1/32000/2/16 3 7 [1@100:,1@100:]"));
    }

    // Ten frames 0, 100, ..., 900, then a chunk "junk" of the bytes 1 2 3 4.
    void readSamples_data()
    {
        columns<uint, uint, QString>("first", "count", "result");
        row("from the start", 0u, 3u, QString("1:0,100,200"));
        row("stretch past the end starts modulo the length", 12u, 3u, QString("1:200,300,400"));
        // 0x756a is "ju": the read goes on into the next chunk instead of wrapping to frame 0.
        row("last frame and one more", 9u, 2u, QString("1:900,30058"));
        row("count 0", 0u, 0u, QString("0:"));
        row("beyond the file", 9u, 10u, QString("0:900,30058,27502,4,0,513,1027,0,0,0"));
    }

    void readSamples()
    {
        QFETCH(uint, first);
        QFETCH(uint, count);
        QFETCH(QString, result);
        QByteArray data;
        for (qint16 i = 0; i < 10; ++i)
            data += le<qint16>(i * 100);
        WaveFileReader reader(writeFile(m_dir.filePath("a.wav"),
            wave(mono16 + chunk("data", data) + chunk("junk", "\x01\x02\x03\x04"))));
        QVERIFY(reader.open());
        std::vector<short> samples;
        const bool ok = reader.readSamples(first, count, samples);
        QCOMPARE(flat(ok, samples), result);
    }

    void sampleSizesAndConversions()
    {
        // 8-bit samples taken as unsigned: (value + 127) / 128.
        WaveFileReader bytes(writeFile(m_dir.filePath("8.wav"),
            wave(fmt(1, 1, 8000, 1, 8) + chunk("data", QByteArray("\x00\x80\xff", 3)))));
        QVERIFY(bytes.open());
        std::vector<float> floats { 42.0f };
        QVERIFY(bytes.readSamples(0, 3, floats));
        QCOMPARE(flat(true, floats), QString("1:42,0.992188,1.99219,2.98438"));
        QCOMPARE(floats[1], 0.9921875f);
        std::vector<unsigned char> raw;
        QVERIFY(bytes.readSamples(1, 2, raw) && flat(true, raw) == "1:128,255");

        // Stereo 16-bit: channels x frames values; the byte overload would need twice its space.
        WaveFileReader stereo(writeFile(m_dir.filePath("16.wav"),
            wave(fmt(1, 2, 8000, 4, 16)
                + chunk("data",
                    le<qint16>(-32768) + le<qint16>(32767) + le<qint16>(0) + le<qint16>(1)))));
        QVERIFY(stereo.open());
        std::vector<short> shorts;
        QVERIFY(stereo.readSamples(0, 2, shorts) && flat(true, shorts) == "1:-32768,32767,0,1");
        floats.clear();
        QVERIFY(stereo.readSamples(0, 1, floats));
        QCOMPARE(floats, std::vector<float>({ -32768.0f / 32767.0f, 1.0f }));
        raw.assign(3, 9);
        QVERIFY(!stereo.readSamples(0, 2, raw));
        QCOMPARE(raw.size(), size_t(3));

        WaveFileReader wide(writeFile(m_dir.filePath("24.wav"),
            wave(fmt(1, 1, 8000, 3, 24) + chunk("data", QByteArray(9, '\x01')))));
        QVERIFY(wide.open());
        floats = { 1.0f };
        QVERIFY(!wide.readSamples(0, 3, floats) && floats == std::vector<float>({ 1.0f }));
        QVERIFY(!wide.readSamples(0, 3, shorts));

        // More channels than bytes in a frame: refused, and out keeps its size.
        WaveFileReader broken(writeFile(m_dir.filePath("c.wav"),
            wave(fmt(1, 61185, 32000, 2, 16) + chunk("data", QByteArray(64, '\x01')))));
        QVERIFY(broken.open());
        shorts.assign(5, 0);
        QVERIFY(!broken.readSamples(0, 3, shorts) && shorts.size() == 5);
    }

    // The file loses its samples under an open reader: reads fail, nothing crashes.
    void fileTruncatedWhileOpen()
    {
        const QString path = writeFile(m_dir.filePath("a.wav"), rampWave(1000));
        WaveFileReader reader(path);
        AudioFile audio(path);
        QVERIFY(reader.open() && audio.open());
        audio.setPackageDuration(1000);
        QVERIFY(QFile::resize(path, 50));
        QVERIFY(!reader.readSamples(10, 100, m_shorts));
        QCOMPARE(runs(audio.readSamples(0, 1)).left(6), QString("0-2,0,"));
    }

    void audioFormats_data()
    {
        columns<QByteArray, bool>("format", "opened");
        row("mono 32000 Hz", mono16, true);
        row("stereo", fmt(1, 2, 32000, 4, 16), false);
        row("44100 Hz", fmt(1, 1, 44100, 2, 16), false);
    }

    void audioFormats()
    {
        QFETCH(QByteArray, format);
        QFETCH(bool, opened);
        AudioFile audio(writeFile(m_dir.filePath("a.wav"), wave(format + threeFrames)));
        QCOMPARE(audio.open(), opened);
    }

    // 95990 frames, as the default audio: the loop is the package's 3000 ms.
    void audioStretches_data()
    {
        columns<uint, uint, uint, QString>("packageDuration", "start", "duration", "samples");
        row("first 10 ms", 3000u, 0u, 10u, QString("0-319"));
        row("the package loops at its duration", 3000u, 3000u, 10u, QString("0-319"));
        row("duration 0 gives one sample", 3000u, 5u, 0u, QString("160"));
        // 95968 + 320 passes the end: the read runs into the end of the data, the rest stays 0.
        row("stretch over the end is not joined", 3000u, 2999u, 10u,
            QString("30432-30453") + QString(",0").repeated(298));
        row("package duration 0", 0u, 100u, 1u, QString("0") + QString(",0").repeated(31));
    }

    void audioStretches()
    {
        QFETCH(uint, packageDuration);
        QFETCH(uint, start);
        QFETCH(uint, duration);
        QFETCH(QString, samples);
        if (!QFile::exists(m_dir.filePath("ramp.wav")))
            writeFile(m_dir.filePath("ramp.wav"), rampWave(95990));
        AudioFile audio(m_dir.filePath("ramp.wav"));
        QVERIFY(audio.open());
        QCOMPARE(audio.length(), 2999u);
        // Copies share the record, so the duration set on one holds for the other.
        AudioFile copy = audio;
        copy.setPackageDuration(packageDuration);
        QCOMPARE(runs(audio.readSamples(start, duration)), samples);
    }

private:
    QTemporaryDir m_dir;
    std::vector<short> m_shorts;
};

QTEST_GUILESS_MAIN(tst_WaveFileReader)
#include "tst_wavefilereader.moc"
