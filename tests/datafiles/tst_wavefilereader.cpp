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

// "channels/rate/align/bits length first-sample [cues]", then " audio" when AudioFile takes the
// file too; "refused" when the reader neither opens nor reads it.
QString summary(const QString &path)
{
    WaveFileReader reader(path);
    const bool opened = reader.open();
    std::vector<short> first;
    const bool read = reader.readSamples(0, 1, first);
    if (!opened)
        return read ? QStringLiteral("refused, yet reads") : QStringLiteral("refused");
    const WaveFileReader::Format &f = reader.format();
    QStringList cueTexts;
    for (const WaveFileReader::CuePoint &cue : reader.cuePoints())
        cueTexts << QStringLiteral("%1@%2:%3").arg(cue.id).arg(cue.sampleOffset).arg(cue.label);
    return QStringLiteral("%1/%2/%3/%4 %5 %6 [%7]%8")
        .arg(f.channels)
        .arg(f.sampleRate)
        .arg(f.blockAlign)
        .arg(f.bitsPerSample)
        .arg(reader.length())
        .arg(read ? QString::number(first[0]) : "-", cueTexts.join(QLatin1Char(',')),
            AudioFile(path).open() ? " audio" : "");
}

// "ok:values", the values to nine digits.
template <typename T> QString flat(bool ok, const std::vector<T> &values)
{
    QStringList texts;
    for (const T value : values)
        texts << QString::number(double(value), 'g', 9);
    return QStringLiteral("%1:%2").arg(ok).arg(texts.join(QLatin1Char(',')));
}

const QByteArray mono16 = fmt(1, 1, 32000, 2, 16);
const QByteArray threeFrames = chunk("data", le<qint16>(7) + le<qint16>(8) + le<qint16>(9));

} // namespace

