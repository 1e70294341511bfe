// play, timeline, check, convert and the command line itself, run as processes.

#include "testhelpers.h"
#include "toolrunner.h"

#include <QDataStream>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTemporaryDir>

class tst_DocumentCommands : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void answersOnTheRightStream_data()
    {
        const auto row = columns<QString, int, QString>("arguments", "status", "message");
        row("program help", "--help", 0, "Usage: radiosim COMMAND");
        row("version", "--version", 0, "radiosim 0.1.0\n");
        for (const char *command :
            { "play", "timeline", "check", "convert", "describe", "serve", "device" })
            row(command, QString(command) + " --help", 0, "Usage: radiosim " + QString(command));
        row("no command", "", 64, "radiosim: no command given");
        row("unknown command", "fly", 64, "radiosim: unknown command 'fly'");
        row("unknown option", "play --fast", 64, "Unknown option 'fast'.");
        row("missing file", "play /no/such.sce", 1,
            "/no/such.sce: cannot be opened: No such file or directory");
        row("directory", "check " TOOL_TEST_DATA, 1,
            TOOL_TEST_DATA ": cannot be opened: it is a directory");
        row("wrong root", "check " TOOL_TEST_DATA "/deployment.xml", 1,
            TOOL_TEST_DATA "/deployment.xml: not a scenario: the root element is "
                           "<SimulationDeployment>, not <Scenario>");
        row("no XML", "convert " TOOL_TEST_DATA "/../CMakeLists.txt -o x", 1,
            TOOL_TEST_DATA "/../CMakeLists.txt: not a scenario: no XML element in it");
        row("bad number", "play --from 12x", 64,
            "--from wants a whole number from 0 to 4294967295, not '12x'");
        row("negative number", "timeline --png a.png --width -5", 64,
            "--width wants a whole number from 0 to 4294967295, not '-5'");
        row("zero speed", "play --speed 0", 64, "--speed wants a number above 0, not '0'");
        row("no resolution", "play --resolution nan", 64,
            "--resolution wants a number above 0, not 'nan'");
        row("empty span", "play SMALL --from 900 --to 900", 64,
            "nothing to play from 900 ms to 900 ms");
        row("bad format", "play --format xml", 64, "--format is table, csv or json, not 'xml'");
        row("unknown emitter", "play SMALL --emitter Z", 1, "SMALL: no emitter with the id 'Z'");
        row("two scenarios", "check SMALL SMALL", 64,
            "too many arguments: SMALL SMALL; usage: radiosim check [SCENARIO]");
        row("no output", "convert SMALL", 64, "no output file: give -o OUT");
        row("unwritable output", "convert SMALL -o /no/such/dir/x.xml", 1,
            "/no/such/dir/x.xml: cannot be written: ");
        row("describe nothing", "describe /no/such", 1,
            "/no/such: cannot be opened: No such file or directory");
        row("describe a scenario", "describe SMALL", 1,
            "SMALL: not a package, descriptor, zip archive or signal data file");
        row("describe an empty folder", "describe " TOOL_TEST_DATA, 1,
            TOOL_TEST_DATA ": holds no signal package");
        row("no picture", "timeline", 64, "no picture file: give --png FILE");
        row("rows too thin", "timeline SMALL --png a.png --height 120", 64,
            "--height must leave at least 3 pixels to each of the 5 rows");
    }

    void answersOnTheRightStream() { runAnswer(); }

    // The windows cut the stretches on air, a network member is on air only in its own entries,
    // and within a window the records come by begin.
    void playSplitsTheSmallScenarioIntoWindows()
    {
        RUN_TOOL(
            run, 0, { "play", testData("small.sce.exp"), "--window", "250", "--format", "csv" });
        QCOMPARE(run.err(), QString());
        const QString a = ",A,\"Alpha, the first\",44.500000 MHz,E8.5 N48.25,/Default/";
        const QString b = ",B,Bravo,120.000000 MHz,E9 N48,/Default/Default";
        const QString n1 = ",N1,Net one,30.000000 MHz,E10 N47,/Default/Default";
        QCOMPARE(run.out().split('\n'),
            QStringList({ "begin_ms,length_ms,emitter,name,frequency,position,package",
                "0,250" + a + "Gauss10k", "0,250" + b, "100,150" + n1, "250,50" + a + "Gauss10k",
                "250,250" + b, "250,50" + n1, "500,200" + a + "Rect10k", "500,250" + b,
                "600,100,N2,Net two,30.000000 MHz,E10.5 N47.5,/Default/Default", "750,250" + b,
                "" }));
    }

    void playsTheDefaultScenarioInOrder()
    {
        RUN_TOOL(run, 0, { "play" });
        QCOMPARE(run.err(), QString());
        const QStringList lines = run.out().split('\n', Qt::SkipEmptyParts);
        QVERIFY2(lines.size() > 90000, qPrintable(QString::number(lines.size())));
        QVERIFY(lines[0].startsWith(" begin ms length  emitter"));
        QVERIFY(lines[1].contains(
            QRegularExpression("^ +0 +100  EM01 +Broadcast FM +80.000000 MHz  E11.3912 N48.2437 +"
                               "/Default/Default$")));
        qulonglong previous = 0;
        QSet<QString> emitters;
        for (int i = 1; i < lines.size(); ++i) {
            const QStringList fields = lines[i].split(' ', Qt::SkipEmptyParts);
            const qulonglong begin = fields[0].toULongLong();
            QVERIFY2(begin >= previous && begin < 600000, qPrintable(lines[i]));
            previous = begin;
            emitters.insert(fields[2]);
        }
        QCOMPARE(emitters.size(), 16);
    }

    void playWritesJsonOfChosenEmitters()
    {
        RUN_TOOL(run, 0,
            { "play", testData("small.sce.exp"), "--format", "json", "--emitter", "N2", "--emitter",
                "A", "--from", "550", "--to", "650" });
        QCOMPARE(QJsonDocument::fromJson(run.out().toUtf8()).toJson(QJsonDocument::Compact),
            QByteArray("[{\"begin\":550,\"emitter\":\"A\",\"frequency\":\"44.500000 MHz\","
                       "\"hz\":44500000,\"length\":100,\"name\":\"Alpha, the first\","
                       "\"package\":\"/Default/Rect10k\",\"position\":\"E8.5 N48.25\"},"
                       "{\"begin\":600,\"emitter\":\"N2\",\"frequency\":\"30.000000 MHz\","
                       "\"hz\":30000000,\"length\":50,\"name\":\"Net two\","
                       "\"package\":\"/Default/Default\",\"position\":\"E10.5 N47.5\"}]"));
    }

    void playPacesToTheWallClock()
    {
        QElapsedTimer clock;
        clock.start();
        RUN_TOOL(run, 0, { "play", testData("small.sce.exp"), "--to", "600", "--speed", "2" });
        // The last window begins at 500 ms of scenario time, 250 ms into the run at double speed.
        QVERIFY2(clock.elapsed() >= 250, qPrintable(QString::number(clock.elapsed())));
        QCOMPARE(run.out().count('\n'), 13);
    }

    void checkReportsRepairs_data()
    {
        columns<QString, int, QStringList>("file", "status", "lines");
        row("default", QString(), 0,
            QStringList { "scenario: default scenario", "name: Default", "file format: version 4",
                "duration: 00:10:00s (600000 ms)", "emitters: 16", "networks: 1",
                "clean: the checker repaired nothing" });
        row("small", testData("small.sce.exp"), 0,
            QStringList { "emitters: 4", "networks: 1", "clean: the checker repaired nothing" });
        row("older", testData("older.sce"), 0,
            QStringList {
                "file format: older than version 4", "clean: the checker repaired nothing" });
        row("repairs", testData("repairs.sce.exp"), 2,
            QStringList {
                "repaired: emissions without a signal package were given the default package",
                "repaired: missing frequency or position settings were replaced by a fixed 25 MHz "
                "and the position 0, 0" });
    }

    void checkReportsRepairs()
    {
        QFETCH(QString, file);
        QFETCH(int, status);
        QFETCH(QStringList, lines);
        RUN_TOOL(
            run, status, file.isEmpty() ? QStringList { "check" } : QStringList { "check", file });
        const QStringList out = run.out().split('\n');
        for (const QString &line : lines)
            QVERIFY2(out.contains(line), qPrintable(run.out()));
        QCOMPARE(run.err(), QString());
    }

    void convertWritesVersion4ThatPlaysTheSame()
    {
        const QString converted = m_dir.filePath("older-v4.xml");
        RUN_TOOL(convert, 0, { "convert", testData("older.sce"), "-o", converted });
        RUN_TOOL(check, 0, { "check", converted });
        QVERIFY2(check.out().contains("file format: version 4\n"), qPrintable(check.out()));
        RUN_TOOL(original, 0, { "play", testData("older.sce"), "--to", "1000", "--format", "csv" });
        RUN_TOOL(copy, 0, { "play", converted, "--to", "1000", "--format", "csv" });
        QCOMPARE(copy.out(), original.out());
        QCOMPARE(copy.out().count("/Default/Rect10k"), 12);
    }

    // Read back by the writer's table: count, then id, name, description, active, default, link
    // target and class of each emitter, big-endian.
    void convertWritesTheBinaryStream()
    {
        const QString converted = m_dir.filePath("small.bin");
        RUN_TOOL(run, 0, { "convert", testData("small.sce.exp"), "-o", converted, "--binary" });
        QFile file(converted);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QDataStream stream(&file);
        qint32 count = 0;
        stream >> count;
        QStringList emitters;
        for (qint32 i = 0; i < count; ++i) {
            QString id, name, description, link, emitterClass;
            bool active = false, isDefault = false;
            stream >> id >> name >> description >> active >> isDefault >> link >> emitterClass;
            emitters << QStringLiteral("%1 %2 %3 %4").arg(id, name).arg(isDefault).arg(link);
        }
        QCOMPARE(stream.status(), QDataStream::Ok);
        QVERIFY(stream.atEnd());
        emitters.sort();
        QCOMPARE(emitters,
            QStringList({ "A Alpha, the first 1 %%NONE%%", "B Bravo 0 %%NONE%%",
                "N1 Net one 0 %%NONE%%", "N2 Net two 0 %%NONE%%" }));
    }

    // The checksums in the descriptors were computed by the library's generator, the CRC-32 here by
    // zlib: they agree for every data file.
    void describeChecksTheDefaultLibrary()
    {
        RUN_TOOL(run, 0, { "describe" });
        const QString out = run.out();
        QVERIFY2(out.contains(QRegularExpression("^library \\S+/VuH-Default: 3 packages\n")),
            qPrintable(out));
        QCOMPARE(out.count(", as the descriptor says\n"), 6);
        QCOMPARE(out.count("    id: /Default/"), 3);
        QCOMPARE(out.count("    100 records of 512 bins, 10 a second: 10000 ms\n"), 2);
        QCOMPARE(out.count("    100 records of 256 bins, 10 a second: 10000 ms\n"), 1);
        QCOMPARE(out.count("    95990 frames: 2999 ms\n"), 3);
        QCOMPARE(out.count("    playable as package audio (mono, 32000 Hz)\n"), 3);
    }

    // Three records behind a block header, written by hand.
    void describeCountsPulseDescriptorWords()
    {
        QByteArray bytes(4 * 32, '\x11');
        const QString file = writeFile(
            m_dir.filePath("pulses.pdw"), bytes.replace(0, 4, QByteArray::fromHex("726574fb")));
        RUN_TOOL(run, 0, { "describe", file });
        QVERIFY2(
            run.out().endsWith("    pulse descriptor words: 3 records of 32 bytes in 1 blocks\n"),
            qPrintable(run.out()));
    }

    void timelineDrawsEveryEmitterRow_data()
    {
        columns<QStringList, QSize, int>("arguments", "size", "rows");
        // Without a height, 20 pixels to a row beneath the title, axis and legend.
        row("default", QStringList { "--width", "1200" }, QSize(1200, 470), 16);
        row("small", QStringList { testData("small.sce.exp"), "--width", "500", "--height", "260" },
            QSize(500, 260), 4);
    }

    // Each emitter row holds coloured pixels inside the plot: neither the white ground nor the grey
    // of the stripes.
    void timelineDrawsEveryEmitterRow()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QSize, size);
        QFETCH(int, rows);
        const QString png = m_dir.filePath(QString(QTest::currentDataTag()) + ".png");
        RUN_TOOL(run, 0, QStringList { "timeline", "--png", png } + arguments);
        const QImage image(png);
        QCOMPARE(image.size(), size);

        const QRegularExpressionMatch plot
            = QRegularExpression("^plot x=(\\d+)\\.\\.(\\d+)$", QRegularExpression::MultilineOption)
                  .match(run.out());
        QVERIFY2(plot.hasMatch(), qPrintable(run.out()));
        const int left = plot.captured(1).toInt();
        const int right = plot.captured(2).toInt();
        QRegularExpressionMatchIterator row = QRegularExpression(
            "^(\\S+)\ty=(\\d+)\\.\\.(\\d+)\ton air (\\d+) ms$", QRegularExpression::MultilineOption)
                                                  .globalMatch(run.out());
        int found = 0;
        while (row.hasNext()) {
            const QRegularExpressionMatch match = row.next();
            ++found;
            QVERIFY(match.captured(4).toULongLong() > 0);
            int coloured = 0;
            for (int y = match.captured(2).toInt(); y <= match.captured(3).toInt(); ++y) {
                for (int x = left; x <= right; ++x)
                    coloured += image.pixelColor(x, y).hsvSaturation() > 100;
            }
            QVERIFY2(coloured > 0, qPrintable(match.captured(1)));
        }
        QCOMPARE(found, rows);
    }

private:
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(tst_DocumentCommands)
#include "tst_documentcommands.moc"
