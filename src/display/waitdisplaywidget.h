#pragma once

#include <radiosim/radiosim_export.h>

#include <QDialog>

#include <memory>

namespace Simulation {

// A modal dialog with an endless progress bar while the application waits, a cancel row when
// the wait can be cancelled, and an optional time-out. The bar steps every 100 ms from 0 to 10
// and round again.
//
// closed --open--> open --pause--> paused --doContinue--> open --close--> closed; on time-out
// it is hidden without accept(). A click on "cancelButton" does nothing by itself: canceled()
// comes only from reject() (Escape), and only while the cancel row is visible. A cancelled
// dialog keeps its clock running, time-out included, until close().
class RADIOSIM_EXPORT WaitDisplayWidget : public QDialog
{
    Q_OBJECT

public:
    explicit WaitDisplayWidget(QWidget *parent = nullptr);
    ~WaitDisplayWidget() override;

    // uiTimeout in seconds, 0 for none; the time-out fires on the first tick past it, so 3 s
    // end after 3100 ms. Kept in 32-bit milliseconds: above 4294967 s it wraps. While the dialog
    // holds a timer, also a paused one, elapsed time and time-out stay as they were and no new
    // timer starts.
    void open(const QString &sTitle, const QString &sText, bool bCancelable, uint uiTimeout);
    void close();
    // Hides the dialog and stops the clock; doContinue() goes on where it stopped.
    void pause();
    void doContinue();

Q_SIGNALS:
    void canceled();
    void timeout();
    // Declared for the applications; nothing here emits it.
    void finished();

public Q_SLOTS:
    void reject() override;

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    void startTicking();
    void stopTicking();

    struct Ui;
    std::unique_ptr<Ui> ui;
    int m_iTimerId = -1;
    quint32 m_uiElapsed = 0;
    quint32 m_uiTimeout = 0;
    // pause() keeps the id of the timer it stopped; killing that id again would draw a
    // warning from Qt, and a second doContinue() must not leave a timer running unseen.
    bool m_bTicking = false;
};

} // namespace Simulation
