#include <radiosim/packages/signalpackage.h>

#include <QtConcurrent>
#include <QtTest>

using namespace Simulation;

class tst_SignalPackage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanId_data();
    void cleanId();
    void cleanIdIsReentrant();
    void fullNameKeepsTheLeadingSlash();
    void digitalModulationCountsOnlyWithDigital_data();
    void digitalModulationCountsOnlyWithDigital();
};

void tst_SignalPackage::cleanId_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("expected");
    QTest::newRow("default package") << "/Default/Default"
                                     << "_Default_Default";
    QTest::newRow("every unsafe character") << "a\\b/c:d*e?f\"g<h>i|j.k"
                                            << "a_b_c_d_e_f_g_h_i_j_k";
    QTest::newRow("one for one, so ids can fall together") << "/a.b"
                                                           << "_a_b";
    QTest::newRow("safe characters stay") << "Gauss 10k-(x)_y"
                                          << "Gauss 10k-(x)_y";
    QTest::newRow("empty") << QString() << QString();
}

void tst_SignalPackage::cleanId()
{
    QFETCH(QString, id);
    QFETCH(QString, expected);
    QCOMPARE(SignalPackage::cleanId(id), expected);
    SignalPackage package;
    package.setId(id);
    QCOMPARE(package.cleanId(), expected);
    QCOMPARE(package.id(), id);
}

void tst_SignalPackage::cleanIdIsReentrant()
{
    QStringList ids;
    for (int i = 0; i < 2000; ++i)
        ids << QStringLiteral("/Lib%1/Pkg.%2").arg(i % 7).arg(i);
    QString (*clean)(QString) = &SignalPackage::cleanId;
    const QStringList cleaned = QtConcurrent::blockingMapped(ids, clean);
    for (int i = 0; i < ids.size(); ++i)
        QCOMPARE(cleaned.at(i), QStringLiteral("_Lib%1_Pkg_%2").arg(i % 7).arg(i));
}

void tst_SignalPackage::fullNameKeepsTheLeadingSlash()
{
    SignalPackage package;
    package.setName(QStringLiteral("x"));
    QCOMPARE(package.fullName(), QStringLiteral("/x"));
    package.setPath(QStringLiteral("Default"));
    QCOMPARE(package.fullName(), QStringLiteral("Default/x"));
}

void tst_SignalPackage::digitalModulationCountsOnlyWithDigital_data()
{
    QTest::addColumn<int>("analog");
    QTest::addColumn<QString>("digital");
    QTest::addColumn<bool>("has");
    QTest::newRow("digital with a name") << int(ModulationDigital) << "PSK" << true;
    QTest::newRow("digital without a name") << int(ModulationDigital) << QString() << false;
    QTest::newRow("AM with a name") << int(ModulationAM) << "PSK" << false;
}

void tst_SignalPackage::digitalModulationCountsOnlyWithDigital()
{
    QFETCH(int, analog);
    QFETCH(QString, digital);
    QFETCH(bool, has);
    SignalPackage package;
    package.setAnalogModulation(AnalogModulations(analog));
    package.setDigitalModulation(digital);
    QCOMPARE(package.hasDigitalModulation(), has);
}

QTEST_GUILESS_MAIN(tst_SignalPackage)
#include "tst_signalpackage.moc"
