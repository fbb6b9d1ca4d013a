#include "app/desktop/ScreenCapture.h"

#include <QWidget>

#if defined(Q_OS_WIN)
#include <windows.h>
#elif defined(Q_OS_MACOS)
#include <objc/message.h>
#endif

void protectFromScreenCapture(QWidget& window)
{
#if defined(Q_OS_WIN)
    constexpr DWORD excludeFromCapture = 0x11;    // WDA_EXCLUDEFROMCAPTURE of Windows 10 2004
    SetWindowDisplayAffinity(reinterpret_cast<HWND>(window.winId()), excludeFromCapture);
#elif defined(Q_OS_MACOS)
    // [[view window] setSharingType:NSWindowSharingNone]
    using ToObject = id (*)(id, SEL);
    using WithNumber = void (*)(id, SEL, unsigned long);
    constexpr unsigned long sharingNone = 0;
    const id view = reinterpret_cast<id>(window.winId());
    const id nativeWindow =
        reinterpret_cast<ToObject>(objc_msgSend)(view, sel_registerName("window"));
    reinterpret_cast<WithNumber>(objc_msgSend)(nativeWindow, sel_registerName("setSharingType:"),
                                               sharingNone);
#else
    Q_UNUSED(window)
#endif
}
