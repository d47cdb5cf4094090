#include "capi/offscreen_app.h"

#include <QGuiApplication>

#include <condition_variable>
#include <future>
#include <mutex>
#include <thread>

namespace {

// The application object belongs to the thread that creates it, and Qt treats that thread as
// its main thread for as long as the process runs. A caller's thread may end (a worker of a
// thread pool), so the object is created on a thread of our own that never returns.
void startOffscreenApplication()
{
    // The thread owns the promise, so nothing of this frame is touched once the wait returns.
    std::promise<void> created;
    std::future<void> ready = created.get_future();
    std::thread([created = std::move(created)]() mutable {
        static int argc = 3;
        static char name[] = "formulaconv";
        static char platformOption[] = "-platform";
        static char platform[] = "offscreen";
        static char* argv[] = {name, platformOption, platform, nullptr};
        // Never deleted: fonts and the platform integration must outlive every render call.
        new QGuiApplication(argc, argv);
        created.set_value();
        std::mutex idle;
        std::condition_variable never;
        std::unique_lock<std::mutex> lock(idle);
        for (;;)
            never.wait(lock);
    }).detach();
    ready.wait();
}

} // namespace

bool ensureGuiApplication()
{
    static std::once_flag once;
    std::call_once(once, [] {
        if (!QCoreApplication::instance())
            startOffscreenApplication();
    });
    return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
}
