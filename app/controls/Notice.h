#pragma once
#include <QPointer>
#include <QWidget>

class CopyButton;
class Paragraph;
class QBoxLayout;

enum class NoticeKind { info, problem };

// What came of the last action, with its icon. Its room is kept when it is empty, so that nothing
// jumps when it comes. An address in it can be copied: its last row is then the button for that.
class Notice : public QWidget {
    Q_OBJECT
public:
    // `place`: of less text than its rows, at the top or in the middle.
    explicit Notice(int rows, Qt::Alignment place = Qt::AlignTop, QWidget* parent = nullptr);
    void tell(NoticeKind kind, const QString& text);
    QString text() const;
    CopyButton* copyButton() const { return m_copy; }
    // Moves it into the nearest rows round `control`, below it, and next to it in the order of Tab.
    void standBelow(QWidget* control);
    void standIn(QBoxLayout* place);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const int m_rows;
    NoticeKind m_kind = NoticeKind::info;
    Paragraph* m_text;
    CopyButton* m_copy;
    QPointer<QBoxLayout> m_place;
};
