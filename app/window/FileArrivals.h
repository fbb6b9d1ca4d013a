#pragma once

#include <QList>
#include <QObject>
#include <QUrl>

#include <functional>

class DropVeil;
class FileIntake;
class LoginView;
class QDragEnterEvent;
class QDropEvent;

// Files that arrive at the window: opened by another program, or dragged there. They wait until
// somebody is signed in; dropped ones also until no sheet is presented.
class FileArrivals : public QObject {
    Q_OBJECT
public:
    // What of the window keeps files waiting.
    struct Covers {
        std::function<bool()> isGated, isSheetPresented;
    };
    // `files`, `veil` and `login` outlive this object. `login` shows how many files wait.
    FileArrivals(FileIntake* files, DropVeil* veil, LoginView* login, const Covers& covers,
                 QObject* parent);

    void open(const QList<QUrl>& files);
    void dragEntered(QDragEnterEvent* event);
    void dragLeft();
    void dropped(QDropEvent* event);

    // Call after the sign-in.
    void openWaiting();
    // Call when nothing covers the studio any more.
    void openDropped();

private:
    void drop(const QList<QUrl>& files);
    void showWaiting();

    FileIntake* m_files;
    DropVeil* m_veil;
    LoginView* m_login;
    const Covers m_covers;
    QList<QUrl> m_opened, m_dropped;    // waiting
};
