#include "displaytesthelpers.h"

#include <testhelpers.h>

#include <radiosim/display/ledwidget.h>
#include <radiosim/display/waitdisplaywidget.h>

#include <QAbstractEventDispatcher>
#include <QLabel>
#include <QLayout>
#include <QMetaMethod>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QStyle>
#include <QtTest>

using Simulation::WaitDisplayWidget;

namespace {

// "Class:name(children...)" down the object tree, then the class's own methods in order.
QString tree(const QObject *object, bool withMethods = true)
{
    QStringList children;
    for (const QObject *child : object->children())
        children << tree(child, false);
    QString text = QString(object->metaObject()->className()) + ':' + object->objectName();
    if (!children.isEmpty())
        text += '(' + children.join(' ') + ')';
    const QMetaObject *meta = object->metaObject();
    for (int i = meta->methodOffset(); withMethods && i < meta->methodCount(); ++i)
        text += ' ' + meta->method(i).methodSignature();
    return text;
}

// The lamp's centre colour, give or take the rounding of its gradient.
bool isLamp(QRgb pixel)
{
    return qAbs(qRed(pixel) - 54) + qAbs(qGreen(pixel) - 180) + qAbs(qBlue(pixel) - 52) <= 12
        && qAlpha(pixel) == 255;
}

// Counts the warnings issued while it lives, instead of printing them.
struct WarningCount
{
    WarningCount() { count = 0; }
    ~WarningCount() { qInstallMessageHandler(previous); }
    static inline int count = 0;
    QtMessageHandler previous
        = qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &) {
              count += type == QtWarningMsg;
          });
};

int timerCount(WaitDisplayWidget &dialog)
{
    return QAbstractEventDispatcher::instance()->registeredTimers(&dialog).size();
}

// Delivers ticks of the dialog's one 100 ms timer at once, no waiting; gives the bar's values.
QList<int> tick(WaitDisplayWidget &dialog, int count)
{
    const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(&dialog);
    auto *bar = dialog.findChild<QProgressBar *>();
    QList<int> values;
    if (timers.size() != 1 || timers[0].interval != 100 || timers[0].timerType != Qt::CoarseTimer)
        return values;
    QTimerEvent event(timers[0].timerId);
    while (values.size() < count) {
        QCoreApplication::sendEvent(&dialog, &event);
        values << bar->value();
    }
    return values;
}

void open(WaitDisplayWidget &dialog, bool cancelable, uint timeout)
{
    dialog.open(
        QStringLiteral("Loading"), QStringLiteral("Loading the scenario"), cancelable, timeout);
}

} // namespace