class tst_WaveFileReader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void open_data()
    {
        const auto row = columns<QByteArray, QString>("bytes", "summary");
        const QByteArray plain = mono16 + threeFrames;
        const QByteArray fmtHead = le<quint16>(1) + le<quint16>(1) + le<quint32>(32000)
            + le<quint32>(64000) + le<quint16>(2) + le<quint16>(16);

        row("pcm", wave(plain), "1/32000/2/16 3 7 [] audio");
        row("extensible, rest of the format record skipped",
            wave(chunk("fmt ", le<quint16>(65534) + fmtHead.mid(2) + QByteArray(24, 'x'))
                + threeFrames),
            "1/32000/2/16 3 7 [] audio");
        row("stereo is no audio", wave(fmt(1, 2, 32000, 4, 16) + threeFrames),
            "2/32000/4/16 1 7 []");
        row("44100 Hz is no audio", wave(fmt(1, 1, 44100, 2, 16) + threeFrames),
            "1/44100/2/16 3 7 []");
        row("float format", wave(fmt(3, 1, 32000, 4, 32) + threeFrames), "refused");
        row("odd chunk before data, behind its pad byte", wave(chunk("junk", "abc") + plain),
            "1/32000/2/16 3 7 [] audio");
        row("labels before the cues, both out of order",
            wave(labels({ { 2, "two" }, { 3, "three" }, { 1, "one" } }) + plain
                + cues({ { 3, "data" }, { 1, "data" }, { 2, "data" } })),
            "1/32000/2/16 3 7 [1@100:one,2@200:two,3@300:three] audio");
        row("cue of another chunk dropped", wave(plain + cues({ { 1, "slnt" }, { 2, "data" } })),
            "1/32000/2/16 3 7 [2@200:] audio");
        row("label without cue", wave(plain + labels({ { 7, "seven" } })),
            "1/32000/2/16 3 7 [0@0:seven] audio");
        row("LIST of type INFO", wave(plain + chunk("LIST", "INFO" + chunk("INAM", "name"))),
            "1/32000/2/16 3 7 [] audio");
        row("no fmt and no data", wave({}), "0/0/0/0 0 - []");
        row("block align 0", wave(fmt(1, 1, 32000, 0, 16) + threeFrames),
            "1/32000/0/16 0 - [] audio");
        row("cue count beyond its chunk",
            wave(plain + chunk("cue ", le<quint32>(2) + QByteArray(24, 'd'))), "refused");
        row("cue count beyond the file",
            wave(plain + "cue " + le<quint32>(0xffffffff) + le<quint32>(0xffffffff)), "refused");
        row("label beyond the file",
            wave(
                plain + "LIST" + le<quint32>(40) + "adtllabl" + le<quint32>(1000) + le<quint32>(1)),
            "refused");
        row("list claiming more than the file",
            wave(plain + "LIST" + le<quint32>(100000) + "adtl"
                + chunk("labl", le<quint32>(1) + "a")),
            "1/32000/2/16 3 7 [0@0:a] audio");
        row("short format", wave(chunk("fmt ", fmtHead.left(12)) + threeFrames), "refused");
        row("not RIFF", "RIFX" + wave(plain).mid(4), "refused");
        row("not WAVE", chunk("RIFF", "AVI " + plain), "refused");
        row("empty", "", "refused");
        row("missing", QByteArray(), "refused");
    }

    void open()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, summary);
        const QString path
            = bytes.isNull() ? scratch("missing.wav") : writeFile(scratch("a.wav"), bytes);
        QVERIFY(!path.isEmpty());
        QCOMPARE(::summary(path), summary);
    }

    // The walk appends every time.
    void reopeningReadsTheCuesAgain()
    {
        WaveFileReader reader(
            writeFile(scratch("a.wav"), wave(mono16 + threeFrames + cues({ { 1, "data" } }))));
        QVERIFY(reader.open() && reader.open());
        QCOMPARE(reader.cuePoints().size(), 2);
    }

    // Ten frames 0, 100, ..., 900, then a chunk "junk" of the bytes 1 2 3 4.
    void readSamples_data()
    {
        const auto row = columns<uint, uint, QString>("first", "count", "result");
        row("from the start", 0, 3, "1:0,100,200");
        row("stretch past the end starts modulo the length", 12, 3, "1:200,300,400");
        // 0x756a is "ju": the read goes on into the next chunk instead of wrapping to frame 0.
        row("last frame and one more", 9, 2, "1:900,30058");
        row("count 0", 0, 0, "0:");
        row("beyond the file", 9, 10, "0:900,30058,27502,4,0,513,1027,0,0,0");
    }

    void readSamples()
    {
        QFETCH(uint, first);
        QFETCH(uint, count);
        QFETCH(QString, result);
        QByteArray data;
        for (qint16 i = 0; i < 10; ++i)
            data += le<qint16>(i * 100);
        WaveFileReader reader(writeFile(scratch("a.wav"),
            wave(mono16 + chunk("data", data) + chunk("junk", "\x01\x02\x03\x04"))));
        QVERIFY(reader.open());
        std::vector<short> samples;
        const bool ok = reader.readSamples(first, count, samples);
        QCOMPARE(flat(ok, samples), result);
    }

    // Floats from 8 bits take the byte as unsigned, (value + 127) / 128, and are appended. Stereo
    // gives channels x frames values. A frame wider than the values' room is refused and leaves
    // them alone: bytes for 16 bits, anything for 24 bits.
    void sampleTypes()
    {
        WaveFileReader bytes(writeFile(scratch("8.wav"),
            wave(fmt(1, 1, 8000, 1, 8) + chunk("data", QByteArray("\x00\x80\xff", 3)))));
        WaveFileReader stereo(writeFile(scratch("16.wav"),
            wave(fmt(1, 2, 8000, 4, 16)
                + chunk("data",
                    le<qint16>(-32768) + le<qint16>(32767) + le<qint16>(0) + le<qint16>(1)))));
        WaveFileReader wide(writeFile(
            scratch("24.wav"), wave(fmt(1, 1, 8000, 3, 24) + chunk("data", QByteArray(9, 1)))));
        QVERIFY(bytes.open() && stereo.open() && wide.open());
        std::vector<float> floats8 { 42 }, floats16, floats24 { 1 };
        std::vector<unsigned char> raw8, raw16(3, 9);
        std::vector<short> shorts16, shorts24;
        const QStringList results { flat(bytes.readSamples(0, 3, floats8), floats8),
            flat(bytes.readSamples(1, 2, raw8), raw8),
            flat(stereo.readSamples(0, 2, shorts16), shorts16),
            flat(stereo.readSamples(0, 1, floats16), floats16),
            flat(stereo.readSamples(0, 2, raw16), raw16),
            flat(wide.readSamples(0, 3, floats24), floats24),
            flat(wide.readSamples(0, 3, shorts24), shorts24) };
        QCOMPARE(results,
            QStringList({ "1:42,0.9921875,1.9921875,2.984375", "1:128,255", "1:-32768,32767,0,1",
                "1:-1.00003052,1", "0:9,9,9", "0:1", "0:" }));

        // More channels than bytes in a frame: refused, and out keeps its size.
        WaveFileReader broken(writeFile(scratch("c.wav"),
            wave(fmt(1, 61185, 32000, 2, 16) + chunk("data", QByteArray(64, '\x01')))));
        std::vector<short> shorts(5, 0);
        QVERIFY(broken.open() && !broken.readSamples(0, 3, shorts) && shorts.size() == 5);
    }

    // The file is cut to 100 frames under an open reader: reads across or past the cut fail,
    // the audio file leaves those frames 0; nothing crashes.
    void fileTruncatedWhileOpen()
    {
        const QString path = writeFile(scratch("ramp.wav"), rampWave(32000));
        WaveFileReader reader(path);
        AudioFile audio(path);
        QVERIFY(reader.open() && audio.open());
        audio.setPackageDuration(1000);
        QVERIFY(QFile::resize(path, 44 + 2 * 100));
        std::vector<short> samples;
        QVERIFY(reader.readSamples(0, 100, samples) && samples.back() == 99);
        QVERIFY(!reader.readSamples(50, 100, samples) && !reader.readSamples(20000, 10, samples));
        QCOMPARE(runs(audio.readSamples(0, 10)), "0-99" + QString(",0").repeated(220));
        QCOMPARE(runs(audio.readSamples(500, 10)), "0" + QString(",0").repeated(319));
    }

    // 95990 frames, as the default audio: the loop is the package's 3000 ms.
    void audioStretches_data()
    {
        const auto row
            = columns<uint, uint, uint, QString>("packageDuration", "start", "duration", "samples");
        row("first 10 ms", 3000, 0, 10, "0-319");
        row("the package loops at its duration", 3000, 3000, 10, "0-319");
        row("duration 0 gives one sample", 3000, 5, 0, "160");
        // 95968 + 320 passes the end: the read runs into the end of the data, the rest stays 0.
        row("stretch over the end is not joined", 3000, 2999, 10,
            "30432-30453" + QString(",0").repeated(298));
        row("package duration 0", 0, 100, 1, "0" + QString(",0").repeated(31));
    }

    void audioStretches()
    {
        QFETCH(uint, packageDuration);
        QFETCH(uint, start);
        QFETCH(uint, duration);
        QFETCH(QString, samples);
        AudioFile audio(writeFile(scratch("95990.wav"), rampWave(95990)));
        QVERIFY(audio.open());
        QCOMPARE(audio.length(), 2999u);
        // Copies share the record, so the duration set on one holds for the other.
        AudioFile copy = audio;
        copy.setPackageDuration(packageDuration);
        QCOMPARE(runs(audio.readSamples(start, duration)), samples);
    }
};

QTEST_GUILESS_MAIN(tst_WaveFileReader)
#include "tst_wavefilereader.moc"
