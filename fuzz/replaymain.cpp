// Replays inputs without libFuzzer: every file of the folders given, in name order, goes to the
// target's entry, so CTest checks the seeds and all past findings in any build. A crash, a
// sanitizer report or CTest's time-out fails the test; the last name printed is the culprit.

#include <QDir>
#include <QFile>

#include <cstdint>
#include <cstdio>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

// In a sanitizer build, an allocation as large as the fuzzers' limit fails the replay as it
// fails the fuzzer: no input here needs one.
extern "C" const char *__asan_default_options()
{
    return "max_allocation_size_mb=128";
}

int main(int argc, char **argv)
{
    int replayed = 0;
    for (int i = 1; i < argc; ++i) {
        const QDir folder(QString::fromLocal8Bit(argv[i]));
        for (const QString &name : folder.entryList(QDir::Files, QDir::Name)) {
            QFile file(folder.filePath(name));
            if (!file.open(QIODevice::ReadOnly)) {
                std::fprintf(stderr, "cannot read %s\n", qPrintable(file.fileName()));
                return 1;
            }
            std::printf("%s\n", qPrintable(file.fileName()));
            std::fflush(stdout);
            const QByteArray input = file.readAll();
            LLVMFuzzerTestOneInput(
                reinterpret_cast<const uint8_t *>(input.constData()), size_t(input.size()));
            ++replayed;
        }
    }
    std::printf("%d inputs replayed\n", replayed);
    return replayed > 0 ? 0 : 1;
}
