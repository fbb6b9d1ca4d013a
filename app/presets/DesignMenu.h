#pragma once
#include <QMenu>

enum class Icon;

// The menu of a design. An entry added with addConfirmed() asks once more in its own row.
class DesignMenu : public QMenu {
    Q_OBJECT
public:
    // Is deleted when it closes.
    explicit DesignMenu(QWidget* parent);

    // `beside`: text at the right, such as a key; may be empty.
    template <typename Act>
    void add(Icon icon, const QString& text, const QString& beside, Act act)
    {
        connect(newEntry(icon, text, beside), &QAction::triggered, parentWidget(), act);
    }
    // The first press replaces the text by `question`, the second one acts.
    template <typename Act>
    void addConfirmed(Icon icon, const QString& text, const QString& question, Act act)
    {
        m_question = question;
        m_confirmed = newEntry(icon, text, {});
        connect(m_confirmed, &QAction::triggered, parentWidget(), [this, act] {
            if (ask())
                act();
        });
    }
    void addHeading(const QString& text);

protected:
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QAction* newEntry(Icon icon, const QString& text, const QString& beside);
    bool ask();

    QAction* m_confirmed = nullptr;
    QString m_question, m_unasked;    // the texts of that entry
    bool m_isAsked = false, m_isDoubleClick = false;
};
