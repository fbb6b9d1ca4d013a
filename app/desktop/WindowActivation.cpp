#include "app/desktop/WindowActivation.h"

#include <QGuiApplication>
#include <QWidget>

#include <cstdlib>
#include <cstring>
#include <memory>

#if defined(Q_OS_LINUX)
#include <xcb/xcb.h>
#endif

namespace {

// Qt's Wayland plug-in reads it when a window asks to be activated.
constexpr const char* waylandVariable = "XDG_ACTIVATION_TOKEN";
constexpr qsizetype longestToken = 4096;

#if defined(Q_OS_LINUX)

// The time of the user's action on the X server's clock, which ends a token as "_TIME" and a
// number.
xcb_timestamp_t timeIn(const QByteArray& token)
{
    const qsizetype at = token.lastIndexOf("_TIME");
    return at < 0 ? XCB_CURRENT_TIME : token.mid(at + 5).toUInt();
}

class X11Desktop {
public:
    explicit X11Desktop(xcb_connection_t* connection)
        : m_connection(connection),
          m_root(xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root)
    {
    }

    // Asks the window manager to activate the window, for an action of the user at `time`.
    void activate(xcb_window_t window, xcb_timestamp_t time) const
    {
        constexpr uint32_t sourceProgram = 1;    // not a taskbar or pager
        xcb_client_message_event_t message = messageTo(window, "_NET_ACTIVE_WINDOW", 32);
        message.data.data32[0] = sourceProgram;
        message.data.data32[1] = time;
        send(message, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT);
    }

    // Tells the desktop that the start `token` has ended, so that its busy pointer ends.
    void endStartup(const QByteArray& token) const
    {
        QByteArray quoted = token;
        quoted.replace('\\', "\\\\").replace('"', "\\\"");
        const QByteArray text = "remove: ID=\"" + quoted + "\"" + '\0';
        const xcb_window_t sender = xcb_generate_id(m_connection);
        xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, sender, m_root, -1, -1, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        constexpr qsizetype part = 20;    // bytes in a message
        for (qsizetype at = 0; at < text.size(); at += part) {
            auto message =
                messageTo(sender, at == 0 ? "_NET_STARTUP_INFO_BEGIN" : "_NET_STARTUP_INFO", 8);
            std::memcpy(message.data.data8, text.constData() + at,
                        size_t(std::min(part, text.size() - at)));
            send(message, XCB_EVENT_MASK_PROPERTY_CHANGE);
        }
        xcb_destroy_window(m_connection, sender);
        xcb_flush(m_connection);
    }

private:
    xcb_client_message_event_t messageTo(xcb_window_t window, const char* type,
                                         uint8_t format) const
    {
        xcb_client_message_event_t message = {};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = format;
        message.window = window;
        const auto asked = xcb_intern_atom(m_connection, 0, uint16_t(std::strlen(type)), type);
        const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> atom(
            xcb_intern_atom_reply(m_connection, asked, nullptr), &std::free);
        message.type = atom ? atom->atom : xcb_atom_t(XCB_ATOM_NONE);
        return message;
    }
    void send(const xcb_client_message_event_t& message, uint32_t mask) const
    {
        xcb_send_event(m_connection, 0, m_root, mask, reinterpret_cast<const char*>(&message));
        xcb_flush(m_connection);
    }

    xcb_connection_t* m_connection;
    xcb_window_t m_root;
};

void activateUnderX11(const QWidget& window, const QByteArray& token)
{
    const auto* x11 = qApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!x11 || token.isEmpty())
        return;
    const X11Desktop desktop(x11->connection());
    desktop.activate(xcb_window_t(window.winId()), timeIn(token));
    desktop.endStartup(token);
}

#endif

}    // namespace

QByteArray activationToken()
{
    const QByteArray ofWayland = qgetenv(waylandVariable);
    const QByteArray token = ofWayland.isEmpty() ? qgetenv("DESKTOP_STARTUP_ID") : ofWayland;
    return token.size() <= longestToken ? token : QByteArray();
}

void comeForward(QWidget& window, const QByteArray& token)
{
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    if (!token.isEmpty())
        qputenv(waylandVariable, token);
    window.activateWindow();
    // A token serves once; programs that are started from here must not inherit it.
    qunsetenv(waylandVariable);
#if defined(Q_OS_LINUX)
    activateUnderX11(window, token);
#endif
}
