#include <radiosim/datafiles/audiofile.h>
#include <radiosim/datafiles/signalshapefile.h>
#include <radiosim/packages/signalpackagefolder.h>
#include <radiosim/platform/ovzip.h>

#include "repositoryhelpers.h"

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
const QStringList packageFolders = { "Default", "Gauss 10kHz", "Rect 10kHz" };

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
        QCOMPARE(runTool("unzip", { "-Z1", m_dir.filePath("VuH-Default.zip") }),
            libraryEntries.join('\n').toUtf8() + '\n');
        QCOMPARE(runTool("unzip", { "-Z1", m_dir.filePath("Default.zip") }),
            QByteArray("Signal.ssf\nSignal.wav\nSignal.xml\n"));
        for (const QString name : { "VuH-Default.zip", "Default.zip" })
            QVERIFY(
                runTool("unzip", { "-tq", m_dir.filePath(name) }).startsWith("No errors detected"));
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
        for (const QString &folder : packageFolders) {
            files << m_library.filePath(folder + "/Signal.ssf")
                  << m_library.filePath(folder + "/Signal.wav");
            auto matches
                = checksum.globalMatch(contentOf(m_library.filePath(folder + "/Signal.xml")));
            while (matches.hasNext())
                stated += matches.next().captured(1) + '\n';
        }
        const QByteArray computed = runTool("python3",
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
        const QStringList ids = { "Default", "Gauss10k", "Rect10k" };
        for (int i = 0; i < ids.size(); ++i)
            QCOMPARE(
                describe(SignalPackageFolder::signalPackage(m_library.filePath(packageFolders[i]))),
                QString("/Default/%1 t1289821292 [] %2/Varnow-Heide bw10000 m0 '' d3000 100")
                    .arg(ids[i], packageFolders[i]));
        QVERIFY(
            contentOf(m_library.filePath("Default/Signal.xml")).contains("Default - Gauss 10kHz"));
    }

    // soxi's facts, then Python's samples against those the library reads.
    void audioAgreesWithSoxiAndPythonWave()
    {
        const QString wav = m_library.filePath("Default/Signal.wav");
        QStringList facts;
        for (const char *option : { "-c", "-b", "-r", "-s" })
            facts << QString::fromLatin1(runTool("soxi", { option, wav })).trimmed();
        QCOMPARE(facts.join(' '), QString("1 16 32000 95990"));
        const QByteArray frames = runTool("python3",
            { "-c",
                "import sys, wave\n"
                "w = wave.open(sys.argv[1])\n"
                "sys.stdout.buffer.write(w.readframes(w.getnframes()))",
                wav });
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

    // The Gauss package shares the default's shape; the rectangle is flat over its band.
    void shapes()
    {
        QCOMPARE(contentOf(m_library.filePath("Gauss 10kHz/Signal.ssf")),
            contentOf(m_library.filePath("Default/Signal.ssf")));
        SignalShapeFile gauss(m_library.filePath("Default/Signal.ssf"));
        SignalShapeFile rect(m_library.filePath("Rect 10kHz/Signal.ssf"));
        for (SignalShapeFile *shape : { &gauss, &rect }) {
            QVERIFY(shape->open());
            shape->setPackageDuration(3000);
        }
        gauss.readSpectrum(0);
        QCOMPARE(gauss.spectrum().size(), size_t(512));
        QVERIFY(gauss.duration() == 10000u && gauss.bandwidth() == 10000u);
        QVERIFY(gauss.maxLevelInSpectrum() == 1.0f && gauss.spectrum()[256] == 1.0f);
        QCOMPARE(QString::number(gauss.signalLevelInSpectrum(), 'f', 4), QString("8.4201"));
        rect.readSpectrum(2500);
        QCOMPARE(rect.spectrum(), std::vector<float>(256, 0.0625f));
        QVERIFY(rect.maxLevelInSpectrum() == 0.0625f && rect.signalLevelInSpectrum() == 1.0f);
        QCOMPARE(rect.basePower(), 2e-14f);
    }

private:
    QTemporaryDir m_dir;
    QDir m_library;
};

QTEST_GUILESS_MAIN(tst_DefaultSignalLibrary)
#include "tst_defaultsignallibrary.moc"
