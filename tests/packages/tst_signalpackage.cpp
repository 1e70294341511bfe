#include <radiosim/packages/signalpackage.h>

#include <QtConcurrent>
#include <QtTest>

using namespace Simulation;

class tst_SignalPackage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // One underscore for every unsafe character, so different ids can fall together. Called
    // from many threads at once.
    void cleanId()
    {
        const QPair<QString, QString> ids[]
            = { { "a\\b/c:d*e?f\"g<h>i|j.k", "a_b_c_d_e_f_g_h_i_j_k" },
                  { "Gauss 10k-(x)_y", "Gauss 10k-(x)_y" }, { QString(), QString() } };
        for (const auto &[id, expected] : ids)
            QCOMPARE(SignalPackage::cleanId(id), expected);
        SignalPackage package;
        package.setId("/a.b");
        QCOMPARE(package.cleanId(), QStringLiteral("_a_b"));

        QStringList many;
        for (int i = 0; i < 2000; ++i)
            many << QStringLiteral("/Lib%1/Pkg.%2").arg(i % 7).arg(i);
        QString (*clean)(QString) = &SignalPackage::cleanId;
        const QStringList cleaned = QtConcurrent::blockingMapped(many, clean);
        QCOMPARE(cleaned, many.replaceInStrings("/", "_").replaceInStrings(".", "_"));
    }

    void fullNameKeepsTheLeadingSlash()
    {
        SignalPackage package;
        package.setName("x");
        QCOMPARE(package.fullName(), QStringLiteral("/x"));
        package.setPath("Default");
        QCOMPARE(package.fullName(), QStringLiteral("Default/x"));
    }

    void digitalModulationCountsOnlyWithDigital()
    {
        SignalPackage package;
        package.setDigitalModulation("PSK");
        QVERIFY(!package.hasDigitalModulation());
        package.setAnalogModulation(ModulationDigital);
        QVERIFY(package.hasDigitalModulation());
        package.setDigitalModulation(QString());
        QVERIFY(!package.hasDigitalModulation());
    }
};

QTEST_GUILESS_MAIN(tst_SignalPackage)
#include "tst_signalpackage.moc"
