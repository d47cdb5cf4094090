// Stand-in for the fuzzing engine where it is not available (gcc builds): runs the
// target once per file given, and once per line of files given with --lines, so
// that crash reproducers and the formula corpus can be replayed in any build.
//
//   fuzz_latex [--lines] FILE...   (fuzz_omml likewise)
#include <QByteArray>
#include <QFile>

#include <cstdint>
#include <cstdio>
#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

void run(const QByteArray& bytes)
{
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.constData()), size_t(bytes.size()));
}

} // namespace

int main(int argc, char** argv)
{
    bool lines = false;
    long inputs = 0;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--lines") == 0) {
            lines = true;
            continue;
        }
        QFile file(QString::fromLocal8Bit(argv[i]));
        if (!file.open(QIODevice::ReadOnly)) {
            std::fprintf(stderr, "cannot read %s\n", argv[i]);
            return 2;
        }
        const QByteArray content = file.readAll();
        if (!lines) {
            run(content);
            ++inputs;
            continue;
        }
        for (const QByteArray& line : content.split('\n')) {
            if (!line.isEmpty()) {
                run(line);
                ++inputs;
            }
        }
    }
    std::printf("%ld inputs replayed without a failure\n", inputs);
    return 0;
}