class tst_IndicatorWidgets : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Lamps: green in the middle at every size. All: clear corners. Drawn four times enlarged on a
    // sheet, for a person to look at.
    void picturesAreEmbedded()
    {
        QStringList names;
        for (int size : { 8, 10, 16, 24, 32, 48 })
            names << QStringLiteral(":/Icons/Led-%1x%1.png").arg(size);
        for (const char *kind : { "ant", "station" })
            for (const char *state : { "empty", "friend", "hostile", "neutral", "null" })
                names << QStringLiteral(":/DefaultData/%1_%2.png").arg(kind, state);
        names << QStringLiteral(":/DefaultData/null_null.png");
        QImage sheet(names.size() * 200, 200, QImage::Format_ARGB32);
        sheet.fill(Qt::white);
        QPainter painter(&sheet);
        for (int i = 0; i < names.size(); ++i) {
            const QImage image(names.at(i));
            const int size = image.width(), last = size - 1;
            QVERIFY2(image.height() == size && (i >= 6 || isLamp(image.pixel(size / 2, size / 2))),
                qPrintable(names.at(i)));
            for (QPoint corner :
                { QPoint(0, 0), QPoint(last, 0), QPoint(0, last), QPoint(last, last) })
                QVERIFY2(qAlpha(image.pixel(corner)) == 0, qPrintable(names.at(i)));
            painter.drawImage(QRect(i * 200 + 4, 4, size * 4, size * 4), image);
        }
        QVERIFY(saveArtefact(sheet, QStringLiteral("pictures.png")));
    }

    // The object trees with the classes' own methods in order (so every child below exists), and
    // the set-up of each object.
    void builtAsDesigned()
    {
        LedWidget led;
        WaitDisplayWidget dialog;
        QCOMPARE(tree(&led),
            QString("LedWidget:LedWidget(QHBoxLayout:horizontalLayout QLabel:activeLed "
                    "QLabel:textLabel) setText(QString) setLedActive(bool) activeateLed() "
                    "deactivateLed()"));
        QCOMPARE(tree(&dialog),
            QString("Simulation::WaitDisplayWidget:WaitDisplayWidget(QVBoxLayout:verticalLayout "
                    "QLabel:messageLabel QProgressBar:progressBar QWidget:cancelBox("
                    "QHBoxLayout:cancelLayout QPushButton:cancelButton)) canceled() timeout() "
                    "finished() reject()"));
        QCOMPARE(led.windowTitle(), QString("Form"));
        QCOMPARE(led.sizePolicy(), QSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred));
        QCOMPARE(led.layout()->spacing(), 4);
        QCOMPARE(led.layout()->contentsMargins(), QMargins());
        auto *lamp = led.findChild<QLabel *>("activeLed");
        QVERIFY(lamp->text().isEmpty() && lamp->isEnabled());
        auto *text = led.findChild<QLabel *>("textLabel");
        QCOMPARE(text->text(), QString("Text"));
        QVERIFY(text->textFormat() == Qt::AutoText && !text->openExternalLinks());

        QCOMPARE(dialog.windowTitle(), QString("Dialog"));
        QCOMPARE(dialog.size(), QSize(400, 94));
        QCOMPARE(dialog.minimumSize(), QSize(400, 0));
        QCOMPARE(dialog.maximumSize(), QSize(400, QWIDGETSIZE_MAX));
        QCOMPARE(dialog.sizePolicy(), QSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding));
        QVERIFY(dialog.windowModality() == Qt::ApplicationModal && dialog.isModal());
        auto *message = dialog.findChild<QLabel *>("messageLabel");
        QCOMPARE(message->text(), QString("TextLabel"));
        QCOMPARE(message->alignment(), Qt::AlignCenter);
        auto *bar = dialog.findChild<QProgressBar *>("progressBar");
        QCOMPARE(
            QList<int>({ bar->minimum(), bar->maximum(), bar->value() }), QList<int>({ 0, 10, 0 }));
        QVERIFY(!bar->isTextVisible() && !bar->invertedAppearance());
        QCOMPARE(dialog.findChild<QPushButton *>("cancelButton")->text(), QString("Cancel"));
    }

    // On a transparent window ground the lamp's centre shows its colour and the corners of its
    // picture stay clear; switched off, the same picture is drawn without the green.
    void ledFollowsTextAndShowsTheLamp()
    {
        LedWidget led;
        QPalette palette = led.palette();
        palette.setBrush(QPalette::Window, Qt::transparent);
        led.setPalette(palette);
        const int shortWidth = led.width();
        led.setText(QStringLiteral("Receiver 1"));
        QVERIFY(led.width() > shortWidth && led.size() == led.sizeHint());
        auto *lamp = led.findChild<QLabel *>(QStringLiteral("activeLed"));
        const QPixmap pixmap = lamp->pixmap(Qt::ReturnByValue);
        const QRect picture = lamp->style()
                                  ->itemPixmapRect(lamp->contentsRect(), lamp->alignment(), pixmap)
                                  .translated(lamp->pos());
        QCOMPARE(picture.size(), QSize(10, 10));

        for (bool active : { true, false }) {
            active ? led.activeateLed() : led.deactivateLed();
            QCOMPARE(led.isLedActive(), active);
            const QImage image = led.grab().toImage();
            QVERIFY(saveArtefact(image, active ? "led-on.png" : "led-off.png"));
            QCOMPARE(isLamp(image.pixel(picture.center() + QPoint(1, 1))), active);
            QCOMPARE(
                qAlpha(image.pixel(picture.topLeft())) + qAlpha(image.pixel(picture.bottomRight())),
                0);
        }
        led.setLedActive(true);
        QVERIFY(led.isLedActive() && led.text() == QStringLiteral("Receiver 1"));
    }

    void waitDialogTimesOutAfterTheStrictlyGreaterTick_data()
    {
        columns<uint, int, int>("timeout", "ticks", "timeouts");
        row("3 s, 30 ticks: at 3000 ms not yet", 3u, 30, 0);
        row("3 s, 31 ticks: past 3000 ms", 3u, 31, 1);
        row("1 s, 11 ticks", 1u, 11, 1);
        row("none, 1000 ticks", 0u, 1000, 0);
    }
    // After a time-out the dialog is hidden, not accepted, and the next open starts a new clock.
    void waitDialogTimesOutAfterTheStrictlyGreaterTick()
    {
        QFETCH(uint, timeout);
        QFETCH(int, ticks);
        QFETCH(int, timeouts);
        WaitDisplayWidget dialog;
        QSignalSpy timedOut(&dialog, &WaitDisplayWidget::timeout);
        QSignalSpy accepted(&dialog, &QDialog::accepted);
        open(dialog, false, timeout);
        QCOMPARE(tick(dialog, ticks).size(), ticks);
        QCOMPARE(timedOut.count(), timeouts);
        QVERIFY(dialog.isVisible() == !timeouts && timerCount(dialog) == 1 - timeouts);
        QCOMPARE(accepted.count(), 0);
        if (timeouts) {
            open(dialog, false, timeout);
            tick(dialog, ticks - 1);
            QCOMPARE(timedOut.count(), 1);
            tick(dialog, 1);
            QCOMPARE(timedOut.count(), 2);
        }
    }

    // Pausing stops the timer but keeps its id: open() then shows the dialog without a clock, and
    // only doContinue() runs it again, from where it stood. Nothing is stopped twice.
    void waitDialogBarCyclesAndPauseKeepsTheClock()
    {
        WaitDisplayWidget dialog;
        QSignalSpy timedOut(&dialog, &WaitDisplayWidget::timeout);
        QSignalSpy accepted(&dialog, &QDialog::accepted);
        const WarningCount warnings;
        open(dialog, true, 3);
        QCOMPARE(tick(dialog, 12), QList<int>({ 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 0, 1 }));
        tick(dialog, 8);
        dialog.pause();
        dialog.pause();
        QVERIFY(!dialog.isVisible() && timerCount(dialog) == 0);
        open(dialog, true, 100);
        QVERIFY(dialog.isVisible() && timerCount(dialog) == 0);
        dialog.doContinue();
        dialog.doContinue();
        tick(dialog, 10);
        QVERIFY(dialog.isVisible() && timedOut.isEmpty());
        tick(dialog, 1);
        QCOMPARE(timedOut.count(), 1);

        open(dialog, true, 0);
        dialog.pause();
        dialog.close();
        QVERIFY(accepted.count() == 1 && timerCount(dialog) == 0);
        open(dialog, true, 0);
        QCOMPARE(timerCount(dialog), 1);
        QCOMPARE(warnings.count, 0);
    }

    void waitDialogEscapeCancelsOnlyWhenCancelable_data()
    {
        columns<bool>("cancelable");
        row("cancelable", true);
        row("not cancelable", false);
    }
    // The size follows the cancel row, but for the width. The button itself is not connected, and
    // a cancelled dialog keeps its clock.
    void waitDialogEscapeCancelsOnlyWhenCancelable()
    {
        QFETCH(bool, cancelable);
        WaitDisplayWidget dialog;
        QSignalSpy canceled(&dialog, &WaitDisplayWidget::canceled);
        QSignalSpy rejected(&dialog, &QDialog::rejected);
        open(dialog, cancelable, 0);
        tick(dialog, 5);
        QVERIFY(
            saveArtefact(dialog.grab().toImage(), cancelable ? "wait-cancelable.png" : "wait.png"));
        QCOMPARE(dialog.size(), QSize(400, dialog.sizeHint().height()));
        QCOMPARE(dialog.findChild<QWidget *>(QStringLiteral("cancelBox"))->isVisible(), cancelable);
        QCOMPARE(dialog.windowFlags()
                & (Qt::WindowContextHelpButtonHint | Qt::WindowCloseButtonHint
                    | Qt::CustomizeWindowHint | Qt::WindowSystemMenuHint),
            Qt::CustomizeWindowHint | Qt::WindowSystemMenuHint);
        QTest::mouseClick(
            dialog.findChild<QWidget *>(QStringLiteral("cancelButton")), Qt::LeftButton);
        QVERIFY(canceled.isEmpty());

        QTest::keyClick(&dialog, Qt::Key_Escape);
        dialog.reject();
        QCOMPARE(canceled.count(), cancelable ? 1 : 0);
        QCOMPARE(rejected.count(), canceled.count());
        QCOMPARE(dialog.isVisible(), !cancelable);
        QCOMPARE(timerCount(dialog), 1);
    }
};

QTEST_MAIN(tst_IndicatorWidgets)
#include "tst_indicatorwidgets.moc"
