#include <radiosim/datafiles/audiofile.h>
#include <radiosim/datafiles/signalshapefile.h>
#include <radiosim/packages/signalpackagefolder.h>
#include <radiosim/platform/ovzip.h>

#include "testhelpers.h"

#include <QtTest>

using namespace Simulation;

namespace {

const QStringList libraryEntries = { "VuH-Default/", "VuH-Default/.library", "VuH-Default/.lock",
    "VuH-Default/Default/", "VuH-Default/Default/Signal.ssf", "VuH-Default/Default/Signal.wav",
    "VuH-Default/Default/Signal.xml", "VuH-Default/Gauss 10kHz/",
    "VuH-Default/Gauss 10kHz/Signal.ssf", "VuH-Default/Gauss 10kHz/Signal.wav",
    "VuH-Default/Gauss 10kHz/Signal.xml", "VuH-Default/Rect 10kHz/",
    "VuH-Default/Rect 10kHz/Signal.ssf", "VuH-Default/Rect 10kHz/Signal.wav",
    "VuH-Default/Rect 10kHz/Signal.xml" };

// Standard output of a tool nobody here wrote; a failure gives "(failed)".
QByteArray run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit
        || process.exitCode() != 0)
        return "(failed)";
    return process.readAllStandardOutput();
}

} // namespace

