// Shared test entry point: a QGuiApplication on the offscreen platform, so
// that font metrics and painting work without a display.
#include <QGuiApplication>

#include <gtest/gtest.h>

#include <cstdio>

namespace {

void dropQtChatter(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (type == QtFatalMsg || type == QtCriticalMsg)
        fprintf(stderr, "%s\n", qPrintable(message));
}

} // namespace

int main(int argc, char** argv)
{
    qInstallMessageHandler(dropQtChatter);
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
