#include <radiosim/units/geodesy.h>

#include "testhelpers.h"

#include <QtTest>

using namespace Simulation;

Q_DECLARE_METATYPE(TPos)

static const char NoGeodSolve[] = "GeodSolve (geographiclib-tools) failed or is not installed";

class tst_Geodesy : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Azimuth and distance against GeodSolve's answer, and the point reached by going its
    // distance in its direction against the given end.
    void agreesWithGeodSolve_data()
    {
        const auto row = columns<TPos, TPos>("from", "to");
        row("across the date line", { 179.5, -16.0 }, { -178.0, -18.5 });
        row("westward is above 180", { 151.2, -33.9 }, { 115.9, -31.9 });
        row("due north is 0, not 360", { 11.0, 48.0 }, { 11.0, 49.0 });
        row("due north across the pole", { 0.0, 89.9 }, { 180.0, 89.65234825431592 });
    }

    void agreesWithGeodSolve()
    {
        QFETCH(TPos, from);
        QFETCH(TPos, to);
        const QVector<double> out = geodSolve({ "-i" }, { from.lat, from.lon, to.lat, to.lon });
        QVERIFY2(out.size() == 3, NoGeodSolve);
        const double expectedAzimuth = out[0] < 0 ? out[0] + 360.0 : out[0];
        QVERIFY(qAbs(azimuth(from, to) - expectedAzimuth) < 1e-9
            && qAbs(distance(from, to) - out[2] / 1000.0) < 1e-9);
        const TPos reached = position(from, out[0], out[2] / 1000.0);
        QVERIFY2(qAbs(reached.lat - to.lat) < 1e-9 && qAbs(reached.lon - to.lon) < 1e-9,
            qPrintable(QString::asprintf("%.15g %.15g", reached.lon, reached.lat)));
    }

    // Copying takes hidden entries and never overwrites; removing takes a link inside the tree
    // but not what it points to. A missing source or tree is no failure.
    void copyAndRemoveDir()
    {
        QTemporaryDir dir;
        QVERIFY(copyDir(dir.filePath("missing"), dir.filePath("a/b")));
        QVERIFY(QFileInfo(dir.filePath("a/b")).isDir());
        const QString target = dir.filePath("dst");
        QVERIFY(QDir().mkpath(dir.filePath("src/sub/.hidden")));
        QVERIFY(!writeFile(dir.filePath("src/sub/.hidden/data.bin"), "payload").isEmpty());
        QVERIFY(copyDir(dir.filePath("src"), target));
        QCOMPARE(contentOf(target + "/sub/.hidden/data.bin"), QByteArray("payload"));
        QVERIFY(!copyDir(dir.filePath("src"), target));

        QVERIFY(QFile::link(dir.filePath("src"), target + "/link"));
        QVERIFY(removeDir(target) && !QFileInfo::exists(target));
        QVERIFY(QFileInfo::exists(dir.filePath("src/sub/.hidden/data.bin")));
        QVERIFY(removeDir(target));
    }
};

QTEST_GUILESS_MAIN(tst_Geodesy)
#include "tst_geodesy.moc"