// The default signal library as the library carries it, checked against tools nobody here
// wrote: soxi, unzip and Python's wave and zlib.
class tst_DefaultSignalLibrary : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        for (const char *tool : { "python3", "unzip", "soxi" })
            QVERIFY2(!QStandardPaths::findExecutable(tool).isEmpty(), tool);
        QVERIFY(m_dir.isValid());
        for (const QString name : { "VuH-Default.zip", "Default.zip" })
            QVERIFY(QFile::copy(":/DefaultData/" + name, m_dir.filePath(name)));
        OvZip::Archive archive(m_dir.filePath("VuH-Default.zip"));
        QVERIFY(archive.open(OvZip::Archive::ZipRead));
        QVERIFY(archive.extractToFolder(m_dir.path()));
        m_library = QDir(m_dir.filePath("VuH-Default"));
    }

    void archivesPassUnzipInTableOrder()
    {
        QCOMPARE(run("unzip", { "-Z1", m_dir.filePath("VuH-Default.zip") }),
            libraryEntries.join('\n').toUtf8() + '\n');
        QCOMPARE(run("unzip", { "-Z1", m_dir.filePath("Default.zip") }),
            QByteArray("Signal.ssf\nSignal.wav\nSignal.xml\n"));
        for (const QString name : { "VuH-Default.zip", "Default.zip" })
            QVERIFY(run("unzip", { "-tq", m_dir.filePath(name) }).startsWith("No errors detected"));
        // The default package alone holds the same files as its folder in the library.
        OvZip::Archive archive(m_dir.filePath("Default.zip"));
        QVERIFY(archive.open(OvZip::Archive::ZipRead));
        QVERIFY(archive.extractToFolder(m_dir.filePath("alone")));
        for (const QString name : { "Signal.ssf", "Signal.wav", "Signal.xml" })
            QCOMPARE(contentOf(m_dir.filePath("alone/" + name)),
                contentOf(m_library.filePath("Default/" + name)));
    }

    // "Checksum" of the shape section, then of the audio section, against Python's CRC-32.
    void checksumsAreTheCrcOfTheFiles()
    {
        const QRegularExpression checksum("<Checksum>(\\d+)</Checksum>");
        QStringList files;
        QString stated;
        for (const QString folder : { "Default", "Gauss 10kHz", "Rect 10kHz" }) {
            files << m_library.filePath(folder + "/Signal.ssf")
                  << m_library.filePath(folder + "/Signal.wav");
            auto matches
                = checksum.globalMatch(contentOf(m_library.filePath(folder + "/Signal.xml")));
            while (matches.hasNext())
                stated += matches.next().captured(1) + '\n';
        }
        const QByteArray computed = run("python3",
            QStringList { "-c",
                "import sys, zlib\n"
                "for name in sys.argv[1:]: print(zlib.crc32(open(name, 'rb').read()))" }
                + files);
        QCOMPARE(stated, QString::fromLatin1(computed));
    }

    // The generator writes the descriptors itself; the library reads them back, the zero byte
    // behind the root included. The folder's name wins over "Name".
    void descriptorsReadBack()
    {
        QStringList read;
        for (const QString folder : { "Default", "Gauss 10kHz", "Rect 10kHz" }) {
            const SignalPackage p = SignalPackageFolder::signalPackage(m_library.filePath(folder));
            read << QStringLiteral("%1|%2|%3|%4|%5|%6|%7|%8%9")
                        .arg(p.id(), p.name(), p.author())
                        .arg(p.timestamp())
                        .arg(p.signalBandwidth())
                        .arg(p.analogModulation())
                        .arg(p.duration())
                        .arg(p.hasAudioContent())
                        .arg(p.hasSymbolDataContent() || p.hasResultDataContent());
        }
        QCOMPARE(read,
            QStringList({ "/Default/Default|Default|Varnow-Heide|1289821292|10000|0|3000|10",
                "/Default/Gauss10k|Gauss 10kHz|Varnow-Heide|1289821292|10000|0|3000|10",
                "/Default/Rect10k|Rect 10kHz|Varnow-Heide|1289821292|10000|0|3000|10" }));
        QVERIFY(
            contentOf(m_library.filePath("Default/Signal.xml")).contains("Default - Gauss 10kHz"));
    }

    void soxiReadsTheAudio()
    {
        const QString wav = m_library.filePath("Default/Signal.wav");
        QStringList facts;
        for (const char *option : { "-c", "-b", "-r", "-s" })
            facts << QString::fromLatin1(run("soxi", { option, wav })).trimmed();
        QCOMPARE(facts.join(' '), QString("1 16 32000 95990"));
    }

    void pythonWaveReadsTheSameSamples()
    {
        const QString wav = m_library.filePath("Default/Signal.wav");
        const QByteArray frames = run("python3",
            { "-c",
                "import sys, wave\n"
                "w = wave.open(sys.argv[1])\n"
                "sys.stdout.buffer.write(w.readframes(w.getnframes()))",
                wav });
        QCOMPARE(frames.size(), 2 * 95990);
        AudioFile audio(wav);
        QVERIFY(audio.open());
        QCOMPARE(audio.length(), 2999u);
        audio.setPackageDuration(3000);
        std::vector<short> samples = audio.readSamples(0, 2999);
        const std::vector<short> tail = audio.readSamples(2999, 1);
        samples.insert(samples.end(), tail.begin(), tail.begin() + 22);
        QCOMPARE(
            QByteArray(reinterpret_cast<const char *>(samples.data()), int(2 * samples.size())),
            frames);
        QCOMPARE(*std::max_element(samples.begin(), samples.end()), short(32730));
    }

    void gaussShape()
    {
        SignalShapeFile shape(m_library.filePath("Default/Signal.ssf"));
        QVERIFY(shape.open());
        shape.setPackageDuration(3000);
        shape.readSpectrum(0);
        QCOMPARE(shape.spectrum().size(), size_t(512));
        QCOMPARE(shape.duration(), 10000u);
        QCOMPARE(shape.bandwidth(), 10000u);
        QCOMPARE(shape.maxLevelInSpectrum(), 1.0f);
        QCOMPARE(QString::number(shape.signalLevelInSpectrum(), 'f', 4), QString("8.4201"));
        QCOMPARE(shape.spectrum()[256], 1.0f);
        QCOMPARE(*std::max_element(shape.spectrum().begin(), shape.spectrum().end()), 1.0f);
        QCOMPARE(contentOf(m_library.filePath("Gauss 10kHz/Signal.ssf")),
            contentOf(m_library.filePath("Default/Signal.ssf")));
    }

    void rectShape()
    {
        SignalShapeFile shape(m_library.filePath("Rect 10kHz/Signal.ssf"));
        QVERIFY(shape.open());
        shape.setPackageDuration(3000);
        shape.readSpectrum(2500);
        QCOMPARE(shape.spectrum(), std::vector<float>(256, 0.0625f));
        QCOMPARE(shape.maxLevelInSpectrum(), 0.0625f);
        QCOMPARE(shape.signalLevelInSpectrum(), 1.0f);
        QCOMPARE(shape.basePower(), 2e-14f);
    }

private:
    QTemporaryDir m_dir;
    QDir m_library;
};

QTEST_GUILESS_MAIN(tst_DefaultSignalLibrary)
#include "tst_defaultsignallibrary.moc"
