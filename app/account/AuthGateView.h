#pragma once
#include <QWidget>

class LoginView;
class QStackedWidget;

enum class Gate { checking, signedOut, open };

// Covers the whole window until a user is signed in. Neither clicks nor keys reach the window
// behind it.
class AuthGateView : public QWidget {
    Q_OBJECT
public:
    explicit AuthGateView(QWidget* window);
    // Gate::open hides the view.
    void setState(Gate state);
    Gate state() const { return m_state; }
    LoginView* login() const { return m_login; }

Q_SIGNALS:
    void appeared();    // the gate was shown, for the first time or again

protected:
    bool event(QEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    Gate m_state = Gate::checking;
    QStackedWidget* m_pages;
    LoginView* m_login;
};
