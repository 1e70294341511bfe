#pragma once

#include <QObject>

class QSocketNotifier;

// SIGINT and SIGTERM for the event loop: the handler only writes a byte into a pipe whose
// reading end a QSocketNotifier watches, so the shutdown runs as ordinary code. One object at a
// time; the default handlers come back with its destruction.
class TerminationSignals : public QObject
{
    Q_OBJECT
public:
    explicit TerminationSignals(QObject *parent = nullptr);
    ~TerminationSignals() override;

    // For loops that run no event loop.
    static bool requested();

Q_SIGNALS:
    void terminationRequested();

private:
    QSocketNotifier *m_notifier = nullptr;
};
