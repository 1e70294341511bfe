#pragma once

#include <radiosim/radiosim_export.h>

#include <QString>

#include <fstream>
#include <memory>

// A pulse descriptor word. Its fields belong to the applications that exchange PDWs; files
// copy it whole.
struct CPackedPDW
{
    unsigned char bytes[32];
};
static_assert(sizeof(CPackedPDW) == 32, "a PDW record is 32 bytes on disk");

// Reads or writes a file of PDW records, optionally in blocks of at most 1000 records behind a
// 32-byte block header. Written records are buffered and go out a block at a time. No locks:
// an object belongs to one thread.
class RADIOSIM_EXPORT PDWFile
{
public:
    // The name goes through Latin-1. A file that cannot be opened leaves an object on which
    // every operation does nothing.
    PDWFile(const QString &fileName, bool forWriting, bool writeBlockHeaders);
    // Writes what is buffered: with block headers always one more block, empty if nothing was
    // added since the last one.
    virtual ~PDWFile();
    PDWFile(const PDWFile &) = delete;
    PDWFile &operator=(const PDWFile &) = delete;

    // Buffers a copy and answers how many records are buffered now; the 1001st add writes the
    // full block first. With no file open nothing is ever written, and adds past 1000 records
    // are refused.
    int addPDW(CPackedPDW *record);
    // The next 32 bytes of the file: 32, or 0 once a read has failed at the end (or the stream
    // failed otherwise, so that a reading loop always ends). The read after the
    // last record still answers 32, with a record of zeros or the head of a partial record.
    // Block headers come back as records; their first word is 0xFB746572.
    int getPDW(CPackedPDW *record);
    bool is_open();

private:
    void write();

    bool writeBlockHeaders;
    std::fstream stream;
    // Magic, length in 32-bit words, block number, 512, 2, 0, records buffered, record words.
    quint32 blockHeader[8] = { 0xFB746572, 32, 0, 512, 2, 0, 0, 8 };
    std::unique_ptr<CPackedPDW[]> records;
};
