#include "fuzz/fuzz_support.h"

#include <QGuiApplication>
#include <QXmlStreamReader>

#include <cstdio>
#include <cstdlib>
#include <memory>

QString fuzzText(const uint8_t* data, size_t size)
{
    return QString::fromUtf8(reinterpret_cast<const char*>(data), int(size));
}

void fuzzFail(const char* what, const QString& input)
{
    std::fprintf(stderr, "fuzz check failed: %s\ninput: %s\n", what, input.toUtf8().constData());
    std::abort();
}

void requireWellFormed(const QString& xml, const QString& input)
{
    // The fragment uses the w: prefix without declaring it (the embedding document
    // does), so only the XML syntax is checked here, not the namespaces.
    QXmlStreamReader reader(xml);
    reader.setNamespaceProcessing(false);
    while (!reader.atEnd())
        reader.readNext();
    if (reader.hasError())
        fuzzFail(qPrintable(QStringLiteral("output is not well-formed XML: ") + reader.errorString()), input);
}

bool fuzzRenders()
{
    static const bool renders = [] {
        if (qEnvironmentVariableIsSet("FORMULACONV_FUZZ_NO_RENDER"))
            return false;
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        static int argc = 1;
        static char name[] = "fuzz";
        static char* argv[] = {name, nullptr};
        static std::unique_ptr<QGuiApplication> app(new QGuiApplication(argc, argv));
        return true;
    }();
    return renders;
}
