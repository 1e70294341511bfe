#pragma once

#include <QByteArray>
#include <QIODevice>

// A stream device the test fills by hand: feed() makes bytes readable and announces them,
// everything written is kept for the test to read.
class FeedDevice : public QIODevice
{
public:
    FeedDevice() { open(QIODevice::ReadWrite); }

    void feed(const QByteArray &bytes)
    {
        m_inbound += bytes;
        Q_EMIT readyRead();
    }
    QByteArray written() const { return m_written; }
    int readyReadConnections() const { return receivers(SIGNAL(readyRead())); }
    bool isSequential() const override { return true; }
    qint64 bytesAvailable() const override
    {
        return m_inbound.size() + QIODevice::bytesAvailable();
    }

protected:
    qint64 readData(char *data, qint64 maxSize) override
    {
        const int n = int(qMin<qint64>(maxSize, m_inbound.size()));
        memcpy(data, m_inbound.constData(), size_t(n));
        m_inbound.remove(0, n);
        return n;
    }
    qint64 writeData(const char *data, qint64 size) override
    {
        m_written.append(data, int(size));
        return size;
    }

private:
    QByteArray m_inbound;
    QByteArray m_written;
};
